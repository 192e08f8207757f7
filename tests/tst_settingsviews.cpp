// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Settings window in process, on real widgets over a real Store and the
// real settings file: what each tab's controls write and show, the library's
// move through the Storage tab, and the window made once.

#include "WidgetTestMain.h"

#include "ProgramSession.h"
#include "ReadOnlyFolder.h"
#include "SettingsRig.h"
#include "StoreFixture.h"
#include "TestFiles.h"
#include "library/LibraryCoding.h"
#include "shell/CaptureSettingsView.h"
#include "shell/CaptureStatus.h"
#include "shell/GeneralSettingsView.h"
#include "shell/SessionCapabilities.h"
#include "shell/SettingsWindowController.h"
#include "shell/ShortcutRecorderView.h"
#include "shell/UpdateController.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QWheelEvent>

using namespace Vesko;

Q_DECLARE_METATYPE(Vesko::CaptureCapabilities)
Q_DECLARE_METATYPE(Vesko::SessionFindings)

namespace {

template<typename T> T *findByText(QWidget *root, const QString &text)
{
    for (T *widget : root->findChildren<T *>()) {
        if (widget->text() == text)
            return widget;
    }
    return nullptr;
}

//! The Storage tab's path field shows \a path.
bool showsPath(QWidget *root, const QString &path)
{
    for (QLineEdit *field : root->findChildren<QLineEdit *>()) {
        if (field->accessibleName() == u"Notes file")
            return field->text() == path && field->isVisibleTo(root);
    }
    return false;
}

QLabel *visibleLabel(QWidget *root, const QString &text)
{
    QLabel *label = findByText<QLabel>(root, text);
    return label && label->isVisibleTo(root) ? label : nullptr;
}

//! What the settings file holds under \a key once \a preferences have written it.
QVariant storedValue(Preferences &preferences, const QString &key)
{
    preferences.flush();
    return Preferences::openSettings()->value(key);
}

QStringList attachmentFiles(const QString &libraryPath)
{
    return Test::fileTree(attachmentsFolder(libraryPath));
}

QStringList noteTexts(const QString &libraryPath)
{
    return Test::noteTexts(Test::readLibraryFile(libraryPath));
}

QFileDialog *openFileDialog()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<QFileDialog *>(widget); dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

} // namespace

class SettingsViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setApplicationVersion(QStringLiteral("1.2.3")); }
    void init();
    void cleanup();

    void controlsWriteTheSettingsFile_data();
    void controlsWriteTheSettingsFile();
    void openAtLogin_data();
    void openAtLogin();
    void captureTabSaysWhy_data();
    void captureTabSaysWhy();
    void captureTabWordsEachCapability_data();
    void captureTabWordsEachCapability();
    void kwinrcTurnsOnShiftTaps_data();
    void kwinrcTurnsOnShiftTaps();
    void shortcutSettingsOfTheDesktop_data();
    void shortcutSettingsOfTheDesktop();
    void intervalSliderKeepsItsBounds();
    void moveThereAndBackThroughTheDialog();
    void housekeepingCounts();
    void windowIsMadeOnceAndKeepsItsPlace();
    void rebuiltStorageTabFollowsTheMove_data();
    void rebuiltStorageTabFollowsTheMove();
    void wheelScrollsThePageUnlessTheControlHasFocus_data();
    void wheelScrollsThePageUnlessTheControlHasFocus();
    void doubleShiftToggleStartsAndStopsTheListener();
    void exportAllWritesTheFile();
    void aboutTabTexts();
    void updateControllerStaysStoppedAndInstallsAStagedUpdate();

private:
    LoginItem loginItem() const
    {
        return LoginItem(m_autostart.path(), QStringLiteral("/usr/bin/vesko"));
    }

    //! Writes a library of one note at its default place, with one attachment
    //! and its file unless \a attached is false, and makes the rig over it.
    void rigOverLibrary(bool attached = true)
    {
        m_view.reset();
        m_rig.reset();
        Library library = makeDefaultLibrary();
        const Note note = Test::noteWith(QStringLiteral("with a picture"),
            attached ? QStringList {QStringLiteral("picture.png")} : QStringList {});
        library.projects[0].sections[0].notes.append(note);
        QVERIFY(!writeLibrary(library, m_home));
        for (const NoteAttachment &attachment : note.attachments)
            Test::writeFile(attachmentsFolder(m_home) + u'/' + attachment.storedFileName, "png");
        m_rig = std::make_unique<Test::SettingsRig>();
    }

    const QString m_home
        = Test::IsolatedEnvironment::current().dataHome() + QStringLiteral("/Vesko/Library.json");
    QTemporaryDir m_autostart;
    std::unique_ptr<Test::SettingsRig> m_rig;
    std::unique_ptr<SettingsView> m_view;
};

void SettingsViewsTest::init()
{
    Preferences::openSettings()->clear();
    QDir(Test::IsolatedEnvironment::current().dataHome()).removeRecursively();
    m_rig = std::make_unique<Test::SettingsRig>();
    m_view = std::make_unique<SettingsView>(m_rig->services(loginItem()));
    m_view->resize(480, 430);
    m_view->show();
}

void SettingsViewsTest::cleanup()
{
    m_view.reset();
    m_rig.reset();
}

