// SPDX-License-Identifier: GPL-3.0-or-later
//
// The scrolling list of the panel: the active project's rows, section
// headers and notes, of which only those in view are laid out. A small pool
// of row widgets is moved over a virtual list whose row heights are measured
// once per note and estimated for rows never shown, so that a project of
// any size scrolls, selects and collapses within a frame. The list follows
// the selection anchor and the section jumps of the PanelState, takes drops
// of text and notes, and turns a dragged section header into a new order.

#pragma once

#include "panel/list/NoteRowView.h"
#include "panel/window/PanelState.h"
#include "store/PanelRowList.h"

#include <QAbstractScrollArea>
#include <QHash>
#include <QSet>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

class QKeyEvent;
class QMenu;
class QMimeData;
class QUrl;
class QVariantAnimation;

namespace Vesko {

class AttachmentActions;
class AttachmentListView;
class DropIndicatorOverlay;
class SectionHeaderView;
class SectionReorder;
class Store;
class ThumbnailCache;
class VirtualRowLayout;

//! Where scrollToRow() puts the row: at the top of the clear area, or in its middle.
enum class ScrollAnchor { Top, Center };

class PanelListView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    static constexpr int scrollAnimationMilliseconds = 180;
    //! The floors of the margins under the two bars, where they float over
    //! the list (its margins before any are set).
    static constexpr int minimumTopMargin = 38;
    static constexpr int minimumBottomMargin = 66;

    //! Handles a key pressed on the list; returns true when it took the key.
    using KeyHandler = std::function<bool(QKeyEvent *)>;

    PanelListView(Store &store, PanelState &state, QWidget *parent = nullptr);
    ~PanelListView() override;

    //! The heights of the bars that float over the list's top and bottom,
    //! none where the bars stand outside the list; rows scroll beneath them.
    void setContentMargins(int top, int bottom);
    int topContentMargin() const { return m_topMargin; }
    int bottomContentMargin() const { return m_bottomMargin; }

    //! Scrolls the row \a id to the top or the middle of the clear area
    //! between the bars, with an ease-out of 0.18 s when \a animated. A row
    //! that is not in the list is ignored.
    void scrollToRow(const QUuid &id, ScrollAnchor anchor, bool animated);

    //! The key handling of the panel; without one the list moves the
    //! selection with the arrows. Page Up and Page Down scroll either way.
    void setKeyHandler(KeyHandler handler);
    //! What the attachment tiles and the files dropped on notes act through;
    //! the program's own attachment actions unless set.
    void setAttachmentActions(AttachmentActions &actions, ThumbnailCache &thumbnails);
    AttachmentActions &attachmentActions() const;
    //! The tiles of one note's attachments, acting through the actions above.
    AttachmentListView *makeAttachmentListView(QWidget *parent) const;

    // -- what the list shows, for the panel and its tests -----------------------

    int rowCount() const;
    //! The index of the row \a id in the Store's rows, or -1.
    int indexOfRow(const QUuid &id) const;
    //! Where the row \a id lies, in viewport coordinates; null when it is not a row.
    QRect rowRect(const QUuid &id) const;
    //! The widget that shows the row \a id, when the row is laid out.
    NoteRowView *noteRowView(const QUuid &id) const;
    SectionHeaderView *sectionHeaderView(const QUuid &id) const;
    //! The number of row widgets made so far: the pool never grows with the list.
    int rowWidgetCount() const;
    //! The area between the two bars, in viewport coordinates.
    QRect clearArea() const;
    //! Ends a running scroll animation at its target at once.
    void finishScrollAnimation();

    //! Opens, from the keyboard, the menu of the selected note (the anchor
    //! when it is selected, else the first selected row), or with no selected
    //! row in the list the menu of the active section's header, beside its
    //! row. Nothing while another menu is open.
    void showKeyboardMenu();
    //! Ends the edit in place of a note the way leaving its field does: what
    //! was typed is saved. (A section's rename stays open until its field ends it.)
    void endNoteEdit();
    bool isScrollAnimating() const;

    // -- drag and drop state, shown by the rows -----------------------------------

    //! The row under a drag of notes or text.
    std::optional<QUuid> dropTargetID() const { return m_dropTargetID; }
    //! The section before which a dragged section would land; none means the end.
    std::optional<QUuid> sectionDragTargetID() const;
    std::optional<QUuid> sectionDragSourceID() const;
    //! A header shows the end-of-list line below itself: the drop target is
    //! this section, or a section drag without a target is on and this is the
    //! last section that is not being dragged.
    bool showsDropLineBelow(const QUuid &sectionID) const;

Q_SIGNALS:
    //! The drop target, the section drag target or the dragged section changed.
    void dropIndicatorsChanged();
    //! The rows in view were placed; after every layout pass.
    void rowsPlaced();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    friend class NoteRowView;
    friend class SectionHeaderView;

