#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/Utils.h"

#include "twImporterSharedPrefs/twImporterGetPrefs.h"

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
    // Seam: the settings popup (twOpenSourceSettingsPopup) is not wired yet, so
    // After Effects and Media Encoder get the default blob and no popup.
    services.updateLogs = [stdParms] { UpdateLogs(stdParms, false); };
    TWI_GetPrefs(GetHost_PPro_From_Suite(stdParms), fileAccess, prefsRec, services);
}
