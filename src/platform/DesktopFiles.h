// SPDX-License-Identifier: GPL-3.0-or-later
//
// Handing a file to the desktop: opening it in its application, or showing
// it selected in the file manager. Neither waits, and neither reports back.

#pragma once

#include <QString>

namespace Vesko {

class DesktopFiles
{
public:
    virtual ~DesktopFiles() = default;
    virtual void open(const QString &path) = 0;
    virtual void reveal(const QString &path) = 0;
};

} // namespace Vesko
