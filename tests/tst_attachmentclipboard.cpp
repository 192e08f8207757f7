// SPDX-License-Identifier: GPL-3.0-or-later
//
// Pasting attachments from the clipboard of a real X server (under Xvfb),
// held by real other applications: xclip, and selection_owner, which offers
// several formats at once, takes the clipboard and never answers, or
// answers late.

#include "ProgramSession.h"
#include "StoreFixture.h"
#include "TestFiles.h"
#include "XClipboardClients.h"

#include "attachments/AttachmentActions.h"
#include "library/LibraryFile.h"
#include "platform/DesktopFiles.h"
#include "platform/FileChooser.h"
#include "platform/qt/QtPasteboardReader.h"
#include "platform/x11/X11ClipboardReader.h"

#include <QClipboard>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTimer>

using namespace Vesko;

namespace {

// Many colours, so that the PNG stays large.
QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    quint32 state = 12345;
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<quint32 *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            line[x] = 0xff000000u | (state >> 8);
        }
    }
    return image;
}

//! The rest of what the attachment actions need: no dialog, no file manager, toasts kept.
struct Quiet : AttachmentFeedback, FileChooser, DesktopFiles
{
    void toast(const QString &message, const QString &) override { toasts.append(message); }
    void chooseFiles(std::function<void(const QList<QUrl> &)> done) override { done({}); }
    void open(const QString &, Unhandled) override { }
    void reveal(const QString &, Unhandled) override { }
    QStringList toasts;
};

} // namespace

class AttachmentClipboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void formatChosen_data();
    void formatChosen();
    void nothingUsable_data();
    void nothingUsable();
    void lateAnswerIsNotTakenForTheNext();
    void ownClipboardIsReadDirectly();
    void pasteEndsOnDiskAndInTheLibrary();

private:
    QString writeScratch(const QString &name, const QByteArray &bytes);
    //! Starts selection_owner with \a arguments (TARGET DELAYS TEXT...) on the
    //! clipboard and waits until it holds it.
    bool startOwner(const QStringList &arguments);
    bool offerWithXclip(const QString &type, const QString &file);
    std::optional<PasteboardContent> readClipboard();
    void emptyClipboard();

    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<QtPasteboardReader> m_reader;
    std::unique_ptr<QProcess> m_owner;
    std::vector<std::unique_ptr<QProcess>> m_xclips;
};

void AttachmentClipboardTest::init()
{
    m_scratch = std::make_unique<QTemporaryDir>(
        Test::IsolatedEnvironment::current().root() + QStringLiteral("/scratch-XXXXXX"));
    m_reader = std::make_unique<QtPasteboardReader>();
}

void AttachmentClipboardTest::cleanup()
{
    emptyClipboard();
    m_reader.reset();
    m_scratch.reset();
}

QString AttachmentClipboardTest::writeScratch(const QString &name, const QByteArray &bytes)
{
    Test::writeFile(m_scratch->filePath(name), bytes);
    return m_scratch->filePath(name);
}

bool AttachmentClipboardTest::startOwner(const QStringList &arguments)
{
    m_owner = std::make_unique<QProcess>();
    return Test::startSelectionOwner(*m_owner, arguments);
}

bool AttachmentClipboardTest::offerWithXclip(const QString &type, const QString &file)
{
    return Test::offerWithXclip(*m_xclips.emplace_back(std::make_unique<QProcess>()), type, file);
}

void AttachmentClipboardTest::emptyClipboard()
{
    if (m_owner) {
        m_owner->kill();
        m_owner->waitForFinished();
        m_owner.reset();
    }
    for (const auto &xclip : m_xclips) {
        xclip->kill();
        xclip->waitForFinished();
    }
    m_xclips.clear();
    // Taking the clipboard and letting it go leaves it without an owner.
    QGuiApplication::clipboard()->setText(QStringLiteral("x"));
    QGuiApplication::clipboard()->clear();
    QVERIFY(!QGuiApplication::clipboard()->ownsClipboard());
}

std::optional<PasteboardContent> AttachmentClipboardTest::readClipboard()
{
    std::optional<PasteboardContent> content;
    m_reader->readPasteboard([&](const PasteboardContent &c) { content = c; });
    if (!QTest::qWaitFor([&] { return content.has_value(); }, 20000))
        return std::nullopt;
    return content;
}

