// The codec: opening clips (and refusing bad files), its configuration, tone
// curves, and the methods it leaves unimplemented.

#include "LibraryTestSupport.h"

#include "Format/RefClipFile.h"
#include "Writer/RefClipWriter.h"

using namespace twtest;
using twref::RefClipModel;

TEST(LibraryCodec, BadFilesAndBadArgumentsGiveErrorResults)
{
    RefLibrary lib;
    TempFolder folder;
    const std::string good = twref::RefClipFile::serialize(smallClip());
    const std::string description = twref::RefClipFile::describe(smallClip(), false);
    std::string wrongMarker = good;
    wrongMarker[0] = 'X';
    std::string badJson = good;
    badJson[twref::kRefClipHeaderBytes] = '[';
    std::string hugeLength = good;
    hugeLength[12] = hugeLength[13] = hugeLength[14] = hugeLength[15] = '\xFF';
    const std::pair<const char*, std::string> files[] = {
        {"empty.braw", ""},
        {"marker.braw", wrongMarker},
        {"header.braw", good.substr(0, 10)},
        {"description.braw", good.substr(0, twref::kRefClipHeaderBytes + description.size() / 2)},
        {"json.braw", badJson},
        {"length.braw", hugeLength},
        {"text.braw", "just some text that is no clip at all"},
    };
    {
        CodecSession session(lib);
        Held<IBlackmagicRawClip> clip;
        for (const auto& [name, bytes] : files) {
            twref::RefClipWriter::writeBytes(folder.join(name), bytes);
            EXPECT_LT(session.open(folder.join(name), clip), 0) << name;
            EXPECT_EQ(clip.get(), nullptr) << name;
        }
        EXPECT_LT(session.open(folder.join("missing.braw"), clip), 0);
        EXPECT_LT(session.open(folder.path(), clip), 0);  // a folder
        EXPECT_EQ(session.codec->OpenClip(nullptr, clip.out()), E_POINTER);
        EXPECT_EQ(session.codec->OpenClip(folder.join("missing.braw").c_str(), nullptr), E_POINTER);
        Held<IBlackmagicRawClipGeometry> geometry;
        ASSERT_EQ(session.factory->CreateClipGeometry(geometry.out()), S_OK);
        EXPECT_EQ(session.codec->OpenClipWithGeometry(folder.join("a.braw").c_str(), nullptr, clip.out()), E_POINTER);

        // A good clip still opens on the same codec afterwards.
        twref::RefClipWriter::writeBytes(folder.join("good.braw"), good);
        EXPECT_EQ(session.open(folder.join("good.braw"), clip), S_OK);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryCodec, ConfigurationIsFixedOnceAClipIsOpen)
{
    RefLibrary lib;
    TempFolder folder;
    const std::string path = writeClip(folder, "a.braw", smallClip());
    {
        CodecSession session(lib);
        Held<IBlackmagicRawConfiguration> configuration;
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawConfiguration, configuration), S_OK);
        BlackmagicRawPipeline pipeline = 0;
        EXPECT_EQ(configuration->GetPipeline(&pipeline, nullptr, nullptr), S_OK);
        EXPECT_EQ(pipeline, BlackmagicRawPipeline(blackmagicRawPipelineCPU));
        EXPECT_EQ(configuration->SetPipeline(blackmagicRawPipelineCPU, nullptr, nullptr), S_OK);
        uint32_t threads = 0, maxThreads = 0;
        EXPECT_EQ(configuration->GetCPUThreads(&threads), S_OK);
        EXPECT_EQ(configuration->GetMaxCPUThreadCount(&maxThreads), S_OK);
        EXPECT_GE(threads, 1u);
        EXPECT_GE(maxThreads, threads);
        EXPECT_EQ(configuration->IsPipelineSupported(blackmagicRawPipelineCPU, nullptr), E_POINTER);
        EXPECT_EQ(configuration->SetFromDevice(nullptr), E_POINTER);

        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        EXPECT_EQ(configuration->SetPipeline(blackmagicRawPipelineCPU, nullptr, nullptr), E_FAIL);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryCodec, ToneCurvesComeFromTheCamerasOfOpenedClips)
{
    RefLibrary lib;
    TempFolder folder;
    RefClipModel model = smallClip();
    model.cameraType = "Odd Camera";
    twref::RefToneCurve custom;
    custom.gamma = "Blackmagic Design Film";
    custom.colorScienceGen = 5;
    custom.contrast = 1.25f;
    custom.videoBlackLevel = 1;
    model.toneCurves = {custom};
    const std::string path = writeClip(folder, "odd.braw", model);
    {
        CodecSession session(lib);
        Held<IBlackmagicRawToneCurve> toneCurve;
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawToneCurve, toneCurve), S_OK);
        float c = 0, s = 0, m = 0, h = 0, sh = 0, b = 0, w = 0;
        uint16_t vbl = 9;
        // Before any clip of that camera: the default curves.
        EXPECT_EQ(toneCurve->GetToneCurve("Odd Camera", "Blackmagic Design Film", 5, &c, &s, &m, &h, &sh, &b, &w, &vbl),
                  S_OK);
        EXPECT_FLOAT_EQ(c, 0.5f);
        EXPECT_EQ(vbl, 0);

        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        EXPECT_EQ(toneCurve->GetToneCurve("Odd Camera", "Blackmagic Design Film", 5, &c, &s, &m, &h, &sh, &b, &w, &vbl),
                  S_OK);
        EXPECT_FLOAT_EQ(c, 1.25f);
        EXPECT_EQ(vbl, 1);
        // The clip's camera knows no other curve; other cameras keep the defaults.
        EXPECT_EQ(toneCurve->GetToneCurve("Odd Camera", "Blackmagic Design Film", 4, &c, &s, &m, &h, &sh, &b, &w, &vbl),
                  E_INVALIDARG);
        EXPECT_EQ(toneCurve->GetToneCurve("Other", "Blackmagic Design Extended Video", 4, &c, &s, &m, &h, &sh, &b, &w,
                                          &vbl),
                  S_OK);
        EXPECT_EQ(toneCurve->GetToneCurve("Other", "Linear", 5, &c, &s, &m, &h, &sh, &b, &w, &vbl), E_INVALIDARG);
        EXPECT_EQ(toneCurve->GetToneCurve(nullptr, "Linear", 5, &c, &s, &m, &h, &sh, &b, &w, &vbl), E_POINTER);
        EXPECT_EQ(toneCurve->GetToneCurve("Other", "Linear", 5, &c, &s, &m, &h, &sh, &b, &w, nullptr), E_POINTER);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

