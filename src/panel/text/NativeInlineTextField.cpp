// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/text/NativeInlineTextField.h"

#include "panel/list/PanelDrop.h"
#include "panel/text/SpellCheckHighlighter.h"
#include "platform/SpellChecker.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTextBlock>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace Vesko {

//! The text view of the field: plain text, no frame, no background, no
//! scroll bars. It hands its keys and focus changes to the field first.
class InlineTextEditor : public QTextEdit
{
public:
    explicit InlineTextEditor(NativeInlineTextField *field)
        : QTextEdit(field)
        , m_field(field)
    {
        setAcceptRichText(false);
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setAttribute(Qt::WA_MacShowFocusRect, false);
        setTabChangesFocus(false);
        viewport()->setAutoFillBackground(false);
        setAutoFillBackground(false);
        // Text starts at the left edge, with no margin around the document.
        document()->setDocumentMargin(0);
        // The margin is a change of the document's frame, which it records as
        // a step to undo: Ctrl+Z in a field nobody has typed in must find none.
        document()->clearUndoRedoStacks();
        document()->setModified(false);
        setContentsMargins(0, 0, 0, 0);
        setViewportMargins(0, 0, 0, 0);
    }

    SpellCheckHighlighter *spelling = nullptr;

protected:
    void contextMenuEvent(QContextMenuEvent *event) override
    {
        std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
        const int position = cursorForPosition(event->pos()).position();
        if (const auto misspelled
            = spelling ? spelling->misspelledWordAt(position) : std::nullopt) {
            // Spellings to choose from, above the editing commands.
            QAction *first = menu->actions().value(0);
            const QStringList suggestions = spelling->checker()->suggestions(misspelled->second, 5);
            for (const QString &suggestion : suggestions) {
                auto *action = new QAction(suggestion, menu.get());
                connect(action, &QAction::triggered, this, [this, misspelled, suggestion] {
                    QTextCursor cursor = textCursor();
                    cursor.setPosition(misspelled->first);
                    cursor.setPosition(misspelled->first + int(misspelled->second.size()),
                        QTextCursor::KeepAnchor);
                    cursor.insertText(suggestion);
                });
                menu->insertAction(first, action);
            }
            if (suggestions.isEmpty()) {
                auto *none = new QAction(NativeInlineTextField::tr("No Guesses Found"), menu.get());
                none->setEnabled(false);
                menu->insertAction(first, none);
            }
            menu->insertSeparator(first);
        }
        menu->exec(event->globalPos());
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (!m_field->handleKey(event))
            QTextEdit::keyPressEvent(event);
    }

    void focusInEvent(QFocusEvent *event) override
    {
        QTextEdit::focusInEvent(event);
        m_field->editorFocusIn();
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        QTextEdit::focusOutEvent(event);
        m_field->editorFocusOut(event->reason());
    }

    bool canInsertFromMimeData(const QMimeData *source) const override
    {
        return source->hasText() && !carriesFiles(source);
    }

    void insertFromMimeData(const QMimeData *source) override
    {
        if (!source->hasText())
            return;
        QString text = source->text();
        if (!m_field->isMultiline()) {
            // One line only: line breaks of pasted text become spaces.
            text.replace(QLatin1String("\r\n"), QLatin1String(" "));
            text.replace(QLatin1Char('\n'), QLatin1Char(' '));
            text.replace(QLatin1Char('\r'), QLatin1Char(' '));
        }
        textCursor().insertText(text);
        ensureCursorVisible();
    }

    // Files dragged over the field go to the widget around it (the composer
    // collects them as attachments); text is dropped into the field.
    void dragEnterEvent(QDragEnterEvent *event) override
    {
        if (carriesFiles(event->mimeData())) {
            event->ignore();
            return;
        }
        QTextEdit::dragEnterEvent(event);
    }

    void dragMoveEvent(QDragMoveEvent *event) override
    {
        if (carriesFiles(event->mimeData())) {
            event->ignore();
            return;
        }
        QTextEdit::dragMoveEvent(event);
    }

