// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/notewindow/NoteWindow.h"

#include "panel/notewindow/NoteEditorView.h"
#include "shell/WindowCloseKeys.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace Vesko {

NoteWindow::NoteWindow(
    Store &store, AttachmentActions &attachments, const QUuid &noteID, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_noteID(noteID)
{
    setObjectName(noteID.toString(QUuid::WithoutBraces).toUpper());
    setAttribute(Qt::WA_DeleteOnClose);
    m_editor = new NoteEditorView(store, attachments, noteID, this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_editor);
    setFocusProxy(m_editor);
    // Ctrl+W and Escape close this window, whatever the program's keys say.
    new WindowCloseKeys(this);
}

NoteWindow::~NoteWindow() = default;

void NoteWindow::closeEvent(QCloseEvent *event)
{
    Q_EMIT closing();
    QWidget::closeEvent(event);
}

void NoteWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    if (isVisible())
        Q_EMIT frameChanged();
}

void NoteWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isVisible())
        Q_EMIT frameChanged();
}

} // namespace Vesko
