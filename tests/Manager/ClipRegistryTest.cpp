// The registry: numbers handed out densely and kept for good, look-ups by
// number and by path, closing and reopening, files that go away and come
// back, and the gathering of a clip's settings data and metadata.

#include "ManagerTestSupport.h"

#include "Manager/twSettingsInitData.h"
#include "Writer/RefClipWriter.h"
#include "Utils/qvUtils.h"
#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <vector>

namespace {

using twref::RefValue;

class ClipRegistry : public twtest::ManagerTest {
protected:
    std::string clipPath(const std::string& name) { return writeClip(name, smallModel()); }
};

}  // namespace

TEST_F(ClipRegistry, NumbersAreDenseAndAFailedOpeningTakesNone) {
    const std::string a = clipPath("a.braw");
    const std::string b = clipPath("b.braw");
    const std::string upperA = clipPath("A.braw");

    uint64_t id = 99;
    bool wasKnown = true;
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, &wasKnown), 0);
    EXPECT_EQ(id, 0u);
    EXPECT_FALSE(wasKnown);
    EXPECT_TRUE(logged("INFO", "New Clip from " + a + " initialized with ID #0"));
    EXPECT_TRUE(logged("INFO", "Number of clips in memory : 1"));

    // A file the library refuses takes no number, and the next clip takes it.
    twref::RefClipWriter::writeBytes(m_roots.folder().join("damaged.braw"), "not a clip");
    EXPECT_EQ(m_manager->AddClipIfNew(m_roots.folder().join("damaged.braw"), id, nullptr), 1);
    EXPECT_EQ(id, 1u);
    EXPECT_EQ(m_manager->AddClip(m_roots.folder().join("missing.braw"), id), 1);
    EXPECT_EQ(id, 1u);
    EXPECT_TRUE(logged("ERR", "Opening clip did not work !"));
    EXPECT_EQ(m_manager->GetClipsCount(), 1u);

    EXPECT_EQ(m_manager->AddClipIfNew(b, id, &wasKnown), 0);
    EXPECT_EQ(id, 1u);
    // A known healthy path answers its number without opening the file again.
    IBlackmagicRawClip* const library = m_manager->GetClip(0)->m_BM;
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, &wasKnown), 0);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(wasKnown);
    EXPECT_EQ(m_manager->GetClip(0)->m_BM, library);
    EXPECT_TRUE(logged("INFO", "Clip has been found. ID : 0"));
    // Paths are compared byte for byte.
    EXPECT_EQ(m_manager->AddClipIfNew(upperA, id, &wasKnown), 0);
    EXPECT_EQ(id, 2u);
    EXPECT_FALSE(wasKnown);
    EXPECT_EQ(m_manager->GetClipsCount(), 3u);

    for (uint64_t number = 0; number < 3; ++number) {
        const auto clip = m_manager->GetClip(number);
        ASSERT_NE(clip, nullptr);
        EXPECT_EQ(clip->m_ID, number);
        uint64_t found = 99;
        std::shared_ptr<qvBRAW_Clip> byPath;
        EXPECT_TRUE(m_manager->GetClipIDFromFilepath(clip->m_path, found, byPath));
        EXPECT_EQ(found, number);
        EXPECT_EQ(byPath, clip);
    }
    std::shared_ptr<qvBRAW_Clip> none;
    EXPECT_FALSE(m_manager->GetClipIDFromFilepath(m_roots.folder().join("B.braw"), id, none));
    EXPECT_EQ(none, nullptr);
    // Looking beyond the count inserts nothing.
    EXPECT_EQ(m_manager->GetClip(3), nullptr);
    EXPECT_EQ(m_manager->GetClip(UINT64_MAX), nullptr);
    EXPECT_EQ(m_manager->m_clips.size(), 3u);
}

