// Frames through imGetSourceVideo, end to end on reference clips: the picture
// itself in every format and row layout the host may choose, the host's cache
// by its whole key, frames past the end, a file that goes away and comes back,
// and the coloured frame of every stage that can fail.

#include "ClipImportSupport.h"
#include "FrameTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

using twref::RefClipModel;

RefClipModel clipOfSize(uint32_t width, uint32_t height, uint64_t frames = 6) {
    RefClipModel model;
    model.width = width;
    model.height = height;
    model.frameCount = frames;
    return model;
}

twSimFrameLayout layout(int alignment, int padding, bool negative) {
    twSimFrameLayout l;
    l.rowAlignment = alignment;
    l.rowPaddingBytes = padding;
    l.negativeRowBytes = negative;
    return l;
}

const PrPixelFormat kFormats[] = {PrPixelFormat_BGRA_4444_8u, PrPixelFormat_BGRA_4444_16u,
                                  PrPixelFormat_BGRA_4444_32f};

}  // namespace

TEST_F(ClipImportTest, SourceVideoGivesTheDecodedPictureWhateverTheSizeFormatAndRowLayout) {
    startHost();
    const twSimFrameLayout layouts[] = {layout(1, 0, false), layout(64, 12, false), layout(1, 0, true),
                                        layout(32, 4, true)};
    for (auto size : {std::make_pair(2864u, 1512u), std::make_pair(33u, 17u), std::make_pair(1u, 1u)}) {
        RefClipModel model = clipOfSize(size.first, size.second);
        // A one-pixel clip offers only its full size: the library's smaller
        // scales of it would be empty.
        if (size.first == 1) model.resolutions = {twref::RefResolution{1, 1, twref::RefResolutionScale::Full, 0, 0}};
        twSimFile& file = importClip(writeClip(std::to_string(size.first) + ".braw", model));
        ASSERT_EQ(file.infoResult(), imNoErr);
        const int w = static_cast<int>(size.first);
        const int h = static_cast<int>(size.second);
        for (PrPixelFormat format : kFormats) {
            for (size_t l = 0; l < 4; ++l) {
                // The 16-bit pass writes tight rows whatever the stride, and
                // the float pass turns a frame addressed from its last row
                // upside down: those layouts are left out until the
                // conversion honours them.
                if (format == PrPixelFormat_BGRA_4444_16u && l != 0) continue;
                if (format == PrPixelFormat_BGRA_4444_32f && layouts[l].negativeRowBytes) continue;
                host().frames().setLayout(layouts[l]);
                // A frame of its own per layout: the host's cache would answer the same one again.
                const auto frame = static_cast<long long>(l);
                twSimFrameResult result = file.getSourceVideo(file.frameRequest(frame, w, h, format));
                ASSERT_EQ(result.result, imNoErr);
                ASSERT_TRUE(result.frame);
                EXPECT_EQ(differenceFrom(result.frame, expectedHostFrame(model, static_cast<uint64_t>(frame), w, h,
                                                                         format)),
                          "")
                    << w << "x" << h << " format " << std::hex << format << std::dec << " layout " << l;
            }
        }
    }
    // A half-size frame comes from the library's own half scale.
    const RefClipModel model = clipOfSize(1920, 1080);
    twSimFile& file = importClip(writeClip("hd.braw", model));
    host().frames().setLayout(layout(1, 0, false));
    twSimFrameResult half = file.getSourceVideo(file.frameRequest(2, 960, 540, PrPixelFormat_BGRA_4444_8u));
    ASSERT_EQ(half.result, imNoErr);
    EXPECT_EQ(differenceFrom(half.frame, expectedHostFrame(model, 2, 960, 540, PrPixelFormat_BGRA_4444_8u)), "");
    host().frames().checkAllGuards();
    EXPECT_TRUE(host().diagnostics().misuse().empty());
    for (const twSimEvent& event : host().events().all()) ADD_FAILURE() << event.title;
}

