// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/UnreadableLibraryView.h"

#include "shell/Theme.h"
#include "store/Store.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

QPushButton *smallButton(const QString &text, QWidget *parent)
{
    auto *button = new QPushButton(text, parent);
    button->setFont(Theme::captionFont());
    // Reached with Tab like every other control of the panel.
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAutoDefault(false);
    return button;
}

} // namespace

UnreadableLibraryView::UnreadableLibraryView(Store &store, ShowInFiles showInFiles, QWidget *parent)
    : QFrame(parent)
    , m_store(store)
    , m_showInFilesHook(std::move(showInFiles))
{
    setObjectName(QStringLiteral("VeskoUnreadableLibrary"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);

    m_message = new QLabel(this);
    m_message->setFont(Theme::captionFont());
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_restore = smallButton(tr("Restore Latest Backup"), this);
    m_showInFiles = smallButton(tr("Show in Files"), this);
    m_dismiss = smallButton(tr("Dismiss"), this);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(6);
    buttons->addWidget(m_restore);
    buttons->addWidget(m_showInFiles);
    buttons->addStretch();
    buttons->addWidget(m_dismiss);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->setSpacing(4);
    layout->addWidget(m_message);
    layout->addLayout(buttons);

    connect(m_restore, &QPushButton::clicked, &m_store, &Store::restoreLatestBackup);
    connect(m_dismiss, &QPushButton::clicked, &m_store, &Store::dismissUnreadableLibrary);
    connect(m_showInFiles, &QPushButton::clicked, this, [this] {
        if (m_store.unreadableLibrary() && m_showInFilesHook)
            m_showInFilesHook(m_store.unreadableLibrary()->path);
    });
    connect(&m_store, &Store::unreadableLibraryChanged, this, &UnreadableLibraryView::refresh);
    applyColors();
    refresh();
}

QString UnreadableLibraryView::message() const
{
    return m_store.unreadableLibrary() ? m_message->text() : QString();
}

void UnreadableLibraryView::refresh()
{
    const std::optional<UnreadableLibrary> &unreadable = m_store.unreadableLibrary();
    setVisible(unreadable.has_value());
    if (!unreadable)
        return;
    QString text = unreadable->isSetAside
        ? tr("Your notes file could not be read. It was set aside as “%1”.")
              .arg(QFileInfo(unreadable->path).fileName())
        : tr("Your notes file could not be read.");
    if (!m_store.restoreFailure().isEmpty())
        text += u' ' + m_store.restoreFailure();
    m_message->setText(text);
    m_message->setToolTip(unreadable->reason);
    // A screen reader reads the whole line when it reaches the group.
    setAccessibleName(text);
    m_restore->setEnabled(!m_store.isRestoringBackup() && !unreadable->backups.isEmpty());
    m_restore->setToolTip(
        unreadable->backups.isEmpty() ? tr("There is no backup to restore.") : QString());
}

void UnreadableLibraryView::applyColors()
{
    QPalette colors = m_message->palette();
    colors.setColor(QPalette::WindowText, Theme::currentColors().text);
    m_message->setPalette(colors);
}

void UnreadableLibraryView::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColors();
}

} // namespace Vesko
