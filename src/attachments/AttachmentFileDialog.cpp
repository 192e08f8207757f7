// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentFileDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QStandardPaths>

namespace Vesko {

AttachmentFileDialog::AttachmentFileDialog(QObject *parent)
    : QObject(parent)
{ }

AttachmentFileDialog::~AttachmentFileDialog()
{
    if (m_dialog)
        m_dialog->deleteLater();
}

void AttachmentFileDialog::chooseFiles(std::function<void(const QList<QUrl> &files)> done)
{
    // One dialog at a time: a second request brings the open one forward.
    if (m_dialog) {
        m_dialog->raise();
        m_dialog->activateWindow();
        done({});
        return;
    }
    // Kept above the window it was asked from (the panel, or a note's
    // window), which stays usable meanwhile: the dialog blocks nothing.
    auto *dialog = new QFileDialog(QApplication::activeWindow(), tr("Add Attachments"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::NonModal);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setLabelText(QFileDialog::Accept, tr("Add"));
    dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::HomeLocation));
    m_dialog = dialog;
    connect(dialog, &QDialog::finished, this, [dialog, done](int result) {
        done(result == QDialog::Accepted ? dialog->selectedUrls() : QList<QUrl>());
    });
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

} // namespace Vesko
