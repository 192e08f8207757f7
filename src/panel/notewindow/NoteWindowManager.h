// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opens notes in windows of their own, at most one per note: a second open
// brings the note's window forward. New windows are titled by the note's
// text, take the appearance of the moment and follow it when it changes,
// and open where the last note window was left, also after a restart.

#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QTimer>
#include <QUuid>

namespace Vesko {

class AttachmentActions;
class NoteWindow;
class Preferences;
class Store;

class NoteWindowManager : public QObject
{
    Q_OBJECT

public:
    //! The size of a new window's content before any frame was remembered.
    static constexpr QSize contentSize {460, 380};
    //! Where the settings file keeps the last note window's frame.
    static inline const QString frameKey = QStringLiteral("noteWindowFrame");
    //! The quiet time after a move or resize before the frame is written.
    static constexpr int frameSaveDelayMilliseconds = 400;

    NoteWindowManager(Store &store, Preferences &preferences, AttachmentActions &attachments,
        QObject *parent = nullptr);
    ~NoteWindowManager() override;

    //! The manager of the process, made on first use and never destroyed.
    static NoteWindowManager &shared();

    //! Shows the window of a note, made first if it has none; nothing for a
    //! note that cannot be found. Returns the window.
    NoteWindow *open(const QUuid &noteID);
    //! The open window of a note, if any.
    NoteWindow *window(const QUuid &noteID) const;
    QList<QUuid> openNoteIDs() const { return m_windows.keys(); }
    //! The open windows take the appearance preference of the moment.
    void refreshAppearance();

Q_SIGNALS:
    //! A new note window is about to be shown (the program's commands join it).
    void windowOpened(QWidget *window);

private:
    void bringForward(NoteWindow *window);
    void placeNew(NoteWindow *window);
    void rememberFrame(NoteWindow *window);
    void applyAppearance(NoteWindow *window);
    void windowWillClose(const QUuid &noteID);

    Store &m_store;
    Preferences &m_preferences;
    AttachmentActions &m_attachments;
    QHash<QUuid, QPointer<NoteWindow>> m_windows;
    //! The window last moved or resized, written once the moving stops.
    QPointer<NoteWindow> m_movedWindow;
    QTimer m_frameSave;
};

} // namespace Vesko
