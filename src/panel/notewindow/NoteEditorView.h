// SPDX-License-Identifier: GPL-3.0-or-later
//
// The content of a note window: the note's text in an editor that hands
// every change to the Store at once, the rendered preview with the note's
// attachments below it on demand, and a bar with the done state, "Add
// Attachment", the source's name, "Preview" and "Copy". Once the note is
// gone, the text stays on screen and nothing typed reaches the library.

#pragma once

#include <QPointer>
#include <QUuid>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QScrollArea;
class QTextBrowser;
class QToolButton;

namespace Vesko {

class AttachmentActions;
class AttachmentListView;
class Store;

class NoteEditorView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool showsPreview READ showsPreview WRITE setShowsPreview NOTIFY showsPreviewChanged)

public:
    static constexpr int editorMinimumHeight = 120;
    static constexpr int previewMinimumHeight = 80;

    //! Edits the note \a noteID of \a store; attachments are added, opened
    //! and removed through \a attachments.
    NoteEditorView(Store &store, AttachmentActions &attachments, const QUuid &noteID,
        QWidget *parent = nullptr);
    ~NoteEditorView() override;

    QUuid noteID() const { return m_noteID; }
    //! The text on screen, which may differ from the note's (untrimmed, or
    //! kept after the note was deleted).
    QString text() const;

    bool showsPreview() const { return m_showsPreview; }
    void setShowsPreview(bool shows);

    //! Copies the note and says "Copied".
    void copyNote();
    //! Marks the note done, or open again when it is done.
    void toggleDone();

    QPlainTextEdit *editor() const { return m_editor; }
    QTextBrowser *previewText() const { return m_previewText; }
    AttachmentListView *attachmentList() const { return m_attachmentList; }
    QWidget *previewArea() const { return m_previewArea; }
    QToolButton *doneButton() const { return m_done; }
    QToolButton *attachButton() const { return m_attach; }
    QToolButton *previewButton() const { return m_preview; }
    QToolButton *copyButton() const { return m_copy; }
    QLabel *sourceLabel() const { return m_source; }

Q_SIGNALS:
    void showsPreviewChanged();

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *makeBar();
    void textEdited();
    //! Follows the note in the Store: its done state, source and attachments.
    void refreshNote();
    void refreshPreview();
    void refreshIcons();

    Store &m_store;
    AttachmentActions &m_attachments;
    const QUuid m_noteID;
    QString m_lastText;
    bool m_showsPreview = false;
    bool m_isDone = false;

    QPlainTextEdit *m_editor = nullptr;
    QWidget *m_previewArea = nullptr;
    QScrollArea *m_previewScroll = nullptr;
    QTextBrowser *m_previewText = nullptr;
    AttachmentListView *m_attachmentList = nullptr;
    QWidget *m_bar = nullptr;
    QToolButton *m_done = nullptr;
    QToolButton *m_attach = nullptr;
    QLabel *m_source = nullptr;
    QToolButton *m_preview = nullptr;
    QToolButton *m_copy = nullptr;
};

} // namespace Vesko
