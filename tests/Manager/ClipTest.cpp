// One clip against the reference decoder: what opening reads and refuses, the
// file going away and coming back, the desqueezed clone, the timecode readers,
// the LUT buffers and the camera's settings.

#include "ManagerTestSupport.h"

#include "Manager/twSettingsInitData.h"
#include "Writer/RefClipWriter.h"

#include <cstring>
#include <filesystem>

namespace {

using twref::RefClipModel;
using twref::RefResolution;
using twref::RefResolutionScale;
using twref::RefValue;

class Clip : public twtest::ManagerTest {
protected:
    void TearDown() override {
        for (IBlackmagicRawClipGeometry* geometry : m_geometries) geometry->Release();
        twtest::ManagerTest::TearDown();
    }

    // Opens `path` as the registry would, outside the registry.
    QvResult open(const std::string& path, std::shared_ptr<qvBRAW_Clip>& clip) {
        IBlackmagicRawClipGeometry* geometry = nullptr;
        EXPECT_EQ(m_manager->createGeometryForClip(&geometry), 0);
        m_geometries.push_back(geometry);
        clip = std::make_shared<qvBRAW_Clip>(7, path);
        return clip->openAndInit(m_manager->m_codec, geometry);
    }
    std::shared_ptr<qvBRAW_Clip> openOk(const std::string& path) {
        std::shared_ptr<qvBRAW_Clip> clip;
        const QvResult result = open(path, clip);
        EXPECT_TRUE(result.isOk()) << result.toString().Str();
        return clip;
    }
    // The opening's error text for a clip of `model`; the clip then holds no
    // library object and its lock is free.
    std::string openingError(const RefClipModel& model) {
        std::shared_ptr<qvBRAW_Clip> clip;
        const QvResult result = open(writeClip("failing.braw", model), clip);
        EXPECT_TRUE(result.hasError);
        EXPECT_EQ(clip->m_BM, nullptr);
        EXPECT_EQ(clip->m_BMEx, nullptr);
        EXPECT_TRUE(clip->m_bmClipMutex.try_lock());
        clip->m_bmClipMutex.unlock();
        return result.toString().Str();
    }
    static bool startsWith(const std::string& text, const std::string& head) {
        return text.compare(0, head.size(), head) == 0;
    }

