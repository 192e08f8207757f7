// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11DesktopEntries.h"

#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <utility>

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

X11DesktopEntries::Index X11DesktopEntries::Index::read(const QStringList &folders)
{
    Index index;
    for (const QString &folder : folders) {
        const QDir dir(folder);
        for (const QFileInfo &info :
            dir.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files)) {
            const QString id = info.completeBaseName();
            if (index.byID.contains(id))
                continue;
            const DesktopFile file(info.filePath());
            Entry entry;
            entry.id = id;
            entry.name = file.localized(QStringLiteral("Name"));
            entry.isTerminal = file.values.value(QStringLiteral("Categories"))
                                   .split(u';')
                                   .contains(QStringLiteral("TerminalEmulator"));
            index.byID.insert(id, entry);
            const QString windowClass = file.values.value(QStringLiteral("StartupWMClass"));
            if (!windowClass.isEmpty() && !index.byWindowClass.contains(windowClass.toLower()))
                index.byWindowClass.insert(windowClass.toLower(), entry);
        }
    }
    return index;
}

std::optional<X11DesktopEntries::Entry> X11DesktopEntries::Index::find(
    const QStringList &candidates, const QString &windowClass) const
{
    for (const QString &candidate : candidates) {
        QString id = candidate;
        if (id.endsWith(QLatin1String(".desktop")))
            id.chop(8);
        const auto found = byID.constFind(id);
        if (found != byID.constEnd())
            return *found;
    }
    const auto byClass = byWindowClass.constFind(windowClass.toLower());
    if (byClass != byWindowClass.constEnd())
        return *byClass;
    for (const QString &candidate : candidates) {
        const auto found = byID.constFind(candidate.toLower());
        if (found != byID.constEnd())
            return *found;
    }
    return std::nullopt;
}

X11DesktopEntries::X11DesktopEntries(std::function<Index()> read)
    : m_receiver(std::make_unique<QObject>())
{
    static SerialQueue queue(
        QStringLiteral("com.vesko.vesko.desktop-entries"), QThread::LowPriority);
    if (!read) {
        read = [] {
            return Index::read(QStandardPaths::locateAll(
                QStandardPaths::ApplicationsLocation, QString(), QStandardPaths::LocateDirectory));
        };
    }
    QPointer<QObject> receiver(m_receiver.get());
    queue.async([this, receiver, read] {
        auto index = std::make_shared<const Index>(read());
        // The receiver is looked at on the main thread only, where it lives.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this, receiver, index] {
                if (receiver)
                    take(index);
            },
            Qt::QueuedConnection);
    });
}

X11DesktopEntries::~X11DesktopEntries() = default;

void X11DesktopEntries::take(std::shared_ptr<const Index> index)
{
    m_index = std::move(index);
    const QList<Lookup> waiting = std::exchange(m_waiting, {});
    for (const Lookup &lookup : waiting)
        lookup.found(m_index->find(lookup.candidates, lookup.windowClass));
}

void X11DesktopEntries::find(const QStringList &candidates, const QString &windowClass, Found found)
{
    if (m_index) {
        found(m_index->find(candidates, windowClass));
        return;
    }
    const quint64 number = ++m_lookups;
    m_waiting.append({number, candidates, windowClass, std::move(found)});
    // A folder that does not answer (a network mount, say) holds no capture for long.
    QTimer::singleShot(lookupTimeoutMilliseconds, m_receiver.get(), [this, number] {
        const auto late = std::find_if(m_waiting.begin(), m_waiting.end(),
            [number](const Lookup &lookup) { return lookup.number == number; });
        if (late == m_waiting.end())
            return;
        const Found found = std::move(late->found);
        m_waiting.erase(late);
        found(std::nullopt);
    });
}

bool X11DesktopEntries::isTerminalClass(const QString &windowClass)
{
    return Vesko::isTerminalClass(windowClass);
}

} // namespace Vesko
