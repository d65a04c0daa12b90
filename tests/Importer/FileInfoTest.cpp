// imGetInfo8 end to end: what the host learns of a reference clip, the prefs
// blob it is left with, and the companion files it is told about.

#include "ClipImportSupport.h"

#include "twImporterSharedPrefs/twImporterSharedPrefs.h"
#include "twSimText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using twref::RefClipModel;
using twref::RefResolution;
using twref::RefResolutionScale;
using twref::RefValue;

RefClipModel clipAt(float rate, uint64_t frames = 48) {
    RefClipModel model;
    model.frameRate = rate;
    model.frameCount = frames;
    return model;
}

RefClipModel anamorphicClip(const std::string& ratio, bool enabled) {
    RefClipModel model;
    model.setMetadata("anamorphic", RefValue::string(ratio));
    model.setMetadata("anamorphic_enable", RefValue::u8(enabled ? 1 : 0));
    return model;
}

// `count` entries. The library has four scales, and every entry must map back
// to itself through them: the four sizes of the clip, over and over.
const QvResolution kSizes[] = {{1920, 1080}, {960, 540}, {480, 270}, {240, 135}};
const RefResolutionScale kScales[] = {RefResolutionScale::Full, RefResolutionScale::Half,
                                      RefResolutionScale::Quarter, RefResolutionScale::Eighth};

RefClipModel clipWithResolutions(size_t count) {
    RefClipModel model;
    for (size_t i = 0; i < count; ++i) {
        RefResolution resolution;
        resolution.width = kSizes[i % 4].width;
        resolution.height = kSizes[i % 4].height;
        resolution.scale = kScales[i % 4];
        model.resolutions.push_back(resolution);
    }
    return model;
}

std::string aspect(const twSimFile& file) {
    return std::to_string(file.info().vidInfo.pixelAspectNum) + ":" + std::to_string(file.info().vidInfo.pixelAspectDen);
}

// A prefs blob of `size` bytes as an older project may hold it.
std::vector<unsigned char> blob(size_t size, uint16_t version, uint8_t newPrefs, uint8_t aspectFlag = 0) {
    std::vector<unsigned char> bytes(size, 0);
    if (size >= 2) std::memcpy(bytes.data(), &version, sizeof(version));
    if (size >= 3) bytes[2] = newPrefs;
    if (size > 392) bytes[392] = aspectFlag;
    // A reload count of the project's own: kept with the blob, lost with it.
    const uint32_t reloads = 77;
    if (size >= 392) std::memcpy(bytes.data() + 388, &reloads, sizeof(reloads));
    return bytes;
}

twImporterSharedPrefs settledPrefs(const twSimFile& file) {
    twImporterSharedPrefs prefs;
    EXPECT_EQ(file.prefsSize(), 396);
    if (file.prefsSize() == 396) std::memcpy(&prefs, file.prefs(), sizeof(prefs));
    return prefs;
}

}  // namespace

