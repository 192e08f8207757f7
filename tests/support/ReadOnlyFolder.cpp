// SPDX-License-Identifier: GPL-3.0-or-later

#include "ReadOnlyFolder.h"

#include <QDir>
#include <QProcess>

namespace Vesko::Test {

namespace {

bool run(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("mount"), arguments);
    return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

} // namespace

ReadOnlyFolder::ReadOnlyFolder(const QString &path, const std::function<void()> &fill)
    : m_path(path)
{
    QDir().mkpath(path);
    if (!run({QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
            QStringLiteral("size=512k,mode=0755"), QStringLiteral("tmpfs"), path}))
        return;
    m_mounted = true;
    if (fill)
        fill();
    if (!run({QStringLiteral("-o"), QStringLiteral("remount,ro"), path})) {
        QProcess::execute(QStringLiteral("umount"), {path});
        m_mounted = false;
    }
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    if (m_mounted)
        QProcess::execute(QStringLiteral("umount"), {m_path});
}

} // namespace Vesko::Test
