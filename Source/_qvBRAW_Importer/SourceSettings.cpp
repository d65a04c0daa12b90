// imPerformSourceSettingsCommand: the conversation with this importer's own
// source settings effect. The effect hands over a twImporterSettingsInitData
// (through a pointer to a pointer) and reads the answer through the same
// pointer: reload the options, reload a clip's sidecar, or, by default, all
// that the settings panels need to know about the clip.

#include "_qvBRAW_Importer/SourceSettings.h"

#include "_qvBRAW_Importer/Globals.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/Utils.h"

#include "Common/TW_Debug_Options.h"
#include "Common/twDeployment.h"
#include "FileSystem/qvUtf8Path.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "Utils/qvLogging.h"
#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

constexpr size_t kSourceSettingsPathUnits = 2048;
constexpr const char* kCommandErrorTitle = "Importer PerformSSCommand Error";

// The pointer the effect passes its record through. It sits in the effect's
// buffer at no promised alignment, so it is read and written bytewise.
unsigned char* readRecordPointer(const char* slot) {
    unsigned char* record = nullptr;
    std::memcpy(&record, slot, sizeof(record));
    return record;
}

// The effect's record is the effect's memory, laid out by the wire format:
// its fields are reached by their offsets.
struct EffectRecord {
    unsigned char* bytes;

    bool flag(size_t offset) const { return bytes[offset] != 0; }
    void set(size_t offset) const { bytes[offset] = 1; }
    uint32_t adobeTimecode() const {
        uint32_t value = 0;
        std::memcpy(&value, bytes + twImporterSettingsWire::adobeTimecode, sizeof(value));
        return value;
    }
};

void writeRecordPointer(char* slot, twImporterSettingsInitData* record) {
    std::memcpy(slot, &record, sizeof(record));
}

// The clip's settings data as the importer's record, which is what the effect
// reads. Data made elsewhere as the plain base record becomes one in its place
// on the clip, so that the effect never reads beyond an object.
twImporterSettingsInitData* asImporterRecord(qvBRAW_Clip& clip, std::shared_ptr<twSettingsInitData>& data) {
    if (!data) return nullptr;
    if (auto* record = dynamic_cast<twImporterSettingsInitData*>(data.get())) return record;
    auto record = std::make_shared<twImporterSettingsInitData>(*data);
    QV_LOCK_TRACED(clip.m_bmClipMutex);
    if (clip.m_sourceSettingsInitData == data) clip.m_sourceSettingsInitData = record;
    clip.m_bmClipMutex.unlock();
    data = record;
    return record.get();
}

// Premiere Pro has been seen to show the start timecode of 23.976 and 29.97 fps
// clips as the clip's frames times 1000/1001. Run once per clip, when its
// settings data are first made.
void checkTimecode(imStdParms* stdParms, uint64_t clipID, const qvUtf8String& path, uint32_t adobe) {
    const std::shared_ptr<qvBRAW_Clip> clip = Global_Manager ? Global_Manager->GetClip(clipID) : nullptr;
    if (!clip) return;
    QV_LOCK_TRACED(clip->m_bmClipMutex);
    const bool hasData = clip->m_sourceSettingsInitData != nullptr;
    clip->m_bmClipMutex.unlock();
    if (!hasData) {
        QV_LOG(QV_LOG_ERR,
               "clip->m_sourceSettingsInitData is nullptr and should not - Impossible to send warning to user about "
               "timecode");
        return;
    }

    bool dropFrame = false;
    const uint32_t bm = clip->getTimecodeFrames(dropFrame, true);
    const uint32_t wrong = static_cast<uint32_t>(static_cast<uint64_t>(bm) * 1000 / 1001);
    const float rate = clip->m_frameRate;

    std::ostringstream trace;
    trace << "Timecode Check for clip " << clipID << " : " << path.Str() << "\n    - FrameRate : " << rate
          << "\n    - IsDropFrame : " << dropFrame << "\n    - Timecode BM       : " << bm
          << "\n    - Timecode Adobe    : " << adobe << "\n    - Timecode BM Wrong : " << wrong;

    const bool known = bm < TW_NO_TIMECODE_FRAMES && adobe < TW_ADOBE_TIMECODE_UNKNOWN;
    const bool slowedRate = std::fabs(rate - 23.976f) < 0.01f || std::fabs(rate - 29.97f) < 0.01f;
    if (known && slowedRate) {
        const bool warn = adobe == wrong || (std::lround(rate) == 30 && !dropFrame && adobe != bm);
        if (warn) {
            trace << " => Displaying Warning msg";
            QV_LOG(QV_LOG_WARN, trace.str());
            displayMsgToTheUser(stdParms, "Wrong Timecode for " + qvUtf8Path(path).Filename(true),
                                qvUtf8String("You can correct the timecode with our Panel. You can disable this "
                                             "warning in the Settings. More info here ") +
                                    twDeployment::timecodeHelpUrl(),
                                2, false);
            return;
        }
    }
    if (adobe == bm) {
        trace << " => Timecode Adobe is the same than BM - No need to warn user.";
        QV_LOG(QV_LOG_INFO, trace.str());
    } else {
        QV_LOG(QV_LOG_ERR, trace.str());
    }
}

