#pragma once
// The decoder library as the application uses it: the product's own library
// instance and manager (found beside the application, as the plug-in finds it
// beside itself), one clip opened through the manager's registry, the clip's
// panel data, and frames of it decoded with settings being edited.

#include "Manager/twAttributes.h"
#include "Manager/twSettingsInitData.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <cstdint>
#include <memory>

class qvBRAW_Clip;
class qvBRAW_Manager;

class twClipSession {
public:
    twClipSession();
    ~twClipSession();
    twClipSession(const twClipSession&) = delete;
    twClipSession& operator=(const twClipSession&) = delete;

    // Loads the library and starts a codec; false with `error` in words when
    // the library is missing or refused.
    bool startDecoder(QString& error);
    bool decoderReady() const;
    // Where the library was found, and the version it reports.
    QString libraryPath() const;
    QString libraryVersion() const;

    // Opens the clip and gathers its panel data. False with `error` in words.
    bool openClip(const QString& path, QString& error);
    bool hasClip() const { return static_cast<bool>(m_clip); }
    QString clipPath() const { return m_clipPath; }
    // The clip's ".sidecar" beside it.
    QString sidecarPath() const;
    uint32_t clipWidth() const;
    uint32_t clipHeight() const;
    uint64_t frameCount() const;
    // The panel data; never null once a clip is open.
    std::shared_ptr<twSettingsInitData> panelData() const { return m_data; }
    // The settings the clip decodes with when nothing else is said: the clip's
    // own (recorded, and its sidecar's), in use.
    twAttributes clipAttributes() const;
    // Makes the library read the clip's sidecar again after it was written.
    void reloadSidecar();

    // `frame` of the clip decoded with `attributes`, fitted inside `box`. A null
    // image with `error` when the decode failed.
    QImage decodeFrame(uint64_t frame, const twAttributes& attributes, const QSize& box, QString& error);

    // The path of a clip beside which `extension` replaces the clip's own.
    static QString companionPath(const QString& clipPath, const char* extension);

private:
    std::unique_ptr<qvBRAW_Manager> m_manager;
    std::shared_ptr<qvBRAW_Clip> m_clip;
    std::shared_ptr<twSettingsInitData> m_data;
    QString m_clipPath;
};
