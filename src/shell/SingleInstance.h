// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps Vesko to one process per library file. A lock held for the life of
// the process decides which launch runs: the kernel grants it to one process
// only and drops it when that process ends, however it ends. Lock and socket
// are named after the library file, with every link on the way resolved, and
// live in a folder that only the user can enter and that the session's
// environment does not choose, so that two launches with the same library
// meet whatever their environment. The running process listens on the
// socket, which carries "reopen" from later launches, and the requests of
// the command line where there is no session bus, each answered on one line.

#pragma once

#include <QObject>

#include <functional>
#include <optional>

class QLocalServer;

namespace Vesko {

class SingleInstance : public QObject
{
    Q_OBJECT

public:
    //! The outcome of claim().
    enum class Claim {
        Acquired, //!< this process runs
        HeldElsewhere, //!< another process runs: hand it "reopen" and end
        Failed, //!< the lock could not be taken at all; see failure()
    };

    //! How long a launch whose "reopen" went unanswered waits for the lock
    //! of a process that is ending.
    static constexpr int handOverMilliseconds = 3000;

    //! The instance of the library file at \a libraryPath, with its lock and
    //! socket in \a folder (privateFolder() by default).
    explicit SingleInstance(const QString &libraryPath, const QString &folder = privateFolder(),
        QObject *parent = nullptr);
    //! Releases the lock.
    ~SingleInstance() override;

    //! The user's runtime folder of the system, \a runtimeRoot/UID, when it
    //! is the user's own and closed to others; else "vesko-UID" in
    //! \a temporaryRoot, made 0700 and checked to be the user's own; else
    //! "Vesko/Instance" in the user's cache folder, made 0700. Never a folder
    //! that others may enter; empty when there is none. $XDG_RUNTIME_DIR
    //! does not count: two launches with different ones must still meet.
    static QString privateFolder(const QString &runtimeRoot, const QString &temporaryRoot);
    //! privateFolder() under /run/user and /tmp.
    static QString privateFolder();
    //! The name of the lock and the socket of the library at \a libraryPath:
    //! "vesko-" and a hash of where the path leads.
    static QString instanceName(const QString &libraryPath);

    QString lockPath() const { return m_lockPath; }
    //! In the instance's folder; in a shorter private one when the path
    //! would pass the length that a socket's address can hold.
    QString socketPath() const { return m_socketPath; }

    //! Takes the instance lock without waiting. Once acquired it is held
    //! until this object goes, or the process ends.
    Claim claim();
    //! Tries claim() again until it is acquired or \a milliseconds have passed.
    Claim claimWithin(int milliseconds);
    //! Why claim() failed.
    QString failure() const { return m_failure; }

    //! Listens for later launches, taking the place of a socket that a
    //! process before this one left behind. Only after the lock is acquired.
    //! Returns the failure text, or nothing.
    std::optional<QString> listen();

    //! Sends "reopen" to the running instance and waits up to
    //! \a timeoutMilliseconds for its answer (it may be starting just now).
    //! False when it never answered: it may be ending, see claimWithin().
    bool forwardReopen(int timeoutMilliseconds = 10000) const;

    //! The library file is now \a libraryPath: takes that file's lock and
    //! listens on its socket instead, so that later launches with the moved
    //! library find this process. False, keeping the old lock, when another
    //! process holds the new one.
    bool followLibrary(const QString &libraryPath);

    //! Answers a request line (without its line end) by calling the second
    //! argument once with the answer line.
    using RequestHandler
        = std::function<void(const QByteArray &, std::function<void(const QByteArray &)>)>;
    //! Serves the lines other than "reopen" with \a handler.
    void setRequestHandler(RequestHandler handler) { m_requestHandler = std::move(handler); }

    //! Sends the request \a line to the running instance and returns its
    //! answer line, or nothing when no instance took it within
    //! \a timeoutMilliseconds.
    std::optional<QByteArray> sendRequest(const QByteArray &line, int timeoutMilliseconds) const;

Q_SIGNALS:
    //! Another launch asked this instance to show itself.
    void reopenRequested();

private:
    void setName(const QString &name);
    //! Opens and locks the lock file at \a path without waiting; the
    //! descriptor, or -1 with errno set.
    static int lockFile(const QString &path);
    void readConnection();

    QString m_folder;
    QString m_name;
    QString m_socketPath;
    QString m_lockPath;
    QString m_failure;
    int m_lock = -1;
    QLocalServer *m_server = nullptr;
    RequestHandler m_requestHandler;
};

} // namespace Vesko
