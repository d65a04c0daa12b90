#include "_qvBRAW_Importer/PPix.h"

#include "_qvBRAW_Importer/PrivateData.h"

#include "Utils/qvChrono.h"
#include "Utils/qvLogging.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr int kNoFrame = static_cast<int>(0x80000002u);

// One pixel of the colour in the frame's own layout; 0 bytes for a format the
// importer does not paint.
size_t makePixel(PrPixelFormat format, unsigned char red, unsigned char green, unsigned char blue,
                 unsigned char (&pixel)[16]) {
    auto put16 = [&pixel](uint16_t a, uint16_t b, uint16_t c, uint16_t d) {
        const uint16_t words[4] = {a, b, c, d};
        std::memcpy(pixel, words, sizeof(words));
        return sizeof(words);
    };
    auto putFloat = [&pixel](float a, float b, float c, float d) {
        const float values[4] = {a, b, c, d};
        std::memcpy(pixel, values, sizeof(values));
        return sizeof(values);
    };
    // 16-bit host frames have their white at 32385 (255 * 127).
    const auto r16 = static_cast<uint16_t>(red * 127);
    const auto g16 = static_cast<uint16_t>(green * 127);
    const auto b16 = static_cast<uint16_t>(blue * 127);
    const float rf = static_cast<float>(red / 255.0);
    const float gf = static_cast<float>(green / 255.0);
    const float bf = static_cast<float>(blue / 255.0);
    switch (format) {
        case PrPixelFormat_BGRA_4444_8u:
        case PrPixelFormat_BGRX_4444_8u:
            pixel[0] = blue;
            pixel[1] = green;
            pixel[2] = red;
            pixel[3] = 255;
            return 4;
        case PrPixelFormat_ARGB_4444_8u:
        case PrPixelFormat_XRGB_4444_8u:
            pixel[0] = 255;
            pixel[1] = red;
            pixel[2] = green;
            pixel[3] = blue;
            return 4;
        case PrPixelFormat_BGRA_4444_16u:
        case PrPixelFormat_BGRX_4444_16u: return put16(b16, g16, r16, 32385);
        case PrPixelFormat_ARGB_4444_16u:
        case PrPixelFormat_XRGB_4444_16u: return put16(32385, r16, g16, b16);
        case PrPixelFormat_BGRA_4444_32f:
        case PrPixelFormat_BGRX_4444_32f: return putFloat(bf, gf, rf, 1.0f);
        case PrPixelFormat_ARGB_4444_32f:
        case PrPixelFormat_XRGB_4444_32f: return putFloat(1.0f, rf, gf, bf);
        default: return 0;
    }
}

}  // namespace

int TWI_New_PPix(TWI_PrivateData* privateData, imFrameFormat format, PPix*** out, char** pixels, int* rowBytes) {
    // The host's rectangle is 32 bits wide on this platform: no size limit
    // beyond the host's own.
    prRect bounds{};
    bounds.left = 0;
    bounds.top = 0;
    bounds.right = format.inFrameWidth;
    bounds.bottom = format.inFrameHeight;

    qvChrono chrono;
    chrono.start();
    PPixHand created = nullptr;
    const prSuiteError result = privateData->ppixCreatorSuite->CreatePPix(&created, PrPPixBufferAccess_ReadWrite,
                                                                           format.inPixelFormat, &bounds);
    const int64_t dt = chrono.getLatestSpanMicro(false);
    if (out) *out = created;
    if (result < 0 || !out) {
        QV_LOG(QV_LOG_ERR, "TWI_New_PPix - CreatePPix Error - maybe a memory problem  ! Error : " << result);
        // A frame made for nobody goes back at once: the host would keep it for ever.
        if (!out && created) privateData->ppixSuite->Dispose(created);
        return result < 0 ? result : kNoFrame;
    }

    int code = 0;
    if (pixels) {
        *pixels = nullptr;
        privateData->ppixSuite->GetPixels(created, PrPPixBufferAccess_ReadWrite, pixels);
        if (!*pixels) code = kNoFrame;
    }
    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        const double megabytes = static_cast<double>(format.inFrameWidth) * format.inFrameHeight * 4 / 1e6;
        QV_LOG(QV_LOG_INFO, "CreatePPix FR" << static_cast<const void*>(created) << " " << format.inFrameWidth << "x"
                                            << format.inFrameHeight << " " << megabytes << " MB  dt " << dt << " us"
                                            << " -> " << (megabytes > 0 ? static_cast<double>(dt) / megabytes : 0.0)
                                            << " us/MB");
    }
    if (rowBytes) {
        csSDK_int32 stride = 0;
        privateData->ppixSuite->GetRowBytes(created, &stride);
        *rowBytes = stride;
    }
    return code;
}

