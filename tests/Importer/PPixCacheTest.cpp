// Frames made, painted and cached by the importer's own functions, against the
// simulated host's suites: the host owns the frames and keys its cache exactly.

#include "TempFolder.h"
#include "twSimFrameRef.h"
#include "twSimHost.h"

#include "_qvBRAW_Importer/AsyncImporter.h"
#include "_qvBRAW_Importer/CachePrefsWrapper.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PPix.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Video.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// The bytes of one pixel of (red, green, blue) as a host expects them, written
// out by hand from the formats' published layouts.
std::vector<unsigned char> expectedPixel(PrPixelFormat format, unsigned char r, unsigned char g, unsigned char b) {
    std::vector<unsigned char> out;
    auto push16 = [&out](unsigned v) {
        out.push_back(static_cast<unsigned char>(v & 0xFF));
        out.push_back(static_cast<unsigned char>(v >> 8));
    };
    auto pushFloat = [&out](float v) {
        unsigned char bytes[4];
        std::memcpy(bytes, &v, 4);
        out.insert(out.end(), bytes, bytes + 4);
    };
    switch (format) {
        case PrPixelFormat_BGRA_4444_8u:
        case PrPixelFormat_BGRX_4444_8u: return {b, g, r, 255};
        case PrPixelFormat_ARGB_4444_8u:
        case PrPixelFormat_XRGB_4444_8u: return {255, r, g, b};
        case PrPixelFormat_BGRA_4444_16u:
        case PrPixelFormat_BGRX_4444_16u:
            for (unsigned v : {b * 127u, g * 127u, r * 127u, 32385u}) push16(v);
            return out;
        case PrPixelFormat_ARGB_4444_16u:
        case PrPixelFormat_XRGB_4444_16u:
            for (unsigned v : {32385u, r * 127u, g * 127u, b * 127u}) push16(v);
            return out;
        case PrPixelFormat_BGRA_4444_32f:
        case PrPixelFormat_BGRX_4444_32f:
            for (float v : {b / 255.0f, g / 255.0f, r / 255.0f, 1.0f}) pushFloat(v);
            return out;
        default:
            for (float v : {1.0f, r / 255.0f, g / 255.0f, b / 255.0f}) pushFloat(v);
            return out;
    }
}

}  // namespace

class PPixCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_host = std::make_unique<twSimHost>();
        m_handle = m_host->memory().newHandle(sizeof(TWI_PrivateData), true);
        ASSERT_EQ(TWI_PrivateData_AcquireSuites(m_host->stdParms(), record()), 0);
        record()->importerID = 42;
        record()->frameRate = 25.0;
    }
    void TearDown() override {
        TWI_PrivateData_Release(m_host->stdParms(), record());
        m_host->memory().disposeHandle(m_handle);
        m_host->cache().expireAll();
        EXPECT_TRUE(m_host->leakReport().clean()) << m_host->leakReport().toString();
    }
    TWI_PrivateData* record() { return reinterpret_cast<TWI_PrivateData*>(*m_handle); }
    twSimFrameRef newFrame(int width, int height, PrPixelFormat format) {
        PPix** frame = nullptr;
        EXPECT_EQ(TWI_New_PPix(record(), imFrameFormat{width, height, format}, &frame, nullptr, nullptr), 0);
        return twSimFrameRef(m_host->frames(), frame);
    }
    std::shared_ptr<qvCachePrefsWrapper> wrapper(twImporterSharedPrefs& prefs, long long frame,
                                                 std::vector<imFrameFormat>& formats, bool newApi,
                                                 PrSDKGuid* profile) {
        const PrTime time = frame * m_host->config().ticksPerSecond / 25;
        return std::make_shared<qvCachePrefsWrapper>(record(), &prefs, static_cast<int>(sizeof(prefs)), time,
                                                     static_cast<int>(formats.size()), formats.data(), newApi,
                                                     profile, false);
    }

    twtest::ScopedTestRoots m_roots;
    std::unique_ptr<twSimHost> m_host;
    char** m_handle = nullptr;
};

