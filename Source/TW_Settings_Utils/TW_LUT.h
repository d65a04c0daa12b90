#pragma once
// A ".cube" LUT, one- or three-dimensional, as users attach them to clips, and
// its place in a sidecar, where the decoder library takes it from.
//
// The grammar read, line by line (a line feed ends a line):
// - an empty line, or one whose first character is "#", is skipped; carriage
//   returns are dropped wherever they stand, and a leading UTF-8 byte-order
//   mark is ignored;
// - tokens are separated by runs of blanks (spaces or tabs);
// - "TITLE": the other tokens joined by one blank, quotation marks kept;
// - "DOMAIN_MIN" / "DOMAIN_MAX" with exactly three numbers set the domain;
// - "LUT_1D_SIZE" / "LUT_3D_SIZE" set the kind, and the size when the second
//   token is an integer;
// - three numbers make a row; three tokens that aren't all numbers are dropped
//   silently; any other line is logged and dropped.
// Numbers are read exactly as strtod reads them (exponent forms included).

#include "String/qvUtf8String.h"
#include "Utils/qvJSON.h"
#include "Utils/qvResult.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

class TW_LUT {
public:
    enum Kind : int32_t { KIND_NONE = 0, KIND_1D = 1, KIND_3D = 2 };

    qvUtf8String title;  // the TITLE, or the file's name
    qvUtf8String name;   // the file's name without folder and extension, with ".cube"
    int32_t kind = KIND_NONE;
    int32_t size = 0;
    double domainMin[3] = {0.0, 0.0, 0.0};
    double domainMax[3] = {1.0, 1.0, 1.0};
    std::vector<std::array<double, 3>> values;  // one per row, in file order

    // Reads the file in one go and parses it. The results:
    //   "Impossible to open cube filepath stream"
    //   "LUT had bad size"
    //   "LUT value vecotr size is not good according to size in header"
    //   "LUT had bad type"
    QvResult loadFromCubeFile(const qvUtf8String& path);
    // The same on a text already in memory; `path` names the file for the
    // title and the name.
    QvResult loadFromCubeText(std::string_view text, const qvUtf8String& path);

    // The "post_3dlut_*" members of the root: mode "Sidecar", name, title,
    // size and the data text (every number with six decimals, one blank
    // between), each old member removed first.
    QvResult addLUTToSidecar(QV_JSON& json) const;

    // The data text alone.
    std::string dataText() const;

private:
    void clear();
};
