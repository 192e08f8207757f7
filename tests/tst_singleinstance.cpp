// SPDX-License-Identifier: GPL-3.0-or-later
//
// The guard that keeps Vesko to one process: where its lock and socket live
// when the session gives no runtime folder, and the lock that decides which
// launch runs. The socket is tested with the program (tst_app).

#include "TestEnvironment.h"

#include "shell/SingleInstance.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace Vesko;

namespace {

// Sets an environment variable, or unsets it for an empty value, until the end of the scope.
class ScopedVariable
{
public:
    ScopedVariable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_previous(qgetenv(name))
    {
        if (value.isEmpty())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    ~ScopedVariable()
    {
        if (m_wasSet)
            qputenv(m_name, m_previous);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    bool m_wasSet;
    QByteArray m_previous;
};

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

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutRuntimeFolderTheSocketStaysPrivate_data();
    void withoutRuntimeFolderTheSocketStaysPrivate();
    void oneClaimAtATime();
};

void SingleInstanceTest::withoutRuntimeFolderTheSocketStaysPrivate_data()
{
    QTest::addColumn<bool>("squatted");
    QTest::newRow("shared temporary folder") << false;
    QTest::newRow("another user took the usual names") << true;
}

void SingleInstanceTest::withoutRuntimeFolderTheSocketStaysPrivate()
{
    QFETCH(bool, squatted);
    // A temporary folder that every user may write to, as /tmp is.
    const QString shared = Test::IsolatedEnvironment::current().root() + QStringLiteral("/shared");
    QDir().mkpath(shared);
    QVERIFY(::chmod(QFile::encodeName(shared).constData(), 01777) == 0);
    if (squatted) {
        // Another user got there first with a folder and a socket of the names one would guess.
        const uid_t other = ::geteuid() == 0 ? 65534 : ::geteuid();
        for (const QString &name : QDir(shared).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
            QFile::remove(shared + u'/' + name);
        for (const char *name : {"runtime-root", "vesko-root"}) {
            const QString path = shared + u'/' + QLatin1StringView(name);
            QDir().mkpath(path);
            QVERIFY(::chown(QFile::encodeName(path).constData(), other, other) == 0);
            QVERIFY(::chmod(QFile::encodeName(path).constData(), 0777) == 0);
        }
    }
    ScopedVariable runtime("XDG_RUNTIME_DIR", QByteArray());
    ScopedVariable temporary("TMPDIR", QFile::encodeName(shared));

    const QString folder = QFileInfo(SingleInstance::serverNameForSession()).absolutePath();
    const Owner owner = ownerOf(folder);
    QVERIFY2(owner.isDirectory, qPrintable(folder));
    QCOMPARE(owner.uid, ::geteuid());
    QCOMPARE(owner.mode, 0700u);
    QVERIFY2(QDir::cleanPath(folder) != QDir::cleanPath(shared), qPrintable(folder));
}

void SingleInstanceTest::oneClaimAtATime()
{
    const QString folder = Test::IsolatedEnvironment::current().root() + QStringLiteral("/claims");
    QDir().mkpath(folder);
    auto first = std::make_unique<SingleInstance>(folder);
    SingleInstance second(folder);
    QCOMPARE(first->claim(), SingleInstance::Claim::Acquired);
    QCOMPARE(second.claim(), SingleInstance::Claim::HeldElsewhere);
    QCOMPARE(second.claim(), SingleInstance::Claim::HeldElsewhere);
    QCOMPARE(ownerOf(first->lockPath()).mode, 0600u);
    // The lock goes with its holder, and the next claim gets it.
    first.reset();
    QCOMPARE(second.claim(), SingleInstance::Claim::Acquired);

    SingleInstance nowhere((QString()));
    QCOMPARE(nowhere.claim(), SingleInstance::Claim::Failed);
    QVERIFY(!nowhere.failure().isEmpty());
}

VESKO_TEST_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