TEST_F(PPixCacheTest, NewFrameGivesTheHostsMemoryAndStrideAndFailsWithTheCreatorsCode) {
    twSimFrameLayout layout;
    layout.rowPaddingBytes = 12;
    layout.negativeRowBytes = true;
    m_host->frames().setLayout(layout);
    PPix** frame = nullptr;
    char* pixels = nullptr;
    int rowBytes = 0;
    ASSERT_EQ(TWI_New_PPix(record(), imFrameFormat{33, 17, PrPixelFormat_BGRA_4444_16u}, &frame, &pixels, &rowBytes),
              0);
    twSimFrameRef owned(m_host->frames(), frame);
    const twSimFrameInfo info = owned.info();
    EXPECT_EQ(info.width, 33);
    EXPECT_EQ(info.height, 17);
    EXPECT_EQ(pixels, info.pixels);
    EXPECT_EQ(rowBytes, -(33 * 8 + 12));

    m_host->frames().failNextCreations(1);
    PPix** failed = reinterpret_cast<PPix**>(&pixels);
    EXPECT_EQ(TWI_New_PPix(record(), imFrameFormat{8, 8, PrPixelFormat_BGRA_4444_8u}, &failed, nullptr, nullptr),
              suiteError_OutOfMemory);
    EXPECT_EQ(failed, nullptr);
    // A frame nobody receives is not left with the host.
    EXPECT_EQ(TWI_New_PPix(record(), imFrameFormat{8, 8, PrPixelFormat_BGRA_4444_8u}, nullptr, nullptr, nullptr),
              static_cast<int>(0x80000002u));
    EXPECT_EQ(m_host->frames().aliveCount(), 1u);
}

TEST_F(PPixCacheTest, FillPaintsEveryPixelOfEveryFormatWhateverTheStride) {
    const PrPixelFormat formats[] = {
        PrPixelFormat_BGRA_4444_8u,  PrPixelFormat_BGRX_4444_8u,  PrPixelFormat_ARGB_4444_8u,
        PrPixelFormat_XRGB_4444_8u,  PrPixelFormat_BGRA_4444_16u, PrPixelFormat_BGRX_4444_16u,
        PrPixelFormat_ARGB_4444_16u, PrPixelFormat_XRGB_4444_16u, PrPixelFormat_BGRA_4444_32f,
        PrPixelFormat_BGRX_4444_32f, PrPixelFormat_ARGB_4444_32f, PrPixelFormat_XRGB_4444_32f,
    };
    twSimFrameLayout layouts[3];
    layouts[1].rowAlignment = 64;
    layouts[1].rowPaddingBytes = 3;
    layouts[2].negativeRowBytes = true;
    layouts[2].rowPaddingBytes = 16;
    for (const twSimFrameLayout& layout : layouts) {
        m_host->frames().setLayout(layout);
        for (PrPixelFormat format : formats) {
            for (auto size : {std::make_pair(33, 17), std::make_pair(1, 1)}) {
                twSimFrameRef frame = newFrame(size.first, size.second, format);
                ASSERT_TRUE(frame);
                EXPECT_EQ(TWI_FillPPix(record(), frame.handle(), 255, 192, 7), 0);
                const std::vector<unsigned char> expected = expectedPixel(format, 255, 192, 7);
                for (int y = 0; y < size.second; ++y) {
                    for (int x = 0; x < size.first; ++x) {
                        ASSERT_EQ(frame.pixel(x, y), expected)
                            << std::hex << format << std::dec << " at " << x << "," << y << " row bytes "
                            << frame.info().rowBytes;
                    }
                }
            }
        }
    }
    // White on 16 bits is the host's 32385 in every word, alpha included.
    twSimFrameRef white = newFrame(2, 2, PrPixelFormat_BGRA_4444_16u);
    TWI_FillPPix(record(), white.handle(), 255, 255, 255);
    EXPECT_EQ(white.pixel(1, 1), std::vector<unsigned char>({0x81, 0x7E, 0x81, 0x7E, 0x81, 0x7E, 0x81, 0x7E}));
    // A format the importer does not paint stays as the host made it.
    twSimFrameRef yuv = newFrame(4, 2, PrPixelFormat_VUYA_4444_8u);
    EXPECT_EQ(TWI_FillPPix(record(), yuv.handle(), 255, 0, 0), 0);
    EXPECT_EQ(yuv.pixel(3, 1), std::vector<unsigned char>({0, 0, 0, 0}));
    // The padding of the rows belongs to the host: nothing was written there.
    m_host->frames().checkAllGuards();
    EXPECT_TRUE(m_host->diagnostics().all().empty());
}

