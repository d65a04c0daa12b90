#include "_qvBRAW_Importer/Request_PPro.h"

#include "_qvBRAW_Importer/CachePrefsWrapper.h"
#include "_qvBRAW_Importer/PPix.h"
#include "_qvBRAW_Importer/PrivateData.h"

#include "Adobe/qvAdobePPro.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "Manager/twBufferManager.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"
#include "Utils/qvLogging.h"

#include <cstring>

namespace {

QV_PIXEL_FORMAT toQvPixelFormat(const imFrameFormat* format) {
    if (!format) return QV_PIXEL_FORMAT_NONE;
    switch (format->inPixelFormat) {
        case PrPixelFormat_ARGB_4444_8u:
        case PrPixelFormat_XRGB_4444_8u: return QV_PIXEL_FORMAT_ARGB_8_LOW;
        case PrPixelFormat_ARGB_4444_16u:
        case PrPixelFormat_XRGB_4444_16u: return QV_PIXEL_FORMAT_ARGB_16_LOW;
        case PrPixelFormat_BGRA_4444_8u:
        case PrPixelFormat_BGRX_4444_8u: return QV_PIXEL_FORMAT_BGRA_8_LOW;
        case PrPixelFormat_BGRA_4444_16u:
        case PrPixelFormat_BGRX_4444_16u: return QV_PIXEL_FORMAT_BGRA_16_LOW;
        case PrPixelFormat_BGRA_4444_32f:
        case PrPixelFormat_BGRX_4444_32f: return QV_PIXEL_FORMAT_BGRA_32_LOW;
        default: return QV_PIXEL_FORMAT_NONE;
    }
}

QV_APP_ENUM hostOf(const TWI_PrivateData* privateData) {
    csSDK_uint32 fourCC = 0;
    if (privateData->appInfoSuite) {
        privateData->appInfoSuite->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_AppFourCC, &fourCC);
    }
    return getAppEnumFromAppFour(fourCC);
}

void logFormats(const qvBRAW_Request_PPro& request, const qvUtf8String& tag, const imSourceVideoRec& rec,
                bool withImage) {
    const imFrameFormat* formats = rec.inFrameFormats;
    const int count = rec.inNumFrameFormats;
    QV_LOG(QV_LOG_INFO, request.logPrefix() << tag << (formats ? formats[0].inFrameWidth : 0) << "x"
                                            << (formats ? formats[0].inFrameHeight : 0) << " - "
                                            << GetIntentStr(rec.inRenderContext.inIntent) << " - "
                                            << GetPixFmtStr(formats ? static_cast<uint32_t>(formats[0].inPixelFormat) : 0u)
                                            << (withImage ? " - PPix" : " - No PPix"));
    if (!formats) {
        QV_LOG(QV_LOG_INFO, "inFrameFormats in NULL : any format is accepted");
        return;
    }
    if (count < 2) return;
    QV_LOG(QV_LOG_INFO, "There are " << count << " formats asked");
    for (int i = 0; i < count; ++i) {
        QV_LOG(QV_LOG_INFO, "Format " << i << " in list :"
                                      << "  - Width : " << formats[i].inFrameWidth
                                      << "  - Height : " << formats[i].inFrameHeight
                                      << "  - PixelFormat : " << GetPixFmtStr(formats[i].inPixelFormat));
    }
}

}  // namespace

qvBRAW_Request_PPro::qvBRAW_Request_PPro(bool BMInit, qvParallelWorker* worker) : qvBRAW_Request(BMInit, worker) {}

qvBRAW_Request_PPro::~qvBRAW_Request_PPro() {
    // A throw from the log ends the process here: a destructor lets nothing out.
    if (!m_ownsPPix) return;
    if (!m_finished) {
        QV_LOG(QV_LOG_ERR, logPrefix() << "Request should be finished when destroyed !!");
        // One with a job in flight leaves its frame alone: the library may
        // still write into it. One that never reached the library (a setup
        // that failed, a request never queued) has nothing that could, and
        // gives the frame back instead of leaving it with the host for ever.
        if (m_jobInFlight) return;
    }
    if (!m_privateData || !m_privateData->ppixSuite || !m_ppix) return;
    QV_LOG(QV_LOG_INFO, logPrefix() << "Disposing of PPix");
    m_privateData->ppixSuite->Dispose(m_ppix);
    m_ppix = nullptr;
    m_ownsPPix = false;
    QV_LOG(QV_LOG_INFO, logPrefix() << "PPix disposed");
}

std::shared_ptr<qvBRAW_Request_PPro> qvBRAW_Request_PPro::CreateNewRequest(bool BMInit, qvBRAW_Manager* manager) {
    return std::make_shared<qvBRAW_Request_PPro>(BMInit, manager ? manager->m_parallelWorker : nullptr);
}

int32_t qvBRAW_Request_PPro::BeginProcessing() {
    const int32_t base = qvBRAW_Request::BeginProcessing();
    if (base != 0) return base;
    return LaunchHeavyProcessing();
}

int32_t qvBRAW_Request_PPro::LaunchHeavyProcessing() { return qvBRAW_Request::LaunchHeavyProcessing(); }

int32_t qvBRAW_Request_PPro::HeavyProcessing() {
    TWI_PPix_Test_Access(m_privateData, m_ppix);
    const int32_t result = qvBRAW_Request::HeavyProcessing();
    if (result == 0 && m_donkeyEarsAfterProcessing) DrawDonkeyEars();
    return result;
}