void SettingsViewsTest::controlsWriteTheSettingsFile_data()
{
    // clang-format off
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("choice"); // empty: a check box, clicked
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("stored");
    QTest::newRow("all workspaces") << 0 << "Show on all workspaces" << "" << "joinsAllSpaces" << "false";
    QTest::newRow("on top") << 0 << "Always on top" << "" << "pinOnTop" << "true";
    QTest::newRow("tray") << 0 << "Show in the system tray" << "" << "showsInMenuBar" << "false";
    QTest::newRow("taskbar") << 0 << "Show in the taskbar" << "" << "showsInDock" << "true";
    QTest::newRow("markdown") << 0 << "Keep Markdown when copying" << ""
                              << "copyIncludesMarkdown" << "false";
    QTest::newRow("double shift") << 1 << "Capture with Shift pressed twice" << ""
                                  << "doubleShiftEnabled" << "false";
    QTest::newRow("panel on capture") << 1 << "Bring the panel forward on capture" << ""
                                      << "showPanelOnCapture" << "false";
    QTest::newRow("appearance") << 0 << "Appearance" << "Dark" << "appearance" << "dark";
    QTest::newRow("window position") << 0 << "Window position" << "Left" << "panelEdge" << "left";
    QTest::newRow("list style") << 0 << "Copy as List uses" << "- - -" << "listStyle" << "dash";
    QTest::newRow("no marker") << 0 << "Copy as List uses" << "No marker" << "listStyle" << "plain";
    // clang-format on
}

void SettingsViewsTest::controlsWriteTheSettingsFile()
{
    QFETCH(int, tab);
    QFETCH(QString, label);
    QFETCH(QString, choice);
    QFETCH(QString, key);
    QFETCH(QString, stored);
    m_rig->preferences.setStoredPanelFrame(QRectF(10, 10, 300, 400));
    m_view->setCurrentIndex(tab);
    const QVariant before = m_rig->preferences.property(key.toLatin1());
    QCheckBox *box = findByText<QCheckBox>(m_view.get(), label);
    QComboBox *picker = nullptr;
    for (QComboBox *candidate : m_view->findChildren<QComboBox *>()) {
        if (candidate->accessibleName() == label)
            picker = candidate;
    }
    const auto shown = [&] { return box ? int(box->isChecked()) : picker->currentIndex(); };
    QVERIFY(choice.isEmpty() ? box != nullptr : picker != nullptr);
    const int shownBefore = shown();
    if (box) {
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    } else {
        const int index = picker->findText(choice);
        QVERIFY(index >= 0 && index != shownBefore);
        picker->setCurrentIndex(index);
        Q_EMIT picker->activated(index);
    }
    QVERIFY(shown() != shownBefore);
    QCOMPARE(storedValue(m_rig->preferences, key).toString(), stored);
    // Choosing a position forgets where the panel was left.
    QCOMPARE(m_rig->preferences.storedPanelFrame().has_value(), key != u"panelEdge");
    // A change made elsewhere shows on the control.
    m_rig->preferences.setProperty(key.toLatin1(), before);
    QCOMPARE(shown(), shownBefore);
}

void SettingsViewsTest::openAtLogin_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::newRow("written and removed") << false;
    // The entry cannot be written: the toggle falls back and says why.
    QTest::newRow("read-only folder") << true;
}

void SettingsViewsTest::openAtLogin()
{
    QFETCH(bool, readOnly);
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("autostart"));
    std::unique_ptr<Test::ReadOnlyFolder> mounted;
    if (readOnly) {
        mounted = std::make_unique<Test::ReadOnlyFolder>(folder);
        if (!mounted->isMounted())
            QSKIP("Mounting a read-only tmpfs is not permitted here");
    }
    SettingsView view(m_rig->services(LoginItem(folder, QStringLiteral("/usr/bin/vesko"))));
    view.show();
    QCheckBox *toggle = findByText<QCheckBox>(&view, QStringLiteral("Open at login"));
    const QString entry = folder + QStringLiteral("/com.vesko.Vesko.desktop");
    QVERIFY(!toggle->isChecked());
    toggle->click();
    QCOMPARE(toggle->isChecked(), !readOnly);
    QCOMPARE(QFile::exists(entry), !readOnly);
    const QString error = view.general()->launchError();
    if (readOnly) {
        QVERIFY2(error.contains(QStringLiteral("Read-only file system")), qPrintable(error));
        QVERIFY(visibleLabel(&view, error));
        QCOMPARE(toggle->accessibleDescription(), error);
        return;
    }
    QVERIFY(error.isEmpty());
    toggle->click();
    QVERIFY(!toggle->isChecked());
    QVERIFY(!QFile::exists(entry));
}

void SettingsViewsTest::captureTabSaysWhy_data()
{
    QTest::addColumn<int>("obstacle");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("shortcutSettings");
    const QString wayland = QStringLiteral("This Wayland desktop does not let Vesko read the "
                                           "text selected in other applications.");
    QTest::newRow("wayland") << int(CaptureObstacle::WaylandSession) << wayland << "Grant Access…"
                             << true;
    // Qt on XWayland: the fix is Vesko's own platform, not the desktop.
    QTest::newRow("xwayland") << int(CaptureObstacle::XWayland)
                              << "Start Vesko on Qt's Wayland platform, with "
                                 "QT_QPA_PLATFORM=wayland in its environment, to capture on "
                                 "this desktop."
                              << "Grant Access…" << true;
    QTest::newRow("xtest") << int(CaptureObstacle::NoXTest)
                           << "The X server lacks XTEST, which Vesko uses to copy the selected "
                              "text."
                           << "Open System Settings…" << true;
    // No shortcut settings of the desktop to lead to: no buttons.
    QTest::newRow("no x server, no shortcut settings")
        << int(CaptureObstacle::NoXServer)
        << "Vesko is not running on an X server, so it cannot see other applications' keys and "
           "selected text."
        << QString() << false;
}

