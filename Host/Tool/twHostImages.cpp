#include "twHostImages.h"

#include "twHostImageWriter.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// The host's channel order B, G, R, A becomes the file's R, G, B, A.
constexpr int kFileFromHost[4] = {2, 1, 0, 3};

uint16_t widen16(uint16_t hostValue) {
    const uint32_t v = (static_cast<uint32_t>(hostValue) * 65535u + 16384u) / 32768u;
    return static_cast<uint16_t>(std::min<uint32_t>(v, 65535u));
}

// One channel of a picture's pixel as a value from 0 to 1.
float unitValue(const twHostPicture& p, const unsigned char* pixel, int channel) {
    switch (p.bytesPerChannel) {
        case 1: return pixel[channel] / 255.0f;
        case 2: {
            uint16_t v;
            std::memcpy(&v, pixel + 2 * channel, 2);
            return std::min(1.0f, v / 32768.0f);
        }
        default: {
            float v;
            std::memcpy(&v, pixel + 4 * channel, 4);
            return v > 0.0f ? std::min(1.0f, v) : 0.0f;
        }
    }
}

// The image module beside the program, loaded on first use and kept.
twHostImageWriteFunc imageWriter(std::string& error) {
    static twHostImageWriteFunc s_write = [] {
        char self[4096] = {};
        const ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
        if (length <= 0) return twHostImageWriteFunc();
        std::string folder(self, static_cast<size_t>(length));
        folder = folder.substr(0, folder.rfind('/') + 1);
        void* module = dlopen((folder + TW_HOST_IMAGE_MODULE).c_str(), RTLD_NOW | RTLD_LOCAL);
        return module ? reinterpret_cast<twHostImageWriteFunc>(dlsym(module, TW_HOST_IMAGE_WRITE_SYMBOL))
                      : twHostImageWriteFunc();
    }();
    if (!s_write) error = std::string("the image module ") + TW_HOST_IMAGE_MODULE + " beside the program can't be loaded";
    return s_write;
}

bool writeImage(const std::string& path, int width, int height, int memoryType, int fileType, const void* data,
                std::string& error) {
    const twHostImageWriteFunc write = imageWriter(error);
    if (!write) return false;
    char text[512] = {};
    if (write(path.c_str(), width, height, memoryType, fileType, data, text, sizeof(text))) return true;
    error = text;
    return false;
}

}  // namespace

std::string twHostImageName(long long frame, const twHostPicture& picture) {
    char name[64];
    std::snprintf(name, sizeof(name), "frame_%06lld.%s", frame, picture.bytesPerChannel == 4 ? "exr" : "png");
    return name;
}

bool twHostWriteImage(const std::string& path, const twHostPicture& picture, bool exrFloat, std::string& error) {
    const size_t pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    switch (picture.bytesPerChannel) {
        case 1: {
            std::vector<unsigned char> rgba(pixels * 4);
            for (size_t i = 0; i < pixels; ++i)
                for (int c = 0; c < 4; ++c) rgba[4 * i + c] = picture.bytes[4 * i + kFileFromHost[c]];
            return writeImage(path, picture.width, picture.height, TW_HOST_IMAGE_U8, TW_HOST_IMAGE_U8, rgba.data(),
                              error);
        }
        case 2: {
            std::vector<uint16_t> rgba(pixels * 4);
            for (size_t i = 0; i < pixels; ++i) {
                for (int c = 0; c < 4; ++c) {
                    uint16_t v;
                    std::memcpy(&v, picture.bytes.data() + 8 * i + 2 * kFileFromHost[c], 2);
                    rgba[4 * i + c] = widen16(v);
                }
            }
            return writeImage(path, picture.width, picture.height, TW_HOST_IMAGE_U16, TW_HOST_IMAGE_U16, rgba.data(),
                              error);
        }
        default: {
            std::vector<float> rgba(pixels * 4);
            for (size_t i = 0; i < pixels; ++i)
                for (int c = 0; c < 4; ++c)
                    std::memcpy(&rgba[4 * i + c], picture.bytes.data() + 16 * i + 4 * kFileFromHost[c], 4);
            return writeImage(path, picture.width, picture.height, TW_HOST_IMAGE_FLOAT,
                              exrFloat ? TW_HOST_IMAGE_FLOAT : TW_HOST_IMAGE_HALF, rgba.data(), error);
        }
    }
}

