#include "Manager/Request.h"

#include "Manager/AttributesSetter.h"
#include "Manager/Clip.h"
#include "Manager/twBufferManager.h"
#include "Manager/twComRelease.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <cmath>
#include <cstring>
#include <sstream>
#include <stdexcept>

std::atomic<uint64_t> qvBRAW_Request::m_uniqueIDCounter{0};

// Built once at load and never changed: read by any thread without a lock.
const std::map<TW_REQUEST_ERROR_CODE, QvColor> qvBRAW_Request::s_errorCodeToColor = {
    {TW_REQUEST_ERROR_NONE, {0, 0, 255, 255}},
    {TW_REQUEST_ERROR_CORRUPTED_FRAME, {255, 0, 0, 255}},
    {TW_REQUEST_ERROR_FIRST_FRAME_INFOS, {255, 165, 0, 255}},
    {TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES, {0, 255, 255, 255}},
    {TW_REQUEST_ERROR_NOT_RAISED_4, {255, 0, 255, 255}},
    {TW_REQUEST_ERROR_READ_JOB, {255, 215, 0, 255}},
    {TW_REQUEST_ERROR_READ_COMPLETE, {128, 128, 0, 255}},
    {TW_REQUEST_ERROR_FRAME_SETUP, {0, 0, 139, 255}},
    {TW_REQUEST_ERROR_DECODE_JOB, {0, 128, 128, 255}},
    {TW_REQUEST_ERROR_NOT_RAISED_9, {210, 105, 30, 255}},
    {TW_REQUEST_ERROR_PROCESS_JOB_CPU, {106, 32, 240, 255}},
    {TW_REQUEST_ERROR_PROCESS_JOB_GPU, {255, 255, 0, 255}},
    {TW_REQUEST_ERROR_PROCESSED_IMAGE, {218, 112, 214, 255}},
};

qvBRAW_Request::qvBRAW_Request(bool BMInit, qvParallelWorker*)
    : m_BMInit(BMInit), m_uniqueID(m_uniqueIDCounter.fetch_add(1)) {
    m_attributes.useClipAndFrameAttributes = false;
}

qvBRAW_Request::~qvBRAW_Request() {
    if (!m_finished) QV_LOG(QV_LOG_ERR, logPrefix().Str() << "qvBRAW_Request Destroyed but not finished !!");
    delete m_bufferManager;
    m_bufferManager = nullptr;
    twReleaseAndNull(m_clipProcessingAttributes);
}

int32_t qvBRAW_Request::ProcessReadFrame(IBlackmagicRawFrame*) { return 0; }

int32_t qvBRAW_Request::HandleError(int code, int hresult, const qvUtf8String& message, bool mutexHeld) {
    std::string text = "(" + std::to_string(code) + ") " + message.Str();
    if (hresult != 0) text += qvUtils::getHRESULTerrorMessage(hresult).Str();
    QV_LOG(QV_LOG_ERR, logPrefix().Str() << text);
    m_errorMsg = text;
    m_errorCode = code;
    m_finished = true;
    OnCancelled();
    if (m_onFinished) {
        m_onFinished(this, mutexHeld);
    } else if (mutexHeld) {
        m_mutex.unlock();
    }
    return 0;
}

int32_t qvBRAW_Request::BeginProcessing() { return 0; }

int32_t qvBRAW_Request::LaunchHeavyProcessing() { return HeavyProcessing(); }

int32_t qvBRAW_Request::FinishProcessing() { return 0; }

bool qvBRAW_Request::operator==(qvBRAW_Request& other) const {
    return m_frame == other.m_frame && m_clipID == other.m_clipID && queueID_match(m_queueID, other.m_queueID) &&
           m_resolutionScale == other.m_resolutionScale && m_pixelFormat == other.m_pixelFormat &&
           m_isSync == other.m_isSync && m_attributes == other.m_attributes;
}