TEST_F(ClipImportTest, WhatTheHostLearnsOfAClip) {
    startHost();
    RefClipModel model = clipWithAudio(2, 48000, 24);
    model.width = 4096;
    model.height = 2160;
    model.frameRate = 25.0f;
    model.frameCount = 250;
    model.timecode.start = "10:00:00:00";
    twSimFile& file = importClip(writeClip("A001.braw", model));
    ASSERT_EQ(file.openResult(), imNoErr);
    ASSERT_EQ(file.infoResult(), imNoErr);

    const imFileInfoRec8& info = file.info();
    const auto* bytes = reinterpret_cast<const unsigned char*>(&info);
    EXPECT_EQ(info.hasVideo, 1);
    EXPECT_EQ(packed(info.vidInfo.imageWidth), 4096);
    EXPECT_EQ(packed(info.vidInfo.imageHeight), 2160);
    EXPECT_EQ(packed(info.vidInfo.depth), 24);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes + 14), 4), "WARB");
    EXPECT_EQ(bytes[18], 0);
    EXPECT_EQ(bytes[19], 1);
    EXPECT_EQ(bytes[22], 1);
    for (size_t at = 23; at < 33; ++at) EXPECT_EQ(bytes[at], 0) << at;
    EXPECT_EQ(readInt32(bytes, 50), 1);
    EXPECT_EQ(readInt32(bytes, 54), 1);
    EXPECT_EQ(readInt32(bytes, 98), 1);
    EXPECT_EQ(file.codecDescription(), "Blackmagic RAW with Tarnwick");
    EXPECT_EQ(twSimText::Utf16ToUtf8(bytes + 4837, 256), "AE.ADBE_BRAW_Source_Settings");
    EXPECT_EQ(packed(info.vidScale), 25);
    EXPECT_EQ(packed(info.vidSampleSize), 1);
    EXPECT_EQ(packed(info.vidDurationInFrames), 250);
    EXPECT_EQ(packed(info.vidInfo.isStill), 0);
    EXPECT_EQ(aspect(file), "1:1");
    // Media Encoder and Premiere Pro of interface 6 and later read audio on its own.
    EXPECT_EQ(packed(info.accessModes), kSeparateSequentialAudio);
    EXPECT_EQ(info.hasAudio, 1);
    EXPECT_EQ(packed(info.audInfo.numChannels), 2);
    EXPECT_EQ(packed(info.audInfo.sampleRate), 48000.0f);
    EXPECT_EQ(packed(info.audDuration), 480000);

    const TWI_PrivateData& data = record(file);
    EXPECT_EQ(data.clipID, 0u);
    EXPECT_TRUE(data.hasClipInfo);
    EXPECT_EQ(data.clipIDForTime, 0u);
    EXPECT_EQ(data.frameCount, 250);
    EXPECT_EQ(data.frameRate, 25.0);
    EXPECT_EQ(data.importerID, file.importerID());
    EXPECT_EQ(data.audioSampleRate, 48000.0);
    EXPECT_EQ(data.audioExpectedSamples, 480000);
    ASSERT_NE(data.timecode, nullptr);
    EXPECT_EQ(data.timecode->Str(), "10:00:00:00");
    imTimeInfoRec8 time{};
    time.dataType = 7;
    EXPECT_EQ(file.timeInfo(time), imNoErr);
    EXPECT_STREQ(time.orgtime, "10:00:00:00");
    EXPECT_EQ(packed(time.dataType), 0);

    // The host keeps a current blob, through imGetInfo8 once, with the clip's sizes.
    const twImporterSharedPrefs prefs = settledPrefs(file);
    EXPECT_EQ(prefs.version, 9);
    EXPECT_EQ(prefs.newPrefs, 0);
    EXPECT_EQ(prefs.fullRes, QvResolution(4096, 2160));
    ASSERT_EQ(prefs.resolutionCount, 4);
    EXPECT_EQ(prefs.resolutions[0], QvResolution(4096, 2160));
    EXPECT_EQ(prefs.resolutions[3], QvResolution(512, 270));

    // The importer's own file, not the host's guess, is what the host opened first.
    const std::vector<int> selectors = host().selectorsCalled();
    const auto open = std::find(selectors.begin(), selectors.end(), imOpenFile8);
    const auto info8 = std::find(selectors.begin(), selectors.end(), imGetInfo8);
    EXPECT_LT(open - selectors.begin(), info8 - selectors.begin());
}

TEST_F(ClipImportTest, FrameRatesReachTheHostByTheirClass) {
    startHost();
    struct Case {
        float rate;
        int scale;
        int sampleSize;
    };
    const Case cases[] = {
        {24000.0f / 1001.0f, 24000, 1001}, {23.976f, 24000, 1001}, {29.97f, 30000, 1001}, {59.94f, 60000, 1001},
        {25.0f, 25, 1},                    {24.0f, 24, 1},         {50.0f, 50, 1},        {12.5f, 125000, 10000},
        {7.3f, 73000, 10000},
    };
    int index = 0;
    for (const Case& c : cases) {
        twSimFile& file = importClip(writeClip("rate" + std::to_string(index++) + ".braw", clipAt(c.rate)));
        ASSERT_EQ(file.infoResult(), imNoErr) << c.rate;
        EXPECT_EQ(packed(file.info().vidScale), c.scale) << c.rate;
        EXPECT_EQ(packed(file.info().vidSampleSize), c.sampleSize) << c.rate;
        EXPECT_EQ(record(file).vidScale, c.scale) << c.rate;
        EXPECT_EQ(record(file).frameRate, static_cast<double>(c.rate)) << c.rate;
    }
    // Rates no camera records still import, with nothing undefined on the way.
    for (const float odd : {std::nanf(""), 1.0e12f, 3.0e9f + 0.5f}) {
        twSimFile& file = importClip(writeClip("odd" + std::to_string(index++) + ".braw", clipAt(odd)));
        EXPECT_EQ(file.infoResult(), imNoErr) << odd;
    }
}

