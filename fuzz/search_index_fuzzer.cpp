// SPDX-License-Identifier: GPL-3.0-or-later
//
// Differential: the search index (SQLite FTS5 trigram tables) must find
// exactly what scanning the project in memory finds, for libraries and
// queries built from the input out of letters that case folding and Unicode
// treat unevenly. The index is brought up to each library as the program
// does it, by revision, so its incremental updates are fuzzed as well.

#include "FuzzSupport.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace Vesko;

namespace {

// Pieces of text: ASCII, letters whose lower case changes length or has no
// upper case, combining marks, characters outside the BMP, the wildcards of
// LIKE, and the spaces that a query trims.
const char *const pieces[] = {"a", "b", "ab", "abc", "A", "B", "C", " ", "\t", "\u00a0", "\n",
    "%", "_", "\\", "'", "\"", "İ", "ı", "i", "I", "ß", "ẞ", "Σ", "σ", "ς", "ﬁ", "Å", "å", "e\u0301",
    "é", "😀", "𐐀", "𐐨", "Ǆ", "ǅ", "ǆ", "Ω", "Ω", "\x01", "\u200b", "Ⅻ", "ⅻ"};

QString text(FuzzedDataProvider &data, int maximum)
{
    QString made;
    const int count = data.ConsumeIntegralInRange(0, maximum);
    for (int i = 0; i < count; ++i) {
        const size_t index = data.ConsumeIntegralInRange<size_t>(0, std::size(pieces));
        // One past the pieces: a run of the input's own bytes.
        made += index < std::size(pieces)
            ? QString::fromUtf8(pieces[index])
            : QString::fromUtf8(data.ConsumeBytesAsString(data.ConsumeIntegralInRange(0, 4)));
    }
    return made;
}

QUuid idNumber(int number)
{
    return QUuid::createUuidV5(QUuid(), QString::number(number));
}

Library library(FuzzedDataProvider &data)
{
    Library made;
    int next = 0;
    QSet<int> usedNotes;
    const int projects = data.ConsumeIntegralInRange(1, 2);
    for (int p = 0; p < projects; ++p) {
        Project project;
        project.id = idNumber(next++);
        project.name = QStringLiteral("P%1").arg(p);
        const int sections = data.ConsumeIntegralInRange(1, 3);
        for (int s = 0; s < sections; ++s) {
            NoteSection section;
            section.id = idNumber(next++);
            section.title = text(data, 4);
            const int notes = data.ConsumeIntegralInRange(0, 4);
            for (int n = 0; n < notes; ++n) {
                Note note;
                // Ids recur between rounds, so that notes change in place,
                // and never twice in one library.
                int number = 100 + data.ConsumeIntegralInRange(0, 12);
                while (usedNotes.contains(number))
                    ++number;
                usedNotes.insert(number);
                note.id = idNumber(number);
                note.text = text(data, 8);
                if (data.ConsumeIntegralInRange(0, 3) == 0) {
                    NoteAttachment attachment;
                    attachment.id = idNumber(next++);
                    attachment.fileName = text(data, 3);
                    note.attachments.append(attachment);
                }
                section.notes.append(note);
            }
            project.sections.append(section);
        }
        project.activeSectionID = project.sections.first().id;
        made.projects.append(project);
    }
    made.activeProjectID = made.projects.first().id;
    return made;
}

// Prints, percent-encoded, the query and each title and text, with whether
// the index (first) and the scan (second) found it.
void report(const QString &query, const Project &project, const SearchMatches &indexed,
    const SearchMatches &scanned)
{
    auto print = [](const char *what, bool index, bool scan, const QString &text) {
        std::fprintf(stderr, "%s %d/%d %s\n", what, int(index), int(scan),
            text.toUtf8().toPercentEncoding(" ").constData());
    };
    print("query", true, true, query);
    for (const NoteSection &section : project.sections) {
        print("section", indexed.sectionIDs.contains(section.id),
            scanned.sectionIDs.contains(section.id), section.title);
        for (const Note &note : section.notes)
            print("note", indexed.noteIDs.contains(note.id), scanned.noteIDs.contains(note.id),
                note.text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    Fuzz::Process::instance();
    static SearchIndex index(Fuzz::Process::instance().folder() + QStringLiteral("/search.sqlite"));
    static quint64 revision = 0;
    // Small projects would be scanned in memory: every query goes through
    // the index here, which is what is compared with the scan.
    index.setPlan(SearchIndex::Plan::Index);

    FuzzedDataProvider data(bytes, size);
    const int rounds = data.ConsumeIntegralInRange(1, 3);
    for (int round = 0; round < rounds; ++round) {
        const Library notes = library(data);
        ++revision;
        index.synchronizeAndWait(notes, revision);
        const int queries = data.ConsumeIntegralInRange(1, 4);
        for (int q = 0; q < queries; ++q) {
            const QString query = text(data, 4);
            const QString normalized = SearchIndex::normalizedQuery(query);
            for (const Project &project : notes.projects) {
                const SearchMatches indexed = index.searchAndWait(query, project, notes, revision);
                const SearchMatches scanned = normalized.isEmpty()
                    ? SearchMatches()
                    : SearchIndex::scanProject(normalized, project);
                if (indexed != scanned)
                    report(normalized, project, indexed, scanned);
                FUZZ_REQUIRE(indexed == scanned);
            }
        }
    }
    return 0;
}
