// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's dialog for choosing files to attach, shown without blocking
// the program: the answer comes later, on the main thread.

#pragma once

#include <QList>
#include <QUrl>

#include <functional>

namespace Vesko {

class FileChooser
{
public:
    virtual ~FileChooser() = default;
    //! Asks for one or more files (never folders) and hands the chosen ones to
    //! \a done, or an empty list when the user cancelled.
    virtual void chooseFiles(std::function<void(const QList<QUrl> &files)> done) = 0;
};

} // namespace Vesko
