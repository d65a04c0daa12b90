#include "_qvBRAW_Importer/FileInfo.h"

#include "_qvBRAW_Importer/Audio.h"
#include "_qvBRAW_Importer/Globals.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PPixFactory.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Utils.h"
#include "FileSystem/qvFileSystem.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "String/qvString.h"
#include "Utils/qvLogging.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

constexpr char kCodecName[] = "Blackmagic RAW with Tarnwick";
constexpr char kSourceSettingsEffect[] = "AE.ADBE_BRAW_Source_Settings";
constexpr csSDK_int32 kSubTypeBRAW = 0x42524157;  // 'BRAW'
constexpr size_t kCodecNameUnits = 64;
constexpr size_t kMatchNameUnits = 256;
constexpr size_t kFilePathUnits = 2048;

// Where the prefs came from, which decides whether a failure is shown: a host
// that hands over no usable prefs is only probing the file.
enum GetInfoOrigin { kOriginProbe = 0, kOriginNewPrefs = 1, kOriginKnownPrefs = 2 };

struct AnamorphicRatio {
    const char* metadata;
    csSDK_uint32 numerator;
    csSDK_uint32 denominator;
};

const AnamorphicRatio kAnamorphicRatios[] = {
    {"2x", 2, 1}, {"1.8x", 18, 10}, {"1.66x", 5, 3}, {"1.5x", 3, 2}, {"1.33x", 4, 3},
};

PlugMemoryFuncs* memoryFuncsOf(const imStdParms* stdParms) {
    if (!stdParms || !stdParms->piSuites || !stdParms->piSuites->memFuncs) {
        throw std::runtime_error("Host memory functions are missing");
    }
    return stdParms->piSuites->memFuncs;
}

// Makes the record's prefs a current blob, replacing what is not, and says
// where they came from.
GetInfoOrigin settlePrefs(PlugMemoryFuncs* memory, imFileInfoRec8* fileInfo, std::ostringstream& trace) {
    char* prefs = static_cast<char*>(fileInfo->prefs);
    GetInfoOrigin origin = kOriginProbe;
    bool keep = false;
    csSDK_int32 size = 0;

    if (!prefs) {
        trace << "Prefs are nullptr\n";
    } else {
        size = memory->getPtrSize(prefs);
        if (size < static_cast<csSDK_int32>(sizeof(SharedPrefsJsonCheck))) {
            QV_LOG(QV_LOG_ERR, "Prefs size is inferior to SharedPrefsJsonCheck size : " << size);
        } else {
            SharedPrefsJsonCheck header;
            std::memcpy(&header, prefs, sizeof(header));
            trace << "Prefs are version : " << header.version << "\n";
            if (header.version >= 2) {
                trace << "Prefs are newer or equal than version 2\n";
                if (header.newPrefs == 1) {
                    trace << "newPrefs boolean is true\n";
                    origin = kOriginNewPrefs;
                } else {
                    trace << "newPrefs boolean is false\n";
                    origin = kOriginKnownPrefs;
                }
            } else {
                trace << "Prefs are older than version 2\n";
                origin = kOriginKnownPrefs;
            }
            if (size == static_cast<csSDK_int32>(TW_IMPORTER_PREFS_SIZE) &&
                header.version == TW_IMPORTER_PREFS_VERSION) {
                trace << "Existing Prefs has the same size and version than current Prefs Structure\n";
                keep = true;
            } else if (size == static_cast<csSDK_int32>(TW_IMPORTER_PREFS_SIZE)) {
                trace << "WARN - Existing Prefs has the good size but not the current Prefs version, we need to "
                         "allocate new prefs\n";
            } else {
                trace << "Existing Prefs has NOT the same size than current Prefs Structure, we need to allocate "
                         "new prefs\n";
            }
        }
    }

    if (keep) {
        prefs[offsetof(SharedPrefsJsonCheck, newPrefs)] = 0;
        return origin;
    }

    twImporterSharedPrefs settled;
    if (prefs) {
        trace << "Converting Existing Prefs\n";
        settled = twImporterSharedPrefs::convertFromOldVersion(prefs, static_cast<size_t>(size > 0 ? size : 0));
        trace << "Deallocating Existing Prefs\n";
        memory->disposePtr(prefs);
        fileInfo->prefs = nullptr;
    }
    trace << "Allocating New Prefs\n";
    char* fresh = memory->newPtr(TW_IMPORTER_PREFS_SIZE);
    if (!fresh) throw std::runtime_error("Impossible to allocate the Prefs");
    settled.newPrefs = 0;
    std::memcpy(fresh, &settled, sizeof(settled));
    fileInfo->prefs = fresh;
    trace << "New prefs allocated\n";
    return origin;
}

