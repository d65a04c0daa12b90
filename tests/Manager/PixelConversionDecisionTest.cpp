// The vocabulary of output formats, the choice of algorithm and library format
// for each of them, and what the conversion does before and instead of a pass:
// no picture asked, a frame the library filled itself, no frame, a pass that
// the CPU path can't make, a GPU manager that has no copy.

#include "ConversionTestSupport.h"
#include "ManagerTestSupport.h"

#include "Manager/qvPixelFormat.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using twtest::ConversionRequest;
using twtest::HostFrame;

TEST(PixelFormat, NamesAndSizesOfEveryValue) {
    const char* const names[] = {"-NONE-",     "ARGB_8_LOW", "ARGB_16_LOW", "ARGB_32_LOW", "BGRA_8_LOW", "BGRA_16_LOW",
                                 "BGRA_32_LOW", "ARGB_8_UP", "ARGB_16_UP",  "ARGB_32_UP",  "BGRA_16_UP", "BGRA_32_UP",
                                 "RGBA_8_UP",  "BGRA_8_UP",  "RGB_8_UP",    "-NONE-"};
    const uint32_t sizes[] = {0, 4, 8, 16, 4, 8, 16, 4, 8, 16, 8, 16, 4, 4, 3, 0};
    for (int value = 0; value < 16; ++value) {
        const auto format = static_cast<QV_PIXEL_FORMAT>(value);
        EXPECT_EQ(toString(format).Str(), names[value]) << value;
        EXPECT_EQ(bytesPerPixel(format), sizes[value]) << value;
    }
    EXPECT_EQ(toString(static_cast<QV_PIXEL_FORMAT>(16)).Str(), "16");
    EXPECT_EQ(toString(static_cast<QV_PIXEL_FORMAT>(255)).Str(), "255");
    EXPECT_EQ(bytesPerPixel(static_cast<QV_PIXEL_FORMAT>(200)), 0u);
}

struct Decision {
    int format;
    bool downscale;
    int algorithm;           // 0: refused with `error`
    uint32_t libraryFormat;
    uint8_t libraryBytes;
    const char* error;
};

