// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture on Wayland from the outside: in a headless sway (tests/sway-session.sh)
// from foot by every trigger, through a synthetic copy, and against selection
// owners that never send or never stop; in a headless mutter
// (tests/mutter-session.sh), on the panel's focus. Beside them, the pipe read and
// data control on a compositor of the test's own that withdraws its globals.

#include "TestEnvironment.h"

#include "ProgramSession.h"
#include "platform/wayland/WaylandClipboard.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandPipeReader.h"
#include "platform/wayland/WaylandPrimarySelection.h"
#include "shell/CaptureStatus.h"

#include "wlr-data-control-unstable-v1-server-protocol.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QSocketNotifier>
#include <QTemporaryDir>

#include <wayland-client.h>
#include <wayland-server.h>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

using namespace Vesko;

namespace {

//! Runs a Wayland client of the session to its end and returns its output.
QString client(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    if (!input.isNull()) {
        process.write(input);
        process.closeWriteChannel();
    }
    // wl-copy serves the selection from a child of its own; the parent returns.
    if (!process.waitForFinished(Test::patience))
        process.kill();
    return QString::fromUtf8(process.readAllStandardOutput());
}

//! Runs \a line, a program and its arguments split at spaces, as client() does.
QString client(const QString &line, const QByteArray &input = {})
{
    const QStringList words = Test::words(line);
    return client(words.first(), words.mid(1), input);
}

//! Whether the node of sway's tree that has the focus, under \a node, is named \a name.
bool focusedIn(const QJsonObject &node, const QString &name)
{
    if (node.value(QStringLiteral("focused")).toBool())
        return node.value(QStringLiteral("name")).toString() == name;
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(QLatin1String(children)).toArray()) {
            if (focusedIn(child.toObject(), name))
                return true;
        }
    }
    return false;
}

bool focusedWindowIs(const QString &name)
{
    return focusedIn(
        QJsonDocument::fromJson(client(QStringLiteral("swaymsg -t get_tree")).toUtf8()).object(),
        name);
}

//! The desktop's notification service: records each notification asked
//! for as "APPLICATION | SUMMARY | ICON | transient, urgency | EXPIRY".
class NotificationService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList calls;

public Q_SLOTS:
    uint Notify(const QString &application, uint, const QString &icon, const QString &summary,
        const QString &, const QStringList &, const QVariantMap &hints, int expiry)
    {
        calls.append(QStringLiteral("%1 | %2 | %3 | %4, %5 | %6 ms")
                         .arg(application, summary, icon, hints.value(u"transient"_qs).toString(),
                             QString::number(hints.value(u"urgency"_qs, -1).toInt()))
                         .arg(expiry));
        return uint(calls.size());
    }
};

class WaylandCapture : public Test::ProgramSession
{
public:
    WaylandCapture()
    {
        setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    }

    //! Vesko with the panel kept hidden on capture, the front window staying
    //! in front; ready once \a ready holds of it (by default: its panel has sway's focus).
    QProcess *startVesko(std::function<bool(QProcess *)> ready = {})
    {
        QDir().mkpath(QFileInfo(configPath()).path());
        QFile config(configPath());
        if (config.open(QIODevice::WriteOnly)) // the widest double-Shift interval
            config.write("[General]\nshowPanelOnCapture=false\ndoubleShiftInterval=1\n");
        config.close();
        // Its log is read: a toast is a popup, out of the compositor's tree.
        QProcess *vesko = start(QStringLiteral(VESKO_PATH), {}, QProcess::SeparateChannels);
        if (!ready)
            ready = [](QProcess *) { return focusedWindowIs(QStringLiteral("Vesko")); };
        if (!QTest::qWaitFor([&] { return ready(vesko); }, 20000))
            return nullptr;
        return vesko;
    }

    //! A foot window titled \a title, in front, showing \a shown.
    bool startFoot(const QString &title, const QString &shown = QStringLiteral("ready"))
    {
        start(QStringLiteral("foot"),
            {QStringLiteral("--title"), title, QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral("echo '%1'; sleep 600").arg(shown)});
        return QTest::qWaitFor([&] { return focusedWindowIs(title); }, 15000);
    }

