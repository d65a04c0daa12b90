#include "_qvBRAW_Importer/Video.h"

#include "_qvBRAW_Importer/CachePrefsWrapper.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PPix.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Request_PPro.h"
#include "_qvBRAW_Importer/Utils.h"

#include "Adobe/qvAdobePPro.h"
#include "FileSystem/qvUtf8Path.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"
#include "Utils/qvChrono.h"
#include "Utils/qvLogging.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

namespace {

// The ratio of the full size to a size, 0 for an empty one.
float sizeRatio(uint32_t full, uint32_t size) {
    return size == 0 ? 0.0f : static_cast<float>(full) / static_cast<float>(size);
}

}  // namespace

std::shared_ptr<qvCachePrefsWrapper> TWI_WrapperOfRecord(TWI_PrivateData* privateData, imSourceVideoRec& rec,
                                                         bool newCacheApi) {
    // The record is packed: its members are read into values first, since a
    // reference to one of them may be misaligned.
    void* const prefs = rec.prefs;
    const int prefsSize = rec.prefsSize;
    const long long time = rec.inFrameTime;
    const int numFormats = rec.inNumFrameFormats;
    imFrameFormat* const formats = rec.inFrameFormats;
    PrSDKGuid* const colorProfile = &rec.opaqueColorSpaceIdentifier;
    return std::make_shared<qvCachePrefsWrapper>(privateData, prefs, prefsSize, time, numFormats, formats,
                                                 newCacheApi, colorProfile, false);
}

const twImporterAttributes* TWI_AttributesOfRecord(const imSourceVideoRec& rec) {
    if (!rec.prefs) return nullptr;
    return static_cast<const twImporterAttributes*>(static_cast<const twImporterSharedPrefs*>(rec.prefs));
}

bool TWI_RecordPrefsRefused(const imSourceVideoRec& rec) {
    if (!rec.prefs) return false;
    const QvResult check = checkPrefsSizeAndVersion(rec.prefs, static_cast<unsigned>(rec.prefsSize));
    if (!check.hasError) return false;
    QV_LOG(QV_LOG_ERR, check.toString());
    return true;
}

bool TWI_ManagerWorks(const TWI_PrivateData* privateData) {
    return privateData && privateData->manager && !privateData->manager->m_errorInfo.hasError;
}

int TWI_ProcessFrameSyncLogged(qvBRAW_Manager* manager, const std::shared_ptr<qvBRAW_Request_PPro>& request) {
    qvChrono chrono;
    chrono.start();
    const int32_t result = manager->ProcessFrameSync(request);
    if (result != 0 || request->m_errorCode != 0) {
        QV_LOG(QV_LOG_ERR, request->logPrefix() << "ProcessFrameSync failed => Corrupted frame ?");
    } else {
        QV_LOG(QV_LOG_INFO, request->logPrefix() << "ProcessFrameSync dt " << chrono.getLatestSpanMicro(false)
                                                 << " us");
    }
    return result;
}

void GetFrameNumberFromTime(TWI_PrivateData* privateData, long long time, int* frame, int* frameAgain) {
    if (!frame || !frameAgain) return;
    if (!privateData || privateData->ticksPerSecond == 0) {
        *frame = -1;
        *frameAgain = -1;
        return;
    }
    const double exact = static_cast<double>(time) / static_cast<double>(privateData->ticksPerSecond) *
                         privateData->frameRate;
    // std::round takes halves away from zero.
    *frame = static_cast<int>(static_cast<int64_t>(std::round(exact)));
    *frameAgain = *frame;
}

