#include "Format/RefLutTools.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace twref {

namespace {

float clamp01(float v) { return v < 0.0f ? 0.0f : (v > 1.0f ? 1.0f : v); }

bool readFloat(const std::string& token, float& out)
{
    if (token.empty())
        return false;
    errno = 0;
    char* end = nullptr;
    const double d = std::strtod(token.c_str(), &end);
    if (end == token.c_str() || *end != '\0' || errno == ERANGE || !std::isfinite(d))
        return false;
    out = static_cast<float>(d);
    return true;
}

}  // namespace

RefLut RefLutTools::make(RefLutKind kind, uint32_t size, const std::string& name, const std::string& title)
{
    RefLut lut;
    static const char* const kNames[] = {"Identity", "Invert", "Warm", "Mono"};
    const char* kindName = kNames[static_cast<int>(kind)];
    lut.name = name.empty() ? std::string(kindName) + ".cube" : name;
    lut.title = title.empty() ? std::string("Reference ") + kindName : title;
    lut.size = size;
    if (size < 2 || size > kRefMaxLutSize) {
        lut.size = 0;
        return lut;
    }
    lut.data.reserve(size_t(size) * size * size * 3);
    const float step = 1.0f / float(size - 1);
    for (uint32_t b = 0; b < size; ++b) {
        for (uint32_t g = 0; g < size; ++g) {
            for (uint32_t r = 0; r < size; ++r) {
                const float in[3] = {r * step, g * step, b * step};
                float out[3] = {in[0], in[1], in[2]};
                switch (kind) {
                case RefLutKind::Identity:
                    break;
                case RefLutKind::Invert:
                    out[0] = 1.0f - in[0];
                    out[1] = 1.0f - in[1];
                    out[2] = 1.0f - in[2];
                    break;
                case RefLutKind::Warm:
                    out[0] = clamp01(in[0] * 1.08f + 0.04f);
                    out[2] = clamp01(in[2] * 0.82f);
                    break;
                case RefLutKind::Mono: {
                    const float y = 0.2126f * in[0] + 0.7152f * in[1] + 0.0722f * in[2];
                    out[0] = out[1] = out[2] = y;
                    break;
                }
                }
                lut.data.insert(lut.data.end(), out, out + 3);
            }
        }
    }
    return lut;
}

std::string RefLutTools::toCube(const RefLut& lut)
{
    std::string out;
    out.reserve(lut.data.size() * 10 + 64);
    out += "TITLE \"" + lut.title + "\"\n";
    out += "LUT_3D_SIZE " + std::to_string(lut.size) + "\n";
    char line[96];
    for (size_t i = 0; i + 2 < lut.data.size(); i += 3) {
        std::snprintf(line, sizeof line, "%.6f %.6f %.6f\n", lut.data[i], lut.data[i + 1], lut.data[i + 2]);
        out += line;
    }
    return out;
}

bool RefLutTools::writeCube(const std::string& path, const RefLut& lut)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return false;
    const std::string text = toCube(lut);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    return static_cast<bool>(file);
}

