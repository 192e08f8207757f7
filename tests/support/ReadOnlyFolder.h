// SPDX-License-Identifier: GPL-3.0-or-later
//
// A folder that refuses writes even to root: a small tmpfs mounted on it and
// remounted read-only. Files put there before the remount stay readable.
// Mounting needs privileges; isMounted() says whether it worked, so that a
// test can skip where it is not permitted.

#pragma once

#include "SmallFileSystem.h"

#include <functional>

namespace Vesko::Test {

class ReadOnlyFolder
{
public:
    //! Mounts on \a path (made if missing), lets \a fill put files there, then
    //! makes it read-only.
    explicit ReadOnlyFolder(const QString &path, const std::function<void()> &fill = {})
        : m_disk(path, 512)
    {
        if (m_disk.isMounted() && fill)
            fill();
        m_mounted = m_disk.isMounted() && m_disk.setReadOnly(true);
    }

    bool isMounted() const { return m_mounted; }

private:
    SmallFileSystem m_disk;
    bool m_mounted = false;
};

} // namespace Vesko::Test
