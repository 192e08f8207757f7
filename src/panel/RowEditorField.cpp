// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/RowEditorField.h"

#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTimer>

namespace Vesko {

RowEditorField::RowEditorField(QWidget *parent)
    : QWidget(parent)
    , m_editor(new QPlainTextEdit(this))
{
    m_editor->setFrameShape(QFrame::NoFrame);
    m_editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_editor->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_editor->setTabChangesFocus(true);
    m_editor->setAttribute(Qt::WA_MacShowFocusRect, false);
    m_editor->viewport()->setAutoFillBackground(false);
    m_editor->setAutoFillBackground(false);
    m_editor->document()->setDocumentMargin(0);
    QPalette palette = m_editor->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    m_editor->setPalette(palette);
    m_editor->installEventFilter(this);
    setFocusProxy(m_editor);
    connect(m_editor, &QPlainTextEdit::textChanged, this, [this] {
        updateHeight();
        Q_EMIT textChanged();
    });
}

QString RowEditorField::text() const
{
    return m_editor->toPlainText();
}

void RowEditorField::setText(const QString &text)
{
    if (m_editor->toPlainText() == text)
        return;
    m_editor->setPlainText(text);
    m_editor->moveCursor(QTextCursor::End);
}

void RowEditorField::setPlaceholder(const QString &placeholder)
{
    m_editor->setPlaceholderText(placeholder);
}

void RowEditorField::setMultiline(bool multiline)
{
    m_multiline = multiline;
    m_editor->setLineWrapMode(multiline ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    updateHeight();
}

void RowEditorField::setWantsFocus(bool wantsFocus)
{
    if (!wantsFocus)
        return;
    // Never synchronously while the owner is being updated: one turn later.
    QTimer::singleShot(0, this, [this] {
        if (isVisible() && !m_editor->hasFocus())
            m_editor->setFocus(Qt::OtherFocusReason);
    });
}

void RowEditorField::setFieldFont(const QFont &font)
{
    m_editor->setFont(font);
    m_editor->document()->setDefaultFont(font);
    updateHeight();
}

void RowEditorField::setTextColor(const QColor &color)
{
    QPalette palette = m_editor->palette();
    palette.setColor(QPalette::Text, color);
    m_editor->setPalette(palette);
}

bool RowEditorField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_editor)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape) {
            m_endsExplicitly = true;
            Q_EMIT cancelled();
            m_editor->clearFocus();
            m_endsExplicitly = false;
            return true;
        }
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (m_multiline && (key->modifiers() & Qt::ShiftModifier)) {
                m_editor->insertPlainText(QStringLiteral("\n"));
                return true;
            }
            m_endsExplicitly = true;
            Q_EMIT committed();
            if (m_resignsOnCommit)
                m_editor->clearFocus();
            m_endsExplicitly = false;
            return true;
        }
    } else if (event->type() == QEvent::FocusOut) {
        if (!m_endsExplicitly)
            Q_EMIT blurred();
    }
    return QWidget::eventFilter(watched, event);
}

void RowEditorField::resizeEvent(QResizeEvent *)
{
    m_editor->setGeometry(rect());
    updateHeight();
}

void RowEditorField::updateHeight()
{
    if (width() < 40)
        return;
    const QFontMetrics metrics(m_editor->font());
    const int lineHeight = std::max(minimumHeight, metrics.ascent() + metrics.descent() + 1);
    int content = lineHeight;
    if (m_multiline) {
        const QRect bounds
            = metrics.boundingRect(QRect(0, 0, m_editor->viewport()->width(), 1 << 20),
                Qt::TextWordWrap, m_editor->toPlainText() + QStringLiteral("x"));
        content = std::max(lineHeight, bounds.height());
    }
    const int height = std::clamp(content, minimumHeight, maximumHeight);
    if (height == m_height)
        return;
    m_height = height;
    Q_EMIT heightChanged(height);
}

} // namespace Vesko
