#pragma once
// What the importer's preferences selector does with the host's prefs buffer.
//
// The selector itself (SDKGetPrefs8, with the importer's entry) finds out which
// host is calling and hands over the two services that live elsewhere: the
// settings popup and the log switch. Everything that touches the buffer, and
// the rule for when a popup opens, is here.

#include "Manager/twAttributes.h"
#include "MediaCoreSDK.h"
#include "String/qvUtf8String.h"

#include <atomic>
#include <cstdint>
#include <functional>

// Set while a settings popup opened by the preferences selector is up, so that
// a second request from the host doesn't open another. imInit clears it.
extern std::atomic<bool> g_SettingsPopupOpen;

// The bundle identifier the importer's popups are opened under.
constexpr const char* TW_IMPORTER_BUNDLE_IDENTIFIER = "com.qervane.tarnwick.importer";

struct twImporterPrefsServices {
    // Shows the settings of the clip at `filePath` on `attributes` and waits
    // until the popup is closed; `optionsChanged` tells that the options file
    // was changed there. `host` is the PXC_HOST value of the calling host.
    // This is twOpenSourceSettingsPopup; without it no popup opens.
    std::function<void(int32_t host, const char* bundleIdentifier, const qvUtf8String& filePath, bool& optionsChanged,
                       twAttributes& attributes)>
        openSettingsPopup;
    // Switches the log by the options just reloaded: UpdateLogs(stdParms, false).
    std::function<void()> updateLogs;
};

// imGetPrefs8 for the host `host` (a PXC_HOST value: After Effects 1 and Media
// Encoder 3 get a popup here, Premiere Pro makes its settings in the source
// settings effect instead).
//
// A buffer gets the default blob. A host that gets a popup and gave no buffer
// is told the size of the blob and asked to call again; with a buffer the popup
// edits the settings in it and, if it changed the options file, the options are
// read again and the log switched. In any case a length of 0 becomes the size
// of the blob. Exceptions of the services pass through, with the popup flag
// cleared.
void TWI_GetPrefs(int32_t host, const imFileAccessRec8* fileAccess, imGetPrefsRec* prefsRec,
                  const twImporterPrefsServices& services);
