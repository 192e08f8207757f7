// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of a real X session (Xvfb) against real other clients:
// snapshots whole or not at all, slow, silent and late owners, a large image in
// pieces, an empty clipboard put back, and the Store's copies landing as text.

#include "StoreFixture.h"
#include "XClipboardClients.h"

#include "platform/x11/X11Clipboard.h"

#include <QClipboard>
#include <QMimeData>
#include <QTemporaryFile>
#include <QTimer>

using namespace Vesko;

namespace {

//! The snapshot \a clipboard hands over, waited for on the event loop;
//! nothing when it was not taken whole.
std::optional<Clipboard::Snapshot> snapshotOf(Clipboard &clipboard)
{
    std::optional<std::optional<Clipboard::Snapshot>> snapshot;
    clipboard.requestSnapshot(
        [&snapshot](std::optional<Clipboard::Snapshot> s) { snapshot = std::move(s); });
    if (!QTest::qWaitFor([&] { return snapshot.has_value(); }, 10000))
        return std::nullopt;
    return *snapshot;
}

QByteArray pngBytes()
{
    QImage image(4, 3, QImage::Format_ARGB32);
    image.fill(QColor(200, 30, 60, 128));
    return Test::encodedImage(image, "PNG");
}

} // namespace

class ClipboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void snapshotKeepsEveryFormat();
    void slowOwnerIsReadOnTheEventLoop();
    void wholeOrNothing_data();
    void wholeOrNothing();
    void lateRefusalOfAGivenUpSnapshot();
    void largeImagePiecewise();
    void storeCopiesLandAsText();
};

void ClipboardTest::snapshotKeepsEveryFormat()
{
    X11Clipboard clipboard;
    const QByteArray png = pngBytes();
    auto *data = new QMimeData;
    data->setData(QStringLiteral("text/plain"), QByteArray("plain ünïcode"));
    data->setData(QStringLiteral("text/html"), QByteArray("<b>bold</b>"));
    data->setData(QStringLiteral("image/png"), png);
    QGuiApplication::clipboard()->setMimeData(data);

    const Clipboard::Snapshot snapshot = snapshotOf(clipboard).value();
    QCOMPARE(snapshot.size(), 1);
    QCOMPARE(snapshot.first().value(QStringLiteral("text/html")), QByteArray("<b>bold</b>"));

    clipboard.setText(QStringLiteral("something else"));
    QCOMPARE(Test::readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("something else"));

    clipboard.restore(snapshot);
    QCOMPARE(Test::readWithXclip(QStringLiteral("text/html")), QByteArray("<b>bold</b>"));
    QCOMPARE(Test::readWithXclip(QStringLiteral("image/png")), png);
    QCOMPARE(Test::readWithXclip(QStringLiteral("text/plain")), QByteArray("plain ünïcode"));

    // An empty clipboard is put back empty.
    clipboard.restore({});
    QCOMPARE(snapshotOf(clipboard), Clipboard::Snapshot {});
    QCOMPARE(
        Test::readWithXclip(QStringLiteral("UTF8_STRING")).value_or(QByteArray()), QByteArray());
}

void ClipboardTest::slowOwnerIsReadOnTheEventLoop()
{
    // Each format comes 300 ms after it is asked for.
    QProcess owner;
    QVERIFY(Test::startSelectionOwner(owner,
        {QStringLiteral("UTF8_STRING"), QStringLiteral("300"), QStringLiteral("slow words"),
            QStringLiteral("text/html"), QStringLiteral("300"), QStringLiteral("<b>slow words</b>"),
            QStringLiteral("application/x-vesko-test"), QStringLiteral("300"),
            QStringLiteral("sdrow wols")}));
    X11Clipboard clipboard;
    int turns = 0;
    QTimer turning;
    QObject::connect(&turning, &QTimer::timeout, [&turns] { ++turns; });
    turning.start(5);
    std::optional<int> turnsBeforeTheAnswer;
    Clipboard::Snapshot snapshot;
    clipboard.requestSnapshot([&](std::optional<Clipboard::Snapshot> s) {
        turnsBeforeTheAnswer = turns;
        snapshot = s.value_or(Clipboard::Snapshot {});
    });
    QVERIFY2(!turnsBeforeTheAnswer, "the snapshot was taken while the program waited");
    QTRY_VERIFY_WITH_TIMEOUT(turnsBeforeTheAnswer.has_value(), Test::patience);
    QVERIFY(*turnsBeforeTheAnswer > 0);
    QCOMPARE(snapshot.size(), 1);
    const QMap<QString, QByteArray> &formats = snapshot.first();
    QCOMPARE(formats.value(QStringLiteral("text/plain")), QByteArray("slow words"));
    QCOMPARE(formats.value(QStringLiteral("text/html")), QByteArray("<b>slow words</b>"));
    QCOMPARE(formats.value(QStringLiteral("application/x-vesko-test")), QByteArray("sdrow wols"));

    std::optional<QString> text;
    clipboard.requestText([&text](std::optional<QString> t) { text = t; });
    QVERIFY(!text);
    QTRY_COMPARE_WITH_TIMEOUT(text, QStringLiteral("slow words"), Test::patience);
    owner.kill();
    owner.waitForFinished();
}

