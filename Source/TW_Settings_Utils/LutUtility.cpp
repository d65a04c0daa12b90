#include "TW_Settings_Utils/LutUtility.h"

#include "FileSystem/qvFileSystem.h"
#include "TW_Settings_Utils/TW_LUT.h"
#include "TW_Settings_Utils/twFileReplacement.h"
#include "TW_Settings_Utils/twNumberText.h"
#include "Utils/qvLogging.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace {

constexpr std::string_view kLutDataKey = "post_3dlut_sidecar_data";
constexpr std::string_view kMemberIndent = "    ";
constexpr std::string_view kRowIndent = "                                ";  // 32 blanks

// The JSON writer puts each member of the root on a line of its own, four
// blanks in, key first. Only that line is the LUT member: another member whose
// text merely mentions the key, or a nested object's member, is left alone.
bool isLutMemberLine(std::string_view line) {
    if (line.substr(0, kMemberIndent.size()) != kMemberIndent) return false;
    line.remove_prefix(kMemberIndent.size());
    if (line.size() < kLutDataKey.size() + 3 || line[0] != '"') return false;
    if (line.substr(1, kLutDataKey.size()) != kLutDataKey) return false;
    return line[1 + kLutDataKey.size()] == '"' && line[2 + kLutDataKey.size()] == ':';
}

// Each number of a LUT's data text; a token that isn't one is logged and skipped.
template <class OnNumber>
void forEachLutNumber(std::string_view text, OnNumber&& onNumber) {
    twNumberText::forEachToken(text, [&onNumber](std::string_view token) {
        double value = 0.0;
        if (twNumberText::readDouble(token, value)) {
            onNumber(value);
        } else {
            QV_LOG(QV_LOG_ERR, "Error while parsing LUT on : " << token);
        }
    });
}

}  // namespace

QvResult LutUtility::fromLUTStringToFloatVector(const qvUtf8String& text, std::vector<double>& out) {
    out.clear();
    forEachLutNumber(text.Str(), [&out](double value) { out.push_back(value); });
    return QvResult();
}

QvResult LutUtility::layoutLUTMember(std::string_view in, std::string& out) {
    out.clear();
    // Ten decimals instead of six and the row indents make a LUT's text up to
    // three times longer. Reserved, not touched: memory not written costs nothing.
    out.reserve(in.size() * 3 + 64);
    size_t pos = 0;
    while (pos < in.size()) {
        const size_t lineFeed = in.find('\n', pos);
        const size_t lineEnd = lineFeed == std::string_view::npos ? in.size() : lineFeed;
        const std::string_view line = in.substr(pos, lineEnd - pos);
        pos = lineEnd + 1;
        if (!isLutMemberLine(line)) {
            out.append(line.data(), line.size());
            out += '\n';
            continue;
        }
        const bool hadComma = line.substr(line.size() > 10 ? line.size() - 10 : 0).find(',') != std::string_view::npos;
        // The value lies between the first two quotation marks after the colon.
        std::string_view value;
        const size_t colon = line.find(':');
        const size_t open = line.find('"', colon + 1);
        if (open != std::string_view::npos) {
            const size_t close = line.find('"', open + 1);
            if (close != std::string_view::npos) value = line.substr(open + 1, close - open - 1);
        }
        // Numbers go straight from the text to the laid-out text; a count that
        // isn't a multiple of 3 is found at the end, and `out` is then dropped.
        out += kMemberIndent;
        out += '"';
        out += kLutDataKey;
        out += "\": \"";
        size_t count = 0;
        forEachLutNumber(value, [&out, &count](double number) {
            if (count > 0) {
                if (count % 3 == 0) {
                    out += '\n';
                    out += kRowIndent;
                } else {
                    out += ' ';
                }
            }
            twNumberText::appendFixed(out, number, 10);
            ++count;
        });
        if (count % 3 != 0) {
            return QvResult("Impossible to update Sidecar LUT if Lut Vector length is not a multiple of 3");
        }
        out += '"';
        if (hadComma) out += ',';
        out += '\n';
    }
    return QvResult();
}

QvResult LutUtility::updateSidecarWithGoodLUTSyntax(const qvUtf8String& sidecarPath, const qvUtf8String& tag) {
    bool readable = false;
    const std::string in = qvFileSystem::loadFile(sidecarPath, &readable);
    if (!readable) return QvResult("removeInfiniteTagInMedia - Impossible to open stream");
    std::string out;
    const QvResult layout = layoutLUTMember(in, out);
    if (layout.hasError) return layout;

    // Beside the sidecar rather than in the cache folder: only a rename on the
    // same volume replaces the file without a moment where it is half written.
    twFileReplacement replacement(sidecarPath, "tempSidecar_" + tag);
    if (qvFileSystem::storeFile(replacement.tempPath(), out).hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to open out XML Stream : " << replacement.tempPath());
        return QvResult("Impossible to open out XML Stream");
    }
    return replacement.commit();
}

QvResult LutUtility::addLUTToSidecar(const qvUtf8String& sidecarPath, const qvUtf8String& cubePath) {
    TW_LUT lut;
    const QvResult loaded = lut.loadFromCubeFile(cubePath);
    if (loaded.hasError) return loaded;

    QV_JSON json;
    if (qvFileSystem::doesFilepathExist(sidecarPath)) {
        if (json.readJSONFile(sidecarPath) != QV_JSON_OK || !json.document.IsObject()) {
            return QvResult("Sidecar exists but can not be loaded .. Aborting because it could erase Data");
        }
    } else {
        json.initEmptyJSON(true);
    }
    const QvResult added = lut.addLUTToSidecar(json);
    if (added.hasError) return added;

    // Both passes in memory and one replacement of the file: the sidecar is
    // never seen with the LUT on one line, and the text isn't read back.
    bool layoutFailed = false;
    const QvResult written = writeSidecar(json, sidecarPath, true, layoutFailed);
    if (written.hasError && !layoutFailed) return QvResult("Impossible to write Sidecar File");
    return written;
}

QvResult LutUtility::writeSidecar(QV_JSON& json, const qvUtf8String& sidecarPath, bool layOutLut, bool& layoutFailed) {
    layoutFailed = false;
    twFileReplacement replacement(sidecarPath, "sidecar");
    if (!layOutLut) {
        if (json.writeJSONFile(replacement.tempPath()) != QV_JSON_OK) {
            return QvResult("Impossible to write " + replacement.tempPath());
        }
        return replacement.commit();
    }
    // The form of QV_JSON::writeJSONFile, into memory. Room for the LUT text is
    // reserved up front: reserved memory that isn't written costs nothing.
    std::string text;
    {
        size_t estimate = 4096;
        if (json.document.IsObject()) {
            for (auto m = json.document.MemberBegin(); m != json.document.MemberEnd(); ++m) {
                estimate += m->name.GetStringLength() + 64 + (m->value.IsString() ? m->value.GetStringLength() : 0);
            }
        }
        rapidjson::StringBuffer buffer(nullptr, estimate);
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
        writer.SetIndent(' ', 4);
        json.document.Accept(writer);
        const QvResult layout = layoutLUTMember(std::string_view(buffer.GetString(), buffer.GetSize()), text);
        if (layout.hasError) {
            layoutFailed = true;
            return layout;
        }
    }
    return replacement.replaceWith(text);
}