TEST_F(ClipRegistry, ClosedClipsKeepTheirNumberAndReopenOnTheNextAdd) {
    const std::string a = clipPath("a.braw");
    uint64_t id = 0;
    ASSERT_EQ(m_manager->AddClipIfNew(a, id, nullptr), 0);
    const auto clip = m_manager->GetClip(id);

    EXPECT_EQ(m_manager->CloseClip(id), 0);
    EXPECT_FALSE(clip->m_opened);
    EXPECT_EQ(clip->m_BM, nullptr);
    // Still given, with a warning.
    EXPECT_EQ(m_manager->GetClip(id), clip);
    EXPECT_TRUE(logged("WARN", "Getting Clip Closed ! Could involve errors"));

    bool wasKnown = false;
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, &wasKnown), 0);
    EXPECT_TRUE(wasKnown);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(clip->m_opened);
    EXPECT_NE(clip->m_BM, nullptr);

    EXPECT_EQ(m_manager->CloseClip(clip), 0);
    EXPECT_FALSE(clip->m_opened);
    EXPECT_EQ(m_manager->reloadClipIfNeeded(id), 0);
    EXPECT_TRUE(clip->m_opened);

    EXPECT_EQ(m_manager->CloseClip(42), 0);
    EXPECT_EQ(m_manager->CloseClip(std::shared_ptr<qvBRAW_Clip>()), 0);
    EXPECT_EQ(m_manager->reloadClipIfNeeded(42), 1);
    EXPECT_TRUE(logged("ERR", "reloadClipIfNeeded - Clip is NullPtr"));
}

TEST_F(ClipRegistry, AFileRemovedStaysRegisteredAndIsReloadedOnceRestored) {
    const std::string a = clipPath("a.braw");
    uint64_t id = 0;
    ASSERT_EQ(m_manager->AddClipIfNew(a, id, nullptr), 0);
    const auto clip = m_manager->GetClip(id);

    std::filesystem::rename(a, a + ".kept");
    bool wasKnown = false;
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, &wasKnown), 0);
    EXPECT_TRUE(wasKnown);
    EXPECT_EQ(m_manager->GetClip(id), clip);
    EXPECT_EQ(clip->m_BM, nullptr) << "the reload failed and left the clip without a library object";
    EXPECT_EQ(m_manager->reloadClipIfNeeded(id), 0);
    EXPECT_EQ(clip->m_BM, nullptr);

    std::filesystem::rename(a + ".kept", a);
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, &wasKnown), 0);
    EXPECT_EQ(id, 0u);
    EXPECT_NE(clip->m_BM, nullptr);
    EXPECT_FALSE(clip->doesNeedToBeReloaded());
    EXPECT_EQ(m_manager->GetClipsCount(), 1u);
}

