// SPDX-License-Identifier: GPL-3.0-or-later
//
// The toast on a real X server: it shows beside the pointer without taking
// the focus from the active window, the last toast wins and stays up for its
// whole duration, and it goes away by itself.

#include "WidgetTestMain.h"

#include "shell/Toast.h"

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QWidget>

using namespace Vesko;

class ToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void showsBesideThePointerWithoutTakingFocus();
    void lastToastWinsAndKeepsItsDuration();
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

VESKO_WIDGET_TEST_MAIN(ToastTest)

#include "tst_toast.moc"
