// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/notewindow/NoteEditorView.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentListView.h"
#include "attachments/ThumbnailCache.h"
#include "panel/text/MarkdownFormat.h"
#include "panel/window/PanelCommands.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "store/NoteText.h"
#include "store/Store.h"

#include <QAbstractTextDocumentLayout>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

constexpr int barSpacing = 10;
constexpr int barPaddingH = 12;
constexpr int barPaddingV = 9;
constexpr int previewPadding = 12;
constexpr int previewSpacing = 12;
constexpr int iconSize = 14;

//! The rendered text: selectable, as tall as its content, so that the
//! scroll area around it does the scrolling.
class PreviewText : public QTextBrowser
{
public:
    explicit PreviewText(QWidget *parent)
        : QTextBrowser(parent)
    {
        setFrameShape(QFrame::NoFrame);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setOpenLinks(false);
        setTextInteractionFlags(
            Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard | Qt::LinksAccessibleByMouse);
        viewport()->setAutoFillBackground(false);
        document()->setDocumentMargin(0);
        connect(this, &QTextBrowser::anchorClicked, this,
            [](const QUrl &url) { QDesktopServices::openUrl(url); });
        connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged,
            this, [this](const QSizeF &size) { setFixedHeight(int(std::ceil(size.height()))); });
    }
};

QToolButton *barButton(QWidget *parent, const QString &title, const QString &toolTip)
{
    auto *button = new QToolButton(parent);
    button->setText(title);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

NoteEditorView::NoteEditorView(
    Store &store, AttachmentActions &attachments, const QUuid &noteID, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_attachments(attachments)
    , m_noteID(noteID)
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    m_editor = new QPlainTextEdit(this);
    m_editor->setObjectName(QStringLiteral("VeskoNoteEditor"));
    m_editor->setAccessibleName(tr("Note text"));
    m_editor->setFont(Theme::noteFont());
    m_editor->setFrameShape(QFrame::NoFrame);
    m_editor->viewport()->setAutoFillBackground(false);
    m_editor->setMinimumHeight(editorMinimumHeight);
    m_editor->setTabChangesFocus(false);

    m_previewArea = new QWidget(this);
    auto *previewLayout = new QVBoxLayout(m_previewArea);
    previewLayout->setContentsMargins(0, 0, 0, 0);
    previewLayout->setSpacing(0);
    auto *divider = new QFrame(m_previewArea);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);
    previewLayout->addWidget(divider);
    m_previewScroll = new QScrollArea(m_previewArea);
    m_previewScroll->setFrameShape(QFrame::NoFrame);
    m_previewScroll->setWidgetResizable(true);
    m_previewScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_previewScroll->setMinimumHeight(previewMinimumHeight);
    m_previewScroll->viewport()->setAutoFillBackground(false);
    auto *column = new QWidget(m_previewScroll);
    column->setAutoFillBackground(false);
    auto *columnLayout = new QVBoxLayout(column);
    columnLayout->setContentsMargins(
        previewPadding, previewPadding, previewPadding, previewPadding);
    columnLayout->setSpacing(previewSpacing);
    m_previewText = new PreviewText(column);
    m_previewText->setObjectName(QStringLiteral("VeskoNotePreview"));
    m_previewText->setAccessibleName(tr("Preview"));
    m_previewText->setFont(Theme::noteFont());
    columnLayout->addWidget(m_previewText);
    m_attachmentList = new AttachmentListView(m_attachments, ThumbnailCache::shared(), column);
    m_attachmentList->setExpanded(true);
    columnLayout->addWidget(m_attachmentList);
    columnLayout->addStretch(1);
    m_previewScroll->setWidget(column);
    previewLayout->addWidget(m_previewScroll);
    m_previewArea->setVisible(false);

    m_bar = makeBar();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_editor, 3);
    layout->addWidget(m_previewArea, 2);
    layout->addWidget(m_bar);

    // The text as the note has it now; an empty editor when the note is gone.
    if (const std::optional<Note> note = m_store.note(m_noteID))
        m_lastText = note->text;
    m_editor->setPlainText(m_lastText);
    m_editor->moveCursor(QTextCursor::End);
    connect(m_editor, &QPlainTextEdit::textChanged, this, &NoteEditorView::textEdited);
    connect(&m_store, &Store::libraryChanged, this, &NoteEditorView::refreshNote);
    refreshNote();
    setFocusProxy(m_editor);
}

NoteEditorView::~NoteEditorView() = default;

