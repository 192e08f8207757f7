// SPDX-License-Identifier: GPL-3.0-or-later
//
// The guard that keeps Vesko to one process per library file: its private
// folder, one lock per library however spelt, a reopen that reaches the
// holder (deep folders, a library that moves), requests over its socket and
// a holder that ends. The whole program: tst_app.

#include "TestEnvironment.h"

#include "shell/SingleInstance.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QThread>

#include <fcntl.h>
#include <future>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Vesko;

namespace {

struct Owner
{
    uid_t uid = uid_t(-1);
    unsigned mode = 0;
    bool isDirectory = false;
};

Owner ownerOf(const QString &path)
{
    struct stat info;
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0)
        return {};
    return {info.st_uid, unsigned(info.st_mode & 07777), S_ISDIR(info.st_mode)};
}

QString scratch(const QString &name)
{
    const QString path = Test::IsolatedEnvironment::current().root() + u'/' + name;
    QDir().mkpath(path);
    return path;
}

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void privateFolder_data();
    void privateFolder();
    void oneLockPerLibrary_data();
    void oneLockPerLibrary();
    void reopenReachesTheHolderWhereverTheLibraryGoes();
    void requestsGetAnswers_data();
    void requestsGetAnswers();
    void holderThatEndsHandsOver();
    void noFolderFails();
};

void SingleInstanceTest::privateFolder_data()
{
    // The runtime root holds the user's folder: private, open to others, or
    // none. The temporary folder, which every user may write to, may hold a
    // folder of the usual name that another user made.
    QTest::addColumn<QString>("runtime");
    QTest::addColumn<bool>("squatted");
    QTest::addColumn<QString>("expected");
    QTest::newRow("runtime folder") << "private" << false << "runtime";
    QTest::newRow("runtime folder open to others") << "open" << false << "temporary";
    QTest::newRow("no runtime folder") << "none" << false << "temporary";
    QTest::newRow("no runtime folder, names taken") << "none" << true << "cache";
}

void SingleInstanceTest::privateFolder()
{
    QFETCH(QString, runtime);
    QFETCH(bool, squatted);
    QFETCH(QString, expected);
    const QString uid = QString::number(::geteuid());
    const QString root = scratch(QString::fromLatin1(QTest::currentDataTag()).replace(u' ', u'-'));
    const QString runtimeRoot = root + QStringLiteral("/run");
    const QString temporaryRoot = root + QStringLiteral("/tmp");
    QDir().mkpath(temporaryRoot);
    QVERIFY(::chmod(QFile::encodeName(temporaryRoot).constData(), 01777) == 0);
    if (runtime != u"none") {
        QDir().mkpath(runtimeRoot + u'/' + uid);
        QVERIFY(::chmod(QFile::encodeName(runtimeRoot + u'/' + uid).constData(),
                    runtime == u"private" ? 0700 : 0755)
            == 0);
    }
    if (squatted) {
        if (::geteuid() != 0)
            QSKIP("Needs root to make a folder of another user");
        const QString taken = temporaryRoot + QStringLiteral("/vesko-") + uid;
        QDir().mkpath(taken);
        QVERIFY(::chown(QFile::encodeName(taken).constData(), 65534, 65534) == 0);
        QVERIFY(::chmod(QFile::encodeName(taken).constData(), 0777) == 0);
    }
    // Whatever the session says, the answer is the same.
    const QString first = SingleInstance::privateFolder(runtimeRoot, temporaryRoot);
    const QByteArray session = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(scratch(QStringLiteral("xdg"))));
    const QString second = SingleInstance::privateFolder(runtimeRoot, temporaryRoot);
    qputenv("XDG_RUNTIME_DIR", session);
    QCOMPARE(second, first);

    const QString wanted = expected == u"runtime" ? runtimeRoot + u'/' + uid
        : expected == u"temporary"
        ? temporaryRoot + QStringLiteral("/vesko-") + uid
        : Test::IsolatedEnvironment::current().cacheHome() + QStringLiteral("/Vesko/Instance");
    QCOMPARE(first, wanted);
    const Owner owner = ownerOf(first);
    QVERIFY(owner.isDirectory);
    QCOMPARE(owner.uid, ::geteuid());
    QCOMPARE(owner.mode, 0700u);
}

