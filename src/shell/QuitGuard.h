// SPDX-License-Identifier: GPL-3.0-or-later
//
// "Quit Vesko" while the latest changes could not be saved asks first, so that
// they are not given up unseen. At any other time the quit goes ahead at once.
// Every quit the user chooses (the tray menu, the panel's menu and its Ctrl+Q)
// comes through requestQuit(). The question is a window of its own: nothing
// waits for the answer, and it goes by itself once a later save succeeds.

#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

namespace Vesko {

class PanelCommands;
class Store;

class QuitGuard : public QObject
{
    Q_OBJECT

public:
    explicit QuitGuard(Store &store, QObject *parent = nullptr);
    ~QuitGuard() override;

    //! Quits at once, or asks first while the last save failed.
    void requestQuit();
    //! Makes the panel's "Quit Vesko" come here.
    void serve(PanelCommands &commands);
    //! The question on screen, if any.
    QMessageBox *question() const { return m_question; }

Q_SIGNALS:
    //! The program may end now.
    void quitAccepted();

private:
    //! A save succeeded while the question was open: nothing is left to
    //! lose, so the quit that was asked for goes ahead.
    void followSaveFailure();

    Store &m_store;
    QPointer<QMessageBox> m_question;
};

} // namespace Vesko