void SettingsViewsTest::captureTabSaysWhy()
{
    QFETCH(int, obstacle);
    QFETCH(QString, reason);
    QFETCH(QString, button);
    QFETCH(bool, shortcutSettings);
    m_view.reset();
    auto available = std::make_shared<bool>(false);
    m_rig = std::make_unique<Test::SettingsRig>([available] { return *available; });
    SettingsView::Services services
        = m_rig->services(loginItem(), [obstacle] { return CaptureObstacle(obstacle); });
    int settingsOpened = 0;
    if (shortcutSettings)
        services.capture.openShortcutSettings = [&settingsOpened] { ++settingsOpened; };
    SettingsView view(services);
    view.showTab(SettingsTab::Capture);
    view.show();
    const QString needed = QStringLiteral("Capture is not set up in this session");
    const QString granted = QStringLiteral("Capture works in this session");
    const QString footnote = QStringLiteral("Vesko reads the selected text only when you capture, "
                                            "and watches only the Shift key for double Shift. "
                                            "Nothing is recorded or sent anywhere.");
    QVERIFY(visibleLabel(&view, needed));
    QVERIFY(visibleLabel(&view, reason));
    // The buttons show only where they lead to the desktop's shortcut settings.
    for (const char *text : {"Grant Access…", "Open System Settings…"}) {
        QCOMPARE(findByText<QPushButton>(&view, QString::fromUtf8(text))->isVisibleTo(&view),
            shortcutSettings);
    }
    // A Wayland session is never said to have an X server.
    if (obstacle == int(CaptureObstacle::WaylandSession)) {
        for (QLabel *label : view.findChildren<QLabel *>())
            QVERIFY2(!label->isVisibleTo(&view) || !label->text().contains(u"X server"),
                qPrintable(label->text()));
    }
    // Nothing can be grabbed here, so no combination is said to be taken.
    const KeyCombo toggle = *m_rig->hotKeys.combo(HotKeyAction::TogglePanel);
    m_rig->registrar.taken.insert(qMakePair(toggle.keyCode, toggle.modifiers));
    m_rig->hotKeys.registerAll();
    const QString taken = QStringLiteral("Taken by another application");
    QVERIFY(!visibleLabel(&view, taken));

    // Either button opens the shortcut settings and reads the answer again:
    // once capture works, the tab says so and nothing more.
    *available = true;
    if (shortcutSettings) {
        findByText<QPushButton>(&view, button)->click();
        QCOMPARE(settingsOpened, 1);
    } else {
        view.showTab(SettingsTab::General);
        view.showTab(SettingsTab::Capture);
    }
    QVERIFY(visibleLabel(&view, granted));
    QVERIFY(!visibleLabel(&view, needed));
    QVERIFY(!visibleLabel(&view, reason));
    QVERIFY(visibleLabel(&view, footnote));
    for (const char *text : {"Grant Access…", "Open System Settings…"})
        QVERIFY(!findByText<QPushButton>(&view, QString::fromUtf8(text))->isVisibleTo(&view));
    m_rig->hotKeys.registerAll();
    QVERIFY(visibleLabel(&view, taken));
}

