// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11DesktopEntries.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace Vesko {

namespace {

//! The keys of a desktop file's [Desktop Entry] group.
struct DesktopFile
{
    QHash<QString, QString> values;

    explicit DesktopFile(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return;
        bool inEntry = false;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).trimmed();
            if (line.startsWith(u'[')) {
                inEntry = line == u"[Desktop Entry]";
                continue;
            }
            if (!inEntry || line.startsWith(u'#'))
                continue;
            const qsizetype equals = line.indexOf(u'=');
            if (equals > 0)
                values.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }

    //! The value of \a key, localised when a translation for the user's language is there.
    QString localized(const QString &key) const
    {
        const QString full = QLocale().name(); // de_DE
        for (const QString &variant : {full, full.section(u'_', 0, 0)}) {
            const auto found = values.constFind(key + u'[' + variant + u']');
            if (found != values.constEnd())
                return *found;
        }
        return values.value(key);
    }
};

} // namespace

void X11DesktopEntries::load()
{
    m_loaded = true;
    const QStringList folders = QStandardPaths::locateAll(
        QStandardPaths::ApplicationsLocation, QString(), QStandardPaths::LocateDirectory);
    // The first folder wins, as in the desktop's own lookup.
    for (const QString &folder : folders) {
        const QDir dir(folder);
        for (const QFileInfo &info :
            dir.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files)) {
            const QString id = info.completeBaseName();
            if (m_byID.contains(id))
                continue;
            const DesktopFile file(info.filePath());
            Entry entry;
            entry.id = id;
            entry.name = file.localized(QStringLiteral("Name"));
            entry.isTerminal = file.values.value(QStringLiteral("Categories"))
                                   .split(u';')
                                   .contains(QStringLiteral("TerminalEmulator"));
            m_byID.insert(id, entry);
            const QString windowClass = file.values.value(QStringLiteral("StartupWMClass"));
            if (!windowClass.isEmpty() && !m_byWindowClass.contains(windowClass.toLower()))
                m_byWindowClass.insert(windowClass.toLower(), entry);
        }
    }
}

std::optional<X11DesktopEntries::Entry> X11DesktopEntries::find(
    const QStringList &candidates, const QString &windowClass)
{
    if (!m_loaded)
        load();
    for (const QString &candidate : candidates) {
        QString id = candidate;
        if (id.endsWith(QLatin1String(".desktop")))
            id.chop(8);
        const auto found = m_byID.constFind(id);
        if (found != m_byID.constEnd())
            return *found;
    }
    const auto byClass = m_byWindowClass.constFind(windowClass.toLower());
    if (byClass != m_byWindowClass.constEnd())
        return *byClass;
    for (const QString &candidate : candidates) {
        const auto found = m_byID.constFind(candidate.toLower());
        if (found != m_byID.constEnd())
            return *found;
    }
    return std::nullopt;
}

} // namespace Vesko
