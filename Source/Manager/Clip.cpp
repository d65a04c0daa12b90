#include "Manager/Clip.h"

#include "Manager/twComRelease.h"
#include "Manager/twSettingsInitData.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <string>

namespace {

// The library's code of the clip's "anamorphic" metadata text; 0 when unknown.
BlackmagicRawAnamorphicRatio anamorphicRatioOfMetadata(const qvUtf8String& value) {
    static const std::pair<const char*, BlackmagicRawAnamorphicRatio> s_ratios[] = {
        {"2x", blackmagicRawAnamorphicRatio2x},     {"1.8x", blackmagicRawAnamorphicRatio18x},
        {"1.66x", blackmagicRawAnamorphicRatio166x}, {"1.6x", blackmagicRawAnamorphicRatio16x},
        {"1.5x", blackmagicRawAnamorphicRatio15x},   {"1.33x", blackmagicRawAnamorphicRatio133x},
    };
    for (const auto& ratio : s_ratios) {
        if (value.Str() == ratio.first) return ratio.second;
    }
    return 0;
}

}  // namespace

qvBRAW_Clip::qvBRAW_Clip(uint64_t id, const qvUtf8String& path) : m_ID(id), m_path(path) {
    if (!m_path.Empty()) m_bstrPath.SetFromUtf8Str(m_path);
}

qvBRAW_Clip::~qvBRAW_Clip() {
    Close(false);
    // A clip closed while not marked open may still hold objects of a failed opening.
    releaseLibraryObjects();
    m_bstrPath.release();
}

void qvBRAW_Clip::releaseLibraryObjects() {
    twReleaseAndNull(m_BMEx);
    twReleaseAndNull(m_BM);
}

HRESULT qvBRAW_Clip::openWithLibrary(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry) {
    if (codec == nullptr) return E_POINTER;
    if (geometry) return codec->OpenClipWithGeometry(m_bstrPath.Get(), geometry, &m_BM);
    return codec->OpenClip(m_bstrPath.Get(), &m_BM);
}

QvResult qvBRAW_Clip::failOpening(const qvUtf8String& error) {
    releaseLibraryObjects();
    m_bmClipMutex.unlock();
    return QvResult(error);
}

