// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Storage tab of Settings: where the notes file lies, showing it in the
// file manager, moving it (and back to the default place) with a progress
// line while the move runs and the failure under it; exporting and copying
// the notes; and the counts with "Clear Completed in This Project". The move
// is the Store's: the tab follows it from the Store, so a tab made while a
// move runs shows its progress and its end as well.

#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace Vesko {

class Clipboard;
class Preferences;
class Store;

class StorageSettingsView : public QWidget
{
    Q_OBJECT

public:
    struct Services
    {
        Store &store;
        Preferences &preferences;
        Clipboard &clipboard;
        //! Shows a file selected in the desktop's file manager.
        std::function<void(const QString &path)> revealInFiles;
    };

    explicit StorageSettingsView(const Services &services, QWidget *parent = nullptr);

    //! Moves the library to \a destination, as "Move Here" and "Use Default
    //! Location" do; the tab shows the progress and then the outcome.
    void moveLibrary(const QString &destination);
    bool isMoving() const;
    //! The failure of the last move, or empty.
    QString error() const { return m_error; }
    //! The line shown while a move runs, or empty.
    QString progressText() const;
    bool offersDefaultLocation() const;

Q_SIGNALS:
    void moveFinished();

private:
    void chooseMoveDestination();
    void refreshMoving();
    void showMoveProgress(qint64 copiedBytes, qint64 totalBytes);
    void finishMove(const QString &failure);
    void refreshLocation();
    void refreshCounts();

    Services m_services;
    QString m_error;
    QLineEdit *m_path;
    QPushButton *m_reveal;
    QPushButton *m_move;
    QPushButton *m_useDefault;
    //! Shown while a move copies the attachments.
    QPushButton *m_cancelMove;
    QLabel *m_progress;
    QLabel *m_errorLine;
    QLabel *m_noteCount;
    QLabel *m_projectCount;
};

} // namespace Vesko
