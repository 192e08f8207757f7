// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture without a desktop: the text cleanings, the hot keys' stored form,
// conflicts and display, the selection reader's order and fallbacks against a
// fake session and clipboard, and the capture engine's flow into the Store.

#include "ProgramSession.h"
#include "TestEnvironment.h"

#include "FakeCaptureFeedback.h"
#include "FakeClipboard.h"
#include "FakeDesktopSession.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyLayout.h"
#include "FakeKeyMonitor.h"

#include "attachments/AttachmentStore.h"
#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "capture/SelectionText.h"
#include "library/LibraryWriter.h"
#include "platform/SettingsFile.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QSignalSpy>

using namespace Vesko;

namespace {

using Test::FakeCaptureFeedback;
using Test::FakeClipboard;
using Test::FakeDesktopSession;
using Test::FakeHotKeyRegistrar;
using Test::FakeKeyLayout;
using Test::FakeKeyMonitor;

//! The capture logic over fakes of the desktop, as the program puts it together.
struct EngineRig
{
    explicit EngineRig(
        Store &store, std::function<bool()> available = [] { return true; })
        : hotKeys(registrar)
        , permission(std::move(available))
        , monitor(
              keys, [] { return 0.4; }, [this] { return permission.isTrusted(); })
        , reader(session, clipboard, [this] { return permission.isTrusted(); })
        , engine({store, Preferences::shared(), hotKeys, monitor, reader, permission, feedback,
              clipboard})
    { }

    FakeDesktopSession session;
    FakeClipboard clipboard;
    FakeKeyMonitor keys;
    FakeHotKeyRegistrar registrar;
    FakeCaptureFeedback feedback;
    HotKeyCenter hotKeys;
    AccessibilityPermission permission;
    DoubleShiftMonitor monitor;
    SelectionReader reader;
    CaptureEngine engine;
};

FrontApplication xterm()
{
    return {QStringLiteral("XTerm"), QStringLiteral("xterm"), 4242,
        QStringLiteral("build — Firefox"), true};
}

FrontApplication editor()
{
    return {QStringLiteral("Text Editor"), QStringLiteral("org.gnome.TextEditor"), 77,
        QStringLiteral("notes.txt"), false};
}

//! What a read of \a reader answered, once it has (waited for within patience).
std::optional<CapturedSelection> readSelection(SelectionReader &reader)
{
    std::optional<std::optional<CapturedSelection>> answer;
    reader.readSelection([&answer](std::optional<CapturedSelection> s) { answer = s; });
    if (!QTest::qWaitFor([&answer] { return answer.has_value(); }, Test::patience))
        return CapturedSelection {QStringLiteral("(no answer)"), {}};
    return *answer;
}

} // namespace

class CaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cleanWindowTitle_data();
    void cleanWindowTitle();
    void normalizeCapturedText_data();
    void normalizeCapturedText();

    void hotKeysFromSettings();
    void hotKeyRegistration_data();
    void hotKeyRegistration();
    void hotKeyDisplay_data();
    void hotKeyDisplay();

    void copyFallbacks_data();
    void copyFallbacks();
    void changesBeforeTheSnapshotAreNotTheCopy();
    void oneReadAtATime();

    void captureIntoTheSourceSection_data();
    void captureIntoTheSourceSection();
    void secondTriggerDuringACaptureIsDropped_data();
    void secondTriggerDuringACaptureIsDropped();
    void noNote_data();
    void noNote();
    void hotKeyActions();

private:
    std::unique_ptr<Store> makeStore();

    LibraryWriter m_writer;
    AttachmentStore m_attachments;
    SearchIndex m_index;
};

void CaptureTest::init()
{
    openSettingsFile()->clear();
}

void CaptureTest::cleanWindowTitle_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("cleaned");
    // clang-format off
    QTest::newRow("chrome") << u"Docs \u2014 Google Chrome"_qs << "Docs";
    QTest::newRow("cursor twice") << "a.ts - Cursor - Cursor" << "a.ts - Cursor";
    QTest::newRow("suffix before trimming")
        << u"Page \u2014 Safari "_qs << u"Page \u2014 Safari"_qs;
    QTest::newRow("arc en dash") << u"Tab \u2013 Arc"_qs << "Tab";
    QTest::newRow("firefox asymmetry") << "Page - Firefox" << "Page - Firefox";
    QTest::newRow("mozilla firefox") << "Page - Mozilla Firefox" << "Page";
    QTest::newRow("linux firefox") << u"Page \u2014 Mozilla Firefox"_qs << "Page";
    QTest::newRow("chromium") << "Page - Chromium" << "Page";
    QTest::newRow("only the suffix") << " - ChatGPT" << "";
    QTest::newRow("none") << "  build  " << "build";
    // clang-format on
}

