// SPDX-License-Identifier: GPL-3.0-or-later
//
// The line at the foot of the panel after the library file could not be read
// at start: it says where the file was set aside and offers "Restore Latest
// Backup", "Show in Files" and "Dismiss". It watches the Store itself and
// goes when the user restores a backup or dismisses it.

#pragma once

#include <QFrame>

#include <functional>

class QLabel;
class QPushButton;

namespace Vesko {

class Store;

class UnreadableLibraryView : public QFrame
{
    Q_OBJECT

public:
    //! Shows a file in the desktop's file manager.
    using ShowInFiles = std::function<void(const QString &path)>;

    UnreadableLibraryView(Store &store, ShowInFiles showInFiles, QWidget *parent = nullptr);

    //! What the line says; empty while there is nothing to tell.
    QString message() const;
    QPushButton *restoreButton() const { return m_restore; }
    QPushButton *showInFilesButton() const { return m_showInFiles; }
    QPushButton *dismissButton() const { return m_dismiss; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void applyColors();

    Store &m_store;
    ShowInFiles m_showInFilesHook;
    QLabel *m_message = nullptr;
    QPushButton *m_restore = nullptr;
    QPushButton *m_showInFiles = nullptr;
    QPushButton *m_dismiss = nullptr;
};

} // namespace Vesko