QvResult qvBRAW_Clip::openAndInit(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry) {
    QV_LOCK_TRACED(m_bmClipMutex);
    releaseLibraryObjects();

    HRESULT hr = openWithLibrary(codec, geometry);
    if (FAILED(hr) || m_BM == nullptr) {
        return failOpening("Impossible to open Clip with Library ! " + qvUtils::getHRESULTerrorMessage(hr));
    }

    m_geometry = geometry;
    if (m_geometry) {
        BlackmagicRawAnamorphicRatio anamorphic = blackmagicRawAnamorphicRatioDisabled;
        m_geometry->GetAnamorphicRatio(&anamorphic);
    }
    m_opened = true;
    QV_LOG(QV_LOG_INFO, "Initializing Clip : " << m_ID);

    if (!m_resolutions.empty()) {
        QV_LOG(QV_LOG_ERR, "The clip is already initialized !! It should not be initialized twice !");
    }

    // Some cameras' clips answer no size: the full-scale resolution gives it below.
    bool sizeMissing = false;
    hr = m_BM->GetWidth(&m_width);
    if (FAILED(hr)) {
        QV_LOG(QV_LOG_ERR, "Impossible to get Width !" << qvUtils::getHRESULTerrorMessage(hr));
        sizeMissing = true;
    }
    hr = m_BM->GetHeight(&m_height);
    if (FAILED(hr)) {
        QV_LOG(QV_LOG_ERR, "Impossible to get Height !" << qvUtils::getHRESULTerrorMessage(hr));
        sizeMissing = true;
    }

    hr = m_BM->GetFrameRate(&m_frameRate);
    if (FAILED(hr)) return failOpening("Failed to get FrameRate from BM - " + qvUtils::getHRESULTerrorMessage(hr));
    if (m_frameRate <= 0.0f) return failOpening("FrameRate has a weird value : " + std::to_string(m_frameRate));

    hr = m_BM->GetFrameCount(&m_frameCount);
    if (FAILED(hr)) return failOpening("Failed to get FrameCount from BM - " + qvUtils::getHRESULTerrorMessage(hr));

    IBlackmagicRawClipResolutions* resolutions = nullptr;
    hr = m_BM->QueryInterface(IID_IBlackmagicRawClipResolutions, reinterpret_cast<LPVOID*>(&resolutions));
    if (FAILED(hr) || resolutions == nullptr) {
        twReleaseAndNull(resolutions);
        return failOpening("Impossible to query Resolutions ! " + qvUtils::getHRESULTerrorMessage(hr));
    }

    uint32_t count = 0;
    hr = resolutions->GetResolutionCount(&count);
    if (FAILED(hr)) {
        resolutions->Release();
        return failOpening("Impossible to get ResolutionCount ! " + qvUtils::getHRESULTerrorMessage(hr));
    }
    QV_LOG(QV_LOG_INFO, "Resolutions found : " << count);

    m_resolutions.clear();
    for (uint32_t index = 0; index < count; ++index) {
        uint32_t width = 0;
        uint32_t height = 0;
        hr = resolutions->GetResolution(index, &width, &height);
        if (FAILED(hr)) {
            resolutions->Release();
            return failOpening("Impossible to get Resolution from index " + std::to_string(index) + " - " +
                               qvUtils::getHRESULTerrorMessage(hr));
        }
        const QvResolution resolution(width, height);
        QV_LOG(QV_LOG_INFO, "    - " << resolution.toString());

        uint32_t recordedWidth = 0;
        uint32_t recordedHeight = 0;
        hr = resolutions->GetRecordedResolution(index, &recordedWidth, &recordedHeight);
        if (SUCCEEDED(hr) && QvResolution(recordedWidth, recordedHeight) != resolution) {
            QV_LOG(QV_LOG_WARN,
                   "      - recordedRes is different ! " << QvResolution(recordedWidth, recordedHeight).toString());
        }

        BlackmagicRawResolutionScale scale = 0;
        hr = resolutions->GetClosestScaleForResolution(width, height, &scale);
        if (FAILED(hr)) {
            resolutions->Release();
            return failOpening("Impossible to get ClosestScale from Resolution ! " +
                               qvUtils::getHRESULTerrorMessage(hr));
        }
        uint32_t scaledWidth = 0;
        uint32_t scaledHeight = 0;
        hr = resolutions->GetClosestResolutionForScale(scale, &scaledWidth, &scaledHeight);
        if (FAILED(hr)) {
            resolutions->Release();
            return failOpening("Impossible to get Closest Resolution For Scale ! " +
                               qvUtils::getHRESULTerrorMessage(hr));
        }
        // Frames are asked for by scale: a table that doesn't map back to
        // itself would decode at sizes nobody asked for.
        const QvResolution security(scaledWidth, scaledHeight);
        if (security != resolution) {
            resolutions->Release();
            return failOpening("Scale from Resolution does not return the same Resolution ! SecurityRes : " +
                               security.toString());
        }
        if (scale == blackmagicRawResolutionScaleFull && sizeMissing) {
            QV_LOG(QV_LOG_WARN, "Getting Width or Height failed, so we get them using Resolution with Scale Full !");
            m_width = width;
            m_height = height;
        }
        m_resolutions.emplace_back(resolution, scale);
    }
    resolutions->Release();

    hr = m_BM->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<LPVOID*>(&m_BMEx));
    if (FAILED(hr) || m_BMEx == nullptr) {
        return failOpening("Failed to get Raw Clip Ex from BM - " + qvUtils::getHRESULTerrorMessage(hr));
    }
    m_bmClipMutex.unlock();
    return QvResult();
}

QvResult qvBRAW_Clip::reload(IBlackmagicRaw* codec) {
    QV_LOCK_TRACED(m_bmClipMutex);
    releaseLibraryObjects();
    m_sourceSettingsInitData.reset();
    m_metadata.clear();

    HRESULT hr = openWithLibrary(codec, m_geometry);
    if (FAILED(hr) || m_BM == nullptr) {
        return failOpening("Impossible to open Clip with Library ! " + qvUtils::getHRESULTerrorMessage(hr));
    }
    hr = m_BM->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<LPVOID*>(&m_BMEx));
    if (FAILED(hr) || m_BMEx == nullptr) {
        return failOpening("Failed to get Raw Clip Ex from BM - " + qvUtils::getHRESULTerrorMessage(hr));
    }
    m_opened = true;
    m_bmClipMutex.unlock();
    return QvResult();
}

