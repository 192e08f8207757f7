// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program. With a command it is a client of the running Vesko
// (see InstanceClient) and builds no QApplication. A second launch hands
// "reopen" to the running process and ends. The first reads the library
// into the Store before anything else, shows the floating panel once the
// event loop runs, and writes the library on the way out, however it is
// asked to end.

#include "attachments/DesktopAttachments.h"
#include "capture/CaptureEngine.h"
#include "capture/KeyCombo.h"
#include "library/Library.h"
#include "panel/layers/ShortcutSheetView.h"
#include "panel/notewindow/NoteWindowManager.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelController.h"
#include "panel/window/PanelRootView.h"
#include "panel/window/PanelState.h"
#include "platform/ExitHook.h"
#include "platform/Logging.h"
#include "platform/TerminationSignals.h"
#include "platform/qt/SessionBus.h"
#include "platform/x11/X11Session.h"
#include "search/SearchIndex.h"
#include "shell/AppCommands.h"
#include "shell/AppDelegate.h"
#include "shell/ApplicationBus.h"
#include "shell/CaptureStatus.h"
#include "shell/CommandLine.h"
#include "shell/DesktopCapture.h"
#include "shell/InstanceClient.h"
#include "shell/KeyboardContextMenu.h"
#include "shell/NoteRequests.h"
#include "shell/Preferences.h"
#include "shell/QuitGuard.h"
#include "shell/SettingsWindowController.h"
#include "shell/SingleInstance.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "shell/Translations.h"
#include "shell/TrayIcon.h"
#include "store/Store.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QJsonDocument>
#include <QProcess>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

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

// The folders of the program's translations: beside it in the build tree,
// in the data folder where it is installed.
QStringList translationFolders()
{
    const QString program = QCoreApplication::applicationDirPath();
    return {program + QStringLiteral("/translations"),
        QDir::cleanPath(program + QStringLiteral("/" VESKO_TRANSLATIONS_FROM_PROGRAM))};
}

//! How long after the launch the search index starts at the latest.
constexpr int indexStartLimitMilliseconds = 3000;

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

// Hands "reopen" to the running process: Activate on the session bus, else its socket.
bool forwardReopen(const SingleInstance &instance, const QString &libraryPath)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (InstanceClient::busServes(libraryPath)) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QLatin1String(ApplicationBus::serviceName), QLatin1String(ApplicationBus::objectPath),
            QLatin1String(ApplicationBus::applicationInterface), QStringLiteral("Activate"));
        QVariantMap platformData;
        const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
        if (!token.isEmpty())
            platformData.insert(QStringLiteral("activation-token"), token);
        call << platformData;
        if (bus.call(call, QDBus::Block, 10000).type() == QDBusMessage::ReplyMessage)
            return true;
    }
    return instance.forwardReopen();
}

} // namespace