void SettingsViewsTest::captureTabWordsEachCapability_data()
{
    using C = CaptureCapabilities;
    using W = SessionFindings::Windowing;
    // What each kind of session offers, what capture then can do there, and
    // how the tab says it.
    QTest::addColumn<SessionFindings>("findings");
    QTest::addColumn<CaptureCapabilities>("capabilities");
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::addColumn<QString>("recorderText"); // empty: the recorders are hidden
    QTest::addColumn<QString>("swayLines");
    QTest::addColumn<QString>("kwinLines");
    QTest::addColumn<bool>("canCapture");

    const QString portalShortcuts = QStringLiteral(
        "Shortcuts: Your desktop keeps Vesko's shortcuts; you change them in its settings.");
    const QString noShortcuts = QStringLiteral(
        "Shortcuts: This desktop gives Vesko no shortcuts of its own. Bind the commands below "
        "to keys in its keyboard settings.");
    const QString gnomeAdvice = QStringLiteral(
        "In Settings > Keyboard > Custom Shortcuts (under “View and Customize Shortcuts”), add "
        "a shortcut for each command: a name, the command, and the keys.");
    const QString kdeAdvice
        = QStringLiteral("In System Settings > Keyboard > Shortcuts, choose “Add New” > "
                         "“Command or Script” for each command and give it keys.");
    const QString unknownSource = QStringLiteral(
        "Source: This desktop does not tell which application is in front, so captured notes "
        "are filed under “Unknown”.");
    const QString accessibleSource
        = QStringLiteral("Source: The application and window in front are read through the "
                         "accessibility bus, and captured notes are filed under them.");
    const QString readsSelection
        = QStringLiteral("Selected text: Read from the application in front when you capture.");
    const QString noSelection = QStringLiteral("Selected text: This desktop does not let Vesko "
                                               "read it. Paste text into the composer instead.");
    const QString noCopy = QStringLiteral(
        "Copy: Vesko cannot press Ctrl+Insert here: select the text before you capture.");
    const QString compositorShift
        = QStringLiteral("Double Shift: Your desktop passes each Shift release to Vesko.");
    const QString noShift = QStringLiteral(
        "Double Shift: Not available on this desktop; use the capture shortcut instead.");
    const QString kwinShiftOff
        = QStringLiteral("Double Shift: Run the two commands under Double Shift once to have "
                         "KWin pass each lone Shift release to Vesko.");
    const QString refused = QStringLiteral("The desktop refused Vesko's shortcuts. Bind the "
                                           "commands below in its keyboard settings instead.");
    const QStringList commands {QStringLiteral("vesko toggle"), QStringLiteral("vesko capture"),
        QStringLiteral("vesko quick-add"), QStringLiteral("vesko copy-list")};
    const QString kwinLines = QStringLiteral(
        "kwriteconfig6 --file kwinrc --group ModifierOnlyShortcuts --key Shift "
        "\"com.vesko.Vesko.ShiftTaps,/com/vesko/Vesko,com.vesko.Vesko.Notes,ShiftTapped\"\n"
        "dbus-send --session --type=method_call --dest=org.kde.KWin /KWin "
        "org.kde.KWin.reconfigure\n");

    const auto session = [](W windowing, bool x11CaptureAvailable = false) {
        SessionFindings found;
        found.windowing = windowing;
        found.x11CaptureAvailable = x11CaptureAvailable;
        return found;
    };
    const SessionFindings x11 = session(W::X11, true);
    QTest::newRow("X11")
        << x11
        << C {C::HotKeys::KeyGrab, C::Selection::PrimarySelection, C::Source::WindowProperties,
               C::Copy::SyntheticKeys, C::DoubleShift::KeyMonitor}
        << "GNOME"
        << QStringList {QStringLiteral("Shortcuts: Vesko holds its shortcuts itself."),
               QStringLiteral("Copy: When an application keeps no selection, Vesko presses "
                              "Ctrl+Insert for you.")}
        << (QStringList(commands) << gnomeAdvice) << "Super+Alt+Space" << QString() << QString()
        << true;
    QTest::newRow("X11 without its extensions")
        << session(W::X11) << C {} << "XFCE" << QStringList {noShortcuts, noSelection, noShift}
        << QStringList {} << QString() << QString() << QString() << false;

    // sway: data control, foreign toplevel, virtual keyboard, bindsym --release.
    SessionFindings sway = session(W::Wayland);
    sway.compositor = {C::HotKeys::None, C::Selection::PrimarySelection, C::Source::ForeignToplevel,
        C::Copy::SyntheticKeys, C::DoubleShift::CompositorCanBind};
    const QString swayShiftOff = QStringLiteral(
        "Double Shift: Add “bindsym --release Shift_L exec vesko shift” to your sway "
        "configuration to have sway pass each lone Shift release to Vesko.");
    sway.dataControl = true;
    sway.accessibilityBus = true; // the compositor's word comes first
    sway.portal = PortalShortcutsState::Absent;
    QTest::newRow("sway") << sway << sway.compositor << "sway"
                          << QStringList {noShortcuts, readsSelection,
                                 QStringLiteral("Add these lines to your sway configuration "
                                                "(~/.config/sway/config), then reload sway:"),
                                 swayShiftOff}
                          << (QStringList(commands) << accessibleSource << compositorShift)
                          << "Super+Alt+Space"
                          << "bindsym Mod4+Mod1+space exec vesko toggle\n"
                             "bindsym Mod4+Mod1+c exec vesko capture\n"
                             "bindsym Mod4+Mod1+n exec vesko quick-add\n"
                             "bindsym Mod4+Mod1+l exec vesko copy-list\n"
                             "bindsym --release Shift_L exec vesko shift\n"
                             "bindsym --release Shift_R exec vesko shift\n"
                          << QString() << true;
    SessionFindings swayWithPortal = sway;
    swayWithPortal.portal = PortalShortcutsState::Bound;
    C swayWithPortalCapabilities = sway.compositor;
    swayWithPortalCapabilities.hotKeys = C::HotKeys::Portal;
    // Once sway has passed a tap, it is known to be set up.
    swayWithPortal.shiftTapArrived = true;
    swayWithPortalCapabilities.doubleShift = C::DoubleShift::CompositorBinding;
    QTest::newRow("sway with a shortcuts portal, after a Shift tap")
        << swayWithPortal << swayWithPortalCapabilities << "sway" << QStringList {compositorShift}
        << QStringList {noShortcuts, swayShiftOff} << "Alt+F12" << QString() << QString() << true;

    // GNOME: no data control, the selection read as the panel comes forward, AT-SPI.
    SessionFindings gnome = session(W::Wayland);
    gnome.accessibilityBus = true;
    gnome.readsOnPanelFocus = true;
    gnome.portal = PortalShortcutsState::Bound;
    QTest::newRow("GNOME, the portal's shortcuts")
        << gnome
        << C {C::HotKeys::Portal, C::Selection::OnPanelFocus, C::Source::Accessibility,
               C::Copy::None, C::DoubleShift::None}
        << "GNOME"
        << QStringList {portalShortcuts,
               QStringLiteral("Selected text: Read as the panel comes forward, so capture with "
                              "a shortcut that runs “vesko capture”."),
               accessibleSource, noCopy, noShift}
        << (QStringList(commands) << gnomeAdvice << refused) << "Alt+F12" << QString() << QString()
        << true;
    SessionFindings gnomeBare = gnome;
    gnomeBare.accessibilityBus = false;
    gnomeBare.portal = PortalShortcutsState::Absent;
    QTest::newRow("GNOME without the portal or the accessibility bus")
        << gnomeBare
        << C {C::HotKeys::None, C::Selection::OnPanelFocus, C::Source::None, C::Copy::None,
               C::DoubleShift::None}
        << "ubuntu:GNOME" << (QStringList {noShortcuts, gnomeAdvice, unknownSource} << commands)
        << QStringList {portalShortcuts} << QString() << QString() << QString() << true;

    // KDE Plasma: data control, AT-SPI, the portal; KWin's Shift taps by kwinrc.
    SessionFindings kde = session(W::Wayland);
    kde.compositor.selection = C::Selection::PrimarySelection;
    kde.dataControl = true;
    kde.accessibilityBus = true;
    kde.portal = PortalShortcutsState::Bound;
    const C kdeCapabilities {C::HotKeys::Portal, C::Selection::PrimarySelection,
        C::Source::Accessibility, C::Copy::None, C::DoubleShift::None};
    QTest::newRow("KDE, KWin's Shift taps off")
        << kde << kdeCapabilities << "KDE" << QStringList {kwinShiftOff}
        << QStringList {noShift, compositorShift} << "Alt+F12" << QString() << kwinLines << true;
    SessionFindings kdeShift = kde;
    kdeShift.kwinPassesShiftTaps = true;
    C kdeShiftCapabilities = kdeCapabilities;
    kdeShiftCapabilities.doubleShift = C::DoubleShift::CompositorBinding;
    QTest::newRow("KDE, KWin passes Shift taps")
        << kdeShift << kdeShiftCapabilities << "KDE" << QStringList {} << QStringList {kwinShiftOff}
        << "Alt+F12" << QString() << QString() << true;
    SessionFindings kdeRefused = kde;
    kdeRefused.portal = PortalShortcutsState::Refused;
    C kdeRefusedCapabilities = kdeCapabilities;
    kdeRefusedCapabilities.hotKeys = C::HotKeys::None;
    QTest::newRow("KDE, the portal refused")
        << kdeRefused << kdeRefusedCapabilities << "KDE"
        << QStringList {refused, kdeAdvice, commands.first()} << QStringList {gnomeAdvice}
        << QString() << QString() << kwinLines << true;

    // Qt on XWayland: no other client is reached; only the desktop's shortcuts.
    SessionFindings xwayland = session(W::XWayland);
    xwayland.kwinPassesShiftTaps = true; // no Shift taps reach an X11 client
    xwayland.portal = PortalShortcutsState::Connecting;
    QTest::newRow("XWayland") << xwayland << C {C::HotKeys::Portal} << ""
                              << QStringList {noSelection} << commands << "Not set" << QString()
                              << QString() << false;
}