void SingleInstanceTest::oneLockPerLibrary_data()
{
    // How the second launch names its library, against the first's "a/Library.json".
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("same");
    QTest::newRow("the same path") << "a/Library.json" << true;
    QTest::newRow("through a linked folder") << "link/Library.json" << true;
    QTest::newRow("with dots") << "a/../a/./Library.json" << true;
    QTest::newRow("another file in the folder") << "a/Other.json" << false;
    QTest::newRow("another folder") << "b/Library.json" << false;
}

void SingleInstanceTest::oneLockPerLibrary()
{
    QFETCH(QString, other);
    QFETCH(bool, same);
    const QString root = scratch(QStringLiteral("libraries"));
    QDir().mkpath(root + QStringLiteral("/a"));
    QDir().mkpath(root + QStringLiteral("/b"));
    QFile::link(root + QStringLiteral("/a"), root + QStringLiteral("/link"));
    const QString folder = scratch(QStringLiteral("locks"));

    auto first = std::make_unique<SingleInstance>(root + QStringLiteral("/a/Library.json"), folder);
    SingleInstance second(root + u'/' + other, folder);
    QCOMPARE(first->claim(), SingleInstance::Claim::Acquired);
    QCOMPARE(second.claim(),
        same ? SingleInstance::Claim::HeldElsewhere : SingleInstance::Claim::Acquired);
    QCOMPARE(second.socketPath() == first->socketPath(), same);
    QCOMPARE(ownerOf(first->lockPath()).mode, 0600u);
    // The lock goes with its holder, and the next claim gets it.
    first.reset();
    QCOMPARE(second.claim(), SingleInstance::Claim::Acquired);
}

void SingleInstanceTest::reopenReachesTheHolderWhereverTheLibraryGoes()
{
    // Far past the 108 bytes that a socket's address holds.
    QString folder = Test::IsolatedEnvironment::current().root();
    while (folder.size() < 200)
        folder += QStringLiteral("/a-folder-with-a-long-name");
    QDir().mkpath(folder);
    const QString library = scratch(QStringLiteral("deep")) + QStringLiteral("/Library.json");
    SingleInstance holder(library, folder);
    QCOMPARE(holder.claim(), SingleInstance::Claim::Acquired);
    QVERIFY(
        QFile::encodeName(holder.socketPath()).size() < qsizetype(sizeof(sockaddr_un::sun_path)));
    QVERIFY(holder.lockPath().startsWith(folder));
    QCOMPARE(holder.listen(), std::nullopt);
    QCOMPARE(ownerOf(QFileInfo(holder.socketPath()).absolutePath()).mode, 0700u);

    QSignalSpy reopened(&holder, &SingleInstance::reopenRequested);

    // Another library's launch knocks elsewhere.
    SingleInstance stranger(folder + QStringLiteral("/Other.json"), folder);
    QCOMPARE(stranger.claim(), SingleInstance::Claim::Acquired);
    QVERIFY(!stranger.forwardReopen(100));
    QCOMPARE(reopened.size(), 0);

    SingleInstance launch(library, folder);
    QCOMPARE(launch.claim(), SingleInstance::Claim::HeldElsewhere);
    auto answered = std::async(std::launch::async, [&launch] { return launch.forwardReopen(); });
    QTRY_COMPARE_WITH_TIMEOUT(reopened.size(), 1, Test::patience);
    QVERIFY(answered.get());

    // The library moves: a launch with its new path finds the holder; one
    // with the old path runs on its own.
    const QString moved = QFileInfo(library).path() + QStringLiteral("/Moved.json");
    QVERIFY(holder.followLibrary(moved));
    SingleInstance withNew(moved, folder);
    QCOMPARE(withNew.claim(), SingleInstance::Claim::HeldElsewhere);
    answered = std::async(std::launch::async, [&withNew] { return withNew.forwardReopen(); });
    QTRY_COMPARE_WITH_TIMEOUT(reopened.size(), 2, Test::patience);
    QVERIFY(answered.get());
    SingleInstance withOld(library, folder);
    QCOMPARE(withOld.claim(), SingleInstance::Claim::Acquired);
    // Back to a library that another process uses: the lock stays where it is.
    QVERIFY(!holder.followLibrary(library));
    QCOMPARE(SingleInstance(moved, folder).claim(), SingleInstance::Claim::HeldElsewhere);
}

