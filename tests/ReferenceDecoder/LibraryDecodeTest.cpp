// The manual decoder flow through the declared interfaces: every resource
// format and scale, pixels as the renderer makes them, settings and LUTs seen
// in the pixels, and bit streams read from the file at read time.

#include "LibraryTestSupport.h"

#include "Format/RefLutTools.h"
#include "Render/RefChart.h"
#include "Render/RefRenderer.h"
#include "Writer/RefClipWriter.h"

#include <cmath>
#include <cstdio>

using namespace twtest;
using twref::RefClipModel;

namespace {

struct DecodeFixture : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;
};

// What the renderer makes of a frame under the clip's default settings.
std::vector<uint8_t> expectedPicture(const RefClipModel& model, uint64_t frame, twref::RefResourceFormat format,
                                     uint32_t width, uint32_t height, const twref::RefLut* lut = nullptr)
{
    const twref::RefRenderSettings settings =
        twref::RefRenderSettings::fromAttributes(model.clipAttributes, model.frameAttributes, model);
    std::vector<uint8_t> out(twref::RefRenderer::resourceSizeBytes(format, width, height));
    twref::RefRenderTarget target;
    target.data = out.data();
    target.sizeBytes = out.size();
    target.width = width;
    target.height = height;
    target.format = format;
    twref::RefRenderer::render(frame, settings, lut, target);
    return out;
}

}  // namespace

TEST_F(DecodeFixture, EveryFormatAndScaleMatchesTheRenderer)
{
    const RefClipModel model = smallClip(4);
    const std::string path = writeClip(folder, "a.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);

        const BlackmagicRawResourceFormat formats[] = {
            blackmagicRawResourceFormatRGBAU8,    blackmagicRawResourceFormatBGRAU8,
            blackmagicRawResourceFormatRGBU16,    blackmagicRawResourceFormatRGBAU16,
            blackmagicRawResourceFormatBGRAU16,   blackmagicRawResourceFormatRGBU16Planar,
            blackmagicRawResourceFormatRGBF32,    blackmagicRawResourceFormatRGBAF32,
            blackmagicRawResourceFormatBGRAF32,   blackmagicRawResourceFormatRGBF32Planar,
            blackmagicRawResourceFormatRGBF16,    blackmagicRawResourceFormatRGBAF16,
            blackmagicRawResourceFormatBGRAF16,   blackmagicRawResourceFormatRGBF16Planar};
        const std::pair<BlackmagicRawResolutionScale, uint32_t> scales[] = {
            {blackmagicRawResolutionScaleFull, 1},
            {blackmagicRawResolutionScaleHalf, 2},
            {blackmagicRawResolutionScaleQuarter, 4},
            {blackmagicRawResolutionScaleEighth, 8}};
        uint64_t frame = 0;
        for (BlackmagicRawResourceFormat format : formats) {
            for (auto [scale, divisor] : scales) {
                FlowRequest request;
                request.clip = clip.get();
                request.frame = frame;
                request.format = format;
                request.scale = scale;
                driver.run(request);
                SCOPED_TRACE(::testing::Message() << std::hex << format << " / " << scale);
                ASSERT_TRUE(request.finished.load());
                ASSERT_EQ(request.readResult, S_OK);
                ASSERT_EQ(request.stateResult, S_OK);
                ASSERT_EQ(request.decodeResult, S_OK);
                ASSERT_EQ(request.processResult, S_OK);
                EXPECT_EQ(request.userDataSeen, &request);
                EXPECT_EQ(request.width, model.width / divisor);
                EXPECT_EQ(request.height, model.height / divisor);
                EXPECT_EQ(request.imageFormat, format);
                EXPECT_EQ(request.imageType, BlackmagicRawResourceType(blackmagicRawResourceTypeBufferCPU));
                EXPECT_EQ(request.pixels, expectedPicture(model, frame, static_cast<twref::RefResourceFormat>(format),
                                                          request.width, request.height));
                driver.releaseBuffers(request);
                frame = (frame + 1) % model.frameCount;
            }
        }
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}
