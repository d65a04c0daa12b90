// The clip: its facts, timecodes, metadata of every type, resolutions, audio,
// geometry, the bit streams behind the manual flow, and sidecars.

#include "LibraryTestSupport.h"

#include "Format/RefLutTools.h"
#include "Format/RefSidecar.h"
#include "Render/RefAudioRenderer.h"
#include "Writer/RefClipWriter.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

using namespace twtest;
using twref::RefClipModel;
using twref::RefValue;
using twref::RefVariantType;

namespace {

struct ClipFixture : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;

    void TearDown() override { EXPECT_NO_LIVE_OBJECTS(lib); }

    // A Variant as the model's value, through the exported helpers.
    RefValue valueOf(Variant& v)
    {
        RefValue out;
        switch (v.vt) {
        case blackmagicRawVariantTypeU8: {
            uint8_t byte = 0;
            std::memcpy(&byte, reinterpret_cast<const uint8_t*>(&v) + 8, 1);
            out = RefValue::u8(byte);
            break;
        }
        case blackmagicRawVariantTypeS16: out = RefValue::s16(v.iVal); break;
        case blackmagicRawVariantTypeU16: out = RefValue::u16(v.uiVal); break;
        case blackmagicRawVariantTypeS32: out = RefValue::s32(v.intVal); break;
        case blackmagicRawVariantTypeU32: out = RefValue::u32(v.uintVal); break;
        case blackmagicRawVariantTypeFloat32: out = RefValue::f32(v.fltVal); break;
        case blackmagicRawVariantTypeFloat64: out = RefValue::f64(v.dblVal); break;
        case blackmagicRawVariantTypeString: out = RefValue::string(v.bstrVal); break;
        case blackmagicRawVariantTypeSafeArray: {
            BlackmagicRawVariantType type = 0;
            long lower = 0, upper = 0;
            void* data = nullptr;
            EXPECT_EQ(lib.safeArrayGetVartype(v.parray, &type), S_OK);
            EXPECT_EQ(lib.safeArrayGetLBound(v.parray, 1, &lower), S_OK);
            EXPECT_EQ(lib.safeArrayGetUBound(v.parray, 1, &upper), S_OK);
            EXPECT_EQ(lib.safeArrayAccessData(v.parray, &data), S_OK);
            const size_t count = size_t(upper - lower + 1);
            if (type == blackmagicRawVariantTypeString) {
                std::vector<std::string> texts;
                for (size_t i = 0; i < count; ++i)
                    texts.push_back(static_cast<const char* const*>(data)[i]);
                out = RefValue::stringArray(texts);
            } else {
                std::vector<double> numbers;
                for (size_t i = 0; i < count; ++i) {
                    Variant element{};
                    element.vt = type;
                    const size_t size = type == blackmagicRawVariantTypeU8 ? 1
                                        : (type == blackmagicRawVariantTypeS16 || type == blackmagicRawVariantTypeU16) ? 2
                                        : type == blackmagicRawVariantTypeFloat64 ? 8 : 4;
                    std::memcpy(reinterpret_cast<uint8_t*>(&element) + 8, static_cast<const uint8_t*>(data) + i * size,
                                size);
                    numbers.push_back(valueOf(element).number);
                }
                out = RefValue::numberArray(static_cast<RefVariantType>(type), numbers);
            }
            lib.safeArrayUnaccessData(v.parray);
            break;
        }
        default: break;
        }
        return out;
    }

    std::vector<twref::RefMetadataEntry> iterate(IBlackmagicRawMetadataIterator* iterator)
    {
        std::vector<twref::RefMetadataEntry> seen;
        const char* key = nullptr;
        while (iterator->GetKey(&key) == S_OK) {
            Variant v;
            lib.variantInit(&v);
            EXPECT_EQ(iterator->GetData(&v), S_OK);
            seen.push_back({key, valueOf(v)});
            EXPECT_EQ(lib.variantClear(&v), S_OK);
            if (iterator->Next() != S_OK)
                break;
        }
        return seen;
    }
};

