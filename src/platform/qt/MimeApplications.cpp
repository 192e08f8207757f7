// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/MimeApplications.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QMimeDatabase>
#include <QSet>
#include <QStandardPaths>

namespace Vesko::MimeApplications {

namespace {

//! The entries of the groups of a desktop-style file: group, then key and value.
using Groups = QHash<QString, QHash<QString, QString>>;

Groups readGroups(const QString &path)
{
    Groups groups;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return groups;
    QString group;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.mid(1, line.size() - 2);
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0)
            groups[group].insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return groups;
}

QStringList entries(const QString &value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

//! The desktop entry \a id, found in one of \a folders.
bool desktopEntryExists(const QString &id, const QStringList &folders)
{
    QString nested = id;
    nested.replace(u'-', u'/');
    for (const QString &folder : folders) {
        if (QFile::exists(folder + u'/' + id) || QFile::exists(folder + u'/' + nested))
            return true;
    }
    return false;
}

} // namespace

QStringList typesOf(const QString &path)
{
    const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(path);
    QStringList types {type.name()};
    types += type.aliases();
    types += type.allAncestors();
    return types;
}

bool hasApplicationFor(const QStringList &types)
{
    const QStringList applicationFolders
        = QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    // The user's lists first: what they remove stays removed below them.
    QStringList lists;
    for (const QString &folder :
        QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        lists.append(folder + QStringLiteral("/mimeapps.list"));
    for (const QString &folder : applicationFolders)
        lists.append(folder + QStringLiteral("/mimeapps.list"));

    QSet<QString> removed;
    for (const QString &list : std::as_const(lists)) {
        const Groups groups = readGroups(list);
        for (const QString &type : types) {
            for (const char *group : {"Default Applications", "Added Associations"}) {
                for (const QString &id :
                    entries(groups.value(QLatin1String(group)).value(type))) {
                    if (!removed.contains(type + u'/' + id)
                        && desktopEntryExists(id, applicationFolders))
                        return true;
                }
            }
            for (const QString &id : entries(groups.value(QStringLiteral("Removed Associations"))
                                                 .value(type)))
                removed.insert(type + u'/' + id);
        }
    }

    for (const QString &folder : applicationFolders) {
        const QString cache = folder + QStringLiteral("/mimeinfo.cache");
        if (QFile::exists(cache)) {
            const QHash<QString, QString> known
                = readGroups(cache).value(QStringLiteral("MIME Cache"));
            for (const QString &type : types) {
                for (const QString &id : entries(known.value(type))) {
                    if (!removed.contains(type + u'/' + id))
                        return true;
                }
            }
            continue;
        }
        // A folder without the cache, as the user's own often is.
        QDirIterator it(folder, {QStringLiteral("*.desktop")}, QDir::Files,
            QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const QHash<QString, QString> entry
                = readGroups(path).value(QStringLiteral("Desktop Entry"));
            if (entry.value(QStringLiteral("Hidden")) == u"true")
                continue;
            QString id = QDir(folder).relativeFilePath(path);
            id.replace(u'/', u'-');
            for (const QString &type : entries(entry.value(QStringLiteral("MimeType")))) {
                if (types.contains(type) && !removed.contains(type + u'/' + id))
                    return true;
            }
        }
    }
    return false;
}

} // namespace Vesko::MimeApplications