void CaptureTest::cleanWindowTitle()
{
    QFETCH(QString, title);
    QFETCH(QString, cleaned);
    QCOMPARE(Vesko::cleanWindowTitle(title), cleaned);
}

void CaptureTest::normalizeCapturedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("normalized");
    // clang-format off
    QTest::newRow("crlf runs, nbsp, indentation")
        << u"line\r\n\r\n\r\n    indented\u00A0text   \n"_qs << "line\n\n    indented text";
    QTest::newRow("lone cr stays") << "a\rb" << "a\rb";
    QTest::newRow("blank runs shrink to one") << "a\n\n\n\n b\n \t \n\nc" << "a\n\n b\n \t \nc";
    QTest::newRow("only whitespace") << " \n\t\n " << "";
    QTest::newRow("blank line keeps its spaces") << "a\n  \nb" << "a\n  \nb";
    // clang-format on
}

void CaptureTest::normalizeCapturedText()
{
    QFETCH(QString, text);
    QFETCH(QString, normalized);
    QCOMPARE(Vesko::normalizeCapturedText(text), normalized);
}

void CaptureTest::hotKeysFromSettings()
{
    FakeHotKeyRegistrar registrar;
    {
        const HotKeyCenter fresh(registrar);
        // Super+Alt+Space: Alt+Space alone is most desktops' window menu.
        QCOMPARE(fresh.combo(HotKeyAction::TogglePanel),
            KeyCombo({65, ModifierFlag::Control | ModifierFlag::Option}));
        QCOMPARE(fresh.combo(HotKeyAction::CaptureSelection),
            KeyCombo({54, ModifierFlag::Control | ModifierFlag::Option}));
        QCOMPARE(fresh.combo(HotKeyAction::QuickAdd)->keyCode, 57);
        QCOMPARE(fresh.combo(HotKeyAction::CopySelectionAsList)->keyCode, 46);
    }
    {
        HotKeyCenter center(registrar);
        center.clearCombo(HotKeyAction::QuickAdd);
        center.setCombo(
            {71, ModifierFlag::Shift | ModifierFlag::Command}, HotKeyAction::TogglePanel);
        // Read back at once, whether or not the writer's thread has written it yet.
        QCOMPARE(HotKeyCenter(registrar).combo(HotKeyAction::TogglePanel),
            KeyCombo({71, ModifierFlag::Shift | ModifierFlag::Command}));
    }
    // The centre's values reach the file on the writer's thread: a write of
    // the file by hand waits for them, or one of the two is lost.
    SettingsWriter::shared().flush();
    openSettingsFile()->setValue(
        HotKeyCenter::settingsKey(HotKeyAction::CopySelectionAsList), QByteArray("{not json"));
    const HotKeyCenter reread(registrar);
    // Cleared and garbage both read as no combination; the default does not return.
    QVERIFY(!reread.combo(HotKeyAction::QuickAdd));
    QVERIFY(!reread.combo(HotKeyAction::CopySelectionAsList));
    QCOMPARE(reread.combo(HotKeyAction::TogglePanel),
        KeyCombo({71, ModifierFlag::Shift | ModifierFlag::Command}));
    QCOMPARE(openSettingsFile()->value(HotKeyCenter::settingsKey(HotKeyAction::QuickAdd)),
        QVariant(QByteArray()));
}

void CaptureTest::hotKeyRegistration_data()
{
    QTest::addColumn<QString>("session"); // Vesko grabs the keys, the desktop owns them, or none
    // Per action (toggle, capture, quick add, copy as list): the key code held
    // (0: offered to the desktop without a combination), "refused" or "-".
    QTest::addColumn<QStringList>("states");
    QTest::newRow("Vesko grabs the keys") << "grabs" << QStringList {"65", "54", "refused", "-"};
    // Actions the recorder cannot give keys where the desktop owns them are
    // offered to it, to bind in its own settings.
    QTest::newRow("the desktop owns the keys")
        << "desktop" << QStringList {"65", "54", "refused", "0"};
    // Nothing took the keys: Settings must not say another program did.
    QTest::newRow("no hot keys in the session") << "none" << QStringList {"-", "-", "-", "-"};
}

