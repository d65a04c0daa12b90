#include "twSimNames.h"

namespace {

struct Name {
    int value;
    const char* name;
};

const Name kSelectors[] = {
    {0, "imInit"},
    {1, "imShutdown"},
    {5, "imImportImage"},
    {8, "imQuietFile"},
    {9, "imCloseFile"},
    {12, "imAnalysis"},
    {13, "imDataRateAnalysis"},
    {14, "imGetIndFormat"},
    {23, "imGetMetaData"},
    {24, "imSetMetaData"},
    {25, "imImportAudio7"},
    {27, "imGetIndPixelFormat"},
    {28, "imGetSupports7"},
    {29, "imResetSequentialAudio"},
    {30, "imGetSequentialAudio"},
    {32, "imGetRollCrawlInfo"},
    {33, "imRollCrawlRenderPage"},
    {36, "imGetSupports8"},
    {37, "imGetInfo8"},
    {38, "imGetPrefs8"},
    {39, "imOpenFile8"},
    {40, "imSaveFile8"},
    {41, "imDeleteFile8"},
    {42, "imCalcSize8"},
    {43, "imCheckTrim8"},
    {44, "imTrimFile8"},
    {45, "imGetPreferredFrameSize"},
    {46, "imCreateAsyncImporter"},
    {47, "imGetSourceVideo"},
    {48, "imDeferredProcessing"},
    {49, "imGetPeakAudio"},
    {50, "imRetargetAccelerator"},
    {51, "imCopyFile"},
    {52, "imGetTimeInfo8"},
    {53, "imSetTimeInfo8"},
    {54, "imGetSubTypeNames"},
    {55, "imGetFileAttributes"},
    {56, "imQueryDestinationPath"},
    {57, "imQueryContentState"},
    {58, "imGetIndColorProfile"},
    {59, "imQueryInputFileList"},
    {60, "imQueryStreamLabel"},
    {61, "imInitiateAsyncClosedCaptionScan"},
    {62, "imGetNextClosedCaption"},
    {63, "imCompleteAsyncClosedCaptionScan"},
    {64, "imGetAudioChannelLayout"},
    {65, "imSelectClipFrameDescriptor"},
    {66, "imPerformSourceSettingsCommand"},
    {67, "imGetExtendedFormatInfo"},
    {68, "imGetDataStreamsInfo"},
    {69, "imGetDataStream"},
    {70, "imGetDataSample"},
    {71, "imGetSupportsPerInstancePrefs"},
    {72, "imGetInstancePrefs"},
    {73, "imGetIndColorSpace"},
    {74, "imGetDataStreamChunk"},
    {75, "imGetDataFileInfo"},
    {76, "imGetDataHierarchy"},
    {77, "imGetStreamInfo"},
    {78, "imGetStreamTemporalSamples"},
    {79, "imGetDataStreamVideoSyncTime"},
    {80, "imGetCurrentSystemState"},
    {81, "imGetInfo9"},
    {82, "imGetEmbeddedLUT"},
};

const Name kAsyncSelectors[] = {
    {0, "aiInitiateAsyncRead"}, {1, "aiCancelAsyncRead"}, {2, "aiFlush"}, {3, "aiGetFrame"}, {4, "aiClose"},
    {5, "aiContinueToWaitForAsyncIO"}, {6, "aiSelectEfficientRenderTime"},
    {7, "aiGetMinPlaybackSpeedForSelectingEfficientTime"},
};

template <size_t N>
const char* Find(const Name (&table)[N], int value) {
    for (const Name& n : table)
        if (n.value == value) return n.name;
    return nullptr;
}

}  // namespace

std::string twSimSelectorName(int selector) {
    const char* name = Find(kSelectors, selector);
    return name ? name : "selector " + std::to_string(selector);
}

std::string twSimAsyncSelectorName(int selector) {
    const char* name = Find(kAsyncSelectors, selector);
    return name ? name : "async selector " + std::to_string(selector);
}
