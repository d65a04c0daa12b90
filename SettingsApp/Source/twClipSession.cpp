#include "twClipSession.h"

#include "Manager/Clip.h"
#include "Manager/Instance.h"
#include "Manager/Manager.h"
#include "Manager/Request.h"
#include "Manager/twBufferManager.h"
#include "Utils/qvLogging.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// A frame for a window rather than a host: converted into the image's own
// buffer once processed, nobody to tell when it is cancelled.
class twPreviewRequest : public qvBRAW_Request {
public:
    twPreviewRequest() : qvBRAW_Request(true, nullptr) {}
    int32_t BeginProcessing() override {
        const int32_t result = qvBRAW_Request::BeginProcessing();
        return result != 0 ? result : LaunchHeavyProcessing();
    }
    void OnCancelled() override {}
};

QString text(const qvUtf8String& value) { return QString::fromStdString(value.Str()); }

}  // namespace

twClipSession::twClipSession() = default;

twClipSession::~twClipSession() {
    // The clip goes back to the registry before the manager closes it.
    m_clip.reset();
    m_manager.reset();
}

bool twClipSession::startDecoder(QString& error) {
    if (m_manager) return decoderReady();
    auto* instance = new qvBRAW_Instance(QV_PLUGIN_DESKTOP);
    instance->init();
    m_manager = std::make_unique<qvBRAW_Manager>();
    // The manager owns the instance from here, started or not.
    if (m_manager->init(instance) != 0) {
        error = text(m_manager->m_errorInfo.toString());
        if (error.isEmpty()) error = "The decoder library could not be started.";
        return false;
    }
    return true;
}

bool twClipSession::decoderReady() const { return m_manager && !m_manager->m_errorInfo.hasError && m_manager->m_codec; }

QString twClipSession::libraryPath() const {
    if (!m_manager || !m_manager->m_instance || !m_manager->m_instance->m_BMInit) return QString();
    return text(m_manager->m_instance->m_libraryPath.ToQvUtf8String());
}

QString twClipSession::libraryVersion() const {
    if (!decoderReady() || !m_manager->m_configuration) return QString();
    const char* version = nullptr;
    if (FAILED(m_manager->m_configuration->GetVersion(&version)) || version == nullptr) return QString();
    return QString::fromUtf8(version);
}

bool twClipSession::openClip(const QString& path, QString& error) {
    if (!decoderReady()) {
        if (!startDecoder(error)) return false;
    }
    if (!QFileInfo(path).isFile()) {
        error = "The clip " + path + " does not exist or is not a file.";
        return false;
    }
    uint64_t id = 0;
    const qvUtf8String utf8Path(path.toStdString());
    if (m_manager->AddClipIfNew(utf8Path, id, nullptr) != 0) {
        error = "The decoder library could not open " + path + ". Is it a camera RAW clip (.braw)?";
        return false;
    }
    std::shared_ptr<qvBRAW_Clip> clip = m_manager->GetClip(id);
    if (!clip || !clip->m_opened) {
        error = "The decoder library could not open " + path + ".";
        return false;
    }
    bool generated = false;
    std::shared_ptr<twSettingsInitData> data;
    const QvResult gathered = m_manager->getAllDataFromClip(generated, id, true, data, false);
    if (gathered.hasError || !data) {
        error = "The settings of " + path + " could not be read: " + text(gathered.toString());
        return false;
    }
    m_clip = clip;
    m_data = data;
    m_clipPath = path;
    return true;
}

QString twClipSession::sidecarPath() const { return companionPath(m_clipPath, "sidecar"); }

uint32_t twClipSession::clipWidth() const { return m_clip ? m_clip->m_width : 0; }
uint32_t twClipSession::clipHeight() const { return m_clip ? m_clip->m_height : 0; }
uint64_t twClipSession::frameCount() const { return m_clip ? m_clip->m_frameCount : 0; }

twAttributes twClipSession::clipAttributes() const {
    twAttributes attributes = m_data ? m_data->attributes : twAttributes();
    attributes.useClipAndFrameAttributes = true;
    return attributes;
}

void twClipSession::reloadSidecar() {
    if (!m_clip) return;
    QV_LOCK_TRACED(m_clip->m_bmClipMutex);
    if (m_clip->m_BM) m_clip->m_BM->ReloadSidecarFile();
    m_clip->m_bmClipMutex.unlock();
}

QImage twClipSession::decodeFrame(uint64_t frame, const twAttributes& attributes, const QSize& box, QString& error) {
    if (!m_clip || !decoderReady()) {
        error = "No clip is open.";
        return QImage();
    }
    const QSize full(static_cast<int>(m_clip->m_width), static_cast<int>(m_clip->m_height));
    if (full.isEmpty() || m_clip->m_frameCount == 0) {
        error = "The clip has no picture to show.";
        return QImage();
    }
    const QSize size = full.scaled(box.boundedTo(full).expandedTo(QSize(16, 16)), Qt::KeepAspectRatio);
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::black);

    auto request = std::make_shared<twPreviewRequest>();
    request->m_queueID = 1;
    const QvResult scaled = request->setScaleAndDimensions(m_clip, static_cast<uint32_t>(size.width()),
                                                           static_cast<uint32_t>(size.height()), true);
    if (scaled.hasError) {
        error = text(scaled.toString());
        return QImage();
    }
    auto* buffers = new twBufferManager(m_manager->m_resourceManager, m_manager->m_manualDecoderFlow1,
                                        m_manager->m_manualDecoderFlow2, blackmagicRawResourceTypeBufferCPU, true,
                                        nullptr, nullptr);
    try {
        // Format_ARGB32 lies in memory as B G R A bytes.
        request->setup(QV_APP_ENUM::QV_APP_DESKTOP, std::min<uint64_t>(frame, m_clip->m_frameCount - 1),
                       m_clip->m_frameCount, m_clip->m_ID, image.bits(), static_cast<int32_t>(image.bytesPerLine()),
                       QV_PIXEL_FORMAT_BGRA_8_LOW, buffers, false, m_clip->m_path, m_clip);
    } catch (const std::exception& e) {
        error = QString("The frame could not be prepared: ") + e.what();
        return QImage();
    }
    twAttributes prefs = attributes;
    prefs.useClipAndFrameAttributes = true;
    request->setClipAndtwFrameAttributesFromPrefs(&prefs, m_clip, true);
    if (m_manager->ProcessFrameSync(request) != 0 || request->m_errorCode != 0) {
        error = "The frame could not be decoded: " + text(request->m_errorMsg);
        return QImage();
    }
    return image;
}

QString twClipSession::companionPath(const QString& clipPath, const char* extension) {
    const QFileInfo info(clipPath);
    return info.path() + "/" + info.completeBaseName() + "." + extension;
}