    // Called by the rows.
    void setRowDropTarget(const QUuid &id, bool targeted);
    //! A drop of text or notes on a row: on a note row before that note,
    //! on a header at the end of its section. Returns success.
    bool dropOnRow(const QMimeData *data, const std::optional<QUuid> &sectionID,
        const std::optional<QUuid> &beforeNoteID);
    //! Files dropped on the note \a noteID, imported with their toasts;
    //! returns whether any came.
    bool dropFiles(const QList<QUrl> &files, const QUuid &noteID);
    void sectionReorderChanged(const QUuid &sectionID, double translation);
    void sectionReorderEnded(const QUuid &sectionID, double translation);
    void sectionReorderCancelled();
    void rowHeightChanged(const QUuid &id);
    void showNoteMenu(const QList<QUuid> &target, const QPoint &globalPosition);
    void showSectionMenu(const QUuid &sectionID, const QPoint &globalPosition);

    void rowsChanged();
    void searchTextChanged();
    void selectionChanged();
    //! The views in place read the Store again; then the rows are placed.
    void refreshRowViews();
    void sectionJumpRequested();
    void revealAnchor();
    //! Runs one event-loop turn after the changes that asked for it: the
    //! scroll to the top after the rows shrank, the reveal, the jump.
    void runDeferredScrolls();
    void scheduleDeferredScrolls();

    //! Takes the heights of all rows again (measured or estimated), keeping
    //! the first row in view where it was, and places the rows.
    //! With \a change, the rows that the Store's last change replaced, only
    //! those are taken again, when the rows laid out are those it started from.
    void relayout(const std::optional<PanelRowChange> &change = std::nullopt);
    //! Puts row widgets on the rows in view, measures them, and takes them
    //! off the rows out of view.
    void placeRows();
    void updateScrollRange();
    //! The height of the row \a index: as measured, or as estimated (from
    //! its text's lines when \a closely).
    int rowHeight(int index, bool closely = false);
    NoteRowView *takeIdleNote();
    SectionHeaderView *takeIdleHeader();
    int clampedScroll(int value) const;
    //! Jumps to \a value, ending a running animation.
    void scrollTo(int value);
    //! The scroll value that puts the row \a index at \a anchor.
    int scrollValueFor(int index, ScrollAnchor anchor) const;
    //! The row shows, at least in part, between the two bars.
    bool isRowInView(int index) const;
    void setDropTarget(std::optional<QUuid> id);
    //! The rows under the pointer are hovered, the others not: rows move
    //! under a pointer that stands still, which tells them nothing.
    void updateHoverFromPointer();
    void updateSectionFrames();
    void updateDropLines();

    Store &m_store;
    PanelState &m_state;
    std::unique_ptr<VirtualRowLayout> m_layout;
    std::unique_ptr<SectionReorder> m_reorder;
    QVariantAnimation *m_scrollAnimation = nullptr;
    DropIndicatorOverlay *m_overlay = nullptr;
    KeyHandler m_keyHandler;
    AttachmentActions *m_attachmentActions = nullptr;
    ThumbnailCache *m_thumbnails = nullptr;

    //! The Store's rows, read in place: a copy held here would make the
    //! Store copy every row at its next change. The ids as last laid out
    //! keep the first row in view in place across a change.
    const QList<PanelRow> &m_rows;
    QList<QUuid> m_previousRowIDs;
    QSet<QUuid> m_expandedIDs;
    //! Heights of note rows as measured when laid out, with what they depend on.
    struct MeasuredHeight
    {
        QString text;
        qsizetype attachmentCount = 0;
        bool expanded = false;
        bool hasSource = false;
        int height = 0;
    };
    QHash<QUuid, MeasuredHeight> m_measured;
    NoteRowView::Metrics m_metrics;

    int m_topMargin = minimumTopMargin;
    int m_bottomMargin = minimumBottomMargin;
    QUuid m_knownProjectID;
    std::optional<QUuid> m_dropTargetID;
    bool m_placing = false;
    //! The rows stand at a provisional height until the list is shown.
    bool m_layoutIsProvisional = false;

    // The running scroll animation: towards which row, how, from where.
    std::optional<QUuid> m_animationTarget;
    ScrollAnchor m_animationAnchor = ScrollAnchor::Center;
    int m_animationStart = 0;
    bool m_animating = false;
    //! A row that the placement in progress keeps at its place, and where.
    std::optional<std::pair<QUuid, ScrollAnchor>> m_pinnedTarget;

    // Deferred work, run one event-loop turn after the change that asked for it.
    bool m_deferredScheduled = false;
    bool m_pendingScrollToTop = false;
    bool m_pendingReveal = false;
    std::optional<QUuid> m_pendingJump;

    // The row widgets: those on rows in view by row id, and the idle ones.
    QHash<QUuid, NoteRowView *> m_noteViews;
    QHash<QUuid, SectionHeaderView *> m_headerViews;
    QList<NoteRowView *> m_idleNoteViews;
    QList<SectionHeaderView *> m_idleHeaderViews;
    int m_madeWidgets = 0;
};

} // namespace Vesko