int reloadOptions(imStdParms* stdParms) {
    TWDebugOptions::loadDebugOptions();
    QV_APP_ENUM app;
    QvVersion version;
    getHostAndVersion(stdParms, app, version);
    UpdateLogs(stdParms, false);
    return imNoErr;
}

int reloadSidecar(const qvUtf8String& path, bool clipFound, const std::shared_ptr<qvBRAW_Clip>& clip, uint64_t id) {
    if (!clipFound || !clip) {
        QV_LOG(QV_LOG_ERR, "Updating Sidecar - Clip has not been found in list from filepath : "
                               << path.Str() << " - Test clipFound : " << clipFound);
        return imNoErr;
    }
    QV_LOG(QV_LOG_INFO, "Clip has been found. ID : " << id);
    QV_LOCK_TRACED(clip->m_bmClipMutex);
    QV_LOG(QV_LOG_INFO, "Reloading SidecarFile");
    // A closed clip has no library object to reload; it reads its sidecar when it reopens.
    if (clip->m_BM) clip->m_BM->ReloadSidecarFile();
    clip->m_bmClipMutex.unlock();
    return imNoErr;
}

int fillRecord(imStdParms* stdParms, char* slot, const EffectRecord& effectRecord, const qvUtf8String& path,
               bool clipFound, const std::shared_ptr<qvBRAW_Clip>& clip, uint64_t id) {
    if (!clipFound || !clip || !Global_Manager) {
        QV_LOG(QV_LOG_ERR, "Getting SS InitData - Clip has not been found in list from filepath : "
                               << path.Str() << " - Test clipFound : " << clipFound);
        effectRecord.set(twImporterSettingsWire::importerFailed);
        return imOtherErr;
    }
    QV_LOG(QV_LOG_INFO, "Clip has been found. ID : " << id << ", filepath : " << path.Str());

    bool generated = false;
    std::shared_ptr<twSettingsInitData> data = std::make_shared<twImporterSettingsInitData>();
    const QvResult all = Global_Manager->getAllDataFromClip(generated, id, true, data, false);
    twImporterSettingsInitData* answer = all.hasError ? nullptr : asImporterRecord(*clip, data);
    if (!answer) {
        const qvUtf8String text = all.hasError ? all.toString() : qvUtf8String("Clip has no settings data");
        QV_LOG(QV_LOG_ERR, text.Str());
        effectRecord.set(twImporterSettingsWire::importerFailed);
        displayMsgToTheUser(stdParms, text, "", 3, true);
        return imOtherErr;
    }

    answer->importerAnswered = 1;
    answer->importerFailed = false;
    answer->adobeTimecodeSet = effectRecord.bytes[twImporterSettingsWire::adobeTimecodeSet];
    answer->adobeTimecode = effectRecord.adobeTimecode();
    answer->setFilepath(clip->m_path);
    // The effect reads the answer through its own pointer; the answer lives on
    // as the clip's settings data.
    writeRecordPointer(slot, answer);

    if (generated && !debugOptions.pproDisableTimecodeWarning) {
        checkTimecode(stdParms, id, clip->m_path, answer->adobeTimecode);
    }
    QV_LOG(QV_LOG_INFO, "Getting ClipSSInitData is done, now we can return it to the effect.");
    return imNoErr;
}

}  // namespace

