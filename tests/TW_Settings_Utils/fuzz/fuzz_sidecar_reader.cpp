// Any text as a sidecar: reading never fails badly, and what was read, written
// back into the same document, reads back the same, flags included; the LUT
// layout pass over that document keeps it a document.
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/SidecarUtility.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool sameSettings(const twAttributes& a, const twAttributes& b) {
    return std::memcmp(&a.clip, &b.clip, sizeof(a.clip)) == 0 && a.frame.iso == b.frame.iso &&
           a.frame.kelvin == b.frame.kelvin && a.frame.tint == b.frame.tint &&
           std::memcmp(&a.frame.exposure, &b.frame.exposure, sizeof(float)) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QV_JSON json;
    if (json.readJSONStr(std::string(reinterpret_cast<const char*>(data), size)) != QV_JSON_OK) return 0;
    twAttributes first;
    std::vector<bool> flags(BRAW_SETTINGS_COUNT, false);
    SidecarUtility::fillPrefsFromJSONSidecarValues(json, first.clip, first.frame, flags);

    SidecarUtility::fillJSONFromSidecarValues(json, first.clip, first.frame, flags, true);
    QV_JSON back;
    if (back.readJSONStr(json.generateJsonFinalString()) != QV_JSON_OK) std::abort();
    if (json.document.IsObject()) {
        twAttributes second = first;
        std::vector<bool> secondFlags(BRAW_SETTINGS_COUNT, false);
        if (SidecarUtility::fillPrefsFromJSONSidecarValues(back, second.clip, second.frame, secondFlags) !=
            SidecarUtility::SIDECAR_OK) {
            std::abort();
        }
        flags[BRAW_SETTING_LUT_ENABLED] = flags[BRAW_SETTING_WB_PRESET] = false;
        if (!sameSettings(first, second) || flags != secondFlags) std::abort();
    }

    // The file as the writer lays it out, then the LUT member laid out again.
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 4);
    json.document.Accept(writer);
    std::string laidOut;
    if (LutUtility::layoutLUTMember(std::string(buffer.GetString(), buffer.GetSize()), laidOut).isOk()) {
        QV_JSON again;
        if (again.readJSONStr(laidOut) != QV_JSON_OK) std::abort();
    }
    return 0;
}