void TWI_PPix_Test_Access(TWI_PrivateData* privateData, PPix** frame) {
    if (!g_logger.isLoggingActivated(QV_LOG_INFO)) return;
    if (!frame) {
        QV_LOG(QV_LOG_INFO, "No Frame!!");
        return;
    }
    char* readWrite = nullptr;
    char* write = nullptr;
    char* read = nullptr;
    privateData->ppixSuite->GetPixels(frame, PrPPixBufferAccess_ReadWrite, &readWrite);
    privateData->ppixSuite->GetPixels(frame, PrPPixBufferAccess_WriteOnly, &write);
    privateData->ppixSuite->GetPixels(frame, PrPPixBufferAccess_ReadOnly, &read);
    QV_LOG(QV_LOG_INFO, " FR" << static_cast<const void*>(frame) << " RW:" << (readWrite ? 1 : 0)
                              << " W:" << (write ? 1 : 0) << " R:" << (read ? 1 : 0));
}

int TWI_FillPPix(TWI_PrivateData* privateData, PPix** frame, unsigned char red, unsigned char green,
                 unsigned char blue) {
    PrSDKPPixSuite* suite = privateData->ppixSuite;
    csSDK_int32 rowBytes = 0;
    suite->GetRowBytes(frame, &rowBytes);
    if (rowBytes < 0) QV_LOG(QV_LOG_ERR, "Negative RB " << rowBytes);
    char* pixels = nullptr;
    suite->GetPixels(frame, PrPPixBufferAccess_WriteOnly, &pixels);
    PrPixelFormat format = PrPixelFormat_Invalid;
    suite->GetPixelFormat(frame, &format);
    prRect bounds{};
    suite->GetBounds(frame, &bounds);

    unsigned char pixel[16];
    const size_t pixelSize = makePixel(format, red, green, blue, pixel);
    if (pixelSize == 0) {
        QV_LOG(QV_LOG_ERR, "PixelFormat not supported !");
        return 0;
    }
    // A frame that gives no memory has nothing to paint.
    if (!pixels) return 0;
    const int width = bounds.right - bounds.left;
    const int height = bounds.bottom - bounds.top;
    if (width <= 0 || height <= 0) return 0;
    // The first row is painted pixel by pixel, the others copied from it; a
    // negative stride walks backwards from the first row in memory.
    auto* first = reinterpret_cast<unsigned char*>(pixels);
    for (int x = 0; x < width; ++x) std::memcpy(first + static_cast<size_t>(x) * pixelSize, pixel, pixelSize);
    const size_t rowSize = static_cast<size_t>(width) * pixelSize;
    for (int y = 1; y < height; ++y) {
        std::memcpy(first + static_cast<ptrdiff_t>(y) * rowBytes, first, rowSize);
    }
    return 0;
}

void TWI_DisposePPix(TWI_PrivateData* privateData, PPix** frame) {
    if (!frame || !privateData || !privateData->ppixSuite) return;
    privateData->ppixSuite->Dispose(frame);
}
