// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/SectionHeaderView.h"

#include "panel/list/EaseOut.h"
#include "panel/list/NoteRowActions.h"
#include "panel/list/PanelDrop.h"
#include "panel/list/PanelListView.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/window/PanelState.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QGraphicsDropShadowEffect>
#include <QHelpEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QToolTip>
#include <QVariantAnimation>

namespace Vesko {

namespace {

constexpr int chevronSize = 7;
constexpr int activeMarkSize = 9;
constexpr int gripSize = 8;

QVariantAnimation *makeAnimation(
    QObject *parent, int milliseconds, std::function<void(qreal)> apply)
{
    auto *animation = new QVariantAnimation(parent);
    animation->setDuration(milliseconds);
    animation->setEasingCurve(easeOut());
    QObject::connect(animation, &QVariantAnimation::valueChanged, parent,
        [apply = std::move(apply)](const QVariant &value) { apply(value.toReal()); });
    return animation;
}

void animateTo(QVariantAnimation *animation, qreal from, qreal to)
{
    animation->stop();
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->start();
}

} // namespace

SectionHeaderView::SectionHeaderView(
    Store &store, PanelState &state, PanelListView &list, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_state(state)
    , m_list(list)
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    setAcceptDrops(true);
    m_chevronAnimation = makeAnimation(this, chevronMilliseconds, [this](qreal value) {
        m_chevronTurn = value;
        update();
    });
    m_hoverAnimation = makeAnimation(this, hoverMilliseconds, [this](qreal value) {
        m_hoverOpacity = value;
        update();
    });
}

void SectionHeaderView::bind(const PanelSectionRow &section)
{
    if (section == m_section) {
        refresh();
        return;
    }
    const bool sameSection = section.id == m_section.id;
    const bool collapseChanged = sameSection && section.isCollapsed != m_section.isCollapsed;
    m_section = section;
    const qreal turn = section.isCollapsed ? 1 : 0;
    if (collapseChanged && isVisible()) {
        animateTo(m_chevronAnimation, m_chevronTurn, turn);
    } else {
        m_chevronAnimation->stop();
        m_chevronTurn = turn;
    }
    if (!sameSection) {
        m_pressed = false;
        if (m_reordering)
            reorderCancelled();
        m_hoverAnimation->stop();
        m_hovered = underMouse();
        m_hoverOpacity = m_hovered ? 1 : 0;
        if (m_renaming)
            setRenaming(false);
    }
    refresh();
    update();
    if (QAccessible::isActive()) {
        QAccessibleEvent name(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&name);
        QAccessible::State changed;
        changed.expanded = changed.collapsed = true;
        QAccessibleStateChangeEvent state(this, changed);
        QAccessible::updateAccessibility(&state);
    }
}

void SectionHeaderView::refresh()
{
    const bool renaming = m_state.renamingSectionID() == m_section.id;
    if (renaming != m_renaming)
        setRenaming(renaming);
}

void SectionHeaderView::setRenaming(bool renaming)
{
    m_renaming = renaming;
    if (renaming) {
        m_draftTitle = m_section.title;
        if (!m_editor) {
            m_editor = new NativeInlineTextField(this);
            m_editor->setPlaceholder(tr("Section name"));
            QFont font = QApplication::font();
            font.setPixelSize(12);
            font.setWeight(QFont::DemiBold);
            m_editor->setTextFont(font);
            m_editor->setMultiline(false);
            m_editor->setResignsOnCommit(true);
            connect(m_editor, &NativeInlineTextField::textChanged, this,
                [this](const QString &text) { m_draftTitle = text; });
            auto commit = [this] {
                if (m_renaming)
                    NoteRowActions::commitRename(m_store, m_state, sectionID(), m_draftTitle);
            };
            connect(m_editor, &NativeInlineTextField::committed, this, commit);
            connect(m_editor, &NativeInlineTextField::blurred, this, [this, commit] {
                // When a press on this header took the keyboard away, the
                // press ends the renaming and is no click on the header.
                m_ignoreNextPress = true;
                QTimer::singleShot(0, this, [this] { m_ignoreNextPress = false; });
                commit();
            });
            connect(m_editor, &NativeInlineTextField::cancelled, this, [this] {
                m_draftTitle = m_section.title;
                NoteRowActions::cancelRename(m_state, sectionID());
            });
        }
        m_editor->setTextColor(Theme::currentColors().text);
        m_editor->setPlaceholderColor(Theme::currentColors().tertiaryText);
        m_editor->setText(m_draftTitle);
        m_editor->selectAll();
        m_editor->setGeometry(paddingH, rowPadding, width() - 2 * paddingH, contentHeight);
        m_editor->show();
        m_editor->setWantsFocus(true);
    } else if (m_editor) {
        m_editor->setWantsFocus(false);
        m_editor->hide();
    }
    update();
}

void SectionHeaderView::setHovered(bool hovered)
{
    if (m_hovered == hovered)
        return;
    m_hovered = hovered;
    animateTo(m_hoverAnimation, m_hoverOpacity, hovered ? 1 : 0);
}

QFont SectionHeaderView::titleFont() const
{
    QFont font = Theme::sectionFont();
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.7);
    return font;
}