int SDKPerformSourceSettingsCommand(imStdParms* stdParms, imFileAccessRec8* fileAccess,
                                    imSourceSettingsCommandRec* command) {
    // A missing command record carries no data at all: the same answer as a
    // record without its data.
    if (command && command->inDataSize != static_cast<csSDK_int32>(TW_IMPORTER_SETTINGS_INIT_DATA_SIZE)) {
        QV_LOG(QV_LOG_ERR, "SSInitData size (" << command->inDataSize << ") is different than expected size ("
                                               << TW_IMPORTER_SETTINGS_INIT_DATA_SIZE
                                               << "). This can be the BM Source Settings which made this call !");
        displayMsgToTheUser(stdParms,
                            qvUtf8String("Your project uses Tarnwick but has been created with the BM plugin and could "
                                         "not work well because of this (The BM plugin is still running and could be "
                                         "not stable). More informations on our website ") +
                                twDeployment::websiteUrl(),
                            "", 3, true);
        return imOtherErr;
    }
    char* slot = command ? command->ioData : nullptr;
    if (!slot) {
        displayMsgToTheUser(stdParms, kCommandErrorTitle, "SDKPerformSourceSettingsCommand - initData is nullptr !", 3,
                            true);
        return imOtherErr;
    }
    const EffectRecord effectRecord{readRecordPointer(slot)};
    if (!effectRecord.bytes) {
        displayMsgToTheUser(stdParms, kCommandErrorTitle, "SDKPerformSourceSettingsCommand - *initData is nullptr !",
                            3, true);
        return imOtherErr;
    }

    effectRecord.set(twImporterSettingsWire::importerAnswered);
    if (effectRecord.flag(twImporterSettingsWire::reloadOptionsCommand)) return reloadOptions(stdParms);

    const qvUtf8String path =
        fileAccess ? TWI_PathFromUtf16(fileAccess->filepath, kSourceSettingsPathUnits) : qvUtf8String();
    uint64_t id = 0;
    std::shared_ptr<qvBRAW_Clip> clip;
    const bool clipFound = Global_Manager && Global_Manager->GetClipIDFromFilepath(path, id, clip);

    if (effectRecord.flag(twImporterSettingsWire::reloadSidecarCommand)) {
        return reloadSidecar(path, clipFound, clip, id);
    }
    return fillRecord(stdParms, slot, effectRecord, path, clipFound, clip, id);
}

QvResult convertTimecodeToTicks(qvUtf8String& ticksOut, PrSDKTimeSuite* timeSuite, const PrVideoFrameRates& rate,
                                const qvUtf8String& timecode) {
    PrTime ticksPerSecond = 0;
    if (!timeSuite || !timeSuite->GetTicksPerSecond || timeSuite->GetTicksPerSecond(&ticksPerSecond) != 0) {
        return QvResult("convertTimecodeToTicks - Error when trying to get TicksPerSecond from Time Suite");
    }

    int hours = 0, minutes = 0, seconds = 0, frames = 0;
    try {
        const std::string& text = timecode.Str();
        hours = std::stoi(text.substr(0, 2));
        minutes = std::stoi(text.substr(3, 2));
        seconds = std::stoi(text.substr(6, 2));
        frames = std::stoi(text.substr(9, 2));
    } catch (const std::exception&) {
        return QvResult("convertTimecodeToTicks - TimeCode Str has not the good syntax");
    }

    PrTime ticks = static_cast<PrTime>(hours * 3600 + minutes * 60 + seconds) * ticksPerSecond;
    if (rate == kVideoFrameRate_24Drop || rate == kVideoFrameRate_NTSC || rate == kVideoFrameRate_NTSC_HD) {
        ticks = ticks / 1000 * 1001;
    }

    PrTime ticksPerFrame = 0;
    if (!timeSuite->GetTicksPerVideoFrame || timeSuite->GetTicksPerVideoFrame(rate, &ticksPerFrame) != 0) {
        return QvResult("convertTimecodeToTicks - Error when trying to get TicksPerVideoFrame from Time Suite");
    }
    ticksOut = qvUtf8String(std::to_string(ticks + frames * ticksPerFrame));
    return QvResult();
}

QvResult convertFrameRate(PrVideoFrameRates& out, float rate) {
    const long nearest = std::lround(rate);
    if (std::fabs(rate - static_cast<float>(nearest)) < 0.01f) {
        switch (nearest) {
            case 24: out = kVideoFrameRate_24; break;
            case 25: out = kVideoFrameRate_PAL; break;
            case 30: out = kVideoFrameRate_30; break;
            case 50: out = kVideoFrameRate_PAL_HD; break;
            case 60: out = kVideoFrameRate_60; break;
            default: break;
        }
        return QvResult();
    }
    const double scaled = 1001.0 * static_cast<double>(rate);
    if (std::fabs(scaled - std::round(scaled)) < 0.01) {
        switch (nearest) {
            case 24: out = kVideoFrameRate_24Drop; return QvResult();
            case 30: out = kVideoFrameRate_NTSC; return QvResult();
            case 60: out = kVideoFrameRate_NTSC_HD; return QvResult();
            case 25:
            case 50: break;
            default: return QvResult();
        }
    }
    std::ostringstream text;
    text << "FrameRate " << rate << "is Impossible";
    return QvResult(text.str());
}