QvResult qvBRAW_Request::setScaleAndDimensions(std::shared_ptr<qvBRAW_Clip> clip, const QvRationalScale& scaleX,
                                               const QvRationalScale& scaleY, const QvRect& rect,
                                               bool allowDownscale) {
    m_width = static_cast<uint32_t>(rect.right - rect.left);
    m_height = static_cast<uint32_t>(rect.bottom - rect.top);
    m_rect = rect;

    const float sx = scaleX.effective();
    const float sy = scaleY.effective();
    if (sx == 0.0f || sy == 0.0f) {
        QV_LOG(QV_LOG_ERR, logPrefix().Str() << "setScaleAndDimensions - downscale num is 0 !");
        return QvResult("setScaleAndDimensions - downscale num is 0 !");
    }
    if (!clip) return QvResult("setScaleAndDimensions - clip is nullptr");

    const qvBRAW_ClipResolution* chosen = nullptr;
    float fx = 0.0f;
    float fy = 0.0f;
    for (auto entry = clip->m_resolutions.rbegin(); entry != clip->m_resolutions.rend(); ++entry) {
        const QvResolution& size = entry->first;
        fx = size.width ? static_cast<float>(clip->m_width) / static_cast<float>(size.width) : 0.0f;
        fy = size.height ? static_cast<float>(clip->m_height) / static_cast<float>(size.height) : 0.0f;
        if (sx >= fx && sy >= fy) {
            chosen = &*entry;
            break;
        }
    }

    if (chosen == nullptr) {
        m_resolutionScale = blackmagicRawResolutionScaleFull;
        QV_LOG(QV_LOG_ERR, logPrefix().Str() << "Dimensions asked bigger than Full Size ! Look for OVER in log.");
    } else {
        m_resolutionScale = chosen->second;
        const QvResolution& size = chosen->first;
        if (allowDownscale) {
            if (std::fabs(sx - fx) < 0.01f && std::fabs(sy - fy) < 0.01f) {
                m_downscale = false;
            } else {
                m_downscale = true;
                m_scaleX = sx / fx;
                m_scaleY = sy / fy;
            }
        } else {
            m_downscale = false;
            // An empty area has nothing to scale, and dividing by its size
            // would make the new edges undefined.
            if ((size.width != m_width || size.height != m_height) && m_width != 0 && m_height != 0) {
                const double rx = static_cast<double>(size.width) / m_width;
                const double ry = static_cast<double>(size.height) / m_height;
                m_rect.left = static_cast<int32_t>(std::floor(m_rect.left * rx));
                m_rect.top = static_cast<int32_t>(std::floor(m_rect.top * ry));
                m_rect.right = static_cast<int32_t>(std::ceil(m_rect.right * rx));
                m_rect.bottom = static_cast<int32_t>(std::ceil(m_rect.bottom * ry));
                m_width = size.width;
                m_height = size.height;
            }
        }
    }

    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        std::ostringstream text;
        text << logPrefix().Str() << "Size " << m_width << "x" << m_height << " - BM Res ";
        if (chosen) {
            text << chosen->first.width << "x" << chosen->first.height << " - Scale " << fx << "/" << fy;
        } else {
            text << "OVER";
        }
        text << " - Downscale ";
        if (m_downscale) {
            text << m_scaleX << " x " << m_scaleY;
        } else {
            text << "No";
        }
        g_logger.log(text.str(), QV_LOG_INFO, __FILE__, __func__);
    }
    return QvResult();
}

QvResult qvBRAW_Request::setScaleAndDimensions(std::shared_ptr<qvBRAW_Clip> clip, uint32_t width, uint32_t height,
                                               bool allowDownscale) {
    if (!clip) return QvResult("setScaleAndDimensions - clip is nullptr");
    QvRationalScale scaleX;
    scaleX.num = static_cast<int32_t>(clip->m_width);
    scaleX.den = width;
    QvRationalScale scaleY;
    scaleY.num = static_cast<int32_t>(clip->m_height);
    scaleY.den = height;
    QvRect rect;
    rect.right = static_cast<int32_t>(width);
    rect.bottom = static_cast<int32_t>(height);
    return setScaleAndDimensions(clip, scaleX, scaleY, rect, allowDownscale);
}

void qvBRAW_Request::setup(QV_APP_ENUM, uint64_t frame, uint64_t frameCount, uint64_t clipID, void* outBuffer,
                           int32_t rowBytes, const QV_PIXEL_FORMAT& format, twBufferManager* bufferManager,
                           bool skipConversion, const qvUtf8String& filePath, std::shared_ptr<qvBRAW_Clip> clip) {
    m_frame = frame;
    m_frameCount = frameCount;
    m_clipID = clipID;
    if (m_bufferManager != bufferManager) delete m_bufferManager;
    m_bufferManager = bufferManager;

    if (m_bufferManager) {
        m_bufferManager->m_finalImageBuffer = outBuffer;
        m_bufferManager->m_outBuffer = outBuffer;
        m_bufferManager->m_queueID = m_queueID;
        m_bufferManager->m_uniqueID = m_uniqueID;
        m_bufferManager->m_clipID = clipID;
        m_bufferManager->m_frame = frame;
    } else {
        m_finished = true;
    }

    m_rowBytes = rowBytes;
    m_pixelFormat = format;
    m_skipConversion = skipConversion;
    m_imageEnabled = frame < frameCount ? m_BMInit : false;

    if (clip && m_recordFileAndTimecode) {
        const size_t slash = filePath.Str().rfind('\\');
        m_fileName = slash == std::string::npos ? filePath.Str() : filePath.Str().substr(slash + 1);
        m_timecode = "";
        m_timecode = clip->getTimecodeForFrame(frame);
    }

    decidePixelConversionAlgorithm();

    QV_LOG(QV_LOG_INFO, logPrefix().Str() << "Request Setup - F:" << frame << " " << toString(m_pixelFormat).Str()
                                          << " - GPU:"
                                          << (m_bufferManager ? (m_bufferManager->m_GPU ? "1" : "0") : "No")
                                          << " - E:" << m_imageEnabled);

    // Direct fill: the library renders straight into the host's buffer when the
    // buffer is tight and the whole frame is wanted in the library's own layout.
    const bool directAlgorithm = m_pxlConvAlgo == 1 || m_pxlConvAlgo == 7 || m_pxlConvAlgo == 19 ||
                                 m_pxlConvAlgo == 21 || m_pxlConvAlgo == 23;
    QvRect whole;
    whole.right = static_cast<int32_t>(m_width);
    whole.bottom = static_cast<int32_t>(m_height);
    if (outBuffer && !m_downscale &&
        static_cast<int64_t>(m_rowBytes) == static_cast<int64_t>(bytesPerPixel(m_pixelFormat)) * m_width &&
        m_bufferManager && !m_bufferManager->m_hybrid && m_rect == whole && directAlgorithm) {
        void* buffer = outBuffer;
        m_bufferManager->setAllocatedProcessedBuffer(
            &buffer, static_cast<uint64_t>(m_rect.bottom) * static_cast<uint64_t>(m_rowBytes));
    }
}