    void dropEvent(QDropEvent *event) override
    {
        if (carriesFiles(event->mimeData())) {
            event->ignore();
            return;
        }
        QTextEdit::dropEvent(event);
    }

private:
    static bool carriesFiles(const QMimeData *data)
    {
        return !PanelDrop::localFiles(*data).isEmpty();
    }

    NativeInlineTextField *m_field;
};

NativeInlineTextField::NativeInlineTextField(QWidget *parent)
    : QWidget(parent)
    , m_editor(new InlineTextEditor(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_editor);
    setFocusProxy(m_editor);
    // Spelling is checked as you type where the desktop offers a dictionary.
    m_editor->spelling = new SpellCheckHighlighter(m_editor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMultiline(true);
    m_fieldHeight = lineHeight();
    setFixedHeight(m_fieldHeight);
    connect(m_editor, &QTextEdit::textChanged, this, &NativeInlineTextField::contentEdited);
}

NativeInlineTextField::~NativeInlineTextField()
{
    // The editor goes first: if it has the focus, it loses it as it goes, and
    // its focus-out must not reach a field that is already half destroyed.
    delete m_editor;
}

QTextEdit *NativeInlineTextField::editor() const
{
    return m_editor;
}

SpellCheckHighlighter *NativeInlineTextField::spelling() const
{
    return m_editor->spelling;
}

QString NativeInlineTextField::text() const
{
    return m_text;
}

void NativeInlineTextField::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_settingText = true;
    m_editor->setPlainText(text);
    m_settingText = false;
    moveCaretToEnd();
    Q_EMIT textChanged(m_text);
    scheduleHeightReport();
}

QString NativeInlineTextField::placeholder() const
{
    return m_editor->placeholderText();
}

void NativeInlineTextField::setPlaceholder(const QString &placeholder)
{
    if (placeholder == m_editor->placeholderText())
        return;
    m_editor->setPlaceholderText(placeholder);
    m_editor->viewport()->update();
}

void NativeInlineTextField::setPlaceholderColor(const QColor &color)
{
    QPalette palette = m_editor->palette();
    palette.setColor(QPalette::PlaceholderText, color);
    m_editor->setPalette(palette);
}

void NativeInlineTextField::setTextColor(const QColor &color)
{
    QPalette palette = m_editor->palette();
    palette.setColor(QPalette::Text, color);
    m_editor->setPalette(palette);
}

void NativeInlineTextField::setTextFont(const QFont &font)
{
    m_editor->setFont(font);
    m_editor->document()->setDefaultFont(font);
    applyFieldHeight();
    scheduleHeightReport();
}

void NativeInlineTextField::setMultiline(bool multiline)
{
    m_multiline = multiline;
    if (multiline) {
        m_editor->setLineWrapMode(QTextEdit::WidgetWidth);
        m_editor->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    } else {
        m_editor->setLineWrapMode(QTextEdit::NoWrap);
        m_editor->setWordWrapMode(QTextOption::NoWrap);
        if (m_text.contains(QLatin1Char('\n'))) {
            QString oneLine = m_text;
            setText(oneLine.replace(QLatin1Char('\n'), QLatin1Char(' ')));
        }
    }
    scheduleHeightReport();
}

void NativeInlineTextField::setWantsFocus(bool wants)
{
    m_wantsFocus = wants;
    if (wants && !m_editor->hasFocus())
        scheduleFocusRequest();
}

void NativeInlineTextField::setResignsOnCommit(bool resigns)
{
    m_resignsOnCommit = resigns;
}

void NativeInlineTextField::setMaximumFieldHeight(int height)
{
    m_maximumFieldHeight = std::max(height, lineHeight());
    applyFieldHeight();
}

void NativeInlineTextField::setViewIdentifier(const QString &identifier)
{
    m_editor->setObjectName(identifier);
}

int NativeInlineTextField::lineHeight() const
{
    const QFontMetricsF metrics(m_editor->document()->defaultFont());
    return std::max(minimumLineHeight, int(std::ceil(metrics.ascent() + metrics.descent() + 1)));
}

void NativeInlineTextField::selectAll()
{
    m_editor->selectAll();
}

void NativeInlineTextField::moveCaretToEnd()
{
    QTextCursor cursor = m_editor->textCursor();
    cursor.movePosition(QTextCursor::End);
    m_editor->setTextCursor(cursor);
}

