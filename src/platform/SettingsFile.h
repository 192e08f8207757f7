// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's settings file, $XDG_CONFIG_HOME/Vesko/Vesko.conf, in INI format.

#pragma once

#include <QSettings>

#include <memory>

namespace Vesko {

std::unique_ptr<QSettings> openSettingsFile();

} // namespace Vesko
