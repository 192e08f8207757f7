// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/PanelPromptView.h"

#include "shell/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

constexpr int fieldRadius = 9;

//! The field of the prompt: plain, in a rounded rectangle with a hairline.
class PromptField : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        {
            const ThemeColors colors = Theme::currentColors();
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
            painter.setBrush(colors.noteFill);
            painter.setPen(QPen(hasFocus() ? colors.accentStrong : colors.surfaceStroke, 1));
            painter.drawRoundedRect(box, fieldRadius, fieldRadius);
        }
        QLineEdit::paintEvent(event);
    }
};

} // namespace

PanelPromptView::PanelPromptView(const QString &title, const QString &placeholder,
    const QString &initialText, CommitHandler onCommit, QWidget *parent)
    : PanelLayerView(parent)
    , m_onCommit(std::move(onCommit))
    , m_title(new QLabel(title, card()))
    , m_field(new PromptField(card()))
    , m_cancel(new QPushButton(tr("Cancel"), card()))
    , m_add(new QPushButton(tr("Add"), card()))
{
    setObjectName(QStringLiteral("VeskoPrompt"));
    setAccessibleName(title);
    const ThemeColors colors = Theme::currentColors();

    card()->setAccessibleName(title);

    auto *layout = new QVBoxLayout(card());
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(10);

    QFont titleFont = Theme::noteFont();
    titleFont.setPixelSize(12);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    QPalette titlePalette = m_title->palette();
    titlePalette.setColor(QPalette::WindowText, colors.text);
    m_title->setPalette(titlePalette);
    layout->addWidget(m_title);

    m_field->setObjectName(QStringLiteral("VeskoPromptField"));
    m_field->setFrame(false);
    m_field->setPlaceholderText(placeholder);
    m_field->setAccessibleName(placeholder);
    m_field->setText(initialText);
    m_field->setTextMargins(9, 7, 9, 7);
    m_field->setFont(Theme::noteFont());
    m_field->setAttribute(Qt::WA_MacShowFocusRect, false);
    QPalette fieldPalette = m_field->palette();
    fieldPalette.setColor(QPalette::Base, Qt::transparent);
    fieldPalette.setColor(QPalette::Text, colors.text);
    fieldPalette.setColor(QPalette::PlaceholderText, colors.tertiaryText);
    m_field->setPalette(fieldPalette);
    m_field->installEventFilter(this);
    layout->addWidget(m_field);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    for (QPushButton *button : {m_cancel, m_add}) {
        QFont font = Theme::captionFont();
        button->setFont(font);
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    m_add->setDefault(true);
    layout->addLayout(buttons);

    connect(m_cancel, &QPushButton::clicked, this, &PanelPromptView::cancel);
    connect(m_add, &QPushButton::clicked, this, &PanelPromptView::submit);
    connect(m_field, &QLineEdit::textChanged, this, &PanelPromptView::updateAddButton);
    updateAddButton();

    // The field takes the keyboard once the prompt has appeared.
    focusWhenShown(m_field, [](QLineEdit *field) { field->end(false); });
}

QString PanelPromptView::title() const
{
    return m_title->text();
}

void PanelPromptView::updateAddButton()
{
    // Blanks and tabs do not make a name; the button waits for a character.
    QString text = m_field->text();
    qsizetype start = 0;
    qsizetype end = text.size();
    auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (start < end && blank(text.at(start)))
        ++start;
    while (end > start && blank(text.at(end - 1)))
        --end;
    m_add->setEnabled(end > start);
}

void PanelPromptView::submit()
{
    const QString name = m_field->text().trimmed();
    finish(name.isEmpty() ? std::nullopt : std::optional(name));
}

void PanelPromptView::cancel()
{
    finish(std::nullopt);
}

void PanelPromptView::finish(const std::optional<QString> &name)
{
    if (m_finished)
        return;
    m_finished = true;
    // The handler usually closes this prompt: take it out first.
    CommitHandler handler = std::move(m_onCommit);
    handler(name);
}

bool PanelPromptView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field
        && handleAnswerKey(
            event, [this] { submit(); }, [this] { cancel(); }))
        return true;
    return PanelLayerView::eventFilter(watched, event);
}

QRect PanelPromptView::cardGeometry() const
{
    const int width = std::min(cardMaximumWidth, std::max(0, this->width() - 2 * 24));
    const int height = card()->layout()->heightForWidth(width) > 0
        ? card()->layout()->heightForWidth(width)
        : card()->sizeHint().height();
    return QRect((this->width() - width) / 2, (this->height() - height) / 2, width, height);
}

} // namespace Vesko
