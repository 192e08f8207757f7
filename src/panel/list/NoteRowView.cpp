// SPDX-License-Identifier: GPL-3.0-or-later
//
// A note row's content, state, geometry and painting; what the pointer does
// to it is in NoteRowPointer.cpp.

#include "panel/list/NoteRowView.h"

#include "attachments/AttachmentListView.h"
#include "panel/list/EaseOut.h"
#include "panel/list/HighlightedText.h"
#include "panel/list/NoteRowActions.h"
#include "panel/list/PanelListView.h"
#include "panel/text/MarkdownFormat.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <QVariantAnimation>

#include <cmath>

namespace Vesko {

namespace {

//! The locale's short time, without seconds.
QString shortTimeFormat(const QLocale &locale)
{
    QString format = locale.timeFormat(QLocale::ShortFormat);
    format.remove(QStringLiteral(":ss"));
    format.remove(QStringLiteral(":s"));
    return format;
}

QFont editorFont()
{
    QFont font = QApplication::font();
    font.setPixelSize(13);
    return font;
}

} // namespace

NoteRowView::NoteRowView(Store &store, PanelState &state, PanelListView &list, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_state(state)
    , m_list(list)
    , m_doneControl(new DoneControl(this))
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    setAcceptDrops(true);
    setMouseTracking(true);
    connect(m_doneControl, &QAbstractButton::clicked, this, [this] {
        NoteRowActions::pressDoneControl(m_store, noteID(), noteMenuTarget(m_store, noteID()));
    });
}

NoteRowView::~NoteRowView() = default;

void NoteRowView::bind(const PanelNoteRow &row)
{
    const bool sameNote = row.note.id == m_row.note.id;
    if (sameNote && row == m_row) {
        refresh();
        return;
    }
    m_row = row;
    if (!sameNote) {
        m_hovered = underMouse();
        m_fileTargeted = false;
        m_pressed = false;
        if (m_editing)
            setEditing(false);
    }
    m_doneControl->setDone(row.note.isDone);
    if (!row.note.attachments.isEmpty() && !m_attachments)
        m_attachments = m_list.makeAttachmentListView(this);
    if (m_attachments)
        m_attachments->setAttachments(row.note.attachments, row.note.id);
    // The text, or the done state that strikes it through and greys it.
    rebuildText();
    refresh();
    // Another note takes its fill at once; the same note eases into a new
    // done state as it does into a hover.
    updateFill(sameNote);
    layoutChildren();
    update();
    if (QAccessible::isActive()) {
        // A screen reader on this row hears of its new text or state.
        QAccessibleEvent name(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&name);
        QAccessibleEvent description(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&description);
    }
}

void NoteRowView::refresh()
{
    const QUuid id = noteID();
    const bool selected = m_store.selection().contains(id);
    const bool expanded = m_store.expandedNoteIDs().contains(id);
    const bool editing = m_store.editingNoteID() == id;
    const QString query = m_store.searchText();
    bool relayout = false;
    if (query != m_query) {
        m_query = query;
        rebuildText();
        relayout = true;
    }
    if (expanded != m_expanded) {
        m_expanded = expanded;
        if (m_attachments)
            m_attachments->setExpanded(expanded);
        relayout = true;
    }
    if (editing != m_editing) {
        setEditing(editing);
        updateFill(true);
        relayout = true;
    }
    if (selected != m_selected) {
        m_selected = selected;
        updateFill(true);
        update(); // the ring at once; the fill eases over
    }
    if (relayout) {
        layoutChildren();
        update();
        m_list.rowHeightChanged(id);
    }
}

NoteRowView::Fill NoteRowView::fill() const
{
    if (m_editing)
        return Fill::Editing;
    if (m_row.note.isDone)
        return Fill::Done;
    if (m_selected || m_hovered || m_fileTargeted)
        return Fill::Selected;
    return Fill::Plain;
}

QColor NoteRowView::fillColor() const
{
    return m_fillColor.isValid() ? m_fillColor : Theme::currentColors().noteFill;
}

void NoteRowView::setHovered(bool hovered)
{
    if (m_hovered == hovered)
        return;
    m_hovered = hovered;
    updateFill(true);
}

QString NoteRowView::sourceLine() const
{
    const std::optional<NoteSource> &source = m_row.note.source;
    if (!source)
        return {};
    const QLocale locale;
    const QDateTime created = m_row.note.createdAt.toLocalTime();
    return source->appName + QStringLiteral(" \u00B7 ")
        + locale.toString(created.date(), QStringLiteral("MMM d, yyyy")) + QLatin1Char(' ')
        + locale.toString(created.time(), shortTimeFormat(locale));
}

bool NoteRowView::isTextTruncated() const
{
    ensureTextLayout(width());
    return m_text.isTruncated();
}

void NoteRowView::rebuildText()
{
    const bool done = m_row.note.isDone;
    m_text.setContent(highlightedText(m_row.note.text, m_query), Theme::noteFont(), done);
    const ThemeColors colors = Theme::currentColors();
    const MarkdownFormatColors markdown = markdownFormatColors();
    m_text.setColors({done ? colors.tertiaryText : colors.text, markdown.link, colors.accentSoft,
        markdown.codeBackground, colors.greyStrong});
}

int NoteRowView::contentLeft() const
{
    return cardPaddingH + DoneControl::diameter + spacing;
}

int NoteRowView::contentWidth(int width) const
{
    return std::max(40, width - contentLeft() - cardPaddingH);
}

void NoteRowView::ensureTextLayout(int width) const
{
    m_text.layout(contentWidth(width), m_expanded ? 0 : collapsedLines);
}

int NoteRowView::columnHeight(int width) const
{
    if (m_editing)
        return int(std::ceil(m_editorHeight));
    const int inner = contentWidth(width);
    int height = 0;
    auto add = [&height](int part) {
        if (part <= 0)
            return;
        if (height > 0)
            height += contentSpacing;
        height += part;
    };
    ensureTextLayout(width);
    add(m_text.height());
    add(attachmentsHeight(inner));
    if (m_expanded && m_row.note.source)
        add(QFontMetrics(Theme::captionFont()).height());
    return height;
}

int NoteRowView::heightForWidth(int width) const
{
    const int content = std::max(DoneControl::diameter + 1, columnHeight(width));
    return 2 * rowPadding + 2 * cardPaddingV + content;
}

NoteRowView::Metrics NoteRowView::metricsFor(int width)
{
    Metrics metrics;
    metrics.width = width;
    const QFontMetricsF note(Theme::noteFont());
    metrics.averageCharacterWidth = std::max<qreal>(1, note.averageCharWidth());
    metrics.lineHeight = int(std::ceil(note.height() + NoteTextLayout::lineGap));
    metrics.captionHeight = QFontMetrics(Theme::captionFont()).height();
    metrics.attachmentsLineHeight = std::max(12, metrics.captionHeight);
    return metrics;
}

qreal NoteRowView::charactersPerLine(const Metrics &metrics)
{
    const qreal inner = std::max(
        40, metrics.width - (cardPaddingH + DoneControl::diameter + spacing) - cardPaddingH);
    return std::max<qreal>(1, inner / metrics.averageCharacterWidth);
}

int NoteRowView::estimatedHeight(const Note &note, bool expanded, const Metrics &metrics)
{
    const qreal perLine = charactersPerLine(metrics);
    const int lineLimit = expanded ? std::numeric_limits<int>::max() : collapsedLines;
    // Lines of the paragraphs, up to the limit; a paragraph long enough to
    // fill the limit alone ends the count.
    const qsizetype longest = expanded ? std::numeric_limits<qsizetype>::max()
                                       : qsizetype(std::ceil(perLine * collapsedLines));
    int lines = 0;
    qsizetype paragraph = 0;
    const QString &text = note.text;
    for (qsizetype i = 0; i <= text.size() && lines < lineLimit; ++i) {
        if (i == text.size() || text.at(i) == u'\n') {
            if (i > 0 || paragraph > 0)
                lines += std::max(1, int(std::ceil(qreal(paragraph) / perLine)));
            paragraph = 0;
        } else if (++paragraph > longest) {
            lines = lineLimit;
        }
    }
    lines = std::min(lines, lineLimit);
    const int attachments
        = expanded ? int(note.attachments.size()) : std::min(1, int(note.attachments.size()));
    return heightForLines(lines, attachments, expanded && note.source, metrics);
}

int NoteRowView::lengthEstimatedHeight(const Note &note, const Metrics &metrics)
{
    const qreal perLine = charactersPerLine(metrics);
    const qsizetype length = note.text.size();
    const int lines = length == 0
        ? 0
        : int(std::min<qreal>(collapsedLines, std::ceil(qreal(length) / perLine)));
    return heightForLines(lines, note.attachments.isEmpty() ? 0 : 1, false, metrics);
}

int NoteRowView::heightForLines(int lines, int attachments, bool caption, const Metrics &metrics)
{
    int column = 0;
    auto add = [&column](int part) {
        if (part <= 0)
            return;
        if (column > 0)
            column += contentSpacing;
        column += part;
    };
    if (lines > 0)
        add(lines * metrics.lineHeight - int(NoteTextLayout::lineGap));
    if (attachments > 0)
        add(attachments * metrics.attachmentsLineHeight + (attachments - 1) * 3);
    if (caption)
        add(metrics.captionHeight);
    return 2 * rowPadding + 2 * cardPaddingV + std::max(DoneControl::diameter + 1, column);
}

QRectF NoteRowView::textRect() const
{
    return QRectF(contentLeft(), rowPadding + cardPaddingV, contentWidth(width()), m_text.height());
}

void NoteRowView::layoutChildren()
{
    m_doneControl->setGeometry(
        cardPaddingH, rowPadding + cardPaddingV + 1, DoneControl::diameter, DoneControl::diameter);
    const int left = contentLeft();
    const int inner = contentWidth(width());
    const int top = rowPadding + cardPaddingV;
    if (m_editing) {
        if (m_attachments)
            m_attachments->hide();
        if (m_editor)
            m_editor->setGeometry(left, top, inner, int(std::ceil(m_editorHeight)));
        return;
    }
    ensureTextLayout(width());
    int y = top + m_text.height();
    const int attachments = attachmentsHeight(inner);
    if (attachments > 0) {
        if (m_text.height() > 0)
            y += contentSpacing;
        m_attachments->setGeometry(left, y, inner, attachments);
        m_attachments->show();
    } else if (m_attachments) {
        m_attachments->hide();
    }
}

int NoteRowView::attachmentsHeight(int width) const
{
    if (!m_attachments || m_row.note.attachments.isEmpty())
        return 0;
    return m_attachments->heightForWidth(width);
}

void NoteRowView::setEditing(bool editing)
{
    m_editing = editing;
    if (editing) {
        m_draft = m_row.note.text;
        m_editorHeight = initialEditorHeight;
        if (!m_editor) {
            m_editor = new NativeInlineTextField(this);
            m_editor->setPlaceholder(tr("Note"));
            m_editor->setTextFont(editorFont());
            m_editor->setMultiline(true);
            m_editor->setResignsOnCommit(true);
            connect(m_editor, &NativeInlineTextField::textChanged, this,
                [this](const QString &text) { m_draft = text; });
            connect(m_editor, &NativeInlineTextField::committed, this, &NoteRowView::commitEdit);
            connect(m_editor, &NativeInlineTextField::blurred, this, &NoteRowView::commitEdit);
            connect(m_editor, &NativeInlineTextField::cancelled, this, &NoteRowView::cancelEdit);
            connect(m_editor, &NativeInlineTextField::heightChanged, this, [this](qreal height) {
                if (std::abs(height - m_editorHeight) <= 0.5)
                    return;
                m_editorHeight = height;
                layoutChildren();
                m_list.rowHeightChanged(noteID());
            });
        }
        m_editor->setTextColor(Theme::currentColors().text);
        m_editor->setPlaceholderColor(Theme::currentColors().tertiaryText);
        m_editor->setText(m_draft);
        m_editor->moveCaretToEnd();
        m_editor->show();
        m_editor->setWantsFocus(true);
    } else if (m_editor) {
        m_editor->setWantsFocus(false);
        m_editor->hide();
    }
}

void NoteRowView::commitEdit()
{
    if (!m_editing)
        return;
    NoteRowActions::commitEdit(m_store, m_state, noteID(), m_draft);
}

void NoteRowView::cancelEdit()
{
    m_draft = m_row.note.text;
    NoteRowActions::cancelEdit(m_store, m_state, noteID());
}

void NoteRowView::updateFill(bool animated, int milliseconds)
{
    const ThemeColors colors = Theme::currentColors();
    QColor target;
    switch (fill()) {
    case Fill::Editing:
        target = colors.surfaceHoverFill;
        break;
    case Fill::Done:
        target = colors.noteFillDone;
        break;
    case Fill::Selected:
        target = colors.noteFillSelected;
        break;
    case Fill::Plain:
        target = colors.noteFill;
        break;
    }
    if (target == m_fillColor)
        return;
    if (!animated || !m_fillColor.isValid() || !isVisible()) {
        if (m_fillAnimation)
            m_fillAnimation->stop();
        m_fillColor = target;
        update();
        return;
    }
    if (!m_fillAnimation) {
        m_fillAnimation = new QVariantAnimation(this);
        m_fillAnimation->setEasingCurve(easeOut());
        connect(
            m_fillAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
                m_fillColor = value.value<QColor>();
                update();
            });
    }
    m_fillAnimation->stop();
    m_fillAnimation->setDuration(milliseconds);
    m_fillAnimation->setStartValue(m_fillColor);
    m_fillAnimation->setEndValue(target);
    m_fillAnimation->start();
}

