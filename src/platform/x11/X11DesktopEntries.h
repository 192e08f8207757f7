// SPDX-License-Identifier: GPL-3.0-or-later
//
// The installed applications' desktop entries: each entry's id, its name in
// the user's language and whether it is a terminal emulator, found by id or
// by the window class an entry declares (StartupWMClass). The XDG
// applications folders are read once, on a worker thread, starting as this
// is made; a lookup asked for before they are read is answered once they
// are, or without an entry if that takes longer than a lookup may wait.

#pragma once

#include "platform/FrontApplicationNames.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class X11DesktopEntries
{
public:
    using Entry = DesktopEntry;

    //! The entries of a set of applications folders.
    struct Index
    {
        QHash<QString, Entry> byID;
        QHash<QString, Entry> byWindowClass;

        //! Reads \a folders, the first of them winning for an id, as in the desktop's own lookup.
        static Index read(const QStringList &folders);
        //! The entry of the first of \a candidates that names one (with or
        //! without ".desktop"), else the one declaring \a windowClass, else the
        //! first candidate in lower case that names one.
        std::optional<Entry> find(const QStringList &candidates, const QString &windowClass) const;
    };

    //! Whether \a windowClass (an X11 window class or a Wayland app_id) names
    //! a terminal emulator, where no synthetic key is ever typed.
    static bool isTerminalClass(const QString &windowClass);

    //! How long a lookup waits for the folders to be read.
    static constexpr int lookupTimeoutMilliseconds = 2000;

    //! Starts reading the entries on a worker thread: by \a read when given
    //! (from the worker thread), else from the XDG applications folders.
    explicit X11DesktopEntries(std::function<Index()> read = {});
    ~X11DesktopEntries();

    using Found = std::function<void(std::optional<Entry>)>;
    //! Hands \a found what Index::find() gives, on the main thread: at once
    //! when the folders have been read, else once they are; nothing when
    //! they are not read within lookupTimeoutMilliseconds.
    void find(const QStringList &candidates, const QString &windowClass, Found found);

private:
    struct Lookup
    {
        quint64 number = 0;
        QStringList candidates;
        QString windowClass;
        Found found;
    };

    void take(std::shared_ptr<const Index> index);

    std::shared_ptr<const Index> m_index;
    QList<Lookup> m_waiting;
    quint64 m_lookups = 0;
    std::unique_ptr<QObject> m_receiver;
};

} // namespace Vesko
