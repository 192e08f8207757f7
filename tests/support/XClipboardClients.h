// SPDX-License-Identifier: GPL-3.0-or-later
//
// Other clients of the X clipboard for the clipboard tests: xclip reading and
// offering, and selection_owner (SELECTION_OWNER_PATH), which offers several
// formats with chosen delays, refusals or silence. Also the tests' main.

#pragma once

#include "TestEnvironment.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>

namespace Vesko::Test {

inline QProcess *xclip(QProcess &process, const QString &direction, const QString &target,
    const QStringList &more = {})
{
    process.start(QStringLiteral("xclip"),
        QStringList {direction, QStringLiteral("-selection"), QStringLiteral("clipboard"),
            QStringLiteral("-t"), target}
            + more);
    return &process;
}

//! What another client reads from the clipboard for \a target, while this
//! process keeps serving its requests; nothing when xclip fails.
inline std::optional<QByteArray> readWithXclip(const QString &target)
{
    QProcess process;
    if (!xclip(process, QStringLiteral("-o"), target)->waitForStarted()
        || !QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, patience)
        || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

//! Has xclip in \a process offer \a file as \a target, and waits until it holds the clipboard.
inline bool offerWithXclip(QProcess &process, const QString &target, const QString &file)
{
    return xclip(process, QStringLiteral("-i"), target, {file})->waitForStarted()
        && QTest::qWaitFor(
            [&] {
                return readWithXclip(QStringLiteral("TARGETS"))
                    .value_or(QByteArray())
                    .contains(target.toLatin1());
            },
            patience);
}

//! Starts selection_owner on the clipboard with \a arguments (TARGET DELAYS
//! TEXT...) and waits until it holds it.
inline bool startSelectionOwner(QProcess &owner, const QStringList &arguments)
{
    owner.start(QStringLiteral(SELECTION_OWNER_PATH),
        QStringList {QStringLiteral("CLIPBOARD")} + arguments);
    return owner.waitForStarted() && QTest::qWaitFor([&] { return owner.canReadLine(); }, patience)
        && owner.readLine().trimmed() == "owned";
}

inline QImage filledImage(int width, int height, QColor colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

inline QByteArray encodedImage(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, 95);
    return bytes;
}

} // namespace Vesko::Test

//! A test under an X server, the XDG folders isolated before anything reads them.
#define VESKO_X11_TEST_MAIN(TestObject)                                                            \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        Vesko::Test::IsolatedEnvironment environment;                                              \
        QGuiApplication app(argc, argv);                                                           \
        if (QGuiApplication::platformName() != u"xcb") {                                           \
            qCritical("run under an X server (xvfb-run)");                                         \
            return 1;                                                                              \
        }                                                                                          \
        TestObject test;                                                                           \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
