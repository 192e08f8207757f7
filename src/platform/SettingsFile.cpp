// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/SettingsFile.h"

#include "platform/SerialQueue.h"

#include <QHash>
#include <QMutex>
#include <QStandardPaths>

#include <atomic>

namespace Vesko {

namespace {

//! The values given to a writer and not yet taken by its thread, process-wide,
//! each with the number of its write: what a reader of the file must see.
struct PendingValues
{
    QMutex mutex;
    QHash<QString, std::pair<quint64, QVariant>> values;
    quint64 writes = 0;
};

PendingValues &pending()
{
    static PendingValues values;
    return values;
}

} // namespace

std::unique_ptr<QSettings> openSettingsFile()
{
    // Named by hand: IniFormat with an organisation and application would be Vesko.ini.
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vesko/Vesko.conf");
    return std::make_unique<QSettings>(path, QSettings::IniFormat);
}

//! The queue thread's side: the file, opened there on first use, and how
//! many values are still on their way to it.
struct SettingsWriter::Worker
{
    std::unique_ptr<QSettings> settings;
    std::atomic_int pending = 0;
};

SettingsWriter::SettingsWriter()
    : m_worker(std::make_shared<Worker>())
    , m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.settings")))
{ }

SettingsWriter::~SettingsWriter()
{
    // Closed on the thread it was opened on, which writes what is left.
    m_queue->sync([worker = m_worker] { worker->settings.reset(); });
}

SettingsWriter &SettingsWriter::shared()
{
    static SettingsWriter *const writer = new SettingsWriter;
    return *writer;
}

QVariant settingValue(const QString &key)
{
    {
        PendingValues &values = pending();
        const QMutexLocker locker(&values.mutex);
        if (const auto found = values.values.constFind(key); found != values.values.cend())
            return found->second;
    }
    return openSettingsFile()->value(key);
}

void SettingsWriter::setValue(const QString &key, const QVariant &value)
{
    quint64 write = 0;
    {
        PendingValues &values = pending();
        const QMutexLocker locker(&values.mutex);
        write = ++values.writes;
        values.values.insert(key, {write, value});
    }
    ++m_worker->pending;
    m_queue->async([worker = m_worker, key, value, write] {
        if (!worker->settings)
            worker->settings = openSettingsFile();
        worker->settings->setValue(key, value);
        {
            // Taken: every QSettings of the process sees it from now on.
            PendingValues &values = pending();
            const QMutexLocker locker(&values.mutex);
            if (values.values.value(key).first == write)
                values.values.remove(key);
        }
        // The last of a burst writes the file for all of them.
        if (--worker->pending == 0)
            worker->settings->sync();
    });
}

void SettingsWriter::flush()
{
    m_queue->sync([worker = m_worker] {
        if (worker->settings)
            worker->settings->sync();
    });
}

} // namespace Vesko
