#include "Manager/Clip.h"

#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

qvBRAW_Clip::qvBRAW_Clip(uint64_t id, const qvUtf8String& path) : m_ID(id), m_path(path) {
    if (!m_path.Empty()) m_bstrPath.SetFromUtf8Str(m_path);
}

qvBRAW_Clip::~qvBRAW_Clip() {
    Close(false);
    releaseLibraryObjects();
    if (m_geometry) {
        m_geometry->Release();
        m_geometry = nullptr;
    }
    m_bstrPath.release();
}

void qvBRAW_Clip::releaseLibraryObjects() {
    if (m_BMEx) {
        m_BMEx->Release();
        m_BMEx = nullptr;
    }
    if (m_BM) {
        m_BM->Release();
        m_BM = nullptr;
    }
}

HRESULT qvBRAW_Clip::openWithLibrary(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry) {
    if (geometry) return codec->OpenClipWithGeometry(m_bstrPath.Get(), geometry, &m_BM);
    return codec->OpenClip(m_bstrPath.Get(), &m_BM);
}

QvResult qvBRAW_Clip::openAndInit(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry) {
    QV_LOCK_TRACED(m_bmClipMutex);
    releaseLibraryObjects();

    HRESULT hr = openWithLibrary(codec, geometry);
    if (FAILED(hr) || m_BM == nullptr) {
        releaseLibraryObjects();
        m_bmClipMutex.unlock();
        return QvResult("Impossible to open Clip with Library ! " + qvUtils::getHRESULTerrorMessage(hr));
    }

    m_geometry = geometry;
    BlackmagicRawAnamorphicRatio anamorphic = blackmagicRawAnamorphicRatioDisabled;
    m_geometry->GetAnamorphicRatio(&anamorphic);
    m_opened = true;
    QV_LOG(QV_LOG_INFO, "Initializing Clip : " << m_ID);

    // Seam: the clip's figures (size, rate, frame count and the resolution
    // table) are read here once the clip's own data lands.

    hr = m_BM->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<LPVOID*>(&m_BMEx));
    if (FAILED(hr) || m_BMEx == nullptr) {
        releaseLibraryObjects();
        m_bmClipMutex.unlock();
        return QvResult("Failed to get Raw Clip Ex from BM - " + qvUtils::getHRESULTerrorMessage(hr));
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
        releaseLibraryObjects();
        m_bmClipMutex.unlock();
        return QvResult("Impossible to open Clip with Library ! " + qvUtils::getHRESULTerrorMessage(hr));
    }
    hr = m_BM->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<LPVOID*>(&m_BMEx));
    if (FAILED(hr) || m_BMEx == nullptr) {
        releaseLibraryObjects();
        m_bmClipMutex.unlock();
        return QvResult("Failed to get Raw Clip Ex from BM - " + qvUtils::getHRESULTerrorMessage(hr));
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