QWidget *NoteEditorView::makeBar()
{
    auto *bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("VeskoNoteBar"));
    bar->setAutoFillBackground(true);
    bar->setBackgroundRole(QPalette::Window);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(barPaddingH, barPaddingV, barPaddingH, barPaddingV);
    layout->setSpacing(barSpacing);

    m_done = barButton(bar, tr("Mark as Done"), QString());
    connect(m_done, &QToolButton::clicked, this, &NoteEditorView::toggleDone);
    layout->addWidget(m_done);

    m_attach = barButton(bar, tr("Add Attachment"), tr("Add images or files"));
    connect(
        m_attach, &QToolButton::clicked, this, [this] { m_attachments.addChosenFiles(m_noteID); });
    layout->addWidget(m_attach);

    m_source = new QLabel(bar);
    m_source->setFont(Theme::captionFont());
    m_source->setForegroundRole(QPalette::PlaceholderText);
    m_source->setTextFormat(Qt::PlainText);
    layout->addWidget(m_source);
    layout->addStretch(1);

    m_preview = barButton(bar, tr("Preview"), tr("Show or hide the rendered preview"));
    m_preview->setCheckable(true);
    connect(m_preview, &QToolButton::toggled, this, &NoteEditorView::setShowsPreview);
    layout->addWidget(m_preview);

    m_copy = barButton(bar, tr("Copy"), tr("Copy this note"));
    m_copy->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    connect(m_copy, &QToolButton::clicked, this, &NoteEditorView::copyNote);
    layout->addWidget(m_copy);
    return bar;
}

QString NoteEditorView::text() const
{
    return m_editor->toPlainText();
}

void NoteEditorView::textEdited()
{
    const QString text = m_editor->toPlainText();
    if (text == m_lastText)
        return;
    m_lastText = text;
    // A note that is gone takes nothing more: no change and no undo step.
    if (m_store.note(m_noteID))
        m_store.updateNote(m_noteID, text);
    if (m_showsPreview)
        refreshPreview();
}

void NoteEditorView::setShowsPreview(bool shows)
{
    if (m_showsPreview == shows)
        return;
    m_showsPreview = shows;
    m_preview->setChecked(shows);
    if (shows)
        refreshPreview();
    m_previewArea->setVisible(shows);
    refreshIcons();
    Q_EMIT showsPreviewChanged();
}

void NoteEditorView::refreshPreview()
{
    setMarkdownDocument(
        *m_previewText->document(), markdownAttributedString(m_lastText), markdownFormatColors());
}

void NoteEditorView::refreshNote()
{
    const std::optional<Note> note = m_store.note(m_noteID);
    m_isDone = note && note->isDone;
    m_done->setText(m_isDone ? tr("Done") : tr("Mark as Done"));
    m_done->setEnabled(note.has_value());
    m_attach->setEnabled(note.has_value());
    const QString source = note && note->source ? note->source->appName : QString();
    m_source->setText(source);
    m_source->setVisible(!source.isEmpty());
    // The preview lists attachments only while the note exists.
    m_attachmentList->setAttachments(note ? note->attachments : QList<NoteAttachment>(), m_noteID);
    refreshIcons();
}

void NoteEditorView::refreshIcons()
{
    const QColor color = palette().color(QPalette::ButtonText);
    m_done->setIcon(
        symbolIcon(m_isDone ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("circle"),
            color, iconSize));
    m_attach->setIcon(symbolIcon(QStringLiteral("paperclip"), color, iconSize));
    m_preview->setIcon(
        symbolIcon(m_showsPreview ? QStringLiteral("eye.fill") : QStringLiteral("eye.slash"), color,
            iconSize));
    m_copy->setIcon(symbolIcon(QStringLiteral("doc.on.doc"), color, iconSize));
}

void NoteEditorView::toggleDone()
{
    if (m_store.note(m_noteID))
        m_store.setDone({m_noteID}, !m_isDone);
}

void NoteEditorView::copyNote()
{
    m_store.copyNotes({m_noteID}, PanelCommands::shared().clipboard());
    ToastPresenter::shared().present(
        QCoreApplication::translate("TextOut", TextOutMessages::copied),
        QString::fromLatin1(TextOutMessages::copiedSymbol));
}

void NoteEditorView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_editor->setFocus(Qt::OtherFocusReason);
}

void NoteEditorView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Palette changes arrive from the constructor on, before the bar exists.
    if (event->type() == QEvent::PaletteChange && m_copy) {
        refreshIcons();
        if (m_showsPreview)
            refreshPreview();
    }
}

} // namespace Vesko
