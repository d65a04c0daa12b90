// The manual decoder flow through the declared interfaces: every resource
// format and scale, pixels as the renderer makes them, settings and LUTs seen
// in the pixels, and bit streams read from the file at read time.

#include "LibraryTestSupport.h"

#include "Format/RefLutTools.h"
#include "Format/RefSidecar.h"
#include "Render/RefChart.h"
#include "Render/RefRenderer.h"
#include "Writer/RefClipWriter.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

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

TEST_F(DecodeFixture, SettingsAndLutsShowInThePixels)
{
    RefClipModel model = smallClip(2);
    twref::RefClipWriter::addEmbeddedLut(model, 9);
    model.embeddedLut = twref::RefLutTools::make(twref::RefLutKind::Invert, 9, "Invert.cube", "Invert");
    const std::string path = writeClip(folder, "lut.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawClipProcessingAttributes> plain, inverted;
        ASSERT_EQ(clip->CloneClipProcessingAttributes(plain.out()), S_OK);
        ASSERT_EQ(clip->CloneClipProcessingAttributes(inverted.out()), S_OK);
        Variant disabled = makeString("Disabled");
        ASSERT_EQ(plain->SetClipAttribute(blackmagicRawClipProcessingAttributePost3DLUTMode, &disabled), S_OK);

        FlowRequest reference, brighter, lutted;
        reference.clip = brighter.clip = lutted.clip = clip.get();
        reference.clipAttributes = brighter.clipAttributes = plain.get();
        brighter.frameValues = {{blackmagicRawFrameProcessingAttributeExposure, makeFloat(2.0f)}};
        lutted.clipAttributes = inverted.get();
        for (FlowRequest* r : {&reference, &brighter, &lutted}) {
            driver.run(*r);
            ASSERT_EQ(r->processResult, S_OK);
        }
        // Two stops up is brighter; the inverting LUT gives the renderer's
        // picture through that LUT, far from the plain one.
        EXPECT_GT(meanChannel(brighter, 1), meanChannel(reference, 1) + 10.0);
        EXPECT_EQ(reference.pixels, expectedPicture(model, 0, twref::RefResourceFormat::RGBAU8, 256, 144));
        EXPECT_EQ(lutted.pixels,
                  expectedPicture(model, 0, twref::RefResourceFormat::RGBAU8, 256, 144, &model.embeddedLut));
        EXPECT_NE(lutted.pixels, reference.pixels);

        // Without the caller's LUT buffer the process job has none to apply.
        FlowRequest noBuffer;
        noBuffer.clip = clip.get();
        noBuffer.clipAttributes = inverted.get();
        noBuffer.withLut = false;
        driver.run(noBuffer);
        EXPECT_EQ(noBuffer.pixels, reference.pixels);
        for (FlowRequest* r : {&reference, &brighter, &lutted, &noBuffer})
            driver.releaseBuffers(*r);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST_F(DecodeFixture, TheDecodedPictureShowsItsFrameAndTheGeometrysFlip)
{
    const RefClipModel model = smallClip(40);
    const std::string path = writeClip(folder, "count.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClipGeometry> geometry;
        ASSERT_EQ(session.factory->CreateClipGeometry(geometry.out()), S_OK);
        ASSERT_EQ(geometry->SetFlip(blackmagicRawFlipVertical), S_OK);
        Held<IBlackmagicRawClip> clip, flipped;
        ASSERT_EQ(session.open(path, clip), S_OK);
        ASSERT_EQ(session.codec->OpenClipWithGeometry(path.c_str(), geometry.get(), flipped.out()), S_OK);
        for (uint64_t frame : {0u, 1u, 17u, 39u}) {
            for (bool flip : {false, true}) {
                FlowRequest request;
                request.clip = flip ? flipped.get() : clip.get();
                request.frame = frame;
                driver.run(request);
                ASSERT_EQ(request.processResult, S_OK);
                const auto sample = [&](float x, float y) {
                    const uint32_t px = std::min(request.width - 1, uint32_t(x * float(request.width)));
                    const uint32_t py = std::min(request.height - 1, uint32_t(y * float(request.height)));
                    return float(request.pixels[(size_t(py) * request.width + px) * 4 + 1]);
                };
                uint64_t seen = 0;
                ASSERT_TRUE(twref::RefChart::readFrameIndex(sample, flip, false, seen));
                EXPECT_EQ(seen, frame);
                driver.releaseBuffers(request);
            }
        }
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST_F(DecodeFixture, AFileThatGoesAwayFailsAtReadTimeAndComesBack)
{
    const std::string path = writeClip(folder, "away.braw", smallClip(4));
    const std::string aside = folder.join("aside.braw");
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawClipEx> clipEx;
        ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);

        // The job is made while the file is there and read after it went.
        std::vector<uint8_t> bitStream(4096);
        HRESULT readResult = S_OK;
        IBlackmagicRawFrame* frameSeen = reinterpret_cast<IBlackmagicRawFrame*>(1);
        callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
            readResult = hr;
            frameSeen = frame;
        };
        Held<IBlackmagicRawJob> job;
        ASSERT_EQ(clipEx->CreateJobReadFrame(1, bitStream.data(), uint32_t(bitStream.size()), job.out()), S_OK);
        std::filesystem::rename(path, aside);
        ASSERT_EQ(job->Submit(), S_OK);
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        EXPECT_LT(readResult, 0);
        EXPECT_EQ(frameSeen, nullptr);

        std::filesystem::rename(aside, path);
        FlowDriver again(session.codec.get(), callback);
        FlowRequest request;
        request.clip = clip.get();
        request.frame = 1;
        again.run(request);
        EXPECT_EQ(request.processResult, S_OK);
        again.releaseBuffers(request);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST_F(DecodeFixture, BadFlowInputGivesErrorResults)
{
    const RefClipModel model = smallClip(4);
    const std::string path = writeClip(folder, "bad.braw", model);
    {
        CodecSession session(lib, &callback);
        Held<IBlackmagicRawManualDecoderFlow1> flow;
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawManualDecoderFlow1, flow), S_OK);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawClipEx> clipEx;
        ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);

        uint32_t stateSize = 0, size = 0;
        ASSERT_EQ(flow->GetFrameStateSizeBytes(&stateSize), S_OK);
        std::vector<uint8_t> garbage(stateSize, 0x5A), state(stateSize), bitStream(4096), decoded(1 << 20),
            processed(1 << 20);
        EXPECT_EQ(flow->GetDecodedSizeBytes(garbage.data(), &size), E_INVALIDARG);
        EXPECT_EQ(flow->GetProcessedSizeBytes(nullptr, &size), E_POINTER);
        Held<IBlackmagicRawJob> job;
        EXPECT_EQ(flow->CreateJobDecode(garbage.data(), bitStream.data(), decoded.data(), job.out()), E_INVALIDARG);
        EXPECT_EQ(flow->PopulateFrameStateBuffer(nullptr, nullptr, nullptr, state.data(), stateSize), E_POINTER);

        // Read job creation checks the frame and the buffer's size.
        EXPECT_EQ(clipEx->CreateJobReadFrame(4, bitStream.data(), 4096, job.out()), E_INVALIDARG);
        EXPECT_EQ(clipEx->CreateJobReadFrame(0, bitStream.data(), 16, job.out()), E_INVALIDARG);
        EXPECT_EQ(clipEx->CreateJobReadFrame(0, bitStream.data(), 4096, nullptr), E_POINTER);

        // Inside the read callback: a too-small state, unknown format and
        // scale, foreign attributes; then a process job over a decoded buffer
        // that was never decoded.
        HRESULT smallState = S_OK, badFormat = S_OK, badScale = S_OK, populated = E_FAIL, processStart = E_FAIL;
        HRESULT processResult = S_OK;
        callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
            ASSERT_EQ(hr, S_OK);
            smallState = flow->PopulateFrameStateBuffer(frame, nullptr, nullptr, state.data(), stateSize - 1);
            badFormat = frame->SetResourceFormat(0x41424344);
            badScale = frame->SetResolutionScale(0x6C6C7566);
            populated = flow->PopulateFrameStateBuffer(frame, nullptr, nullptr, state.data(), stateSize);
            Held<IBlackmagicRawJob> process;
            processStart = flow->CreateJobProcess(state.data(), decoded.data(), processed.data(), nullptr,
                                                  process.out());
            if (SUCCEEDED(processStart))
                process->Submit();
        };
        callback.onProcess = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawProcessedImage* image) {
            processResult = image ? S_OK : hr;
        };
        ASSERT_EQ(clipEx->CreateJobReadFrame(0, bitStream.data(), 4096, job.out()), S_OK);
        ASSERT_EQ(job->Submit(), S_OK);
        EXPECT_EQ(job->Submit(), E_FAIL);  // once only
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        EXPECT_EQ(smallState, E_INVALIDARG);
        EXPECT_EQ(badFormat, E_INVALIDARG);
        EXPECT_EQ(badScale, E_INVALIDARG);
        EXPECT_EQ(populated, S_OK);
        EXPECT_EQ(processStart, S_OK);
        EXPECT_EQ(processResult, E_INVALIDARG);

        // A decode over a bit stream that is not the frame's.
        HRESULT decodeResult = S_OK;
        callback.onDecode = [&](IBlackmagicRawJob*, HRESULT hr) { decodeResult = hr; };
        std::vector<uint8_t> scribbled(bitStream.size(), 0);
        ASSERT_EQ(flow->CreateJobDecode(state.data(), scribbled.data(), decoded.data(), job.out()), S_OK);
        ASSERT_EQ(job->Submit(), S_OK);
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        EXPECT_LT(decodeResult, 0);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

