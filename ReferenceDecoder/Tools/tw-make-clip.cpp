// tw-make-clip: makes a reference clip (.braw) for the reference decoder, from
// options or from a JSON description, or prints the description of a clip.

#include "Format/RefClipFile.h"
#include "Format/RefLutTools.h"
#include "Format/RefTimecode.h"
#include "Writer/RefClipWriter.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

using namespace twref;

namespace {

const char* const kUsage =
    "Usage: tw-make-clip [options] OUTPUT.braw\n"
    "       tw-make-clip --dump CLIP.braw\n"
    "\n"
    "Makes a reference clip for the reference decoder: a test chart with a visible\n"
    "frame number, optional test-tone audio and a full set of decode settings.\n"
    "\n"
    "Options (applied in this order: defaults, --json, then the others):\n"
    "  --json FILE          start from a JSON description (see ReferenceDecoder/README.md);\n"
    "                       members it leaves out keep their defaults\n"
    "  --size WxH           picture size (default 1920x1080)\n"
    "  --fps RATE           frame rate, any number (default 24)\n"
    "  --frames N           frame count (default 48)\n"
    "  --camera TEXT        camera type (default \"Reference Camera 6K\")\n"
    "  --timecode TC        start timecode hh:mm:ss:ff (default 01:00:00:00)\n"
    "  --drop-frame         drop-frame timecode\n"
    "  --audio CH[,RATE[,BITS]]  add test-tone audio (default 2,48000,16)\n"
    "  --no-audio           no audio\n"
    "  --lut KIND[:SIZE]    embed a 3D LUT: identity, invert, warm or mono (size 17)\n"
    "  --corrupt N          damage the record of frame N (repeatable)\n"
    "  --fault METHOD=RESULT  make a method or stage fail, e.g. Clip.GetFrameRate=E_FAIL\n"
    "  --frame-bytes N      bit-stream payload bytes per frame (default 2048)\n"
    "  --print              print the description of the clip that is written\n"
    "  --dump CLIP          print the description of an existing clip and exit\n"
    "  -h, --help           this text\n";

int usageError(const std::string& message)
{
    std::cerr << "tw-make-clip: " << message << "\n\n" << kUsage;
    return 2;
}

bool readFile(const std::string& path, std::string& content)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    std::ostringstream text;
    text << file.rdbuf();
    content = text.str();
    return true;
}

