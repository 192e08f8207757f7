// SPDX-License-Identifier: GPL-3.0-or-later
//
// The header of a section in the panel's list: chevron, title in capitals,
// the mark of the active section, the count of open notes, and on a hovered
// collapsed section a grip. A click collapses or expands the section; a
// collapsed header can be dragged to a new place among the sections; it is
// renamed in place and takes drops of text and notes.

#pragma once

#include "store/PanelRow.h"

#include <QWidget>

class QVariantAnimation;

namespace Vesko {

class PanelListView;
class PanelState;
class NativeInlineTextField;
class Store;

class SectionHeaderView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int rowPadding = 3;
    static constexpr int contentHeight = 18;
    static constexpr int rowHeight = contentHeight + 2 * rowPadding;
    static constexpr int paddingH = 4;
    static constexpr int spacing = 8;
    static constexpr int chevronMilliseconds = 120;
    static constexpr int hoverMilliseconds = 160;
    //! The look of a header being dragged.
    static constexpr qreal reorderOpacity = 0.72;

    SectionHeaderView(Store &store, PanelState &state, PanelListView &list, QWidget *parent);

    void bind(const PanelSectionRow &section);
    //! Reads again whether it is renamed; the hover shows from the pointer.
    void refresh();

    const PanelSectionRow &section() const { return m_section; }
    QUuid sectionID() const { return m_section.id; }

    bool isHovered() const { return m_hovered; }
    //! The pointer is over the header; the list sets it again after rows
    //! moved under a pointer that stood still.
    void setHovered(bool hovered);
    bool isRenaming() const { return m_renaming; }
    bool isReordering() const { return m_reordering; }
    //! The header follows the pointer by this much while it is dragged.
    double dragTranslation() const { return m_dragTranslation; }
    //! A drag can move the section: it is collapsed and not being renamed.
    bool canReorder() const { return m_section.isCollapsed && !m_renaming; }
    bool showsGrip() const { return m_hovered && canReorder(); }
    bool showsCount() const
    {
        return m_section.remainingCount >= 1 && (m_section.isCollapsed || m_hovered);
    }
    bool showsActiveMark() const { return m_section.isActive; }
    QString displayedTitle() const { return m_section.title.toUpper(); }
    QString draftTitle() const { return m_draftTitle; }
    NativeInlineTextField *editor() const { return m_editor; }

    //! Where the grip, the active mark and the count are drawn.
    QRect gripRect() const;
    QRect activeMarkRect() const;
    QRect countRect() const;

    QSize sizeHint() const override { return {200, rowHeight}; }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void setRenaming(bool renaming);
    void reorderChanged(double translation);
    void reorderEnded(double translation);
    void reorderCancelled();
    void endReorder();
    int titleRight() const;
    QFont titleFont() const;

    Store &m_store;
    PanelState &m_state;
    PanelListView &m_list;
    PanelSectionRow m_section;

    bool m_hovered = false;
    bool m_renaming = false;
    bool m_reordering = false;
    double m_dragTranslation = 0;
    QString m_draftTitle;
    NativeInlineTextField *m_editor = nullptr;

    // 0 open, 1 collapsed; and the opacity of what shows on hover.
    qreal m_chevronTurn = 0;
    qreal m_hoverOpacity = 0;
    QVariantAnimation *m_chevronAnimation = nullptr;
    QVariantAnimation *m_hoverAnimation = nullptr;

    bool m_pressed = false;
    bool m_moved = false;
    bool m_ignoreNextPress = false;
    QPointF m_pressGlobal;
};

} // namespace Vesko