void SettingsViewsTest::captureTabWordsEachCapability()
{
    QFETCH(SessionFindings, findings);
    QFETCH(CaptureCapabilities, capabilities);
    QFETCH(QString, desktop);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    QFETCH(QString, recorderText);
    QFETCH(QString, swayLines);
    QFETCH(QString, kwinLines);
    QFETCH(bool, canCapture);
    QVERIFY(sessionCapabilities(findings) == capabilities);
    QCOMPARE(canCaptureAtAll(capabilities), canCapture);

    // The desktop's keys for the toggle, once it has bound them.
    if (capabilities.hotKeys == CaptureCapabilities::HotKeys::Portal) {
        const bool bound = findings.portal == PortalShortcutsState::Bound;
        m_rig->registrar.desktopTriggers.insert(
            hotKeyID(HotKeyAction::TogglePanel), bound ? QStringLiteral("Alt+F12") : QString());
    }
    SettingsView::Services services = m_rig->services(loginItem());
    services.capture.capabilities = [findings] { return sessionCapabilities(findings); };
    if (findings.portal)
        services.capture.portalState = [findings] { return findings.portal; };
    services.capture.currentDesktop = desktop;
    services.capture.plasmaVersion = QStringLiteral("6");
    int settingsOpened = 0;
    services.capture.openShortcutSettings = [&settingsOpened] { ++settingsOpened; };
    SettingsView view(services);
    view.showTab(SettingsTab::Capture);
    view.show();

    for (const QString &text : shown)
        QVERIFY2(visibleLabel(&view, text), qPrintable(text));
    for (const QString &text : hidden)
        QVERIFY2(!visibleLabel(&view, text), qPrintable(text));

    ShortcutRecorderView *toggle = view.capture()->recorder(HotKeyAction::TogglePanel);
    QCOMPARE(toggle->isVisibleTo(&view), !recorderText.isEmpty());
    if (!recorderText.isEmpty())
        QCOMPARE(toggle->buttonText(), recorderText);
    // Where the desktop keeps the keys, the button leads to its settings and records nothing.
    if (capabilities.hotKeys == CaptureCapabilities::HotKeys::Portal) {
        findByText<QPushButton>(toggle, recorderText)->click();
        QCOMPARE(settingsOpened, 1);
        QVERIFY(!toggle->isRecording());
    }

    // The lines to paste, each with its Copy button.
    QCOMPARE(view.capture()->swayLines(), swayLines);
    QCOMPARE(view.capture()->kwinLines(), kwinLines);
    QStringList offered;
    for (QPushButton *copy : view.findChildren<QPushButton *>()) {
        if (copy->text() == u"Copy" && copy->isVisibleTo(&view)) {
            copy->click();
            offered.append(QGuiApplication::clipboard()->text());
        }
    }
    QStringList expected {kwinLines, swayLines};
    expected.removeAll(QString());
    QCOMPARE(offered, expected);
}

void SettingsViewsTest::kwinrcTurnsOnShiftTaps_data()
{
    QTest::addColumn<QString>("kwinrc");
    QTest::addColumn<bool>("passes");
    // What the tab's command writes, as kwriteconfig writes it.
    const QString command = kwinShiftCommands(QStringLiteral("5")).section(u'\n', 0, 0);
    const QString group = command.section(QStringLiteral("--group "), 1).section(u' ', 0, 0);
    const QString key = command.section(QStringLiteral("--key "), 1).section(u' ', 0, 0);
    const QString value = command.section(u'"', 1, 1);
    QVERIFY(command.startsWith(u"kwriteconfig5 --file kwinrc "));
    const QString written = QStringLiteral("[%1]\n%2=%3\n").arg(group, key, value);
    QTest::newRow("as the command writes it") << written << true;
    QTest::newRow("among other groups")
        << "[Windows]\nShift=x\n\n[ModifierOnlyShortcuts]\nMeta=org.kde.plasmashell,/PlasmaShell,"
           "org.kde.PlasmaShell,activateLauncherMenu\n"
            + written.section(u'\n', 1) + "[Plugins]\n"
        << true;
    QTest::newRow("Shift for another program")
        << "[ModifierOnlyShortcuts]\nShift=org.kde.krunner,/App,,display\n"
        << false;
    QTest::newRow("no kwinrc") << QString() << false;
}

