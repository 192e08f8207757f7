// SPDX-License-Identifier: GPL-3.0-or-later
//
// A real, small file system for tests of a full disk: a tmpfs of a few hundred
// KiB mounted on a folder for the life of the object. Mounting needs the
// right to mount (root, as the tests usually run); without it isMounted() is
// false and the test skips.

#pragma once

#include <QByteArray>
#include <QString>

namespace Vesko::Test {

class SmallFileSystem
{
public:
    //! Mounts a tmpfs of \a kibibytes on \a folder, made if missing.
    SmallFileSystem(const QString &folder, int kibibytes);
    ~SmallFileSystem();

    SmallFileSystem(const SmallFileSystem &) = delete;
    SmallFileSystem &operator=(const SmallFileSystem &) = delete;

    bool isMounted() const { return m_mounted; }
    QString folder() const { return m_folder; }
    //! Why the mount failed, for the skip message.
    QString failure() const { return m_failure; }

    //! Takes every free byte with a filler file; true once nothing more fits.
    bool fill();
    //! Removes the filler file again.
    void release();
    //! Mounts the file system again, read-only or writable; true on success.
    bool setReadOnly(bool readOnly);

private:
    QString m_folder;
    QByteArray m_options;
    QString m_failure;
    bool m_mounted = false;
};

} // namespace Vesko::Test