    //! Selects \a text in the foot window in front as its user would from
    //! the keyboard: foot's scrollback search, whose commit makes the match
    //! foot's own primary selection.
    static bool selectInFoot(const QString &text)
    {
        // A terminal just started may not have read its keymap or drawn
        // its text when the first keys come: the search is then started
        // again, within a generous bound.
        for (int attempt = 0; attempt < 10; ++attempt) {
            // One wtype, one virtual keyboard: a keyboard made anew for each
            // step loses the first key that follows it.
            client(QStringLiteral("wtype"),
                Test::words(
                    QStringLiteral("-k Escape -M ctrl -M shift -k r -m shift -m ctrl -s 300"))
                    << text << Test::words(QStringLiteral("-s 100 -k Return")));
            if (QTest::qWaitFor(
                    [&] {
                        return client(QStringLiteral("wl-paste --primary --no-newline")) == text;
                    },
                    3000))
                return true;
            qWarning("foot's primary selection: \"%s\"",
                qPrintable(client(QStringLiteral("wl-paste --primary"))));
        }
        return false;
    }

    //! The `vesko` command line with this session's folders, as a sway binding runs it.
    QString veskoCommand(const QString &command) const
    {
        QStringList words {QStringLiteral("exec env")};
        for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "QT_QPA_PLATFORM"}) {
            words.append(QStringLiteral("%1=%2").arg(
                QLatin1String(name), sessionEnvironment().value(QLatin1String(name))));
        }
        words << QStringLiteral(VESKO_PATH) << command;
        return words.join(u' ');
    }

    Outcome vesko(const QStringList &arguments) const
    {
        return run(QStringLiteral(VESKO_PATH), arguments, {}, 30000);
    }

    //! Whether \a vesko's log says each of \a lines once more.
    bool says(QProcess *vesko, const QByteArrayList &lines)
    {
        QList<qsizetype> said;
        for (const QByteArray &line : lines)
            said.append(m_log.count(line));
        return QTest::qWaitFor(
            [&] {
                m_log += vesko->readAllStandardError();
                for (qsizetype i = 0; i < lines.size(); ++i) {
                    if (m_log.count(lines.at(i)) == said.at(i))
                        return false;
                }
                return true;
            },
            15000);
    }

    //! Whether a capture takes the primary selection that wl-copy sets now;
    //! \a meanwhile runs while the capture is awaited.
    bool capturesTheNextSelection(const std::function<void()> &meanwhile = {})
    {
        const QString text = QStringLiteral("the next selection");
        client(QStringLiteral("wl-copy --primary"), text.toUtf8());
        const qsizetype before = notes().size();
        return vesko({QStringLiteral("capture")}).exitCode == 0
            && QTest::qWaitFor(
                [&] {
                    if (meanwhile)
                        meanwhile();
                    return notes().size() > before;
                },
                15000)
            && notes().last().text == text;
    }

private:
    QByteArray m_log;
};

//! Skips the test outside the session of \a compositor ("sway" or "mutter"):
//! each compositor's tests run under its own session script, which fails
//! where the compositor cannot start.
bool needs(const QString &compositor)
{
    const bool running = compositor == u"mutter" ? qEnvironmentVariable("VESKO_MUTTER") == u"1"
                                                 : (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
                                                     && !qEnvironmentVariableIsEmpty("SWAYSOCK"));
    if (!running) {
        QTest::qSkip(
            qPrintable(QStringLiteral("Needs a %1 session: run through tests/%1-session.sh")
                           .arg(compositor)),
            __FILE__, __LINE__);
    }
    return running;
}

bool ownedOnBus(const QString &name)
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(name);
}

