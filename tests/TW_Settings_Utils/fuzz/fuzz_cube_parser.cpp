// Any text as a .cube file: no crash, no hang, no allocation beyond the text's
// size; a LUT that loads has the rows its header promises and goes into a
// sidecar that stays a document after the LUT layout pass.
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/TW_LUT.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TW_LUT lut;
    const QvResult result =
        lut.loadFromCubeText(std::string_view(reinterpret_cast<const char*>(data), size), "/fuzz/Input.cube");
    if (!result.isOk()) return 0;
    const uint64_t edge = static_cast<uint64_t>(lut.size);
    const uint64_t rows = lut.kind == TW_LUT::KIND_1D ? edge : edge * edge * edge;
    if (lut.values.size() != rows || lut.name != "Input.cube") std::abort();

    QV_JSON json;
    json.initEmptyJSON(true);
    if (!lut.addLUTToSidecar(json).isOk()) std::abort();
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 4);
    json.document.Accept(writer);
    std::string laidOut;
    if (!LutUtility::layoutLUTMember(std::string(buffer.GetString(), buffer.GetSize()), laidOut).isOk()) std::abort();
    QV_JSON again;
    if (again.readJSONStr(laidOut) != QV_JSON_OK) std::abort();
    return 0;
}