bool RefLutTools::parseCube(const std::string& text, RefLut& lut, std::string& error)
{
    RefLut result;
    std::istringstream in(text);
    std::string line;
    bool sized = false;
    while (std::getline(in, line)) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        std::istringstream words(line);
        std::vector<std::string> tokens;
        for (std::string t; words >> t;)
            tokens.push_back(t);
        if (tokens.empty() || tokens[0][0] == '#')
            continue;
        if (tokens[0] == "TITLE") {
            const size_t at = line.find("TITLE") + 5;
            std::string title = line.substr(at);
            title.erase(0, title.find_first_not_of(" \t"));
            if (title.size() >= 2 && title.front() == '"' && title.back() == '"')
                title = title.substr(1, title.size() - 2);
            result.title = title;
        } else if (tokens[0] == "LUT_1D_SIZE") {
            error = "1D LUTs are not supported";
            return false;
        } else if (tokens[0] == "LUT_3D_SIZE") {
            char* end = nullptr;
            const long size = tokens.size() == 2 ? std::strtol(tokens[1].c_str(), &end, 10) : 0;
            if (tokens.size() != 2 || *end != '\0' || size < 2 || size > long(kRefMaxLutSize)) {
                error = "bad LUT_3D_SIZE line: " + line;
                return false;
            }
            result.size = static_cast<uint32_t>(size);
            sized = true;
        } else if (tokens[0] == "DOMAIN_MIN" || tokens[0] == "DOMAIN_MAX") {
            continue;
        } else {
            float v[3];
            if (tokens.size() != 3 || !readFloat(tokens[0], v[0]) || !readFloat(tokens[1], v[1]) ||
                !readFloat(tokens[2], v[2])) {
                error = "bad LUT line: " + line;
                return false;
            }
            result.data.insert(result.data.end(), v, v + 3);
        }
    }
    if (!sized) {
        error = "no LUT_3D_SIZE";
        return false;
    }
    if (!result.valid()) {
        error = "LUT has " + std::to_string(result.data.size() / 3) + " rows, expected " +
                std::to_string(size_t(result.size) * result.size * result.size);
        return false;
    }
    lut = std::move(result);
    return true;
}

bool RefLutTools::parseNumberList(const std::string& text, std::vector<float>& out)
{
    std::vector<float> values;
    size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\n' ||
                                     text[pos] == '\r'))
            ++pos;
        if (pos >= text.size())
            break;
        size_t end = pos;
        while (end < text.size() && text[end] != ' ' && text[end] != '\t' && text[end] != '\n' &&
               text[end] != '\r')
            ++end;
        float v = 0;
        if (!readFloat(text.substr(pos, end - pos), v))
            return false;
        values.push_back(v);
        pos = end;
    }
    out = std::move(values);
    return true;
}

void RefLutTools::apply(const RefLut& lut, const float in[3], float out[3])
{
    const uint32_t n = lut.size;
    if (n < 2 || lut.data.size() != size_t(n) * n * n * 3) {
        out[0] = in[0];
        out[1] = in[1];
        out[2] = in[2];
        return;
    }
    const float scale = float(n - 1);
    float f[3];
    uint32_t i0[3];
    for (int c = 0; c < 3; ++c) {
        const float x = clamp01(std::isnan(in[c]) ? 0.0f : in[c]) * scale;
        uint32_t i = static_cast<uint32_t>(x);
        if (i >= n - 1)
            i = n - 2;
        i0[c] = i;
        f[c] = x - float(i);
    }
    auto at = [&](uint32_t r, uint32_t g, uint32_t b) { return &lut.data[((size_t(b) * n + g) * n + r) * 3]; };
    for (int c = 0; c < 3; ++c) {
        const float c000 = at(i0[0], i0[1], i0[2])[c];
        const float c100 = at(i0[0] + 1, i0[1], i0[2])[c];
        const float c010 = at(i0[0], i0[1] + 1, i0[2])[c];
        const float c110 = at(i0[0] + 1, i0[1] + 1, i0[2])[c];
        const float c001 = at(i0[0], i0[1], i0[2] + 1)[c];
        const float c101 = at(i0[0] + 1, i0[1], i0[2] + 1)[c];
        const float c011 = at(i0[0], i0[1] + 1, i0[2] + 1)[c];
        const float c111 = at(i0[0] + 1, i0[1] + 1, i0[2] + 1)[c];
        const float c00 = c000 + (c100 - c000) * f[0];
        const float c10 = c010 + (c110 - c010) * f[0];
        const float c01 = c001 + (c101 - c001) * f[0];
        const float c11 = c011 + (c111 - c011) * f[0];
        const float c0 = c00 + (c10 - c00) * f[1];
        const float c1 = c01 + (c11 - c01) * f[1];
        out[c] = c0 + (c1 - c0) * f[2];
    }
}

}  // namespace twref