TEST_F(ClipImportTest, ClipOfOneFrameIsAStill) {
    startHost();
    twSimFile& still = importClip(writeClip("still.braw", clipAt(24.0f, 1)));
    twSimFile& two = importClip(writeClip("two.braw", clipAt(24.0f, 2)));
    ASSERT_EQ(still.infoResult(), imNoErr);
    ASSERT_EQ(two.infoResult(), imNoErr);
    EXPECT_EQ(packed(still.info().vidInfo.isStill), 1);
    EXPECT_EQ(packed(still.info().vidDurationInFrames), 1);
    EXPECT_EQ(packed(two.info().vidInfo.isStill), 0);
}

TEST_F(ClipImportTest, AnamorphicPixelAspectOnlyWhenSwitchedOnAndNotRefusedByThePrefs) {
    writeOptions("INFO");
    startHost();
    const std::pair<const char*, const char*> ratios[] = {
        {"2x", "2:1"}, {"1.8x", "18:10"}, {"1.66x", "5:3"}, {"1.5x", "3:2"}, {"1.33x", "4:3"}, {"1.6x", "1:1"}};
    int index = 0;
    for (const auto& ratio : ratios) {
        twSimFile& file = importClip(writeClip("ana" + std::to_string(index++) + ".braw", anamorphicClip(ratio.first, true)));
        ASSERT_EQ(file.infoResult(), imNoErr);
        EXPECT_EQ(aspect(file), ratio.second) << ratio.first;
    }
    // A ratio this importer has no shape for is logged and left square.
    EXPECT_EQ(errorMessages(), std::vector<std::string>{"Weird value of Anamoprhic Metadata unknown !! 1.6x"});

    twSimFile& off = importClip(writeClip("off.braw", anamorphicClip("1.66x", false)));
    EXPECT_EQ(aspect(off), "1:1");

    // A project whose blob says so keeps square pixels, and the metadata is not
    // even asked for: the unknown ratio would otherwise be logged again.
    const std::string refused = writeClip("refused.braw", anamorphicClip("1.6x", true));
    const std::string squeezed = writeClip("squeezed.braw", anamorphicClip("2x", true));
    twImporterSharedPrefs current;
    current.newPrefs = 0;
    current.doNotSetAspectRatio = true;
    for (const std::string& path : {refused, squeezed}) {
        twSimFile& file = newFile(path);
        file.setPrefs(&current, sizeof(current));
        ASSERT_EQ(file.open(), imNoErr);
        ASSERT_EQ(file.getInfo(), imNoErr);
        EXPECT_EQ(aspect(file), "1:1") << path;
    }
    EXPECT_EQ(errorMessages().size(), 1u);

}

TEST_F(ClipImportTest, TwentyResolutionsFitThePrefsAndTwentyOneAreRefused) {
    startHost();
    twSimFile& twenty = importClip(writeClip("twenty.braw", clipWithResolutions(20)));
    ASSERT_EQ(twenty.infoResult(), imNoErr);
    const twImporterSharedPrefs prefs = settledPrefs(twenty);
    ASSERT_EQ(prefs.resolutionCount, 20);
    for (size_t i = 0; i < 20; ++i) EXPECT_EQ(prefs.resolutions[i], kSizes[i % 4]) << i;

    // A host that only probes the file (no prefs of its own) is told without a box.
    const std::string path = writeClip("twentyone.braw", clipWithResolutions(21));
    twSimFile& probed = importClip(path);
    EXPECT_EQ(probed.infoResult(), imOtherErr);
    EXPECT_EQ(probed.info().hasVideo, 0);
    EXPECT_TRUE(events().empty());

    // A host that asked for prefs first is importing for real: the user sees why.
    twSimFile& imported = newFile(path);
    ASSERT_EQ(imported.open(), imNoErr);
    ASSERT_EQ(imported.getPrefs(), imNoErr);
    EXPECT_EQ(imported.getInfo(), imOtherErr);
    EXPECT_EQ(imported.info().hasVideo, 0);
    EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - GetInfo from BM - Max number of available resolutions "
                                                 "reached - 21| - " +
                                                 bugReportText()});
}

