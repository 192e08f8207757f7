// SPDX-License-Identifier: GPL-3.0-or-later
//
// The PRIMARY selection of one process: read only when the window that owns
// it belongs to that process, as UTF-8, else as Latin-1, each answer awaited
// at most a quarter of a second and never on the main thread's time.

#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

class X11Connection;
class X11SelectionConverter;

class X11PrimarySelection
{
public:
    //! How long the owner may take to answer one format.
    static constexpr int answerTimeoutMilliseconds = 250;

    X11PrimarySelection(X11Connection &connection, X11SelectionConverter &converter);

    void read(qint64 processID, std::function<void(std::optional<QString>)> done);

private:
    X11Connection &m_connection;
    X11SelectionConverter &m_converter;
};

} // namespace Vesko