int32_t qvBRAW_Clip::Close(bool keepSettings) {
    QV_LOCK_TRACED(m_bmClipMutex);
    QV_LOG(QV_LOG_INFO, "[C" << m_ID << "]"
                             << "Closing Clip");
    if (m_BM && m_opened) releaseLibraryObjects();
    if (!keepSettings) m_sourceSettingsInitData.reset();
    m_opened = false;
    m_bmClipMutex.unlock();
    return 0;
}

bool qvBRAW_Clip::doesNeedToBeReloaded() {
    QV_LOCK_TRACED(m_bmClipMutex);
    bool needed = true;
    if (m_BM && m_BMEx) {
        uint32_t size = 0;
        // The library answers from the file itself: a file that went away or
        // was replaced fails here.
        const HRESULT hr = m_BMEx->GetBitStreamSizeBytes(0, &size);
        if (FAILED(hr)) {
            QV_LOG(QV_LOG_WARN, "GetBitStreamSizeBytes call returned E_FAIL => Need to reload");
        } else {
            QV_LOG(QV_LOG_INFO, "No need to reload Clip");
            needed = false;
        }
    } else if (!m_opened) {
        QV_LOG(QV_LOG_INFO, "Clip has been closed and need to be reloaded");
    } else {
        QV_LOG(QV_LOG_ERR, "Clip is opened but has BM var null ! Reloading Clip");
    }
    m_bmClipMutex.unlock();
    return needed;
}

QvResult qvBRAW_Clip::replaceClipByDesqueezedClipIfRectPixel(IBlackmagicRaw* /*codec*/) {
    QV_LOCK_TRACED(m_bmClipMutex);
    const qvUtf8String anamorphic = getClipMetadata("anamorphic", false);
    if (anamorphic.Empty()) {
        m_bmClipMutex.unlock();
        return QvResult();
    }
    QV_LOG(QV_LOG_INFO, "Found Anamorphic Metadata set to : " << anamorphic.Str());
    const BlackmagicRawAnamorphicRatio ratio = anamorphicRatioOfMetadata(anamorphic);
    if (ratio == 0) {
        QV_LOG(QV_LOG_ERR, "ERROR : Anarmorphic Metadata Unknown !");
        m_bmClipMutex.unlock();
        return QvResult();
    }
    if (ratio == blackmagicRawAnamorphicRatioDisabled) {
        m_bmClipMutex.unlock();
        return QvResult();
    }

    IBlackmagicRawClip* desqueezed = nullptr;
    HRESULT hr = E_POINTER;
    if (m_geometry && m_BM) {
        // The clone takes the geometry's values as they are when it is made. The
        // geometry itself is kept for reopening, so it goes back to the ratio it
        // had: a reload reopens the clip as the camera recorded it.
        BlackmagicRawAnamorphicRatio recorded = blackmagicRawAnamorphicRatioDisabled;
        m_geometry->GetAnamorphicRatio(&recorded);
        m_geometry->SetAnamorphicRatio(ratio);
        hr = m_BM->CloneWithGeometry(m_geometry, &desqueezed);
        m_geometry->SetAnamorphicRatio(recorded);
    }
    if (FAILED(hr) || desqueezed == nullptr) {
        twReleaseAndNull(desqueezed);
        m_bmClipMutex.unlock();
        return QvResult("Impossible to Clone Clip with Geometry - " + qvUtils::getHRESULTerrorMessage(hr));
    }
    m_BM->Release();
    m_BM = desqueezed;
    QV_LOG(QV_LOG_INFO,
           "BM Clip has been replaced with Clip with Good Geometry to be desqueezed from Anamorphic Metadata");
    m_bmClipMutex.unlock();
    return QvResult();
}

