// tarnwick-host's picture commands as a person runs them: the images `render`
// writes, read back with OpenImageIO, hold the frames a host receives from the
// plug-in; `frames` is a stream that ffprobe understands; `play` reports its
// playback and names an error frame's stage.

#include "HostToolSupport.h"
#include "TempFolder.h"

#include "twSimFile.h"
#include "twSimHost.h"

#include "Writer/RefClipWriter.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

using twtest::Contains;
using twtest::Quote;
using twtest::ToolRun;

class HostToolPicture : public ::testing::Test {
protected:
    HostToolPicture() : m_home(m_folder.makeFolder("home")), m_root(m_folder.makeFolder("root")) {}

    std::string options() const { return "--home " + Quote(m_home) + " --system-root " + Quote(m_root) + " "; }
    ToolRun run(const std::string& arguments) const { return twtest::RunTool(m_folder.path(), options() + arguments); }

    std::string clip(const std::string& name, const twref::RefClipModel& model) const {
        const std::string path = m_folder.join(name);
        EXPECT_TRUE(twref::RefClipWriter::write(path, model));
        return path;
    }

    // The frames the plug-in gives a host for the same request, in this process.
    std::vector<std::vector<unsigned char>> hostFrames(const std::string& path, const std::vector<long long>& frames,
                                                       int width, int height, PrPixelFormat format) const {
        twSimHostConfig config;
        config.useTestRoots = true;
        config.testHome = m_home;
        config.testSystemRoot = m_root;
        twSimHost host(config);
        host.loadPlugin(TW_IMPORTER_PLUGIN);
        EXPECT_EQ(host.init(), imNoErr);
        std::vector<std::vector<unsigned char>> out;
        {
            std::unique_ptr<twSimFile> file = host.importFile(path);
            for (long long f : frames) {
                twSimFrameResult got = file->getSourceVideo(file->frameRequest(f, width, height, format));
                EXPECT_EQ(got.result, imNoErr);
                const twSimFrameInfo info = got.frame.info();
                const size_t rowSize = static_cast<size_t>(info.width) *
                                       (format == PrPixelFormat_BGRA_4444_8u ? 4 : format == PrPixelFormat_BGRA_4444_16u ? 8 : 16);
                std::vector<unsigned char> bytes;
                for (int y = 0; y < info.height; ++y) bytes.insert(bytes.end(), got.frame.row(y), got.frame.row(y) + rowSize);
                out.push_back(bytes);
            }
            file->close();
        }
        host.shutdown();
        return out;
    }

    twtest::TempFolder m_folder;
    std::string m_home;
    std::string m_root;
};

twref::RefClipModel smallClip() {
    twref::RefClipModel model;
    model.width = 96;
    model.height = 54;
    model.frameCount = 8;
    return model;
}

// An image file as OpenImageIO reads it, as floats, with its size and channels.
struct Image {
    OIIO::ImageSpec spec;
    std::vector<float> pixels;
};

Image readImage(const std::string& path) {
    Image image;
    auto in = OIIO::ImageInput::open(path);
    if (!in) return image;
    image.spec = in->spec();
    image.pixels.resize(static_cast<size_t>(image.spec.width) * image.spec.height * image.spec.nchannels);
    in->read_image(0, 0, 0, image.spec.nchannels, OIIO::TypeDesc::FLOAT, image.pixels.data());
    in->close();
    return image;
}

// Host element `c` (B, G, R, A order) of the pixel at picture row y, column x,
// on the file's scale from 0 to 1. Host frames are stored bottom row first.
float hostValue(const std::vector<unsigned char>& frame, int width, int height, int x, int y, int c,
                PrPixelFormat format) {
    const size_t memoryRow = static_cast<size_t>(height - 1 - y);
    if (format == PrPixelFormat_BGRA_4444_8u) return frame[(memoryRow * width + x) * 4 + c] / 255.0f;
    if (format == PrPixelFormat_BGRA_4444_16u) {
        uint16_t v;
        std::memcpy(&v, frame.data() + (memoryRow * width + x) * 8 + 2 * c, 2);
        const uint32_t wide = std::min<uint32_t>((v * 65535u + 16384u) / 32768u, 65535u);
        return wide / 65535.0f;
    }
    float v;
    std::memcpy(&v, frame.data() + (memoryRow * width + x) * 16 + 4 * c, 4);
    return v;
}

}  // namespace

