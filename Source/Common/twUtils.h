#pragma once
// The product's own services on top of the shared library.

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

namespace twUtils {

// <product folder>/TW_Preset, created when missing.
QvResult getOrCreateTWPresetFolder(qvUtf8String& out);

}  // namespace twUtils
