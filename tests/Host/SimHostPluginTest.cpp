// The simulator end to end, through dlopen and the test plug-in.

#include "SimTestSupport.h"
#include "twSimAsyncReader.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>

namespace {

const PrPixelFormat kBgra8 = PrPixelFormat_BGRA_4444_8u;

}  // namespace

TEST_F(SimHostTest, InitHandsTheIdentityAndKeepsTheImporterRecord) {
    twSimHostConfig config;
    config.identity = twSimIdentity::MediaEncoder();
    config.identity.setVersion("25.2.1");
    config.identity.interfaceVersion = 18;
    config.useTestRoots = true;
    config.testHome = m_folder.join("home");
    config.testSystemRoot = m_folder.join("root");
    twSimHost& h = start(config);
    // The roots are handed over at load time, before anything else.
    EXPECT_EQ(pluginText("home"), m_folder.join("home"));
    EXPECT_EQ(pluginText("systemRoot"), m_folder.join("root"));

    ASSERT_EQ(h.init(), imNoErr);
    EXPECT_EQ(pluginText("appFourCC"), "AME ");
    EXPECT_EQ(pluginText("appVersion"), "25.2.1");
    EXPECT_EQ(pluginText("interface"), "18");

    // What the importer wrote is read back at the published offsets.
    const auto* bytes = reinterpret_cast<const unsigned char*>(&h.importInfo());
    csSDK_int32 priority = 0, sourceSettings = 0;
    std::memcpy(&priority, bytes + 52, 4);
    std::memcpy(&sourceSettings, bytes + 145, 4);
    EXPECT_EQ(priority, 0x7FFFFFFF);
    EXPECT_EQ(sourceSettings, 1);
    const prUTF16Char* accelerator = h.importInfo().acceleratorFileExt;  // packed member: copy it out first
    EXPECT_NE(accelerator, nullptr);

    EXPECT_EQ(h.shutdown(), imNoErr);
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, CatalogueEnumeratesUntilThePluginStops) {
    twSimHost& h = start();
    ASSERT_EQ(h.init(), imNoErr);
    csSDK_int32 end = 0;
    const auto formats = h.formats(&end);
    EXPECT_EQ(end, imBadFormatIndex);
    ASSERT_EQ(formats.size(), 1u);
    EXPECT_EQ(formats[0].flags, 0xC008);
    EXPECT_EQ(formats[0].name, "Simulator test clip");
    EXPECT_EQ(formats[0].shortName, "Test clip");
    EXPECT_EQ(formats[0].extensions, (std::vector<std::string>{"twtest", "twt"}));

    const auto pixels = h.pixelFormats(&end);
    EXPECT_EQ(end, imBadFormatIndex);
    EXPECT_EQ(pixels, (std::vector<PrPixelFormat>{kBgra8, PrPixelFormat_BGRA_4444_32f, PrPixelFormat_BGRA_4444_16u}));

    // The sub-type array is the importer's allocation, read and freed by the host.
    const auto subTypes = h.subTypeNames(formats[0].filetype, &end);
    EXPECT_EQ(end, imNoErr);
    ASSERT_EQ(subTypes.size(), 2u);
    EXPECT_EQ(subTypes[0], std::make_pair(static_cast<csSDK_int32>(imUncompressed), std::string("Uncompressed")));
    EXPECT_EQ(subTypes[1].second, "Variant");
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, LoadingFailuresAreReported) {
    twSimHost h;
    try {
        h.loadPlugin(m_folder.join("missing.so"));
        FAIL() << "loading a missing module must throw";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("missing.so"), std::string::npos);
    }
    EXPECT_FALSE(h.hasPlugin());
    // A second host while one is alive would make the C tables ambiguous.
    EXPECT_THROW(twSimHost second, std::logic_error);
}

