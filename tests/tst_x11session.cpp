// SPDX-License-Identifier: GPL-3.0-or-later
//
// The X11 session's reading and typing on a real X server
// (tests/x-session.sh), against other programs: the primary selection of a
// process, answered on the event loop and only by the answer to the request
// made (a UTF-8 answer that comes too late is never read as the Latin-1
// one), large selections piecewise (xclip); Ctrl+C into a window while the
// user holds modifiers, which are let go for the copy and held again after.

#include "ProgramSession.h"
#include "TestEnvironment.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Session.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdlib>

using namespace Vesko;
using Test::xdotool;

namespace {

//! Starts a helper and waits for its first line ("owned").
bool startOwner(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.start(program, arguments);
    return process.waitForStarted()
        && QTest::qWaitFor([&process] { return process.canReadLine(); }, 10000)
        && process.readLine().trimmed() == "owned";
}

void stop(QProcess &process)
{
    process.kill();
    process.waitForFinished();
}

//! What the session reads from the primary selection for \a processID,
//! waited for on the event loop.
std::optional<QString> readPrimary(X11Session &session, qint64 processID)
{
    bool answered = false;
    std::optional<QString> text;
    session.readPrimarySelection(processID, [&](std::optional<QString> t) {
        text = std::move(t);
        answered = true;
    });
    if (!QTest::qWaitFor([&answered] { return answered; }, 10000))
        return QStringLiteral("(no answer at all)");
    return text;
}

QString clipboardText()
{
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")});
    xclip.waitForFinished(5000);
    return QString::fromUtf8(xclip.readAllStandardOutput());
}

void setClipboardText(const QByteArray &text)
{
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard")});
    xclip.write(text);
    xclip.closeWriteChannel();
    xclip.waitForFinished(5000);
}

//! The X key codes down now.
QList<int> keysDown()
{
    X11Connection x;
    xcb_query_keymap_reply_t *keymap
        = xcb_query_keymap_reply(x.get(), xcb_query_keymap(x.get()), nullptr);
    QList<int> down;
    for (int code = 8; keymap && code < 256; ++code) {
        if ((keymap->keys[code / 8] >> (code % 8)) & 1)
            down.append(code);
    }
    std::free(keymap);
    return down;
}

} // namespace

class X11SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void primaryOfTheFrontProcessOnly();
    void onlyTheAnswerAskedFor_data();
    void onlyTheAnswerAskedFor();
    void primaryIsReadOnTheEventLoop();
    void largePrimaryPiecewise();
    void heldModifiersAreLetGoForTheCopy_data();
    void heldModifiersAreLetGoForTheCopy();
};

void X11SessionTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void X11SessionTest::primaryOfTheFrontProcessOnly()
{
    QProcess owner;
    QVERIFY(startOwner(owner, QStringLiteral(SELECTION_OWNER_PATH),
        {QStringLiteral("PRIMARY"), QStringLiteral("UTF8_STRING"), QStringLiteral("0"),
            QStringLiteral("selected words")}));
    X11Session session;
    QCOMPARE(readPrimary(session, owner.processId()), QStringLiteral("selected words"));
    // Another program's selection is not the front application's.
    QCOMPARE(readPrimary(session, QCoreApplication::applicationPid()), std::nullopt);
    stop(owner);
}

void X11SessionTest::onlyTheAnswerAskedFor_data()
{
    // The owner answers UTF8_STRING and STRING after these delays (ms); -1
    // never answers, "refuses" does not offer the target. Each answer is
    // awaited a quarter of a second.
    QTest::addColumn<QString>("utf8");
    QTest::addColumn<QString>("latin1");
    QTest::addColumn<QString>("read");
    QTest::newRow("UTF-8 at once") << "0"
                                   << "0"
                                   << "utf8";
    QTest::newRow("UTF-8 too late, Latin-1 later still") << "300"
                                                         << "200"
                                                         << "latin1";
    QTest::newRow("UTF-8 too late, Latin-1 at once") << "300"
                                                     << "0"
                                                     << "latin1";
    QTest::newRow("UTF-8 refused") << "refuses"
                                   << "0"
                                   << "latin1";
    QTest::newRow("neither in time") << "-1"
                                     << "400"
                                     << "none";
}

void X11SessionTest::onlyTheAnswerAskedFor()
{
    QFETCH(QString, utf8);
    QFETCH(QString, latin1);
    QFETCH(QString, read);
    const QString utf8Text = QStringLiteral("d\u00E9j\u00E0 vu, UTF-8");
    const QString latin1Text = QStringLiteral("na\u00EFve, Latin-1");
    QStringList arguments {QStringLiteral("PRIMARY")};
    if (utf8 != u"refuses")
        arguments << QStringLiteral("UTF8_STRING") << utf8 << utf8Text;
    arguments << QStringLiteral("STRING") << latin1 << latin1Text;
    QProcess owner;
    QVERIFY(startOwner(owner, QStringLiteral(SELECTION_OWNER_PATH), arguments));
    X11Session session;
    const std::optional<QString> text = readPrimary(session, owner.processId());
    if (read == u"none")
        QCOMPARE(text, std::nullopt);
    else
        QCOMPARE(text, read == u"utf8" ? utf8Text : latin1Text);
    stop(owner);
}