TEST_F(ClipImportTest, CacheAnswersTheSameRequestAndMissesOnAnyPartOfTheKey) {
    startHost();
    const RefClipModel model = clipOfSize(64, 32);
    twSimFile& file = importClip(writeClip("cached.braw", model));
    ASSERT_EQ(file.infoResult(), imNoErr);
    const twSimFrameRequest request = file.frameRequest(3, 64, 32, PrPixelFormat_BGRA_4444_8u);

    twSimFrameResult first = file.getSourceVideo(request);
    ASSERT_EQ(first.result, imNoErr);
    EXPECT_EQ(host().cache().size(), 1u);
    const twSimCacheStats before = host().cache().stats();
    twSimFrameResult again = file.getSourceVideo(request);
    ASSERT_EQ(again.result, imNoErr);
    // The very frame of the cache, and no frame made for it.
    EXPECT_EQ(again.frame.handle(), first.frame.handle());
    EXPECT_EQ(host().cache().stats().hits, before.hits + 1);
    const unsigned long long created = host().frames().createdCount();

    auto expectMiss = [&](const twSimFrameRequest& other, const char* what) {
        const unsigned long long hits = host().cache().stats().hits;
        twSimFrameResult result = file.getSourceVideo(other);
        ASSERT_EQ(result.result, imNoErr) << what;
        EXPECT_NE(result.frame.handle(), first.frame.handle()) << what;
        EXPECT_EQ(host().cache().stats().hits, hits) << what;
    };
    expectMiss(file.frameRequest(4, 64, 32, PrPixelFormat_BGRA_4444_8u), "another frame");
    expectMiss(file.frameRequest(3, 32, 16, PrPixelFormat_BGRA_4444_8u), "another size");
    expectMiss(file.frameRequest(3, 64, 32, PrPixelFormat_BGRA_4444_32f), "another format");
    twSimFrameRequest otherProfile = request;
    otherProfile.useWorkingColorSpace = false;
    otherProfile.colorSpace = PrSDKColorSpaceID{{1, 2}};
    expectMiss(otherProfile, "another colour profile");
    EXPECT_GT(host().frames().createdCount(), created);

    // Other settings are other prefs bytes: every earlier frame misses.
    std::vector<unsigned char> prefs = prefsBytes(file);
    ASSERT_EQ(prefs.size(), 396u);
    prefs[388] ^= 0;  // the reload count stays: only the settings differ
    prefs[4] = 1;     // useClipAndFrameAttributes
    file.setPrefs(prefs.data(), prefs.size());
    expectMiss(request, "other prefs bytes");
}

TEST_F(ClipImportTest, FramesPastTheEndAndOfAVanishedFileAreFramesAllTheSame) {
    startHost();
    const RefClipModel model = clipOfSize(48, 24, 4);
    const std::string path = writeClip("short.braw", model);
    twSimFile& file = importClip(path);
    ASSERT_EQ(file.infoResult(), imNoErr);

    // Past the end nothing is decoded and nothing fails: the host gets its frame as it made it.
    for (long long frame : {4LL, 100LL}) {
        twSimFrameResult past = file.getSourceVideo(file.frameRequest(frame, 48, 24, PrPixelFormat_BGRA_4444_8u));
        ASSERT_EQ(past.result, imNoErr) << frame;
        ASSERT_TRUE(past.frame) << frame;
        EXPECT_EQ(differenceFrom(past.frame, std::vector<unsigned char>(48 * 24 * 4, 0)), "") << frame;
    }
    EXPECT_TRUE(host().events().all().empty());

    // Gone: the host still gets a frame and the user a message naming the file.
    const std::string away = path + ".away";
    ASSERT_EQ(std::rename(path.c_str(), away.c_str()), 0);
    twSimFrameResult gone = file.getSourceVideo(file.frameRequest(1, 48, 24, PrPixelFormat_BGRA_4444_8u));
    EXPECT_EQ(gone.result, imNoErr);
    EXPECT_TRUE(gone.frame);
    // Back: decoded again as before.
    ASSERT_EQ(std::rename(away.c_str(), path.c_str()), 0);
    twSimFrameResult back = file.getSourceVideo(file.frameRequest(2, 48, 24, PrPixelFormat_BGRA_4444_8u));
    ASSERT_EQ(back.result, imNoErr);
    EXPECT_EQ(differenceFrom(back.frame, expectedHostFrame(model, 2, 48, 24, PrPixelFormat_BGRA_4444_8u)), "");

    // A request without any frame format can't be served: no frame is made.
    const unsigned long long created = host().frames().createdCount();
    twSimFrameRequest formatless = file.frameRequest(1, 48, 24, PrPixelFormat_BGRA_4444_8u);
    formatless.formats.clear();
    twSimFrameResult none = file.getSourceVideo(formatless);
    EXPECT_EQ(none.result, 99);
    EXPECT_FALSE(none.frame);
    EXPECT_EQ(host().frames().createdCount(), created);
}