TEST_F(ClipImportTest, CompanionFilesAreRegisteredOnlyWhenPresentByCuttingFourCharacters) {
    startHost();
    const std::string plain = writeClip("plain.braw", RefClipModel());
    importClip(plain);
    EXPECT_TRUE(host().registrations().history().empty());

    const std::string both = writeClip("both.braw", RefClipModel());
    m_folder.writeFile("both.braw2", "second card");
    m_folder.writeFile("both.sidecar", "{}");
    importClip(both);
    std::vector<twSimFileRegistration> made = host().registrations().history();
    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(made[0].tag, "BRAW dual Card File");
    EXPECT_EQ(made[0].path, m_folder.join("both.braw2"));
    EXPECT_EQ(made[1].tag, "Sidecar BRAW File");
    EXPECT_EQ(made[1].path, m_folder.join("both.sidecar"));
    for (const auto& registration : made) {
        EXPECT_EQ(registration.pluginID, static_cast<csSDK_uint32>(twSimHostConfig().pluginID));
        EXPECT_EQ(registration.numExtensions, 1);
        EXPECT_EQ(registration.flags, 0u);
    }

    // The rule counts characters, whatever the name ends with: "plan.éraw" less
    // "éraw" is "plan.", whose sidecar is "plan.sidecar".
    const std::string odd = writeClip("plan.\xc3\xa9raw", RefClipModel());
    m_folder.writeFile("plan.sidecar", "{}");
    m_folder.writeFile("plan.\xc3\xa9raw.sidecar", "{}");
    ASSERT_EQ(importClip(odd).infoResult(), imNoErr);
    made = host().registrations().history();
    ASSERT_EQ(made.size(), 3u);
    EXPECT_EQ(made[2].tag, "Sidecar BRAW File");
    EXPECT_EQ(made[2].path, m_folder.join("plan.sidecar"));
}

TEST_F(ClipImportTest, PrefsBlobIsSettledForEachOrigin) {
    writeOptions("INFO");
    startHost();
    const std::string path = writeClip("clip.braw", RefClipModel());
    struct Case {
        const char* name;
        std::vector<unsigned char> bytes;  // empty: no prefs at all
        int origin;
        bool kept;
        bool doNotSetAspectRatio;
    };
    const Case cases[] = {
        {"none", {}, 0, false, false},
        {"shorter than its header", blob(2, 9, 1), 0, false, false},
        {"older than version 2", blob(396, 1, 1), 2, false, true},
        {"version 8 of the current size", blob(396, 8, 1, 0), 1, false, true},
        {"version 9 of another size", blob(300, 9, 0), 2, false, false},
        {"version 9 cut after its aspect flag", blob(393, 9, 0, 1), 2, false, true},
        {"version 10", blob(396, 10, 0, 1), 2, false, false},
        {"current, new", blob(396, 9, 1, 1), 1, true, true},
        {"current, known", blob(396, 9, 0), 2, true, false},
    };
    size_t logged = 0;
    for (const Case& c : cases) {
        twSimFile& file = newFile(path);
        if (!c.bytes.empty()) file.setPrefs(c.bytes.data(), c.bytes.size());
        ASSERT_EQ(file.open(), imNoErr) << c.name;
        ASSERT_EQ(file.getInfo(), imNoErr) << c.name;

        const twImporterSharedPrefs settled = settledPrefs(file);
        EXPECT_EQ(settled.sidecarReloadCount, c.kept ? 77u : 0u) << c.name;
        EXPECT_EQ(settled.version, 9) << c.name;
        EXPECT_EQ(settled.newPrefs, 0) << c.name;
        EXPECT_EQ(settled.doNotSetAspectRatio, c.doNotSetAspectRatio) << c.name;
        EXPECT_EQ(settled.resolutionCount, 4) << c.name;
        EXPECT_EQ(settled.fullRes, QvResolution(1920, 1080)) << c.name;

        const std::string text = logText();
        const size_t at = text.find("getInfoOrigin is ", logged);
        ASSERT_NE(at, std::string::npos) << c.name;
        EXPECT_EQ(text.substr(at, 18), "getInfoOrigin is " + std::to_string(c.origin)) << c.name;
        logged = at + 1;
    }
    EXPECT_EQ(errorMessages(), std::vector<std::string>{"Prefs size is inferior to SharedPrefsJsonCheck size : 2"});
}

