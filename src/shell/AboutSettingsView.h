// SPDX-License-Identifier: GPL-3.0-or-later
//
// The About tab of Settings: the icon, the name and version, the tagline and
// Vesko's three promises.

#pragma once

#include <QWidget>

namespace Vesko {

class AboutSettingsView : public QWidget
{
    Q_OBJECT

public:
    explicit AboutSettingsView(QWidget *parent = nullptr);
};

} // namespace Vesko