void SettingsViewsTest::kwinrcTurnsOnShiftTaps()
{
    QFETCH(QString, kwinrc);
    QFETCH(bool, passes);
    QCOMPARE(kwinPassesShiftTaps(kwinrc), passes);
}

void SettingsViewsTest::shortcutSettingsOfTheDesktop_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QStringList>("command");
    const QStringList gnome {QStringLiteral("gnome-control-center"), QStringLiteral("keyboard")};
    QTest::newRow("GNOME") << "GNOME" << gnome;
    QTest::newRow("a list, GNOME second") << "ubuntu:GNOME" << gnome;
    QTest::newRow("any case") << "gnome" << gnome;
    QTest::newRow("KDE") << "KDE"
                         << QStringList {
                                QStringLiteral("systemsettings"), QStringLiteral("kcm_keys")};
    QTest::newRow("sway") << "sway" << QStringList();
    QTest::newRow("none") << "" << QStringList();
    QTest::newRow("a part of a name") << "GNOME-Flashback-Extra" << QStringList();
}

void SettingsViewsTest::shortcutSettingsOfTheDesktop()
{
    QFETCH(QString, desktop);
    QFETCH(QStringList, command);
    QCOMPARE(keyboardShortcutSettingsCommand(desktop), command);
}

void SettingsViewsTest::intervalSliderKeepsItsBounds()
{
    m_view.reset();
    m_rig->preferences.setDoubleShiftInterval(5);
    SettingsView view(m_rig->services(loginItem()));
    view.showTab(SettingsTab::Capture);
    view.show();
    QSlider *slider = view.findChild<QSlider *>();
    // A longer stored interval shows at the end and stays as it is.
    QCOMPARE(slider->value(), slider->maximum());
    QVERIFY(visibleLabel(&view, QStringLiteral("5000 ms")));
    QCOMPARE(m_rig->preferences.doubleShiftInterval(), 5.0);

    slider->setFocus();
    // Down from 0.8 seconds, in steps of 0.05, to 0.2.
    QTest::keyClick(slider, Qt::Key_Left);
    QCOMPARE(
        storedValue(m_rig->preferences, QStringLiteral("doubleShiftInterval")).toDouble(), 0.75);
    QVERIFY(visibleLabel(&view, QStringLiteral("750 ms")));
    QTest::keyClick(slider, Qt::Key_Home);
    QCOMPARE(m_rig->preferences.doubleShiftInterval(), 0.2);
    QVERIFY(visibleLabel(&view, QStringLiteral("200 ms")));
}

void SettingsViewsTest::moveThereAndBackThroughTheDialog()
{
    rigOverLibrary();
    const QString &home = m_home;
    const QStringList files = attachmentFiles(home);
    QCOMPARE(files.size(), 2); // a folder and its file
    SettingsView view(m_rig->services(loginItem()));
    view.showTab(SettingsTab::Storage);
    view.show();
    StorageSettingsView *storage = view.storage();
    QPushButton *useDefault
        = findByText<QPushButton>(&view, QStringLiteral("Use Default Location"));
    QVERIFY(!useDefault->isVisibleTo(&view));
    QVERIFY(showsPath(&view, home));

    const QString away = Test::IsolatedEnvironment::current().root() + QStringLiteral("/Synced");
    QDir().mkpath(away);
    findByText<QPushButton>(&view, QStringLiteral("Move…"))->click();
    QTRY_VERIFY_WITH_TIMEOUT(openFileDialog(), Test::patience);
    QFileDialog *dialog = openFileDialog();
    // The message stands inside the dialog, not only in its title bar.
    QVERIFY(
        visibleLabel(dialog, QStringLiteral("Choose where Vesko should keep your notes file.")));
    QCOMPARE(dialog->labelText(QFileDialog::Accept), QStringLiteral("Move Here"));
    QCOMPARE(dialog->fileMode(), QFileDialog::Directory);
    dialog->setDirectory(away);
    dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(away);
    QVERIFY(QMetaObject::invokeMethod(dialog, "accept"));
    // The progress line shows while the move runs.
    QVERIFY(storage->isMoving());
    QVERIFY(visibleLabel(&view, QStringLiteral("Moving your notes…")));
    QTRY_VERIFY_WITH_TIMEOUT(!storage->isMoving(), Test::patience);
    QVERIFY(!visibleLabel(&view, QStringLiteral("Moving your notes…")));

    const QString moved = away + QStringLiteral("/Library.json");
    QCOMPARE(storage->error(), QString());
    QCOMPARE(storedValue(m_rig->preferences, QStringLiteral("libraryPath")).toString(), moved);
    QCOMPARE(noteTexts(moved), QStringList {QStringLiteral("with a picture")});
    QCOMPARE(attachmentFiles(moved), files);
    // The old place is cleared on the attachments' queue once the move is done.
    m_rig->attachments.waitForIdle();
    QVERIFY(!QFile::exists(home));
    QVERIFY(!QDir(attachmentsFolder(home)).exists());
    QVERIFY(useDefault->isVisibleTo(&view));
    QVERIFY(showsPath(&view, moved));

    useDefault->click();
    QTRY_VERIFY_WITH_TIMEOUT(!storage->isMoving(), Test::patience);
    QCOMPARE(storage->error(), QString());
    QCOMPARE(m_rig->preferences.libraryPath(), home);
    QCOMPARE(attachmentFiles(home), files);
    m_rig->attachments.waitForIdle();
    QVERIFY(!QFile::exists(moved));
    QVERIFY(!useDefault->isVisibleTo(&view));
}