void expectSameEntries(const std::vector<twref::RefMetadataEntry>& seen,
                       const std::vector<twref::RefMetadataEntry>& expected)
{
    ASSERT_EQ(seen.size(), expected.size());
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].key, expected[i].key);
        EXPECT_TRUE(seen[i].value == expected[i].value) << seen[i].key;
    }
}

}  // namespace

TEST_F(ClipFixture, ReadsEveryClipFact)
{
    RefClipModel model = twref::RefClipWriter::makeClip(640, 360, 29.97f, 120);
    model.cameraType = "Test Camera 4K";
    model.timecode.start = "10:00:00;00";
    model.timecode.dropFrame = true;
    model.frameOverrideFor(7).hasTimecode = true;
    model.frameOverrideFor(7).timecode = "";
    model.resolutions = {{640, 360, twref::RefResolutionScale::Full, 660, 370},
                         {320, 180, twref::RefResolutionScale::Half, 0, 0},
                         {160, 90, twref::RefResolutionScale::Quarter, 0, 0}};
    const std::string path = writeClip(folder, "facts.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    uint32_t width = 0, height = 0;
    float rate = 0;
    uint64_t count = 0;
    const char* camera = nullptr;
    EXPECT_EQ(clip->GetWidth(&width), S_OK);
    EXPECT_EQ(clip->GetHeight(&height), S_OK);
    EXPECT_EQ(clip->GetFrameRate(&rate), S_OK);
    EXPECT_EQ(clip->GetFrameCount(&count), S_OK);
    EXPECT_EQ(clip->GetCameraType(&camera), S_OK);
    EXPECT_EQ(width, 640u);
    EXPECT_EQ(height, 360u);
    EXPECT_FLOAT_EQ(rate, 29.97f);
    EXPECT_EQ(count, 120u);
    EXPECT_STREQ(camera, "Test Camera 4K");

    const char* timecode = nullptr;
    EXPECT_EQ(clip->GetTimecodeForFrame(0, &timecode), S_OK);
    EXPECT_STREQ(timecode, "10:00:00;00");
    const char* later = nullptr;
    EXPECT_EQ(clip->GetTimecodeForFrame(30, &later), S_OK);
    EXPECT_STREQ(later, "10:00:01;00");
    EXPECT_STREQ(timecode, "10:00:00;00");  // still alive and unchanged
    EXPECT_EQ(clip->GetTimecodeForFrame(7, &timecode), S_OK);
    EXPECT_STREQ(timecode, "");
    EXPECT_EQ(clip->GetTimecodeForFrame(120, &timecode), E_INVALIDARG);

    Held<IBlackmagicRawClipEx> clipEx;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    uint32_t base = 0;
    bool drop = false;
    EXPECT_EQ(clipEx->QueryTimecodeInfo(&base, &drop), S_OK);
    EXPECT_TRUE(drop);
    EXPECT_EQ(base, 10u * 3600u * 30u - 2u * (600u - 60u));  // ten hours, two frames dropped a minute but every tenth
    EXPECT_EQ(clipEx->QueryTimecodeInfo(nullptr, &drop), E_POINTER);

    Held<IBlackmagicRawClipResolutions> resolutions;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipResolutions, resolutions), S_OK);
    uint32_t n = 0;
    EXPECT_EQ(resolutions->GetResolutionCount(&n), S_OK);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(resolutions->GetResolution(1, &width, &height), S_OK);
    EXPECT_EQ(width, 320u);
    EXPECT_EQ(resolutions->GetRecordedResolution(0, &width, &height), S_OK);
    EXPECT_EQ(width, 660u);
    EXPECT_EQ(height, 370u);
    EXPECT_EQ(resolutions->GetRecordedResolution(2, &width, &height), S_OK);
    EXPECT_EQ(width, 160u);
    EXPECT_EQ(resolutions->GetResolution(3, &width, &height), E_INVALIDARG);
    BlackmagicRawResolutionScale scale = 0;
    EXPECT_EQ(resolutions->GetClosestScaleForResolution(160, 90, &scale), S_OK);
    EXPECT_EQ(scale, BlackmagicRawResolutionScale(blackmagicRawResolutionScaleQuarter));
    EXPECT_EQ(resolutions->GetClosestScaleForResolution(300, 170, &scale), S_OK);
    EXPECT_EQ(scale, BlackmagicRawResolutionScale(blackmagicRawResolutionScaleHalf));
    EXPECT_EQ(resolutions->GetClosestResolutionForScale(blackmagicRawResolutionScaleEighth, &width, &height), S_OK);
    EXPECT_EQ(width, 80u);  // no entry: the full size divided
    EXPECT_EQ(height, 45u);
    EXPECT_EQ(resolutions->GetClosestResolutionForScale(0x6C6C7566 /* 2.x upside-down full */, &width, &height),
              E_INVALIDARG);
    EXPECT_EQ(resolutions->GetResolutionCount(nullptr), E_POINTER);
    EXPECT_EQ(clip->GetWidth(nullptr), E_POINTER);
    EXPECT_EQ(clip->GetCameraType(nullptr), E_POINTER);
}

