// SPDX-License-Identifier: GPL-3.0-or-later
//
// "Open at login" as the desktop keeps it: the XDG autostart entry
// $XDG_CONFIG_HOME/autostart/com.vesko.Vesko.desktop. The entry is on when
// the file exists and is not hidden (Hidden=true); it is written atomically
// and removed to turn it off. The "vesko.desktop" of older versions counts
// while there is no newer entry, and gives way at the next change.

#pragma once

#include <QString>

#include <optional>

namespace Vesko {

class LoginItem
{
public:
    //! The entry in \a autostartFolder that starts \a program.
    LoginItem(const QString &autostartFolder, const QString &program);

    //! The entry of the user's desktop session for the running program.
    static LoginItem forCurrentProgram();
    //! $XDG_CONFIG_HOME/autostart, or ~/.config/autostart without it.
    static QString defaultAutostartFolder();

    QString entryPath() const;
    QString olderEntryPath() const;
    //! The file exists and is not hidden.
    bool isEnabled() const;
    //! Writes or removes the entry. Returns the failure text; the entry is then
    //! as it was, and isEnabled() tells the truth.
    std::optional<QString> setEnabled(bool enabled);

    //! The desktop entry written for \a program.
    static QByteArray entryText(const QString &program);
    //! \a argument quoted for an Exec line, where it needs quoting.
    static QString quotedExecArgument(const QString &argument);

private:
    QString m_folder;
    QString m_program;
};

} // namespace Vesko