twHostContactSheet::twHostContactSheet(int thumbWidth, int columns)
    : m_thumbWidth(std::max(1, thumbWidth)), m_columns(std::max(1, columns)) {}

void twHostContactSheet::add(const twHostPicture& picture) {
    if (picture.width <= 0 || picture.height <= 0) return;
    Thumb thumb;
    thumb.width = std::min(m_thumbWidth, picture.width);
    thumb.height = std::max(1, static_cast<int>(static_cast<long long>(picture.height) * thumb.width / picture.width));
    thumb.rgba.assign(static_cast<size_t>(thumb.width) * thumb.height * 4, 0);
    const size_t pixelSize = 4 * static_cast<size_t>(picture.bytesPerChannel);
    // Each thumbnail pixel is the mean of the picture's pixels it covers.
    for (int ty = 0; ty < thumb.height; ++ty) {
        const int y0 = static_cast<int>(static_cast<long long>(ty) * picture.height / thumb.height);
        const int y1 = std::max(y0 + 1, static_cast<int>(static_cast<long long>(ty + 1) * picture.height / thumb.height));
        for (int tx = 0; tx < thumb.width; ++tx) {
            const int x0 = static_cast<int>(static_cast<long long>(tx) * picture.width / thumb.width);
            const int x1 = std::max(x0 + 1, static_cast<int>(static_cast<long long>(tx + 1) * picture.width / thumb.width));
            float sum[4] = {0, 0, 0, 0};
            for (int y = y0; y < y1; ++y) {
                const unsigned char* row = picture.row(y);
                for (int x = x0; x < x1; ++x)
                    for (int c = 0; c < 4; ++c) sum[c] += unitValue(picture, row + x * pixelSize, kFileFromHost[c]);
            }
            const float count = static_cast<float>((y1 - y0) * (x1 - x0));
            unsigned char* out = thumb.rgba.data() + (static_cast<size_t>(ty) * thumb.width + tx) * 4;
            for (int c = 0; c < 4; ++c) out[c] = static_cast<unsigned char>(sum[c] / count * 255.0f + 0.5f);
        }
    }
    m_thumbs.push_back(std::move(thumb));
}

bool twHostContactSheet::write(const std::string& path, std::string& error) const {
    if (m_thumbs.empty()) {
        error = "no frame to put on a contact sheet";
        return false;
    }
    constexpr int kGap = 4;
    int cellWidth = 0;
    int cellHeight = 0;
    for (const Thumb& t : m_thumbs) {
        cellWidth = std::max(cellWidth, t.width);
        cellHeight = std::max(cellHeight, t.height);
    }
    const int count = static_cast<int>(m_thumbs.size());
    const int columns = std::min(m_columns, count);
    const int rows = (count + columns - 1) / columns;
    const int width = kGap + columns * (cellWidth + kGap);
    const int height = kGap + rows * (cellHeight + kGap);
    // A dark grey ground, opaque.
    std::vector<unsigned char> sheet(static_cast<size_t>(width) * height * 4);
    for (size_t i = 0; i < sheet.size(); i += 4) {
        sheet[i] = sheet[i + 1] = sheet[i + 2] = 40;
        sheet[i + 3] = 255;
    }
    for (int i = 0; i < count; ++i) {
        const Thumb& t = m_thumbs[static_cast<size_t>(i)];
        const int left = kGap + (i % columns) * (cellWidth + kGap);
        const int top = kGap + (i / columns) * (cellHeight + kGap);
        for (int y = 0; y < t.height; ++y) {
            std::memcpy(sheet.data() + (static_cast<size_t>(top + y) * width + left) * 4,
                        t.rgba.data() + static_cast<size_t>(y) * t.width * 4, static_cast<size_t>(t.width) * 4);
        }
    }
    return writeImage(path, width, height, TW_HOST_IMAGE_U8, TW_HOST_IMAGE_U8, sheet.data(), error);
}
