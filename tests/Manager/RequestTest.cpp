// The decode request on its own: the choice of the library's scale and of a
// software downscale, equality as the queue uses it, the failure state, the
// setup of a frame and the flat frames shown without the library.

#include "ManagerTestSupport.h"

#include "Manager/twBufferManager.h"
#include "Utils/qvUtils.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

using twtest::TestFrame;

// A 1920x1080 clip with the library's four scales, without any file.
std::shared_ptr<qvBRAW_Clip> fullHdClip() {
    auto clip = std::make_shared<qvBRAW_Clip>(4, "C:\\media\\day1\\A001.braw");
    clip->m_width = 1920;
    clip->m_height = 1080;
    clip->m_frameCount = 10;
    clip->m_resolutions = {{QvResolution(1920, 1080), blackmagicRawResolutionScaleFull},
                           {QvResolution(960, 540), blackmagicRawResolutionScaleHalf},
                           {QvResolution(480, 270), blackmagicRawResolutionScaleQuarter},
                           {QvResolution(240, 135), blackmagicRawResolutionScaleEighth}};
    return clip;
}

QvRationalScale scaleOf(float value) {
    QvRationalScale scale;
    scale.value = value;
    return scale;
}

QvRect rectOf(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    QvRect rect;
    rect.left = left;
    rect.top = top;
    rect.right = right;
    rect.bottom = bottom;
    return rect;
}

using Request = twtest::DecoderTest;

TEST_F(Request, TheLibrarysScaleIsTheSmallestThatCoversTheSizeAndTheRestIsASoftwareDownscale) {
    const auto clip = fullHdClip();

    twtest::FlowRequest nearHalf;
    ASSERT_FALSE(nearHalf.setScaleAndDimensions(clip, scaleOf(2.004f), scaleOf(2.004f), rectOf(0, 0, 958, 538), true)
                     .hasError);
    EXPECT_EQ(nearHalf.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleHalf));
    EXPECT_FALSE(nearHalf.m_downscale);
    EXPECT_EQ(nearHalf.m_width, 958u);
    EXPECT_EQ(nearHalf.m_height, 538u);

    twtest::FlowRequest pastHalf;
    ASSERT_FALSE(pastHalf.setScaleAndDimensions(clip, scaleOf(2.01f), scaleOf(3.0f), rectOf(0, 0, 955, 360), true)
                     .hasError);
    EXPECT_EQ(pastHalf.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleHalf));
    EXPECT_TRUE(pastHalf.m_downscale);
    EXPECT_FLOAT_EQ(pastHalf.m_scaleX, 1.005f);
    EXPECT_FLOAT_EQ(pastHalf.m_scaleY, 1.5f);

    // A scale given as a value ignores its ratio.
    QvRationalScale valued = scaleOf(4.0f);
    valued.num = 1;
    valued.den = 1;
    twtest::FlowRequest quarter;
    ASSERT_FALSE(quarter.setScaleAndDimensions(clip, valued, valued, rectOf(0, 0, 480, 270), true).hasError);
    EXPECT_EQ(quarter.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleQuarter));
    EXPECT_FALSE(quarter.m_downscale);
}

TEST_F(Request, WithoutDownscaleTheAreaIsScaledToTheLibrarysSizeOutwards) {
    const auto clip = fullHdClip();
    twtest::FlowRequest request;
    QvRationalScale sx;
    sx.num = 1920;
    sx.den = 900;
    QvRationalScale sy;
    sy.num = 1080;
    sy.den = 500;
    ASSERT_FALSE(request.setScaleAndDimensions(clip, sx, sy, rectOf(3, 7, 900, 499), false).hasError);
    EXPECT_EQ(request.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleHalf));
    EXPECT_FALSE(request.m_downscale);
    // 960/897 and 540/492: left and top round down, right and bottom up.
    EXPECT_EQ(request.m_rect, rectOf(3, 7, 964, 548));
    EXPECT_EQ(request.m_width, 960u);
    EXPECT_EQ(request.m_height, 540u);

    // The size form: a whole frame at the library's own size stays as it is.
    twtest::FlowRequest whole;
    ASSERT_FALSE(whole.setScaleAndDimensions(clip, 480, 270, false).hasError);
    EXPECT_EQ(whole.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleQuarter));
    EXPECT_EQ(whole.m_rect, rectOf(0, 0, 480, 270));
}

TEST_F(Request, ASizeAboveFullIsServedAtFullAndAZeroScaleFails) {
    const auto clip = fullHdClip();
    twtest::FlowRequest over;
    EXPECT_FALSE(over.setScaleAndDimensions(clip, 3840, 2160, true).hasError);
    EXPECT_EQ(over.m_resolutionScale, static_cast<uint32_t>(blackmagicRawResolutionScaleFull));
    EXPECT_FALSE(over.m_downscale);
    EXPECT_TRUE(logged("ERR", over.logPrefix().Str() + "Dimensions asked bigger than Full Size ! Look for OVER in log."));

    twtest::FlowRequest zero;
    const QvResult result = zero.setScaleAndDimensions(clip, QvRationalScale(), scaleOf(1.0f), rectOf(0, 0, 5, 6), true);
    EXPECT_TRUE(result.hasError);
    EXPECT_EQ(result.toString().Str(), "setScaleAndDimensions - downscale num is 0 !");
    // The size taken before the check stays.
    EXPECT_EQ(zero.m_width, 5u);
    EXPECT_EQ(zero.m_height, 6u);
}