void CaptureTest::hotKeyRegistration()
{
    QFETCH(QString, session);
    QFETCH(QStringList, states);
    FakeHotKeyRegistrar registrar;
    registrar.available = session != u"none";
    if (session == u"desktop")
        registrar.desktopTriggers.insert(hotKeyID(HotKeyAction::TogglePanel), QStringLiteral("F1"));
    HotKeyCenter center(registrar);
    // An edited store: two actions on one combination, and one without modifiers.
    center.setCombo({54, ModifierFlag::Control | ModifierFlag::Option}, HotKeyAction::QuickAdd);
    center.setCombo({30, 0}, HotKeyAction::CopySelectionAsList);
    center.unregisterAll();
    QVERIFY(registrar.held.isEmpty());

    QList<HotKeyAction> pressed;
    center.setHandler([&pressed](HotKeyAction action) { pressed.append(action); });
    center.installEventHandler();
    center.registerAll();
    for (qsizetype i = 0; i < states.size(); ++i) {
        const HotKeyAction action = allHotKeyActions[i];
        const int id = hotKeyID(action);
        QString state = registrar.held.contains(id)
            ? QString::number(registrar.held.value(id).first)
            : QString();
        if (center.isRefused(action))
            state += u"refused";
        QCOMPARE(state.isEmpty() ? u"-"_qs : state, states.at(i));
        QCOMPARE(center.isRegistered(action), registrar.held.contains(id));
    }
    QCOMPARE(center.conflictingAction({54, ModifierFlag::Control | ModifierFlag::Option},
                 HotKeyAction::CaptureSelection),
        HotKeyAction::QuickAdd);
    QVERIFY(!center.conflictingAction({54, ModifierFlag::Option}, HotKeyAction::QuickAdd));

    registrar.handler(hotKeyID(HotKeyAction::CaptureSelection));
    registrar.handler(99);
    QCOMPARE(pressed, QList<HotKeyAction> {HotKeyAction::CaptureSelection});
    center.unregisterAll();
    QVERIFY(registrar.held.isEmpty());
    QVERIFY(!registrar.handler);
}

void CaptureTest::hotKeyDisplay_data()
{
    using namespace ModifierFlag;
    QTest::addColumn<KeyCombo>("combo");
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QString>("symbols");
    QTest::newRow("Super+Alt+C") << KeyCombo {54, Control | Option} << "Super+Alt+C"
                                 << u"\u2303\u2325C"_qs;
    QTest::newRow("Ctrl+Shift+F5")
        << KeyCombo {71, Shift | Command} << "Ctrl+Shift+F5" << u"\u21E7\u2318F5"_qs;
    QTest::newRow("Alt+Space") << KeyCombo {65, Option} << "Alt+Space" << u"\u2325Space"_qs;
    QTest::newRow("Super+Alt+Space")
        << KeyCombo {65, Control | Option} << "Super+Alt+Space" << u"\u2303\u2325Space"_qs;
    QTest::newRow("Ctrl+Backspace")
        << KeyCombo {22, Command} << "Ctrl+Backspace" << u"\u2318\u232B"_qs;
    QTest::newRow("unknown key") << KeyCombo {200, Option} << "Alt+Key 200" << u"\u2325Key 200"_qs;
}

void CaptureTest::hotKeyDisplay()
{
    QFETCH(KeyCombo, combo);
    QFETCH(QString, desktop);
    QFETCH(QString, symbols);
    const FakeKeyLayout layout;
    QCOMPARE(displayString(combo, &layout), desktop);
    QCOMPARE(symbolDisplayString(combo, &layout), symbols);
}

void CaptureTest::copyFallbacks_data()
{
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<bool>("snapshotWhole");
    QTest::addColumn<QList<int>>("attempts");
    QTest::addColumn<QString>("captured");
    QTest::addColumn<QString>("clipboardAfter");
    // The user's clipboard holds HTML and text before each case, and the
    // front process's primary selection is blank.
    // clang-format off
    QTest::newRow("text at once") << "text" << true << QList<int> {1} << "copied" << "html";
    QTest::newRow("text at the second attempt")
        << "second" << true << QList<int> {1, 2} << "copied" << "html";
    QTest::newRow("image only") << "image" << true << QList<int> {1, 2} << "" << "image";
    QTest::newRow("silence") << "nothing" << true << QList<int> {1, 2} << "" << "html";
    QTest::newRow("blank text") << "blank" << true << QList<int> {1} << "" << "html";
    // A clipboard that cannot be put back whole is never copied over.
    QTest::newRow("text, snapshot not whole") << "text" << false << QList<int> {} << "" << "html";
    // clang-format on
}