TEST_F(PPixCacheTest, CacheAnswersByTheWholeKeyInEachGeneration) {
    twImporterSharedPrefs prefs;
    std::vector<imFrameFormat> formats = {{64, 32, PrPixelFormat_BGRA_4444_8u}};
    PrSDKGuid profile = {{7, 9}};
    for (bool newApi : {false, true}) {
        SCOPED_TRACE(newApi ? "colour space generation" : "plain generation");
        m_host->cache().expireAll();
        twSimFrameRef frame = newFrame(64, 32, PrPixelFormat_BGRA_4444_8u);
        auto key = wrapper(prefs, 12, formats, newApi, &profile);
        EXPECT_EQ(key->frame, 12);
        EXPECT_EQ(key->frameCopy, 12);
        TWI_PrivateData* data = record();
        EXPECT_EQ(AddToCache(data, key, frame.handle()), 0);

        PPix** found = nullptr;
        bool hit = false;
        EXPECT_EQ(GetFromCache(data, wrapper(prefs, 12, formats, newApi, &profile), &found, &hit), 0);
        EXPECT_TRUE(hit);
        EXPECT_EQ(found, frame.handle());
        twSimFrameRef handedOut(m_host->frames(), found);

        auto missWith = [&](std::shared_ptr<qvCachePrefsWrapper> other) {
            PPix** none = reinterpret_cast<PPix**>(&hit);
            bool again = true;
            EXPECT_EQ(GetFromCache(data, other, &none, &again), 0);
            EXPECT_FALSE(again);
            EXPECT_EQ(none, nullptr);
        };
        missWith(wrapper(prefs, 13, formats, newApi, &profile));
        twImporterSharedPrefs changed = prefs;
        changed.sidecarReloadCount = 1;
        missWith(wrapper(changed, 12, formats, newApi, &profile));
        std::vector<imFrameFormat> bigger = {{128, 64, PrPixelFormat_BGRA_4444_8u}};
        missWith(wrapper(prefs, 12, bigger, newApi, &profile));
        std::vector<imFrameFormat> deeper = {{64, 32, PrPixelFormat_BGRA_4444_32f}};
        missWith(wrapper(prefs, 12, deeper, newApi, &profile));
        // Each generation finds only what it stored itself; the newer one keys the colour profile too.
        missWith(wrapper(prefs, 12, formats, !newApi, &profile));
        if (newApi) {
            PrSDKGuid other = {{7, 10}};
            missWith(wrapper(prefs, 12, formats, true, &other));
        }
    }
    bool found = true;
    TWI_PrivateData* data = record();
    EXPECT_EQ(GetFromCache(data, wrapper(prefs, 1, formats, true, nullptr), nullptr, &found), 0);
    EXPECT_FALSE(found);
}

TEST_F(PPixCacheTest, WrapperCopiesThePrefsOnlyWhenAskedAndKnowsNoFrameWithoutATickRate) {
    twImporterSharedPrefs prefs;
    auto borrowed = std::make_shared<qvCachePrefsWrapper>(record(), &prefs, 396, 0, 0, nullptr, false, nullptr, false);
    EXPECT_EQ(borrowed->prefs, &prefs);
    EXPECT_FALSE(borrowed->ownsPrefs);
    EXPECT_EQ(std::string(borrowed->tag, 4), "wpac");
    auto copied = std::make_shared<qvCachePrefsWrapper>(record(), &prefs, 396, 0, 0, nullptr, false, nullptr, true);
    EXPECT_NE(copied->prefs, &prefs);
    EXPECT_TRUE(copied->ownsPrefs);
    EXPECT_EQ(std::memcmp(copied->prefs, &prefs, 396), 0);

    record()->ticksPerSecond = 0;
    qvCachePrefsWrapper timeless(record(), &prefs, 396, 1000, 0, nullptr, false, nullptr, false);
    EXPECT_EQ(timeless.frame, -1);
    EXPECT_EQ(timeless.frameCopy, -1);
}

TEST_F(PPixCacheTest, FrameNumbersRoundHalvesAwayFromZero) {
    record()->ticksPerSecond = 1000;
    record()->frameRate = 24000.0 / 1001.0;
    int frame = 0;
    int again = 0;
    // 24000/1001 frames per second: 1001 ticks hold 23.976 frames.
    GetFrameNumberFromTime(record(), 1001, &frame, &again);
    EXPECT_EQ(frame, 24);
    EXPECT_EQ(again, 24);
    record()->frameRate = 2.0;
    GetFrameNumberFromTime(record(), 250, &frame, &again);  // exactly half a frame
    EXPECT_EQ(frame, 1);
    GetFrameNumberFromTime(record(), -250, &frame, &again);
    EXPECT_EQ(frame, -1);
    GetFrameNumberFromTime(nullptr, 250, &frame, &again);
    EXPECT_EQ(frame, -1);
    EXPECT_EQ(again, -1);
    GetFrameNumberFromTime(record(), 250, &frame, nullptr);  // no out: nothing written
    EXPECT_EQ(frame, -1);
}

