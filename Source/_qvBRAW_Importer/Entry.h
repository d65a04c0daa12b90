#pragma once
// The importer's two exported functions: the host's entry, and the hook
// through which a test host puts temporary folders in front of the home folder
// and the system root before imInit.

#include "MediaCoreSDK.h"

#define TW_EXPORT extern "C" __attribute__((visibility("default")))

TW_EXPORT csSDK_int32 xImportEntry(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2);
TW_EXPORT void twSetTestRoots(const char* home, const char* systemRoot);

// The log line of a selector ("---- Selector - imGetInfo8 ----"), or null for a
// selector this importer does not know.
const char* TWI_SelectorLogLine(csSDK_int32 selector);
