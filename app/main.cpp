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
#include "panel/PanelRootView.h"
#include "panel/PanelState.h"
#include "panel/ShortcutSheetView.h"
#include "platform/ExitHook.h"
#include "platform/Logging.h"
#include "platform/TerminationSignals.h"
#include "platform/x11/X11Session.h"
#include "shell/AppCommands.h"
#include "shell/AppDelegate.h"
#include "shell/CaptureStatus.h"
#include "shell/DesktopCapture.h"
#include "shell/KeyboardContextMenu.h"
#include "shell/Preferences.h"
#include "shell/QuitGuard.h"
#include "shell/SettingsWindowController.h"
#include "shell/SingleInstance.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "shell/TrayIcon.h"
#include "store/Store.h"

#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QSignalBlocker>
#include <QTimer>

using namespace Vesko;

namespace {

// Opens the desktop's keyboard-shortcut settings, where it has a page for
// them that is installed; empty otherwise.
std::function<void()> shortcutSettingsOpener()
{
    const QStringList command
        = keyboardShortcutSettingsCommand(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (command.isEmpty() || QStandardPaths::findExecutable(command.first()).isEmpty())
        return {};
    return [command] { QProcess::startDetached(command.first(), command.mid(1)); };
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setOrganizationName(QStringLiteral("Vesko"));
    QApplication::setApplicationName(QStringLiteral("Vesko"));
    QApplication::setApplicationVersion(QStringLiteral(VESKO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vesko"));
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(Theme::applicationIcon());
    // Shift+F10 opens the focused control's menu, in every window of the program.
    app.installEventFilter(new KeyboardContextMenu(&app));

    // One process runs per library file; a later launch hands it "reopen"
    // and ends. The preferences say which file that is; nothing else is read.
    Preferences &preferences = Preferences::shared();
    SingleInstance instance(preferences.libraryURL());
    SingleInstance::Claim claim = instance.claim();
    if (claim == SingleInstance::Claim::HeldElsewhere) {
        if (instance.forwardReopen())
            return 0;
        // No answer: the running process may be ending just now, and its lock with it.
        claim = instance.claimWithin(SingleInstance::handOverMilliseconds);
        if (claim == SingleInstance::Claim::HeldElsewhere) {
            qCWarning(lcStorage, "Vesko runs already, but does not answer");
            return 1;
        }
    }
    if (claim == SingleInstance::Claim::Failed) {
        qCWarning(lcStorage, "Cannot make sure that Vesko runs once: %s",
            qUtf8Printable(instance.failure()));
    } else if (const std::optional<QString> failure = instance.listen()) {
        qCWarning(lcStorage, "Cannot accept other launches: %s", qUtf8Printable(*failure));
    }
    // A moved library takes its lock along.
    QObject::connect(
        &preferences, &Preferences::libraryPathChanged, &instance, [&instance, &preferences] {
            if (!instance.followLibrary(preferences.libraryURL()))
                qCWarning(lcStorage, "Another Vesko uses the library at %s",
                    qUtf8Printable(preferences.libraryURL()));
        });

    // The Store first: the library is read and repaired before anything else runs.
    Store &store = Store::shared();
    qCInfo(lcStorage, "Library at %s: %lld projects, %lld notes",
        qUtf8Printable(preferences.libraryPath()), qlonglong(store.library().projects.size()),
        qlonglong(noteCount(store.library())));

    PanelController &panel = PanelController::shared();
    installAttachmentCommands(PanelCommands::shared());
    // The hot keys' combinations and capture availability are read now; nothing
    // is registered or listened to before the launch has finished.
    DesktopCapture capture(store, preferences, panel, ToastPresenter::shared());
    SettingsWindowController &settings = SettingsWindowController::shared();
    settings.setServices(
        SettingsView::Services {preferences, panel, LoginItem::forCurrentProgram(),
            {preferences, capture.permission(), capture.engine(), capture.hotKeys(),
                capture.keyLayout(), &X11Session::captureObstacle, shortcutSettingsOpener()},
            {store, preferences, PanelCommands::shared().clipboard(),
                &PanelCommands::showInFileManager}},
        capture.permission());
    AppDelegate::Hooks hooks = capture.launchHooks();
    // When capture is not available at launch, Settings says why.
    hooks.showSettings = [&settings] { settings.show(SettingsTab::Capture); };
    // A new appearance reaches Settings and the note windows after the panel.
    hooks.refreshWindows = [&settings] {
        settings.refreshAppearance();
        NoteWindowManager::shared().refreshAppearance();
    };
    AppDelegate delegate(store, preferences, panel, hooks);
    TrayIcon tray(store, panel, preferences);
    // The tray menu, the panel's overflow menu and its Ctrl+, open Settings.
    QObject::connect(
        &tray, &TrayIcon::settingsRequested, &settings, [&settings] { settings.show(); });
    // Quit Vesko, from the tray or the panel, asks first while the latest
    // changes could not be saved.
    QuitGuard quitGuard(store);
    quitGuard.serve(PanelCommands::shared());

    // What the panel's menus reach beyond the Store, beside the attachments:
    // Settings (quitting is the quit guard's, above), the window's resets.
    PanelCommands::Hooks commands = PanelCommands::shared().hooks();
    commands.openSettings = [&settings] { settings.show(); };
    commands.resetPanelPosition = [&panel] { panel.resetPanelPosition(); };
    commands.resetPanelSize = [&panel] { panel.resetPanelSize(); };
    commands.openNoteWindow = [](const QUuid &id) { NoteWindowManager::shared().open(id); };
    // The tray's menu is also in the panel's "More options", for desktops without a tray.
    commands.fillDashboard = [&tray](QMenu &menu) { tray.fillMenu(menu); };
    PanelCommands::shared().setHooks(commands);
    // The program's commands with their keys, in every note window.
    MenuBarCommands appCommandHooks;
    appCommandHooks.isPanelShown = [&panel] { return panel.isPanelShown(); };
    appCommandHooks.hidePanel = [&panel] { panel.hide(); };
    appCommandHooks.showPanel = [&panel](bool focusComposer) { panel.show(true, focusComposer); };
    appCommandHooks.togglePanel = [&panel] { panel.toggle(); };
    appCommandHooks.captureSelection = [&capture] { capture.engine().captureSelection(); };
    appCommandHooks.openSettings = [&settings] { settings.show(); };
    appCommandHooks.quit = commands.quit;
    AppCommands appCommands(store, PanelState::shared(), appCommandHooks);
    QObject::connect(&NoteWindowManager::shared(), &NoteWindowManager::windowOpened, &appCommands,
        [&appCommands](QWidget *window) { appCommands.attachTo(window); });
    // And, for the pointer, under "More options".
    PanelCommands::Hooks withCommandMenus = PanelCommands::shared().hooks();
    withCommandMenus.commandMenus = [&appCommands] { return appCommands.menus(); };
    PanelCommands::shared().setHooks(withCommandMenus);

    // The shortcut sheet shows the hot keys of this session.
    PanelRootView::setLayerFactory(
        [&store, &capture](PanelLayer layer, QWidget *parent) -> QWidget * {
            if (layer != PanelLayer::Shortcuts)
                return nullptr;
            return new ShortcutSheetView(
                store, PanelState::shared(), &capture.hotKeys(), capture.keyLayout(), parent);
        });

    QObject::connect(
        &instance, &SingleInstance::reopenRequested, &delegate, &AppDelegate::handleReopen);
    QObject::connect(&tray, &TrayIcon::quitRequested, &quitGuard, &QuitGuard::requestQuit);
    QObject::connect(&quitGuard, &QuitGuard::quitAccepted, &app, &QApplication::quit);
    QObject::connect(&tray, &TrayIcon::captureRequested, &capture,
        [&capture] { capture.engine().captureSelection(); });
    TerminationSignals terminationSignals;
    QObject::connect(
        &terminationSignals, &TerminationSignals::terminationRequested, &app, &QApplication::quit);
    // Quit Vesko, the session's logout and the signals all end here.
    QObject::connect(&app, &QApplication::aboutToQuit, &delegate, &AppDelegate::willTerminate);
    // When the X server goes away, Qt's connection to it ends the process
    // through exit(), past the event loop: the library is written on that road too.
    ExitHook exitHook([&delegate, &store] {
        // Qt has let its font data go by then: no view may hear of the save and repaint.
        const QSignalBlocker silent(&store);
        delegate.willTerminate();
    });

    QTimer::singleShot(0, &delegate, &AppDelegate::didFinishLaunching);
    const int status = app.exec();
    delegate.willTerminate();
    return status;
}