bool parseUnsigned(const std::string& text, uint64_t& value)
{
    if (text.empty() || text[0] == '-')
        return false;
    errno = 0;
    char* end = nullptr;
    value = std::strtoull(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0';
}

bool parseFloat(const std::string& text, float& value)
{
    char* end = nullptr;
    value = std::strtof(text.c_str(), &end);
    return !text.empty() && *end == '\0';
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::string part;
    std::istringstream in(text);
    while (std::getline(in, part, separator))
        parts.push_back(part);
    return parts;
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> args(argv + 1, argv + argc);
    std::string output, jsonPath;
    bool print = false;

    // First pass: help, dump and the JSON file, which the other options refine.
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "-h" || args[i] == "--help") {
            std::cout << kUsage;
            return 0;
        }
        if (args[i] == "--dump") {
            if (i + 1 >= args.size())
                return usageError("--dump needs a clip");
            RefClipModel model;
            RefClipLayout layout;
            std::string error;
            if (!RefClipFile::read(args[i + 1], model, layout, error)) {
                std::cerr << "tw-make-clip: " << error << "\n";
                return 1;
            }
            std::cout << RefClipFile::describe(model, true) << "\n";
            std::cout << "# frame records: " << layout.frames.size() << " of " << model.frameCount << "\n";
            return 0;
        }
        if (args[i] == "--json" && i + 1 < args.size())
            jsonPath = args[i + 1];
    }

    RefClipModel model;
    if (!jsonPath.empty()) {
        std::string text, error;
        if (!readFile(jsonPath, text)) {
            std::cerr << "tw-make-clip: cannot read " << jsonPath << "\n";
            return 1;
        }
        if (!RefClipFile::parseDescription(text.data(), text.size(), model, error)) {
            std::cerr << "tw-make-clip: " << jsonPath << ": " << error << "\n";
            return 1;
        }
    }

    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= args.size())
                return false;
            out = args[++i];
            return true;
        };
        std::string v;
        if (a == "--json") {
            ++i;
        } else if (a == "--size") {
            uint64_t w = 0, h = 0;
            const std::vector<std::string> parts = value(v) ? split(v, 'x') : std::vector<std::string>();
            if (parts.size() != 2 || !parseUnsigned(parts[0], w) || !parseUnsigned(parts[1], h) || w > 0xFFFFFFFFu ||
                h > 0xFFFFFFFFu)
                return usageError("--size needs WIDTHxHEIGHT");
            model.width = uint32_t(w);
            model.height = uint32_t(h);
            model.setMetadata("sensor_area_captured",
                              RefValue::numberArray(RefVariantType::U32, {0, 0, double(w), double(h)}));
        } else if (a == "--fps") {
            if (!value(v) || !parseFloat(v, model.frameRate))
                return usageError("--fps needs a number");
        } else if (a == "--frames") {
            if (!value(v) || !parseUnsigned(v, model.frameCount))
                return usageError("--frames needs a count");
        } else if (a == "--camera") {
            if (!value(model.cameraType))
                return usageError("--camera needs a text");
            model.setMetadata("camera_type", RefValue::string(model.cameraType));
        } else if (a == "--timecode") {
            if (!value(model.timecode.start))
                return usageError("--timecode needs hh:mm:ss:ff");
        } else if (a == "--drop-frame") {
            model.timecode.dropFrame = true;
        } else if (a == "--audio") {
            const std::vector<std::string> parts = value(v) ? split(v, ',') : std::vector<std::string>();
            uint64_t n[3] = {2, 48000, 16};
            if (parts.empty() || parts.size() > 3)
                return usageError("--audio needs CHANNELS[,RATE[,BITS]]");
            for (size_t p = 0; p < parts.size(); ++p) {
                if (!parseUnsigned(parts[p], n[p]) || n[p] > 0xFFFFFFFFu)
                    return usageError("--audio needs CHANNELS[,RATE[,BITS]]");
            }
            model.audio.present = true;
            model.audio.channelCount = uint32_t(n[0]);
            model.audio.sampleRate = uint32_t(n[1]);
            model.audio.bitDepth = uint32_t(n[2]);
        } else if (a == "--no-audio") {
            model.audio.present = false;
        } else if (a == "--lut") {
            const std::vector<std::string> parts = value(v) ? split(v, ':') : std::vector<std::string>();
            uint64_t size = 17;
            if (parts.empty() || (parts.size() == 2 && (!parseUnsigned(parts[1], size) || size < 2 || size > kRefMaxLutSize)))
                return usageError("--lut needs KIND[:SIZE]");
            RefLutKind kind;
            if (parts[0] == "identity") kind = RefLutKind::Identity;
            else if (parts[0] == "invert") kind = RefLutKind::Invert;
            else if (parts[0] == "warm") kind = RefLutKind::Warm;
            else if (parts[0] == "mono") kind = RefLutKind::Mono;
            else return usageError("unknown LUT kind " + parts[0]);
            model.embeddedLut = RefLutTools::make(kind, uint32_t(size));
            model.setClipAttributeValue(RefClipAttr::Post3DLUTMode, RefValue::string("Embedded"));
        } else if (a == "--corrupt") {
            uint64_t frame = 0;
            if (!value(v) || !parseUnsigned(v, frame))
                return usageError("--corrupt needs a frame index");
            model.frameOverrideFor(frame).corrupt = true;
        } else if (a == "--fault") {
            const size_t eq = value(v) ? v.find('=') : std::string::npos;
            int32_t result = 0;
            if (eq == std::string::npos || eq == 0 || !refParseResult(v.substr(eq + 1), result))
                return usageError("--fault needs METHOD=RESULT");
            model.addFault(v.substr(0, eq), result);
        } else if (a == "--frame-bytes") {
            uint64_t bytes = 0;
            if (!value(v) || !parseUnsigned(v, bytes) || bytes > 0x7FFFFFFFu)
                return usageError("--frame-bytes needs a byte count");
            model.bitStream.frameBytes = uint32_t(bytes);
        } else if (a == "--print") {
            print = true;
        } else if (!a.empty() && a[0] == '-') {
            return usageError("unknown option " + a);
        } else if (output.empty()) {
            output = a;
        } else {
            return usageError("more than one output file");
        }
    }
    if (output.empty())
        return usageError("no output file");

    std::string error;
    if (!RefClipWriter::write(output, model, &error)) {
        std::cerr << "tw-make-clip: " << error << "\n";
        return 1;
    }
    if (print)
        std::cout << RefClipFile::describe(model, true) << "\n";
    std::cerr << "wrote " << output << ": " << model.width << "x" << model.height << ", " << model.frameRate
              << " fps, " << model.frameCount << " frames, starting " << RefTimecode::forFrame(model, 0)
              << (model.audio.present ? ", with audio" : "") << "\n";
    return 0;
}
