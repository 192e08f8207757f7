// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Logging.h"

namespace Vesko {

Q_LOGGING_CATEGORY(lcStorage, "com.vesko.vesko.storage", QtInfoMsg)
Q_LOGGING_CATEGORY(lcSearchIndex, "com.vesko.vesko.search-index", QtInfoMsg)
Q_LOGGING_CATEGORY(lcCapture, "com.vesko.vesko.capture", QtInfoMsg)
Q_LOGGING_CATEGORY(lcDoubleShift, "com.vesko.vesko.double-shift", QtInfoMsg)
Q_LOGGING_CATEGORY(lcToast, "com.vesko.vesko.toast", QtInfoMsg)

} // namespace Vesko
