// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/StorageSettingsView.h"

#include "library/LibraryFile.h"
#include "panel/window/PanelCommands.h"
#include "shell/LibraryLocation.h"
#include "shell/Preferences.h"
#include "shell/SettingsForm.h"
#include "shell/Toast.h"
#include "store/Store.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Vesko {

namespace {

//! Puts \a text above everything else in Qt's own file dialog.
void addMessage(QFileDialog *dialog, const QString &text)
{
    auto *grid = qobject_cast<QGridLayout *>(dialog->layout());
    if (!grid)
        return;
    struct Placed
    {
        QLayoutItem *item;
        int row, column, rowSpan, columnSpan;
    };
    QList<Placed> placed;
    const int columns = grid->columnCount();
    QList<int> stretches;
    for (int row = 0; row < grid->rowCount(); ++row)
        stretches.append(grid->rowStretch(row));
    while (grid->count() > 0) {
        Placed entry {};
        grid->getItemPosition(0, &entry.row, &entry.column, &entry.rowSpan, &entry.columnSpan);
        entry.item = grid->takeAt(0);
        placed.append(entry);
    }
    auto *message = new QLabel(text, dialog);
    message->setWordWrap(true);
    grid->addWidget(message, 0, 0, 1, columns);
    for (const Placed &entry : std::as_const(placed))
        grid->addItem(entry.item, entry.row + 1, entry.column, entry.rowSpan, entry.columnSpan);
    grid->setRowStretch(0, 0);
    for (int row = 0; row < stretches.size(); ++row)
        grid->setRowStretch(row + 1, stretches.at(row));
}

} // namespace