int SectionHeaderView::titleRight() const
{
    const int left = paddingH + chevronSize + spacing;
    return left + QFontMetrics(titleFont()).horizontalAdvance(displayedTitle());
}

QRect SectionHeaderView::activeMarkRect() const
{
    const int x = std::min(titleRight() + spacing, width() - paddingH - activeMarkSize);
    return QRect(
        x, rowPadding + (contentHeight - activeMarkSize) / 2, activeMarkSize, activeMarkSize);
}

QRect SectionHeaderView::countRect() const
{
    const QFontMetrics metrics(Theme::sectionFont());
    const int w = metrics.horizontalAdvance(QString::number(m_section.remainingCount));
    return QRect(width() - paddingH - w, rowPadding, w, contentHeight);
}

QRect SectionHeaderView::gripRect() const
{
    const int right = showsCount() ? countRect().left() - spacing : width() - paddingH;
    return QRect(right - gripSize, rowPadding + (contentHeight - gripSize) / 2, gripSize, gripSize);
}

bool SectionHeaderView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        QString tip;
        if (showsActiveMark() && activeMarkRect().adjusted(-2, -2, 2, 2).contains(help->pos()))
            tip = tr("Active section");
        else if (showsGrip() && gripRect().adjusted(-2, -2, 2, 2).contains(help->pos()))
            tip = tr("Drag to reorder");
        if (tip.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), tip, this);
        return true;
    }
    return QWidget::event(event);
}

void SectionHeaderView::paintEvent(QPaintEvent *)
{
    const ThemeColors colors = Theme::currentColors();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_reordering)
        painter.setOpacity(reorderOpacity);
    if (m_renaming)
        return;
    const int mid = rowPadding + contentHeight / 2;

    if (m_reordering) {
        QPainterPath card;
        card.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        painter.fillPath(card, colors.noteFillSelected);
    }

    // The chevron points down, turned by -90 degrees while collapsed.
    painter.save();
    painter.translate(paddingH + chevronSize / 2.0, mid);
    painter.rotate(-90 * m_chevronTurn);
    QPainterPath chevron;
    chevron.moveTo(-3, -1.5);
    chevron.lineTo(0, 1.5);
    chevron.lineTo(3, -1.5);
    painter.setPen(QPen(colors.greyStrong, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(chevron);
    painter.restore();

    const QFont title = titleFont();
    painter.setFont(title);
    painter.setPen(colors.greyStrong);
    const int titleLeft = paddingH + chevronSize + spacing;
    int titleRightLimit = width() - paddingH;
    if (showsCount())
        titleRightLimit = countRect().left() - spacing;
    const QRect titleRect(
        titleLeft, rowPadding, std::max(0, titleRightLimit - titleLeft), contentHeight);
    painter.drawText(titleRect, Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetrics(title).elidedText(displayedTitle(), Qt::ElideRight, titleRect.width()));

    if (showsActiveMark()) {
        const QRectF mark = QRectF(activeMarkRect()).adjusted(0.3, 0.3, -0.3, -0.3);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.accent);
        painter.drawEllipse(mark);
        QPainterPath check;
        const QPointF c = mark.center();
        check.moveTo(c + QPointF(-2.1, 0.1));
        check.lineTo(c + QPointF(-0.6, 1.6));
        check.lineTo(c + QPointF(2.2, -1.5));
        painter.setPen(QPen(Qt::white, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(check);
    }

    const qreal hover = m_hoverOpacity;
    if (canReorder() && (hover > 0 || m_reordering)) {
        painter.save();
        painter.setOpacity(painter.opacity() * (m_reordering ? 1.0 : hover));
        const QRectF grip = gripRect();
        painter.setPen(QPen(colors.greyStrong, 1.3, Qt::SolidLine, Qt::RoundCap));
        for (int line = 0; line < 3; ++line) {
            const qreal y = grip.top() + 1 + line * (grip.height() - 2) / 2.0;
            painter.drawLine(QPointF(grip.left(), y), QPointF(grip.right(), y));
        }
        painter.restore();
    }

    if (m_section.remainingCount >= 1) {
        // Always there while collapsed; on an open section it fades in with the hover.
        const qreal opacity = m_section.isCollapsed ? 1.0 : hover;
        if (opacity > 0) {
            painter.save();
            painter.setOpacity(painter.opacity() * opacity);
            painter.setFont(Theme::sectionFont());
            painter.setPen(colors.greyStrong);
            const QRect count(width() - paddingH - 60, rowPadding, 60, contentHeight);
            painter.drawText(count, Qt::AlignRight | Qt::AlignVCenter,
                QString::number(m_section.remainingCount));
            painter.restore();
        }
    }
}

void SectionHeaderView::resizeEvent(QResizeEvent *)
{
    if (m_editor)
        m_editor->setGeometry(paddingH, rowPadding, width() - 2 * paddingH, contentHeight);
}

void SectionHeaderView::enterEvent(QEnterEvent *)
{
    setHovered(true);
}

void SectionHeaderView::leaveEvent(QEvent *)
{
    setHovered(false);
}

void SectionHeaderView::hideEvent(QHideEvent *)
{
    if (m_reordering)
        reorderCancelled();
    m_pressed = false;
}

void SectionHeaderView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_renaming) {
        if (m_reordering && event->button() != Qt::LeftButton)
            reorderCancelled();
        QWidget::mousePressEvent(event);
        return;
    }
    if (std::exchange(m_ignoreNextPress, false))
        return;
    m_pressed = true;
    m_moved = false;
    m_pressGlobal = event->globalPosition();
}

