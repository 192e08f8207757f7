// SPDX-License-Identifier: GPL-3.0-or-later
//
// "Quit Vesko" while the latest changes could not be saved asks first, so that
// they are not given up unseen. At any other time the quit goes ahead at once.
// The question is a window of its own: nothing waits for the answer.

#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

namespace Vesko {

class Store;

class QuitGuard : public QObject
{
    Q_OBJECT

public:
    explicit QuitGuard(Store &store, QObject *parent = nullptr);
    ~QuitGuard() override;

    //! Quits at once, or asks first while the last save failed.
    void requestQuit();
    //! The question on screen, if any.
    QMessageBox *question() const { return m_question; }

Q_SIGNALS:
    //! The program may end now.
    void quitAccepted();

private:
    Store &m_store;
    QPointer<QMessageBox> m_question;
};

} // namespace Vesko
