// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps tests away from the user's own files: the XDG data, cache, config and
// state folders point into a temporary folder for the life of the test process.

#pragma once

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

namespace Vesko::Test {

//! How long a test waits for something that must happen. Generous, so that a
//! slow or busy machine (AddressSanitizer, other builds) makes a test slower
//! but never makes it fail; a wait ends as soon as its condition holds.
inline constexpr int patience = 60000;

class IsolatedEnvironment
{
public:
    IsolatedEnvironment();

    QString root() const { return m_root.path(); }
    QString dataHome() const { return m_root.filePath(QStringLiteral("data")); }
    QString configHome() const { return m_root.filePath(QStringLiteral("config")); }
    QString cacheHome() const { return m_root.filePath(QStringLiteral("cache")); }
    QString stateHome() const { return m_root.filePath(QStringLiteral("state")); }

    //! The environment of the running test.
    static IsolatedEnvironment &current();

private:
    QTemporaryDir m_root;
};

} // namespace Vesko::Test

//! Like QTEST_GUILESS_MAIN, with the XDG folders isolated before anything reads them.
#define VESKO_TEST_MAIN(TestObject)                                                                \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        Vesko::Test::IsolatedEnvironment environment;                                              \
        QCoreApplication app(argc, argv);                                                          \
        app.setAttribute(Qt::AA_Use96Dpi, true);                                                   \
        TestObject test;                                                                           \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
