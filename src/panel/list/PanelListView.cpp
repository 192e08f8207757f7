// SPDX-License-Identifier: GPL-3.0-or-later
//
// The list's rows: following the Store, laying out and placing the rows in
// view, and scrolling. Drops and the section drag are in
// PanelListDragDrop.cpp, keys and menus in PanelListKeyboard.cpp.

#include "panel/list/PanelListView.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentListView.h"
#include "attachments/DesktopAttachments.h"
#include "panel/list/DropIndicatorOverlay.h"
#include "panel/list/EaseOut.h"
#include "panel/list/NoteRowActions.h"
#include "panel/list/NoteRowView.h"
#include "panel/list/RowAccessibles.h"
#include "panel/list/SectionHeaderView.h"
#include "panel/list/SectionReorder.h"
#include "panel/list/VirtualRowLayout.h"
#include "store/Store.h"

#include <QCursor>
#include <QScrollBar>
#include <QTimer>
#include <QVariantAnimation>

#include <cmath>

namespace Vesko {

namespace {

//! Rows laid out beyond each edge of the view, so that a small scroll shows
//! rows that are ready.
constexpr int overscan = 120;

//! Rows at each end of the list whose heights, until measured, are estimated
//! from their text's lines: more than a view holds.
constexpr qsizetype closelyEstimatedRows = 256;

} // namespace

PanelListView::PanelListView(Store &store, PanelState &state, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_store(store)
    , m_state(state)
    , m_layout(std::make_unique<VirtualRowLayout>())
    , m_reorder(std::make_unique<SectionReorder>())
    , m_scrollAnimation(new QVariantAnimation(this))
    , m_rows(store.rows())
{
    installRowAccessibility();
    setObjectName(QStringLiteral("VeskoNoteList"));
    setAccessibleName(tr("Notes"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MacShowFocusRect, false);
    // The panel is narrow and driven by the keyboard: where the list stands
    // shows in the selection and its headers, as in the rest of the panel's
    // floating design, so no scroll bars are drawn. The wheel, the keys and
    // the reveal still move the range the hidden bar holds.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAcceptDrops(true);
    viewport()->setAutoFillBackground(false);
    viewport()->setAcceptDrops(true);
    verticalScrollBar()->setSingleStep(24);
    m_overlay = new DropIndicatorOverlay(viewport());

    m_scrollAnimation->setDuration(scrollAnimationMilliseconds);
    m_scrollAnimation->setEasingCurve(easeOut());
    m_scrollAnimation->setStartValue(0.0);
    m_scrollAnimation->setEndValue(1.0);
    connect(m_scrollAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        if (!m_animationTarget)
            return;
        const int index = indexOfRow(*m_animationTarget);
        if (index < 0) {
            m_scrollAnimation->stop();
            return;
        }
        // The target is worked out again at each frame: rows measured on
        // the way may have moved it.
        const int target = scrollValueFor(index, m_animationAnchor);
        const qreal progress = v.toReal();
        m_animating = true;
        verticalScrollBar()->setValue(
            int(std::lround(m_animationStart + (target - m_animationStart) * progress)));
        m_animating = false;
    });
    connect(m_scrollAnimation, &QVariantAnimation::finished, this, [this] {
        // The last step lands exactly, the row pinned while rows measured on
        // the way in (frames the animation skipped) move it.
        if (const std::optional<QUuid> target = std::exchange(m_animationTarget, std::nullopt))
            scrollToRow(*target, m_animationAnchor, false);
    });

    connect(&m_store, &Store::rowsChanged, this, &PanelListView::rowsChanged);
    connect(&m_store, &Store::searchTextChanged, this, &PanelListView::searchTextChanged);
    connect(&m_store, &Store::selectionChanged, this, &PanelListView::selectionChanged);
    connect(&m_store, &Store::expandedNoteIDsChanged, this, &PanelListView::selectionChanged);
    connect(&m_store, &Store::editingNoteIDChanged, this, &PanelListView::selectionChanged);
    connect(&m_store, &Store::selectionAnchorChanged, this, [this] {
        m_pendingReveal = true;
        scheduleDeferredScrolls();
    });
    connect(&m_state, &PanelState::sectionJumpRequestChanged, this,
        &PanelListView::sectionJumpRequested);
    connect(&m_state, &PanelState::renamingSectionIDChanged, this, [this] {
        const QList<SectionHeaderView *> headers = m_headerViews.values();
        for (SectionHeaderView *header : headers)
            header->refresh();
    });
    connect(this, &PanelListView::dropIndicatorsChanged, this, &PanelListView::updateDropLines);

    m_knownProjectID = m_store.activeProject().id;
    relayout();
}

PanelListView::~PanelListView() = default;

// -- configuration ------------------------------------------------------------------

void PanelListView::setContentMargins(int top, int bottom)
{
    top = std::max(top, 0);
    bottom = std::max(bottom, 0);
    if (top == m_topMargin && bottom == m_bottomMargin)
        return;
    m_topMargin = top;
    m_bottomMargin = bottom;
    updateScrollRange();
    placeRows();
}

void PanelListView::setKeyHandler(KeyHandler handler)
{
    m_keyHandler = std::move(handler);
}

void PanelListView::setAttachmentActions(AttachmentActions &actions, ThumbnailCache &thumbnails)
{
    m_attachmentActions = &actions;
    m_thumbnails = &thumbnails;
}

AttachmentActions &PanelListView::attachmentActions() const
{
    return m_attachmentActions ? *m_attachmentActions : Vesko::attachmentActions();
}

AttachmentListView *PanelListView::makeAttachmentListView(QWidget *parent) const
{
    if (m_attachmentActions)
        return new AttachmentListView(*m_attachmentActions, *m_thumbnails, parent);
    return new AttachmentListView(parent);
}

// -- what the list shows ------------------------------------------------------------

int PanelListView::rowCount() const
{
    return int(m_rows.size());
}

int PanelListView::indexOfRow(const QUuid &id) const
{
    // The layout may still count the rows before a change it has not taken yet.
    const qsizetype index = m_store.rowIndex(id);
    return index < m_layout->count() ? int(index) : -1;
}

QRect PanelListView::rowRect(const QUuid &id) const
{
    const int index = indexOfRow(id);
    if (index < 0)
        return {};
    return QRect(0, m_topMargin + m_layout->top(index) - verticalScrollBar()->value(),
        viewport()->width(), m_layout->height(index));
}

NoteRowView *PanelListView::noteRowView(const QUuid &id) const
{
    return m_noteViews.value(id);
}

SectionHeaderView *PanelListView::sectionHeaderView(const QUuid &id) const
{
    return m_headerViews.value(id);
}

int PanelListView::rowWidgetCount() const
{
    return m_madeWidgets;
}

QRect PanelListView::clearArea() const
{
    const QRect area = viewport()->rect();
    return area.adjusted(0, m_topMargin, 0, -m_bottomMargin);
}

void PanelListView::finishScrollAnimation()
{
    if (m_scrollAnimation->state() == QAbstractAnimation::Running)
        m_scrollAnimation->setCurrentTime(m_scrollAnimation->duration());
}

bool PanelListView::isScrollAnimating() const
{
    return m_scrollAnimation->state() == QAbstractAnimation::Running;
}

// -- scrolling ----------------------------------------------------------------------

int PanelListView::clampedScroll(int value) const
{
    return std::clamp(value, 0, verticalScrollBar()->maximum());
}

int PanelListView::scrollValueFor(int index, ScrollAnchor anchor) const
{
    const int top = m_layout->top(index);
    if (anchor == ScrollAnchor::Top)
        return clampedScroll(top);
    const int clearHeight = std::max(0, viewport()->height() - m_topMargin - m_bottomMargin);
    return clampedScroll(top + m_layout->height(index) / 2 - clearHeight / 2);
}

void PanelListView::scrollTo(int value)
{
    m_scrollAnimation->stop();
    m_animationTarget.reset();
    verticalScrollBar()->setValue(clampedScroll(value));
}

bool PanelListView::isRowInView(int index) const
{
    const int scroll = verticalScrollBar()->value();
    const int top = m_topMargin + m_layout->top(index) - scroll;
    const int bottom = top + m_layout->height(index);
    const QRect area = clearArea();
    return bottom > area.top() && top < area.bottom() + 1;
}

void PanelListView::scrollToRow(const QUuid &id, ScrollAnchor anchor, bool animated)
{
    const int index = indexOfRow(id);
    if (index < 0)
        return;
    if (!animated) {
        // Rows measured on the way in may move the row: the placement keeps
        // it where it is asked to be.
        m_pinnedTarget = std::make_pair(id, anchor);
        scrollTo(scrollValueFor(index, anchor));
        if (m_pinnedTarget)
            placeRows();
        m_pinnedTarget.reset();
        return;
    }
    m_scrollAnimation->stop();
    m_animationTarget = id;
    m_animationAnchor = anchor;
    m_animationStart = verticalScrollBar()->value();
    m_scrollAnimation->start();
}

// -- reacting to the Store and the PanelState -----------------------------------------

void PanelListView::rowsChanged()
{
    const qsizetype oldCount = m_layout->count();
    const QUuid projectID = m_store.activeProject().id;
    const bool projectChanged = projectID != m_knownProjectID;
    m_knownProjectID = projectID;
    relayout(projectChanged ? std::nullopt : std::optional(m_store.lastRowChange()));
    if (projectChanged)
        scrollTo(0);
    if (m_rows.size() < oldCount) {
        m_pendingScrollToTop = true;
        scheduleDeferredScrolls();
    }
}

void PanelListView::searchTextChanged()
{
    refreshRowViews();
    scrollTo(0);
}

void PanelListView::selectionChanged()
{
    refreshRowViews();
}

void PanelListView::refreshRowViews()
{
    // The views only take their new state here; the placement after them
    // measures what changed in one pass.
    const bool wasPlacing = std::exchange(m_placing, true);
    const QList<NoteRowView *> views = m_noteViews.values();
    for (NoteRowView *view : views)
        view->refresh();
    m_placing = wasPlacing;
    placeRows();
}

void PanelListView::sectionJumpRequested()
{
    const std::optional<QUuid> request = m_state.sectionJumpRequest();
    if (!request)
        return;
    m_state.setSectionJumpRequest(std::nullopt);
    m_pendingJump = request;
    scheduleDeferredScrolls();
}

void PanelListView::scheduleDeferredScrolls()
{
    if (m_deferredScheduled)
        return;
    m_deferredScheduled = true;
    // One turn of the event loop later, when the change that asked for it
    // has been laid out.
    QTimer::singleShot(0, this, &PanelListView::runDeferredScrolls);
}

void PanelListView::runDeferredScrolls()
{
    m_deferredScheduled = false;
    if (std::exchange(m_pendingScrollToTop, false) && !m_rows.isEmpty())
        scrollTo(0);
    if (std::exchange(m_pendingReveal, false))
        revealAnchor();
    if (const std::optional<QUuid> section = std::exchange(m_pendingJump, std::nullopt)) {
        const int index = indexOfRow(*section);
        if (index >= 0) {
            // From near or far, the list glides until the header stands in the middle.
            scrollToRow(*section, ScrollAnchor::Center, true);
        }
    }
}

void PanelListView::revealAnchor()
{
    const std::optional<QUuid> anchor = m_store.selectionAnchor();
    if (!anchor)
        return;
    const int index = indexOfRow(*anchor);
    if (index < 0)
        return;
    // In view or far away, the list glides until the row stands in the middle,
    // so that the eye can follow where the selection went.
    scrollToRow(*anchor, ScrollAnchor::Center, true);
}

// -- layout -------------------------------------------------------------------------

int PanelListView::rowHeight(int index, bool closely)
{
    const PanelRow &row = m_rows.at(index);
    if (row.isSection())
        return SectionHeaderView::rowHeight;
    const Note &note = row.note();
    const bool expanded = !m_expandedIDs.isEmpty() && m_expandedIDs.contains(note.id);
    if (!m_measured.isEmpty()) {
        const auto known = m_measured.constFind(note.id);
        // A text that still shares its buffer is the same text without a look at it.
        auto sameText = [](const QString &a, const QString &b) {
            return a.size() == b.size() && (a.constData() == b.constData() || a == b);
        };
        if (known != m_measured.cend() && known->expanded == expanded
            && known->attachmentCount == note.attachments.size()
            && known->hasSource == note.source.has_value() && sameText(known->text, note.text)) {
            return known->height;
        }
    }
    // A row never laid out stands at a guess, which is not kept: estimating
    // costs less than keeping. Near either end of the list, where the view
    // starts and where the end of the range leads, and for the few rows a
    // change brings, the guess counts the text's lines; elsewhere a
    // collapsed row's is taken from its text's length, read without touching
    // the text, so that the first layout of a large project reads little
    // more than its rows. Rows are measured as they come into view, and the
    // placement keeps the rows in view where they stand and a row scrolled
    // to where it was asked to be.
    const bool nearAnEnd
        = index < closelyEstimatedRows || index >= m_rows.size() - closelyEstimatedRows;
    if (expanded || closely || nearAnEnd)
        return NoteRowView::estimatedHeight(note, expanded, m_metrics);
    return NoteRowView::lengthEstimatedHeight(note, m_metrics);
}

void PanelListView::relayout(const std::optional<PanelRowChange> &change)
{
    // A list that is not shown has no width of its own yet, and nobody sees
    // its rows: each stands at one height, and the rows are measured when
    // the list is shown. A hidden panel's list does not estimate every note
    // of a large project at each change, nor twice as the panel first opens.
    if (!isVisible()) {
        m_layoutIsProvisional = true;
        m_layout->setHeights(std::vector<int>(size_t(m_rows.size()), SectionHeaderView::rowHeight));
        m_previousRowIDs.clear();
        updateScrollRange();
        return;
    }
    m_layoutIsProvisional = false;
    const int width = viewport()->width();
    const bool widthChanged = width != m_metrics.width;
    if (widthChanged) {
        m_metrics = NoteRowView::metricsFor(width);
        m_measured.clear();
    }
    // Keep the first row in view where it is, if it is still there.
    std::optional<QUuid> anchorID;
    int anchorOffset = 0;
    const int scroll = verticalScrollBar()->value();
    if (!m_previousRowIDs.isEmpty() && !m_animationTarget) {
        const int index = m_layout->indexAt(scroll - m_topMargin);
        if (index >= 0 && index < m_previousRowIDs.size()) {
            anchorID = m_previousRowIDs.at(index);
            anchorOffset = scroll - m_layout->top(index);
        }
    }

    m_expandedIDs = m_store.expandedNoteIDs();
    const qsizetype laidOut = m_layout->count();
    if (change && !widthChanged && m_previousRowIDs.size() == laidOut
        && change->first + change->removed <= laidOut
        && laidOut - change->removed + change->inserted == m_rows.size()) {
        // Only the rows the change replaced are measured again.
        std::vector<int> heights(size_t(change->inserted));
        const bool few = change->inserted <= closelyEstimatedRows;
        for (qsizetype i = 0; i < change->inserted; ++i)
            heights[size_t(i)] = rowHeight(int(change->first + i), few);
        m_layout->replaceHeights(int(change->first), int(change->removed), std::move(heights));
        const qsizetype common = std::min(change->removed, change->inserted);
        for (qsizetype i = 0; i < common; ++i)
            m_previousRowIDs[change->first + i] = m_rows.at(change->first + i).id();
        if (change->removed > common)
            m_previousRowIDs.remove(change->first + common, change->removed - common);
        else if (change->inserted > common)
            m_previousRowIDs.insert(change->first + common, change->inserted - common, QUuid());
        for (qsizetype i = common; i < change->inserted; ++i)
            m_previousRowIDs[change->first + i] = m_rows.at(change->first + i).id();
    } else {
        std::vector<int> heights(size_t(m_rows.size()));
        for (qsizetype i = 0; i < m_rows.size(); ++i)
            heights[size_t(i)] = rowHeight(int(i));
        m_layout->setHeights(std::move(heights));
        m_previousRowIDs.resize(m_rows.size());
        for (qsizetype i = 0; i < m_rows.size(); ++i)
            m_previousRowIDs[i] = m_rows.at(i).id();
    }

    updateScrollRange();
    if (anchorID && scroll > 0) {
        const int index = indexOfRow(*anchorID);
        if (index >= 0) {
            m_placing = true;
            verticalScrollBar()->setValue(clampedScroll(m_layout->top(index) + anchorOffset));
            m_placing = false;
        }
    }
    placeRows();
}

void PanelListView::updateScrollRange()
{
    const int content = m_topMargin + m_layout->totalHeight() + m_bottomMargin;
    QScrollBar *bar = verticalScrollBar();
    const bool wasPlacing = m_placing;
    m_placing = true;
    bar->setPageStep(std::max(1, viewport()->height()));
    bar->setRange(0, std::max(0, content - viewport()->height()));
    m_placing = wasPlacing;
}

void PanelListView::rowHeightChanged(const QUuid &)
{
    // Measured again in the next placement; rows below move.
    if (!m_placing)
        placeRows();
}

void PanelListView::placeRows()
{
    if (m_placing)
        return;
    m_placing = true;
    const int width = viewport()->width();
    const int viewHeight = viewport()->height();
    m_expandedIDs = m_store.expandedNoteIDs();
    const std::optional<QUuid> editing = m_store.editingNoteID();

    QHash<QUuid, NoteRowView *> notes;
    QHash<QUuid, SectionHeaderView *> headers;
    // The places of the rows in view, as the passes below find them: the
    // Store's index of all rows is not needed for them (its first look-up
    // after a whole derivation indexes every row).
    QHash<QUuid, int> placed;
    int first = 0;
    int last = -1;
    // Measuring rows can change heights and so the range in view: a few passes settle it.
    for (int pass = 0; pass < 4 && m_layout->count() > 0; ++pass) {
        const int scroll = verticalScrollBar()->value();
        const int anchorIndex = m_layout->indexAt(scroll - m_topMargin);
        const int anchorOffset = scroll - m_layout->top(anchorIndex);
        first = m_layout->indexAt(scroll - m_topMargin - overscan);
        last = m_layout->indexAt(scroll - m_topMargin + viewHeight + overscan);
        bool changed = false;
        for (int i = first; i <= last; ++i) {
            const PanelRow &row = m_rows.at(i);
            placed.insert(row.id(), i);
            int height = SectionHeaderView::rowHeight;
            if (row.isSection()) {
                SectionHeaderView *header = headers.value(row.id());
                if (!header) {
                    header = m_headerViews.take(row.id());
                    if (!header)
                        header = takeIdleHeader();
                    headers.insert(row.id(), header);
                }
                header->bind(row.section());
            } else {
                NoteRowView *view = notes.value(row.id());
                if (!view) {
                    view = m_noteViews.take(row.id());
                    if (!view)
                        view = takeIdleNote();
                    notes.insert(row.id(), view);
                }
                view->bind(row.noteRow());
                height = view->heightForWidth(width);
                const Note &note = row.note();
                m_measured.insert(note.id,
                    {note.text, note.attachments.size(), m_expandedIDs.contains(note.id),
                        note.source.has_value(), height});
            }
            changed |= m_layout->setHeight(i, height);
        }
        if (!changed)
            break;
        updateScrollRange();
        if (m_pinnedTarget) {
            if (const int index = indexOfRow(m_pinnedTarget->first); index >= 0)
                verticalScrollBar()->setValue(scrollValueFor(index, m_pinnedTarget->second));
        } else if (!m_animationTarget && scroll > 0) {
            verticalScrollBar()->setValue(clampedScroll(m_layout->top(anchorIndex) + anchorOffset));
        }
    }

    // The row being edited keeps its view wherever it is, so that its field
    // keeps the keyboard; a header being dragged keeps its own.
    if (editing && !notes.contains(*editing)) {
        if (NoteRowView *view = m_noteViews.take(*editing)) {
            if (const int index = indexOfRow(*editing); index >= 0) {
                view->bind(m_rows.at(index).noteRow());
                notes.insert(*editing, view);
            } else {
                m_noteViews.insert(*editing, view);
            }
        }
    }
    if (const std::optional<QUuid> dragged = m_reorder->sourceID();
        dragged && !headers.contains(*dragged)) {
        if (SectionHeaderView *header = m_headerViews.take(*dragged))
            headers.insert(*dragged, header);
    }
    for (NoteRowView *view : std::as_const(m_noteViews)) {
        view->hide();
        m_idleNoteViews.append(view);
    }
    for (SectionHeaderView *header : std::as_const(m_headerViews)) {
        header->hide();
        m_idleHeaderViews.append(header);
    }
    m_noteViews = notes;
    m_headerViews = headers;

    const int scroll = verticalScrollBar()->value();
    auto indexOfPlaced = [&](const QUuid &id) {
        const auto found = placed.constFind(id);
        return found != placed.cend() ? *found : indexOfRow(id);
    };
    for (auto it = m_noteViews.cbegin(); it != m_noteViews.cend(); ++it) {
        const int index = indexOfPlaced(it.key());
        if (index < 0)
            continue;
        it.value()->setGeometry(
            0, m_topMargin + m_layout->top(index) - scroll, width, m_layout->height(index));
        it.value()->show();
    }
    for (auto it = m_headerViews.cbegin(); it != m_headerViews.cend(); ++it) {
        const int index = indexOfPlaced(it.key());
        if (index < 0)
            continue;
        SectionHeaderView *header = it.value();
        const int offset = header->isReordering() ? int(std::lround(header->dragTranslation())) : 0;
        header->setGeometry(0, m_topMargin + m_layout->top(index) - scroll + offset, width,
            m_layout->height(index));
        header->show();
        if (header->isReordering())
            header->raise();
    }
    m_overlay->setGeometry(viewport()->rect());
    m_placing = false;
    m_pinnedTarget.reset();
    updateDropLines();
    updateHoverFromPointer();
    Q_EMIT rowsPlaced();
}

void PanelListView::updateHoverFromPointer()
{
    // Where the pointer is asked only while it is over the list at all.
    const bool overList = viewport()->underMouse();
    const QPoint pointer = overList ? viewport()->mapFromGlobal(QCursor::pos()) : QPoint(-1, -1);
    const bool inList = overList && viewport()->rect().contains(pointer);
    for (NoteRowView *view : std::as_const(m_noteViews))
        view->setHovered(inList && view->geometry().contains(pointer));
    for (SectionHeaderView *header : std::as_const(m_headerViews)) {
        // A header being dragged follows the pointer and stays as it is.
        if (!header->isReordering())
            header->setHovered(inList && header->geometry().contains(pointer));
    }
}

NoteRowView *PanelListView::takeIdleNote()
{
    if (!m_idleNoteViews.isEmpty())
        return m_idleNoteViews.takeLast();
    ++m_madeWidgets;
    return new NoteRowView(m_store, m_state, *this, viewport());
}

SectionHeaderView *PanelListView::takeIdleHeader()
{
    if (!m_idleHeaderViews.isEmpty())
        return m_idleHeaderViews.takeLast();
    ++m_madeWidgets;
    return new SectionHeaderView(m_store, m_state, *this, viewport());
}

// -- events -----------------------------------------------------------------------------

bool PanelListView::event(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange
        || event->type() == QEvent::FontChange) {
        m_metrics = {};
        m_measured.clear();
        relayout();
    }
    return QAbstractScrollArea::event(event);
}

void PanelListView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    relayout();
}

void PanelListView::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    if (m_layoutIsProvisional)
        relayout();
}

void PanelListView::scrollContentsBy(int, int)
{
    if (!m_animating && !m_placing && m_scrollAnimation->state() == QAbstractAnimation::Running) {
        // The user scrolled: the animation gives way.
        m_scrollAnimation->stop();
        m_animationTarget.reset();
    }
    placeRows();
}

void PanelListView::endNoteEdit()
{
    if (const std::optional<QUuid> editing = m_store.editingNoteID()) {
        if (const NoteRowView *row = noteRowView(*editing))
            NoteRowActions::commitEdit(m_store, m_state, *editing, row->draftText());
    }
}

void PanelListView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

} // namespace Vesko
