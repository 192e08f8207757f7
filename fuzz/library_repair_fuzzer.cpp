// SPDX-License-Identifier: GPL-3.0-or-later
//
// Repairs libraries as they may come from a file: a decoded document when the
// input starts with '{', otherwise a library built from the bytes out of a
// few telling titles, sources, flags and versions. Whatever comes in, the
// repair leaves a project, each project a section and an active section that
// exists, the current version, and every note: the same notes, unchanged, in
// the same project. A library of the current version comes out of a second
// repair unchanged (but for one case the rules make so), and every repaired library survives writing and reading.

#include "library/LibraryCoding.h"
#include "library/LibraryRepair.h"

#include "FuzzSupport.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

using namespace Vesko;

namespace {

const char *const titles[] = {"Inbox", "inbox", "INBOX", "Mail", "mail", "Mail — Re: hi",
    "mail — re: hi", "Unknown", "Notes", "ß", "SS", "İ", "i̇", "Σ", "σ", ""};

QString pick(FuzzedDataProvider &data)
{
    return QString::fromUtf8(titles[data.ConsumeIntegralInRange<size_t>(0, std::size(titles) - 1)]);
}

QUuid smallID(FuzzedDataProvider &data)
{
    // Few distinct ids, so that duplicates and stale references happen.
    return QUuid::createUuidV5(QUuid(), QString::number(data.ConsumeIntegralInRange(0, 40)));
}

Library builtLibrary(FuzzedDataProvider &data)
{
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(1700000000000, Qt::UTC);
    Library library;
    library.version = data.ConsumeIntegralInRange<qint64>(0, 4);
    const int projects = data.ConsumeIntegralInRange(0, 3);
    for (int p = 0; p < projects; ++p) {
        Project project;
        project.id = smallID(data);
        project.name = pick(data);
        project.createdAt = date;
        const int sections = data.ConsumeIntegralInRange(0, 6);
        for (int s = 0; s < sections; ++s) {
            NoteSection section;
            section.id = smallID(data);
            section.title = pick(data);
            section.isAutomatic = data.ConsumeBool();
            section.isCollapsed = data.ConsumeBool();
            section.createdAt = date;
            const int notes = data.ConsumeIntegralInRange(0, 4);
            for (int n = 0; n < notes; ++n) {
                Note note;
                note.id = smallID(data);
                note.text = pick(data);
                note.createdAt = note.updatedAt = date;
                if (data.ConsumeBool()) {
                    NoteSource source;
                    source.appName = pick(data);
                    if (data.ConsumeBool())
                        source.windowTitle = pick(data);
                    note.source = source;
                }
                section.notes.append(note);
            }
            project.sections.append(section);
        }
        if (data.ConsumeBool())
            project.activeSectionID = smallID(data);
        library.projects.append(project);
    }
    if (data.ConsumeBool())
        library.activeProjectID = smallID(data);
    return library;
}

// The notes of each project, each by every field the repair could touch,
// in a fixed order.
QList<QStringList> notesByProject(const Library &library)
{
    QList<QStringList> all;
    for (const Project &project : library.projects) {
        QStringList notes;
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                notes.append(QStringList {note.id.toString(), note.text,
                    QString::number(note.isDone), note.createdAt.toString(Qt::ISODateWithMs),
                    note.source ? u'+' + note.source->appName : QString(),
                    note.source ? note.source->windowTitle.value_or(QStringLiteral("-")) : QString(),
                    QString::number(note.attachments.size())}
                                 .join(u'\x1f'));
            }
        }
        notes.sort();
        all.append(notes);
    }
    return all;
}

// Prints each project's sections and notes, for a failure's report.
void print(const char *label, const Library &library)
{
    std::fprintf(stderr, "%s, version %lld\n", label, qlonglong(library.version));
    for (const Project &project : library.projects) {
        std::fprintf(stderr, "project %s\n", qPrintable(project.id.toString()));
        for (const NoteSection &section : project.sections) {
            std::fprintf(stderr, "  section %s %s%s:", qPrintable(section.id.toString().mid(1, 8)),
                qPrintable(section.title), section.isAutomatic ? " (automatic)" : "");
            for (const Note &note : section.notes)
                std::fprintf(stderr, " %s%s", qPrintable(note.id.toString().mid(1, 8)),
                    note.source ? "*" : "");
            std::fprintf(stderr, "\n");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    Library library;
    if (size > 0 && bytes[0] == '{') {
        const std::optional<Library> decoded = decodeLibrary(
            QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), qsizetype(size)));
        if (!decoded)
            return 0;
        library = *decoded;
    } else {
        FuzzedDataProvider data(bytes, size);
        library = builtLibrary(data);
    }
    const Library original = library;
    repairLibrary(library);

    FUZZ_REQUIRE(library.version == libraryFormatVersion);
    FUZZ_REQUIRE(!library.projects.isEmpty());
    for (const Project &project : library.projects) {
        FUZZ_REQUIRE(!project.sections.isEmpty());
        FUZZ_REQUIRE(project.activeSectionID && sectionIndex(project, *project.activeSectionID) >= 0);
    }
    if (!original.projects.isEmpty()) {
        FUZZ_REQUIRE(library.projects.size() == original.projects.size());
        for (qsizetype i = 0; i < library.projects.size(); ++i)
            FUZZ_REQUIRE(library.projects.at(i).id == original.projects.at(i).id);
        if (notesByProject(library) != notesByProject(original)) {
            print("read", original);
            print("repaired", library);
        }
        FUZZ_REQUIRE(notesByProject(library) == notesByProject(original));
    }

    // A capture section titled "Inbox" makes the ordinary Inbox a shadow of
    // it: each repair folds the Inbox into a new one, as the file's rules say.
    const bool capturesInbox = std::any_of(
        library.projects.cbegin(), library.projects.cend(), [](const Project &project) {
            return std::any_of(project.sections.cbegin(), project.sections.cend(),
                [](const NoteSection &section) {
                    return section.isAutomatic && section.title.toLower() == u"inbox";
                });
        });
    if (original.version >= libraryFormatVersion && !capturesInbox) {
        Library again = library;
        FUZZ_REQUIRE(!repairLibrary(again));
        FUZZ_REQUIRE(again == library);
    }

    const std::optional<Library> read = decodeLibrary(encodeLibrary(library));
    FUZZ_REQUIRE(read.has_value());
    FUZZ_REQUIRE(encodeLibrary(*read) == encodeLibrary(library));
    return 0;
}
