// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command line's side of a command: reaches the running Vesko over the
// session bus, or over its local socket where there is no bus, starts one
// when none runs, and waits for each step within a bound. Nothing here
// touches the library file: every change is the running instance's.

#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace Vesko {

struct CommandLineRequest;

class InstanceClient
{
public:
    //! How long a started instance may take to answer.
    static constexpr int startMilliseconds = 30000;
    //! How long one request may take.
    static constexpr int requestMilliseconds = 20000;

    //! A client of the instance of the library at \a libraryPath, which
    //! starts \a program with "--background" when none runs.
    InstanceClient(const QString &libraryPath, const QString &program);

    //! Sends \a request (see NoteRequests) and returns the answer; an answer
    //! with "ok" false and an "error" text when no instance could take it.
    QJsonObject send(const QJsonObject &request);
    //! Runs the action \a name (ActivateAction on the bus).
    QJsonObject activateAction(const QString &name);

    //! Whether the process that owns the bus name serves the library at \a libraryPath.
    static bool busServes(const QString &libraryPath);

private:
    enum class Road { None, Bus, Socket };
    //! How the instance is reached now, without starting one.
    Road road() const;
    //! road(), starting an instance when none answers; None with m_failure set.
    Road reach();
    //! Asks the bus to start the service; false where it cannot.
    bool activateOnBus();
    //! Starts "PROGRAM --background" on its own.
    bool launch();
    QJsonObject sendOnSocket(const QJsonObject &request);

    QString m_libraryPath;
    QString m_program;
    QString m_failure;
};

//! Runs the client command \a request and returns the exit status; prints
//! the result on standard output and any failure on standard error.
int runClientCommand(const CommandLineRequest &request, const QString &libraryPath);

} // namespace Vesko
