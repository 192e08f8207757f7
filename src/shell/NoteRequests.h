// SPDX-License-Identifier: GPL-3.0-or-later
//
// What other programs may ask of the running Vesko, served from its Store:
// add a note, list or search notes, mark notes done, and run an action of
// the panel. A request and its answer are JSON objects, so that the session
// bus, the local socket and the agents' server carry the same thing. Bad
// input is an answer with an error text, never a change.

#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>

#include <functional>

namespace Vesko {

class SearchIndex;
class Store;
struct Note;

class NoteRequests : public QObject
{
    Q_OBJECT

public:
    //! The longest note that a request may add, in UTF-16 units.
    static constexpr qsizetype maximumTextLength = 1 << 20;

    using Reply = std::function<void(const QJsonObject &answer)>;
    //! The actions by name ("toggle", "show", ...).
    using Actions = QHash<QString, std::function<void()>>;

    NoteRequests(Store &store, SearchIndex &searchIndex, QObject *parent = nullptr);

    void setActions(const Actions &actions) { m_actions = actions; }
    bool hasAction(const QString &name) const { return m_actions.contains(name); }

    //! Serves \a request and calls \a reply once with the answer: at once, or
    //! later for a search. Requests:
    //!   {"command": "action", "name": N}
    //!   {"command": "add", "text": T, "section"?: S, "project"?: P}
    //!   {"command": "list", "project"?: P, "section"?: S, "includeDone"?: B}
    //!   {"command": "search", "query": Q, "project"?: P}
    //!   {"command": "setDone", "ids": [ID...], "done": B}
    //! Answers: {"ok": true, ...} with "note" or "notes", or {"ok": false,
    //! "error": TEXT}. A note is {"id", "text", "section", "project", "done"}.
    void handle(const QJsonObject &request, const Reply &reply);

    static QJsonObject failure(const QString &message);

private:
    QJsonObject add(const QJsonObject &request);
    QJsonObject list(const QJsonObject &request);
    void search(const QJsonObject &request, const Reply &reply);
    QJsonObject setDone(const QJsonObject &request);
    //! The index of the project named in \a request, the active one without a
    //! name; -1 with \a error set when there is none of that name.
    qsizetype projectFor(const QJsonObject &request, QString *error) const;

    Store &m_store;
    SearchIndex &m_searchIndex;
    Actions m_actions;
};

} // namespace Vesko