void CaptureTest::copyFallbacks()
{
    QFETCH(QString, behaviour);
    QFETCH(bool, snapshotWhole);
    QFETCH(QList<int>, attempts);
    QFETCH(QString, captured);
    QFETCH(QString, clipboardAfter);
    FakeDesktopSession session;
    FakeClipboard clipboard;
    const Clipboard::Snapshot users = {{{QStringLiteral("text/html"), QByteArray("<b>x</b>")},
        {QStringLiteral("text/plain"), QByteArray("x")}}};
    clipboard.items = users;
    clipboard.snapshotsWhole = snapshotWhole;
    session.front = editor();
    session.primary = QStringLiteral(" \n\t ");
    session.primaryOwner = editor().processID;
    session.onCopy = [&](int attempt) {
        if (behaviour == u"text" || behaviour == u"blank"
            || (behaviour == u"second" && attempt == 2)) {
            clipboard.setText(
                behaviour == u"blank" ? QStringLiteral(" \n ") : QStringLiteral("copied"));
        } else if (behaviour == u"image" && attempt == 1) {
            clipboard.items = {{{QStringLiteral("image/png"), QByteArray("PNG")}}};
            ++clipboard.count;
        }
    };
    SelectionReader reader(session, clipboard, [] { return true; });
    const std::optional<CapturedSelection> result = readSelection(reader);
    QCOMPARE(session.copies, attempts);
    QCOMPARE(result ? result->text : QString(), captured);
    if (clipboardAfter == u"html")
        QCOMPARE(clipboard.items, users);
    else
        QCOMPARE(clipboard.items.first().keys(), QStringList {QStringLiteral("image/png")});
}

void CaptureTest::changesBeforeTheSnapshotAreNotTheCopy()
{
    FakeDesktopSession session;
    FakeClipboard clipboard;
    session.front = editor();
    clipboard.setText(QStringLiteral("the user's"));
    // The application answers only the second Ctrl+C.
    session.onCopy = [&](int attempt) {
        if (attempt == 2)
            clipboard.setText(QStringLiteral("copied"));
    };
    clipboard.answers.holding = true;
    SelectionReader reader(session, clipboard, [] { return true; });
    std::optional<CapturedSelection> result;
    bool done = false;
    reader.readSelection([&](std::optional<CapturedSelection> s) {
        result = s;
        done = true;
    });
    QCOMPARE(clipboard.answers.heldCount(), 1);
    QVERIFY2(session.copies.isEmpty(), "no key goes out before the snapshot is taken");

    // Another program changes the clipboard while its snapshot is on the way.
    clipboard.setText(QStringLiteral("another program's"));
    clipboard.answers.holding = false;
    clipboard.answers.release();
    QTRY_VERIFY_WITH_TIMEOUT(done, Test::patience);
    QCOMPARE(session.copies, (QList<int> {1, 2}));
    QVERIFY(result);
    QCOMPARE(result->text, QStringLiteral("copied"));
    QCOMPARE(clipboard.text(), QStringLiteral("another program's"));
}

void CaptureTest::oneReadAtATime()
{
    FakeDesktopSession session;
    FakeClipboard clipboard;
    session.front = editor();
    session.primary = QStringLiteral("selected");
    session.primaryOwner = editor().processID;
    session.primaryAnswers.holding = true;
    SelectionReader reader(session, clipboard, [] { return true; });
    QStringList answers;
    const auto record = [&answers](std::optional<CapturedSelection> s) {
        answers.append(s ? s->text : QStringLiteral("none"));
    };
    reader.readSelection(record);
    reader.readSelection(record);
    QCOMPARE(answers, QStringList {QStringLiteral("none")});
    session.primaryAnswers.release();
    QCOMPARE(answers, (QStringList {QStringLiteral("none"), QStringLiteral("selected")}));
    QVERIFY(!reader.isReading());
}

std::unique_ptr<Store> CaptureTest::makeStore()
{
    return std::make_unique<Store>(
        Library {}, Store::Services {Preferences::shared(), m_writer, m_attachments, m_index});
}

