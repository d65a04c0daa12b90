#pragma once
// Making, reading and writing 3D LUTs of the reference decoder.

#include "Format/RefClipModel.h"

#include <string>

namespace twref {

enum class RefLutKind {
    Identity,  // output = input
    Invert,    // 1 - input
    Warm,      // red up, blue down
    Mono,      // luma in all three channels
};

class RefLutTools {
public:
    static RefLut make(RefLutKind kind, uint32_t size, const std::string& name = std::string(),
                       const std::string& title = std::string());
    // .cube text: TITLE, LUT_3D_SIZE and the rows, six decimals.
    static std::string toCube(const RefLut& lut);
    static bool writeCube(const std::string& path, const RefLut& lut);
    // Reads a 3D .cube text (TITLE, LUT_3D_SIZE, DOMAIN_MIN/MAX, rows). 1D LUTs are refused.
    static bool parseCube(const std::string& text, RefLut& lut, std::string& error);
    // "1 2 3 ..." -> floats; false on a token that is not a number.
    static bool parseNumberList(const std::string& text, std::vector<float>& out);
    // Trilinear lookup; rgb in [0,1] (clamped). A LUT of the wrong length passes
    // the colour through.
    static void apply(const RefLut& lut, const float in[3], float out[3]);
};

}  // namespace twref