//! Gives mutter's seat a keyboard, for as long as this process runs: a
//! headless mutter has no input device, and without a keyboard no client
//! gets the focus. Its remote desktop service adds a virtual one.
bool giveMutterAKeyboard()
{
    const QString service = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
    if (!QTest::qWaitFor([&] { return ownedOnBus(service); }, 20000))
        return false;
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusMessage made = bus.call(
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Mutter/RemoteDesktop"),
            service, QStringLiteral("CreateSession")));
    if (made.type() != QDBusMessage::ReplyMessage) {
        qWarning("No remote desktop session: %s", qPrintable(made.errorMessage()));
        return false;
    }
    const QString path = made.arguments().value(0).value<QDBusObjectPath>().path();
    const auto call = [&](const QString &method, const QList<QVariant> &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, path, QStringLiteral("org.gnome.Mutter.RemoteDesktop.Session"), method);
        message.setArguments(arguments);
        const QDBusMessage reply = bus.call(message);
        if (reply.type() != QDBusMessage::ReplyMessage)
            qWarning("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
        return reply.type() == QDBusMessage::ReplyMessage;
    };
    // The keyboard is made with its first key: a lone Shift, down and up.
    const uint shift = 0xffe1;
    return call(QStringLiteral("Start"), {})
        && call(QStringLiteral("NotifyKeyboardKeysym"), {shift, true})
        && call(QStringLiteral("NotifyKeyboardKeysym"), {shift, false});
}

//! A compositor of the test's own, on a thread: a seat and data control
//! (version 2), each withdrawn and offered again on request. Its data
//! control devices never send anything.
class TinyCompositor
{
public:
    TinyCompositor()
        : m_display(wl_display_create())
        , m_socket(wl_display_add_socket_auto(m_display))
        , m_seat(global(true))
        , m_dataControl(global(false))
    {
        run();
    }
    ~TinyCompositor()
    {
        stop();
        wl_display_destroy(m_display);
    }

    //! The socket's name in XDG_RUNTIME_DIR, or null.
    const char *socket() const { return m_socket; }

    //! Offers the seat (or data control) again, or withdraws it, while the
    //! server's thread stands still.
    void setOffered(bool seat, bool offered)
    {
        stop();
        wl_global *&made = seat ? m_seat : m_dataControl;
        if (offered) {
            made = global(seat);
        } else {
            wl_global_destroy(made);
            made = nullptr;
        }
        run();
    }

private:
    void run()
    {
        m_running = true;
        m_thread = std::thread([this] {
            while (m_running) {
                wl_display_flush_clients(m_display);
                wl_event_loop_dispatch(wl_display_get_event_loop(m_display), -1);
            }
        });
    }
    //! Wakes the loop (as wl_display_terminate does) to see that it is to stop.
    void stop()
    {
        m_running = false;
        wl_display_terminate(m_display);
        m_thread.join();
    }

    wl_global *global(bool seat)
    {
        const wl_interface *interface = seat ? &wl_seat_interface
                                             : &zwlr_data_control_manager_v1_interface;
        return wl_global_create(m_display, interface, seat ? 1 : 2,
            const_cast<wl_interface *>(interface), &TinyCompositor::bind);
    }

    static void destroyResource(wl_client *, wl_resource *resource)
    {
        wl_resource_destroy(resource);
    }

    static void bind(wl_client *client, void *data, uint32_t version, uint32_t id)
    {
        const auto *interface = static_cast<const wl_interface *>(data);
        wl_resource *resource = wl_resource_create(client, interface, int(version), id);
        if (interface != &zwlr_data_control_manager_v1_interface)
            return; // the seat: asked for nothing here
        static const struct zwlr_data_control_manager_v1_interface manager = {
            // create_data_source
            [](wl_client *client, wl_resource *manager, uint32_t id) {
                static const struct zwlr_data_control_source_v1_interface source
                    = {[](wl_client *, wl_resource *, const char *) {}, &destroyResource};
                wl_resource *made = wl_resource_create(client,
                    &zwlr_data_control_source_v1_interface, wl_resource_get_version(manager), id);
                wl_resource_set_implementation(made, &source, nullptr, nullptr);
            },
            // get_data_device
            [](wl_client *client, wl_resource *manager, uint32_t id, wl_resource *) {
                static const struct zwlr_data_control_device_v1_interface device
                    = {[](wl_client *, wl_resource *, wl_resource *) {}, &destroyResource,
                        [](wl_client *, wl_resource *, wl_resource *) {}};
                wl_resource *made = wl_resource_create(client,
                    &zwlr_data_control_device_v1_interface, wl_resource_get_version(manager), id);
                wl_resource_set_implementation(made, &device, nullptr, nullptr);
            },
            &destroyResource,
        };
        wl_resource_set_implementation(resource, &manager, nullptr, nullptr);
    }