void SectionHeaderView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    const double translation = event->globalPosition().y() - m_pressGlobal.y();
    if (!m_reordering) {
        if ((event->globalPosition() - m_pressGlobal).manhattanLength()
            < QApplication::startDragDistance()) {
            return;
        }
        // Moved too far for a click; a drag only where the section can move.
        m_moved = true;
        if (!canReorder())
            return;
    }
    reorderChanged(translation);
}

void SectionHeaderView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_pressed) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_pressed = false;
    if (m_reordering) {
        reorderEnded(event->globalPosition().y() - m_pressGlobal.y());
        return;
    }
    if (m_moved)
        return;
    NoteRowActions::clickSection(m_store, m_state, sectionID());
}

void SectionHeaderView::reorderChanged(double translation)
{
    if (!m_reordering) {
        m_reordering = true;
        raise();
        auto *shadow = new QGraphicsDropShadowEffect(this);
        shadow->setColor(QColor(0, 0, 0, int(0.22 * 255)));
        shadow->setBlurRadius(16);
        shadow->setOffset(0, 3);
        setGraphicsEffect(shadow);
    }
    m_dragTranslation = translation;
    m_list.sectionReorderChanged(sectionID(), translation);
    update();
}

void SectionHeaderView::reorderEnded(double translation)
{
    const QUuid id = sectionID();
    endReorder();
    m_list.sectionReorderEnded(id, translation);
}

void SectionHeaderView::reorderCancelled()
{
    endReorder();
    m_list.sectionReorderCancelled();
}

void SectionHeaderView::endReorder()
{
    m_reordering = false;
    m_dragTranslation = 0;
    setGraphicsEffect(nullptr);
    update();
}

void SectionHeaderView::contextMenuEvent(QContextMenuEvent *event)
{
    m_list.showSectionMenu(sectionID(), event->globalPos());
}

void SectionHeaderView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!PanelDrop::textItems(*event->mimeData())) {
        event->ignore();
        return;
    }
    m_list.setRowDropTarget(sectionID(), true);
    event->acceptProposedAction();
}

void SectionHeaderView::dragMoveEvent(QDragMoveEvent *event)
{
    event->acceptProposedAction();
}

void SectionHeaderView::dragLeaveEvent(QDragLeaveEvent *)
{
    m_list.setRowDropTarget(sectionID(), false);
}

void SectionHeaderView::dropEvent(QDropEvent *event)
{
    if (m_list.dropOnRow(event->mimeData(), sectionID(), std::nullopt))
        event->acceptProposedAction();
    else
        event->ignore();
}

} // namespace Vesko