    std::vector<IBlackmagicRawClipGeometry*> m_geometries;
};

uint32_t libraryWidth(IBlackmagicRawClip* clip) {
    uint32_t width = 0;
    clip->GetWidth(&width);
    return width;
}

// A clip that also answers for its processing attributes, with a clone of
// them: the LUT buffers ask the clip object itself, which the reference
// decoder's clips don't answer. Everything else goes to the library's clip,
// whose reference it takes over.
class AttributesAnsweringClip final : public IBlackmagicRawClip {
public:
    explicit AttributesAnsweringClip(IBlackmagicRawClip* inner) : m_inner(inner) {}

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override {
        if (std::memcmp(&iid, &IID_IBlackmagicRawClipProcessingAttributes, sizeof(iid)) == 0) {
            return m_inner->CloneClipProcessingAttributes(reinterpret_cast<IBlackmagicRawClipProcessingAttributes**>(out));
        }
        return m_inner->QueryInterface(iid, out);
    }
    ULONG AddRef() override { return ++m_references; }
    ULONG Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            m_inner->Release();
            delete this;
        }
        return left;
    }
    HRESULT GetWidth(uint32_t* v) override { return m_inner->GetWidth(v); }
    HRESULT GetHeight(uint32_t* v) override { return m_inner->GetHeight(v); }
    HRESULT GetFrameRate(float* v) override { return m_inner->GetFrameRate(v); }
    HRESULT GetFrameCount(uint64_t* v) override { return m_inner->GetFrameCount(v); }
    HRESULT GetTimecodeForFrame(uint64_t f, const char** t) override { return m_inner->GetTimecodeForFrame(f, t); }
    HRESULT GetMetadataIterator(IBlackmagicRawMetadataIterator** i) override { return m_inner->GetMetadataIterator(i); }
    HRESULT GetMetadata(const char* k, Variant* v) override { return m_inner->GetMetadata(k, v); }
    HRESULT SetMetadata(const char* k, Variant* v) override { return m_inner->SetMetadata(k, v); }
    HRESULT GetCameraType(const char** t) override { return m_inner->GetCameraType(t); }
    HRESULT CloneClipProcessingAttributes(IBlackmagicRawClipProcessingAttributes** a) override {
        return m_inner->CloneClipProcessingAttributes(a);
    }
    HRESULT GetMulticardFileCount(uint32_t* c) override { return m_inner->GetMulticardFileCount(c); }
    HRESULT IsMulticardFilePresent(uint32_t i, bool* p) override { return m_inner->IsMulticardFilePresent(i, p); }
    HRESULT GetSidecarFileAttached(bool* a) override { return m_inner->GetSidecarFileAttached(a); }
    HRESULT SaveSidecarFile() override { return m_inner->SaveSidecarFile(); }
    HRESULT ReloadSidecarFile() override { return m_inner->ReloadSidecarFile(); }
    HRESULT CreateJobReadFrame(uint64_t f, IBlackmagicRawJob** j) override { return m_inner->CreateJobReadFrame(f, j); }
    HRESULT CreateJobTrim(const char* n, uint64_t f, uint64_t c, IBlackmagicRawClipProcessingAttributes* a,
                          IBlackmagicRawFrameProcessingAttributes* fa, IBlackmagicRawJob** j) override {
        return m_inner->CreateJobTrim(n, f, c, a, fa, j);
    }
    HRESULT CloneWithGeometry(IBlackmagicRawClipGeometry* g, IBlackmagicRawClip** c) override {
        return m_inner->CloneWithGeometry(g, c);
    }

private:
    ~AttributesAnsweringClip() override = default;
    IBlackmagicRawClip* m_inner;
    ULONG m_references = 1;
};
}  // namespace

TEST_F(Clip, OpeningReadsSizeRateLengthAndTheResolutionTable) {
    RefClipModel model = twref::RefClipWriter::makeClip(128, 72, 25.0f, 30);
    model.resolutions = {{128, 72, RefResolutionScale::Full, 0, 0},
                         {64, 36, RefResolutionScale::Half, 60, 34},
                         {32, 18, RefResolutionScale::Quarter, 0, 0}};
    auto clip = openOk(writeClip("figures.braw", model));
    ASSERT_NE(clip, nullptr);

    EXPECT_TRUE(clip->m_opened);
    EXPECT_NE(clip->m_BM, nullptr);
    EXPECT_NE(clip->m_BMEx, nullptr);
    EXPECT_EQ(clip->m_geometry, m_geometries.back());
    EXPECT_EQ(clip->m_width, 128u);
    EXPECT_EQ(clip->m_height, 72u);
    EXPECT_EQ(clip->m_frameRate, 25.0f);
    EXPECT_EQ(clip->m_frameCount, 30u);
    const std::vector<qvBRAW_ClipResolution> expected = {
        {QvResolution(128, 72), blackmagicRawResolutionScaleFull},
        {QvResolution(64, 36), blackmagicRawResolutionScaleHalf},
        {QvResolution(32, 18), blackmagicRawResolutionScaleQuarter}};
    EXPECT_EQ(clip->m_resolutions, expected);
    // A recorded size that differs is only noted.
    EXPECT_TRUE(logged("WARN", "      - recordedRes is different ! 60x34"));
    EXPECT_EQ(messages("WARN").size(), 1u);

    // Opened through the manager's geometry: flipped, not desqueezed.
    BlackmagicRawFlip flip = 0;
    BlackmagicRawAnamorphicRatio ratio = 0;
    clip->m_geometry->GetFlip(&flip);
    clip->m_geometry->GetAnamorphicRatio(&ratio);
    EXPECT_EQ(flip, blackmagicRawFlipVertical);
    EXPECT_EQ(ratio, blackmagicRawAnamorphicRatioDisabled);
}