    wl_display *m_display;
    const char *m_socket;
    wl_global *m_seat;
    wl_global *m_dataControl;
    std::atomic_bool m_running = false;
    std::thread m_thread;
};

} // namespace

class CaptureWaylandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pipeRead_data();
    void pipeRead();
    void captureFromClients();
    void misbehavingOwner_data();
    void misbehavingOwner();
    void compositorWithdrawsGlobal_data();
    void compositorWithdrawsGlobal();
    void clipboardSnapshotBounds_data();
    void clipboardSnapshotBounds();
    void clipboardReaderLeavesEarly();
    void captureOnPanelFocus();
};

void CaptureWaylandTest::pipeRead_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<std::optional<QByteArray>>("expected");
    const QByteArray text("words from another client");
    QTest::newRow("sent whole") << text << true << std::optional<QByteArray>(text);
    QTest::newRow("nothing sent, closed")
        << QByteArray() << true << std::optional<QByteArray>(QByteArray());
    QTest::newRow("never ends") << text << false << std::optional<QByteArray>();
    // The cap of these reads is 4096 bytes.
    QTest::newRow("over the cap") << QByteArray(4097, 'x') << true << std::optional<QByteArray>();
    QTest::newRow("at the cap") << QByteArray(4096, 'x') << true
                                << std::optional<QByteArray>(QByteArray(4096, 'x'));
}

void CaptureWaylandTest::pipeRead()
{
    QFETCH(QByteArray, written);
    QFETCH(bool, closed);
    QFETCH(std::optional<QByteArray>, expected);
    int fds[2];
    QVERIFY(::pipe2(fds, O_CLOEXEC) == 0);
    QVERIFY(::write(fds[1], written.constData(), size_t(written.size())) == written.size());
    if (closed)
        ::close(fds[1]);
    bool answered = false;
    std::optional<QByteArray> answer;
    WaylandPipeReader::read(fds[0], 4096, 300, [&](std::optional<QByteArray> bytes) {
        QVERIFY(!answered);
        answered = true;
        answer = std::move(bytes);
    });
    QVERIFY(!answered); // never at once: the reader waits on the event loop
    QTRY_VERIFY_WITH_TIMEOUT(answered, Test::patience);
    QCOMPARE(answer, expected);
    if (!closed)
        ::close(fds[1]);
}

