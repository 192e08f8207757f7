// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of a real X session (run under Xvfb), read and written by a
// real other client, xclip: snapshots keep every format byte for byte, an
// empty clipboard comes back empty, and copies from the Store land as text.

#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "platform/qt/QtClipboard.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QProcess>

using namespace Vesko;

namespace {

// What another client reads from the clipboard for one target, while this
// process keeps serving its requests.
std::optional<QByteArray> readWithXclip(const QString &target)
{
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard"),
            QStringLiteral("-t"), target});
    if (!xclip.waitForStarted())
        return std::nullopt;
    if (!QTest::qWaitFor([&] { return xclip.state() == QProcess::NotRunning; }, 10000))
        return std::nullopt;
    if (xclip.exitStatus() != QProcess::NormalExit || xclip.exitCode() != 0)
        return std::nullopt;
    return xclip.readAllStandardOutput();
}

QByteArray pngBytes()
{
    QImage image(4, 3, QImage::Format_ARGB32);
    image.fill(QColor(200, 30, 60, 128));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

class ClipboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void snapshotKeepsEveryFormat();
    void textFromAnotherClient();
    void emptyClipboardRestoresEmpty();
    void storeCopiesLandAsText();
};

void ClipboardTest::initTestCase()
{
    QVERIFY2(QGuiApplication::platformName() == u"xcb", "run under an X server (xvfb-run)");
}

void ClipboardTest::snapshotKeepsEveryFormat()
{
    QtClipboard clipboard;
    const QByteArray png = pngBytes();
    auto *data = new QMimeData;
    data->setData(QStringLiteral("text/plain"), QByteArray("plain ünïcode"));
    data->setData(QStringLiteral("text/html"), QByteArray("<b>bold</b>"));
    data->setData(QStringLiteral("image/png"), png);
    QGuiApplication::clipboard()->setMimeData(data);

    const Clipboard::Snapshot snapshot = clipboard.snapshot();
    QCOMPARE(snapshot.size(), 1);
    QCOMPARE(snapshot.first().value(QStringLiteral("text/html")), QByteArray("<b>bold</b>"));

    clipboard.setText(QStringLiteral("something else"));
    QCOMPARE(readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("something else"));

    clipboard.restore(snapshot);
    QCOMPARE(readWithXclip(QStringLiteral("text/html")), QByteArray("<b>bold</b>"));
    QCOMPARE(readWithXclip(QStringLiteral("image/png")), png);
    QCOMPARE(readWithXclip(QStringLiteral("text/plain")), QByteArray("plain ünïcode"));
}

void ClipboardTest::textFromAnotherClient()
{
    QtClipboard clipboard;
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard")});
    QVERIFY(xclip.waitForStarted());
    xclip.write("from another client");
    xclip.closeWriteChannel();
    QVERIFY(QTest::qWaitFor(
        [&] {
            return QGuiApplication::clipboard()->text() == QStringLiteral("from another client");
        },
        10000));

    const Clipboard::Snapshot snapshot = clipboard.snapshot();
    QVERIFY(!snapshot.isEmpty());
    clipboard.setText(QStringLiteral("overwritten"));
    clipboard.restore(snapshot);
    QCOMPARE(readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("from another client"));
    xclip.kill();
    xclip.waitForFinished();
}

void ClipboardTest::emptyClipboardRestoresEmpty()
{
    QtClipboard clipboard;
    clipboard.restore({});
    QVERIFY(clipboard.snapshot().isEmpty());
    QVERIFY(!readWithXclip(QStringLiteral("UTF8_STRING")).has_value()
        || readWithXclip(QStringLiteral("UTF8_STRING"))->isEmpty());

    clipboard.setText(QStringLiteral("x"));
    clipboard.restore(clipboard.snapshot().mid(0, 0));
    QVERIFY(clipboard.snapshot().isEmpty());
}

void ClipboardTest::storeCopiesLandAsText()
{
    Preferences::openSettings()->clear();
    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex(
        Test::IsolatedEnvironment::current().cacheHome() + QStringLiteral("/clip.sqlite"));
    Library library = makeDefaultLibrary();
    QList<QUuid> ids;
    for (const char *text : {"alpha", "**beta**\nline"}) {
        Note note;
        note.id = makeID();
        note.text = QString::fromUtf8(text);
        library.projects[0].sections[0].notes.append(note);
        ids.append(note.id);
    }
    Store store(library, {preferences, writer, attachments, searchIndex});
    QtClipboard clipboard;

    QVERIFY(store.copyAsList(ids, clipboard));
    QCOMPARE(
        readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("1. alpha\n2. **beta**\n   line"));
    preferences.setCopyIncludesMarkdown(false);
    QVERIFY(store.copyNotes(ids, clipboard));
    QCOMPARE(readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("alpha\n\nbeta\nline"));

    // Nothing to copy leaves the clipboard as it was.
    QVERIFY(!store.copyAsList({makeID()}, clipboard));
    QVERIFY(!store.copyNotes({}, clipboard));
    QCOMPARE(readWithXclip(QStringLiteral("UTF8_STRING")), QByteArray("alpha\n\nbeta\nline"));
}

int main(int argc, char *argv[])
{
    Vesko::Test::IsolatedEnvironment environment;
    QGuiApplication app(argc, argv);
    ClipboardTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_clipboard.moc"