int SDKGetPreferredFrameSize(imStdParms* stdParms, imPreferredFrameSizeRec* frameSize) {
    if (!frameSize) return imOtherErr;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(frameSize->inPrivateData), [&](TWI_PrivateData* privateData) {
            frameSize->inPixelFormat = PrPixelFormat_BGRA_4444_8u;
            if (!privateData) return static_cast<int>(imOtherErr);
            const std::shared_ptr<qvBRAW_Clip> clip =
                privateData->manager ? privateData->manager->GetClip(privateData->clipID) : nullptr;
            if (!clip) {
                QV_LOG(QV_LOG_INFO, "Clip is nullptr .. " << privateData->clipID);
                return static_cast<int>(imOtherErr);
            }
            QV_LOCK_TRACED(clip->m_bmClipMutex);
            const size_t count = clip->m_resolutions.size();
            const auto index = static_cast<size_t>(frameSize->inIndex);
            int result;
            if (frameSize->inIndex < 0 || index >= count) {
                QV_LOG(QV_LOG_INFO, "Index is superior or equal to the resolution number .. " << frameSize->inIndex
                                                                                                << " - " << count);
                result = imOtherErr;
            } else {
                const QvResolution& resolution = clip->m_resolutions[index].first;
                frameSize->outWidth = static_cast<csSDK_int32>(resolution.width);
                frameSize->outHeight = static_cast<csSDK_int32>(resolution.height);
                QV_LOG(QV_LOG_INFO,
                       "Available Resolution for this Clip: " << resolution.width << "x" << resolution.height);
                result = index + 1 < count ? imIterateFrameSizes : imNoErr;
            }
            clip->m_bmClipMutex.unlock();
            return result;
        });
}

int SelectClipFrameDescriptor(imStdParms*, void*, imClipFrameDescriptorRec* descriptor) {
    if (!descriptor) return imInvalidPreferences;
    const ClipFrameDescriptor& in = descriptor->inDesiredClipFrameDescriptor;
    ClipFrameDescriptor& out = descriptor->outBestFrameDescriptor;
    out.inPixelFormat = in.inPixelFormat;
    out.inPixelAspectRatioNumerator = in.inPixelAspectRatioNumerator;
    out.inPixelAspectRatioDenominator = in.inPixelAspectRatioDenominator;
    out.inFieldType = static_cast<prFieldType>(0);
    out.inQuality = in.inQuality;

    const auto* prefs = static_cast<const twImporterSharedPrefs*>(descriptor->inPrefs);
    QV_LOG_LVL level = QV_LOG_INFO;
    int result = imNoErr;
    float chosen = 0.0f;
    const csSDK_int32 wantedWidth = in.inWidth;
    const csSDK_int32 wantedHeight = in.inHeight;
    if (!prefs) {
        QV_LOG(QV_LOG_ERR, "Prefs are nullptr");
        level = QV_LOG_ERR;
        out.inWidth = 0;
        out.inHeight = 0;
        result = imInvalidPreferences;
    } else if (prefs->version < TW_IMPORTER_PREFS_VERSION) {
        QV_LOG(QV_LOG_ERR, "Prefs version seems not good : " << prefs->version);
        level = QV_LOG_ERR;
        out.inWidth = 0;
        out.inHeight = 0;
        result = imInvalidPreferences;
    } else if (wantedWidth < 1 || wantedHeight < 1) {
        QV_LOG(QV_LOG_WARN, "Input dimensions asked are negatives or null : " << wantedWidth << "/" << wantedHeight);
        level = QV_LOG_WARN;
        out.inWidth = 0;
        out.inHeight = 0;
    } else {
        const uint32_t fullW = prefs->fullRes.width;
        const uint32_t fullH = prefs->fullRes.height;
        const float rx = static_cast<float>(fullW) / static_cast<float>(wantedWidth);
        const float ry = static_cast<float>(fullH) / static_cast<float>(wantedHeight);
        const size_t count = prefs->resolutionCount < TW_IMPORTER_PREFS_MAX_RESOLUTIONS
                                 ? prefs->resolutionCount
                                 : TW_IMPORTER_PREFS_MAX_RESOLUTIONS;
        // The list runs from big to small: the first entry from the end that is
        // still big enough is the smallest that is.
        for (size_t i = count; i-- > 0;) {
            const QvResolution& entry = prefs->resolutions[i];
            const float fx = sizeRatio(fullW, entry.width);
            const float fy = sizeRatio(fullH, entry.height);
            if (rx >= fx && ry >= fy) {
                out.inWidth = static_cast<csSDK_int32>(entry.width);
                out.inHeight = static_cast<csSDK_int32>(entry.height);
                chosen = fx;
                break;
            }
        }
    }
    QV_LOG(level, "imSelectClipFrameDescriptor : " << wantedWidth << "x" << wantedHeight << " PF:" << in.inPixelFormat
                                                   << " -Out: " << out.inWidth << "x" << out.inHeight << " 1/"
                                                   << chosen);
    return result;
}