void CaptureWaylandTest::captureFromClients()
{
    if (!needs(u"sway"_qs))
        return;
    WaylandCapture session;
    QVERIFY(session.startVesko());
    const QString text = QStringLiteral("words selected in the terminal");
    QVERIFY(session.startFoot(QStringLiteral("build log"), text));
    QVERIFY(WaylandCapture::selectInFoot(text));
    // The call the Capture tab has KWin make on each lone Shift release.
    const QStringList call = kwinShiftCommands(QStringLiteral("6")).section(u'"', 1, 1).split(u',');
    QCOMPARE(call.size(), 4);
    const auto tap = [&call] {
        QProcess gdbus;
        gdbus.start(QStringLiteral("gdbus"),
            Test::words(QStringLiteral("call --session -d %1 -o %2 -m %3.%4")
                            .arg(call.at(0), call.at(1), call.at(2), call.at(3))));
        return gdbus.waitForFinished(10000) && gdbus.exitCode() == 0;
    };

    NotificationService notifications;
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY(bus.registerObject(
        u"/org/freedesktop/Notifications"_qs, &notifications, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.Notifications"_qs));
    const auto unregister
        = qScopeGuard([&bus] { bus.unregisterService(u"org.freedesktop.Notifications"_qs); });
    // Each trigger in turn captures the selection once more.
    for (const QString &trigger : {u"command line"_qs, u"sway key binding"_qs,
             u"Shift taps over the bus, as KWin calls"_qs, u"two Shift taps through sway"_qs}) {
        const qsizetype before = session.notes().size();
        const qsizetype notified = notifications.calls.size();
        if (trigger.startsWith(u"command")) {
            QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
        } else if (trigger.startsWith(u"sway")) {
            client(QStringLiteral("swaymsg"),
                {QStringLiteral("bindsym --no-warn Mod4+Mod1+c ")
                    + session.veskoCommand(QStringLiteral("capture"))});
            client(QStringLiteral("wtype -M logo -M alt -k c -m alt -m logo"));
        } else if (trigger.contains(u"bus")) {
            // Lone taps further apart than the gesture's widest gap capture nothing.
            for (int lone = 0; lone < 2; ++lone) {
                QVERIFY(tap());
                QTest::qWait(1500);
            }
            QCOMPARE(session.notes().size(), before);
            QVERIFY(tap());
            QVERIFY(tap());
        } else { // last: Shift's binding stays
            client(QStringLiteral("swaymsg"),
                {QStringLiteral("bindsym --no-warn --release Shift_L ")
                    + session.veskoCommand(QStringLiteral("shift"))});
            client(QStringLiteral("wtype -k Shift_L -s 150 -k Shift_L"));
        }
        QTRY_VERIFY2_WITH_TIMEOUT(
            session.notes().size() == before + 1, qPrintable(trigger), Test::patience);
        const QString captured = session.lastNote();
        QVERIFY2(captured == text + QStringLiteral(" | Foot | build log | foot"),
            qPrintable(trigger + QStringLiteral(": ") + captured));
        // The toast is a notification of the desktop's, and the terminal
        // keeps the focus while it shows.
        QVERIFY2(focusedWindowIs(QStringLiteral("build log")), qPrintable(trigger));
        QTRY_COMPARE_WITH_TIMEOUT(notifications.calls.size(), notified + 1, Test::patience);
        QCOMPARE(notifications.calls.last(),
            QStringLiteral("Vesko | Captured | object-select-symbolic | true, 0 | 1100 ms"));
    }

    // A window without a primary selection of its own: the capture copies.
    client(QStringLiteral("wl-copy"), QByteArray("the user's clipboard"));
    client(QStringLiteral("wl-copy --primary --clear"));
    const QString copied = QStringLiteral("text from the copy target");
    QProcess *target
        = session.start(QStringLiteral(COPY_TARGET_PATH), {copied, QStringLiteral("100")});
    QTRY_VERIFY_WITH_TIMEOUT(focusedWindowIs(QStringLiteral("Copy Target")), Test::patience);
    QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 5, Test::patience);
    const QStringList captured = session.lastNote().split(QStringLiteral(" | "));
    QCOMPARE((QStringList {captured.value(0), captured.value(2)}),
        (QStringList {copied, QStringLiteral("Copy Target")}));
    // The window got exactly the copy keys, and the clipboard is the user's again.
    QVERIFY(QString::fromUtf8(target->readAllStandardOutput()).startsWith(u"key Ctrl+Ins\n"));
    QTRY_COMPARE_WITH_TIMEOUT(client(QStringLiteral("wl-paste --no-newline")),
        QStringLiteral("the user's clipboard"), 10000);
}

void CaptureWaylandTest::misbehavingOwner_data()
{
    QTest::addColumn<bool>("dataControl"); // off: read as the panel takes the focus
    QTest::newRow("data control") << true;
    QTest::newRow("read on the panel's focus") << false;
}

void CaptureWaylandTest::misbehavingOwner()
{
    if (!needs(u"sway"_qs))
        return;
    QFETCH(bool, dataControl);
    WaylandCapture session;
    if (!dataControl)
        session.setEnvironmentVariable(
            QStringLiteral("VESKO_WAYLAND_DATA_CONTROL"), QStringLiteral("off"));
    QProcess *vesko = session.startVesko();
    QVERIFY(vesko);
    QVERIFY(session.startFoot(QStringLiteral("idle")));
    // An owner that never sends, then one that sends without end: nothing
    // selected each time, Vesko answers, and the next selection is captured.
    for (const char *mode : {"silent", "flood"}) {
        QProcess *owner
            = session.start(QStringLiteral(STUCK_SELECTION_PATH), {QLatin1String(mode)});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += owner->readAllStandardOutput()).contains("owned"), 10000);
        QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
        // No notification service here: the toast goes to the log, and no
        // window of Vesko's takes the focus.
        QVERIFY2(
            session.says(vesko, {"Nothing selected", "Nothing Selected (no notification shown"}),
            mode);
        QVERIFY2(focusedWindowIs(QStringLiteral("idle")), mode);
    }
    // Without data control the read waits for the panel's focus, which sway
    // gives a window already shown only on an activation token that a command
    // does not carry: the user's click stands in for it.
    const auto focusThePanel = [&] {
        client(
            QStringLiteral("swaymsg"), {QStringLiteral("[pid=%1] focus").arg(vesko->processId())});
    };
    QVERIFY(
        session.capturesTheNextSelection(dataControl ? std::function<void()>() : focusThePanel));
}

