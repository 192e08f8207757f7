// SPDX-License-Identifier: GPL-3.0-or-later
//
// A window of its own for one note: a standard, resizable window titled by
// the note, holding a NoteEditorView; Ctrl+W and Escape close it. It tells
// its manager when it closes and when the user moves or resizes it.

#pragma once

#include <QUuid>
#include <QWidget>

namespace Vesko {

class AttachmentActions;
class NoteEditorView;
class Store;

class NoteWindow : public QWidget
{
    Q_OBJECT

public:
    NoteWindow(Store &store, AttachmentActions &attachments, const QUuid &noteID,
        QWidget *parent = nullptr);
    ~NoteWindow() override;

    //! The note this window edits; also the window's object name, as a string.
    QUuid noteID() const { return m_noteID; }
    NoteEditorView *editor() const { return m_editor; }

Q_SIGNALS:
    //! The window is about to close; the note is saved already.
    void closing();
    //! The window was moved or resized while on screen.
    void frameChanged();

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    const QUuid m_noteID;
    NoteEditorView *m_editor = nullptr;
};

} // namespace Vesko
