// SPDX-License-Identifier: GPL-3.0-or-later

#include "StoreFixture.h"

#include "TestEnvironment.h"

#include <QDir>

namespace Vesko::Test {

QUuid idFor(const QString &name)
{
    return QUuid::createUuidV5(QUuid(), name);
}

Project describedProject(const QString &description, const QString &name)
{
    Project project;
    project.id = idFor(QStringLiteral("project ") + name);
    project.name = name;
    project.createdAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
    for (const QString &part : description.split(u'|', Qt::SkipEmptyParts)) {
        NoteSection section;
        QString title = part.section(u':', 0, 0);
        const bool active = title.startsWith(u'*');
        if (active)
            title.remove(0, 1);
        section.isCollapsed = title.contains(u'+');
        section.isAutomatic = title.contains(u'!');
        title.remove(u'+').remove(u'!');
        section.title = title;
        section.id = idFor(name + u'/' + title);
        section.createdAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
        if (active)
            project.activeSectionID = section.id;
        for (const QString &letter : part.section(u':', 1).split(u',', Qt::SkipEmptyParts)) {
            Note note;
            note.id = idFor(letter.toLower());
            note.text = letter.toLower();
            note.isDone = letter != letter.toLower();
            if (note.isDone)
                note.completedAt = QDateTime::fromSecsSinceEpoch(1000, Qt::UTC);
            note.createdAt = note.updatedAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
            section.notes.append(note);
        }
        project.sections.append(section);
    }
    return project;
}

QList<QUuid> noteIDs(const QString &letters)
{
    QList<QUuid> ids;
    for (const QString &letter : letters.split(u',', Qt::SkipEmptyParts))
        ids.append(idFor(letter));
    return ids;
}

Note noteWith(const QString &text, const QStringList &attachmentNames)
{
    Note note;
    note.id = makeID();
    note.text = text;
    for (const QString &name : attachmentNames) {
        NoteAttachment attachment;
        attachment.id = makeID();
        attachment.fileName = name;
        attachment.storedFileName = attachment.id.toString(QUuid::WithoutBraces) + u'/' + name;
        note.attachments.append(attachment);
    }
    return note;
}

QString describeRuns(const MarkdownText &text, const QList<std::pair<int, QChar>> &more)
{
    QString out;
    qsizetype at = 0;
    for (const MarkdownRun &run : text.runs) {
        out += text.text.mid(at, run.start - at);
        QString flags;
        for (const auto &[attribute, letter] :
            {std::pair(MarkdownRun::Emphasis, u'E'), std::pair(MarkdownRun::Strong, u'S'),
                std::pair(MarkdownRun::Strikethrough, u'X'), std::pair(MarkdownRun::Code, u'C'),
                std::pair(MarkdownRun::Link, u'L'), std::pair(MarkdownRun::Image, u'I')}) {
            if (run.attributes & attribute)
                flags += letter;
            if (run.attributes & attribute & (MarkdownRun::Link | MarkdownRun::Image))
                flags += u'(' + run.destination + u')';
        }
        for (const auto &[attribute, letter] : more) {
            if (run.attributes & attribute)
                flags += letter;
        }
        out += u'{' + flags + u':' + text.text.mid(run.start, run.length) + u'}';
        at = run.start + run.length;
    }
    return out + text.text.mid(at);
}

QStringList noteTexts(const Library &library)
{
    QStringList texts;
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes)
                texts.append(note.text);
        }
    }
    return texts;
}

StoreFixture::StoreFixture()
{
    Preferences::openSettings()->clear();
    QDir(IsolatedEnvironment::current().dataHome()).removeRecursively();
    m_preferences = std::make_unique<Preferences>();
    m_writer = std::make_unique<LibraryWriter>();
    m_attachments = std::make_unique<AttachmentStore>();
    // A database of its own per fixture, so that searches go through the index.
    static int counter = 0;
    m_searchIndex = std::make_unique<SearchIndex>(IsolatedEnvironment::current().cacheHome()
        + QStringLiteral("/fixture-%1.sqlite").arg(++counter));
}

StoreFixture::~StoreFixture()
{
    m_store.reset();
    m_attachments.reset();
    m_writer.reset();
}

Store &StoreFixture::make(const QStringList &projects)
{
    Library library;
    const QStringList names = {QStringLiteral("P"), QStringLiteral("Q"), QStringLiteral("R")};
    for (qsizetype i = 0; i < projects.size(); ++i)
        library.projects.append(
            describedProject(projects.at(i), names.value(i, QString::number(i))));
    library.activeProjectID = library.projects.first().id;
    // Set after construction, so that the repair at load leaves the fixture as written.
    make(makeDefaultLibrary());
    m_store->setLibrary(library);
    // Rows and the search index follow the fixture's library.
    m_store->refreshAfterMutation();
    return *m_store;
}

Store &StoreFixture::make(const Library &library)
{
    m_store.reset();
    m_store = std::make_unique<Store>(
        library, Store::Services {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    return *m_store;
}

} // namespace Vesko::Test
