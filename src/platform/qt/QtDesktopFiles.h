// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opens files in their applications through QDesktopServices, and shows a
// file selected in the file manager through its D-Bus interface
// (org.freedesktop.FileManager1.ShowItems), opening the file's folder
// instead where no file manager answers. Nothing here waits.

#pragma once

#include "platform/DesktopFiles.h"

#include <QObject>

namespace Vesko {

class QtDesktopFiles : public QObject, public DesktopFiles
{
    Q_OBJECT

public:
    static constexpr int revealTimeoutMilliseconds = 10000;

    explicit QtDesktopFiles(QObject *parent = nullptr);
    ~QtDesktopFiles() override;

    //! The one instance the program's commands share, made on first use.
    static QtDesktopFiles &shared();

    void open(const QString &path) override;
    void reveal(const QString &path) override;

Q_SIGNALS:
    //! A reveal has been handed on: to the file manager, or else as the folder.
    void revealHandled(const QString &path, bool byFileManager);

private:
    void openFolderOf(const QString &path);
};

} // namespace Vesko
