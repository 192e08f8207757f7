// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command line's side of a command: reaches the running Vesko over the
// session bus, or over its local socket where there is no bus, starts one
// when none runs, and waits for each step within a bound. Nothing here
// touches the library file: every change is the running instance's.

#pragma once

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace Vesko {

struct CommandLineRequest;

class InstanceClient
{
public:
    //! The variable in which launch() tells the Vesko it starts which
    //! command process it is for.
    static constexpr char startedForVariable[] = "VESKO_STARTED_FOR";
    //! Whether this process was started by launch() for a command that has
    //! ended since: another Vesko took the request, and may have been quit.
    static bool commandHasEnded();

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
    //! Whether an action starts Vesko when none runs.
    enum class Start { IfNoneRuns, Never };
    //! Runs the action \a name (ActivateAction on the bus). With Start::Never
    //! and no instance running, does nothing and answers "ok" with "ran" false.
    QJsonObject activateAction(const QString &name, Start start = Start::IfNoneRuns);

    //! Whether the process that owns the bus name serves the library at \a libraryPath.
    static bool busServes(const QString &libraryPath);

private:
    enum class Road { None, Bus, Socket };
    //! What the owner of the bus name says, within \a deadline.
    enum class BusAnswer { NoOne, Serves, Other, Silent };
    static BusAnswer answerOnBus(const QString &libraryPath, const QDeadlineTimer &deadline);
    //! How the instance is reached now, without starting one, within \a
    //! deadline; sets m_silent when something is there but does not answer.
    Road road(const QDeadlineTimer &deadline);
    //! road(), starting an instance when none answers; None with m_failure set.
    Road reach();
    //! Asks the bus to start the service; false where it cannot.
    bool activateOnBus(const QDeadlineTimer &deadline);
    //! Starts "PROGRAM --background" on its own, with startedForVariable
    //! naming this process.
    bool launch();
    QJsonObject sendOnSocket(const QJsonObject &request);

    QString m_libraryPath;
    QString m_program;
    QString m_failure;
    bool m_silent = false;
};

//! Runs the client command \a request and returns the exit status; prints
//! the result on standard output and any failure on standard error.
int runClientCommand(const CommandLineRequest &request, const QString &libraryPath);

} // namespace Vesko
