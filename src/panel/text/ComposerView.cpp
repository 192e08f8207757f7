// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/text/ComposerView.h"

#include "attachments/PendingAttachmentStrip.h"

#include "panel/list/PanelDrop.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelSurface.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "store/Store.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QToolButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

constexpr int attachmentButtonSize = 20;
constexpr int symbolSize = 15;

QList<QUrl> droppedFiles(const QMimeData *data)
{
    return data ? PanelDrop::localFiles(*data) : QList<QUrl>();
}

} // namespace

ComposerView::ComposerView(Store &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_field(new NativeInlineTextField(this))
    , m_attach(new QToolButton(this))
    , m_strip(new PendingAttachmentStrip(this))
    , m_emphasis(new EaseOutValue(this, emphasisMilliseconds))
    , m_hover(new EaseOutValue(this, emphasisMilliseconds))
{
    setObjectName(QStringLiteral("VeskoComposer"));
    setAcceptDrops(true);
    setAttribute(Qt::WA_Hover);
    setMinimumHeight(minimumBoxHeight);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(10, 9, 10, 9);
    column->setSpacing(7);
    auto *row = new QHBoxLayout;
    row->setSpacing(9);
    column->addLayout(row);
    column->addWidget(m_strip);

    m_field->setViewIdentifier(QStringLiteral("VeskoComposerEditor"));
    m_field->setTextFont(Theme::noteFont());
    m_field->setMultiline(true);
    m_field->setResignsOnCommit(false);
    m_field->setMaximumFieldHeight(maximumFieldHeight);
    row->addWidget(m_field, 1, Qt::AlignTop);

    m_attach->setAutoRaise(true);
    m_attach->setFixedSize(attachmentButtonSize, attachmentButtonSize);
    m_attach->setFocusPolicy(Qt::NoFocus);
    m_attach->setToolTip(tr("Add images or files"));
    m_attach->setAccessibleName(tr("Add Attachment"));
    row->addWidget(m_attach, 0, Qt::AlignTop);

    connect(m_field, &NativeInlineTextField::committed, this, &ComposerView::commit);
    connect(m_field, &NativeInlineTextField::cancelled, this, &ComposerView::cancel);
    connect(m_field, &NativeInlineTextField::focusChanged, this, [this](bool focused) {
        if (focused)
            Q_EMIT focusRequested(PanelFocusTarget::Composer);
    });
    connect(m_field, &NativeInlineTextField::heightChanged, this, [this] { updateGeometry(); });
    connect(m_attach, &QToolButton::clicked, this, &ComposerView::chooseFiles);
    // A chip's button takes its file out of the list.
    connect(m_strip, &PendingAttachmentStrip::urlsChanged, this,
        [this] { setPendingURLs(m_strip->urls()); });
    connect(&m_store, &Store::rowsChanged, this, &ComposerView::refreshPlaceholder);

    applyTheme();
    refreshPlaceholder();
}

ComposerView::~ComposerView() = default;

QString ComposerView::text() const
{
    return m_field->text();
}

void ComposerView::setText(const QString &text)
{
    m_field->setText(text);
}

void ComposerView::setFocused(bool focused)
{
    m_isFocused = focused;
    m_field->setWantsFocus(focused);
    m_emphasis->setTarget(focused);
}

void ComposerView::applyTheme()
{
    const ThemeColors colors = Theme::currentColors();
    m_field->setPlaceholderColor(colors.tertiaryText);
    m_field->setTextColor(colors.text);
    m_attach->setIcon(symbolIcon(QStringLiteral("paperclip"), colors.greyStrong, symbolSize));
    m_attach->setIconSize(QSize(symbolSize, symbolSize));
    update();
}

void ComposerView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        applyTheme();
}

void ComposerView::refreshPlaceholder()
{
    const QString placeholder = tr("Add to %1").arg(m_store.activeSection().title);
    m_field->setPlaceholder(placeholder);
    m_field->editor()->setAccessibleName(placeholder);
}

void ComposerView::addPendingURLs(const QList<QUrl> &urls)
{
    QList<QUrl> pending = m_pendingURLs;
    for (const QUrl &url : urls) {
        if (!pending.contains(url))
            pending.append(url);
    }
    setPendingURLs(pending);
}

void ComposerView::setPendingURLs(const QList<QUrl> &urls)
{
    if (urls == m_pendingURLs)
        return;
    m_pendingURLs = urls;
    m_strip->setUrls(urls);
    updateGeometry();
    Q_EMIT pendingURLsChanged();
}

void ComposerView::setSaving(bool saving)
{
    if (saving == m_isSaving)
        return;
    m_isSaving = saving;
    Q_EMIT isSavingChanged(saving);
}