uint32_t qvBRAW_Clip::getTimecodeFrames(bool& dropFrame, bool lock) const {
    if (lock) QV_LOCK_TRACED(m_bmClipMutex);
    uint32_t baseFrame = TW_NO_TIMECODE_FRAMES;
    IBlackmagicRawClipEx* clipEx = nullptr;
    if (m_BM) m_BM->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<LPVOID*>(&clipEx));
    if (clipEx == nullptr) {
        QV_LOG(QV_LOG_ERR, "Impossible to query ClipEx Interface");
    } else {
        uint32_t frames = 0;
        bool isDropFrame = false;
        if (SUCCEEDED(clipEx->QueryTimecodeInfo(&frames, &isDropFrame))) {
            dropFrame = isDropFrame;
            baseFrame = frames;
        } else {
            QV_LOG(QV_LOG_ERR, "Error when getting Timecode Info from BM");
        }
        clipEx->Release();
    }
    if (lock) m_bmClipMutex.unlock();
    return baseFrame;
}

qvUtf8String qvBRAW_Clip::getTimecodeForFrame(uint64_t frame) {
    QV_LOCK_TRACED(m_bmClipMutex);
    qvBSTR text;
    const HRESULT hr = m_BM ? m_BM->GetTimecodeForFrame(frame, &text.m_str) : E_POINTER;
    qvUtf8String timecode = SUCCEEDED(hr) ? text.ToQvUtf8String() : qvUtf8String();
    if (timecode.Empty()) {
        QV_LOG(QV_LOG_ERR, "getTimecodeForFrame Error : " << qvUtils::getHRESULTerrorMessage(hr));
    }
    text.release();
    m_bmClipMutex.unlock();
    return timecode;
}

QvResult qvBRAW_Clip::getLut3DBuffers(void** out1, void** out2, void* context, void* commandQueue) {
    QV_LOCK_TRACED(m_bmClipMutex);
    IBlackmagicRawClipProcessingAttributes* attributes = nullptr;
    HRESULT hr = E_POINTER;
    if (m_BM) {
        hr = m_BM->QueryInterface(IID_IBlackmagicRawClipProcessingAttributes, reinterpret_cast<LPVOID*>(&attributes));
    }
    if (FAILED(hr) || attributes == nullptr) {
        twReleaseAndNull(attributes);
        m_bmClipMutex.unlock();
        return QvResult("getLut3DBuffers - Impossible to Query ClipProcessingAttributes - " +
                        qvUtils::getHRESULTerrorMessage(hr));
    }
    IBlackmagicRawPost3DLUT* lut = nullptr;
    hr = attributes->GetPost3DLUT(&lut);
    QvResult result;
    if (FAILED(hr)) {
        result = QvResult("getLut3DBuffers - Impossible to GetPost3DLUT - " + qvUtils::getHRESULTerrorMessage(hr));
    } else if (lut) {
        if (context && commandQueue) {
            BlackmagicRawResourceType type = blackmagicRawResourceTypeBufferCPU;
            hr = lut->GetResourceGPU(context, commandQueue, &type, out1);
            if (FAILED(hr)) {
                result = QvResult("getLut3DBuffers - Impossible to GetResourceGPU - " +
                                  qvUtils::getHRESULTerrorMessage(hr));
            }
        }
        if (!result.hasError) {
            hr = lut->GetResourceCPU(out2);
            if (FAILED(hr)) {
                result = QvResult("getLut3DBuffers - Impossible to GetResourceCPU - " +
                                  qvUtils::getHRESULTerrorMessage(hr));
            }
        }
    }
    twReleaseAndNull(lut);
    attributes->Release();
    m_bmClipMutex.unlock();
    return result;
}

twAttributes qvBRAW_Clip::getCameraMetadataPrefs() {
    QV_LOCK_TRACED(m_bmClipMutex);
    const std::shared_ptr<twSettingsInitData> data = m_sourceSettingsInitData;
    m_bmClipMutex.unlock();
    if (!data) {
        QV_LOG(QV_LOG_ERR, "Impossible to get Camera Metadata Prefs - m_sourceSettingsInitData is nullptr");
        return twAttributes();
    }
    twAttributes prefs = data->attributes;
    prefs.useClipAndFrameAttributes = true;
    return prefs;
}
