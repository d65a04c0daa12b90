#include "_qvBRAW_Importer/Entry.h"

#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/Utils.h"
#include "Platform/qvPlatformRoots.h"
#include "Utils/qvLogging.h"

#include <cstdint>
#include <exception>

namespace {

// The selectors the host may still send, by number. Selector 65 is answered
// without a line; 41 and 60 have always been logged cut short.
const char* const kSelectorLines[] = {
    /*  0 */ nullptr,  // imInit logs its own line once the log is on
    /*  1 */ "---- Selector - imShutdown ----",
    nullptr, nullptr, nullptr,
    /*  5 */ "---- Selector - imImportImage ----",
    nullptr, nullptr,
    /*  8 */ "---- Selector - imQuietFile ----",
    /*  9 */ "---- Selector - imCloseFile ----",
    nullptr, nullptr,
    /* 12 */ "---- Selector - imAnalysis ----",
    /* 13 */ "---- Selector - imDataRateAnalysis ----",
    /* 14 */ "---- Selector - imGetIndFormat ----",
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    /* 23 */ "---- Selector - GetMetaData ----",
    /* 24 */ "---- Selector - SetMetaData ----",
    /* 25 */ "---- Selector - ImportAudio7 ----",
    nullptr,
    /* 27 */ "---- Selector - imGetIndPixelFormat ----",
    /* 28 */ "---- Selector - imGetSupports7 ----",
    /* 29 */ "---- Selector - imResetSequentialAudio ----",
    /* 30 */ "---- Selector - imGetSequentialAudio ----",
    nullptr,
    /* 32 */ "---- Selector - imGetRollCrawlInfo ----",
    /* 33 */ "---- Selector - imRollCrawlRenderPage ----",
    nullptr, nullptr,
    /* 36 */ "---- Selector - imGetSupports8 ----",
    /* 37 */ "---- Selector - imGetInfo8 ----",
    /* 38 */ "---- Selector - imGetPrefs8 ----",
    /* 39 */ "---- Selector - imOpenFile8 ----",
    /* 40 */ "---- Selector - imSaveFile8 ----",
    /* 41 */ "---- Selector - imDeleteFile8",
    /* 42 */ "---- Selector - imCalcSize8 ----",
    /* 43 */ "---- Selector - imCheckTrim8 ----",
    /* 44 */ "---- Selector - imTrimFile8 ----",
    /* 45 */ "---- Selector - imGetPreferredFrameSize ----",
    /* 46 */ "---- Selector - imCreateAsyncImporter ----",
    /* 47 */ "---- Selector - imGetSourceVideo ----",
    /* 48 */ "---- Selector - imDeferredProcessing ----",
    /* 49 */ "---- Selector - imGetPeakAudio ----",
    /* 50 */ "---- Selector - imRetargetAccelerator ----",
    /* 51 */ "---- Selector - imCopyFile ----",
    /* 52 */ "---- Selector - imGetTimeInfo8 ----",
    /* 53 */ "---- Selector - imSetTimeInfo8 ----",
    /* 54 */ "---- Selector - imGetSubTypeNames ----",
    /* 55 */ "---- Selector - imGetFileAttributes ----",
    /* 56 */ "---- Selector - imQueryDestinationPath ----",
    /* 57 */ "---- Selector - imQueryContentState ----",
    /* 58 */ "---- Selector - imGetIndColorProfile ----",
    /* 59 */ "---- Selector - imQueryInputFileList ----",
    /* 60 */ "---- Selector - imQueryStreamLabe",
    /* 61 */ "---- Selector - imInitiateAsyncClosedCaptionScan ----",
    /* 62 */ "---- Selector - imGetNextClosedCaption ----",
    /* 63 */ "---- Selector - imCompleteAsyncClosedCaptionScan ----",
    /* 64 */ "---- Selector - imGetAudioChannelLayout ----",
    /* 65 */ nullptr,
    /* 66 */ "---- Selector - imPerformSourceSettingsCommand ----",
    /* 67 */ "---- Selector - imGetExtendedFormatInfo ----",
    /* 68 */ "---- Selector - imGetDataStreamsInfo ----",
    /* 69 */ "---- Selector - imGetDataStream ----",
    /* 70 */ "---- Selector - imGetDataSample ----",
    /* 71 */ "---- Selector - imGetSupportsPerInstancePrefs ----",
    /* 72 */ "---- Selector - imGetInstancePrefs ----",
    /* 73 */ "---- Selector - imGetIndColorSpace ----",
    /* 74 */ "---- Selector - imGetDataStreamChunk ----",
    /* 75 */ "---- Selector - imGetDataFileInfo ----",
    /* 76 */ "---- Selector - imGetDataHierarchy ----",
    /* 77 */ "---- Selector - imGetStreamInfo ----",
    /* 78 */ "---- Selector - imGetStreamTemporalSamples ----",
    /* 79 */ "---- Selector - imGetDataStreamVideoSyncTime ----",
    /* 80 */ "---- Selector - imGetCurrentSystemState ----",
    /* 81 */ "---- Selector - imGetInfo9 ----",
    /* 82 */ "---- Selector - imGetEmbeddedLUT ----",
    /* 83 */ "---- Selector - imSelectClipFrameDescriptor2 ----",
    /* 84 */ "---- Selector - imGetColorSpaceFromOpaqueData ----",
};
constexpr csSDK_int32 kSelectorCount = static_cast<csSDK_int32>(sizeof(kSelectorLines) / sizeof(kSelectorLines[0]));
static_assert(kSelectorCount == 85, "one line per selector up to 84");

// Selector 65 is known although it logs nothing; 0 logs from inside SDKInit.
bool isKnownSelector(csSDK_int32 selector) {
    return selector == imInit || selector == imSelectClipFrameDescriptor ||
           (selector >= 0 && selector < kSelectorCount && kSelectorLines[selector] != nullptr);
}

int indexOf(void* param) { return static_cast<int>(reinterpret_cast<intptr_t>(param)); }

// The selectors that do nothing and say so (3), or that do nothing and still
// report success (0), which the host has always been told.
csSDK_int32 loggedOnlyResult(csSDK_int32 selector) {
    switch (selector) {
        case imDataRateAnalysis:
        case imGetMetaData:
        case imSetMetaData:
        case imCheckTrim8:
        case imSetTimeInfo8:
        case imGetDataHierarchy: return imNoErr;
        case imGetSupports8: return malSupports8;
        default: return imUnsupported;
    }
}

csSDK_int32 dispatch(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2) {
    switch (selector) {
        case imInit:
            SDKInit(stdParms, static_cast<imImportInfoRec*>(param1));
            return imNoErr;
        case imShutdown:
            SDKShutdown(stdParms);
            return imNoErr;
        case imQuietFile:
            SDKQuietFile(stdParms, static_cast<void**>(param1), param2);
            return imNoErr;
        case imCloseFile:
            SDKCloseFile(stdParms, static_cast<void**>(param1), param2);
            return imNoErr;
        case imAnalysis: return SDKAnalysis(stdParms, param1, static_cast<imAnalysisRec*>(param2));
        case imGetIndFormat: return SDKGetIndFormat(stdParms, indexOf(param1), static_cast<imIndFormatRec*>(param2));
        case imImportAudio7: return SDKImportAudio7(stdParms, param1, static_cast<imImportAudioRec7*>(param2));
        case imGetIndPixelFormat:
            return SDKGetIndPixelFormat(stdParms, indexOf(param1), static_cast<imIndPixelFormatRec*>(param2));
        case imGetInfo8:
            return SDKGetInfo8(stdParms, static_cast<imFileAccessRec8*>(param1), static_cast<imFileInfoRec8*>(param2));
        case imGetPrefs8:
            SDKGetPrefs8(stdParms, static_cast<imFileAccessRec8*>(param1), static_cast<imGetPrefsRec*>(param2));
            return imNoErr;
        case imOpenFile8:
            return SDKOpenFile8(stdParms, static_cast<void**>(param1), static_cast<imFileOpenRec8*>(param2));
        case imGetPreferredFrameSize:
            return SDKGetPreferredFrameSize(stdParms, static_cast<imPreferredFrameSizeRec*>(param1));
        case imCreateAsyncImporter:
            return SDKCreateAsyncImporter(stdParms, static_cast<imAsyncImporterCreationRec*>(param1));
        case imGetSourceVideo: return SDKGetSourceVideo(stdParms, param1, static_cast<imSourceVideoRec*>(param2));
        case imGetTimeInfo8: return SDKGetTimeInfo8(stdParms, param1, static_cast<imTimeInfoRec8*>(param2));
        case imGetSubTypeNames:
            GetSubTypeNames(stdParms, indexOf(param1), static_cast<imSubTypeDescriptionRec**>(param2));
            return imNoErr;
        case imQueryInputFileList:
            return SDKQueryInputFileList(stdParms, static_cast<imQueryInputFileListRec*>(param1));
        case imSelectClipFrameDescriptor:
            return SelectClipFrameDescriptor(stdParms, param1, static_cast<imClipFrameDescriptorRec*>(param2));
        case imPerformSourceSettingsCommand:
            return SDKPerformSourceSettingsCommand(stdParms, static_cast<imFileAccessRec8*>(param1),
                                                   static_cast<imSourceSettingsCommandRec*>(param2));
        case imGetIndColorSpace:
            return GetIndColorSpace(stdParms, indexOf(param1), static_cast<ColorSpaceRec*>(param2));
        default: return loggedOnlyResult(selector);
    }
}

// The barrier's own report must not throw past the entry either.
void reportStoppedException(imStdParms* stdParms, const char* text) noexcept {
    try {
        displayMsgToTheUser(stdParms, "Importer GetInfos Error", text, 3, true);
    } catch (...) {
    }
}

}  // namespace

const char* TWI_SelectorLogLine(csSDK_int32 selector) {
    if (selector < 0 || selector >= kSelectorCount) return nullptr;
    return kSelectorLines[selector];
}

csSDK_int32 xImportEntry(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2) {
    // Nothing leaves this function as an exception: the host cannot take one.
    // Every failure shows under the one title, whatever the selector.
    try {
        if (!isKnownSelector(selector)) {
            QV_LOG(QV_LOG_INFO, "---- Selector - Unknown selector : " << selector << " ----");
            return imUnsupported;
        }
        if (const char* line = TWI_SelectorLogLine(selector)) QV_LOG(QV_LOG_INFO, line);
        return dispatch(selector, stdParms, param1, param2);
    } catch (const std::exception& error) {
        try {
            QV_LOG(QV_LOG_ERR, "Error raised : " << error.what());
        } catch (...) {
        }
        reportStoppedException(stdParms, error.what());
    } catch (...) {
        reportStoppedException(stdParms, "Unknown Error raised");
    }
    return malUnknownError;
}

void twSetTestRoots(const char* home, const char* systemRoot) {
    qvPlatform::SetHomeFolderOverride(home ? home : "");
    qvPlatform::SetSystemRootOverride(systemRoot ? systemRoot : "");
}