bool NoteRowView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && !m_editing) {
        // Where a link leads shows on hovering it; a click selects the note.
        const auto *help = static_cast<QHelpEvent *>(event);
        if (const std::optional<QString> link = m_text.linkAt(help->pos() - textRect().topLeft()))
            QToolTip::showText(help->globalPos(), *link, this);
        else
            QToolTip::hideText();
        return true;
    }
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        rebuildText();
        m_fillColor = QColor();
        updateFill(false);
    }
    return QWidget::event(event);
}

void NoteRowView::paintEvent(QPaintEvent *)
{
    const ThemeColors colors = Theme::currentColors();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card = QRectF(rect()).adjusted(0.25, rowPadding + 0.25, -0.25, -rowPadding - 0.25);
    QPainterPath path;
    path.addRoundedRect(card, cardRadius, cardRadius);
    painter.fillPath(path, fillColor());
    // The hairline; a selected card also gets a ring of the accent, so that
    // the selection reads at a glance on either appearance. A card being
    // edited is a box to write in, as the composer is: its ring is soft.
    painter.setPen(QPen(colors.surfaceStroke, 0.5));
    painter.drawPath(path);
    if (m_editing) {
        QPainterPath ring;
        ring.addRoundedRect(
            card.adjusted(0.5, 0.5, -0.5, -0.5), cardRadius - 0.5, cardRadius - 0.5);
        QColor soft = colors.accentSoft;
        soft.setAlphaF(std::min<float>(1, soft.alphaF() * 2));
        painter.setPen(QPen(soft, 1));
        painter.drawPath(ring);
    } else if (m_selected) {
        QPainterPath ring;
        ring.addRoundedRect(
            card.adjusted(0.5, 0.5, -0.5, -0.5), cardRadius - 0.5, cardRadius - 0.5);
        painter.setPen(QPen(colors.accentStrong, 1.2));
        painter.drawPath(ring);
    }

    if (m_editing)
        return;
    ensureTextLayout(width());
    m_text.draw(painter, textRect().topLeft());

    if (m_expanded && m_row.note.source) {
        const QFont caption = Theme::captionFont();
        const QFontMetrics metrics(caption);
        int y = rowPadding + cardPaddingV + m_text.height();
        if (m_text.height() > 0)
            y += contentSpacing;
        const int attachments = attachmentsHeight(contentWidth(width()));
        if (attachments > 0)
            y += attachments + contentSpacing;
        painter.setFont(caption);
        painter.setPen(colors.tertiaryText);
        const QRect line(contentLeft(), y, contentWidth(width()), metrics.height());
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
            metrics.elidedText(sourceLine(), Qt::ElideRight, line.width()));
    }
}

void NoteRowView::resizeEvent(QResizeEvent *)
{
    layoutChildren();
}

void NoteRowView::enterEvent(QEnterEvent *)
{
    setHovered(true);
}

void NoteRowView::leaveEvent(QEvent *)
{
    setHovered(false);
}

} // namespace Vesko
