// SPDX-License-Identifier: GPL-3.0-or-later
//
// Catches the way out that bypasses the event loop: a library that ends the
// process through exit() while the program runs. Qt's X11 connection does so
// when the X server goes away (a logout that ends the server before the
// session manager reaches the program), and the termination work, which
// otherwise runs once the event loop returns, would never happen.

#pragma once

#include <functional>

namespace Vesko {

class ExitHook
{
public:
    //! Runs \a lastWork if the process ends through exit() while this object
    //! lives, on the thread that made it. Only one may exist at a time. By
    //! then static objects made after this one are gone, Qt's font data
    //! among them: the work writes files, and touches no widget.
    explicit ExitHook(std::function<void()> lastWork);
    //! From here on an exit() runs nothing: the program ends by its own path.
    ~ExitHook();

    ExitHook(const ExitHook &) = delete;
    ExitHook &operator=(const ExitHook &) = delete;
};

} // namespace Vesko
