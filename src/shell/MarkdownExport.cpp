// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/MarkdownExport.h"

#include "platform/FileSystem.h"
#include "platform/SerialQueue.h"
#include "shell/Toast.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>
#include <QUuid>

#include <sys/stat.h>

namespace Vesko {

namespace {

SerialQueue &exportQueue()
{
    static SerialQueue *const queue
        = new SerialQueue(QStringLiteral("com.vesko.vesko.markdown-export"));
    return *queue;
}

} // namespace

std::optional<QString> writeMarkdownFile(const QString &path, const QString &text)
{
    const QFileInfo target(path);
    const QString temporary = target.absolutePath() + QStringLiteral("/.") + target.fileName()
        + u'.' + QUuid::createUuid().toString(QUuid::WithoutBraces);
    // An exported document is the user's to share: it gets the usual mode.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (auto failure = FileSystem::writeNewFile(
            temporary, text.toUtf8(), FileSystem::Durability::Flushed, 0666 & ~mask))
        return failure;
    if (auto failure = FileSystem::replaceFile(temporary, path)) {
        QFile::remove(temporary);
        return failure;
    }
    return std::nullopt;
}

void exportMarkdown(QWidget *parent, const QString &text)
{
    auto *dialog = new QFileDialog(parent, QObject::tr("Export as Markdown"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setMimeTypeFilters({QStringLiteral("text/markdown"), QStringLiteral("text/plain")});
    dialog->setDefaultSuffix(QStringLiteral("md"));
    dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog->selectFile(QStringLiteral("Vesko Notes.md"));
    QPointer<QWidget> owner(parent);
    QObject::connect(
        dialog, &QFileDialog::fileSelected, dialog, [owner, text](const QString &path) {
            exportQueue().async([path, text, owner] {
                const std::optional<QString> failure = writeMarkdownFile(path, text);
                QMetaObject::invokeMethod(
                    qApp,
                    [failure, owner] {
                        if (!failure) {
                            ToastPresenter::shared().present(QObject::tr("Exported"),
                                QStringLiteral("square.and.arrow.up"),
                                ToastPresenter::standardDurationMilliseconds);
                            return;
                        }
                        auto *box = new QMessageBox(QMessageBox::Warning,
                            QObject::tr("Could Not Export"), *failure, QMessageBox::Ok, owner);
                        box->setAttribute(Qt::WA_DeleteOnClose);
                        box->open();
                    },
                    Qt::QueuedConnection);
            });
        });
    dialog->open();
}

} // namespace Vesko