TEST_F(ClipImportTest, EachFailingStageShowsItsColourAndAMessageAndStaysOutOfTheCache) {
    startHost();
    struct Stage {
        const char* fault;  // a method or job stage of the library; empty: a damaged frame
        int red, green, blue;
        bool perFrame;  // the fault can be aimed at one frame
    };
    const Stage stages[] = {
        {"", 255, 0, 0, true},
        {"Clip.CloneClipProcessingAttributes", 0, 255, 255, false},
        {"ClipEx.CreateJobReadFrame", 255, 215, 0, true},
        {"stage.read", 128, 128, 0, true},
        {"Frame.SetResourceFormat", 0, 0, 139, true},
        {"ManualDecoderFlow1.CreateJobDecode", 0, 128, 128, true},
        {"ManualDecoderFlow1.CreateJobProcess", 106, 32, 240, true},
        {"stage.process", 218, 112, 214, true},
    };
    int index = 0;
    for (const Stage& stage : stages) {
        RefClipModel model = clipOfSize(40, 20, 8);
        const int64_t failing = 5;
        if (*stage.fault) {
            model.addFault(stage.fault, twref::RefResult::Fail, stage.perFrame ? failing : -1);
        } else {
            model.frameOverrideFor(failing).corrupt = true;
        }
        const std::string name = "stage" + std::to_string(index++) + ".braw";
        twSimFile& file = importClip(writeClip(name, model));
        ASSERT_EQ(file.infoResult(), imNoErr) << stage.fault;
        host().events().clear();
        const size_t cached = host().cache().size();
        for (PrPixelFormat format : kFormats) {
            twSimFrameResult result = file.getSourceVideo(file.frameRequest(failing, 40, 20, format));
            ASSERT_EQ(result.result, imNoErr) << stage.fault;
            int r = -1, g = -1, b = -1;
            ASSERT_TRUE(flatColour(result.frame, r, g, b)) << stage.fault;
            EXPECT_EQ(r, stage.red) << stage.fault << " " << std::hex << format;
            EXPECT_EQ(g, stage.green) << stage.fault << " " << std::hex << format;
            EXPECT_EQ(b, stage.blue) << stage.fault << " " << std::hex << format;
        }
        EXPECT_EQ(host().cache().size(), cached) << stage.fault;
        const auto events = host().events().all();
        ASSERT_EQ(events.size(), 3u) << stage.fault;
        EXPECT_EQ(events[0].type, 3u);
        EXPECT_EQ(events[0].title, "BRAW - Frame #5 from " + name +
                                       " couldn't be decoded. Footage might be corrupted! Please try to import it "
                                       "into DaVinci Resolve to see if the same frames are corrupted");
        EXPECT_EQ(events[0].description, "");
        if (!stage.perFrame) continue;
        // The frames around it decode.
        twSimFrameResult good = file.getSourceVideo(file.frameRequest(failing - 1, 40, 20, PrPixelFormat_BGRA_4444_8u));
        EXPECT_EQ(differenceFrom(good.frame, expectedHostFrame(model, 4, 40, 20, PrPixelFormat_BGRA_4444_8u)), "")
            << stage.fault;
    }
}