TEST_F(ClipFixture, IteratesClipAndFrameMetadataOfEveryType)
{
    RefClipModel model = smallClip(4);
    twref::RefClipWriter::addAllMetadataTypes(model);
    model.frameOverrideFor(2).metadata = {{"frame_only", RefValue::string("two")}};
    const std::string path = writeClip(folder, "meta.braw", model);

    CodecSession session(lib, &callback);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawMetadataIterator> iterator;
    ASSERT_EQ(clip->GetMetadataIterator(iterator.out()), S_OK);
    expectSameEntries(iterate(iterator.get()), model.metadata);
    // Past the end: S_FALSE from Next, then failures.
    EXPECT_EQ(iterator->Next(), S_FALSE);
    const char* key = nullptr;
    Variant v;
    lib.variantInit(&v);
    EXPECT_LT(iterator->GetKey(&key), 0);
    EXPECT_LT(iterator->GetData(&v), 0);
    EXPECT_EQ(iterator->GetData(nullptr), E_POINTER);

    EXPECT_EQ(clip->GetMetadata("camera_type", &v), S_OK);
    EXPECT_STREQ(v.bstrVal, model.cameraType.c_str());
    lib.variantClear(&v);
    EXPECT_EQ(clip->GetMetadata("no_such_key", &v), E_INVALIDARG);
    EXPECT_EQ(clip->GetMetadata(nullptr, &v), E_POINTER);

    // A frame's metadata comes with the frame that was read.
    std::vector<twref::RefMetadataEntry> frameEntries;
    std::string frameTimecode;
    callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
        ASSERT_EQ(hr, S_OK);
        Held<IBlackmagicRawMetadataIterator> frameIterator;
        ASSERT_EQ(frame->GetMetadataIterator(frameIterator.out()), S_OK);
        frameEntries = iterate(frameIterator.get());
        const char* tc = nullptr;
        ASSERT_EQ(frame->GetTimecode(&tc), S_OK);
        frameTimecode = tc;
    };
    Held<IBlackmagicRawClipEx> clipEx;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    std::vector<uint8_t> bitStream(64 * 1024);
    Held<IBlackmagicRawJob> job;
    ASSERT_EQ(clipEx->CreateJobReadFrame(2, bitStream.data(), uint32_t(bitStream.size()), job.out()), S_OK);
    ASSERT_EQ(job->Submit(), S_OK);
    job.reset();
    ASSERT_EQ(session.codec->FlushJobs(), S_OK);
    expectSameEntries(frameEntries, model.metadataOfFrame(2));
    EXPECT_EQ(frameTimecode, "01:00:00:02");
}