void CaptureTest::captureIntoTheSourceSection_data()
{
    QTest::addColumn<bool>("bySource");
    QTest::addColumn<QString>("appName");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("section");
    // clang-format off
    QTest::newRow("by source") << true << "XTerm" << "build" << u"XTerm \u2014 build"_qs;
    QTest::newRow("unknown application") << true << "" << "build" << u"Unknown \u2014 build"_qs;
    QTest::newRow("title is the name") << true << "XTerm" << "xterm" << "XTerm";
    QTest::newRow("inbox") << false << "XTerm" << "build" << "Inbox";
    // clang-format on
}

void CaptureTest::captureIntoTheSourceSection()
{
    QFETCH(bool, bySource);
    QFETCH(QString, appName);
    QFETCH(QString, title);
    QFETCH(QString, section);
    Preferences::shared().setGroupCapturesBySource(bySource);
    const std::unique_ptr<Store> store = makeStore();
    EngineRig rig(*store);
    // The front process's own primary selection, read as it stands: no copy.
    rig.session.front = FrontApplication {
        appName, QStringLiteral("xterm"), 5, title + u" \u2014 Firefox"_qs, true};
    rig.session.primary = QStringLiteral("  selected words\r\n");
    rig.session.primaryOwner = 5;
    rig.engine.start();
    QVERIFY(rig.engine.isListeningForDoubleShift());

    // Two Shift taps reach the engine through the monitor.
    for (const KeyEvent &event : {KeyEvent {KeyEvent::FlagsChanged, 50, ModifierFlag::Shift, 1.0},
             KeyEvent {KeyEvent::FlagsChanged, 50, 0, 1.1},
             KeyEvent {KeyEvent::FlagsChanged, 50, ModifierFlag::Shift, 1.2},
             KeyEvent {KeyEvent::FlagsChanged, 50, 0, 1.3}})
        rig.keys.receiver(event);
    QTRY_COMPARE_WITH_TIMEOUT(
        rig.feedback.toasts, QStringList {QStringLiteral("Captured|checkmark")}, Test::patience);
    QCOMPARE(store->selection().size(), 1);
    const std::optional<NoteAddress> address = store->addressOfNote(*store->selection().cbegin());
    QVERIFY(address);
    const std::optional<NoteSection> target = store->section(address->sectionID);
    QVERIFY(target);
    QCOMPARE(target->title, section);
    QCOMPARE(target->notes.size(), 1);
    QCOMPARE(target->notes.first().text, QStringLiteral("selected words"));
    const NoteSource source = *target->notes.first().source;
    QCOMPARE(source.appName, appName.isEmpty() ? u"Unknown"_qs : appName);
    QCOMPARE(source.bundleIdentifier, QStringLiteral("xterm"));
    QCOMPARE(source.windowTitle, title);
    QVERIFY(rig.session.copies.isEmpty());
    QCOMPARE(rig.clipboard.count, 0u);
    QCOMPARE(rig.feedback.shows, (QList<QPair<bool, bool>> {{true, false}}));
    QVERIFY(!rig.engine.lastCaptureFailed());
    Preferences::shared().setGroupCapturesBySource(true);
}

void CaptureTest::secondTriggerDuringACaptureIsDropped_data()
{
    // Where the capture waits on the desktop when the second trigger comes.
    QTest::addColumn<QString>("waitingOn");
    QTest::addColumn<QString>("captured");
    // clang-format off
    QTest::newRow("the primary selection") << "primary" << "from primary";
    QTest::newRow("the clipboard snapshot") << "snapshot" << "copied once";
    QTest::newRow("held keys before the copy") << "keys" << "copied once";
    QTest::newRow("the clipboard's text") << "text" << "copied once";
    // clang-format on
}

