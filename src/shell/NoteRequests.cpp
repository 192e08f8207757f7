// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/NoteRequests.h"

#include "library/Library.h"
#include "search/SearchIndex.h"
#include "store/Store.h"

#include <QJsonArray>
#include <QPointer>

namespace Vesko {

namespace {

QJsonObject noteObject(const Note &note, const NoteSection &section, const Project &project)
{
    return QJsonObject {
        {QStringLiteral("id"), note.id.toString(QUuid::WithoutBraces)},
        {QStringLiteral("text"), note.text},
        {QStringLiteral("section"), section.title},
        {QStringLiteral("project"), project.name},
        {QStringLiteral("done"), note.isDone},
    };
}

// The note \a id with its section and project, as an answer holds it; empty when there is none.
QJsonObject noteObject(const Library &library, const QUuid &id)
{
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                if (note.id == id)
                    return noteObject(note, section, project);
            }
        }
    }
    return {};
}

QJsonObject success()
{
    return QJsonObject {{QStringLiteral("ok"), true}};
}

} // namespace

NoteRequests::NoteRequests(Store &store, SearchIndex &searchIndex, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_searchIndex(searchIndex)
{ }

QJsonObject NoteRequests::failure(const QString &message)
{
    return QJsonObject {{QStringLiteral("ok"), false}, {QStringLiteral("error"), message}};
}

void NoteRequests::handle(const QJsonObject &request, const Reply &reply)
{
    const QString command = request.value(QStringLiteral("command")).toString();
    if (command == u"action") {
        const QString name = request.value(QStringLiteral("name")).toString();
        const auto action = m_actions.constFind(name);
        if (action == m_actions.cend()) {
            reply(failure(tr("Unknown action “%1”.").arg(name)));
            return;
        }
        // The answer first: an action may end the program (quit) or open a dialog.
        reply(success());
        QMetaObject::invokeMethod(this, *action, Qt::QueuedConnection);
    } else if (command == u"add") {
        reply(add(request));
    } else if (command == u"list") {
        reply(list(request));
    } else if (command == u"search") {
        search(request, reply);
    } else if (command == u"setDone") {
        reply(setDone(request));
    } else {
        reply(failure(tr("Unknown request “%1”.").arg(command)));
    }
}

qsizetype NoteRequests::projectFor(const QJsonObject &request, QString *error) const
{
    const Library &library = m_store.library();
    const QString name = request.value(QStringLiteral("project")).toString().trimmed();
    if (name.isEmpty()) {
        const qsizetype active = activeProjectIndex(library);
        if (active < 0)
            *error = tr("There are no projects.");
        return active;
    }
    for (qsizetype i = 0; i < library.projects.size(); ++i) {
        if (library.projects.at(i).name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    *error = tr("There is no project named “%1”.").arg(name);
    return -1;
}

QJsonObject NoteRequests::add(const QJsonObject &request)
{
    const QString text = request.value(QStringLiteral("text")).toString();
    if (text.trimmed().isEmpty())
        return failure(tr("The note is blank."));
    if (text.size() > maximumTextLength)
        return failure(
            tr("The note is too long: at most %n characters.", nullptr, int(maximumTextLength)));
    QString error;
    const qsizetype index = projectFor(request, &error);
    if (index < 0)
        return failure(error);
    const QString sectionTitle = request.value(QStringLiteral("section")).toString().trimmed();
    const Project project = m_store.library().projects.at(index);
    const std::optional<Note> note = m_store.addNoteToProject(project.id, text,
        sectionTitle.isEmpty() ? std::nullopt : std::optional<QString>(sectionTitle));
    if (!note)
        return failure(tr("The note could not be added."));
    QJsonObject answer = success();
    answer.insert(QStringLiteral("note"), noteObject(m_store.library(), note->id));
    return answer;
}

QJsonObject NoteRequests::list(const QJsonObject &request)
{
    QString error;
    const qsizetype index = projectFor(request, &error);
    if (index < 0)
        return failure(error);
    const Project &project = m_store.library().projects.at(index);
    const QString sectionTitle = request.value(QStringLiteral("section")).toString().trimmed();
    const bool includeDone = request.value(QStringLiteral("includeDone")).toBool();
    bool sectionFound = sectionTitle.isEmpty();
    QJsonArray notes;
    for (const NoteSection &section : project.sections) {
        if (!sectionTitle.isEmpty()
            && section.title.compare(sectionTitle, Qt::CaseInsensitive) != 0)
            continue;
        sectionFound = true;
        for (const Note &note : section.notes) {
            if (includeDone || !note.isDone)
                notes.append(noteObject(note, section, project));
        }
    }
    if (!sectionFound)
        return failure(
            tr("The project “%1” has no section titled “%2”.").arg(project.name, sectionTitle));
    QJsonObject answer = success();
    answer.insert(QStringLiteral("notes"), notes);
    return answer;
}

void NoteRequests::search(const QJsonObject &request, const Reply &reply)
{
    const QString query
        = SearchIndex::normalizedQuery(request.value(QStringLiteral("query")).toString());
    if (query.isEmpty()) {
        reply(failure(tr("The query is blank.")));
        return;
    }
    QString error;
    const qsizetype index = projectFor(request, &error);
    if (index < 0) {
        reply(failure(error));
        return;
    }
    const Library library = m_store.library();
    const Project project = library.projects.at(index);
    m_searchIndex.search(query, project, library, m_store.libraryRevision(), {}, this,
        [reply, project](const SearchMatches &matches) {
            QJsonArray notes;
            for (const NoteSection &section : project.sections) {
                const bool sectionMatches = matches.sectionIDs.contains(section.id);
                for (const Note &note : section.notes) {
                    if (sectionMatches || matches.noteIDs.contains(note.id))
                        notes.append(noteObject(note, section, project));
                }
            }
            QJsonObject answer = success();
            answer.insert(QStringLiteral("notes"), notes);
            reply(answer);
        });
}

QJsonObject NoteRequests::setDone(const QJsonObject &request)
{
    const QJsonValue done = request.value(QStringLiteral("done"));
    if (!done.isBool())
        return failure(tr("Say whether the notes are done (true or false)."));
    const QJsonArray given = request.value(QStringLiteral("ids")).toArray();
    if (given.isEmpty())
        return failure(tr("No note ids were given."));
    QList<QUuid> ids;
    for (const QJsonValue &value : given) {
        const QString text = value.toString();
        const QUuid id = QUuid::fromString(text);
        if (id.isNull() || !m_store.note(id))
            return failure(tr("No note has the id “%1”.").arg(text));
        if (!ids.contains(id))
            ids.append(id);
    }
    bool anyChange = false;
    for (const QUuid &id : std::as_const(ids))
        anyChange = anyChange || m_store.note(id)->isDone != done.toBool();
    if (anyChange)
        m_store.setDone(ids, done.toBool());
    QJsonObject answer = success();
    QJsonArray notes;
    for (const QUuid &id : std::as_const(ids))
        notes.append(noteObject(m_store.library(), id));
    answer.insert(QStringLiteral("notes"), notes);
    return answer;
}

} // namespace Vesko