TEST_F(Clip, SizeQueriesThatFailAreTakenFromTheFullScaleEntryAndRecordedSizesMayFail) {
    RefClipModel model = smallModel();
    model.resolutions = {{32, 18, RefResolutionScale::Half, 0, 0}, {64, 36, RefResolutionScale::Full, 0, 0}};
    model.addFault("Clip.GetWidth", twref::RefResult::Fail);
    model.addFault("Clip.GetHeight", twref::RefResult::Fail);
    model.addFault("ClipResolutions.GetRecordedResolution", twref::RefResult::Fail);
    auto clip = openOk(writeClip("nosize.braw", model));
    ASSERT_NE(clip, nullptr);
    EXPECT_EQ(clip->m_width, 64u);
    EXPECT_EQ(clip->m_height, 36u);
    EXPECT_EQ(clip->m_resolutions.size(), 2u);
    EXPECT_TRUE(logged("WARN", "Getting Width or Height failed, so we get them using Resolution with Scale Full !"));
    EXPECT_FALSE(logged("WARN", "      - recordedRes is different ! 0x0"));
}

TEST_F(Clip, AnOpeningThatFailsReleasesEverythingAndSaysWhy) {
    struct Case {
        const char* fault;
        const char* key;
        const char* head;
    };
    const Case cases[] = {
        {"Codec.OpenClipWithGeometry", "", "Impossible to open Clip with Library ! "},
        {"Clip.GetFrameRate", "", "Failed to get FrameRate from BM - "},
        {"Clip.GetFrameCount", "", "Failed to get FrameCount from BM - "},
        {"Clip.QueryInterface", "ClipResolutions", "Impossible to query Resolutions ! "},
        {"ClipResolutions.GetResolutionCount", "", "Impossible to get ResolutionCount ! "},
        {"ClipResolutions.GetResolution", "", "Impossible to get Resolution from index 0 - "},
        {"ClipResolutions.GetClosestScaleForResolution", "", "Impossible to get ClosestScale from Resolution ! "},
        {"ClipResolutions.GetClosestResolutionForScale", "",
         "Impossible to get Closest Resolution For Scale ! "},
        {"Clip.QueryInterface", "ClipEx", "Failed to get Raw Clip Ex from BM - "},
    };
    for (const Case& c : cases) {
        RefClipModel model = smallModel();
        twref::RefFault fault;
        fault.method = c.fault;
        fault.key = c.key;
        model.faults.push_back(fault);
        const std::string error = openingError(model);
        EXPECT_TRUE(startsWith(error, c.head)) << c.fault << " gave: " << error;
    }

    RefClipModel model = smallModel();
    model.frameRate = 0.0f;
    EXPECT_EQ(openingError(model), "FrameRate has a weird value : 0.000000");
    model.frameRate = -23.5f;
    EXPECT_EQ(openingError(model), "FrameRate has a weird value : -23.500000");

    // A table whose scale gives back another size than its own.
    model = smallModel();
    model.resolutions = {{64, 36, RefResolutionScale::Full, 0, 0}, {40, 20, RefResolutionScale::Full, 0, 0}};
    EXPECT_EQ(openingError(model), "Scale from Resolution does not return the same Resolution ! SecurityRes : 64x36");

    std::shared_ptr<qvBRAW_Clip> clip;
    const QvResult missing = open(m_roots.folder().join("missing.braw"), clip);
    EXPECT_TRUE(startsWith(missing.toString().Str(), "Impossible to open Clip with Library ! "));
    EXPECT_FALSE(clip->m_opened);
}