// A UTF-16 text into a field of a packed record, unit by unit.
void writeUtf16Field(void* field, const char* text, size_t fieldUnits) {
    const std::vector<char16_t> units = qvString::WstringToUtf16z(qvUtf8String(text).ToWstring(), fieldUnits);
    auto* bytes = static_cast<unsigned char*>(field);
    for (size_t i = 0; i < units.size() && i < fieldUnits; ++i) {
        bytes[2 * i] = static_cast<unsigned char>(units[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<unsigned char>(units[i] >> 8);
    }
}

// What the host is told before the clip is read.
void writeDefaults(const imStdParms* stdParms, imFileInfoRec8* fileInfo, TWI_PrivateData* privateData) {
    fileInfo->hasVideo = 1;
    fileInfo->hasAudio = 0;
    imImageInfoRec& video = fileInfo->vidInfo;
    video.imageWidth = 1920;
    video.imageHeight = 1080;
    video.depth = 24;
    video.subType = kSubTypeBRAW;
    video.fieldType = 0;
    video.fieldsStacked = 1;
    video.alphaType = 1;
    std::memset(reinterpret_cast<char*>(fileInfo) + offsetof(imFileInfoRec8, vidInfo.matteColor), 0, 10);
    video.pixelAspectNum = 1;
    video.pixelAspectDen = 1;
    video.isRollCrawl = 0;
    video.supportsAsyncIO = 1;
    video.supportsGetSourceVideo = 1;
    std::memset(reinterpret_cast<char*>(fileInfo) + offsetof(imFileInfoRec8, vidInfo.hasPulldown), 0, 24);
    if (privateData->stringSuite) {
        const std::vector<char16_t> name =
            qvString::WstringToUtf16z(qvUtf8String(kCodecName).ToWstring(), kCodecNameUnits + 1);
        PrSDKString codec{};
        privateData->stringSuite->AllocateFromUTF16(reinterpret_cast<const prUTF16Char*>(name.data()), &codec);
        video.codecDescription = codec;
    }
    video.colorSpaceSupport = 1;
    video.hasEmbeddedLUT = 0;
    fileInfo->vidScale = 25;
    fileInfo->vidSampleSize = 1;
    fileInfo->audInfo.numChannels = 0;
    fileInfo->audInfo.sampleRate = 48000.0f;
    fileInfo->audInfo.sampleType = kPrAudioSampleType_32BitFloat;
    fileInfo->accessModes = stdParms->imInterfaceVer >= 6 ? kSeparateSequentialAudio : kRandomAccessImport;
    fileInfo->hasDataRate = 0;
    // Two one-byte members behind one 16-bit zero.
    fileInfo->alwaysUnquiet = 0;
    fileInfo->hasDataStreams = 0;
    fileInfo->mayBeGrowing = 0;
    writeUtf16Field(reinterpret_cast<char*>(fileInfo) + offsetof(imFileInfoRec8, sourceSettingsMatchName),
                    kSourceSettingsEffect, kMatchNameUnits);
    fileInfo->vidDurationInFrames = 500;
    // Two 32-bit members behind one 64-bit zero.
    fileInfo->ivProjectionType = static_cast<PrIVProjectionType>(0);
    fileInfo->ivFrameLayout = static_cast<PrIVFrameLayout>(0);
    fileInfo->mayHaveCaptions = 0;
}

// The dual-card file and the sidecar, handed to the host when they exist.
void registerCompanionFiles(const imStdParms* stdParms, const imFileInfoRec8* fileInfo, const qvUtf8String& path) {
    const csSDK_int32 pluginID = fileInfo->sessionPluginID;
    SPBasicSuite* basic = TWI_GetBasicSuite(stdParms);
    const void* suite = nullptr;
    SPErr error = basic ? basic->AcquireSuite(kPrSDKFileRegistrationSuite, kPrSDKFileRegistrationSuiteVersion, &suite)
                        : kSPSuiteNotFoundError;
    const bool acquired = basic && error == kSPNoError;
    if (!acquired || !suite || pluginID == 0) {
        QV_LOG(QV_LOG_ERR, "Impossible to get registration Suite : " << error << " - pluginID nullptr : " << pluginID);
        if (acquired) basic->ReleaseSuite(kPrSDKFileRegistrationSuite, kPrSDKFileRegistrationSuiteVersion);
        return;
    }
    const auto* registration = static_cast<const PrSDKFileRegistrationSuite*>(suite);

    struct Companion {
        const char* extension;
        const char* label;
        const char* logText;
    };
    const Companion companions[] = {
        {"braw2", "BRAW dual Card File", "Dual Card file exists : adding it to dependencies : "},
        {"sidecar", "Sidecar BRAW File", "Sidecar file exists : adding it to dependencies : "},
    };
    for (const Companion& companion : companions) {
        const qvUtf8String companionPath = TWI_CompanionPath(path, companion.extension);
        if (!qvFileSystem::doesFilepathExist(companionPath)) continue;
        QV_LOG(QV_LOG_INFO, companion.logText << companionPath);
        const std::string ansiPath = qvString::Utf8ToAnsi(companionPath.Str());
        const char* extensions = "";
        const prSuiteError result = registration->RegisterFileForHostManagement(
            static_cast<csSDK_uint32>(pluginID), companion.label, ansiPath.c_str(), &extensions, 1, 0);
        if (result != suiteError_NoError) QV_LOG(QV_LOG_ERR, "Register Suite call did not work : " << result);
    }
    basic->ReleaseSuite(kPrSDKFileRegistrationSuite, kPrSDKFileRegistrationSuiteVersion);
}

// The pixel aspect the camera's anamorphic lens asks for, when it is switched on.
void setAnamorphicAspect(const std::shared_ptr<qvBRAW_Clip>& clip, imFileInfoRec8* fileInfo) {
    const qvUtf8String anamorphic = clip->getClipMetadata("anamorphic", true);
    const bool enabled = clip->getClipMetadataBool("anamorphic_enable", true);
    if (anamorphic.Empty() || !enabled) return;
    for (const AnamorphicRatio& ratio : kAnamorphicRatios) {
        if (anamorphic.Str() == ratio.metadata) {
            fileInfo->vidInfo.pixelAspectNum = ratio.numerator;
            fileInfo->vidInfo.pixelAspectDen = ratio.denominator;
            return;
        }
    }
    QV_LOG(QV_LOG_ERR, "Weird value of Anamoprhic Metadata unknown !! " << anamorphic);
}

// A rate the library makes up (not a number, or far beyond any camera's) gives 0
// rather than a conversion the language leaves undefined.
int32_t toInt32(double value) {
    if (!(value >= static_cast<double>(INT32_MIN) && value <= static_cast<double>(INT32_MAX))) return 0;
    return static_cast<int32_t>(value);
}

}  // namespace

TWI_FrameRateClass TWI_ClassifyFrameRate(float rate, int32_t& vidScale, int32_t& vidSampleSize) {
    if (std::fabs(rate - std::round(rate)) < 0.01f) {
        vidScale = toInt32(std::floor(rate + 0.001));
        vidSampleSize = 1;
        return TWI_FrameRateClass::Round;
    }
    // Single precision on purpose: the classes were drawn on float rates.
    const float ntsc = 1001.0f * rate;
    if (std::fabs(ntsc - std::round(ntsc)) < 0.1f) {
        vidScale = toInt32(std::round(static_cast<double>(rate) * 1001.0));
        vidSampleSize = 1001;
        return TWI_FrameRateClass::NTSC;
    }
    vidScale = toInt32(std::round(10000.0 * rate));
    vidSampleSize = 10000;
    return TWI_FrameRateClass::Unknown;
}

namespace {

// The body of getInfosFromBM; its trace lines go to `trace`, logged by the caller in one entry.
QvResult readClipInfos(imFileInfoRec8* fileInfo, TWI_PrivateData* privateData, twImporterAttributes* attributes,
                       std::ostringstream& trace) {
    uint64_t clipID = 0;
    std::shared_ptr<qvBRAW_Clip> clip;
    qvBRAW_Manager* manager = privateData->manager;
    if (!manager || !privateData->filepath || !manager->GetClipIDFromFilepath(*privateData->filepath, clipID, clip)) {
        return QvResult("Clip has not been found");
    }
    trace << "Clip has been found. ID : " << clipID << "\n";
    privateData->clipID = clipID;
    privateData->hasClipInfo = true;
    privateData->clipIDForTime = clipID;
    if (!clip) return QvResult("Clip was added, but is nullptr when calling Get Clip");

    // The prefs hold 20 sizes; a clip that offers more cannot be described.
    attributes->fullRes = QvResolution(clip->m_width, clip->m_height);
    const size_t resolutionCount = clip->m_resolutions.size();
    if (resolutionCount > TW_IMPORTER_PREFS_MAX_RESOLUTIONS) {
        return QvResult("Max number of available resolutions reached - " + std::to_string(resolutionCount));
    }
    attributes->resolutionCount = static_cast<uint8_t>(resolutionCount);
    for (size_t i = 0; i < resolutionCount; ++i) attributes->resolutions[i] = clip->m_resolutions[i].first;

    if (!attributes->doNotSetAspectRatio) setAnamorphicAspect(clip, fileInfo);

    const float rate = clip->m_frameRate;
    int32_t vidScale = 0;
    int32_t vidSampleSize = 0;
    switch (TWI_ClassifyFrameRate(rate, vidScale, vidSampleSize)) {
        case TWI_FrameRateClass::Round: trace << "FrameRate detected as round\n"; break;
        case TWI_FrameRateClass::NTSC: trace << "FrameRate detected as NTSC\n"; break;
        case TWI_FrameRateClass::Unknown: trace << "ERR - FrameRate has an unknown value : " << rate << "\n"; break;
    }
    fileInfo->vidScale = vidScale;
    fileInfo->vidSampleSize = vidSampleSize;
    privateData->vidScale = vidScale;
    privateData->vidSampleSize = vidSampleSize;
    privateData->frameRate = rate;
    trace << "  - vidScale: " << vidScale << "\n";
    trace << "  - vidSampleSize: " << vidSampleSize << "\n";

    *privateData->timecode = clip->getTimecodeForFrame(0);
    trace << "Timecode : " << *privateData->timecode << "\n";

    fileInfo->vidInfo.imageWidth = static_cast<csSDK_int32>(clip->m_width);
    fileInfo->vidInfo.imageHeight = static_cast<csSDK_int32>(clip->m_height);
    trace << "Width x Height (Full): " << clip->m_width << "x" << clip->m_height << "\n";

    fileInfo->vidDurationInFrames = static_cast<csSDK_int64>(clip->m_frameCount);
    privateData->frameCount = static_cast<int64_t>(clip->m_frameCount);
    trace << "Duration : " << clip->m_frameCount << "\n";
    // One frame is a still for the host.
    fileInfo->vidInfo.isStill = clip->m_frameCount == 1 ? 1 : 0;

    return GetInfoAudio(clip, privateData, fileInfo);
}

}  // namespace

QvResult getInfosFromBM(imFileInfoRec8* fileInfo, TWI_PrivateData* privateData, twImporterAttributes* attributes) {
    std::ostringstream trace;
    trace << " -- BM Clip Infos --\n";
    const QvResult result = readClipInfos(fileInfo, privateData, attributes, trace);
    QV_LOG(QV_LOG_INFO, trace.str());
    return result;
}

int SDKGetInfo8(imStdParms* stdParms, imFileAccessRec8* fileAccess, imFileInfoRec8* fileInfo) {
    if (!stdParms || !fileInfo) return imOtherErr;
    // The selector's trace lines go out in one entry at its end.
    std::ostringstream trace;
    trace << "-- GetInfos --\n";

    QV_APP_ENUM app;
    QvVersion version;
    const QvResult identity = getHostAndVersion(stdParms, app, version);
    if (identity.hasError) QV_LOG(QV_LOG_ERR, "App and Version are impossible to get : " << identity.toString());

    PlugMemoryFuncs* memory = memoryFuncsOf(stdParms);
    const GetInfoOrigin origin = settlePrefs(memory, fileInfo, trace);
    trace << "getInfoOrigin is " << origin << "\n";

    char** handle = static_cast<char**>(fileInfo->privatedata);
    if (handle) {
        trace << "Private data already exists\n";
    } else {
        trace << "Allocating new PrivateData\n";
        handle = memory->newHandle(sizeof(TWI_PrivateData));
        if (!handle) throw std::runtime_error("Impossible to allocate the PrivateData");
        // The record is never constructed: a fresh one starts from zeros, so
        // that the strings and suites it owns are null until they are made.
        std::memset(*handle, 0, sizeof(TWI_PrivateData));
        fileInfo->privatedata = handle;
    }

    const int result = TWI_PrivateData_LockExecute(stdParms, handle, [&](TWI_PrivateData* privateData) {
        privateData->audioPosition = 0;
        privateData->audioSampleRate = 48000.0;
        privateData->audioChannelCount = 0;
        privateData->importerID = fileInfo->vidInfo.importerID;
        privateData->frameRate = 1.0;
        int result = TWI_PrivateData_AcquireSuites(stdParms, privateData);
        if (g_PPixFactory) g_PPixFactory->offerCreatorSuite(privateData->ppixCreatorSuite);
        privateData->host = GetHostPP_(privateData->appInfoSuite);
        privateData->hasClipInfo = false;

        writeDefaults(stdParms, fileInfo, privateData);
        qvUtf8String path =
            TWI_PathFromUtf16(reinterpret_cast<const char*>(fileInfo) + offsetof(imFileInfoRec8, filePath),
                              kFilePathUnits);
        // A host that leaves the record's path empty has given it in the access record.
        if (path.Empty() && fileAccess) path = TWI_PathFromUtf16(fileAccess->filepath, kFilePathUnits);
        trace << "Getting Filepath : " << path << "\n";
        privateData->filepath = new qvUtf8String(path);
        trace << "Filepath after GetFilePathFromUTF16 : " << *privateData->filepath << "\n";
        QV_LOG(QV_LOG_INFO, "File Size : " << qvFileSystem::getFileSize(*privateData->filepath));
        privateData->timecode = new qvUtf8String();

        registerCompanionFiles(stdParms, fileInfo, *privateData->filepath);

        privateData->manager = Global_Manager;
        twImporterSharedPrefs* prefs = static_cast<twImporterSharedPrefs*>(fileInfo->prefs);
        const QvResult clipInfo = getInfosFromBM(fileInfo, privateData, prefs);
        if (clipInfo.hasError) {
            QV_LOG(QV_LOG_ERR, clipInfo.toString());
            if (origin != kOriginProbe) {
                displayMsgToTheUser(stdParms, "GetInfo from BM - " + clipInfo.toString(), qvUtf8String(), 3, true);
            }
            fileInfo->hasVideo = 0;
            result = imOtherErr;
        }
        return result;
    });
    QV_LOG(QV_LOG_INFO, trace.str());
    return result;
}
