// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/QuitGuard.h"

#include "panel/window/PanelCommands.h"
#include "store/Store.h"

#include <QMessageBox>
#include <QPushButton>

namespace Vesko {

QuitGuard::QuitGuard(Store &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&m_store, &Store::saveFailureChanged, this, &QuitGuard::followSaveFailure);
}

QuitGuard::~QuitGuard()
{
    delete m_question;
}

void QuitGuard::serve(PanelCommands &commands)
{
    PanelCommands::Hooks hooks = commands.hooks();
    QPointer<QuitGuard> guard(this);
    // Once the menu that chose it has closed.
    hooks.quit = [guard] {
        if (guard)
            QMetaObject::invokeMethod(guard, &QuitGuard::requestQuit, Qt::QueuedConnection);
    };
    commands.setHooks(hooks);
}

void QuitGuard::requestQuit()
{
    if (m_store.saveFailure().isEmpty()) {
        Q_EMIT quitAccepted();
        return;
    }
    if (m_question) {
        m_question->raise();
        m_question->activateWindow();
        return;
    }
    m_question = new QMessageBox(QMessageBox::Warning, tr("Vesko"),
        tr("Your latest changes could not be saved."), QMessageBox::NoButton);
    m_question->setAttribute(Qt::WA_DeleteOnClose);
    m_question->setInformativeText(m_store.saveFailure());
    QPushButton *quitAnyway
        = m_question->addButton(tr("Quit Anyway"), QMessageBox::DestructiveRole);
    QPushButton *cancel = m_question->addButton(tr("Cancel"), QMessageBox::RejectRole);
    m_question->setDefaultButton(cancel);
    m_question->setEscapeButton(cancel);
    connect(m_question, &QMessageBox::buttonClicked, this, [this, quitAnyway](auto *button) {
        if (button == quitAnyway)
            Q_EMIT quitAccepted();
    });
    m_question->open();
}

void QuitGuard::followSaveFailure()
{
    if (!m_question)
        return;
    if (!m_store.saveFailure().isEmpty()) {
        // Still failing, perhaps for another reason: the question says the latest.
        m_question->setInformativeText(m_store.saveFailure());
        return;
    }
    m_question->close();
    Q_EMIT quitAccepted();
}

} // namespace Vesko