StorageSettingsView::StorageSettingsView(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_path(new QLineEdit)
    , m_reveal(new QPushButton(tr("Show in Files")))
    , m_move(new QPushButton(tr("Move…")))
    , m_useDefault(new QPushButton(tr("Use Default Location")))
    , m_cancelMove(new QPushButton(tr("Cancel Move")))
    , m_progress(makeFootnote(tr("Moving your notes…")))
    , m_errorLine(makeErrorLine())
    , m_noteCount(new QLabel)
    , m_projectCount(new QLabel)
{
    auto *layout = new QVBoxLayout(this);

    auto *local = new SettingsGroup(tr("Local file"), this);
    // The whole path, however long: read-only, scrollable and copyable.
    m_path->setReadOnly(true);
    m_path->setFrame(false);
    m_path->setBackgroundRole(QPalette::Window);
    m_path->setStyleSheet(QStringLiteral("QLineEdit { background: transparent; }"));
    local->addRow(tr("Notes file"), m_path);
    local->addButtons({m_reveal, m_move, m_useDefault, m_cancelMove});
    m_progress->hide();
    local->addRow(m_progress);
    local->addRow(m_errorLine);
    local->addRow(makeFootnote(tr("One JSON file on your computer. No sync, no server, no "
                                  "account. Put it in a synced folder if you want it on more "
                                  "than one machine.")));
    layout->addWidget(local);

    auto *exporting = new SettingsGroup(tr("Export"), this);
    auto *exportAll = new QPushButton(tr("Export All as Markdown…"));
    auto *copyProject = new QPushButton(tr("Copy This Project as List"));
    exporting->addButtons({exportAll, copyProject});
    layout->addWidget(exporting);

    auto *housekeeping = new SettingsGroup(tr("Housekeeping"), this);
    housekeeping->addRow(tr("Notes"), m_noteCount);
    housekeeping->addRow(tr("Projects"), m_projectCount);
    auto *clearCompleted = new QPushButton(tr("Clear Completed in This Project"));
    housekeeping->addButtons({clearCompleted});
    layout->addWidget(housekeeping);

    connect(m_reveal, &QPushButton::clicked, this, [this] {
        if (m_services.revealInFiles)
            m_services.revealInFiles(m_services.preferences.libraryPath());
    });
    connect(m_move, &QPushButton::clicked, this, &StorageSettingsView::chooseMoveDestination);
    connect(
        m_useDefault, &QPushButton::clicked, this, [this] { moveLibrary(defaultLibraryURL()); });
    connect(m_cancelMove, &QPushButton::clicked, &m_services.store, &Store::cancelLibraryMove);
    connect(exportAll, &QPushButton::clicked, this, [this] {
        PanelCommands::shared().exportMarkdown(m_services.store.markdownExportText(), window());
    });
    connect(copyProject, &QPushButton::clicked, this, [this] {
        QList<QUuid> ids;
        for (const Note &note : m_services.store.visibleNotes())
            ids.append(note.id);
        if (m_services.store.copyAsList(ids, m_services.clipboard))
            ToastPresenter::shared().present(tr("Copied as List"), QStringLiteral("list.number"),
                ToastPresenter::standardDurationMilliseconds);
    });
    connect(clearCompleted, &QPushButton::clicked, &m_services.store, &Store::clearCompleted);
    connect(&m_services.preferences, &Preferences::libraryPathChanged, this,
        &StorageSettingsView::refreshLocation);
    connect(&m_services.store, &Store::libraryChanged, this, &StorageSettingsView::refreshCounts);
    connect(&m_services.store, &Store::isMovingLibraryChanged, this,
        &StorageSettingsView::refreshMoving);
    connect(&m_services.store, &Store::libraryMoveProgress, this,
        &StorageSettingsView::showMoveProgress);
    connect(&m_services.store, &Store::libraryMoveFinished, this, &StorageSettingsView::finishMove);
    refreshLocation();
    refreshCounts();
    refreshMoving();
}

bool StorageSettingsView::isMoving() const
{
    return m_services.store.isMovingLibrary();
}

QString StorageSettingsView::progressText() const
{
    return m_progress->isVisibleTo(this) ? m_progress->text() : QString();
}

bool StorageSettingsView::offersDefaultLocation() const
{
    return LibraryLocation::differsFromDefault(m_services.preferences.libraryPath());
}

void StorageSettingsView::chooseMoveDestination()
{
    auto *dialog = new QFileDialog(window(), tr("Move Notes File"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    // Qt's own dialog, so that it can carry the message and the button's words.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setLabelText(QFileDialog::Accept, tr("Move Here"));
    addMessage(dialog, tr("Choose where Vesko should keep your notes file."));
    dialog->setDirectory(QFileInfo(m_services.preferences.libraryPath()).absolutePath());
    connect(dialog, &QFileDialog::fileSelected, this, &StorageSettingsView::moveLibrary);
    dialog->open();
}

void StorageSettingsView::moveLibrary(const QString &destination)
{
    if (isMoving())
        return;
    // The Store copies in the background; its flag, and with it the progress
    // line, is set before this returns.
    m_services.store.moveLibrary(destination);
}

void StorageSettingsView::refreshMoving()
{
    const bool moving = isMoving();
    if (moving) {
        m_error.clear();
        m_errorLine->hide();
        m_progress->setText(tr("Moving your notes…"));
    }
    m_progress->setVisible(moving);
    m_cancelMove->setVisible(moving);
    for (QPushButton *button : {m_move, m_useDefault})
        button->setEnabled(!moving);
}

void StorageSettingsView::showMoveProgress(qint64 copiedBytes, qint64 totalBytes)
{
    if (!isMoving() || totalBytes <= 0)
        return;
    const int percent = int(std::clamp(copiedBytes * 100 / totalBytes, qint64(0), qint64(100)));
    m_progress->setText(tr("Moving your notes… %1%").arg(percent));
}

void StorageSettingsView::finishMove(const QString &failure)
{
    m_error = failure;
    m_errorLine->setText(m_error);
    m_errorLine->setVisible(!m_error.isEmpty());
    refreshMoving();
    refreshLocation();
    Q_EMIT moveFinished();
}

void StorageSettingsView::refreshLocation()
{
    m_path->setText(m_services.preferences.libraryPath());
    m_path->setCursorPosition(0);
    m_path->setToolTip(m_path->text());
    m_useDefault->setVisible(offersDefaultLocation());
}

void StorageSettingsView::refreshCounts()
{
    m_noteCount->setText(
        tr("%1 in this project").arg(LibraryLocation::activeProjectNoteCount(m_services.store)));
    m_projectCount->setText(QString::number(LibraryLocation::projectCount(m_services.store)));
}

} // namespace Vesko