TEST_F(ClipFixture, ReadsAudioAsTheToneOfTheClip)
{
    RefClipModel model = twref::RefClipWriter::makeClipWithAudio(64, 36, 25.0f, 10, 3, 48000, 24);
    model.bitStream.frameBytes = 64;
    const std::string withAudio = writeClip(folder, "audio.braw", model);
    const std::string silent = writeClip(folder, "silent.braw", smallClip());

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(withAudio, clip), S_OK);
    Held<IBlackmagicRawClipAudio> audio;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipAudio, audio), S_OK);
    uint32_t depth = 0, channels = 0, rate = 0;
    uint64_t samples = 0;
    BlackmagicRawAudioFormat format = 0;
    EXPECT_EQ(audio->GetAudioFormat(&format), S_OK);
    EXPECT_EQ(audio->GetAudioBitDepth(&depth), S_OK);
    EXPECT_EQ(audio->GetAudioChannelCount(&channels), S_OK);
    EXPECT_EQ(audio->GetAudioSampleRate(&rate), S_OK);
    EXPECT_EQ(audio->GetAudioSampleCount(&samples), S_OK);
    EXPECT_EQ(format, BlackmagicRawAudioFormat(blackmagicRawAudioFormatPCMLittleEndian));
    EXPECT_EQ(depth, 24u);
    EXPECT_EQ(channels, 3u);
    EXPECT_EQ(rate, 48000u);
    EXPECT_EQ(samples, 19200u);  // 10 frames at 25 fps

    // A read that runs past the end gives what is there.
    const uint32_t frameBytes = 3 * 3;
    std::vector<uint8_t> buffer(1000 * frameBytes, 0xEE), expected(1000 * frameBytes, 0xEE);
    uint32_t read = 0, bytes = 0;
    EXPECT_EQ(audio->GetAudioSamples(18700, buffer.data(), uint32_t(buffer.size()), 1000, &read, &bytes), S_OK);
    EXPECT_EQ(read, 500u);
    EXPECT_EQ(bytes, 500u * frameBytes);
    uint32_t expectedBytes = 0;
    twref::RefAudioRenderer::render(model.audio, samples, 18700, 1000, expected.data(), uint32_t(expected.size()),
                                    &expectedBytes);
    EXPECT_EQ(buffer, expected);
    EXPECT_EQ(audio->GetAudioSamples(0, buffer.data(), uint32_t(buffer.size()), 10, nullptr, nullptr), S_OK);

    EXPECT_EQ(audio->GetAudioSamples(-1, buffer.data(), uint32_t(buffer.size()), 10, &read, &bytes), E_INVALIDARG);
    EXPECT_EQ(audio->GetAudioSamples(19201, buffer.data(), uint32_t(buffer.size()), 10, &read, &bytes), E_INVALIDARG);
    EXPECT_EQ(audio->GetAudioSamples(0, buffer.data(), frameBytes - 1, 10, &read, &bytes), E_INVALIDARG);
    EXPECT_EQ(audio->GetAudioSamples(0, nullptr, 100, 10, &read, &bytes), E_POINTER);

    // A clip without audio answers zeros, successfully.
    Held<IBlackmagicRawClip> quiet;
    ASSERT_EQ(session.open(silent, quiet), S_OK);
    ASSERT_EQ(queryInto(quiet.get(), IID_IBlackmagicRawClipAudio, audio), S_OK);
    EXPECT_EQ(audio->GetAudioChannelCount(&channels), S_OK);
    EXPECT_EQ(audio->GetAudioSampleCount(&samples), S_OK);
    EXPECT_EQ(audio->GetAudioBitDepth(&depth), S_OK);
    EXPECT_EQ(channels + samples + depth, 0u);
}