TEST_F(ClipRegistry, SettingsDataAndMetadataAreGatheredOnceByOneReadOfTheFirstFrame) {
    twref::RefClipModel model = twref::RefClipWriter::makeClipWithAudio(64, 36, 24.0f, 4, 2, 48000, 16);
    model.metadata.clear();
    model.setMetadata("camera_type", RefValue::string("Reference Camera 6K"));
    model.setMetadata("iso", RefValue::u32(800));
    model.frameMetadata.clear();
    model.setFrameMetadata("shutter_value", RefValue::string("180\xC2\xB0"));
    uint64_t id = 0;
    ASSERT_EQ(m_manager->AddClip(writeClip("data.braw", model), id), 0);
    const auto clip = m_manager->GetClip(id);

    std::mutex countsMutex;
    std::map<std::string, std::vector<uint64_t>> stages;
    twtest::ScopedStageHook hook([&](const std::string& stage, uint64_t frame, qvBRAW_Request*) {
        std::lock_guard<std::mutex> lock(countsMutex);
        stages[stage].push_back(frame);
    });

    bool generated = false;
    std::shared_ptr<twSettingsInitData> data = std::make_shared<twImporterSettingsInitData>();
    const twSettingsInitData* const given = data.get();
    ASSERT_TRUE(m_manager->getAllDataFromClip(generated, id, true, data, true).isOk());
    EXPECT_TRUE(generated);
    EXPECT_EQ(data.get(), given) << "the caller's data becomes the clip's";
    EXPECT_EQ(clip->m_sourceSettingsInitData, data);
    EXPECT_TRUE(data->ready);
    EXPECT_EQ(data->isoCount, 16u) << "the frame's facts are in";
    // The clip's own list, then the first frame's, then the audio figures.
    EXPECT_EQ(clip->m_metadata, (qvBRAW_MetadataList{{"camera_type", "Reference Camera 6K"},
                                                     {"iso", "800"},
                                                     {"shutter_value", "180\xC2\xB0"},
                                                     {"audioBitDepth", "16"},
                                                     {"audioChannelCount", "2"},
                                                     {"audioSampleRate", "48000"},
                                                     {"audioSampleCount", "8000"}}));

    std::shared_ptr<twSettingsInitData> second;
    generated = true;
    ASSERT_TRUE(m_manager->getAllDataFromClip(generated, id, true, second, true).isOk());
    EXPECT_FALSE(generated);
    EXPECT_EQ(second, data);
    EXPECT_TRUE(logged("INFO", "ClipSourceSettingsInitData already exists for this clip !"));
    {
        // Two calls, one read of frame 0, and no decode at all.
        std::lock_guard<std::mutex> lock(countsMutex);
        EXPECT_EQ(stages["read"], std::vector<uint64_t>{0});
        EXPECT_TRUE(stages["decode"].empty());
        EXPECT_TRUE(stages["process"].empty());
    }
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u) << "the probe leaves the queue";

    // A reload drops both; settings alone are then made without the metadata.
    ASSERT_TRUE(clip->reload(m_manager->m_codec).isOk());
    std::shared_ptr<twSettingsInitData> third;
    ASSERT_TRUE(m_manager->getAllDataFromClip(generated, id, true, third, false).isOk());
    EXPECT_TRUE(generated);
    ASSERT_NE(third, nullptr);
    EXPECT_NE(third, data);
    EXPECT_EQ(clip->m_sourceSettingsInitData, third);
    EXPECT_TRUE(clip->m_metadata.empty());

    std::shared_ptr<twSettingsInitData> none;
    const QvResult unknown = m_manager->getAllDataFromClip(generated, 5, true, none, true);
    EXPECT_EQ(unknown.toString().Str(), "initClipSourceSettingsInitData - Clip is NullPtr");
}

TEST_F(ClipRegistry, AManagerThatFailedToStartRefusesClips) {
    qvBRAW_Manager idle;
    uint64_t id = 7;
    EXPECT_EQ(idle.AddClipIfNew(clipPath("a.braw"), id, nullptr), 1);
    EXPECT_EQ(idle.GetClipsCount(), 0u);
    EXPECT_EQ(idle.reloadClipIfNeeded(0), 1);
    EXPECT_TRUE(logged("ERR", "reloadClipIfNeeded - Nothing to do, BM is not init !"));
    bool generated = true;
    std::shared_ptr<twSettingsInitData> data;
    EXPECT_TRUE(idle.getAllDataFromClip(generated, 0, true, data, true).hasError);
    EXPECT_EQ(data, nullptr);
}

namespace {

// A factory whose clip geometries can't be made.
class ClipRegistryWithoutGeometry : public ClipRegistry {
protected:
    std::string installFacts() const override {
        return twtest::factsWithFaults(R"([{"method": "Factory.CreateClipGeometry"}])");
    }
};

}  // namespace

TEST_F(ClipRegistryWithoutGeometry, AMissingGeometryFailsTheAddAndLeavesTheRegistryUsable) {
    const std::string a = clipPath("a.braw");
    uint64_t id = 5;
    EXPECT_EQ(m_manager->AddClip(a, id), static_cast<int32_t>(0x80000008));
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(logged("ERR", "Impossible to Create Clip Geometry .. " +
                                  qvUtils::getHRESULTerrorMessage(static_cast<int32_t>(0x80000008)).Str()));
    // The registry's lock was given back.
    EXPECT_EQ(m_manager->GetClip(0), nullptr);
    std::shared_ptr<qvBRAW_Clip> clip;
    EXPECT_FALSE(m_manager->GetClipIDFromFilepath(a, id, clip));
    EXPECT_EQ(m_manager->AddClipIfNew(a, id, nullptr), static_cast<int32_t>(0x80000008));
}
