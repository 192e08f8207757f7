// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps Vesko to one process per user and data folder. The first process
// listens on a local socket that only its user can reach; a later one sends
// "reopen" to it and ends.

#pragma once

#include <QObject>

#include <optional>

class QLocalServer;

namespace Vesko {

class SingleInstance : public QObject
{
    Q_OBJECT

public:
    //! \a serverName is a socket path or name; serverNameForSession() by default.
    explicit SingleInstance(
        const QString &serverName = serverNameForSession(), QObject *parent = nullptr);
    ~SingleInstance() override;

    //! A socket in the user's runtime folder, named after the data folder so
    //! that separate data folders (tests) run separate instances.
    static QString serverNameForSession();

    //! Sends "reopen" to a running instance; false when none answers.
    bool forwardReopen(int timeoutMilliseconds = 2000) const;
    //! Starts listening, taking over a socket that no process serves any more.
    //! Returns the failure text, or nothing.
    std::optional<QString> listen();

Q_SIGNALS:
    //! Another launch asked this instance to show itself.
    void reopenRequested();

private:
    void readConnection();

    QString m_serverName;
    QLocalServer *m_server = nullptr;
};

} // namespace Vesko
