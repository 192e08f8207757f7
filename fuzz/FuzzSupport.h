// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the fuzz targets share: a process set up like the program's, with its
// own empty configuration, data and cache folders, and a Store over a small
// library, served the same way as in the running program.

#pragma once

#include "attachments/AttachmentStore.h"
#include "library/Library.h"
#include "library/LibraryWriter.h"
#include "search/SearchIndex.h"
#include "shell/NoteRequests.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace Vesko::Fuzz {

//! Says which condition failed and aborts, so that the fuzzer keeps the input.
[[noreturn]] inline void fail(const char *condition, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: failed: %s\n", file, line, condition);
    std::abort();
}

#define FUZZ_REQUIRE(condition)                                                                    \
    ((condition) ? void() : Vesko::Fuzz::fail(#condition, __FILE__, __LINE__))

//! The application and the folders of one fuzzing process; made on first use.
class Process
{
public:
    static Process &instance()
    {
        static Process process;
        return process;
    }

    QString folder() const { return m_folder.path(); }

private:
    Process()
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder.path() + QStringLiteral("/config")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path() + QStringLiteral("/data")));
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_folder.path() + QStringLiteral("/cache")));
        qputenv("QT_LOGGING_RULES", "*=false");
        m_application = std::make_unique<QCoreApplication>(m_argc, m_argv);
    }

    QTemporaryDir m_folder;
    int m_argc = 1;
    char m_name[8] = "vesko";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

//! A Store with its services, over a library of two projects.
class StoreRig
{
public:
    StoreRig()
    {
        Process::instance();
        m_store = std::make_unique<Store>(startLibrary(),
            Store::Services {m_preferences, m_writer, m_attachments, m_searchIndex});
        m_start = m_store->library();
    }

    Store &store() { return *m_store; }
    SearchIndex &searchIndex() { return m_searchIndex; }
    //! Puts the library of the start back.
    void reset() { m_store->setLibrary(m_start); }

    static Library startLibrary()
    {
        auto note = [](const char *text, bool done) {
            Note made;
            made.id = makeID();
            made.text = QString::fromUtf8(text);
            made.isDone = done;
            made.createdAt = made.updatedAt = currentDate();
            if (done)
                made.completedAt = made.createdAt;
            return made;
        };
        Library library = makeDefaultLibrary();
        NoteSection &inbox = library.projects[0].sections[0];
        inbox.notes = {note("buy milk", false), note("call Ada", true), note("Übung 3", false)};
        NoteSection work = makeInboxSection();
        work.title = QStringLiteral("Work");
        work.notes = {note("fix the build", false)};
        library.projects[0].sections.append(work);
        Project other = library.projects[0];
        other.id = makeID();
        other.name = QStringLiteral("Home");
        other.sections = {makeInboxSection()};
        other.activeSectionID = other.sections[0].id;
        other.sections[0].notes = {note("water the plants", false)};
        library.projects.append(other);
        return library;
    }

private:
    Preferences m_preferences;
    LibraryWriter m_writer;
    AttachmentStore m_attachments;
    SearchIndex m_searchIndex {Process::instance().folder() + QStringLiteral("/index.sqlite")};
    std::unique_ptr<Store> m_store;
    Library m_start;
};

//! Every note's id in \a library.
inline QSet<QUuid> noteIDs(const Library &library)
{
    QSet<QUuid> ids;
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes)
                ids.insert(note.id);
        }
    }
    return ids;
}

//! The answer of \a requests to \a request, running the events until it comes
//! (a search answers from the index's thread).
inline QJsonObject ask(NoteRequests &requests, const QJsonObject &request)
{
    std::optional<QJsonObject> answer;
    requests.handle(request, [&answer](const QJsonObject &object) {
        FUZZ_REQUIRE(!answer.has_value()); // one answer per request
        answer = object;
    });
    while (!answer)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return *answer;
}

//! Whether \a answer is one of NoteRequests: ok, or not ok with a reason.
inline bool isWellFormedAnswer(const QJsonObject &answer)
{
    if (!answer.value(QStringLiteral("ok")).isBool())
        return false;
    return answer.value(QStringLiteral("ok")).toBool()
        || !answer.value(QStringLiteral("error")).toString().isEmpty();
}

} // namespace Vesko::Fuzz