int ProcessFinishedRequest(imSourceVideoRec* rec, std::shared_ptr<qvCachePrefsWrapper> wrapper,
                           std::shared_ptr<qvBRAW_Request_PPro> request, TWI_PrivateData* privateData,
                           bool addToCache) {
    if (request->m_errorCode == 0) {
        request->FinishProcessing();
        if (addToCache && !request->m_addedToCache) {
            AddToCache(privateData, wrapper, request->m_ppix);
            request->m_addedToCache = true;
        } else {
            TWI_PPix_Test_Access(privateData, request->m_ppix);
        }
        request->m_ownsPPix = false;
        *rec->outFrame = request->m_ppix;
        return 0;
    }

    QV_LOG(QV_LOG_ERR, request->logPrefix() << "Request is OnError ! " << request->m_errorMsg);
    TWI_PPix_Test_Access(privateData, request->m_ppix);
    // A code missing from the table throws std::out_of_range, for the entry to stop.
    const QvColor& color =
        qvBRAW_Request::s_errorCodeToColor.at(static_cast<TW_REQUEST_ERROR_CODE>(request->m_errorCode));
    // A request whose frame could not be made has nothing to paint or to give.
    if (request->m_ppix) TWI_FillPPix(privateData, request->m_ppix, color.red, color.green, color.blue);
    const qvUtf8String fileName =
        privateData->filepath ? qvUtf8Path(*privateData->filepath).Filename(true) : qvUtf8String();
    std::ostringstream title;
    title << "Frame #" << static_cast<int64_t>(request->m_frame) << " from " << fileName
          << " couldn't be decoded. Footage might be corrupted! Please try to import it into DaVinci Resolve to see "
             "if the same frames are corrupted";
    displayMsgToTheUserFromSuite(privateData->errorSuite, title.str(), qvUtf8String(), 3, false);
    *rec->outFrame = request->m_ppix;
    request->m_ownsPPix = false;
    return 0;
}

int SDKGetSourceVideo(imStdParms* stdParms, void*, imSourceVideoRec* sourceVideo) {
    if (!sourceVideo) return malUnknownError;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(sourceVideo->inPrivateData), [&](TWI_PrivateData* privateData) {
            if (!privateData) return static_cast<int>(malUnknownError);
            imSourceVideoRec& rec = *sourceVideo;
            const bool newCacheApi = stdParms && stdParms->imInterfaceVer >= 23;
            auto wrapper = TWI_WrapperOfRecord(privateData, rec, newCacheApi);
            QV_LOG(QV_LOG_WARN, "[Q" << privateData->importerID << "C" << privateData->clipID << "#" << wrapper->frame
                                     << "] SDKGetSourceVideo Called for "
                                     << GetIntentStr(rec.inRenderContext.inIntent));
            if (TWI_RecordPrefsRefused(rec)) return 99;
            PPix** cached = nullptr;
            bool found = false;
            GetFromCache(privateData, wrapper, &cached, &found);
            if (found) {
                QV_LOG(QV_LOG_INFO, "Frame retrieved from cache PPID:" << static_cast<const void*>(cached));
                *rec.outFrame = cached;
                return 0;
            }

            auto request = qvBRAW_Request_PPro::CreateNewRequest(TWI_ManagerWorks(privateData), privateData->manager);
            const int setup = request->SetupFromSourceVideoRec("SDKGetSourceVideo", privateData, rec,
                                                               static_cast<unsigned long>(request->m_uniqueID),
                                                               wrapper, TWI_AttributesOfRecord(rec), true);
            if (setup != 0) return setup;
            TWI_ProcessFrameSyncLogged(privateData->manager, request);
            return ProcessFinishedRequest(&rec, wrapper, request, privateData, true);
        });
}