QSize NativeInlineTextField::sizeHint() const
{
    return {200, m_fieldHeight};
}

QSize NativeInlineTextField::minimumSizeHint() const
{
    return {0, m_fieldHeight};
}

void NativeInlineTextField::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    scheduleHeightReport();
}

bool NativeInlineTextField::handleKey(QKeyEvent *event)
{
    const int key = event->key();
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    QPointer<NativeInlineTextField> self(this);

    if (key == Qt::Key_Escape) {
        m_endsExplicitly = true;
        Q_EMIT cancelled();
        if (!self)
            return true;
        // The owner may want the keyboard to stay here (the composer with text).
        if (!m_wantsFocus && m_editor->hasFocus())
            m_editor->clearFocus();
        m_endsExplicitly = false;
        return true;
    }

    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return false;
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        // A command on Return belongs to the panel, not to the text.
        event->ignore();
        return true;
    }
    if (m_multiline && (modifiers & Qt::ShiftModifier)) {
        m_editor->textCursor().insertText(QStringLiteral("\n"));
        m_editor->ensureCursorVisible();
        return true;
    }
    m_endsExplicitly = true;
    Q_EMIT committed();
    if (!self)
        return true;
    if (m_resignsOnCommit && m_editor->hasFocus())
        m_editor->clearFocus();
    m_endsExplicitly = false;
    return true;
}

void NativeInlineTextField::editorFocusIn()
{
    m_endsExplicitly = false;
    Q_EMIT focusChanged(true);
}

void NativeInlineTextField::editorFocusOut(Qt::FocusReason reason)
{
    // A menu opening, or another window taking the keyboard, interrupts the
    // editing without ending it: the text view stays the window's focus.
    if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason)
        return;
    QPointer<NativeInlineTextField> self(this);
    Q_EMIT focusChanged(false);
    if (!self)
        return;
    if (m_endsExplicitly) {
        m_endsExplicitly = false;
        return;
    }
    Q_EMIT blurred();
}

void NativeInlineTextField::contentEdited()
{
    if (m_settingText)
        return;
    // The raw text keeps non-breaking spaces; paragraph ends are line feeds.
    QString text = m_editor->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    if (text != m_text) {
        m_text = text;
        Q_EMIT textChanged(m_text);
    }
    scheduleHeightReport();
}

void NativeInlineTextField::scheduleHeightReport()
{
    if (m_heightReportScheduled)
        return;
    m_heightReportScheduled = true;
    QTimer::singleShot(0, this, &NativeInlineTextField::reportHeight);
}

void NativeInlineTextField::reportHeight()
{
    m_heightReportScheduled = false;
    const int width = m_editor->viewport()->width();
    if (width < minimumMeasuredWidth)
        return;
    QTextDocument *document = m_editor->document();
    if (m_multiline)
        document->setTextWidth(width);
    // The bounding rectangle of the last block lays the document out to its end.
    const QRectF last = document->documentLayout()->blockBoundingRect(document->lastBlock());
    const qreal used = std::ceil(last.bottom() + document->documentMargin());
    const qreal height = std::max(used, qreal(lineHeight()));
    if (!m_lastReportedHeight || std::abs(*m_lastReportedHeight - height) > 0.5) {
        m_lastReportedHeight = height;
        applyFieldHeight();
        Q_EMIT heightChanged(height);
    }
}

void NativeInlineTextField::applyFieldHeight()
{
    const int content = m_lastReportedHeight ? int(*m_lastReportedHeight) : lineHeight();
    const int height = std::min(std::max(content, lineHeight()), m_maximumFieldHeight);
    if (height == m_fieldHeight)
        return;
    m_fieldHeight = height;
    setFixedHeight(height);
    updateGeometry();
    m_editor->ensureCursorVisible();
}

void NativeInlineTextField::scheduleFocusRequest()
{
    if (m_focusRequestScheduled)
        return;
    m_focusRequestScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_focusRequestScheduled = false;
        if (m_wantsFocus && window() && isVisible() && !m_editor->hasFocus())
            m_editor->setFocus(Qt::OtherFocusReason);
    });
}

} // namespace Vesko