const Decision kDecisions[] = {
    {0, false, 0, 0, 0, "No implemented yet : targetPixel -NONE-"},
    {1, false, 2, blackmagicRawResourceFormatRGBAU8, 4, nullptr},
    {2, false, 0, 0, 0, "Unknown BM Pixel format"},
    {3, false, 0, 0, 0, "Unknown BM Pixel format"},
    {4, false, 1, blackmagicRawResourceFormatBGRAU8, 4, nullptr},
    {5, false, 4, blackmagicRawResourceFormatBGRAU16, 8, nullptr},
    {6, false, 7, blackmagicRawResourceFormatBGRAF32, 16, nullptr},
    {7, false, 12, blackmagicRawResourceFormatRGBAU8, 4, nullptr},
    {8, false, 13, blackmagicRawResourceFormatRGBAU16, 8, nullptr},
    {9, false, 14, blackmagicRawResourceFormatRGBF32, 12, nullptr},
    {10, false, 18, blackmagicRawResourceFormatBGRAF32, 16, nullptr},
    {11, false, 19, blackmagicRawResourceFormatBGRAF32, 16, nullptr},
    {12, false, 21, blackmagicRawResourceFormatRGBAU8, 4, nullptr},
    {13, false, 23, blackmagicRawResourceFormatBGRAU8, 4, nullptr},
    {14, false, 0, 0, 0, "No implemented yet : targetPixel RGB_8_UP"},
    {15, false, 0, 0, 0, "No implemented yet : targetPixel -NONE-"},
    {16, false, 0, 0, 0, "No implemented yet : targetPixel 16"},
    {0, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel -NONE-"},
    {1, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel ARGB_8_LOW"},
    {2, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel ARGB_16_LOW"},
    {3, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel ARGB_32_LOW"},
    {4, true, 15, blackmagicRawResourceFormatBGRAU8, 4, nullptr},
    {5, true, 16, blackmagicRawResourceFormatBGRAU16, 8, nullptr},
    {6, true, 17, blackmagicRawResourceFormatBGRAF32, 16, nullptr},
    {7, true, 9, blackmagicRawResourceFormatRGBAU8, 4, nullptr},
    {8, true, 10, blackmagicRawResourceFormatRGBAU16, 8, nullptr},
    {9, true, 11, blackmagicRawResourceFormatRGBF32, 12, nullptr},
    {10, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel BGRA_16_UP"},
    {11, true, 20, blackmagicRawResourceFormatBGRAF32, 16, nullptr},
    {12, true, 22, blackmagicRawResourceFormatRGBAU8, 4, nullptr},
    {13, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel BGRA_8_UP"},
    {14, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel RGB_8_UP"},
    {15, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel -NONE-"},
    {16, true, 0, 0, 0, "No implemented yet : Downscale and targetPixel 16"},
};

TEST(PixelConversionDecision, EveryFormatWithAndWithoutDownscale) {
    for (const Decision& d : kDecisions) {
        SCOPED_TRACE("format " + std::to_string(d.format) + (d.downscale ? " downscaled" : ""));
        ConversionRequest request;
        request.m_pixelFormat = static_cast<QV_PIXEL_FORMAT>(d.format);
        request.m_downscale = d.downscale;
        if (d.error) {
            try {
                request.decidePixelConversionAlgorithm();
                ADD_FAILURE() << "no exception";
            } catch (const std::runtime_error& e) {
                EXPECT_STREQ(e.what(), d.error);
            }
            continue;
        }
        request.decidePixelConversionAlgorithm();
        EXPECT_EQ(request.m_pxlConvAlgo, d.algorithm);
        EXPECT_EQ(request.m_bmPixelFormat, d.libraryFormat);
        EXPECT_EQ(request.m_bmBytesPerPixel, d.libraryBytes);
    }
}

// With a log at INFO in a test home.
class PixelConversionSteps : public twtest::DecoderTest {
protected:
    // A two-pixel, two-row BGRA frame to convert by `algorithm`.
    void prepare(int algorithm) {
        m_request.m_pxlConvAlgo = algorithm;
        m_request.m_pixelFormat = QV_PIXEL_FORMAT_BGRA_8_LOW;
        m_request.m_bmBytesPerPixel = 4;
        m_request.m_srcWidth = m_request.m_width = 2;
        m_request.m_srcHeight = m_request.m_height = 2;
        m_request.m_rect = {0, 0, 2, 2};
        m_request.m_rowBytes = 8;
        m_request.setBuffers(m_source.data(), m_frame.address());
    }
    bool untouched() const { return m_frame.bytes() == HostFrame(8, 2).bytes(); }
    bool logLine(const std::string& needle, const std::string& function = "") const {
        for (const twtest::LogLine& line : twtest::LinesWith(logText(), needle)) {
            if (function.empty() || line.function == function) return true;
        }
        return false;
    }

    std::vector<uint8_t> m_source = std::vector<uint8_t>(16, 9);
    HostFrame m_frame{8, 2};
    ConversionRequest m_request;
};

TEST_F(PixelConversionSteps, NothingRunsWithoutAPictureOrWithTheConversionSkipped) {
    prepare(1);
    m_request.m_imageEnabled = false;
    m_request.m_bufferManager->m_ownsProcessedBuffer = false;
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_EQ(m_request.m_bufferManager->m_finalImageBuffer, m_frame.address());

    m_request.m_imageEnabled = true;
    m_request.m_bufferManager->m_ownsProcessedBuffer = true;
    m_request.m_skipConversion = true;
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_TRUE(untouched());
}

TEST_F(PixelConversionSteps, AFrameTheLibraryFilledItselfBecomesTheFinalBufferWithoutAPass) {
    prepare(1);
    m_request.m_bufferManager->m_ownsProcessedBuffer = false;
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_EQ(m_request.m_bufferManager->m_finalImageBuffer, static_cast<void*>(m_source.data()));
    EXPECT_TRUE(untouched());
    EXPECT_TRUE(logLine(m_request.logPrefix().Str() + "Final Buffer has been filled by BMD directly !"));
}

TEST_F(PixelConversionSteps, NoFinalBufferIsLoggedAndNotAFailure) {
    prepare(1);
    m_request.m_bufferManager->m_finalImageBuffer = nullptr;
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_TRUE(logLine("m_finalImageBuffer is nullptr"));
}

TEST_F(PixelConversionSteps, PassesTheCPUCannotMakeFailWithTheFrameUntouched) {
    for (int algorithm : {18, 19, 20}) {
        prepare(algorithm);
        EXPECT_EQ(m_request.HeavyProcessing(), 1) << algorithm;
        EXPECT_TRUE(logLine("This m_pxlConvAlgo should be only GPU : " + std::to_string(algorithm)));
    }
    for (int algorithm : {0, 3, 8, 23, 99}) {
        prepare(algorithm);
        EXPECT_EQ(m_request.HeavyProcessing(), 1) << algorithm;
    }
    EXPECT_EQ(twtest::LinesWith(logText(), "Pixel Format / Conversion not implemented !").size(), 5u);
    EXPECT_TRUE(untouched());
}

TEST_F(PixelConversionSteps, ADownscaleToNoTargetWritesNothingAndSucceeds) {
    prepare(15);
    m_request.m_rect = {1, 1, 0, 0};
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_TRUE(untouched());
    EXPECT_TRUE(logLine("Render Target bad values to divise ! 0, 0"));
}

TEST_F(PixelConversionSteps, APassIsTimedAndLoggedWithItsFormatAndStride) {
    prepare(1);
    EXPECT_EQ(m_request.HeavyProcessing(), 0);
    EXPECT_FALSE(untouched());
    EXPECT_TRUE(logLine("Final Buffer to Copy ! PXAL: 1 RB:8 W:2 PX: BGRA_8_LOW"));
    EXPECT_TRUE(logLine("ProcessImage dt "));
    EXPECT_TRUE(logLine(" memcpy = "));
}

TEST_F(PixelConversionSteps, AGPUManagerMovesNoBytesAndSaysWhy) {
    const struct {
        uint32_t resourceType;
        std::vector<std::pair<std::string, std::string>> lines;  // message, function ("" any)
    } cases[] = {
        {0x6F636C62, {{"OpenCL not loaded!", ""}, {"GPU Decoding enabled but not working", ""}}},
        {0x6D657462,
         {{"Not supposed to use Metal-CPU hybrid decoding !", "qvBRAW_Request_metalMemcpy"},
          {"Metal not loaded!", ""},
          {"GPU Decoding enabled but not working", ""}}},
        {0x63756462, {{"GPU Decoding enabled but not working", ""}}},
    };
    for (const auto& c : cases) {
        for (int algorithm : {1, 2, 12}) {
            prepare(algorithm);
            m_request.m_bufferManager->m_GPU = true;
            m_request.m_bufferManager->m_resourceType = c.resourceType;
            EXPECT_EQ(m_request.HeavyProcessing(), 0);
            m_request.m_rowBytes = 8;
        }
        for (const auto& [message, function] : c.lines) EXPECT_TRUE(logLine(message, function)) << message;
    }
    // Algorithms 2 and 12 set their first byte themselves; the copies moved nothing.
    const std::vector<uint8_t>& bytes = m_frame.bytes();
    for (size_t i = HostFrame::kGuard; i < HostFrame::kGuard + 16; ++i) {
        if (i == HostFrame::kGuard || i == HostFrame::kGuard + 8) continue;
        EXPECT_EQ(bytes[i], HostFrame::kFill) << i;
    }
}

}  // namespace