void ClipboardTest::wholeOrNothing_data()
{
    QTest::addColumn<QStringList>("owner");
    QTest::addColumn<bool>("whole");
    QTest::addColumn<QStringList>("formats");
    const QString text = QStringLiteral("UTF8_STRING");
    const QString html = QStringLiteral("text/html");
    const QString own = QStringLiteral("application/x-own");
    // Each format after its delay in ms; -1 never, refuse@N a refusal.
    QTest::newRow("prompt") << QStringList {own, "0", "o", html, "0", "<b>h</b>", text, "0", "t"}
                            << true << QStringList {own, html, "text/plain"};
    QTest::newRow("one format late, the later ones still read") << QStringList {own, "0", "o", html,
        "1300", "<b>h</b>", text, "0", "t"} << true << QStringList {own, html, "text/plain"};
    QTest::newRow("each format slow, all within the bound") << QStringList {own, "800", "o", html,
        "800", "<b>h</b>", text, "800", "t"} << true << QStringList {own, html, "text/plain"};
    QTest::newRow("a refused format holds nothing to keep") << QStringList {own, "refuse@0", "o",
        html, "0", "<b>h</b>", text, "0", "t"} << true << QStringList {html, "text/plain"};
    QTest::newRow("a format never sent") << QStringList {own, "0", "o", html, "-1", "<b>h</b>",
        text, "0", "t"} << false << QStringList {};
    // Nothing is known to put back: an empty snapshot would empty the user's clipboard.
    QTest::newRow("not even the list of formats")
        << QStringList {"TARGETS", "-1", "x"} << false << QStringList {};
}

void ClipboardTest::wholeOrNothing()
{
    QFETCH(QStringList, owner);
    QFETCH(bool, whole);
    QFETCH(QStringList, formats);
    QProcess process;
    QVERIFY(Test::startSelectionOwner(process, owner));
    X11Clipboard clipboard;
    const std::optional<Clipboard::Snapshot> snapshot = snapshotOf(clipboard);
    process.kill();
    process.waitForFinished();
    QCOMPARE(snapshot.has_value(), whole);
    if (whole) {
        QCOMPARE(snapshot->size(), 1);
        QCOMPARE(snapshot->first().keys(), formats);
    }
}

void ClipboardTest::lateRefusalOfAGivenUpSnapshot()
{
    // The owner refuses the first request for HTML, stamped CurrentTime, only
    // after the first snapshot gave up; the refusal arrives while the second
    // snapshot waits for its own HTML, which comes later.
    QProcess owner;
    QVERIFY(Test::startSelectionOwner(owner,
        {QStringLiteral("text/html"), QStringLiteral("refuse@2400,900"), QStringLiteral("<b>h</b>"),
            QStringLiteral("UTF8_STRING"), QStringLiteral("0"), QStringLiteral("t")}));
    X11Clipboard clipboard;
    QCOMPARE(snapshotOf(clipboard), std::nullopt);
    const std::optional<Clipboard::Snapshot> second = snapshotOf(clipboard);
    owner.kill();
    owner.waitForFinished();
    QVERIFY(second);
    QCOMPARE(second->value(0).value(QStringLiteral("text/html")), QByteArray("<b>h</b>"));
}

void ClipboardTest::largeImagePiecewise()
{
    // Four mebibytes of image data: more than one property holds, so xclip
    // sends it in pieces.
    QByteArray image = pngBytes();
    for (quint32 i = 0; image.size() < 4 * 1024 * 1024; ++i)
        image.append(char(i * 2654435761u >> 24));
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(image);
    file.close();
    QProcess xclip;
    QVERIFY(Test::offerWithXclip(xclip, QStringLiteral("image/png"), file.fileName()));
    X11Clipboard clipboard;
    const Clipboard::Snapshot snapshot = snapshotOf(clipboard).value();
    QCOMPARE(snapshot.first().keys(), QStringList {QStringLiteral("image/png")});
    QVERIFY(snapshot.first().value(QStringLiteral("image/png")) == image);

    // Put back, it is served whole again.
    clipboard.setText(QStringLiteral("in between"));
    clipboard.restore(snapshot);
    QVERIFY(Test::readWithXclip(QStringLiteral("image/png")) == image);
}

void ClipboardTest::storeCopiesLandAsText()
{
    Test::StoreFixture fixture;
    Library library = makeDefaultLibrary();
    NoteList &notes = library.projects[0].sections[0].notes;
    notes = {
        Test::noteWith(QStringLiteral("alpha")), Test::noteWith(QStringLiteral("**beta**\nline"))};
    const QList<QUuid> ids {notes.at(0).id, notes.at(1).id};
    Store &store = fixture.make(library);
    X11Clipboard clipboard;

    QVERIFY(store.copyAsList(ids, clipboard));
    QCOMPARE(Test::readWithXclip(QStringLiteral("UTF8_STRING")),
        QByteArray("1. alpha\n2. **beta**\n   line"));
    fixture.preferences().setCopyIncludesMarkdown(false);
    QVERIFY(store.copyNotes(ids, clipboard));
    QCOMPARE(Test::readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("alpha\n\nbeta\nline"));

    // Nothing to copy leaves the clipboard as it was.
    QVERIFY(!store.copyAsList({makeID()}, clipboard));
    QVERIFY(!store.copyNotes({}, clipboard));
    QCOMPARE(Test::readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("alpha\n\nbeta\nline"));
}

VESKO_X11_TEST_MAIN(ClipboardTest)
#include "tst_clipboard.moc"
