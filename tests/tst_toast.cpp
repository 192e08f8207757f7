// SPDX-License-Identifier: GPL-3.0-or-later
//
// The toast on a real X server: it shows beside the pointer without taking
// the focus from the active window, the last toast wins and stays up for its
// whole duration, and it goes away by itself. Beside it, the desktop
// notification that stands for it on Wayland, against a notification service
// of the test's own on a private session bus.

#include "WidgetTestMain.h"

#include "platform/qt/DesktopNotifier.h"
#include "shell/Toast.h"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QWidget>

using namespace Vesko;

//! The notification service, on a connection of its own: records "notify
//! SUMMARY replacing ID" and "close ID"; a new notification's id is the count of calls.
class NotificationService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList calls;

public Q_SLOTS:
    uint Notify(const QString &, uint replacesId, const QString &, const QString &summary,
        const QString &, const QStringList &, const QVariantMap &, int)
    {
        calls.append(QStringLiteral("notify %1 replacing %2").arg(summary).arg(replacesId));
        return replacesId != 0 ? replacesId : uint(calls.size());
    }
    void CloseNotification(uint id) { calls.append(QStringLiteral("close %1").arg(id)); }
};

class ToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void showsBesideThePointerWithoutTakingFocus();
    void lastToastWinsAndKeepsItsDuration();
    void notificationReplacesTheLast_data();
    void notificationReplacesTheLast();
};

void ToastTest::initTestCase()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void ToastTest::showsBesideThePointerWithoutTakingFocus()
{
    QWidget window;
    window.setWindowTitle(QStringLiteral("Front window"));
    window.resize(400, 300);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    QCursor::setPos(300, 200);
    QTRY_COMPARE_WITH_TIMEOUT(QCursor::pos(), QPoint(300, 200), Test::patience);
    ToastPresenter toasts;
    toasts.present(QStringLiteral("Captured"), QStringLiteral("checkmark"));
    QVERIFY(toasts.isShowing());
    QCOMPARE(toasts.currentMessage(), QStringLiteral("Captured"));
    QWidget *toast = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->windowTitle() == QLatin1String("Vesko Toast"))
            toast = widget;
    }
    QVERIFY(toast);
    QCOMPARE(toast->pos(), QPoint(314, 214));
    QTest::qWait(300);
    QVERIFY(window.isActiveWindow());
    QCOMPARE(QApplication::activeWindow(), &window);
}

void ToastTest::lastToastWinsAndKeepsItsDuration()
{
    ToastPresenter toasts;
    QElapsedTimer clock;
    clock.start();
    toasts.present(QStringLiteral("Copied"), QStringLiteral("doc.on.doc"));
    QTest::qWait(500);
    toasts.present(QStringLiteral("Added"), QStringLiteral("plus"));
    const qint64 second = clock.elapsed();
    QCOMPARE(toasts.currentMessage(), QStringLiteral("Added"));
    // Up for 1.1 s from the second toast, not from the first, which would
    // have gone 0.6 s after the second. A machine that wakes up too late to
    // look in time only makes the check moot.
    QTest::qWait(int(second + 900 - clock.elapsed()));
    if (clock.elapsed() < second + 1050)
        QVERIFY(toasts.isShowing());
    QTRY_VERIFY_WITH_TIMEOUT(!toasts.isShowing(), Test::patience);
    QVERIFY(clock.elapsed() >= second + 1100 + 180);
}

void ToastTest::notificationReplacesTheLast_data()
{
    // Steps: "notify TEXT", "answered" (the service's answers are in), "close".
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("the next one replaces it")
        << QStringList {u"notify Captured"_qs, u"answered"_qs, u"notify Copied"_qs}
        << QStringList {u"notify Captured replacing 0"_qs, u"notify Copied replacing 1"_qs};
    // The first's answer comes after the second went: the first goes.
    QTest::newRow("the next one before its answer")
        << QStringList {u"notify Captured"_qs, u"notify Copied"_qs}
        << QStringList {
               u"notify Captured replacing 0"_qs, u"notify Copied replacing 0"_qs, u"close 1"_qs};
    QTest::newRow("closed before its answer") << QStringList {u"notify Captured"_qs,
        u"close"_qs} << QStringList {u"notify Captured replacing 0"_qs, u"close 1"_qs};
}

void ToastTest::notificationReplacesTheLast()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, expected);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"fake"_qs);
    NotificationService service;
    QVERIFY(bus.registerObject(
        u"/org/freedesktop/Notifications"_qs, &service, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.Notifications"_qs));
    const auto unregister = qScopeGuard([&bus] {
        bus.unregisterService(u"org.freedesktop.Notifications"_qs);
        bus.unregisterObject(u"/org/freedesktop/Notifications"_qs);
    });
    DesktopNotifier notifier(u"Vesko"_qs);
    for (const QString &step : steps) {
        if (step == u"answered")
            QTRY_VERIFY_WITH_TIMEOUT(
                notifier.findChildren<QDBusPendingCallWatcher *>().isEmpty(), Test::patience);
        else if (step == u"close")
            notifier.close();
        else
            notifier.notify(step.section(u' ', 1), QString(), 1100);
    }
    // Every answer in, then a round trip to the service behind the notifier's
    // last call: what the service recorded is all that was sent.
    QTRY_VERIFY_WITH_TIMEOUT(
        notifier.findChildren<QDBusPendingCallWatcher *>().isEmpty(), Test::patience);
    const QDBusPendingCall ping = QDBusConnection::sessionBus().asyncCall(
        QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_qs,
            u"/org/freedesktop/Notifications"_qs, u"org.freedesktop.DBus.Peer"_qs, u"Ping"_qs));
    QTRY_VERIFY_WITH_TIMEOUT(ping.isFinished(), Test::patience);
    QCOMPARE(service.calls, expected);
}

VESKO_WIDGET_TEST_MAIN(ToastTest)

#include "tst_toast.moc"
