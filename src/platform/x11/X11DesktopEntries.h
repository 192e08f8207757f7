// SPDX-License-Identifier: GPL-3.0-or-later
//
// The installed applications' desktop entries, read once from the XDG
// applications folders: each entry's id, its name in the user's language and
// whether it is a terminal emulator, found by id or by the window class an
// entry declares (StartupWMClass).

#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace Vesko {

class X11DesktopEntries
{
public:
    struct Entry
    {
        //! The file name without ".desktop", such as "org.gnome.Terminal".
        QString id;
        QString name;
        bool isTerminal = false;
    };

    //! The entry of the first of \a candidates that names one (with or
    //! without ".desktop"), else the one declaring \a windowClass, else the
    //! first candidate in lower case that names one.
    std::optional<Entry> find(const QStringList &candidates, const QString &windowClass);

private:
    void load();

    bool m_loaded = false;
    QHash<QString, Entry> m_byID;
    QHash<QString, Entry> m_byWindowClass;
};

} // namespace Vesko