TEST_F(Clip, AFileThatGoesAwayIsSeenAndReloadedOnceItIsBack) {
    const std::string path = writeClip("away.braw", smallModel());
    auto clip = openOk(path);
    ASSERT_NE(clip, nullptr);
    EXPECT_FALSE(clip->doesNeedToBeReloaded());
    EXPECT_TRUE(logged("INFO", "No need to reload Clip"));

    const std::string kept = path + ".kept";
    std::filesystem::rename(path, kept);
    EXPECT_TRUE(clip->doesNeedToBeReloaded());
    EXPECT_TRUE(logged("WARN", "GetBitStreamSizeBytes call returned E_FAIL => Need to reload"));

    clip->m_sourceSettingsInitData = std::make_shared<twSettingsInitData>();
    clip->m_metadata = {{"k", "v"}};
    const QvResult failed = clip->reload(m_manager->m_codec);
    EXPECT_TRUE(startsWith(failed.toString().Str(), "Impossible to open Clip with Library ! "));
    EXPECT_EQ(clip->m_BM, nullptr);
    EXPECT_EQ(clip->m_sourceSettingsInitData, nullptr);
    EXPECT_TRUE(clip->m_metadata.empty());
    // Still marked open, without a library object.
    EXPECT_TRUE(clip->doesNeedToBeReloaded());
    EXPECT_TRUE(logged("ERR", "Clip is opened but has BM var null ! Reloading Clip"));

    std::filesystem::rename(kept, path);
    ASSERT_TRUE(clip->reload(m_manager->m_codec).isOk());
    EXPECT_TRUE(clip->m_opened);
    EXPECT_NE(clip->m_BMEx, nullptr);
    EXPECT_FALSE(clip->doesNeedToBeReloaded());
    // The figures were not read again, and stay.
    EXPECT_EQ(clip->m_width, 64u);
    EXPECT_EQ(clip->m_frameCount, 4u);
    EXPECT_EQ(clip->m_resolutions.size(), 4u);

    // A file replaced by something unreadable is seen too.
    twref::RefClipWriter::writeBytes(path, "not a clip any more");
    EXPECT_TRUE(clip->doesNeedToBeReloaded());
}

TEST_F(Clip, CloseKeepsTheFiguresAndTheSettingsOnlyWhenAsked) {
    auto clip = openOk(writeClip("close.braw", smallModel()));
    ASSERT_NE(clip, nullptr);
    auto data = std::make_shared<twSettingsInitData>();
    clip->m_sourceSettingsInitData = data;

    EXPECT_EQ(clip->Close(true), 0);
    EXPECT_TRUE(logged("INFO", "[C7]Closing Clip"));
    EXPECT_FALSE(clip->m_opened);
    EXPECT_EQ(clip->m_BM, nullptr);
    EXPECT_EQ(clip->m_BMEx, nullptr);
    EXPECT_EQ(clip->m_sourceSettingsInitData, data);
    EXPECT_EQ(clip->m_width, 64u);
    EXPECT_TRUE(clip->doesNeedToBeReloaded());
    EXPECT_TRUE(logged("INFO", "Clip has been closed and need to be reloaded"));

    ASSERT_TRUE(clip->reload(m_manager->m_codec).isOk());
    EXPECT_TRUE(clip->m_opened);
    EXPECT_EQ(clip->Close(false), 0);
    EXPECT_EQ(clip->m_sourceSettingsInitData, nullptr);
}

TEST_F(Clip, TimecodeOfTheClipAndOfItsFrames) {
    RefClipModel model = smallModel();
    model.frameRate = 25.0f;
    model.timecode.start = "01:00:00:00";
    model.frameOverrideFor(2).hasTimecode = true;  // a frame without timecode
    auto clip = openOk(writeClip("tc.braw", model));
    ASSERT_NE(clip, nullptr);
    bool dropFrame = true;
    EXPECT_EQ(clip->getTimecodeFrames(dropFrame, true), 90000u);
    EXPECT_FALSE(dropFrame);
    EXPECT_EQ(clip->getTimecodeForFrame(3).Str(), "01:00:00:03");
    EXPECT_TRUE(clip->getTimecodeForFrame(2).Empty());


    RefClipModel drop = smallModel();
    drop.frameRate = 29.97f;
    drop.timecode.start = "00:01:00;02";
    drop.timecode.dropFrame = true;
    drop.timecode.baseFrame = 1800;
    auto dropClip = openOk(writeClip("drop.braw", drop));
    ASSERT_NE(dropClip, nullptr);
    dropFrame = false;
    EXPECT_EQ(dropClip->getTimecodeFrames(dropFrame, true), 1800u);
    EXPECT_TRUE(dropFrame);
    EXPECT_EQ(dropClip->getTimecodeForFrame(0).Str(), "00:01:00;02");
    EXPECT_EQ(dropClip->getTimecodeForFrame(1).Str(), "00:01:00;03");

    RefClipModel faulty = smallModel();
    faulty.addFault("ClipEx.QueryTimecodeInfo", twref::RefResult::Fail);
    auto faultyClip = openOk(writeClip("faulty.braw", faulty));
    ASSERT_NE(faultyClip, nullptr);
    dropFrame = true;
    EXPECT_EQ(faultyClip->getTimecodeFrames(dropFrame, true), TW_NO_TIMECODE_FRAMES);
    EXPECT_TRUE(dropFrame) << "a failed query leaves the flag alone";
    EXPECT_TRUE(logged("ERR", "Error when getting Timecode Info from BM"));
}