TEST_F(PPixCacheTest, FrameDescriptorChoosesTheSmallestResolutionStillBigEnough) {
    twImporterSharedPrefs prefs;
    prefs.fullRes = QvResolution(4096, 2160);
    prefs.resolutions[0] = QvResolution(4096, 2160);
    prefs.resolutions[1] = QvResolution(2048, 1080);
    prefs.resolutions[2] = QvResolution(1024, 540);
    prefs.resolutionCount = 3;

    auto ask = [&](void* blob, int width, int height, int& result) {
        imClipFrameDescriptorRec rec;
        std::memset(&rec, 0xEE, sizeof(rec));
        rec.inPrefs = blob;
        rec.inDesiredClipFrameDescriptor = {PrPixelFormat_BGRA_4444_32f, width, height, 3, 2, 1, kPrRenderQuality_Low};
        result = SelectClipFrameDescriptor(nullptr, nullptr, &rec);
        return rec;
    };
    int result = -1;
    imClipFrameDescriptorRec half = ask(&prefs, 2048, 1080, result);
    EXPECT_EQ(result, imNoErr);
    const ClipFrameDescriptor out = half.outBestFrameDescriptor;
    EXPECT_EQ(out.inPixelFormat, PrPixelFormat_BGRA_4444_32f);
    EXPECT_EQ(out.inWidth, 2048);
    EXPECT_EQ(out.inHeight, 1080);
    EXPECT_EQ(out.inPixelAspectRatioNumerator, 3);
    EXPECT_EQ(out.inPixelAspectRatioDenominator, 2);
    EXPECT_EQ(out.inFieldType, 0);
    EXPECT_EQ(out.inQuality, kPrRenderQuality_Low);

    EXPECT_EQ(ask(&prefs, 1500, 800, result).outBestFrameDescriptor.inWidth, 2048);
    EXPECT_EQ(ask(&prefs, 1024, 540, result).outBestFrameDescriptor.inWidth, 1024);
    EXPECT_EQ(ask(&prefs, 300, 200, result).outBestFrameDescriptor.inHeight, 540);
    // Above the full size nothing qualifies: the host's guess stays.
    imClipFrameDescriptorRec over = ask(&prefs, 8192, 4320, result);
    EXPECT_EQ(result, imNoErr);
    EXPECT_EQ(over.outBestFrameDescriptor.inWidth, static_cast<csSDK_int32>(0xEEEEEEEE));

    EXPECT_EQ(ask(&prefs, 0, 1080, result).outBestFrameDescriptor.inWidth, 0);
    EXPECT_EQ(result, imNoErr);
    EXPECT_EQ(ask(nullptr, 2048, 1080, result).outBestFrameDescriptor.inHeight, 0);
    EXPECT_EQ(result, imInvalidPreferences);
    twImporterSharedPrefs old = prefs;
    old.version = 8;
    EXPECT_EQ(ask(&old, 2048, 1080, result).outBestFrameDescriptor.inWidth, 0);
    EXPECT_EQ(result, imInvalidPreferences);
}

TEST_F(PPixCacheTest, ReaderWithoutDecoderGivesADarkFrameAndQueuesNothing) {
    // A file's record with no decoder behind it, as when the library is missing.
    record()->manager = nullptr;
    record()->ticksPerSecond = m_host->config().ticksPerSecond;
    imAsyncImporterCreationRec creation{};
    creation.inPrivateData = m_handle;
    ASSERT_EQ(SDKCreateAsyncImporter(m_host->stdParms(), &creation), imNoErr);
    ASSERT_NE(creation.outAsyncEntry, nullptr);
    ASSERT_NE(creation.outAsyncPrivateData, nullptr);

    std::vector<imFrameFormat> formats = {{16, 8, PrPixelFormat_BGRA_4444_16u}};
    PPixHand out = nullptr;
    aiAsyncRequest request{};
    request.inPrivateData = creation.outAsyncPrivateData;
    request.inSourceRec.inPrivateData = creation.outAsyncPrivateData;
    request.inSourceRec.inFrameFormats = formats.data();
    request.inSourceRec.inNumFrameFormats = 1;
    request.inSourceRec.outFrame = &out;
    EXPECT_EQ(creation.outAsyncEntry(0, &request), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(m_host->frames().createdCount(), 0u);

    imSourceVideoRec get = request.inSourceRec;
    EXPECT_EQ(creation.outAsyncEntry(3, &get), 0);
    ASSERT_NE(out, nullptr);
    twSimFrameRef dark(m_host->frames(), out);
    EXPECT_EQ(dark.pixel(15, 7), expectedPixel(PrPixelFormat_BGRA_4444_16u, 31, 31, 31));
    // Without a manager there is nothing to flush; selectors past the last are refused.
    EXPECT_EQ(creation.outAsyncEntry(2, creation.outAsyncPrivateData), 2);
    EXPECT_EQ(creation.outAsyncEntry(7, creation.outAsyncPrivateData), 1);
    EXPECT_EQ(creation.outAsyncEntry(4, creation.outAsyncPrivateData), 0);
    EXPECT_EQ(creation.outAsyncEntry(4, nullptr), 0);
}
