// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program. A second launch hands "reopen" to the running process and
// ends. The first reads the library into the Store before anything else,
// shows the floating panel once the event loop runs, and writes the library
// on the way out, however it is asked to end.

#include "attachments/DesktopAttachments.h"
#include "capture/CaptureEngine.h"
#include "library/Library.h"
#include "panel/NoteWindowManager.h"
#include "panel/PanelCommands.h"
#include "panel/PanelController.h"
#include "panel/PanelState.h"
#include "platform/Logging.h"
#include "platform/TerminationSignals.h"
#include "shell/AppDelegate.h"
#include "shell/DesktopCapture.h"
#include "shell/Preferences.h"
#include "shell/SingleInstance.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "shell/TrayIcon.h"
#include "store/Store.h"

#include <QApplication>
#include <QTimer>

using namespace Vesko;

int main(int argc, char *argv[])
{
    QApplication::setOrganizationName(QStringLiteral("Vesko"));
    QApplication::setApplicationName(QStringLiteral("Vesko"));
    QApplication::setApplicationVersion(QStringLiteral(VESKO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vesko"));
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(Theme::applicationIcon());

    SingleInstance instance;
    if (instance.forwardReopen())
        return 0;
    if (const std::optional<QString> failure = instance.listen())
        qCWarning(lcStorage, "Cannot accept other launches: %s", qUtf8Printable(*failure));

    // The Store first: the library is read and repaired before anything else runs.
    Store &store = Store::shared();
    Preferences &preferences = Preferences::shared();
    qCInfo(lcStorage, "Library at %s: %lld projects, %lld notes",
        qUtf8Printable(preferences.libraryPath()), qlonglong(store.library().projects.size()),
        qlonglong(noteCount(store.library())));

    PanelController &panel = PanelController::shared();
    installAttachmentCommands(PanelCommands::shared());
    // The hot keys' combinations and capture availability are read now; nothing
    // is registered or listened to before the launch has finished.
    DesktopCapture capture(store, preferences, panel, ToastPresenter::shared());
    AppDelegate delegate(store, preferences, panel, capture.launchHooks());
    TrayIcon tray(store, panel, preferences);
    {
        PanelCommands::Hooks hooks = PanelCommands::shared().hooks();
        hooks.openNoteWindow = [](const QUuid &id) { NoteWindowManager::shared().open(id); };
        // The tray's menu is also in the panel's "More options", for desktops without a tray.
        hooks.fillDashboard = [&tray](QMenu &menu) { tray.fillMenu(menu); };
        hooks.openSettings = [&tray] { Q_EMIT tray.settingsRequested(); };
        hooks.quit = [&tray] { Q_EMIT tray.quitRequested(); };
        PanelCommands::shared().setHooks(hooks);
    }

    QObject::connect(
        &instance, &SingleInstance::reopenRequested, &delegate, &AppDelegate::handleReopen);
    QObject::connect(&tray, &TrayIcon::quitRequested, &app, &QApplication::quit);
    QObject::connect(&tray, &TrayIcon::captureRequested, &capture,
        [&capture] { capture.engine().captureSelection(); });
    TerminationSignals terminationSignals;
    QObject::connect(
        &terminationSignals, &TerminationSignals::terminationRequested, &app, &QApplication::quit);
    // Quit Vesko, the session's logout and the signals all end here.
    QObject::connect(&app, &QApplication::aboutToQuit, &delegate, &AppDelegate::willTerminate);

    QTimer::singleShot(0, &delegate, &AppDelegate::didFinishLaunching);
    const int status = app.exec();
    delegate.willTerminate();
    return status;
}
