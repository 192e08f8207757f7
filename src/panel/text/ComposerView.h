// SPDX-License-Identifier: GPL-3.0-or-later
//
// The box at the foot of the panel in which a new note is written: a growing
// text field with the placeholder "Add to" and the active section, a button
// for attachments, and the files waiting to go with the note. Return adds
// the note to the active section, a line starting with "# " makes or picks a
// section instead, Shift+Return breaks the line and Escape clears the box,
// or, when it is empty, hands the keyboard to the list.

#pragma once

#include "panel/window/PanelState.h"

#include <QList>
#include <QUrl>
#include <QWidget>

class QToolButton;

namespace Vesko {

class EaseOutValue;
class NativeInlineTextField;
class PendingAttachmentStrip;
class Store;

class ComposerView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int maximumFieldHeight = 112;
    static constexpr int minimumBoxHeight = 56;
    static constexpr int emphasisMilliseconds = 140;

    ComposerView(Store &store, QWidget *parent = nullptr);
    ~ComposerView() override;

    //! The panel's focus is on the composer: its field wants the keyboard and
    //! the box is emphasised.
    void setFocused(bool focused);
    bool isFocused() const { return m_isFocused; }

    NativeInlineTextField *field() const { return m_field; }
    PendingAttachmentStrip *pendingStrip() const { return m_strip; }
    QToolButton *attachmentButton() const { return m_attach; }
    QString text() const;
    void setText(const QString &text);

    QList<QUrl> pendingURLs() const { return m_pendingURLs; }
    //! Appends files to the pending list, each once, in the order first seen.
    void addPendingURLs(const QList<QUrl> &urls);
    void setPendingURLs(const QList<QUrl> &urls);

    //! An import for the note is running; Return does nothing meanwhile.
    bool isSaving() const { return m_isSaving; }

    //! Return: adds the note, or makes the section of a "# " line.
    void commit();
    //! Escape: clears the box, or hands the keyboard to the list when it is empty.
    void cancel();

Q_SIGNALS:
    void focusRequested(Vesko::PanelFocusTarget target);
    void isSavingChanged(bool saving);
    void pendingURLsChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyTheme();
    void refreshPlaceholder();
    void chooseFiles();
    //! Empties the box after a note or a section was made.
    void clearAfterCommit();
    void setSaving(bool saving);
    //! Imports the pending files and adds them as one note to \a sectionID.
    void addNoteWithFiles(const QString &text, const QUuid &sectionID);

    Store &m_store;
    NativeInlineTextField *m_field;
    QToolButton *m_attach;
    PendingAttachmentStrip *m_strip;
    EaseOutValue *m_emphasis;
    EaseOutValue *m_hover;
    QList<QUrl> m_pendingURLs;
    bool m_isFocused = false;
    bool m_isSaving = false;
};

} // namespace Vesko
