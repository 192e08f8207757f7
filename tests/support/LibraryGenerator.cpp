// SPDX-License-Identifier: GPL-3.0-or-later

#include "LibraryGenerator.h"

#include "library/Library.h"

#include <QRandomGenerator>

#include <array>

namespace Vesko::Test {

namespace {

constexpr std::array words = {u"the", u"fix", u"build", u"review", u"café", u"naïve", u"Straße",
    u"über", u"résumé", u"Привет", u"задача", u"日本語", u"メモ", u"東京", u"🙂", u"✅", u"TODO",
    u"prompt", u"function", u"return", u"const", u"model", u"context", u"token", u"error", u"file",
    u"path/to/file.cpp", u"https://example.org/a?b=c", u"\"quoted\"", u"back\\slash", u"email",
    u"meeting", u"tomorrow", u"deploy", u"check", u"λ", u"Ωmega", u"déjà", u"vu", u"and", u"or"};

constexpr std::array apps = {std::pair {u"Firefox", u"org.mozilla.firefox"},
    std::pair {u"Terminal", u"org.gnome.Terminal"}, std::pair {u"Code", u"code"},
    std::pair {u"Slack", u"com.slack.Slack"}, std::pair {u"Dateien", u"org.gnome.Nautilus"}};

class Generator
{
public:
    explicit Generator(quint32 seed)
        : m_random(seed)
    { }

    QUuid id()
    {
        QByteArray bytes(16, Qt::Uninitialized);
        m_random.fillRange(reinterpret_cast<quint32 *>(bytes.data()), 4);
        bytes[6] = char((bytes[6] & 0x0F) | 0x40); // version 4
        bytes[8] = char((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
        return QUuid::fromRfc4122(bytes);
    }

    QDateTime date()
    {
        // 2024-01-01 onwards, one step of up to an hour per call.
        m_clock += m_random.bounded(1, 3600);
        return QDateTime::fromSecsSinceEpoch(1704067200 + m_clock, Qt::UTC);
    }

    int bounded(int limit) { return int(m_random.bounded(limit)); }

    QString text()
    {
        // Mostly short notes, some paragraphs, a few long pastes.
        const int roll = bounded(100);
        const int wordCount = roll < 70 ? 3 + bounded(20)
            : roll < 95                 ? 30 + bounded(80)
                                        : 300 + bounded(400);
        QString out;
        for (int i = 0; i < wordCount; ++i) {
            if (i > 0)
                out += (i % 17 == 0) ? u'\n' : u' ';
            out += QStringView(words[size_t(bounded(int(words.size())))]);
        }
        return out;
    }

    Note note()
    {
        Note note;
        note.id = id();
        note.text = text();
        note.createdAt = date();
        note.updatedAt = bounded(4) == 0 ? date() : note.createdAt;
        if (bounded(10) < 3) {
            note.isDone = true;
            note.completedAt = note.updatedAt;
        }
        if (bounded(10) < 4) {
            const auto &[app, bundle] = apps[size_t(bounded(int(apps.size())))];
            NoteSource source;
            source.appName = QString::fromUtf16(app);
            if (bounded(5) > 0)
                source.bundleIdentifier = QString::fromUtf16(bundle);
            if (bounded(3) > 0)
                source.windowTitle
                    = QStringLiteral("Window %1 — %2")
                          .arg(bounded(50))
                          .arg(QStringView(words[size_t(bounded(int(words.size())))]));
            note.source = source;
        }
        if (bounded(20) == 0) {
            const int count = 1 + bounded(3);
            for (int i = 0; i < count; ++i) {
                NoteAttachment attachment;
                attachment.id = id();
                const bool image = bounded(2) == 0;
                attachment.kind = image ? NoteAttachment::Kind::Image : NoteAttachment::Kind::File;
                attachment.fileName = image ? QStringLiteral("Screenshot %1.png").arg(i)
                                            : QStringLiteral("notes-%1.pdf").arg(i);
                attachment.storedFileName
                    = attachment.id.toString(QUuid::WithoutBraces) + u'/' + attachment.fileName;
                if (bounded(4) > 0)
                    attachment.contentTypeIdentifier
                        = image ? QStringLiteral("image/png") : QStringLiteral("application/pdf");
                if (bounded(4) > 0)
                    attachment.byteCount = 1000 + bounded(5'000'000);
                attachment.createdAt = note.createdAt;
                note.attachments.append(attachment);
            }
        }
        return note;
    }

private:
    QRandomGenerator m_random;
    qint64 m_clock = 0;
};

} // namespace

Library generateLibrary(qsizetype noteCount, quint32 seed)
{
    Generator g(seed);
    Library library;

    const int projectCount = 3 + int(std::min<qsizetype>(noteCount / 20000, 5));
    for (int p = 0; p < projectCount; ++p) {
        Project project;
        project.id = g.id();
        project.name
            = p == 0 ? QStringLiteral("Notes") : QStringLiteral("Project %1 — Ünïcode").arg(p);
        project.createdAt = g.date();
        const int sectionCount = 4 + g.bounded(8);
        for (int s = 0; s < sectionCount; ++s) {
            NoteSection section;
            section.id = g.id();
            section.isAutomatic = s % 3 == 2;
            section.title = s == 0    ? QStringLiteral("Inbox")
                : section.isAutomatic ? QStringLiteral("Firefox — Tab %1").arg(s)
                                      : QStringLiteral("Section %1").arg(s);
            section.isCollapsed = g.bounded(6) == 0;
            section.createdAt = g.date();
            project.sections.append(section);
        }
        project.activeSectionID = project.sections.at(g.bounded(int(project.sections.size()))).id;
        library.projects.append(project);
    }

    // Notes go mostly to the first project, the rest spread out.
    for (qsizetype i = 0; i < noteCount; ++i) {
        const int p = g.bounded(2) == 0 ? 0 : g.bounded(projectCount);
        Project &project = library.projects[p];
        NoteSection &section = project.sections[g.bounded(int(project.sections.size()))];
        section.notes.append(g.note());
    }
    library.activeProjectID = library.projects.first().id;
    return library;
}

Library generateLibraryWithActiveProject(qsizetype total, qsizetype active, quint32 seed)
{
    Library library = generateLibrary(total, seed);
    qsizetype inFirst = 0;
    for (const NoteSection &section : library.projects[0].sections)
        inFirst += section.notes.size();
    // Notes go between the first and the second project until the first holds `active`.
    Project &first = library.projects[0];
    Project &second = library.projects[1];
    for (qsizetype s = 0; inFirst > active; s = (s + 1) % first.sections.size()) {
        NoteSection &from = first.sections[s];
        if (from.notes.isEmpty())
            continue;
        second.sections[s % second.sections.size()].notes.append(from.notes.takeLast());
        --inFirst;
    }
    for (qsizetype s = 0; inFirst < active; s = (s + 1) % second.sections.size()) {
        NoteSection &from = second.sections[s];
        if (from.notes.isEmpty())
            continue;
        first.sections[s % first.sections.size()].notes.append(from.notes.takeLast());
        ++inFirst;
    }
    for (NoteSection &section : first.sections)
        section.isCollapsed = false;
    library.activeProjectID = first.id;
    return library;
}

Library numberedLibrary(int number)
{
    Library library = generateLibrary(200 + number % 7 * 50, quint32(number));
    library.projects[0].name = QStringLiteral("state %1").arg(number);
    return library;
}

} // namespace Vesko::Test
