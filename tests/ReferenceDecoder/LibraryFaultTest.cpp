// Fault injection as a clip describes it: methods that fail with a given
// result (for some frames, attributes, keys, or some calls), job stages that
// report a failure for one frame, damaged frames, and delayed stages.

#include "LibraryTestSupport.h"

#include "Writer/RefClipWriter.h"

using namespace twtest;
using twref::RefClipModel;
using twref::RefFault;

namespace {

struct FaultFixture : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;

    void TearDown() override { EXPECT_NO_LIVE_OBJECTS(lib); }
};

RefFault fault(const char* method, HRESULT result)
{
    RefFault f;
    f.method = method;
    f.result = result;
    return f;
}

}  // namespace

TEST_F(FaultFixture, MethodsFailWithTheirInjectedResultAtTheStatedCall)
{
    RefClipModel model = smallClip(4);
    model.faults.push_back(fault("Clip.GetFrameRate", E_ACCESSDENIED));
    RefFault resolutions = fault("Clip.QueryInterface", E_NOINTERFACE);
    resolutions.key = "ClipResolutions";
    model.faults.push_back(resolutions);
    RefFault gamma = fault("ClipProcessingAttributes.SetClipAttribute", E_UNEXPECTED);
    gamma.attribute = twref::RefClipAttr::Gamma;
    model.faults.push_back(gamma);
    RefFault sometimes = fault("Clip.GetWidth", E_HANDLE);
    sometimes.skip = 1;
    sometimes.count = 2;
    model.faults.push_back(sometimes);
    RefFault oneFrame = fault("ClipEx.GetBitStreamSizeBytes", E_ABORT);
    oneFrame.frame = 2;
    model.faults.push_back(oneFrame);
    RefFault oneKey = fault("Clip.GetMetadata", E_OUTOFMEMORY);
    oneKey.key = "scene";
    model.faults.push_back(oneKey);
    const std::string path = writeClip(folder, "faults.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    float rate = 0;
    EXPECT_EQ(clip->GetFrameRate(&rate), E_ACCESSDENIED);

    Held<IBlackmagicRawClipResolutions> noResolutions;
    Held<IBlackmagicRawClipEx> clipEx;
    EXPECT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipResolutions, noResolutions), E_NOINTERFACE);
    EXPECT_EQ(noResolutions.get(), nullptr);
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);

    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);
    Variant gammaValue = makeString("Blackmagic Design Video");
    Variant contrast = makeFloat(0.7f);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &gammaValue), E_UNEXPECTED);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &contrast), S_OK);

    uint32_t width = 0;
    EXPECT_EQ(clip->GetWidth(&width), S_OK);
    EXPECT_EQ(clip->GetWidth(&width), E_HANDLE);
    EXPECT_EQ(clip->GetWidth(&width), E_HANDLE);
    EXPECT_EQ(clip->GetWidth(&width), S_OK);

    uint32_t size = 0;
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(1, &size), S_OK);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(2, &size), E_ABORT);

    Variant v;
    lib.variantInit(&v);
    EXPECT_EQ(clip->GetMetadata("scene", &v), E_OUTOFMEMORY);
    EXPECT_EQ(clip->GetMetadata("take", &v), S_OK);
    lib.variantClear(&v);
}

TEST_F(FaultFixture, OpeningFailsWhenTheClipSaysSo)
{
    RefClipModel model = smallClip();
    model.faults.push_back(fault("Codec.OpenClip", E_OUTOFMEMORY));
    const std::string path = writeClip(folder, "refuse.braw", model);
    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    EXPECT_EQ(session.open(path, clip), E_OUTOFMEMORY);
    EXPECT_EQ(clip.get(), nullptr);
    // The same clip through the geometry path is another method.
    Held<IBlackmagicRawClipGeometry> geometry;
    ASSERT_EQ(session.factory->CreateClipGeometry(geometry.out()), S_OK);
    EXPECT_EQ(session.codec->OpenClipWithGeometry(path.c_str(), geometry.get(), clip.out()), S_OK);
}

