// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps Vesko to one process per user and data folder. A lock held for the
// life of the process decides which launch runs: the kernel grants it to one
// process only and drops it when that process ends, however it ends. The
// running process listens on a local socket beside the lock, which carries
// nothing but "reopen" from later launches. Lock and socket live in a folder
// that only the user can enter.

#pragma once

#include <QObject>

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

    //! Lock and socket in \a folder; privateFolder() by default.
    explicit SingleInstance(const QString &folder = privateFolder(), QObject *parent = nullptr);
    //! Releases the lock.
    ~SingleInstance() override;

    //! The user's runtime folder ($XDG_RUNTIME_DIR) when it is the user's own
    //! and closed to others; else "Vesko/Instance" in the user's cache folder,
    //! made private (0700). Never a folder that other users share. Empty when
    //! there is no such folder.
    static QString privateFolder();
    //! The socket in privateFolder(), named after the data folder so that
    //! separate data folders (tests) run separate instances.
    static QString serverNameForSession();

    QString lockPath() const { return m_lockPath; }

    //! Takes the instance lock without waiting. Once acquired it is held
    //! until this object goes, or the process ends.
    Claim claim();
    //! Why claim() failed.
    QString failure() const { return m_failure; }

    //! Listens for later launches, taking the place of a socket that a
    //! process before this one left behind. Only after the lock is acquired.
    //! Returns the failure text, or nothing.
    std::optional<QString> listen();

    //! Sends "reopen" to the running instance, waiting up to
    //! \a timeoutMilliseconds for it to listen (it may be starting just now).
    //! False when it never answered.
    bool forwardReopen(int timeoutMilliseconds = 5000) const;

Q_SIGNALS:
    //! Another launch asked this instance to show itself.
    void reopenRequested();

private:
    void readConnection();

    QString m_folder;
    QString m_socketPath;
    QString m_lockPath;
    QString m_failure;
    int m_lock = -1;
    QLocalServer *m_server = nullptr;
};

} // namespace Vesko