void CaptureWaylandTest::compositorWithdrawsGlobal_data()
{
    QTest::addColumn<bool>("seat");
    QTest::newRow("data control withdrawn") << false;
    QTest::newRow("seat withdrawn") << true;
}

void CaptureWaylandTest::compositorWithdrawsGlobal()
{
    QFETCH(bool, seat);
    // The socket in a folder of the test's own.
    QTemporaryDir runtime;
    const QByteArray previousRuntime = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    const auto restore = qScopeGuard([&] { qputenv("XDG_RUNTIME_DIR", previousRuntime); });
    TinyCompositor compositor;
    QVERIFY(compositor.socket());
    wl_display *display = wl_display_connect(compositor.socket());
    QVERIFY(display);
    {
        WaylandGlobals globals(display);
        WaylandDataControl dataControl(globals);
        QVERIFY(dataControl.isAvailable());
        QVERIFY(dataControl.hasPrimarySelection());

        compositor.setOffered(seat, false);
        QVERIFY(wl_display_roundtrip(display) >= 0);
        QVERIFY(!dataControl.isAvailable());
        // A read now answers at once, with nothing; setting the clipboard does nothing.
        bool answered = false;
        dataControl.read(WaylandDataControl::Selection::Primary, QStringLiteral("text/plain"),
            [&answered](std::optional<QByteArray> bytes) { answered = !bytes; });
        QVERIFY(answered);
        dataControl.setClipboard({{QStringLiteral("text/plain"), "words"}});

        compositor.setOffered(seat, true);
        QVERIFY(wl_display_roundtrip(display) >= 0);
        QVERIFY(dataControl.isAvailable());
        // The connection is whole: no request went to an object the compositor let go.
        QVERIFY(wl_display_roundtrip(display) >= 0);
        QCOMPARE(wl_display_get_error(display), 0);
    }
    wl_display_disconnect(display);
}

void CaptureWaylandTest::clipboardSnapshotBounds_data()
{
    QTest::addColumn<int>("formats");
    QTest::addColumn<int>("bytesEach");
    QTest::addColumn<bool>("whole");
    QTest::newRow("a few formats") << 3 << 1000 << true;
    QTest::newRow("hundreds of formats") << 300 << 10 << false;
    // Each under the bound of one format, 300 MiB in all.
    QTest::newRow("heavy in all") << 10 << 30 * 1024 * 1024 << false;
}