TEST_F(Clip, AnamorphicClipsAreReplacedByTheirDesqueezedCloneUntilReloaded) {
    RefClipModel model = smallModel();
    model.setMetadata("anamorphic", RefValue::string("2x"));
    auto clip = openOk(writeClip("anamorphic.braw", model));
    ASSERT_NE(clip, nullptr);
    IBlackmagicRawClip* const original = clip->m_BM;
    EXPECT_EQ(libraryWidth(original), 64u);

    ASSERT_TRUE(clip->replaceClipByDesqueezedClipIfRectPixel(m_manager->m_codec).isOk());
    EXPECT_NE(clip->m_BM, original);
    EXPECT_EQ(libraryWidth(clip->m_BM), 128u);
    EXPECT_EQ(clip->m_width, 64u) << "the clip's figures stay those of the opening";
    EXPECT_TRUE(logged("INFO", "Found Anamorphic Metadata set to : 2x"));

    // A reload opens the file again as the camera recorded it, without the
    // replacement, and a second replacement desqueezes again.
    ASSERT_TRUE(clip->reload(m_manager->m_codec).isOk());
    ASSERT_NE(clip->m_BM, nullptr);
    EXPECT_EQ(libraryWidth(clip->m_BM), 64u);
    ASSERT_TRUE(clip->replaceClipByDesqueezedClipIfRectPixel(m_manager->m_codec).isOk());
    EXPECT_EQ(libraryWidth(clip->m_BM), 128u);
    ASSERT_TRUE(clip->reload(m_manager->m_codec).isOk());
    EXPECT_EQ(libraryWidth(clip->m_BM), 64u);

    // Unknown and failing cases leave the library's clip as it is.
    RefClipModel unknown = smallModel();
    unknown.setMetadata("anamorphic", RefValue::string("3x"));
    auto unknownClip = openOk(writeClip("unknown.braw", unknown));
    IBlackmagicRawClip* before = unknownClip->m_BM;
    EXPECT_TRUE(unknownClip->replaceClipByDesqueezedClipIfRectPixel(m_manager->m_codec).isOk());
    EXPECT_EQ(unknownClip->m_BM, before);
    EXPECT_TRUE(logged("ERR", "ERROR : Anarmorphic Metadata Unknown !"));


    RefClipModel failing = model;
    failing.addFault("Clip.CloneWithGeometry", twref::RefResult::Fail);
    auto failingClip = openOk(writeClip("failing-clone.braw", failing));
    before = failingClip->m_BM;
    const QvResult result = failingClip->replaceClipByDesqueezedClipIfRectPixel(m_manager->m_codec);
    EXPECT_TRUE(startsWith(result.toString().Str(), "Impossible to Clone Clip with Geometry - "));
    EXPECT_EQ(failingClip->m_BM, before);
    EXPECT_TRUE(failingClip->m_bmClipMutex.try_lock());
    failingClip->m_bmClipMutex.unlock();
}

