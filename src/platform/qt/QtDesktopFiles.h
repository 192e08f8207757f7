// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opens files in their applications through QDesktopServices, and shows a
// file selected in the file manager through its D-Bus interface
// (org.freedesktop.FileManager1.ShowItems), opening the file's folder
// instead where no file manager answers. Whether an application is
// installed for the file is looked up on a worker thread first, so that a
// file nothing can open is reported instead of vanishing. Nothing here waits.

#pragma once

#include "platform/DesktopFiles.h"

#include <QObject>

#include <memory>

namespace Vesko {

class SerialQueue;

class QtDesktopFiles : public QObject, public DesktopFiles
{
    Q_OBJECT

public:
    static constexpr int revealTimeoutMilliseconds = 10000;

    explicit QtDesktopFiles(QObject *parent = nullptr);
    ~QtDesktopFiles() override;

    //! The one instance the program's commands share, made on first use.
    static QtDesktopFiles &shared();

    void open(const QString &path, Unhandled unhandled) override;
    void reveal(const QString &path, Unhandled unhandled) override;

Q_SIGNALS:
    //! A reveal has been handed on: to the file manager, or else as the folder.
    void revealHandled(const QString &path, bool byFileManager);

private:
    //! Hands \a path, or with \a folder its folder, to the desktop when an
    //! application takes it (looked up off the main thread), then calls
    //! \a opened; else \a unhandled.
    void openWhenTaken(const QString &path, bool folder, std::function<void()> opened,
        Unhandled unhandled);

    std::unique_ptr<SerialQueue> m_lookups;
};

} // namespace Vesko