TEST_F(Request, EqualityIgnoresTheAreaAndKnowsTheWildcardQueue) {
    twtest::FlowRequest a;
    twtest::FlowRequest b;
    for (twtest::FlowRequest* request : {&a, &b}) {
        request->m_frame = 12;
        request->m_clipID = 3;
        request->m_queueID = 5;
        request->m_pixelFormat = QV_PIXEL_FORMAT_BGRA_8_LOW;
    }
    a.m_rect = rectOf(0, 0, 100, 50);
    a.m_width = 100;
    b.m_rect = rectOf(10, 10, 20, 20);
    EXPECT_TRUE(a == b);

    b.m_queueID = 0xFFFFFFFE;
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(b == a);
    b.m_queueID = 0xFFFFFFFF;
    EXPECT_FALSE(a == b);
    b.m_queueID = 5;

    b.m_isSync = true;
    EXPECT_FALSE(a == b);
    b.m_isSync = false;
    b.m_resolutionScale = blackmagicRawResolutionScaleHalf;
    EXPECT_FALSE(a == b);
    b.m_resolutionScale = a.m_resolutionScale;
    b.m_attributes.useClipAndFrameAttributes = true;
    b.m_attributes.frame.iso = 1600;
    EXPECT_FALSE(a == b);

    // Every request has its own number.
    EXPECT_NE(a.m_uniqueID, b.m_uniqueID);
}

TEST_F(Request, AFailureEndsTheRequestWithItsCodeAndTextAndLetsTheLockGo) {
    twtest::FlowRequest request;
    request.m_mutex.lock();
    request.HandleError(7, static_cast<int>(0x80000008), "Failed SetResourceFormat on Frame ! ", true);
    EXPECT_EQ(request.m_errorCode, 7);
    EXPECT_EQ(request.m_errorMsg.Str(), "(7) Failed SetResourceFormat on Frame ! " +
                                            qvUtils::getHRESULTerrorMessage(static_cast<int>(0x80000008)).Str());
    EXPECT_TRUE(request.m_finished);
    EXPECT_EQ(request.m_onCancelledCount, 1);
    EXPECT_TRUE(request.m_mutex.try_lock());
    request.m_mutex.unlock();

    // A completion handler receives the lock instead.
    twtest::FlowRequest handled;
    bool handedHeld = false;
    handled.m_onFinished = [&](qvBRAW_Request* finished, bool held) {
        EXPECT_EQ(finished, &handled);
        handedHeld = held;
        return 0;
    };
    handled.m_mutex.lock();
    handled.HandleError(12, 0, "Failed GetWidth - ", true);
    EXPECT_TRUE(handedHeld);
    EXPECT_EQ(handled.m_errorMsg.Str(), "(12) Failed GetWidth - ");
    EXPECT_FALSE(handled.m_mutex.try_lock());
    handled.m_mutex.unlock();
}