TEST_F(HostToolPicture, RenderedImagesHoldTheFramesTheHostReceivesInEachFormat) {
    const std::string path = clip("chart.braw", smallClip());
    struct Case {
        const char* format;
        PrPixelFormat pixelFormat;
        const char* extension;
        OIIO::TypeDesc::BASETYPE fileType;
        float tolerance;
    };
    const Case cases[] = {
        {"BGRA_8u", PrPixelFormat_BGRA_4444_8u, "png", OIIO::TypeDesc::UINT8, 0.0f},
        {"BGRA_16u", PrPixelFormat_BGRA_4444_16u, "png", OIIO::TypeDesc::UINT16, 0.0f},
        // Half floats keep 11 significant bits.
        {"BGRA_32f", PrPixelFormat_BGRA_4444_32f, "exr", OIIO::TypeDesc::HALF, 1.0f / 1024.0f},
    };
    for (const Case& c : cases) {
        const std::string out = m_folder.join(std::string("out_") + c.format);
        const ToolRun render = run("render " + Quote(path) + " " + Quote(out) + " --frames 2,5 --size half --format " +
                                   c.format + (c.pixelFormat == PrPixelFormat_BGRA_4444_16u ? " --async" : ""));
        ASSERT_EQ(render.exitCode, 0) << render.output;
        EXPECT_TRUE(Contains(render.output, "Wrote 2 images to " + out)) << render.output;
        const auto frames = hostFrames(path, {2, 5}, 48, 27, c.pixelFormat);
        for (size_t i = 0; i < 2; ++i) {
            const std::string file = out + "/frame_00000" + (i == 0 ? "2." : "5.") + c.extension;
            const Image image = readImage(file);
            ASSERT_EQ(image.spec.width, 48) << file;
            ASSERT_EQ(image.spec.height, 27) << file;
            ASSERT_EQ(image.spec.nchannels, 4) << file;
            EXPECT_EQ(image.spec.format.basetype, c.fileType) << file;
            int mismatches = 0;
            for (int y = 0; y < 27; ++y) {
                for (int x = 0; x < 48; ++x) {
                    for (int ch = 0; ch < 4; ++ch) {
                        // File R, G, B, A are host elements 2, 1, 0, 3.
                        const int hostChannel = ch == 3 ? 3 : 2 - ch;
                        const float want = hostValue(frames[i], 48, 27, x, y, hostChannel, c.pixelFormat);
                        const float got = image.pixels[(static_cast<size_t>(y) * 48 + x) * 4 + ch];
                        if (std::fabs(got - want) > c.tolerance * std::max(1.0f, std::fabs(want)) + 1e-7f &&
                            mismatches++ < 3) {
                            ADD_FAILURE() << file << " at " << x << "," << y << " channel " << ch << ": " << got
                                          << " instead of " << want;
                        }
                    }
                }
            }
        }
        const Image sheet = readImage(out + "/contact-sheet.png");
        EXPECT_GT(sheet.spec.width, 2 * 48) << c.format;
    }
}

TEST_F(HostToolPicture, FramesStreamIsWhatFfprobeReadsWithTheGeometryOnTheErrorStream) {
    const std::string path = clip("stream.braw", smallClip());
    const ToolRun geometry = twtest::RunToolSeparately(m_folder.path(), options() + "frames " + Quote(path) +
                                                                            " --frames 1-3 --size 32x18");
    ASSERT_EQ(geometry.exitCode, 0) << geometry.errors;
    // Nothing but pixels on standard output: three frames of 32x18 BGRA.
    EXPECT_EQ(geometry.output.size(), 3u * 32 * 18 * 4);
    EXPECT_TRUE(Contains(geometry.errors, "frames: 3 of 32x18 BGRA_8u")) << geometry.errors;
    EXPECT_TRUE(Contains(geometry.errors, "ffmpeg -f rawvideo -pix_fmt bgra -s 32x18 -r 24/1")) << geometry.errors;

    const ToolRun probe = twtest::RunTool(
        m_folder.path(), options() + "frames " + Quote(path) + " --frames 0-4 --size quarter 2>/dev/null | ffprobe " +
                             "-v error -f rawvideo -pixel_format bgra -video_size 24x14 -i - -count_frames " +
                             "-show_entries stream=width,height,pix_fmt,nb_read_frames -of default=nw=1");
    ASSERT_EQ(probe.exitCode, 0) << probe.output;
    EXPECT_TRUE(Contains(probe.output, "width=24\nheight=14\npix_fmt=bgra\nnb_read_frames=5")) << probe.output;
}

TEST_F(HostToolPicture, PlayReportsItsPlaybackAndNamesTheStageOfAnErrorFrame) {
    twref::RefClipModel model = smallClip();
    model.addFault("Frame.SetResourceFormat", twref::RefResult::Fail, 3);
    const std::string path = clip("play.braw", model);
    const ToolRun play = run("play " + Quote(path) + " --readers 2 --ahead 2 --loops 2 --size half");
    ASSERT_EQ(play.exitCode, 0) << play.output;
    EXPECT_TRUE(Contains(play.output, "Frames: 16 in ")) << play.output;
    EXPECT_TRUE(Contains(play.output, "InitiateAsyncRead: p50 ")) << play.output;
    EXPECT_TRUE(Contains(play.output, "GetFrame: p50 ")) << play.output;
    // The second loop finds every good frame in the cache; the error frame is never cached.
    EXPECT_TRUE(Contains(play.output, "Error frames: 2\n  frame 3: (0, 0, 139) frame setup")) << play.output;
    EXPECT_TRUE(Contains(play.output, "imShutdown: 0")) << play.output;

    const ToolRun bad = run("play " + Quote(path) + " --readers 0");
    EXPECT_EQ(bad.exitCode, 2) << bad.output;
}