void X11SessionTest::primaryIsReadOnTheEventLoop()
{
    QProcess owner;
    QVERIFY(startOwner(owner, QStringLiteral(SELECTION_OWNER_PATH),
        {QStringLiteral("PRIMARY"), QStringLiteral("UTF8_STRING"), QStringLiteral("150"),
            QStringLiteral("slow words")}));
    X11Session session;
    bool turned = false;
    QTimer::singleShot(0, [&turned] { turned = true; });
    std::optional<bool> loopTurnedFirst;
    std::optional<QString> text;
    session.readPrimarySelection(owner.processId(), [&](std::optional<QString> t) {
        loopTurnedFirst = turned;
        text = std::move(t);
    });
    QVERIFY2(!loopTurnedFirst, "the read returned with its answer");
    QTRY_VERIFY_WITH_TIMEOUT(loopTurnedFirst.has_value(), 5000);
    QVERIFY(*loopTurnedFirst);
    QCOMPARE(text, QStringLiteral("slow words"));
    stop(owner);
}

void X11SessionTest::largePrimaryPiecewise()
{
    // Three mebibytes: more than one property holds, so xclip sends it in pieces.
    QByteArray text;
    for (int line = 0; text.size() < 3 * 1024 * 1024; ++line)
        text += "line " + QByteArray::number(line) + " of a long selection, \xC3\xA9t\xC3\xA9\n";
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(text);
    file.close();
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-quiet"), QStringLiteral("-selection"), QStringLiteral("primary"),
            file.fileName()});
    QVERIFY(xclip.waitForStarted());
    X11Connection x;
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            xcb_get_selection_owner_reply_t *owner = xcb_get_selection_owner_reply(
                x.get(), xcb_get_selection_owner(x.get(), XCB_ATOM_PRIMARY), nullptr);
            const xcb_window_t window = owner ? owner->owner : 0;
            std::free(owner);
            return window != 0 && x.processOf(window) == xclip.processId();
        }(),
        10000);
    X11Session session;
    const std::optional<QString> read = readPrimary(session, xclip.processId());
    QVERIFY(read);
    QCOMPARE(read->size(), QString::fromUtf8(text).size());
    QVERIFY(*read == QString::fromUtf8(text));
    stop(xclip);
}

void X11SessionTest::heldModifiersAreLetGoForTheCopy_data()
{
    // The xdotool names of the keys the user holds, and their X key codes.
    QTest::addColumn<QString>("held");
    QTest::addColumn<QList<int>>("codes");
    QTest::newRow("nothing") << "" << QList<int> {};
    QTest::newRow("Super") << "super" << QList<int> {133};
    QTest::newRow("Alt") << "alt" << QList<int> {64};
    QTest::newRow("Super and Alt") << "super+alt" << QList<int> {133, 64};
    QTest::newRow("Shift") << "shift" << QList<int> {50};
}

void X11SessionTest::heldModifiersAreLetGoForTheCopy()
{
    QFETCH(QString, held);
    QFETCH(QList<int>, codes);
    Test::ProgramSession programs;
    const QString text = QStringLiteral("words of the copy target");
    programs.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("0")});
    QString window;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(window = Test::visibleWindow(QStringLiteral("^Copy Target$"))).isEmpty(), 10000);
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});
    setClipboardText("before the copy");
    if (!held.isEmpty())
        xdotool({QStringLiteral("keydown"), held});

    X11Session session;
    std::optional<bool> sent;
    session.sendCopy(1, [&sent](bool s) { sent = s; });
    QTRY_VERIFY_WITH_TIMEOUT(sent.has_value(), 5000);
    QVERIFY(*sent);
    // The window saw Ctrl+C alone: with Super, Alt or Shift it is another shortcut.
    QTRY_COMPARE_WITH_TIMEOUT(clipboardText(), text, 5000);
    // And the user still holds what they held.
    const QList<int> down = keysDown();
    for (int code : codes)
        QVERIFY2(down.contains(code), qPrintable(QString::number(code)));
    if (!held.isEmpty())
        xdotool({QStringLiteral("keyup"), held});
    QCOMPARE(keysDown(), QList<int> {});
}

VESKO_TEST_MAIN(X11SessionTest)
#include "tst_x11session.moc"