TEST_F(ClipFixture, GeometryDesqueezesAndClonesShareTheFile)
{
    RefClipModel model = smallClip();
    model.setMetadata("anamorphic", RefValue::string("1.5x"));
    const std::string path = writeClip(folder, "wide.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClipGeometry> geometry;
    ASSERT_EQ(session.factory->CreateClipGeometry(geometry.out()), S_OK);
    ASSERT_EQ(geometry->SetAnamorphicRatio(blackmagicRawAnamorphicRatio2x), S_OK);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.codec->OpenClipWithGeometry(path.c_str(), geometry.get(), clip.out()), S_OK);
    uint32_t width = 0, height = 0;
    EXPECT_EQ(clip->GetWidth(&width), S_OK);
    EXPECT_EQ(clip->GetHeight(&height), S_OK);
    EXPECT_EQ(width, 512u);
    EXPECT_EQ(height, 144u);
    Held<IBlackmagicRawClipResolutions> resolutions;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipResolutions, resolutions), S_OK);
    EXPECT_EQ(resolutions->GetClosestResolutionForScale(blackmagicRawResolutionScaleHalf, &width, &height), S_OK);
    EXPECT_EQ(width, 256u);

    // The geometry was read at opening; a clone takes the one it is given.
    ASSERT_EQ(geometry->SetAnamorphicRatio(blackmagicRawAnamorphicRatioFromMetadata), S_OK);
    EXPECT_EQ(clip->GetWidth(&width), S_OK);
    EXPECT_EQ(width, 512u);
    Held<IBlackmagicRawClip> clone;
    ASSERT_EQ(clip->CloneWithGeometry(geometry.get(), clone.out()), S_OK);
    EXPECT_EQ(clone->GetWidth(&width), S_OK);
    EXPECT_EQ(width, 384u);  // 1.5x from the clip's metadata
    EXPECT_EQ(clip->CloneWithGeometry(nullptr, clone.out()), E_POINTER);
}

TEST_F(ClipFixture, BitStreamsAreReadFromTheFileAsItIsNow)
{
    RefClipModel model = smallClip(6);
    model.frameOverrideFor(3).bitStreamBytes = 2000;
    const std::string path = writeClip(folder, "live.braw", model);
    const std::string moved = folder.join("moved.braw");

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawClipEx> clipEx;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    uint32_t size = 0, maxSize = 0;
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(0, &size), S_OK);
    EXPECT_EQ(size, 24u + 512u);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(3, &size), S_OK);
    EXPECT_EQ(size, 24u + 2000u);
    EXPECT_EQ(clipEx->GetMaxBitStreamSizeBytes(&maxSize), S_OK);
    EXPECT_EQ(maxSize, 24u + 2000u);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(6, &size), E_INVALIDARG);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(0, nullptr), E_POINTER);

    // Gone: the probe fails; back: it works again.
    std::filesystem::rename(path, moved);
    EXPECT_LT(clipEx->GetBitStreamSizeBytes(0, &size), 0);
    std::filesystem::rename(moved, path);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(0, &size), S_OK);

    // Cut short: the frames past the cut fail, the others still read.
    std::filesystem::copy_file(path, moved);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 100);
    EXPECT_LT(clipEx->GetBitStreamSizeBytes(5, &size), 0);
    std::filesystem::remove(path);
    std::filesystem::rename(moved, path);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(5, &size), S_OK);

    // A file written with fewer records than frames.
    model.bitStream.recordedFrames = 2;
    const std::string shortPath = writeClip(folder, "short.braw", model);
    Held<IBlackmagicRawClip> shortClip;
    ASSERT_EQ(session.open(shortPath, shortClip), S_OK);
    ASSERT_EQ(queryInto(shortClip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(1, &size), S_OK);
    EXPECT_LT(clipEx->GetBitStreamSizeBytes(2, &size), 0);
}