void CaptureTest::secondTriggerDuringACaptureIsDropped()
{
    QFETCH(QString, waitingOn);
    QFETCH(QString, captured);
    const std::unique_ptr<Store> store = makeStore();
    EngineRig rig(*store);
    rig.session.front = editor();
    if (waitingOn == u"primary") {
        rig.session.primary = QStringLiteral("from primary");
        rig.session.primaryOwner = editor().processID;
    }
    rig.session.onCopy = [&rig](int) { rig.clipboard.setText(QStringLiteral("copied once")); };
    Test::FakeAnswers &held = waitingOn == u"primary" ? rig.session.primaryAnswers
        : waitingOn == u"keys"                        ? rig.session.copyAnswers
                                                      : rig.clipboard.answers;
    held.holding = true;
    rig.engine.start();
    QSignalSpy finished(&rig.engine, &CaptureEngine::captureFinished);
    rig.engine.captureSelection();
    if (waitingOn == u"text") {
        // The snapshot goes first; the text is asked once the copy has landed.
        QCOMPARE(held.heldCount(), 1);
        held.release();
    }
    QTRY_COMPARE_WITH_TIMEOUT(held.heldCount(), 1, Test::patience);
    QVERIFY(rig.engine.isCapturing());

    // A menu entry and a double Shift while the capture waits: both dropped.
    rig.engine.captureSelection();
    double time = 10;
    for (quint64 flags : {ModifierFlag::Shift, quint64(0), ModifierFlag::Shift, quint64(0)})
        rig.keys.receiver(KeyEvent {KeyEvent::FlagsChanged, 50, flags, time += 0.1});
    QTest::qWait(50);
    QCOMPARE(held.heldCount(), 1);
    QCOMPARE(finished.count(), 0);

    held.holding = false;
    held.release();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, Test::patience);
    QTest::qWait(100);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(noteCount(store->library()), 1);
    QCOMPARE(Test::allNotes(store->library()).first().text, captured);
    QVERIFY(rig.session.copies.size() <= 1);
}

void CaptureTest::noNote_data()
{
    QTest::addColumn<bool>("trusted");
    QTest::addColumn<bool>("terminal");
    QTest::addColumn<bool>("copyKeys");
    QTest::addColumn<QString>("toast");
    const QString nothing = QStringLiteral("Nothing Selected|text.cursor");
    // Nothing in PRIMARY, and no copy may be sent: the clipboard is never read.
    QTest::newRow("a terminal") << true << true << true << nothing;
    QTest::newRow("a session without copy keys") << true << false << false << nothing;
    // The panel shows, to say why.
    QTest::newRow("no capture permission")
        << false << false << true << "Accessibility Access Needed|lock";
}

void CaptureTest::noNote()
{
    QFETCH(bool, trusted);
    QFETCH(bool, terminal);
    QFETCH(bool, copyKeys);
    QFETCH(QString, toast);
    const std::unique_ptr<Store> store = makeStore();
    bool available = trusted;
    EngineRig rig(*store, [&available] { return available; });
    rig.session.front = terminal ? xterm() : editor();
    rig.session.copyKeys = copyKeys;
    rig.engine.start();
    QCOMPARE(rig.engine.isListeningForDoubleShift(), trusted);
    rig.engine.captureSelection();
    QTRY_COMPARE_WITH_TIMEOUT(rig.feedback.toasts, QStringList {toast}, Test::patience);
    QVERIFY(!rig.engine.isCapturing());
    QCOMPARE(rig.engine.lastCaptureFailed(), trusted);
    QCOMPARE(rig.feedback.shows.size(), trusted ? 0 : 1); // shown, not activated for typing
    QVERIFY(trusted || rig.feedback.shows.first() == qMakePair(true, false));
    QCOMPARE(noteCount(store->library()), 0);
    QVERIFY(rig.session.copies.isEmpty());
    // Capture becomes available: a refresh starts the gesture.
    available = true;
    rig.permission.refresh();
    QVERIFY(rig.engine.isListeningForDoubleShift());
}

void CaptureTest::hotKeyActions()
{
    const std::unique_ptr<Store> store = makeStore();
    EngineRig rig(*store);
    rig.engine.start();
    rig.registrar.handler(hotKeyID(HotKeyAction::TogglePanel));
    rig.registrar.handler(hotKeyID(HotKeyAction::QuickAdd));
    QCOMPARE(rig.feedback.toggles, 1);
    QCOMPARE(rig.feedback.shows, (QList<QPair<bool, bool>> {{true, true}}));
    // Nothing to copy: the clipboard stays, the toast comes all the same.
    rig.registrar.handler(hotKeyID(HotKeyAction::CopySelectionAsList));
    QCOMPARE(rig.clipboard.count, 0u);
    store->addNote(QStringLiteral("one"));
    store->addNote(QStringLiteral("two"));
    rig.registrar.handler(hotKeyID(HotKeyAction::CopySelectionAsList));
    QCOMPARE(rig.clipboard.text(), QStringLiteral("1. one\n2. two"));
    QCOMPARE(rig.feedback.toasts, QStringList(2, u"Copied as List|list.number"_qs));
}

VESKO_TEST_MAIN(CaptureTest)
#include "tst_capture.moc"
