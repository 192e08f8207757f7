// SPDX-License-Identifier: GPL-3.0-or-later
//
// One note of the panel's list: its done control, its text rendered from
// Markdown with the search marked, its attachments and, expanded, where it
// came from. A click selects it, Ctrl+click toggles, Shift+click extends,
// a double click edits it in place; it can be dragged out as text and takes
// drops of text, notes and files. The list moves a few of these over its
// rows, so a view is bound to one note at a time.

#pragma once

#include "panel/list/DoneControl.h"
#include "panel/list/NoteTextLayout.h"
#include "store/PanelRow.h"

#include <QPointer>
#include <QWidget>

class QVariantAnimation;

namespace Vesko {

class AttachmentListView;
class PanelListView;
class PanelState;
class NativeInlineTextField;
class Store;

class NoteRowView : public QWidget
{
    Q_OBJECT

public:
    //! How the card is filled, in this order of precedence: a note being
    //! edited looks like the composer's box, not like a selected note.
    enum class Fill { Editing, Done, Selected, Plain };

    static constexpr int rowPadding = 3;
    static constexpr int cardPaddingH = 10;
    static constexpr int cardPaddingV = 9;
    static constexpr int cardRadius = 12;
    static constexpr int spacing = 9;
    static constexpr int contentSpacing = 4;
    static constexpr int collapsedLines = 3;
    static constexpr int fillMilliseconds = 140;
    //! Files held over the row change its fill a little more slowly.
    static constexpr int dropFillMilliseconds = 180;
    //! The height of the inline editor before it reports its own.
    static constexpr int initialEditorHeight = 17;

    NoteRowView(Store &store, PanelState &state, PanelListView &list, QWidget *parent);
    ~NoteRowView() override;

    //! Shows \a row; the same note again only takes its new values.
    void bind(const PanelNoteRow &row);
    //! Reads again what the Store and the list say about this note: selected,
    //! expanded, edited, the search text, the drop target.
    void refresh();

    const Note &note() const { return m_row.note; }
    QUuid noteID() const { return m_row.note.id; }
    QUuid sectionID() const { return m_row.sectionID; }

    bool isSelected() const { return m_selected; }
    bool isExpanded() const { return m_expanded; }
    bool isEditing() const { return m_editing; }
    bool isHovered() const { return m_hovered; }
    //! The pointer is over the row; the list sets it again after rows moved
    //! under a pointer that stood still.
    void setHovered(bool hovered);
    Fill fill() const;
    //! The colour the card is painted with now; it eases towards the fill.
    QColor fillColor() const;
    //! The text being edited; the note's text when editing began.
    QString draftText() const { return m_draft; }
    //! The source line shown when expanded: application, " · ", date and time.
    QString sourceLine() const;
    bool showsText() const { return !m_text.isEmpty(); }
    bool isTextTruncated() const;

    DoneControl *doneControl() const { return m_doneControl; }
    NativeInlineTextField *editor() const { return m_editor; }
    //! The tiles of the note's attachments; made for the first note that has any.
    AttachmentListView *attachmentsView() const { return m_attachments; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    //! A cheap guess of the height of a row never laid out, from the length
    //! of its text and its lines: exact enough that scrolling into it moves
    //! little when it is measured.
    struct Metrics
    {
        int width = 0;
        qreal averageCharacterWidth = 7;
        int lineHeight = 17;
        int captionHeight = 14;
        int attachmentsLineHeight = 14;
    };
    static Metrics metricsFor(int width);
    static int estimatedHeight(const Note &note, bool expanded, const Metrics &metrics);
    //! A cruder guess for a collapsed row, from the length of its text alone
    //! (line breaks are not counted): it reads nothing but the note's own
    //! fields, not its text, so a list of any size takes it for all its rows
    //! at once.
    static int lengthEstimatedHeight(const Note &note, const Metrics &metrics);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    //! The height of a row of \a lines lines of text, with \a attachments
    //! attachment lines and a caption or not.
    static int heightForLines(int lines, int attachments, bool caption, const Metrics &metrics);
    //! How many characters of the average width fill a line of the text.
    static qreal charactersPerLine(const Metrics &metrics);
    int contentLeft() const;
    int contentWidth(int width) const;
    //! The height of the column of text, attachments and source line.
    int columnHeight(int width) const;
    int attachmentsHeight(int width) const;
    void layoutChildren();
    void rebuildText();
    void ensureTextLayout(int width) const;
    void setEditing(bool editing);
    void updateFill(bool animated, int milliseconds = fillMilliseconds);
    void startDrag();
    void commitEdit();
    void cancelEdit();
    QRectF textRect() const;

    Store &m_store;
    PanelState &m_state;
    PanelListView &m_list;
    PanelNoteRow m_row;

    DoneControl *m_doneControl = nullptr;
    AttachmentListView *m_attachments = nullptr;
    NativeInlineTextField *m_editor = nullptr;
    mutable NoteTextLayout m_text;
    QString m_query;

    bool m_selected = false;
    bool m_expanded = false;
    bool m_editing = false;
    bool m_hovered = false;
    bool m_fileTargeted = false;
    QString m_draft;
    qreal m_editorHeight = initialEditorHeight;

    QColor m_fillColor;
    QVariantAnimation *m_fillAnimation = nullptr;

    // The press that may become a click or a drag.
    bool m_pressed = false;
    bool m_dragStarted = false;
    QPoint m_pressPosition;
};

} // namespace Vesko