void qvBRAW_Request::setClipAndtwFrameAttributesFromPrefs(const twAttributes* prefs,
                                                          std::shared_ptr<qvBRAW_Clip> clip, bool withImage) {
    if (prefs) m_attributes = *prefs;
    if (!withImage) return;

    HRESULT hr = E_POINTER;
    if (clip) {
        QV_LOCK_TRACED(clip->m_bmClipMutex);
        if (clip->m_BM) hr = clip->m_BM->CloneClipProcessingAttributes(&m_clipProcessingAttributes);
        clip->m_bmClipMutex.unlock();
    }
    if (FAILED(hr) || m_clipProcessingAttributes == nullptr) {
        twReleaseAndNull(m_clipProcessingAttributes);
        HandleError(TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES, hr, "Impossible to Clone Processing Attributes - ", false);
        return;
    }

    if (m_attributes.useClipAndFrameAttributes) {
        const QvResult filled =
            AttributesSetter::fillClipProcessingAttributesFromPrefs(m_clipProcessingAttributes, m_attributes.clip);
        if (filled.hasError) {
            twReleaseAndNull(m_clipProcessingAttributes);
            HandleError(TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES, 0, filled.toString(), false);
            return;
        }
    }

    if (m_bufferManager) {
        const QvResult lut = m_bufferManager->fillLut3DBuffersFromClipProcessing(m_clipProcessingAttributes);
        if (lut.hasError) {
            twReleaseAndNull(m_clipProcessingAttributes);
            HandleError(TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES, 0, lut.toString(), false);
            return;
        }
    }

    // Without settings of its own the request leaves the clip's as the library has them.
    if (!m_attributes.useClipAndFrameAttributes) twReleaseAndNull(m_clipProcessingAttributes);
}

void qvBRAW_Request::Cancel() { m_cancelled = true; }

void qvBRAW_Request::DrawDonkeyEars() {}

void qvBRAW_Request::FinishImageBuffer() {
    void* buffer = m_bufferManager ? m_bufferManager->m_finalImageBuffer : nullptr;
    // Only a request made without the library: a frame past the clip's end
    // with the library present is left as it is.
    if (m_BMInit || buffer == nullptr || m_rowBytes < 1 || m_imageEnabled) return;
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << "m_BMInit false : displaying mono color image");
    std::memset(buffer, 31, static_cast<size_t>(m_height) * static_cast<size_t>(m_rowBytes));
}

bool qvBRAW_Request::queueID_match(uint64_t a, uint64_t b) { return a == b || a == 0xFFFFFFFE || b == 0xFFFFFFFE; }

uint8_t qvBRAW_Request::setBMPixelBytesNumber() {
    switch (m_bmPixelFormat) {
        case blackmagicRawResourceFormatRGBAU8:
        case blackmagicRawResourceFormatBGRAU8: m_bmBytesPerPixel = 4; break;
        case blackmagicRawResourceFormatRGBU16:
        case blackmagicRawResourceFormatRGBU16Planar: m_bmBytesPerPixel = 6; break;
        case blackmagicRawResourceFormatRGBAU16:
        case blackmagicRawResourceFormatBGRAU16: m_bmBytesPerPixel = 8; break;
        case blackmagicRawResourceFormatRGBF32:
        case blackmagicRawResourceFormatRGBF32Planar: m_bmBytesPerPixel = 12; break;
        case blackmagicRawResourceFormatBGRAF32: m_bmBytesPerPixel = 16; break;
        default: throw std::runtime_error("Unknown BM Pixel format");
    }
    return m_bmBytesPerPixel;
}

qvUtf8String qvBRAW_Request::logPrefix() const {
    std::ostringstream text;
    text << "[Q" << m_queueID << "C" << m_clipID << "#" << m_frame << "I" << m_uniqueID << "] ";
    return text.str();
}