int32_t qvBRAW_Request_PPro::FinishProcessing() { return qvBRAW_Request::FinishProcessing(); }

void qvBRAW_Request_PPro::OnCancelled() {}

bool qvBRAW_Request_PPro::operator==(qvBRAW_Request& other) const { return qvBRAW_Request::operator==(other); }

int qvBRAW_Request_PPro::SetupFromSourceVideoRec(const qvUtf8String& tag, TWI_PrivateData*& privateData,
                                                 imSourceVideoRec& rec, unsigned long queueID,
                                                 std::shared_ptr<qvCachePrefsWrapper> wrapper,
                                                 const twImporterAttributes* attributes, bool withImage) {
    m_privateData = privateData;
    m_cachePrefs = wrapper;
    m_queueID = queueID;
    m_donkeyEarsAfterProcessing = false;
    m_donkeyEarsWithoutImage = false;
    const int frame = wrapper ? wrapper->frame : -1;
    const QV_APP_ENUM app = hostOf(privateData);

    if (rec.inNumFrameFormats < 1) {
        QV_LOG(QV_LOG_ERR, "inNumFrameFormats is 0 !!");
        return 99;
    }
    if (g_logger.isLoggingActivated(QV_LOG_INFO)) logFormats(*this, tag, rec, withImage);
    // The size comes from the first format: a count without a list gives none,
    // and such a call can't be served.
    if (!rec.inFrameFormats) return 99;
    const imFrameFormat& format = rec.inFrameFormats[0];

    qvBRAW_Manager* manager = privateData->manager;
    const std::shared_ptr<qvBRAW_Clip> clip = manager ? manager->GetClip(privateData->clipID) : nullptr;
    // A file whose clip never opened has no size to decode at.
    if (!clip) {
        QV_LOG(QV_LOG_ERR, logPrefix() << "No clip " << privateData->clipID << " for this frame");
        return 99;
    }
    if (attributes && attributes->sidecarReloadCount > clip->m_sidecarReloadCount) {
        QV_LOG(QV_LOG_INFO, "Reloading Sidecar from Hidden Params");
        clip->m_sidecarReloadCount = attributes->sidecarReloadCount;
        clip->reload(manager->m_codec);
    }

    const QvResult scaled = setScaleAndDimensions(clip, static_cast<uint32_t>(format.inFrameWidth),
                                                  static_cast<uint32_t>(format.inFrameHeight), true);
    if (scaled.hasError) return 99;

    m_rowBytes = -1;
    char* buffer = nullptr;
    if (withImage) {
        const int created = TWI_New_PPix(privateData, format, &m_ppix, &buffer, &m_rowBytes);
        if (created != 0) {
            QV_LOG(QV_LOG_ERR, "Error during TWI_New_PPix - Can not continue");
            // A frame that came without memory still belongs to this request.
            m_ownsPPix = m_ppix != nullptr;
            return created;
        }
        m_ownsPPix = true;
    }

    const QV_PIXEL_FORMAT pixelFormat = toQvPixelFormat(&format);
    twBufferManager* bufferManager = nullptr;
    if (withImage) {
        bufferManager = new twBufferManager(manager->m_resourceManager, manager->m_manualDecoderFlow1,
                                            manager->m_manualDecoderFlow2, blackmagicRawResourceTypeBufferCPU, false,
                                            nullptr, nullptr);
    }
    const qvUtf8String filePath = privateData->filepath ? *privateData->filepath : qvUtf8String();
    setup(app, static_cast<uint64_t>(static_cast<int64_t>(frame)), static_cast<uint64_t>(privateData->frameCount),
          privateData->clipID, buffer, m_rowBytes, pixelFormat, bufferManager, false, filePath, clip);

    const int32_t expectedRowBytes =
        static_cast<int32_t>(static_cast<uint32_t>(format.inFrameWidth) * bytesPerPixel(pixelFormat));
    if (m_rowBytes != -1 && m_rowBytes != expectedRowBytes) {
        QV_LOG(QV_LOG_WARN, "Target RowByte (PPix) is not expected !! W: " << format.inFrameWidth
                                                                          << " - BytesPerPixel: "
                                                                          << bytesPerPixel(pixelFormat)
                                                                          << " - Rowbyte: " << m_rowBytes);
    }
    setClipAndtwFrameAttributesFromPrefs(attributes, clip, withImage);
    if (withImage) FinishImageBuffer(&privateData);
    return 0;
}

void qvBRAW_Request_PPro::FinishImageBuffer(TWI_PrivateData** privateData) {
    TWI_PPix_Test_Access(privateData ? *privateData : m_privateData, m_ppix);
    // Without the library a frame would show whatever the host's memory held:
    // it shows dark instead. A frame past the clip's end, with the library
    // there, is left as the host made it. A negative stride fails the test of
    // the row bytes and is left alone.
    void* buffer = m_bufferManager ? m_bufferManager->m_finalImageBuffer : nullptr;
    if (!buffer || m_rowBytes < 1 || m_BMInit) return;
    QV_LOG(QV_LOG_INFO, logPrefix() << "m_BMInit false : displaying mono color image");
    std::memset(buffer, 31, static_cast<size_t>(m_rowBytes) * static_cast<size_t>(m_height));
}