void ComposerView::chooseFiles()
{
    QPointer<ComposerView> self(this);
    PanelCommands::shared().chooseFiles([self](const QList<QUrl> &urls) {
        if (!self)
            return;
        self->addPendingURLs(urls);
        Q_EMIT self->focusRequested(PanelFocusTarget::Composer);
    });
}

void ComposerView::clearAfterCommit()
{
    m_field->setText(QString());
    m_field->moveCaretToEnd();
}

void ComposerView::commit()
{
    const QString text = m_field->text().trimmed();
    if (text.isEmpty() && m_pendingURLs.isEmpty())
        return;
    if (m_isSaving)
        return;

    // A line that starts with "# " asks for a section, even with nothing
    // behind it: then it stays in the box.
    qsizetype start = 0;
    const QString typed = m_field->text();
    while (start < typed.size() && typed.at(start).isSpace())
        ++start;
    if (QStringView(typed).mid(start).startsWith(QLatin1String("# "))) {
        const QString title = typed.mid(start + 2).trimmed();
        if (title.isEmpty()) {
            Q_EMIT focusRequested(PanelFocusTarget::Composer);
            return;
        }
        const std::optional<NoteSection> section = m_store.createOrUseSection(title);
        if (!section) {
            Q_EMIT focusRequested(PanelFocusTarget::Composer);
            return;
        }
        clearAfterCommit();
        ToastPresenter::shared().present(
            tr("Using %1").arg(section->title), QStringLiteral("checkmark"));
        if (m_pendingURLs.isEmpty()) {
            Q_EMIT focusRequested(PanelFocusTarget::Composer);
            return;
        }
        addNoteWithFiles(QString(), section->id);
        return;
    }

    if (m_pendingURLs.isEmpty()) {
        const QUuid sectionID = m_store.activeSection().id;
        if (m_store.addNote(text, sectionID, std::nullopt, false, std::nullopt, {}, true)) {
            clearAfterCommit();
            Q_EMIT focusRequested(PanelFocusTarget::Composer);
        }
        return;
    }
    addNoteWithFiles(text, m_store.activeSection().id);
}

void ComposerView::addNoteWithFiles(const QString &text, const QUuid &sectionID)
{
    setSaving(true);
    QPointer<ComposerView> self(this);
    Store *store = &m_store;
    PanelCommands::shared().importForNewNote(m_pendingURLs,
        [self, store, text, sectionID](const std::optional<QList<NoteAttachment>> &attachments) {
            if (!self)
                return;
            if (attachments) {
                if (store->addNote(
                        text, sectionID, std::nullopt, false, std::nullopt, *attachments, true)) {
                    self->clearAfterCommit();
                    self->setPendingURLs({});
                }
            }
            // A failure was told by a toast; the text and the files stay for another try.
            self->setSaving(false);
            Q_EMIT self->focusRequested(PanelFocusTarget::Composer);
        });
}

void ComposerView::cancel()
{
    if (m_field->text().isEmpty() && m_pendingURLs.isEmpty()) {
        Q_EMIT focusRequested(PanelFocusTarget::List);
        return;
    }
    m_field->setText(QString());
    setPendingURLs({});
}

void ComposerView::mousePressEvent(QMouseEvent *event)
{
    QWidget::mousePressEvent(event);
    Q_EMIT focusRequested(PanelFocusTarget::Composer);
    m_field->setFocus(Qt::MouseFocusReason);
}

void ComposerView::enterEvent(QEnterEvent *event)
{
    QWidget::enterEvent(event);
    m_hover->setTarget(true);
}

void ComposerView::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    m_hover->setTarget(false);
}

void ComposerView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void ComposerView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void ComposerView::dropEvent(QDropEvent *event)
{
    const QList<QUrl> files = droppedFiles(event->mimeData());
    if (files.isEmpty()) {
        event->ignore();
        return;
    }
    addPendingURLs(files);
    event->acceptProposedAction();
    Q_EMIT focusRequested(PanelFocusTarget::Composer);
}

void ComposerView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const ThemeColors colors = Theme::currentColors();
    const double emphasis = std::max(m_emphasis->value(), m_hover->value() * 0.5);
    paintElevatedSurface(painter, rect(), 12, colors, emphasis);
    if (m_emphasis->value() > 0) {
        // The box holding the keyboard carries a soft ring of the accent.
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ring = colors.accentSoft;
        ring.setAlphaF(float(ring.alphaF() * 2 * m_emphasis->value()));
        painter.setPen(QPen(ring, 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
    }
}

} // namespace Vesko
