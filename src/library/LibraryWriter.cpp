// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryWriter.h"

#include "library/LibraryFile.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QPointer>

namespace Vesko {

LibraryWriter::LibraryWriter()
    : m_queue(std::make_unique<SerialQueue>(
        QStringLiteral("com.vesko.vesko.library-writer"), QThread::LowPriority))
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
    m_queue->async([library, path, receiver, completion = std::move(completion)] {
        std::optional<QString> failure = writeLibrary(library, path);
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
    m_queue->async([library, path, receiver, completion = std::move(completion)] {
        std::optional<QString> failure = writeLibrary(library, path);
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
    return m_queue->sync([&library, &path] { return writeLibrary(library, path); });
}

} // namespace Vesko
