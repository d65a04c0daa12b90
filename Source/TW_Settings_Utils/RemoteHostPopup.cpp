#include "TW_Settings_Utils/RemoteHostPopup.h"

#include "FileSystem/qvFileSystem.h"
#include "Manager/twSettingsVocabulary.h"
#include "Platform/qvPlatformRoots.h"
#include "Popup/PopupClient.h"
#include "TW_Settings_Utils/TW_Presets.h"
#include "Utils/qvJSON.h"
#include "Utils/qvLogging.h"

#include <string>
#include <vector>

namespace {

constexpr const char kPopupTitle[] = "Tarnwick";

}  // namespace

std::string twFindSettingsApplication(const char* bundleIdentifier) {
    const std::string installFolder = qvPlatform::SystemPath(TW_DESKTOP_INSTALL_FOLDER);
    const std::string defaultPath = qvPlatform::SystemPath(TW_DESKTOP_DEFAULT_PATH);
    return Popup::GetServerBinaryPath(bundleIdentifier, TW_DESKTOP_BUNDLE_IDENTIFIER, TW_DESKTOP_BUNDLE_NAME,
                                      TW_DESKTOP_BINARY_NAME, installFolder.c_str(), defaultPath.c_str());
}

void twHostOpenSettings_WithLogs(QV_APP_ENUM app, TABS_ID tab, bool* modified, const char* bundleIdentifier) {
    twHostOpenSettings_WithLogs(appEnum2pxcHost(app), tab, modified, bundleIdentifier);
}

void twHostOpenSettings_WithLogs(PXC_HOST host, TABS_ID tab, bool* modified, const char* bundleIdentifier) {
    QV_JSON request;
    request.initEmptyJSON(true);
    request.addStringToObject(request.document, "popup", qvUtf8String("HostPopup"));
    request.addIntToObject(request.document, "host", static_cast<int>(host));
    request.addIntToObject(request.document, "tab", static_cast<int>(tab));
    const std::string json = request.generateJsonFinalString().Str();

    const std::string binary = twFindSettingsApplication(bundleIdentifier);
    QV_JSON answer;
    const QvResult result = Popup::RemotePopup(kPopupTitle, binary, json, answer);
    if (result.hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to launch Remote Popup Desktop : " << result.toString());
        return;
    }
    if (modified) answer.getBool(answer.document, "modified", *modified);
}

void twOpenSourceSettingsPopup(PXC_HOST host, const char* bundleIdentifier, const qvUtf8String& filePath,
                               bool& modified, twAttributes& attributes) {
    const std::string binary = twFindSettingsApplication(bundleIdentifier);
    qvUtf8String cacheFolder;
    const QvResult folder = qvFileSystem::getOrCreateProductCacheFolder(cacheFolder);
    if (folder.hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to getOrCreateProductCacheFolder : " << folder.toString());
        return;
    }

    const qvUtf8String inputPath = cacheFolder + "/" + TW_POPUP_INPUT_PRESET;
    qvFileSystem::removeFileIfExists(inputPath);
    if (attributes.useClipAndFrameAttributes) {
        TW_Preset preset;
        preset.setValues(attributes.clip, attributes.frame, WB_PRESET_CUSTOM,
                         std::vector<bool>(BRAW_SETTINGS_COUNT, true));
        const QvResult saved = preset.save(inputPath);
        if (saved.hasError) QV_LOG(QV_LOG_ERR, "Impossible to save popup input preset : " << saved.toString());
    }

    const qvUtf8String resultPath = cacheFolder + "/" + TW_POPUP_RESULT_PRESET;
    qvFileSystem::removeFileIfExists(resultPath);

    const std::vector<qvUtf8String> args = {qvUtf8String("-sourceSettingsPopup"),
                                            filePath,
                                            qvUtf8String("0"),
                                            inputPath,
                                            resultPath,
                                            qvUtf8String(std::to_string(static_cast<int>(host)))};
    qvUtf8String stdOut;
    const QvResult launched = Popup::RemotePopupWithArgs(kPopupTitle, qvUtf8String(binary), args, stdOut);
    if (launched.hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to launch Remote Popup Desktop : " << launched.toString());
        return;
    }

    QV_JSON answer;
    const QvResult parsed = Popup::ParseStdOutResult(stdOut.Str(), answer);
    if (parsed.hasError) QV_LOG(QV_LOG_ERR, "Source settings popup answer : " << parsed.toString());
    if (modified) answer.getBool(answer.document, "modified", modified);

    if (!qvFileSystem::doesFilepathExist(resultPath)) return;
    TW_Preset preset;
    const QvResult loaded = preset.load(resultPath);
    if (loaded.hasError) {
        QV_LOG(QV_LOG_ERR, "Preset JSON Output Error " << loaded.toString());
        return;
    }
    WB_Preset wb = WB_PRESET_AS_SHOT;
    attributes.useClipAndFrameAttributes = true;
    preset.getValues(attributes.clip, attributes.frame, wb);
}