TEST_F(Clip, CameraSettingsComeFromTheSettingsDataOnceItExists) {
    auto clip = openOk(writeClip("prefs.braw", smallModel()));
    ASSERT_NE(clip, nullptr);
    const twAttributes defaults = clip->getCameraMetadataPrefs();
    EXPECT_FALSE(defaults.useClipAndFrameAttributes);
    EXPECT_EQ(defaults.frame.iso, 800u);
    EXPECT_EQ(defaults.frame.kelvin, 5500u);
    EXPECT_EQ(defaults.frame.tint, 10);
    EXPECT_STREQ(defaults.frame.timecode, "00:00:00:00");
    EXPECT_EQ(defaults.clip, twClipAttributes());
    EXPECT_TRUE(logged("ERR", "Impossible to get Camera Metadata Prefs - m_sourceSettingsInitData is nullptr"));

    auto data = std::make_shared<twSettingsInitData>();
    data->attributes.frame.iso = 1600;
    twCopyFixedText(data->attributes.clip.gamma, sizeof(data->attributes.clip.gamma), "Blackmagic Design Video");
    clip->m_sourceSettingsInitData = data;
    const twAttributes camera = clip->getCameraMetadataPrefs();
    EXPECT_TRUE(camera.useClipAndFrameAttributes);
    EXPECT_EQ(camera.frame.iso, 1600u);
    EXPECT_STREQ(camera.clip.gamma, "Blackmagic Design Video");
    EXPECT_FALSE(data->attributes.useClipAndFrameAttributes) << "the clip's data is not changed";
}

TEST_F(Clip, LutBuffersAreTheActiveLutsResources) {
    // The library's clips don't answer for their processing attributes: the
    // failure comes back, with the clip's lock free.
    auto plain = openOk(writeClip("plain.braw", smallModel()));
    ASSERT_NE(plain, nullptr);
    void* gpu = nullptr;
    void* cpu = nullptr;
    const QvResult refused = plain->getLut3DBuffers(&gpu, &cpu, nullptr, nullptr);
    EXPECT_TRUE(startsWith(refused.toString().Str(), "getLut3DBuffers - Impossible to Query ClipProcessingAttributes - "));
    EXPECT_TRUE(plain->m_bmClipMutex.try_lock());
    plain->m_bmClipMutex.unlock();

    // Without a LUT in use there is nothing to give.
    plain->m_BM = new AttributesAnsweringClip(plain->m_BM);
    EXPECT_TRUE(plain->getLut3DBuffers(&gpu, &cpu, nullptr, nullptr).isOk());
    EXPECT_EQ(gpu, nullptr);
    EXPECT_EQ(cpu, nullptr);

    RefClipModel model = smallModel();
    twref::RefClipWriter::addEmbeddedLut(model, 5);
    auto clip = openOk(writeClip("lut.braw", model));
    ASSERT_NE(clip, nullptr);
    clip->m_BM = new AttributesAnsweringClip(clip->m_BM);
    EXPECT_TRUE(clip->getLut3DBuffers(&gpu, &cpu, nullptr, nullptr).isOk());
    EXPECT_EQ(gpu, nullptr) << "no GPU resource without a context and a queue";
    EXPECT_NE(cpu, nullptr);
    cpu = nullptr;
    int context = 0;
    int queue = 0;
    EXPECT_TRUE(clip->getLut3DBuffers(&gpu, &cpu, &context, &queue).isOk());
    EXPECT_NE(gpu, nullptr);
    EXPECT_NE(cpu, nullptr);

    model.addFault("Post3DLUT.GetResourceCPU", twref::RefResult::Fail);
    auto failing = openOk(writeClip("lut-failing.braw", model));
    ASSERT_NE(failing, nullptr);
    failing->m_BM = new AttributesAnsweringClip(failing->m_BM);
    const QvResult result = failing->getLut3DBuffers(&gpu, &cpu, nullptr, nullptr);
    EXPECT_TRUE(startsWith(result.toString().Str(), "getLut3DBuffers - Impossible to GetResourceCPU - "));
    EXPECT_TRUE(failing->m_bmClipMutex.try_lock());
    failing->m_bmClipMutex.unlock();
}