void AttachmentClipboardTest::formatChosen_data()
{
    // Formats offered in order with their bytes ("FILE": a link to a local
    // file); what is read: that file, or an image of that size and colour
    // (exactly the bytes offered where "png" is given).
    QTest::addColumn<QStringList>("types");
    QTest::addColumn<QList<QByteArray>>("payloads");
    QTest::addColumn<QSize>("size"); // empty: the file
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QByteArray>("png");
    const QByteArray red = Test::encodedImage(Test::filledImage(8, 8, Qt::red), "PNG");
    const QByteArray yellow = Test::encodedImage(Test::filledImage(3, 3, Qt::yellow), "PNG");
    const QByteArray bmp = Test::encodedImage(Test::filledImage(9, 5, Qt::darkRed), "BMP");
    QTest::newRow("a file before an image")
        << QStringList {"image/png", "text/uri-list"} << QList<QByteArray> {red, "FILE"} << QSize()
        << QColor() << QByteArray();
    QTest::newRow("a broken image leaves the next format")
        << QStringList {"image/jpeg", "image/bmp"} << QList<QByteArray> {"no JPEG at all", bmp}
        << QSize(9, 5) << QColor(Qt::darkRed) << QByteArray();
    QTest::newRow("web links fall back to the image")
        << QStringList {"text/uri-list", "image/png"}
        << QList<QByteArray> {"https://example.org/a.png\r\n", yellow} << QSize(3, 3)
        << QColor(Qt::yellow) << yellow;
}

void AttachmentClipboardTest::formatChosen()
{
    QFETCH(QStringList, types);
    QFETCH(QList<QByteArray>, payloads);
    QFETCH(QSize, size);
    QFETCH(QColor, colour);
    QFETCH(QByteArray, png);
    const QString file = writeScratch(QStringLiteral("notes.txt"), "the file");
    QStringList arguments;
    for (qsizetype i = 0; i < types.size(); ++i) {
        const QByteArray bytes = payloads.at(i) == "FILE"
            ? QUrl::fromLocalFile(file).toEncoded() + "\r\n"
            : payloads.at(i);
        arguments << types.at(i) << QStringLiteral("0")
                  << u'@' + writeScratch(QString::number(i), bytes);
    }
    QVERIFY(startOwner(arguments));

    const std::optional<PasteboardContent> content = readClipboard();
    QVERIFY(content);
    if (size.isEmpty()) {
        QCOMPARE(content->fileURLs, QList<QUrl> {QUrl::fromLocalFile(file)});
        QVERIFY(content->png.isEmpty());
        return;
    }
    QVERIFY(content->fileURLs.isEmpty());
    if (!png.isEmpty())
        QCOMPARE(content->png, png);
    QVERIFY(content->png.startsWith("\x89PNG\r\n\x1a\n"));
    const QImage image = QImage::fromData(content->png, "PNG");
    QCOMPARE(image.size(), size);
    const QColor centre = image.pixelColor(size.width() / 2, size.height() / 2);
    QVERIFY2(qAbs(centre.red() - colour.red()) < 12 && qAbs(centre.green() - colour.green()) < 12
            && qAbs(centre.blue() - colour.blue()) < 12,
        qPrintable(centre.name()));
}

void AttachmentClipboardTest::nothingUsable_data()
{
    QTest::addColumn<QString>("holder");
    QTest::newRow("no owner") << "none";
    QTest::newRow("an image that does not decode") << "corrupt";
    // Not even the list of formats comes: the reader gives up in time.
    QTest::newRow("an owner that never answers") << "silent";
}

void AttachmentClipboardTest::nothingUsable()
{
    QFETCH(QString, holder);
    if (holder == u"silent")
        QVERIFY(startOwner({QStringLiteral("TARGETS"), QStringLiteral("-1"), QStringLiteral("x")}));
    else if (holder == u"corrupt")
        QVERIFY(offerWithXclip(QStringLiteral("image/jpeg"),
            writeScratch(QStringLiteral("bad.jpg"), "not a picture at all")));

    std::optional<PasteboardContent> content;
    int turnsBeforeTheAnswer = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&] { turnsBeforeTheAnswer += content ? 0 : 1; });
    ticker.start(0);
    m_reader->readPasteboard([&](const PasteboardContent &c) { content = c; });
    // A silent owner does not hold the program: the call returns at once,
    // and the event loop goes on until the reader gives up.
    if (holder == u"silent")
        QVERIFY(!content);
    QVERIFY(QTest::qWaitFor([&] { return content.has_value(); }, 20000));
    if (holder == u"silent")
        QVERIFY(turnsBeforeTheAnswer >= 3);
    QVERIFY(content->isEmpty());
}

