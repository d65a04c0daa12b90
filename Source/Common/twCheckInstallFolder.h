#pragma once
// The check that the product's plug-ins sit where the hosts load them, once,
// with nothing of the decoder vendor's own plug-ins beside them.

#include "String/qvUtf8String.h"
#include "Utils/qvLogging.h"
#include "Utils/qvResult.h"

namespace twCheckInstall {

// `level` is the verdict (INFO good, WARN, ERR) and only ever rises; `report`
// (for the user) and `details` (for the log) are appended to.
QvResult checkInstallFolder(QV_LOG_LVL& level, qvUtf8String& report, qvUtf8String& details);

}  // namespace twCheckInstall
