// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/notewindow/NoteWindowManager.h"

#include "attachments/DesktopAttachments.h"
#include "panel/notewindow/NoteEditorView.h"
#include "panel/notewindow/NoteWindow.h"
#include "platform/SettingsFile.h"
#include "platform/x11/X11Window.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "store/NoteTitle.h"
#include "store/Store.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

namespace Vesko {

NoteWindowManager::NoteWindowManager(
    Store &store, Preferences &preferences, AttachmentActions &attachments, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_attachments(attachments)
{
    m_frameSave.setSingleShot(true);
    m_frameSave.setInterval(frameSaveDelayMilliseconds);
    connect(&m_frameSave, &QTimer::timeout, this, [this] {
        if (m_movedWindow)
            rememberFrame(m_movedWindow);
    });
}

NoteWindowManager::~NoteWindowManager()
{
    for (const QPointer<NoteWindow> &window : std::as_const(m_windows))
        delete window.data();
}

NoteWindowManager &NoteWindowManager::shared()
{
    static NoteWindowManager *const manager
        = new NoteWindowManager(Store::shared(), Preferences::shared(), attachmentActions());
    return *manager;
}

NoteWindow *NoteWindowManager::window(const QUuid &noteID) const
{
    return m_windows.value(noteID).data();
}

NoteWindow *NoteWindowManager::open(const QUuid &noteID)
{
    if (NoteWindow *existing = window(noteID)) {
        bringForward(existing);
        return existing;
    }
    const std::optional<Note> note = m_store.note(noteID);
    if (!note)
        return nullptr;

    auto *window = new NoteWindow(m_store, m_attachments, noteID);
    // The title is the note's as it is now; later edits leave it.
    QString title = noteWindowTitle(note->text);
    // Qt reads "[*]" in a title as the place of the modified mark.
    title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    window->setWindowTitle(title);
    window->setWindowIcon(Theme::applicationIcon());
    applyAppearance(window);
    placeNew(window);
    Q_EMIT windowOpened(window);
    connect(window, &NoteWindow::closing, this, [this, noteID, window] {
        rememberFrame(window);
        windowWillClose(noteID);
    });
    // A drag moves the window many times a second; the file is written when it rests.
    connect(window, &NoteWindow::frameChanged, this, [this, window] {
        m_movedWindow = window;
        m_frameSave.start();
    });
    m_windows.insert(noteID, window);
    bringForward(window);
    return window;
}

void NoteWindowManager::placeNew(NoteWindow *window)
{
    window->resize(contentSize);
    const QByteArray frame = settingValue(frameKey).toByteArray();
    if (!frame.isEmpty() && window->restoreGeometry(frame))
        return;
    QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frameRect(QPoint(), contentSize);
    frameRect.moveCenter(screen->availableGeometry().center());
    window->move(frameRect.topLeft());
}

void NoteWindowManager::rememberFrame(NoteWindow *window)
{
    if (!window->isVisible())
        return;
    SettingsWriter::shared().setValue(frameKey, window->saveGeometry());
}

void NoteWindowManager::refreshAppearance()
{
    for (const QPointer<NoteWindow> &window : std::as_const(m_windows)) {
        if (window)
            applyAppearance(window);
    }
}

void NoteWindowManager::applyAppearance(NoteWindow *window)
{
    switch (m_preferences.appearance()) {
    case AppAppearance::System:
        window->setPalette(QPalette());
        break;
    case AppAppearance::Light:
        window->setPalette(Theme::palette(false));
        break;
    case AppAppearance::Dark:
        window->setPalette(Theme::palette(true));
        break;
    }
    window->update();
}

void NoteWindowManager::bringForward(NoteWindow *window)
{
    if (window->isMinimized())
        window->showNormal();
    else
        window->show();
    window->raise();
    window->activateWindow();
    // A window manager may refuse an application's own request to take the
    // focus; the user asked for this window, so ask once more as a pager does.
    QPointer<NoteWindow> guard(window);
    QTimer::singleShot(0, this, [guard] {
        if (!guard || !guard->isVisible() || guard->isActiveWindow())
            return;
        guard->raise();
        X11Window::requestActivation(guard->windowHandle());
    });
}

void NoteWindowManager::windowWillClose(const QUuid &noteID)
{
    m_windows.remove(noteID);
}

} // namespace Vesko