void SettingsViewsTest::housekeepingCounts()
{
    m_view->showTab(SettingsTab::Storage);
    QVERIFY(visibleLabel(m_view.get(), QStringLiteral("0 in this project")));
    for (const char *text : {"one", "two", "three"})
        m_rig->store.addNote(QString::fromLatin1(text));
    m_rig->store.setDone({m_rig->store.visibleNotes().first().id}, true);
    m_rig->store.createProject(QStringLiteral("Second"));
    QVERIFY(visibleLabel(m_view.get(), QStringLiteral("2")));
    // The counts belong to the active project: the new one is active and empty.
    QVERIFY(visibleLabel(m_view.get(), QStringLiteral("0 in this project")));
    m_rig->store.switchProject(m_rig->store.library().projects.first().id);
    QVERIFY(visibleLabel(m_view.get(), QStringLiteral("3 in this project")));
    findByText<QPushButton>(m_view.get(), QStringLiteral("Clear Completed in This Project"))
        ->click();
    QVERIFY(visibleLabel(m_view.get(), QStringLiteral("2 in this project")));

    findByText<QPushButton>(m_view.get(), QStringLiteral("Copy This Project as List"))->click();
    QCOMPARE(m_rig->clipboard.text(), QStringLiteral("1. two\n2. three"));
    findByText<QPushButton>(m_view.get(), QStringLiteral("Show in Files"))->click();
    QCOMPARE(m_rig->revealed, QStringList {m_rig->preferences.libraryPath()});
}

void SettingsViewsTest::windowIsMadeOnceAndKeepsItsPlace()
{
    m_view.reset();
    {
        SettingsWindowController controller;
        controller.setServices(m_rig->services(loginItem()), m_rig->permission);
        controller.show(SettingsTab::Storage);
        QWidget *window = controller.window();
        // Closed and asked for again, it shows the same tab.
        QVERIFY(window->close());
        controller.show();
        QCOMPARE(controller.window(), window);
        QCOMPARE(controller.view()->currentIndex(), int(SettingsTab::Storage));
        window->move(123, 77);
        QVERIFY(window->close());
    }
    // The next window, in a later run, comes up where the last one stood.
    SettingsWindowController controller;
    controller.setServices(m_rig->services(loginItem()), m_rig->permission);
    controller.show(SettingsTab::About);
    QCOMPARE(controller.window()->pos(), QPoint(123, 77));

    // A new appearance makes the view again, on the tab it showed.
    SettingsView *before = controller.view();
    controller.refreshAppearance();
    QVERIFY(controller.view() != before);
    QCOMPARE(controller.view()->currentIndex(), int(SettingsTab::About));
    QCOMPARE(
        controller.window()->findChildren<SettingsView *>().size(), 2); // the old one goes later
    QTRY_COMPARE_WITH_TIMEOUT(
        controller.window()->findChildren<SettingsView *>().size(), 1, Test::patience);
}

void SettingsViewsTest::rebuiltStorageTabFollowsTheMove_data()
{
    QTest::addColumn<bool>("attached");
    // The copy of the attachments fails first.
    QTest::newRow("refused by the target") << true;
    // The notes file alone: its own write fails.
    QTest::newRow("refused, without attachments") << false;
}

//! A move refused, followed by the Storage tab made again while it ran.
void SettingsViewsTest::rebuiltStorageTabFollowsTheMove()
{
    QFETCH(bool, attached);
    rigOverLibrary(attached);
    const QString &home = m_home;
    const QString target = Test::IsolatedEnvironment::current().root() + QStringLiteral("/ro");
    Test::ReadOnlyFolder readOnly(target);
    if (!readOnly.isMounted())
        QSKIP("Mounting a read-only tmpfs is not permitted here");

    SettingsWindowController controller;
    controller.setServices(m_rig->services(loginItem()), m_rig->permission);
    controller.show(SettingsTab::Storage);
    controller.view()->storage()->moveLibrary(target);
    QVERIFY(m_rig->store.isMovingLibrary());
    // The appearance changes while the attachments are being copied.
    controller.refreshAppearance();
    StorageSettingsView *storage = controller.view()->storage();
    QVERIFY(storage->isMoving());
    QCOMPARE(storage->progressText(), QStringLiteral("Moving your notes…"));
    for (QPushButton *button : storage->findChildren<QPushButton *>()) {
        if (button->text() == u"Move…")
            QVERIFY(!button->isEnabled());
    }
    // Once the size is known, and only then, the line tells the share copied.
    Q_EMIT m_rig->store.libraryMoveProgress(0, 0);
    QCOMPARE(storage->progressText(), QStringLiteral("Moving your notes…"));
    Q_EMIT m_rig->store.libraryMoveProgress(4096, 16384);
    QCOMPARE(storage->progressText(), QStringLiteral("Moving your notes… 25%"));

    QTRY_VERIFY_WITH_TIMEOUT(!m_rig->store.isMovingLibrary(), Test::patience);
    QCOMPARE(storage->progressText(), QString());
    QVERIFY2(storage->error().contains(QStringLiteral("Read-only file system")),
        qPrintable(storage->error()));
    QVERIFY(visibleLabel(storage, storage->error()));
    QVERIFY(showsPath(storage, home));
    QCOMPARE(m_rig->preferences.libraryPath(), home);
    QCOMPARE(noteTexts(home), QStringList {QStringLiteral("with a picture")});
    QVERIFY(!findByText<QPushButton>(storage, QStringLiteral("Use Default Location"))
                 ->isVisibleTo(storage));
    for (QPushButton *button : storage->findChildren<QPushButton *>())
        QVERIFY(button->isEnabled());
}

