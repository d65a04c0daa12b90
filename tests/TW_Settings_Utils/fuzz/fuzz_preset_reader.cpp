// Any file as a preset: loading never fails badly, and a preset that loads,
// saved and loaded again, is the same preset.
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/TW_Presets.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

std::string scratchPath(const char* name) {
    return "/tmp/tw-fuzz-preset-" + std::to_string(static_cast<long>(getpid())) + "-" + name;
}

bool samePreset(const TW_Preset& a, const TW_Preset& b) {
    std::vector<bool> flagsA = a.m_active, flagsB = b.m_active;
    // A preset without a white balance preset writes no such key, flag included.
    if (a.m_wbPreset == WB_PRESET_NONE) flagsA[BRAW_SETTING_WB_PRESET] = flagsB[BRAW_SETTING_WB_PRESET] = false;
    return std::memcmp(&a.m_clipAttributes, &b.m_clipAttributes, sizeof(twClipAttributes)) == 0 &&
           a.m_frameAttributes.iso == b.m_frameAttributes.iso &&
           a.m_frameAttributes.kelvin == b.m_frameAttributes.kelvin &&
           a.m_frameAttributes.tint == b.m_frameAttributes.tint &&
           std::memcmp(&a.m_frameAttributes.exposure, &b.m_frameAttributes.exposure, sizeof(float)) == 0 &&
           a.m_wbPreset == b.m_wbPreset && flagsA == flagsB && a.m_hasName == b.m_hasName && a.m_name == b.m_name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string input = scratchPath("in.twPreset");
    static const std::string output = scratchPath("out.twPreset");
    FILE* file = std::fopen(input.c_str(), "wb");
    if (!file) return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    TW_Preset preset;
    if (preset.load(input).isOk()) {
        if (!preset.m_isLoaded || preset.getDisplayedName().Empty()) std::abort();
        if (!preset.save(output).isOk()) std::abort();
        TW_Preset again = preset;
        if (!again.load(output).isOk() || !samePreset(preset, again)) std::abort();
        twClipAttributes clip;
        twFrameAttributes frame;
        WB_Preset wb = WB_PRESET_NONE;
        preset.getValues(clip, frame, wb);
    }
    std::remove(input.c_str());
    std::remove(output.c_str());
    return 0;
}
