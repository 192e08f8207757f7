// SPDX-License-Identifier: GPL-3.0-or-later
//
// Handing a file to the desktop: opening it in its application, or showing
// it selected in the file manager. Neither waits; each tells, later and on
// the main thread, when the desktop had nothing to hand the file to.

#pragma once

#include <QCoreApplication>
#include <QString>

#include <functional>

namespace Vesko {

//! What the user is told when the desktop had nothing to hand a file to.
namespace DesktopFileMessages {

inline QString noApplication(const QString &fileName)
{
    return QCoreApplication::translate("DesktopFiles", "No Application for “%1”").arg(fileName);
}

inline QString noFileManager()
{
    return QCoreApplication::translate("DesktopFiles", "No File Manager Found");
}

inline QString symbol()
{
    return QStringLiteral("exclamationmark.triangle");
}

} // namespace DesktopFileMessages

class DesktopFiles
{
public:
    //! Called when no application or file manager took the file.
    using Unhandled = std::function<void()>;

    virtual ~DesktopFiles() = default;
    virtual void open(const QString &path, Unhandled unhandled) = 0;
    virtual void reveal(const QString &path, Unhandled unhandled) = 0;
};

} // namespace Vesko