void SingleInstanceTest::requestsGetAnswers_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<bool>("holderAnswers");
    QTest::addColumn<QByteArray>("answer"); // empty: none within the bound
    QTest::newRow("answered") << QByteArray("{\"command\":\"list\"}") << true
                              << QByteArray("answer to {\"command\":\"list\"}");
    QTest::newRow("a long request")
        << QByteArray(3 << 20, 'x') << true << QByteArray("answer to ") + QByteArray(3 << 20, 'x');
    QTest::newRow("a holder that never answers") << QByteArray("{}") << false << QByteArray();
}

void SingleInstanceTest::requestsGetAnswers()
{
    QFETCH(QByteArray, request);
    QFETCH(bool, holderAnswers);
    QFETCH(QByteArray, answer);
    const QString folder = scratch(QStringLiteral("requests"));
    const QString library = folder + QStringLiteral("/Library.json");
    SingleInstance holder(library, folder);
    QCOMPARE(holder.claim(), SingleInstance::Claim::Acquired);
    QCOMPARE(holder.listen(), std::nullopt);
    QSignalSpy reopened(&holder, &SingleInstance::reopenRequested);
    QList<QByteArray> received;
    holder.setRequestHandler([&](const QByteArray &line, auto reply) {
        received.append(line);
        if (holderAnswers)
            reply("answer to " + line);
    });

    SingleInstance client(library, folder);
    auto answered = std::async(
        std::launch::async, [&client, &request] { return client.sendRequest(request, 3000); });
    while (answered.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready)
        QCoreApplication::processEvents();
    const std::optional<QByteArray> got = answered.get();
    QCOMPARE(got.value_or(QByteArray()), answer);
    QCOMPARE(got.has_value(), holderAnswers);
    // The handler saw the line without its end, once; it is no "reopen".
    QCOMPARE(received, QList<QByteArray> {request});
    QCOMPARE(reopened.size(), 0);
}

void SingleInstanceTest::holderThatEndsHandsOver()
{
    // The holder is quitting: it still has the lock but answers nothing.
    const QString folder = scratch(QStringLiteral("ending"));
    const QString library = folder + QStringLiteral("/Library.json");
    auto holder = std::make_unique<SingleInstance>(library, folder);
    QCOMPARE(holder->claim(), SingleInstance::Claim::Acquired);
    QCOMPARE(holder->listen(), std::nullopt);
    SingleInstance launch(library, folder);
    QCOMPARE(launch.claim(), SingleInstance::Claim::HeldElsewhere);
    // Its event loop no longer runs: the "reopen" goes unanswered.
    QVERIFY(!launch.forwardReopen(300));

    // It ends while the launch waits for the lock; the launch runs instead.
    // (The lock is held by a descriptor of its own from here, as another
    // process holds it, so that another thread can let it go.)
    const QString lockPath = holder->lockPath();
    holder.reset();
    const int lock = ::open(QFile::encodeName(lockPath).constData(), O_RDWR);
    QVERIFY(lock >= 0);
    QCOMPARE(::flock(lock, LOCK_EX | LOCK_NB), 0);
    QCOMPARE(launch.claim(), SingleInstance::Claim::HeldElsewhere);
    auto ending = std::async(std::launch::async, [lock] {
        QThread::msleep(100);
        ::close(lock);
    });
    QCOMPARE(launch.claimWithin(Test::patience), SingleInstance::Claim::Acquired);
    ending.get();
    QCOMPARE(launch.listen(), std::nullopt);

    // A holder that stays keeps the launch out, within the bound.
    SingleInstance late(library, folder);
    QCOMPARE(late.claimWithin(100), SingleInstance::Claim::HeldElsewhere);
}

void SingleInstanceTest::noFolderFails()
{
    SingleInstance nowhere(
        scratch(QStringLiteral("none")) + QStringLiteral("/Library.json"), QString());
    QCOMPARE(nowhere.claim(), SingleInstance::Claim::Failed);
    QVERIFY(!nowhere.failure().isEmpty());
}

VESKO_TEST_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
