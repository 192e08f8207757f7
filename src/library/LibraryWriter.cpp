// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryWriter.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "platform/Logging.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>

namespace Vesko {

LibraryWriter::LibraryWriter()
    : m_queue(std::make_unique<SerialQueue>(
        QStringLiteral("com.vesko.vesko.library-writer"), QThread::LowPriority))
    , m_encoded(std::make_shared<EncodedSections>())
{ }

LibraryWriter::~LibraryWriter() = default;

LibraryWriter &LibraryWriter::shared()
{
    // Never destroyed: a write may still be running when the process exits.
    static LibraryWriter *const writer = new LibraryWriter;
    return *writer;
}

void LibraryWriter::write(
    const Library &library, const QString &path, QObject *context, Completion completion)
{
    QPointer<QObject> receiver(context);
    m_queue->async([library, path, receiver, completion = std::move(completion),
                       kept = m_keptBackups, encoded = m_encoded] {
        std::optional<QString> failure = writeLibrary(library, path, *kept, encoded.get());
        // The receiver is looked at on the main thread only, where it lives.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [receiver, completion, failure] {
                if (receiver)
                    completion(failure);
            },
            Qt::QueuedConnection);
    });
}

void LibraryWriter::writeThenRead(
    const Library &library, const QString &path, QObject *context, ReadBackCompletion completion)
{
    QPointer<QObject> receiver(context);
    m_queue->async([library, path, receiver, completion = std::move(completion),
                       kept = m_keptBackups, encoded = m_encoded] {
        std::optional<QString> failure = writeLibrary(library, path, *kept, encoded.get());
        Library readBack;
        if (!failure) {
            QString error;
            if (std::optional<Library> read = readLibraryFile(path, &error))
                readBack = *std::move(read);
            else
                failure = QObject::tr("Could not read “%1” back: %2").arg(path, error);
        }
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [receiver, completion, failure, readBack] {
                if (receiver)
                    completion(failure, readBack);
            },
            Qt::QueuedConnection);
    });
}

std::optional<QString> LibraryWriter::writeNow(const Library &library, const QString &path)
{
    return m_queue->sync([&library, &path, kept = m_keptBackups, encoded = m_encoded] {
        return writeLibrary(library, path, *kept, encoded.get());
    });
}

void LibraryWriter::keepBackups(const QStringList &paths)
{
    m_queue->async([paths, kept = m_keptBackups] { *kept = paths; });
}

void LibraryWriter::noteUnreadableLibrary(
    const QString &libraryPath, const std::optional<UnreadableLibrary> &unreadable)
{
    m_queue->async([libraryPath, unreadable] {
        if (auto failure = writeUnreadableLibraryNote(libraryPath, unreadable))
            qCWarning(lcStorage, "Could not note the unreadable library beside %s: %s",
                qUtf8Printable(libraryPath), qUtf8Printable(*failure));
    });
}

void LibraryWriter::readFirstReadable(
    const QStringList &paths, QObject *context, FindCompletion completion)
{
    QPointer<QObject> receiver(context);
    m_queue->async([paths, receiver, completion = std::move(completion)] {
        std::optional<Found> found;
        QStringList failures;
        for (const QString &path : paths) {
            QString error;
            if (std::optional<Library> library = readLibraryFile(path, &error)) {
                found = Found {*std::move(library), path};
                break;
            }
            failures.append(QStringLiteral("%1: %2").arg(QFileInfo(path).fileName(), error));
        }
        const QString failure = found ? QString() : failures.join(u'\n');
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [receiver, completion, found, failure] {
                if (receiver)
                    completion(found, failure);
            },
            Qt::QueuedConnection);
    });
}

} // namespace Vesko
