// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog "Add Attachments": several files, no folders, shown without
// blocking the event loop or any window; the answer comes when the user
// closes it.

#pragma once

#include "platform/FileChooser.h"

#include <QObject>
#include <QPointer>

#include <QFileDialog>

namespace Vesko {

class AttachmentFileDialog : public QObject, public FileChooser
{
    Q_OBJECT

public:
    explicit AttachmentFileDialog(QObject *parent = nullptr);
    ~AttachmentFileDialog() override;

    //! Shows the dialog, not modal, above the active window and returns at once.
    void chooseFiles(std::function<void(const QList<QUrl> &files)> done) override;

    //! The dialog while it is open; for tests.
    QFileDialog *dialog() const { return m_dialog; }

private:
    QPointer<QFileDialog> m_dialog;
};

} // namespace Vesko