// Methods no caller of this library uses keep their slots and say so.
TEST(LibraryCodec, UnusedMethodsAnswerNotImplemented)
{
    RefLibrary lib;
    TempFolder folder;
    const std::string path = writeClip(folder, "a.braw", smallClip());
    {
        CodecSession session(lib);
        Held<IBlackmagicRawConfiguration> configuration;
        Held<IBlackmagicRawConfigurationEx> configurationEx;
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawConfiguration, configuration), S_OK);
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawConfigurationEx, configurationEx), S_OK);
        EXPECT_EQ(session.codec->PreparePipeline(blackmagicRawPipelineCPU, nullptr, nullptr, nullptr), E_NOTIMPL);
        EXPECT_EQ(session.codec->PreparePipelineForDevice(nullptr, nullptr), E_NOTIMPL);
        EXPECT_EQ(configuration->SetCPUThreads(2), E_NOTIMPL);
        EXPECT_EQ(configuration->SetWriteMetadataPerFrame(true), E_NOTIMPL);
        EXPECT_EQ(configurationEx->SetResourceManager(nullptr), E_NOTIMPL);
        EXPECT_EQ(configurationEx->SetInstructionSet(blackmagicRawInstructionSetAVX), E_NOTIMPL);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawJob> job;
        EXPECT_EQ(clip->CreateJobReadFrame(0, job.out()), E_NOTIMPL);
        EXPECT_EQ(clip->CreateJobTrim("x.braw", 0, 1, nullptr, nullptr, job.out()), E_NOTIMPL);
        EXPECT_EQ(clip->SaveSidecarFile(), E_NOTIMPL);
        Variant v = makeU32(1);
        EXPECT_EQ(clip->SetMetadata("scene", &v), E_NOTIMPL);
        Held<IBlackmagicRawClipAccelerometerMotion> motion;
        EXPECT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipAccelerometerMotion, motion), E_NOINTERFACE);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}
