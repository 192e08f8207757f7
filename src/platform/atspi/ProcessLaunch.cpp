// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atspi/ProcessLaunch.h"

#include <QFile>
#include <QFileInfo>

namespace Vesko {

namespace {

//! A process's environment is bounded by the kernel's own limit on
//! arguments; this reads no more than that.
constexpr qint64 maxEnvironmentBytes = 2 * 1024 * 1024;

QByteArray procFile(qint64 processID, const char *name, qint64 limit)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(processID).arg(QLatin1String(name)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(limit);
}

std::optional<QString> launchedDesktopFile(qint64 processID)
{
    QByteArray file;
    QByteArray launchedBy;
    const QByteArray environment = procFile(processID, "environ", maxEnvironmentBytes);
    for (const QByteArray &entry : environment.split('\0')) {
        if (entry.startsWith("GIO_LAUNCHED_DESKTOP_FILE="))
            file = entry.mid(qstrlen("GIO_LAUNCHED_DESKTOP_FILE="));
        else if (entry.startsWith("GIO_LAUNCHED_DESKTOP_FILE_PID="))
            launchedBy = entry.mid(qstrlen("GIO_LAUNCHED_DESKTOP_FILE_PID="));
    }
    if (file.isEmpty() || launchedBy.toLongLong() != processID)
        return std::nullopt;
    const QString name = QFileInfo(QString::fromLocal8Bit(file)).fileName();
    if (!name.endsWith(QLatin1String(".desktop")))
        return std::nullopt;
    return name.chopped(qstrlen(".desktop"));
}

} // namespace

std::optional<QString> applicationIDOfUnit(const QString &unit)
{
    QString stem;
    if (unit.endsWith(QLatin1String(".scope"))) {
        stem = unit.chopped(qstrlen(".scope"));
        // The random part after the last dash.
        const qsizetype dash = stem.lastIndexOf(QLatin1Char('-'));
        if (dash < 0)
            return std::nullopt;
        stem.truncate(dash);
    } else if (unit.endsWith(QLatin1String(".service"))) {
        stem = unit.chopped(qstrlen(".service"));
        const qsizetype at = stem.indexOf(QLatin1Char('@'));
        if (at >= 0)
            stem.truncate(at);
    } else {
        return std::nullopt;
    }
    if (!stem.startsWith(QLatin1String("app-")))
        return std::nullopt;
    // The id is the last part: its own dashes are escaped.
    const QString id = stem.mid(stem.lastIndexOf(QLatin1Char('-')) + 1)
                           .replace(QLatin1String("\\x2d"), QLatin1String("-"));
    if (id.isEmpty())
        return std::nullopt;
    return id;
}

QStringList launchedDesktopEntries(qint64 processID)
{
    QStringList ids;
    if (processID <= 0)
        return ids;
    if (const std::optional<QString> file = launchedDesktopFile(processID))
        ids.append(*file);
    // cgroup v2: "0::/user.slice/…/app.slice/app-gnome-org.gnome.Terminal-4242.scope"
    const QByteArray groups = procFile(processID, "cgroup", 64 * 1024);
    for (const QByteArray &line : groups.split('\n')) {
        const QString path = QString::fromUtf8(line.mid(line.lastIndexOf(':') + 1));
        const std::optional<QString> id = applicationIDOfUnit(path.section(QLatin1Char('/'), -1));
        if (id && !ids.contains(*id))
            ids.append(*id);
    }
    return ids;
}

} // namespace Vesko