TEST_F(SimHostTest, FileGoesThroughTheHostsOrderAndLeavesNothingBehind) {
    twSimHost& h = start();
    ASSERT_EQ(h.init(), imNoErr);
    const std::string path = clip(64, 48, 10);
    auto file = h.importFile(path);
    ASSERT_EQ(file->openResult(), imNoErr);
    ASSERT_EQ(file->infoResult(), imNoErr);
    // The host learns the file's type from the catalogue, then opens, then asks.
    EXPECT_EQ(h.selectorsCalled(),
              (std::vector<int>{imInit, imGetIndFormat, imGetIndFormat, imOpenFile8, imGetInfo8}));
    EXPECT_EQ(file->fileType(), h.formats().front().filetype);

    // Members of packed records are copied out before gtest takes references.
    const imFileInfoRec8& info = file->info();
    const csSDK_int32 width = info.vidInfo.imageWidth, height = info.vidInfo.imageHeight;
    const csSDK_int64 frames = info.vidDurationInFrames;
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 48);
    EXPECT_EQ(frames, 10);
    EXPECT_EQ(file->codecDescription(), "Test Codec");
    EXPECT_NE(file->privateData(), nullptr);
    EXPECT_EQ(file->prefsSize(), 8);

    // The importer's companion registration names the plug-in ID the host gave.
    const auto registrations = h.registrations().current();
    ASSERT_EQ(registrations.size(), 1u);
    EXPECT_EQ(registrations[0].pluginID, static_cast<csSDK_uint32>(h.config().pluginID));
    EXPECT_EQ(registrations[0].path, path);

    // While open, the private data is the importer's and its prefs the host's.
    const twSimLeakReport open = h.leakReport();
    EXPECT_EQ(open.handles.size(), 1u);
    EXPECT_TRUE(open.pointers.empty());
    EXPECT_EQ(h.suites().outstanding(kPrSDKPPixCacheSuite), 1);

    EXPECT_EQ(file->quiet(), imNoErr);
    EXPECT_EQ(file->fileRef(), imInvalidHandleValue());
    EXPECT_EQ(file->open(), imNoErr);
    EXPECT_EQ(file->close(), imNoErr);
    file.reset();
    EXPECT_EQ(h.shutdown(), imNoErr);
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, SourceVideoIsCachedUnderTheExactKey) {
    twSimHost& h = start();
    ASSERT_EQ(h.init(), imNoErr);
    auto file = h.importFile(clip(32, 16, 10));
    const twSimFrameRequest request = file->frameRequest(3, 32, 16, kBgra8);

    twSimFrameResult first = file->getSourceVideo(request);
    ASSERT_EQ(first.result, imNoErr);
    ASSERT_TRUE(first.frame);
    EXPECT_EQ(first.frame.pixel(5, 7), (std::vector<unsigned char>{5, 7, 3, 255}));
    EXPECT_EQ(first.frame.info().references, 2);  // ours and the cache's
    EXPECT_EQ(first.frame.info().cacheReferences, 1);

    twSimFrameResult again = file->getSourceVideo(request);
    EXPECT_EQ(again.frame.handle(), first.frame.handle());
    EXPECT_EQ(h.cache().stats().hits, 1u);

    // New-generation key: quality, prefs bytes and the host's colour space.
    const auto entries = h.cache().entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].key.generation, twSimCacheGeneration::ColorSpace);
    EXPECT_EQ(entries[0].key.importerID, static_cast<csSDK_uint32>(file->importerID()));
    EXPECT_EQ(entries[0].key.frame, 3);
    EXPECT_EQ(entries[0].key.prefs, std::string(file->prefs(), 8));
    EXPECT_EQ(entries[0].key.colorSpace,
              std::string(reinterpret_cast<const char*>(&h.config().workingColorSpace), 16));

    // One byte more in the prefs, or another accepted format, misses.
    char changed[8];
    std::memcpy(changed, file->prefs(), 8);
    changed[7] = 1;
    file->setPrefs(changed, 8);
    twSimFrameResult otherPrefs = file->getSourceVideo(request);
    EXPECT_NE(otherPrefs.frame.handle(), first.frame.handle());
    twSimFrameResult otherFormat = file->getSourceVideo(file->frameRequest(3, 32, 16, PrPixelFormat_BGRA_4444_32f));
    EXPECT_EQ(otherFormat.frame.info().format, PrPixelFormat_BGRA_4444_32f);
    EXPECT_EQ(h.cache().stats().hits, 1u);
    EXPECT_EQ(h.cache().size(), 3u);

    first.frame.reset();
    again.frame.reset();
    otherPrefs.frame.reset();
    otherFormat.frame.reset();
    file.reset();
    h.shutdown();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, OlderInterfaceUsesTheOldCacheGeneration) {
    twSimHostConfig config;
    config.identity.interfaceVersion = 18;
    twSimHost& h = start(config);
    ASSERT_EQ(h.init(), imNoErr);
    auto file = h.importFile(clip(8, 8, 2));
    twSimFrameResult frame = file->getSourceVideo(file->frameRequest(1, 8, 8, kBgra8));
    ASSERT_TRUE(frame.frame);
    const auto entries = h.cache().entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].key.generation, twSimCacheGeneration::Plain);
    EXPECT_TRUE(entries[0].key.colorSpace.empty());
}

