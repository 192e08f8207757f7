// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/SettingsFile.h"

#include <QStandardPaths>

namespace Vesko {

std::unique_ptr<QSettings> openSettingsFile()
{
    // Named by hand: IniFormat with an organisation and application would be Vesko.ini.
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vesko/Vesko.conf");
    return std::make_unique<QSettings>(path, QSettings::IniFormat);
}

} // namespace Vesko