void CaptureWaylandTest::clipboardSnapshotBounds()
{
    if (!needs(u"sway"_qs))
        return;
    QFETCH(int, formats);
    QFETCH(int, bytesEach);
    QFETCH(bool, whole);
    WaylandCapture session;
    QProcess *owner = session.start(QStringLiteral(STUCK_SELECTION_PATH),
        {QStringLiteral("clipboard"), QString::number(formats), QString::number(bytesEach)});
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT((said += owner->readAllStandardOutput()).contains("owned"), 10000);

    wl_display *display = wl_display_connect(nullptr);
    QVERIFY(display);
    const auto disconnect = qScopeGuard([display] { wl_display_disconnect(display); });
    QSocketNotifier events(wl_display_get_fd(display), QSocketNotifier::Read);
    connect(&events, &QSocketNotifier::activated, this, [display] {
        wl_display_dispatch(display);
        wl_display_flush(display);
    });
    WaylandGlobals globals(display);
    WaylandDataControl dataControl(globals);
    WaylandClipboard clipboard(dataControl);
    QVERIFY(wl_display_roundtrip(display) >= 0);
    QVERIFY(wl_display_roundtrip(display) >= 0);
    QCOMPARE(dataControl.formats(WaylandDataControl::Selection::Clipboard).size(), formats);

    bool answered = false;
    std::optional<Clipboard::Snapshot> snapshot;
    clipboard.requestSnapshot([&](std::optional<Clipboard::Snapshot> taken) {
        answered = true;
        snapshot = std::move(taken);
    });
    QTRY_VERIFY_WITH_TIMEOUT(answered, 30000);
    QCOMPARE(snapshot.has_value(), whole);
    if (whole) {
        QCOMPARE(snapshot->value(0).size(), formats);
        QCOMPARE(snapshot->value(0).first(), QByteArray(bytesEach, 'x'));
    }
}

void CaptureWaylandTest::clipboardReaderLeavesEarly()
{
    if (!needs(u"sway"_qs))
        return;
    // As in a process with no bus connection yet (libdbus ignores SIGPIPE).
    std::signal(SIGPIPE, SIG_DFL);
    wl_display *display = wl_display_connect(nullptr);
    QVERIFY(display);
    {
        WaylandGlobals globals(display);
        WaylandDataControl dataControl(globals);
        QVERIFY(dataControl.isAvailable());
        // Far more than a pipe holds, so the reader leaves halfway through.
        const QByteArray text(1024 * 1024, 'x');
        dataControl.setClipboard({{QStringLiteral("text/plain"), text}});
        QVERIFY(wl_display_roundtrip(display) >= 0);
        const auto paste = [display](const QString &command) {
            QProcess reader;
            reader.start(QStringLiteral("sh"), {QStringLiteral("-c"), command});
            QDeadlineTimer patience(20000);
            while (reader.state() != QProcess::NotRunning && !patience.hasExpired()) {
                wl_display_roundtrip(display);
                QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
                reader.waitForFinished(10);
            }
            return reader.readAllStandardOutput();
        };
        QCOMPARE(
            paste(QStringLiteral("wl-paste --type text/plain | head -c 5")), QByteArray("xxxxx"));
        // Still here, and the next reader takes all of it.
        QCOMPARE(paste(QStringLiteral("wl-paste --no-newline --type text/plain | wc -c")).trimmed(),
            QByteArray::number(text.size()));
        QCOMPARE(wl_display_get_error(display), 0);
    }
    wl_display_disconnect(display);
}

void CaptureWaylandTest::captureOnPanelFocus()
{
    if (!needs(u"mutter"_qs))
        return;
    QVERIFY(giveMutterAKeyboard());
    // The selection first: mutter gives wl-copy's window the focus it needs
    // to set it while no other window has it. mutter reads the owner's
    // selection itself and keeps it: an owner that never sends is tried
    // under sway (misbehavingOwner). An owner sending more than the cap:
    client(QStringLiteral("wl-copy --primary"),
        QByteArray(WaylandPrimarySelection::capBytes + 1, 'x'));
    QTRY_VERIFY_WITH_TIMEOUT(
        !client(QStringLiteral("wl-paste --primary --list-types")).isEmpty(), 15000);

    WaylandCapture session;
    // Ready once capture has started (the log says so), not only the bus name;
    // GNOME passes no Shift taps, so no double-Shift listener starts here.
    QByteArray started;
    QProcess *vesko = session.startVesko([&started](QProcess *vesko) {
        return (started += vesko->readAllStandardError()).contains("Capture started")
            && ownedOnBus(QStringLiteral("com.vesko.Vesko"));
    });
    QVERIFY(vesko);
    QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    QVERIFY(session.says(vesko, {"Nothing selected"}));
    QCOMPARE(session.notes().size(), 0);
    QVERIFY(session.capturesTheNextSelection());
}

VESKO_TEST_MAIN(CaptureWaylandTest)
#include "tst_capturewayland.moc"