TEST_F(Request, EachFailingStageHasItsColour) {
    const auto& colours = qvBRAW_Request::s_errorCodeToColor;
    EXPECT_EQ(colours.size(), 13u);
    auto rgb = [&](int code) {
        const QvColor& c = colours.at(static_cast<TW_REQUEST_ERROR_CODE>(code));
        EXPECT_EQ(c.alpha, 255);
        return std::vector<int>{c.red, c.green, c.blue};
    };
    EXPECT_EQ(rgb(1), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(rgb(7), (std::vector<int>{0, 0, 139}));
    EXPECT_EQ(rgb(10), (std::vector<int>{106, 32, 240}));
    EXPECT_EQ(rgb(11), (std::vector<int>{255, 255, 0}));
    EXPECT_EQ(rgb(12), (std::vector<int>{218, 112, 214}));
    EXPECT_THROW(colours.at(static_cast<TW_REQUEST_ERROR_CODE>(13)), std::out_of_range);
}

TEST_F(Request, TheLibrarysBytesPerPixelAndUnknownFormats) {
    twtest::FlowRequest request;
    const std::pair<uint32_t, uint8_t> sizes[] = {
        {blackmagicRawResourceFormatRGBAU8, 4},       {blackmagicRawResourceFormatBGRAU8, 4},
        {blackmagicRawResourceFormatRGBU16, 6},       {blackmagicRawResourceFormatRGBU16Planar, 6},
        {blackmagicRawResourceFormatRGBAU16, 8},      {blackmagicRawResourceFormatBGRAU16, 8},
        {blackmagicRawResourceFormatRGBF32, 12},      {blackmagicRawResourceFormatRGBF32Planar, 12},
        {blackmagicRawResourceFormatBGRAF32, 16},
    };
    for (const auto& size : sizes) {
        request.m_bmPixelFormat = size.first;
        EXPECT_EQ(request.setBMPixelBytesNumber(), size.second);
        EXPECT_EQ(request.m_bmBytesPerPixel, size.second);
    }
    request.m_bmPixelFormat = blackmagicRawResourceFormatRGBAF32;
    try {
        request.setBMPixelBytesNumber();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Unknown BM Pixel format");
    }
}

TEST_F(Request, SetupBindsTheFrameAndRefusesFormatsItCantDeliver) {
    const auto clip = fullHdClip();
    TestFrame frame(480, 270, 4, 480 * 4);

    twtest::FlowRequest pastEnd;
    ASSERT_FALSE(pastEnd.setScaleAndDimensions(clip, 480, 270, false).hasError);
    pastEnd.setup(QV_APP_ENUM::QV_APP_PPRO, 10, 10, 4, frame.address(), frame.rowBytes, QV_PIXEL_FORMAT_BGRA_8_LOW,
                  nullptr, false, clip->m_path, clip);
    EXPECT_FALSE(pastEnd.m_imageEnabled);
    // Without buffers nothing will run for it.
    EXPECT_TRUE(pastEnd.m_finished);

    twtest::FlowRequest named;
    named.m_recordFileAndTimecode = true;
    ASSERT_FALSE(named.setScaleAndDimensions(clip, 480, 270, false).hasError);
    named.setup(QV_APP_ENUM::QV_APP_PPRO, 2, 10, 4, frame.address(), frame.rowBytes, QV_PIXEL_FORMAT_BGRA_8_LOW,
                new twBufferManager(nullptr, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, false, nullptr,
                                    nullptr),
                false, clip->m_path, clip);
    EXPECT_EQ(named.m_fileName.Str(), "A001.braw");
    EXPECT_TRUE(named.m_imageEnabled);
    EXPECT_EQ(named.m_bufferManager->m_frame, 2u);
    EXPECT_EQ(named.m_bufferManager->m_uniqueID, named.m_uniqueID);
    named.m_finished = true;

    for (QV_PIXEL_FORMAT refused : {QV_PIXEL_FORMAT_ARGB_16_LOW, QV_PIXEL_FORMAT_RGB_8_UP, QV_PIXEL_FORMAT_NONE}) {
        twtest::FlowRequest request;
        ASSERT_FALSE(request.setScaleAndDimensions(clip, 480, 270, false).hasError);
        EXPECT_THROW(request.setup(QV_APP_ENUM::QV_APP_PPRO, 0, 10, 4, frame.address(), frame.rowBytes, refused,
                                   nullptr, false, clip->m_path, clip),
                     std::runtime_error);
    }
}

TEST_F(Request, WithoutTheLibraryAFrameIsFlatDarkUnlessItsStrideIsNegative) {
    const auto clip = fullHdClip();
    for (int32_t rowBytes : {480 * 4 + 8, -480 * 4}) {
        TestFrame frame(480, 270, 4, rowBytes);
        twtest::TestRequest request(1, 4, 0, false);
        request.m_BMInit = false;
        ASSERT_FALSE(request.setScaleAndDimensions(clip, 480, 270, false).hasError);
        request.setup(QV_APP_ENUM::QV_APP_PPRO, 0, 10, 4, frame.address(), rowBytes, QV_PIXEL_FORMAT_BGRA_8_LOW,
                      new twBufferManager(nullptr, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, false, nullptr,
                                          nullptr),
                      false, clip->m_path, clip);
        EXPECT_FALSE(request.m_imageEnabled);
        request.FinishImageBuffer();
        const bool allDark =
            std::all_of(frame.bytes.begin(), frame.bytes.end(), [](uint8_t byte) { return byte == 31; });
        EXPECT_EQ(allDark, rowBytes > 0);
        EXPECT_EQ(frame.untouched(), rowBytes < 0);
        request.m_finished = true;
    }

    // With the library, a frame past the end is left as it is.
    TestFrame frame(480, 270, 4, 480 * 4);
    twtest::TestRequest pastEnd(1, 4, 0, false);
    ASSERT_FALSE(pastEnd.setScaleAndDimensions(clip, 480, 270, false).hasError);
    pastEnd.setup(QV_APP_ENUM::QV_APP_PPRO, 10, 10, 4, frame.address(), frame.rowBytes, QV_PIXEL_FORMAT_BGRA_8_LOW,
                  new twBufferManager(nullptr, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, false, nullptr,
                                      nullptr),
                  false, clip->m_path, clip);
    pastEnd.FinishImageBuffer();
    EXPECT_TRUE(frame.untouched());
    pastEnd.m_finished = true;
}

TEST_F(Request, AnUnfinishedRequestIsFreedAllTheSameAndSaysSo) {
    uint64_t uniqueID = 0;
    {
        twtest::TestRequest request(2, 1, 9, false);
        uniqueID = request.m_uniqueID;
    }
    EXPECT_TRUE(logged("ERR", "[Q2C1#9I" + std::to_string(uniqueID) + "] qvBRAW_Request Destroyed but not finished !!"));
}

}  // namespace
