#include "_qvBRAW_Importer/Globals.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/Utils.h"

#include "Common/TW_Debug_Options.h"
#include "Common/twDeployment.h"
#include "Common/twUtils.h"
#include "FileSystem/qvFileSystem.h"
#include "twImporterSharedPrefs/twImporterGetPrefs.h"
#include "Utils/qvLogging.h"

namespace {

// Promises to the host in imImportInfoRec. Members not named keep what the
// host put there.
void fillImportInfo(const imStdParms* stdParms, imImportInfoRec* info, QV_APP_ENUM app) {
    if (!info) return;
    info->canSave = 1;
    info->hasSetup = 1;
    info->dontCache = 0;
    info->setupOnDblClk = 0;
    info->keepLoaded = 0;
    info->canCalcSizes = 1;
    info->canTrim = 1;
    info->canValidatePrefs = 1;
    info->hasSourceSettingsEffect = 1;
    if (stdParms && stdParms->imInterfaceVer >= 6) info->avoidAudioConform = 1;
    if (app == QV_APP_ENUM::QV_APP_AE) info->canProvideFileList = 1;
    // Last, and the highest there is: this importer takes .braw files before
    // any other importer of the same type.
    info->priority = 0x7FFFFFFF;
}

void warnAboutHostVersion(imStdParms* stdParms, QV_APP_ENUM app, const QvVersion& version) {
    if (app != QV_APP_ENUM::QV_APP_PPRO && app != QV_APP_ENUM::QV_APP_AME) return;
    if (version.major >= 26) {
        displayMsgToTheUser(stdParms, "Tarnwick - New Adobe Version detected",
                            qvUtf8String("This version of Tarnwick has not been tested with this new version of Adobe "
                                         "and could have unwanted behavior. Please check if a Tarnwick update is "
                                         "available on ") +
                                twDeployment::downloadUrl() + " !",
                            2, false);
    } else if (version.major < 13) {
        displayMsgToTheUser(stdParms, "Tarnwick - Old Adobe CC Version Not Officially Supported",
                            "Tarnwick is not officially supported on this old version of Adobe CC. It can work but "
                            "could have unwanted behavior... You need to update your Adobe application to have "
                            "Tarnwick officially supported !",
                            2, false);
    }
}

// Premiere Pro starts with an empty product cache; no other host touches it.
void emptyProductCache(imStdParms* stdParms) {
    qvUtf8String cacheFolder;
    const QvResult folder = qvFileSystem::getOrCreateProductCacheFolder(cacheFolder);
    if (folder.hasError) {
        displayMsgToTheUser(stdParms, "Impossible to get TW Cache Folder", folder.toString(), 3, true);
        QV_LOG(QV_LOG_ERR, "Impossible to get TW Cache Folder : " << folder.toString());
        return;
    }
    const QvResult cleaned = qvFileSystem::cleanFolder(cacheFolder);
    if (cleaned.hasError) QV_LOG(QV_LOG_ERR, "Impossible to clear Cache : " << cleaned.toString());
}

void identifyHostAtInit(imStdParms* stdParms) {
    SPBasicSuite* basic = TWI_GetBasicSuite(stdParms);
    const void* suite = nullptr;
    if (basic && basic->AcquireSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion, &suite) == kSPNoError) {
        if (suite) GetHostPP_(static_cast<PrSDKAppInfoSuite*>(const_cast<void*>(suite)));
        basic->ReleaseSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
        if (suite) return;
    }
    QV_LOG(QV_LOG_INFO, "Couldn't get appInfoSuite at Init :( ");
}

}  // namespace

void SDKInit(imStdParms* stdParms, imImportInfoRec* importInfo) {
    twUtils::initQvCommon();
    // A popup left open by an earlier load of the module is no popup of this one.
    g_SettingsPopupOpen = false;

    // A host that cannot be identified stays Unknown, and no version gate fires.
    QV_APP_ENUM app;
    QvVersion version;
    getHostAndVersion(stdParms, app, version);

    // The moves run before the options are read and the log is on: their
    // failures are shown now and logged once the log exists.
    const QvResult iniTransfer = twUtils::transferOldIniOptionsFile();
    if (iniTransfer.hasError) {
        displayMsgToTheUser(stdParms, "Error transferring Ini File",
                            "The Tarnwick Ini File changed its location and an error happened during transfer", 3,
                            true);
    }
    const QvResult presetTransfer = twUtils::transferOldPresetFolder();
    if (presetTransfer.hasError) {
        displayMsgToTheUser(stdParms, "Error transferring TW Presets",
                            "The Tarnwick Presets changed their location and an error happened during transfer", 3,
                            true);
    }

    TWDebugOptions::loadDebugOptions();
    UpdateLogs(stdParms, true);

    if (debugOptions.loggingLevel < QV_LOG_DESACTIVATED) {
        displayMsgToTheUser(stdParms,
                            "/!\\ Logs are enabled ! Disable this to increase Tarnwick's speed after sending us the "
                            "bug report",
                            "Unless if you are reproducing an issue to send Logs to Tarnwick developers, you should "
                            "disable Logs because they reduce a lot decoding speed !",
                            2, false);
    }
    if (iniTransfer.hasError) QV_LOG(QV_LOG_ERR, "Error while transfering Ini File : " << iniTransfer.toString());
    if (presetTransfer.hasError) {
        QV_LOG(QV_LOG_ERR, "Error while transfering Ini File : " << presetTransfer.toString());
    }

    QV_LOG(QV_LOG_INFO, "---- Selector - imInit ----");
    twUtils::deleteOldFolders();

    warnAboutHostVersion(stdParms, app, version);
    if (app == QV_APP_ENUM::QV_APP_PPRO) emptyProductCache(stdParms);

    fillImportInfo(stdParms, importInfo, app);
    identifyHostAtInit(stdParms);

    TWI_CreateGlobalManager();
    TWI_CreatePPixFactory();
}

void SDKShutdown(imStdParms*) {
    // The host may unload the module or exit once this returns.
    TWI_WaitForInstallChecks();
    TWI_FlushGlobalQueue();
    TWI_DestroyPPixFactory();
    TWI_DestroyGlobalManager();
}
