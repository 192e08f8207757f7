// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's commands that reach beyond the Store: the clipboard, files and
// folders of the desktop, the save dialog of an export, and the windows and
// services that live elsewhere in the program (the note window, Settings,
// the panel's window, quitting, attachments), reached through hooks that the
// program fills at start. Menus and views call these; tests fill the hooks
// with their own.

#pragma once

#include "library/Library.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class QMenu;
class QWidget;

namespace Vesko {

class Clipboard;
class QtDesktopFiles;
class Store;

class PanelCommands : public QObject
{
    Q_OBJECT

public:
    //! What the program provides. An empty hook leaves its entry without effect.
    struct Hooks
    {
        //! Opens a note in a window of its own.
        std::function<void(const QUuid &noteID)> openNoteWindow;
        //! Fills the dashboard submenu of "More options" with the tray menu's
        //! entries; without it the submenu is left out.
        std::function<void(QMenu &menu)> fillDashboard;
        //! The program's command menus (application, file, edit, notes,
        //! sections), shown under "All Commands" in "More options"; without
        //! it that submenu is left out.
        std::function<QList<QMenu *>()> commandMenus;
        //! Opens the Settings window.
        std::function<void()> openSettings;
        //! Quits the program the way "Quit Vesko" does.
        std::function<void()> quit;
        std::function<void()> resetPanelPosition;
        std::function<void()> resetPanelSize;
        //! Asks for files (without blocking) and attaches them to a note.
        std::function<void(const QUuid &noteID)> addAttachments;
        //! Attaches the file or image of the clipboard to a note.
        std::function<void(const QUuid &noteID)> pasteAttachments;
        //! Asks for files without blocking, and hands the chosen ones over
        //! (nothing when the dialog was cancelled, or without this hook).
        std::function<void(std::function<void(const QList<QUrl> &)>)> chooseFiles;
        //! Copies the files of a note not yet written into the attachments
        //! folder off the main thread, and answers with their records, or with
        //! nothing after a failure, which it has told the user of.
        std::function<void(
            const QList<QUrl> &, std::function<void(const std::optional<QList<NoteAttachment>> &)>)>
            importForNewNote;
    };

    explicit PanelCommands(QObject *parent = nullptr);
    ~PanelCommands() override;

    //! The commands of the process, made on first use and never destroyed.
    static PanelCommands &shared();

    const Hooks &hooks() const { return m_hooks; }
    void setHooks(Hooks hooks);

    //! The desktop's clipboard, made at first use.
    Clipboard &clipboard();

    void openNoteWindow(const QUuid &noteID) const;
    void openSettings() const;
    void quit() const;
    void resetPanelPosition() const;
    void resetPanelSize() const;
    void addAttachments(const QUuid &noteID) const;
    void pasteAttachments(const QUuid &noteID) const;
    void chooseFiles(std::function<void(const QList<QUrl> &)> done) const;
    //! Imports the files of a note not yet written; \a done gets their
    //! records, or nothing after a failure (the user has been told).
    void importForNewNote(const QList<QUrl> &urls,
        std::function<void(const std::optional<QList<NoteAttachment>> &)> done) const;

    //! Opens an attachment's file with the desktop's default application.
    void openAttachment(const NoteAttachment &attachment);
    //! Shows an attachment's file in the file manager.
    void revealAttachment(const NoteAttachment &attachment);
    //! Shows the library file in the file manager ("Show Notes File in Files").
    void revealLibraryFile();
    //! Asks where to save \a text ("Vesko Notes.md") without blocking, writes
    //! it off the main thread, and says "Exported", or shows why it failed.
    void exportMarkdown(const QString &text, QWidget *parent);
    //! Shows \a path selected in the desktop's file manager, or opens its
    //! folder when no file manager answers.
    static void showInFileManager(const QString &path);

    //! The export dialog that is open, if any; for tests and screenshots.
    QWidget *exportDialog() const { return m_exportDialog; }

Q_SIGNALS:
    //! An export was written to \a path (or failed with \a failure).
    void exportFinished(const QString &path, const QString &failure);

private:
    //! The desktop's file manager and default applications.
    QtDesktopFiles &desktopFiles();
    void writeExport(const QString &text, const QString &path, QWidget *parent);

    Hooks m_hooks;
    std::unique_ptr<Clipboard> m_clipboard;
    QPointer<QWidget> m_exportDialog;
};

} // namespace Vesko
