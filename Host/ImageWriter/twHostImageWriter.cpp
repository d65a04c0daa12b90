#include "twHostImageWriter.h"

#include <OpenImageIO/imageio.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

OIIO::TypeDesc typeOf(int type) {
    switch (type) {
        case TW_HOST_IMAGE_U8: return OIIO::TypeDesc::UINT8;
        case TW_HOST_IMAGE_U16: return OIIO::TypeDesc::UINT16;
        case TW_HOST_IMAGE_HALF: return OIIO::TypeDesc::HALF;
        default: return OIIO::TypeDesc::FLOAT;
    }
}

int fail(const std::string& text, char* error, unsigned errorSize) {
    if (error && errorSize > 0) std::snprintf(error, errorSize, "%s", text.c_str());
    return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int twHostImageWrite(const char* path, int width, int height,
                                                                        int memoryType, int fileType,
                                                                        const void* rgba, char* error,
                                                                        unsigned errorSize) {
    try {
        std::unique_ptr<OIIO::ImageOutput> out = OIIO::ImageOutput::create(path);
        if (!out) return fail(std::string(path) + ": " + OIIO::geterror(), error, errorSize);
        OIIO::ImageSpec spec(width, height, 4, typeOf(fileType));
        spec.channelnames = {"R", "G", "B", "A"};
        spec.alpha_channel = 3;
        if (!out->open(path, spec) || !out->write_image(typeOf(memoryType), rgba) || !out->close()) {
            return fail(std::string(path) + ": " + out->geterror(), error, errorSize);
        }
        return 1;
    } catch (const std::exception& e) {
        return fail(std::string(path) + ": " + e.what(), error, errorSize);
    }
}
