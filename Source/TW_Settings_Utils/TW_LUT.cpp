#include "TW_Settings_Utils/TW_LUT.h"

#include "FileSystem/qvFileSystem.h"
#include "TW_Settings_Utils/SidecarUtility.h"
#include "TW_Settings_Utils/twNumberText.h"
#include "Utils/qvLogging.h"

#include <cstring>
#include <limits>

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool readInteger(std::string_view token, int32_t& out) {
    long value = 0;
    if (!qvUtf8String(std::string(token)).ToInt(value)) return false;
    // A size beyond 32 bits is no size any file could hold.
    if (value > std::numeric_limits<int32_t>::max() || value < std::numeric_limits<int32_t>::min()) return false;
    out = static_cast<int32_t>(value);
    return true;
}

// The rows a header of that kind and size promises; false when no file could
// hold that many.
bool expectedRows(int32_t kind, int32_t size, uint64_t& rows) {
    const uint64_t edge = static_cast<uint64_t>(size);
    if (kind == TW_LUT::KIND_1D) {
        rows = edge;
        return true;
    }
    // Beyond 2^21 the cube overflows 64 bits; no real cube comes near.
    if (edge > (1u << 21)) return false;
    rows = edge * edge * edge;
    return true;
}

}  // namespace

void TW_LUT::clear() {
    title.Clear();
    name.Clear();
    kind = KIND_NONE;
    size = 0;
    for (int i = 0; i < 3; ++i) {
        domainMin[i] = 0.0;
        domainMax[i] = 1.0;
    }
    values.clear();
}

QvResult TW_LUT::loadFromCubeFile(const qvUtf8String& path) {
    bool ok = false;
    const std::string bytes = qvFileSystem::loadFile(path, &ok);
    if (!ok) {
        clear();
        return QvResult("Impossible to open cube filepath stream");
    }
    return loadFromCubeText(bytes, path);
}

QvResult TW_LUT::loadFromCubeText(std::string_view text, const qvUtf8String& path) {
    clear();
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());

    std::string withoutReturns;  // reused: only lines with a carriage return are copied
    std::string_view tokens[4];
    size_t pos = 0;
    while (pos < text.size()) {
        const size_t lineFeed = text.find('\n', pos);
        const size_t lineEnd = lineFeed == std::string_view::npos ? text.size() : lineFeed;
        std::string_view line = text.substr(pos, lineEnd - pos);
        pos = lineEnd + 1;
        if (line.empty() || line[0] == '#') continue;
        if (line.find('\r') != std::string_view::npos) {
            withoutReturns.clear();
            for (char c : line) {
                if (c != '\r') withoutReturns += c;
            }
            line = withoutReturns;
        }

        // The first four tokens are kept; beyond that only the count matters.
        size_t count = 0;
        twNumberText::forEachToken(line, [&](std::string_view token) {
            if (count < 4) tokens[count] = token;
            ++count;
        });
        if (count == 0) continue;

        const std::string_view first = tokens[0];
        if (first == "TITLE") {
            // The rest of the line, its blanks folded to one; quotation marks stay.
            std::string joined;
            bool isFirst = true;
            twNumberText::forEachToken(line.substr(line.find("TITLE") + 5), [&](std::string_view token) {
                if (!isFirst) joined += ' ';
                joined.append(token.data(), token.size());
                isFirst = false;
            });
            title = qvUtf8String(joined);
        } else if (first == "DOMAIN_MIN" || first == "DOMAIN_MAX") {
            double domain[3];
            if (count == 4 && twNumberText::readDouble(tokens[1], domain[0]) &&
                twNumberText::readDouble(tokens[2], domain[1]) && twNumberText::readDouble(tokens[3], domain[2])) {
                double* target = first == "DOMAIN_MIN" ? domainMin : domainMax;
                for (int i = 0; i < 3; ++i) target[i] = domain[i];
            }
        } else if (first == "LUT_1D_SIZE" || first == "LUT_3D_SIZE") {
            kind = first == "LUT_1D_SIZE" ? KIND_1D : KIND_3D;
            int32_t parsed = 0;
            if (count >= 2 && readInteger(tokens[1], parsed)) {
                size = parsed;
                uint64_t rows = 0;
                // Room for the rows the header promises, but never more than the
                // text could hold (a row takes at least six bytes).
                if (parsed > 0 && expectedRows(kind, parsed, rows)) {
                    values.reserve(static_cast<size_t>(std::min<uint64_t>(rows, text.size() / 6 + 1)));
                }
            }
        } else if (count == 3) {
            std::array<double, 3> row;
            if (twNumberText::readDouble(tokens[0], row[0]) && twNumberText::readDouble(tokens[1], row[1]) &&
                twNumberText::readDouble(tokens[2], row[2])) {
                values.push_back(row);
            }
        } else {
            QV_LOG(QV_LOG_ERR, "LUT line not parsed : " << line);
        }
    }

    if (title.Size() == 0) title = qvFileSystem::getFilenameFromPath(path, true);
    name = qvFileSystem::getFilenameFromPath(path, false) + ".cube";

    if (size < 1) return QvResult("LUT had bad size");
    if (kind == KIND_1D || kind == KIND_3D) {
        uint64_t rows = 0;
        if (!expectedRows(kind, size, rows) || rows != values.size()) {
            return QvResult("LUT value vecotr size is not good according to size in header");
        }
    } else if (kind == KIND_NONE) {
        return QvResult("LUT had bad type");
    }
    return QvResult();
}

std::string TW_LUT::dataText() const {
    std::string data;
    // "-0.123456 " at most for the usual range; more only for odd values.
    data.reserve(values.size() * 3 * 10);
    for (const std::array<double, 3>& row : values) {
        for (double value : row) {
            twNumberText::appendFixed(data, value, 6);
            data += ' ';
        }
    }
    if (!data.empty()) data.pop_back();
    return data;
}

QvResult TW_LUT::addLUTToSidecar(QV_JSON& json) const {
    rapidjson::Value& root = json.document;
    if (!root.IsObject()) return QvResult("Impossible to add the LUT : the sidecar is not a JSON object");
    const char* keys[] = {"post_3dlut_mode", "post_3dlut_sidecar_name", "post_3dlut_sidecar_title",
                          "post_3dlut_sidecar_size", "post_3dlut_sidecar_data"};
    for (const char* key : keys) SidecarUtility::removeAllMembers(json, key);
    json.addStringToObject(root, keys[0], qvUtf8String("Sidecar"));
    json.addStringToObject(root, keys[1], name);
    json.addStringToObject(root, keys[2], title);
    json.addIntToObject(root, keys[3], size);
    std::string data = dataText();
    qvUtf8String dataString;
    dataString.MoveFromUtf8String(data);
    json.addStringToObject(root, keys[4], dataString);
    return QvResult();
}