void AttachmentClipboardTest::lateAnswerIsNotTakenForTheNext()
{
    // The owner answers the first request 2.6 s late, after the reader has
    // given up on it at 2 s, and the list of formats 1.4 s after it was
    // asked: the late answer comes while that read waits for its own.
    const QByteArray pngBytes = Test::encodedImage(Test::filledImage(8, 8, Qt::cyan), "PNG");
    const QString png = writeScratch(QStringLiteral("late.png"), pngBytes);
    QVERIFY(startOwner({QStringLiteral("image/png"), QStringLiteral("2600,1400"), u'@' + png,
        QStringLiteral("TARGETS"), QStringLiteral("1400"), QStringLiteral("x")}));

    X11ClipboardReader reader;
    QVERIFY(reader.isValid());
    reader.setSilenceTimeout(2000);
    std::optional<std::optional<QByteArray>> first;
    std::optional<QStringList> offers;
    reader.read(
        QStringLiteral("image/png"), [&](const std::optional<QByteArray> &data) { first = data; });
    reader.offers([&](const QStringList &formats) { offers = formats; });
    // Both returned at once: the answers come through the event loop.
    QVERIFY(!first && !offers);
    QVERIFY(QTest::qWaitFor([&] { return offers.has_value(); }, 20000));
    QVERIFY(first.has_value());
    QCOMPARE(*first, std::nullopt); // given up on
    QCOMPARE(*offers, QStringList({"TARGETS", "image/png"}));

    // The next read, answered in time, gets its own answer whole.
    std::optional<std::optional<QByteArray>> third;
    reader.read(
        QStringLiteral("image/png"), [&](const std::optional<QByteArray> &data) { third = data; });
    QVERIFY(QTest::qWaitFor([&] { return third.has_value(); }, 20000));
    QCOMPARE(*third, std::optional<QByteArray>(pngBytes));
}

void AttachmentClipboardTest::ownClipboardIsReadDirectly()
{
    auto *data = new QMimeData;
    data->setImageData(Test::filledImage(5, 7, Qt::magenta));
    QGuiApplication::clipboard()->setMimeData(data);
    QVERIFY(QGuiApplication::clipboard()->ownsClipboard());

    const std::optional<PasteboardContent> content = readClipboard();
    QVERIFY(content);
    const QImage image = QImage::fromData(content->png, "PNG");
    QCOMPARE(image.size(), QSize(5, 7));
    QCOMPARE(image.pixelColor(2, 3), QColor(Qt::magenta));
}

//! An image from xclip, pasted into a note.
void AttachmentClipboardTest::pasteEndsOnDiskAndInTheLibrary()
{
    // Larger than one request of the X protocol can carry: it comes in pieces.
    const QByteArray expectedBytes = Test::encodedImage(noise(1000, 1000), "PNG");
    QVERIFY(expectedBytes.size() > 2 * 1024 * 1024);
    QVERIFY(offerWithXclip(
        QStringLiteral("image/png"), writeScratch(QStringLiteral("shot.png"), expectedBytes)));

    Test::StoreFixture fixture;
    Store &store = fixture.make(makeDefaultLibrary());
    const QUuid noteID = store.addNote(QStringLiteral("target"))->id;
    Quiet quiet;
    AttachmentActions actions({store, fixture.attachments(), quiet, *m_reader, quiet, quiet});
    actions.pasteIntoNote(noteID);
    QVERIFY(QTest::qWaitFor([&] { return !store.note(noteID)->attachments.isEmpty(); }, 20000));
    QVERIFY(quiet.toasts.isEmpty());

    const NoteAttachment attachment = store.note(noteID)->attachments.first();
    QCOMPARE(attachment.fileName, QStringLiteral("Pasted Image.png"));
    QFile stored(attachmentsFolder(libraryURL()) + u'/' + attachment.storedFileName);
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QCOMPARE(stored.readAll(), expectedBytes);

    // And in the library file, once written, which keeps dates to the second.
    store.flushSave();
    NoteAttachment expected = attachment;
    expected.createdAt
        = QDateTime::fromSecsSinceEpoch(attachment.createdAt.toSecsSinceEpoch(), Qt::UTC);
    for (const Note &note : Test::allNotes(loadLibrary(libraryURL())))
        QCOMPARE(note.attachments, note.id == noteID ? QList {expected} : QList<NoteAttachment> {});
}

VESKO_X11_TEST_MAIN(AttachmentClipboardTest)
#include "tst_attachmentclipboard.moc"