int main(int argc, char *argv[])
{
    keepDBusFromStartingABus();
    QApplication::setOrganizationName(QStringLiteral("Vesko"));
    QApplication::setApplicationName(QStringLiteral("Vesko"));
    QApplication::setApplicationVersion(QStringLiteral(VESKO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.vesko.Vesko"));

    // The command line first, without a display: help, version, mistakes and
    // the commands for the running instance need none.
    bool inBackground = false;
    {
        QCoreApplication parsing(argc, argv);
        Translations::install(parsing, translationFolders());
        const CommandLineRequest request = CommandLine::parse(QCoreApplication::arguments());
        switch (request.kind) {
        case CommandLineRequest::Kind::Help:
        case CommandLineRequest::Kind::Version:
            print(stdout, request.message);
            return 0;
        case CommandLineRequest::Kind::Invalid:
            print(stderr,
                QStringLiteral("vesko: %1\n").arg(request.message)
                    + QCoreApplication::translate(
                        "CommandLine", "Run “vesko --help” for the commands.\n"));
            return CommandLine::usageExitCode;
        case CommandLineRequest::Kind::Launch:
            inBackground = request.background;
            break;
        default:
            return runClientCommand(request, Preferences::shared().libraryURL());
        }
    }

    QApplication app(argc, argv);
    Translations::install(app, translationFolders());
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(Theme::applicationIcon());
    // Shift+F10 opens the focused control's menu, in every window of the program.
    app.installEventFilter(new KeyboardContextMenu(&app));

    // One process runs per library file; a later launch hands it "reopen"
    // and ends. The preferences say which file that is; nothing else is read.
    Preferences &preferences = Preferences::shared();
    SingleInstance instance(preferences.libraryURL());
    // Started for a command that has ended since: another Vesko took its
    // request, and may have been quit already. Nothing is left to do.
    const bool unwanted = inBackground && InstanceClient::commandHasEnded();
    qunsetenv(InstanceClient::startedForVariable);
    if (unwanted)
        return 0;
    SingleInstance::Claim claim = instance.claim();
    if (claim == SingleInstance::Claim::HeldElsewhere) {
        // A start in the background asks nothing of the process that runs.
        if (inBackground || forwardReopen(instance, preferences.libraryURL()))
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
        // Started for a command, this process could be reached by no one and
        // might write the library beside another instance: better not run.
        if (inBackground)
            return 1;
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

    // The Store first: the library is read and repaired before anything else
    // runs. The search index's first pass over it, on threads of its own,
    // waits until the panel is up (below), so as not to compete with the
    // launch for the cores; searches are answered meanwhile.
    SearchIndex::shared().holdSynchronization();
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
                capture.keyLayout(), &X11Session::captureObstacle, shortcutSettingsOpener(),
                [&capture] { return capture.capabilities(); },
                [&capture] { return capture.portalState(); }},
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

    // Commands from other programs: the command line, key bindings, launchers.
    NoteRequests requests(store, SearchIndex::shared());
    requests.setActions({
        {QStringLiteral("toggle"),
            [&capture] { capture.engine().handleHotKey(HotKeyAction::TogglePanel); }},
        {QStringLiteral("show"), [&delegate] { delegate.handleReopen(); }},
        {QStringLiteral("hide"), [&panel] { panel.hide(); }},
        {QStringLiteral("capture"),
            [&capture] { capture.engine().handleHotKey(HotKeyAction::CaptureSelection); }},
        {QStringLiteral("quick-add"),
            [&capture] { capture.engine().handleHotKey(HotKeyAction::QuickAdd); }},
        {QStringLiteral("copy-list"),
            [&capture] { capture.engine().handleHotKey(HotKeyAction::CopySelectionAsList); }},
        {QStringLiteral("shift"), [&capture] { capture.shiftTapped(); }},
        {QStringLiteral("shift-press"), [&capture] { capture.shiftPressed(); }},
        {QStringLiteral("quit"), [&quitGuard] { quitGuard.requestQuit(); }},
    });
    instance.setRequestHandler([&requests](const QByteArray &line, auto answer) {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        const auto reply = [answer](const QJsonObject &object) {
            answer(QJsonDocument(object).toJson(QJsonDocument::Compact));
        };
        if (!document.isObject())
            reply(NoteRequests::failure(QObject::tr("The request is not a JSON object.")));
        else
            requests.handle(document.object(), reply);
    });
    ApplicationBus bus(requests);
    bus.setInstanceName(
        [&preferences] { return SingleInstance::instanceName(preferences.libraryURL()); });
    if (claim == SingleInstance::Claim::Acquired) {
        if (const std::optional<QString> failure = bus.registerOn(QDBusConnection::sessionBus()))
            qCInfo(lcStorage, "Not on the session bus: %s", qUtf8Printable(*failure));
    }
    delegate.setShowsPanelAtLaunch(!inBackground);
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
    // The index starts once the panel has painted its first frame; a start in
    // the background shows none, and a panel that is slow to come does not
    // keep the index waiting for long.
    const auto startIndexing = [] { SearchIndex::shared().resumeSynchronization(); };
    QObject::connect(&panel, &PanelController::fadeBegan, &app, startIndexing,
        Qt::SingleShotConnection);
    QTimer::singleShot(inBackground ? 0 : indexStartLimitMilliseconds, &app, startIndexing);
    const int status = app.exec();
    delegate.willTerminate();
    return status;
}
