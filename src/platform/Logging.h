// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's logging categories, one per subject, all under
// "com.vesko.vesko.". Errors go out with qCCritical, everything else with qCInfo.

#pragma once

#include <QLoggingCategory>

namespace Vesko {

Q_DECLARE_LOGGING_CATEGORY(lcStorage)
Q_DECLARE_LOGGING_CATEGORY(lcSearchIndex)
Q_DECLARE_LOGGING_CATEGORY(lcCapture)
Q_DECLARE_LOGGING_CATEGORY(lcDoubleShift)
Q_DECLARE_LOGGING_CATEGORY(lcToast)

} // namespace Vesko
