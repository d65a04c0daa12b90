#pragma once
// Putting a ".cube" LUT into a clip's sidecar. The decoder library wants the
// LUT's numbers laid out over many lines inside the JSON string, which no JSON
// writer produces, so a second pass rewrites that one member by hand:
//     "post_3dlut_sidecar_data": "r g b
//                                 r g b",
// with ten decimals per number. The sidecar is replaced through a temporary
// file: on any failure it is left as it was.

#include "String/qvUtf8String.h"
#include "Utils/qvJSON.h"
#include "Utils/qvResult.h"

#include <string>
#include <string_view>
#include <vector>

class LutUtility {
public:
    // Loads the cube and writes it into the sidecar, keeping every other key.
    // A sidecar that exists but isn't a readable JSON object is never
    // overwritten: "Sidecar exists but can not be loaded .. Aborting because
    // it could erase Data".
    static QvResult addLUTToSidecar(const qvUtf8String& sidecarPath, const qvUtf8String& cubePath);

    // Every blank-separated number of `text`; a token that isn't one is logged
    // and skipped. Always a success.
    static QvResult fromLUTStringToFloatVector(const qvUtf8String& text, std::vector<double>& out);

    // The second pass over the file. `tag` goes into the temporary file's name.
    static QvResult updateSidecarWithGoodLUTSyntax(const qvUtf8String& sidecarPath, const qvUtf8String& tag);

    // The document as the JSON writer lays it out, with the LUT member laid out
    // again when `layOutLut`, replacing the file at `sidecarPath` in one step.
    // `layoutFailed` tells a LUT text that can't be laid out (the file is then
    // untouched) from a failed write.
    static QvResult writeSidecar(QV_JSON& json, const qvUtf8String& sidecarPath, bool layOutLut, bool& layoutFailed);

    // The second pass on a text in memory: `out` receives every line of `in`,
    // each followed by a line feed, with the LUT member's line laid out.
    // Fails, with `out` incomplete, when the member's count of numbers isn't a
    // multiple of 3.
    static QvResult layoutLUTMember(std::string_view in, std::string& out);
};
