// SPDX-License-Identifier: GPL-3.0-or-later

#include "TestEnvironment.h"

#include <QDir>

namespace Vesko::Test {

namespace {
IsolatedEnvironment *currentEnvironment = nullptr;
}

IsolatedEnvironment::IsolatedEnvironment()
    : m_root(QDir::tempPath() + QStringLiteral("/vesko-test-XXXXXX"))
{
    if (!m_root.isValid())
        qFatal("Could not create the test's temporary folder");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(configHome()));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(cacheHome()));
    qputenv("XDG_STATE_HOME", QFile::encodeName(stateHome()));
    currentEnvironment = this;
}

IsolatedEnvironment &IsolatedEnvironment::current()
{
    Q_ASSERT(currentEnvironment);
    return *currentEnvironment;
}

} // namespace Vesko::Test
