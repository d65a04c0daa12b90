#pragma once
// The importer's exported functions: the host's entry, the hook through which
// a test host puts temporary folders in front of the home folder and the
// system root before imInit, and the preferences window.

#include "MediaCoreSDK.h"

#define TW_EXPORT extern "C" __attribute__((visibility("default")))

TW_EXPORT csSDK_int32 xImportEntry(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2);
TW_EXPORT void twSetTestRoots(const char* home, const char* systemRoot);
// The preferences window at `tab`, as the product's source settings effect
// opens it in a host, for hosts without that effect (the command-line host).
// `modified` (may be null) receives 1 when the window changed the options,
// which are then read again. 0, or 99 for an exception stopped here.
TW_EXPORT csSDK_int32 twOpenPreferences(imStdParms* stdParms, csSDK_int32 tab, csSDK_int32* modified);

// The log line of a selector ("---- Selector - imGetInfo8 ----"), or null for a
// selector this importer does not know.
const char* TWI_SelectorLogLine(csSDK_int32 selector);
