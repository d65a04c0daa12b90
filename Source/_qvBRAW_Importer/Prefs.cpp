#include "_qvBRAW_Importer/Entry.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/Utils.h"

#include "TW_Settings_Utils/RemoteHostPopup.h"
#include "twImporterSharedPrefs/twImporterGetPrefs.h"
#include "Common/TW_Debug_Options.h"
#include "Utils/qvLogging.h"

#include <exception>

namespace {

// The settings side's name of the calling host, through the App Info suite
// acquired for this one question. Unknown without the suite.
PXC_HOST GetHost_PPro_From_Suite(imStdParms* stdParms) {
    SPBasicSuite* basic = TWI_GetBasicSuite(stdParms);
    if (!basic) return PXC_HOST_UNKNOWN;
    const void* suite = nullptr;
    if (basic->AcquireSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion, &suite) != kSPNoError) {
        return PXC_HOST_UNKNOWN;
    }
    const PXC_HOST host = GetHostPP_(static_cast<PrSDKAppInfoSuite*>(const_cast<void*>(suite)));
    basic->ReleaseSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
    return host;
}

}  // namespace

void SDKGetPrefs8(imStdParms* stdParms, imFileAccessRec8* fileAccess, imGetPrefsRec* prefsRec) {
    twImporterPrefsServices services;
    services.openSettingsPopup = [](int32_t host, const char* bundleIdentifier, const qvUtf8String& filePath,
                                    bool& optionsChanged, twAttributes& attributes) {
        // The popup reads the application's "modified" answer only for a caller
        // that asks for it by passing true; an answer that says nothing leaves
        // it true, and the options are then read again, which changes nothing
        // when they did not change.
        bool modified = true;
        twOpenSourceSettingsPopup(static_cast<PXC_HOST>(host), bundleIdentifier, filePath, modified, attributes);
        optionsChanged = modified;
    };
    services.updateLogs = [stdParms] { UpdateLogs(stdParms, false); };
    TWI_GetPrefs(GetHost_PPro_From_Suite(stdParms), fileAccess, prefsRec, services);
}

csSDK_int32 twOpenPreferences(imStdParms* stdParms, csSDK_int32 tab, csSDK_int32* modified) {
    try {
        bool changed = false;
        twHostOpenSettings_WithLogs(GetHost_PPro_From_Suite(stdParms), static_cast<TABS_ID>(tab), &changed,
                                    TW_IMPORTER_BUNDLE_IDENTIFIER);
        if (modified) *modified = changed ? 1 : 0;
        // What the source settings effect has the importer do after the same
        // window reported a change.
        if (changed) {
            TWDebugOptions::loadDebugOptions();
            UpdateLogs(stdParms, false);
        }
        return imNoErr;
    } catch (const std::exception& error) {
        QV_LOG(QV_LOG_ERR, "Preferences popup : " << error.what());
    } catch (...) {
        QV_LOG(QV_LOG_ERR, "Preferences popup : unknown exception");
    }
    return 99;
}