void SettingsViewsTest::wheelScrollsThePageUnlessTheControlHasFocus_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("control");
    QTest::addColumn<bool>("focused");
    QTest::addColumn<QString>("key");
    QTest::newRow("picker passed over") << 0 << "Copy as List uses" << false << "listStyle";
    QTest::newRow("slider passed over")
        << 1 << "Time between presses" << false << "doubleShiftInterval";
    // The focus is looked at alike for every kind of control.
    QTest::newRow("picker with focus") << 0 << "Copy as List uses" << true << "listStyle";
}

void SettingsViewsTest::wheelScrollsThePageUnlessTheControlHasFocus()
{
    QFETCH(int, tab);
    QFETCH(QString, control);
    QFETCH(bool, focused);
    QFETCH(QString, key);
    m_view->resize(480, 160);
    m_view->setCurrentIndex(tab);
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    QWidget *widget = nullptr;
    for (QWidget *candidate : m_view->findChildren<QWidget *>()) {
        if (candidate->accessibleName() == control
            && (qobject_cast<QComboBox *>(candidate) || qobject_cast<QSlider *>(candidate)))
            widget = candidate;
    }
    QVERIFY(widget);
    QScrollArea *page = nullptr;
    for (QWidget *up = widget->parentWidget(); up && !page; up = up->parentWidget())
        page = qobject_cast<QScrollArea *>(up);
    QVERIFY(page);
    QScrollBar *bar = page->verticalScrollBar();
    QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 0, Test::patience);
    bar->setValue(0);
    if (focused) {
        widget->setFocus(Qt::MouseFocusReason);
        QVERIFY(widget->hasFocus());
    }

    // One notch of the wheel towards the user, over the control.
    const QPointF inside(widget->width() / 2.0, widget->height() / 2.0);
    QWheelEvent wheel(inside, widget->mapToGlobal(inside), QPoint(), QPoint(0, -120), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &wheel);

    // Only a control with the focus takes the wheel; otherwise the page scrolls.
    QCOMPARE(storedValue(m_rig->preferences, key).isValid(), focused);
    QCOMPARE(bar->value() > 0, !focused);
}

void SettingsViewsTest::doubleShiftToggleStartsAndStopsTheListener()
{
    m_rig->preferences.setDoubleShiftEnabled(false);
    m_rig->engine.start();
    m_view->showTab(SettingsTab::Capture);
    QCheckBox *toggle
        = findByText<QCheckBox>(m_view.get(), QStringLiteral("Capture with Shift pressed twice"));
    const QString listening = QStringLiteral("Listening");
    const QString notListening = QStringLiteral("Not listening");
    // The key monitor itself starts and stops with the toggle, and the row says so.
    for (const bool running : {false, true, false}) {
        QCOMPARE(m_rig->keys.isRunning(), running);
        QVERIFY(visibleLabel(m_view.get(), running ? listening : notListening));
        QVERIFY(!visibleLabel(m_view.get(), running ? notListening : listening));
        toggle->click();
    }
}

void SettingsViewsTest::exportAllWritesTheFile()
{
    m_rig->store.addNote(QStringLiteral("first line\nsecond line"));
    m_view->showTab(SettingsTab::Storage);
    findByText<QPushButton>(m_view.get(), QStringLiteral("Export All as Markdown…"))->click();
    QTRY_VERIFY_WITH_TIMEOUT(openFileDialog(), Test::patience);
    QFileDialog *dialog = openFileDialog();
    QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
    const QString path
        = Test::IsolatedEnvironment::current().root() + QStringLiteral("/Exported Notes.md");
    dialog->selectFile(path);
    QVERIFY(QMetaObject::invokeMethod(dialog, "accept"));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path), Test::patience);
    QCOMPARE(QString::fromUtf8(Test::readFile(path)),
        QStringLiteral("# Notes\n\n## Inbox\n\n- [ ] first line\n      second line\n"));
}

void SettingsViewsTest::aboutTabTexts()
{
    m_view->showTab(SettingsTab::About);
    for (const QString &text : {QStringLiteral("Vesko"), QStringLiteral("Version 1.2.3"),
             QStringLiteral("A to-do list, a clipboard, and a scratchpad in one panel. Built for "
                            "working alongside AI tools."),
             QStringLiteral("Notes stay in a local file"),
             QStringLiteral("No tracking, no telemetry"), QStringLiteral("No account, no sync")})
        QVERIFY2(visibleLabel(m_view->currentWidget(), text), qPrintable(text));
}

void SettingsViewsTest::updateControllerStaysStoppedAndInstallsAStagedUpdate()
{
    UpdateController updates;
    QSignalSpy ready(&updates, &UpdateController::updateReadyToInstallChanged);
    // No updater on this system: started twice, it stays stopped and its
    // setting stays off.
    updates.start();
    updates.start();
    QVERIFY(!updates.isStarted());
    updates.setAutomaticallyChecksForUpdates(true);
    QVERIFY(!updates.automaticallyChecksForUpdates());
    updates.installUpdate(); // nothing staged: nothing happens

    QStringList installed;
    QVERIFY(
        updates.willInstallUpdateOnQuit([&installed] { installed.append(QStringLiteral("1")); }));
    QVERIFY(updates.updateReadyToInstall());
    // A second staged update replaces the first; the offer stays.
    QVERIFY(
        updates.willInstallUpdateOnQuit([&installed] { installed.append(QStringLiteral("2")); }));
    QCOMPARE(ready.size(), 1);
    updates.installUpdate();
    updates.installUpdate();
    QCOMPARE(installed, (QStringList {QStringLiteral("2"), QStringLiteral("2")}));
    QVERIFY(updates.updateReadyToInstall());
}

VESKO_WIDGET_TEST_MAIN(SettingsViewsTest)

#include "tst_settingsviews.moc"
