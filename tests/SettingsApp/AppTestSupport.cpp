#include "AppTestSupport.h"

#include "Common/TW_Debug_Options.h"
#include "Common/twUtils.h"
#include "Platform/qvPlatformRoots.h"
#include "Writer/RefClipWriter.h"

#include <filesystem>
#include <stdexcept>

namespace twtest {

AppTestRoots::AppTestRoots() {
    twUtils::initQvCommon();
    TWDebugOptions::loadDebugOptions();
    const std::string folder =
        qvPlatform::SystemPath("/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick");
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(TW_DECODER_LIBRARY, folder + "/libBlackmagicRawAPI.so",
                               std::filesystem::copy_options::overwrite_existing);
}

QString AppTestRoots::writeClip(const std::string& name,
                                const std::function<void(twref::RefClipModel&)>& change) const {
    const std::string path = m_roots.folder().join(name);
    twref::RefClipModel model = twref::RefClipWriter::makeClip(640, 360, 24.0f, 6);
    if (change) change(model);
    std::string error;
    if (!twref::RefClipWriter::write(path, model, &error)) {
        throw std::runtime_error(error);
    }
    return QString::fromStdString(path);
}

QString AppTestRoots::iniPath() const {
    return QString::fromStdString(m_roots.home()) + "/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini";
}

twSettingsInitData narrowClipData() {
    twSettingsInitData data;
    data.ready = true;
    data.colorScienceList[0] = 5;
    data.colorScienceCount = 1;
    const char* gamuts[] = {"Blackmagic Design", "Rec.709"};
    for (int i = 0; i < 2; ++i) twCopyFixedText(data.gamutList[i], 64, gamuts[i]);
    data.gamutCount = 2;
    const char* gammas[] = {"Blackmagic Design Film", "Blackmagic Design Video", TW_CUSTOM_GAMMA_NAME};
    for (int i = 0; i < 3; ++i) twCopyFixedText(data.gammaList[i], 64, gammas[i]);
    data.gammaCount = 3;
    twGammaControlsValues film;
    film.contrast = 1.25f;
    film.saturation = 1.5f;
    data.gammaControlsPerPreset[0][0] = {true, film};
    const uint32_t isos[] = {400, 1600, 3200};
    for (int i = 0; i < 3; ++i) data.isoList[i] = isos[i];
    data.isoCount = 3;
    data.colorTempMin = 2500;
    data.colorTempMax = 10000;
    data.tintMin = -50;
    data.tintMax = 50;
    data.exposureMin = -3.0f;
    data.exposureMax = 3.0f;
    const float minima[] = {0.0f, 0.002f, 0.0f, 0.0f, 0.002f, 0.0f, -1.0f};
    const float maxima[] = {4.0f, 1.998f, 1.0f, 1.998f, 2.0f, 2.0f, 1.0f};
    for (int i = 0; i < 7; ++i) {
        data.toneCurveMin[i] = minima[i];
        data.toneCurveMax[i] = maxima[i];
    }
    data.embeddedLutAvailable = false;
    data.sidecarLutAvailable = true;
    data.attributes.useClipAndFrameAttributes = true;
    data.attributes.clip.colorScienceGen = 5;
    twCopyFixedText(data.attributes.clip.gamut, 64, "Rec.709");
    data.attributes.frame.iso = 1600;
    data.attributes.frame.kelvin = 4300;
    data.attributes.frame.tint = -12;
    data.attributes.frame.exposure = 0.5f;
    return data;
}

}  // namespace twtest