// Flow 2 on a GPU pipeline of the facts file: decoded data copied to a "GPU"
// buffer of the resource manager, processed there, typed as the pipeline's.
TEST(LibraryFlow2, ProcessesIntoBuffersOfThePipelinesType)
{
    TempFolder folder;
    const std::string facts = R"({"pipelines": [{"pipeline": "cpub"},
        {"pipeline": "opcl", "devices": [{"name": "CL", "context": 16, "command_queue": 32}]}]})";
    RefLibrary lib(RefLibrary::copyWithFacts(folder, "lib", facts));
    const RefClipModel model = smallClip(2);
    const std::string path = writeClip(folder, "gpu.braw", model);
    RecordingCallback callback;
    {
        CodecSession session(lib, &callback);
        Held<IBlackmagicRawConfiguration> configuration;
        Held<IBlackmagicRawConfigurationEx> configurationEx;
        Held<IBlackmagicRawManualDecoderFlow2> flow;
        Held<IBlackmagicRawResourceManager> resources;
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawConfiguration, configuration), S_OK);
        ASSERT_EQ(configuration->SetPipeline(blackmagicRawPipelineOpenCL, reinterpret_cast<void*>(16),
                                             reinterpret_cast<void*>(32)),
                  S_OK);
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawConfigurationEx, configurationEx), S_OK);
        ASSERT_EQ(configurationEx->GetResourceManager(resources.out()), S_OK);
        ASSERT_EQ(queryInto(session.codec.get(), IID_IBlackmagicRawManualDecoderFlow2, flow), S_OK);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawClipEx> clipEx;
        ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);

        void* context = reinterpret_cast<void*>(16);
        void* queue = reinterpret_cast<void*>(32);
        const auto create = [&](uint32_t size, BlackmagicRawResourceType type) {
            void* resource = nullptr;
            EXPECT_EQ(resources->CreateResource(context, queue, size, type,
                                                type == blackmagicRawResourceTypeBufferCPU
                                                    ? blackmagicRawResourceUsageReadCPUWriteCPU
                                                    : blackmagicRawResourceUsageReadGPUWriteGPU,
                                                &resource),
                      S_OK);
            return resource;
        };
        uint32_t bitStreamSize = 0, stateSize = 0, decodedSize = 0, workingSize = 0, processedSize = 0;
        ASSERT_EQ(clipEx->GetBitStreamSizeBytes(1, &bitStreamSize), S_OK);
        ASSERT_EQ(flow->GetFrameStateSizeBytes(&stateSize), S_OK);
        void* bitStream = create(bitStreamSize, blackmagicRawResourceTypeBufferCPU);
        void* state = create(stateSize, blackmagicRawResourceTypeBufferCPU);
        void* decodedCPU = nullptr;
        void* decodedGPU = nullptr;
        void* working = nullptr;
        void* processed = nullptr;
        BlackmagicRawResourceType imageType = 0;
        void* imageContext = nullptr;
        std::vector<uint8_t> pixels;

        callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
            ASSERT_EQ(hr, S_OK);
            ASSERT_EQ(flow->PopulateFrameStateBuffer(frame, nullptr, nullptr, state, stateSize), S_OK);
            ASSERT_EQ(flow->GetDecodedSizeBytes(state, &decodedSize), S_OK);
            decodedCPU = create(decodedSize, blackmagicRawResourceTypeBufferCPU);
            Held<IBlackmagicRawJob> job;
            ASSERT_EQ(flow->CreateJobDecode(state, bitStream, decodedCPU, job.out()), S_OK);
            ASSERT_EQ(job->Submit(), S_OK);
        };
        callback.onDecode = [&](IBlackmagicRawJob*, HRESULT hr) {
            ASSERT_EQ(hr, S_OK);
            ASSERT_EQ(flow->GetWorkingSizeBytes(state, &workingSize), S_OK);
            ASSERT_EQ(flow->GetProcessedSizeBytes(state, &processedSize), S_OK);
            decodedGPU = create(decodedSize, blackmagicRawResourceTypeBufferOpenCL);
            working = create(workingSize, blackmagicRawResourceTypeBufferOpenCL);
            processed = create(processedSize, blackmagicRawResourceTypeBufferOpenCL);
            EXPECT_EQ(resources->CopyResource(context, queue, decodedCPU, blackmagicRawResourceTypeBufferCPU,
                                              decodedGPU, blackmagicRawResourceTypeBufferCPU, decodedSize, true),
                      E_INVALIDARG);  // the GPU buffer is not of that type
            EXPECT_EQ(resources->CopyResource(context, queue, decodedCPU, blackmagicRawResourceTypeBufferCPU,
                                              decodedGPU, blackmagicRawResourceTypeBufferOpenCL, decodedSize + 1,
                                              true),
                      E_INVALIDARG);  // past its end
            ASSERT_EQ(resources->CopyResource(context, queue, decodedCPU, blackmagicRawResourceTypeBufferCPU,
                                              decodedGPU, blackmagicRawResourceTypeBufferOpenCL, decodedSize, true),
                      S_OK);
            Held<IBlackmagicRawJob> job;
            ASSERT_EQ(flow->CreateJobProcess(context, queue, state, decodedGPU, working, processed, nullptr, job.out()),
                      S_OK);
            ASSERT_EQ(job->Submit(), S_OK);
        };
        callback.onProcess = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawProcessedImage* image) {
            ASSERT_EQ(hr, S_OK);
            void* queueSeen = nullptr;
            void* resource = nullptr;
            uint32_t size = 0;
            image->GetResourceType(&imageType);
            image->GetResourceContextAndCommandQueue(&imageContext, &queueSeen);
            image->GetResource(&resource);
            image->GetResourceSizeBytes(&size);
            pixels.assign(static_cast<uint8_t*>(resource), static_cast<uint8_t*>(resource) + size);
        };
        Held<IBlackmagicRawJob> read;
        ASSERT_EQ(clipEx->CreateJobReadFrame(1, bitStream, bitStreamSize, read.out()), S_OK);
        ASSERT_EQ(read->Submit(), S_OK);
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        EXPECT_EQ(imageType, BlackmagicRawResourceType(blackmagicRawResourceTypeBufferOpenCL));
        EXPECT_EQ(imageContext, context);
        EXPECT_EQ(pixels, expectedPicture(model, 1, twref::RefResourceFormat::RGBAU8, 256, 144));

        for (void* cpu : {bitStream, state, decodedCPU})
            EXPECT_EQ(resources->ReleaseResource(context, queue, cpu, blackmagicRawResourceTypeBufferCPU), S_OK);
        EXPECT_EQ(resources->ReleaseResource(context, queue, working, blackmagicRawResourceTypeBufferCPU),
                  E_INVALIDARG);  // released as the type it was made with
        for (void* gpu : {decodedGPU, working, processed})
            EXPECT_EQ(resources->ReleaseResource(context, queue, gpu, blackmagicRawResourceTypeBufferOpenCL), S_OK);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

// A sidecar's settings are the clip's defaults: they show without any
// attribute object, measured against what the camera shot.
TEST_F(DecodeFixture, SidecarSettingsShowInThePixels)
{
    const RefClipModel model = smallClip(2);
    const std::string plainPath = writeClip(folder, "plain.braw", model);
    const std::string sidecarPath = writeClip(folder, "side.braw", model);
    twref::RefSidecarSettings settings;
    settings.iso = 3200;
    ASSERT_TRUE(twref::RefClipWriter::writeSidecar(sidecarPath, settings));
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> plain, withSidecar;
        ASSERT_EQ(session.open(plainPath, plain), S_OK);
        ASSERT_EQ(session.open(sidecarPath, withSidecar), S_OK);
        FlowRequest a, b;
        a.clip = plain.get();
        b.clip = withSidecar.get();
        driver.run(a);
        driver.run(b);
        ASSERT_EQ(a.processResult, S_OK);
        ASSERT_EQ(b.processResult, S_OK);
        EXPECT_GT(meanChannel(b, 1), meanChannel(a, 1) + 10.0);
        driver.releaseBuffers(a);
        driver.releaseBuffers(b);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}
