// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/UpdateController.h"

namespace Vesko {

UpdateController::UpdateController(QObject *parent)
    : QObject(parent)
{ }

UpdateController &UpdateController::shared()
{
    static UpdateController *const controller = new UpdateController;
    return *controller;
}

void UpdateController::start()
{
    if (m_isStarted || !hasUpdater)
        return;
    m_isStarted = true;
    Q_EMIT isStartedChanged();
}

void UpdateController::checkForUpdates()
{
    // Without an updater there is nothing to ask, and nothing is shown.
}

void UpdateController::setAutomaticallyChecksForUpdates(bool checks)
{
    if (!m_isStarted || checks == m_automaticallyChecksForUpdates)
        return;
    m_automaticallyChecksForUpdates = checks;
    Q_EMIT automaticallyChecksForUpdatesChanged();
}

void UpdateController::installUpdate()
{
    if (m_immediateInstallation)
        m_immediateInstallation();
}

} // namespace Vesko
