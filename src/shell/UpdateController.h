// SPDX-License-Identifier: GPL-3.0-or-later
//
// The update offer of the program. Software on Linux is updated by the
// package manager, so this build has no updater: start() leaves it stopped,
// checks and installs do nothing, and Settings and the tray menu show no
// update controls. The interface stays for a build that has an updater.

#pragma once

#include <QObject>

#include <functional>

namespace Vesko {

class UpdateController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isStarted READ isStarted NOTIFY isStartedChanged)
    Q_PROPERTY(bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates WRITE
            setAutomaticallyChecksForUpdates NOTIFY automaticallyChecksForUpdatesChanged)
    Q_PROPERTY(
        bool updateReadyToInstall READ updateReadyToInstall NOTIFY updateReadyToInstallChanged)

public:
    explicit UpdateController(QObject *parent = nullptr);

    //! The one instance of the process, made on first use and never destroyed.
    static UpdateController &shared();

    //! Starts the updater where the build has one; here it stays stopped.
    void start();
    //! A check on request; nothing while not started.
    void checkForUpdates();
    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    //! Dropped while not started, so the setting stays off.
    void setAutomaticallyChecksForUpdates(bool checks);
    //! Installs a staged update now, where there is one.
    void installUpdate();

    bool isStarted() const { return m_isStarted; }
    bool updateReadyToInstall() const { return m_updateReadyToInstall; }
    //! This build can update itself; false on Linux.
    static constexpr bool hasUpdater = false;

Q_SIGNALS:
    void isStartedChanged();
    void automaticallyChecksForUpdatesChanged();
    void updateReadyToInstallChanged();

private:
    bool m_isStarted = false;
    bool m_automaticallyChecksForUpdates = false;
    bool m_updateReadyToInstall = false;
    std::function<void()> m_immediateInstallation;
};

} // namespace Vesko