TEST_F(SimHostTest, PaddedAndBackwardRowsReachThePlugin) {
    for (const bool negative : {false, true}) {
        SCOPED_TRACE(negative ? "negative row bytes" : "padded rows");
        twSimHostConfig config;
        config.frameLayout.rowAlignment = 64;
        config.frameLayout.rowPaddingBytes = 12;
        config.frameLayout.negativeRowBytes = negative;
        twSimHost& h = start(config);
        ASSERT_EQ(h.init(), imNoErr);
        auto file = h.importFile(clip(10, 6, 4));
        twSimFrameResult r = file->getSourceVideo(file->frameRequest(2, 10, 6, kBgra8));
        ASSERT_TRUE(r.frame);
        const twSimFrameInfo info = r.frame.info();
        EXPECT_EQ(info.rowBytes, negative ? -76 : 76);  // 40 bytes rounded to 64, plus 12
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 10; ++x)
                ASSERT_EQ(r.frame.pixel(x, y), (std::vector<unsigned char>{static_cast<unsigned char>(x),
                                                                            static_cast<unsigned char>(y), 2, 255}));
        r.frame.reset();
        file.reset();
        h.shutdown();
        EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
    }
}

TEST_F(SimHostTest, LeaksAndMisuseOfThePluginAreReported) {
    const std::vector<std::pair<const char*, std::function<bool(const twSimLeakReport&, twSimHost&)>>> cases = {
        {"leakHandle", [](const twSimLeakReport& r, twSimHost&) { return r.handles.size() == 1; }},
        {"leakFrame", [](const twSimLeakReport& r, twSimHost&) { return r.frames.size() == 1; }},
        {"keepSuite",
         [](const twSimLeakReport& r, twSimHost&) {
             return r.suites.size() == 1 && r.suites[0].find(kPrSDKAppInfoSuite) != std::string::npos;
         }},
        {"unlockTwice",
         [](const twSimLeakReport& r, twSimHost& h) {
             return !r.misuse.empty() && h.diagnostics().count(twSimIssue::UnlockNotLocked) == 1;
         }},
        {"doubleDispose",
         [](const twSimLeakReport& r, twSimHost& h) {
             return !r.misuse.empty() && h.diagnostics().count(twSimIssue::UnknownFrame) == 1;
         }},
        {"writePastRow",
         [](const twSimLeakReport& r, twSimHost& h) {
             return !r.misuse.empty() && h.diagnostics().count(twSimIssue::FrameBufferOverrun) == 1;
         }},
        {"throw",
         [](const twSimLeakReport& r, twSimHost& h) {
             return !r.misuse.empty() && h.diagnostics().count(twSimIssue::ExceptionEscaped) == 1;
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first);
        twSimHost& h = start();
        control(c.first, 1);
        ASSERT_EQ(h.init(), imNoErr);
        {
            auto file = h.importFile(clip(8, 8, 2));
            file->getSourceVideo(file->frameRequest(0, 8, 8, kBgra8));
            if (std::string(c.first) == "throw") {
                EXPECT_EQ(h.call(imGetSupports8, nullptr, nullptr), malUnknownError);
            }
        }
        h.shutdown();
        const twSimLeakReport report = h.leakReport();
        EXPECT_FALSE(report.clean());
        EXPECT_TRUE(c.second(report, h)) << report.toString();
    }
}

TEST_F(SimHostTest, SuiteVersionMismatchIsToleratedButVisible) {
    twSimHost& h = start();
    control("cacheVersionMismatch", 1);
    ASSERT_EQ(h.init(), imNoErr);
    h.importFile(clip(8, 8, 2)).reset();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
    EXPECT_EQ(h.diagnostics().count(twSimIssue::ReleaseVersionMismatch), 1u);
    bool sawV6 = false, sawV8 = false;
    for (const auto& u : h.suites().usage()) {
        if (u.name != kPrSDKPPixCacheSuite) continue;
        sawV6 |= u.version == 6 && u.acquired == 1 && u.released == 0;
        sawV8 |= u.version == 8 && u.acquired == 0 && u.released == 1;
    }
    EXPECT_TRUE(sawV6 && sawV8);
}

TEST_F(SimHostTest, MissingSuiteAndIdentityFaultsReachThePlugin) {
    twSimHost& h = start();
    h.setFault(twSimFault::AppInfoFourCC, true);
    ASSERT_EQ(h.init(), imNoErr);
    EXPECT_EQ(pluginText("appFourCC"), "");
    EXPECT_EQ(pluginText("appVersion"), "24.0.0");

    h.suites().setAvailable(kPrSDKPPixSuite, false);
    auto file = h.importFile(clip(8, 8, 2));
    EXPECT_EQ(file->infoResult(), imOtherErr);
    EXPECT_EQ(h.diagnostics().count(twSimIssue::SuiteNotFound), 1u);
    file.reset();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, PrefsColourSpacesAndAudio) {
    twSimHost& h = start();
    ASSERT_EQ(h.init(), imNoErr);
    auto file = h.importFile(clip(8, 8, 2));
    char* before = file->prefs();
    const char counter = before[4];

    // Two passes; the host's buffer starts from the current blob and replaces it.
    EXPECT_EQ(file->getPrefs(), imNoErr);
    EXPECT_EQ(file->prefsSize(), 8);
    EXPECT_EQ(file->prefs()[4], counter + 1);
    const std::vector<int> selectors = h.selectorsCalled();
    EXPECT_EQ(std::count(selectors.begin(), selectors.end(), static_cast<int>(imGetPrefs8)), 2);

    csSDK_int32 end = 0;
    const auto spaces = file->colorSpaces(&end);
    ASSERT_EQ(spaces.size(), 1u);
    EXPECT_EQ(spaces[0].type, kPrSDKColorSpaceType_Predefined);
    EXPECT_EQ(spaces[0].name, "BT.709");
    EXPECT_EQ(end, imOtherErr);

    // 2 frames at 25 fps of 48 kHz: 3840 samples; a read across the end leaves
    // the host's fill in place.
    const twSimAudioResult audio = file->importAudio(3830, 20, 2, -7.0f);
    ASSERT_EQ(audio.result, imNoErr);
    EXPECT_FLOAT_EQ(audio.channels[0][0], 3830.0f / 32768.0f);
    EXPECT_FLOAT_EQ(audio.channels[1][9], -3839.0f / 32768.0f);
    EXPECT_FLOAT_EQ(audio.channels[0][10], -7.0f);

    file.reset();
    h.shutdown();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostTest, AsyncReaderProtocol) {
    twSimHost& h = start();
    control("pendingOnce", 1);
    ASSERT_EQ(h.init(), imNoErr);
    auto file = h.importFile(clip(16, 8, 10));
    csSDK_int32 created = -1;
    auto reader = file->createAsyncReader(&created);
    ASSERT_EQ(created, imNoErr);
    ASSERT_TRUE(reader);

    const twSimFrameRequest request = file->frameRequest(4, 16, 8, kBgra8);
    EXPECT_EQ(reader->initiateRead(request), aiNoError);
    // The first answer is "still rendering"; the host asks again.
    twSimFrameResult pending = reader->getFrame(request);
    EXPECT_EQ(pending.result, suiteError_RenderPending);
    EXPECT_FALSE(pending.frame);
    twSimFrameResult frame = reader->waitForFrame(request);
    ASSERT_EQ(frame.result, aiNoError);
    EXPECT_EQ(frame.frame.pixel(1, 2), (std::vector<unsigned char>{1, 2, 4, 255}));

    // A frame already in the cache: initiating it again queues nothing.
    EXPECT_EQ(reader->initiateRead(request), aiNoError);
    EXPECT_EQ(reader->close(), aiNoError);
    EXPECT_TRUE(reader->closed());
    EXPECT_EQ(reader->flush(), aiUnknownError);  // never sent after close
    EXPECT_EQ(h.diagnostics().count(twSimIssue::CallAfterClose), 1u);

    const auto log = h.callLog();
    ASSERT_GE(log.size(), 2u);
    EXPECT_TRUE(log[log.size() - 2].async && log[log.size() - 2].selector == aiFlush);
    EXPECT_TRUE(log.back().async && log.back().selector == aiClose);

    frame.frame.reset();
    reader.reset();
    file.reset();
    h.shutdown();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}