TEST_F(ClipFixture, SidecarSettingsBecomeTheClipDefaultsAndReloadTakesChanges)
{
    RefClipModel model = smallClip();
    const std::string path = writeClip(folder, "side.braw", model);
    const std::string sidecarPath = folder.join("side.sidecar");
    twref::RefSidecarSettings settings;
    settings.gamma = "Blackmagic Design Video";
    settings.iso = 1600;
    settings.lut = twref::RefLutTools::make(twref::RefLutKind::Invert, 5, "Invert.cube", "Invert");
    settings.lutMode = "Sidecar";
    ASSERT_TRUE(twref::RefClipWriter::writeSidecar(path, settings));

    CodecSession session(lib, &callback);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    bool attached = false;
    EXPECT_EQ(clip->GetSidecarFileAttached(&attached), S_OK);
    EXPECT_TRUE(attached);
    EXPECT_TRUE(callback.sidecarIssues().empty());
    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);
    Variant v;
    lib.variantInit(&v);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &v), S_OK);
    EXPECT_STREQ(v.bstrVal, "Blackmagic Design Video");
    lib.variantClear(&v);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeSidecarPost3DLUTSize, &v), S_OK);
    EXPECT_EQ(v.uiVal, 5u);
    Held<IBlackmagicRawPost3DLUT> lut;
    ASSERT_EQ(attributes->GetPost3DLUT(lut.out()), S_OK);
    ASSERT_TRUE(lut);
    const char* name = nullptr;
    EXPECT_EQ(lut->GetName(&name), S_OK);
    EXPECT_STREQ(name, "Invert.cube");

    // A sidecar that no longer parses: reported with its line, ignored whole,
    // and the reload itself succeeds.
    twref::RefClipWriter::writeBytes(sidecarPath, "{\n  \"iso\": 800,\n  \"viewing_gamma\": \n}\n");
    EXPECT_EQ(clip->ReloadSidecarFile(), S_OK);
    std::vector<RecordingCallback::SidecarIssue> issues = callback.sidecarIssues();
    ASSERT_EQ(issues.size(), 1u);
    EXPECT_TRUE(issues[0].error);
    EXPECT_EQ(issues[0].clip, clip.get());
    EXPECT_EQ(issues[0].fileName, sidecarPath);
    EXPECT_EQ(issues[0].line, 4u);
    EXPECT_FALSE(issues[0].info.empty());
    EXPECT_EQ(clip->GetSidecarFileAttached(&attached), S_OK);
    EXPECT_FALSE(attached);
    Held<IBlackmagicRawClipProcessingAttributes> fresh;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(fresh.out()), S_OK);
    ASSERT_EQ(fresh->GetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &v), S_OK);
    EXPECT_STREQ(v.bstrVal, "Blackmagic Design Film");
    lib.variantClear(&v);
    EXPECT_LT(fresh->GetClipAttribute(blackmagicRawClipProcessingAttributeSidecarPost3DLUTName, &v), 0);
    // The clone made before keeps what it had.
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &v), S_OK);
    EXPECT_STREQ(v.bstrVal, "Blackmagic Design Video");
    lib.variantClear(&v);

    // A member of the wrong type is a warning; the rest is used.
    callback.clearSidecarIssues();
    twref::RefClipWriter::writeBytes(sidecarPath, "{\n  \"viewing_gamma\": 12,\n  \"iso\": 400\n}\n");
    EXPECT_EQ(clip->ReloadSidecarFile(), S_OK);
    issues = callback.sidecarIssues();
    ASSERT_EQ(issues.size(), 1u);
    EXPECT_FALSE(issues[0].error);
    EXPECT_EQ(issues[0].line, 2u);
    EXPECT_EQ(clip->GetSidecarFileAttached(&attached), S_OK);
    EXPECT_TRUE(attached);

    // No sidecar at all.
    std::filesystem::remove(sidecarPath);
    callback.clearSidecarIssues();
    EXPECT_EQ(clip->ReloadSidecarFile(), S_OK);
    EXPECT_EQ(clip->GetSidecarFileAttached(&attached), S_OK);
    EXPECT_FALSE(attached);
    EXPECT_TRUE(callback.sidecarIssues().empty());
}