TEST_F(FaultFixture, JobStagesReportTheirFaultForTheirFrameOnly)
{
    RefClipModel model = smallClip(6);
    RefFault read = fault("stage.read", E_ACCESSDENIED);
    read.frame = 1;
    RefFault decode = fault("stage.decode", E_OUTOFMEMORY);
    decode.frame = 2;
    RefFault process = fault("stage.process", E_UNEXPECTED);
    process.frame = 3;
    RefFault submit = fault("Job.Submit", E_HANDLE);
    submit.frame = 4;
    model.faults = {read, decode, process, submit};
    const std::string path = writeClip(folder, "stages.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        FlowRequest requests[6];
        for (uint64_t i = 0; i < 6; ++i) {
            requests[i].clip = clip.get();
            requests[i].frame = i;
            driver.submit(requests[i]);
        }
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        for (FlowRequest& r : requests)
            EXPECT_TRUE(r.finished.load()) << r.frame;
        EXPECT_EQ(requests[0].processResult, S_OK);
        EXPECT_EQ(requests[5].processResult, S_OK);
        EXPECT_EQ(requests[1].readResult, E_ACCESSDENIED);
        EXPECT_EQ(requests[1].stateResult, E_UNEXPECTED);  // nothing after the read
        EXPECT_EQ(requests[2].readResult, S_OK);
        EXPECT_EQ(requests[2].decodeResult, E_OUTOFMEMORY);
        EXPECT_EQ(requests[3].decodeResult, S_OK);
        EXPECT_EQ(requests[3].processResult, E_UNEXPECTED);
        EXPECT_TRUE(requests[3].pixels.empty());
        EXPECT_EQ(requests[4].createResult, E_HANDLE);
        for (FlowRequest& r : requests)
            driver.releaseBuffers(r);
    }
}

TEST_F(FaultFixture, ADamagedFrameFailsItsSizeQueryAndItsRead)
{
    RefClipModel model = smallClip(4);
    model.frameOverrideFor(2).corrupt = true;
    model.frameOverrideFor(2).corruptResult = E_ABORT;
    model.frameOverrideFor(3).corrupt = true;  // with the default result
    const std::string path = writeClip(folder, "damaged.braw", model);

    CodecSession session(lib, &callback);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawClipEx> clipEx;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    uint32_t size = 0, maxSize = 0;
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(1, &size), S_OK);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(2, &size), E_ABORT);
    EXPECT_EQ(clipEx->GetBitStreamSizeBytes(3, &size), E_FAIL);

    // Read anyway, into a buffer of the largest record.
    ASSERT_EQ(clipEx->GetMaxBitStreamSizeBytes(&maxSize), S_OK);
    std::vector<uint8_t> bitStream(maxSize);
    HRESULT result = S_OK;
    bool gotFrame = true;
    callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
        result = hr;
        gotFrame = frame != nullptr;
    };
    Held<IBlackmagicRawJob> job;
    ASSERT_EQ(clipEx->CreateJobReadFrame(2, bitStream.data(), maxSize, job.out()), S_OK);
    ASSERT_EQ(job->Submit(), S_OK);
    job.reset();
    ASSERT_EQ(session.codec->FlushJobs(), S_OK);
    EXPECT_EQ(result, E_ABORT);
    EXPECT_FALSE(gotFrame);
}

// A delayed stage is still waited for: FlushJobs returns after its callback.
TEST_F(FaultFixture, FlushJobsWaitsForDelayedStages)
{
    RefClipModel model = smallClip(3);
    model.addDelay("stage.process", 150, 1);
    model.addDelay("stage.read", 50);
    const std::string path = writeClip(folder, "slow.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        FlowRequest requests[3];
        for (uint64_t i = 0; i < 3; ++i) {
            requests[i].clip = clip.get();
            requests[i].frame = i;
            driver.submit(requests[i]);
        }
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        for (FlowRequest& r : requests) {
            EXPECT_TRUE(r.finished.load());
            EXPECT_EQ(r.processResult, S_OK);
            driver.releaseBuffers(r);
        }
    }
}
