// The factory, pipeline discovery and devices, clip geometry, and the
// codec-level facts file that shapes them.

#include "LibraryTestSupport.h"

#include <map>

using namespace twtest;

namespace {

struct PipelineSeen {
    BlackmagicRawPipeline pipeline = 0;
    std::string name;
    BlackmagicRawInterop interop = 0;
    std::vector<std::string> devices;
    std::vector<BlackmagicRawInstructionSet> instructionSets;
};

std::vector<PipelineSeen> listPipelines(IBlackmagicRawFactory* factory, BlackmagicRawInterop interop)
{
    std::vector<PipelineSeen> seen;
    Held<IBlackmagicRawPipelineIterator> pipelines;
    EXPECT_EQ(factory->CreatePipelineIterator(interop, pipelines.out()), S_OK);
    for (;;) {
        PipelineSeen p;
        const char* name = nullptr;
        if (pipelines->GetPipeline(&p.pipeline) != S_OK)
            break;
        EXPECT_EQ(pipelines->GetName(&name), S_OK);
        EXPECT_EQ(pipelines->GetInterop(&p.interop), S_OK);
        p.name = name;
        Held<IBlackmagicRawPipelineDeviceIterator> devices;
        EXPECT_EQ(factory->CreatePipelineDeviceIterator(p.pipeline, blackmagicRawInteropNone, devices.out()), S_OK);
        for (;;) {
            Held<IBlackmagicRawPipelineDevice> device;
            if (devices->CreateDevice(device.out()) != S_OK)
                break;
            const char* deviceName = nullptr;
            BlackmagicRawInstructionSet set = 0;
            EXPECT_EQ(device->GetName(&deviceName), S_OK);
            EXPECT_EQ(device->GetInstructionSet(&set), S_OK);
            p.devices.push_back(deviceName);
            p.instructionSets.push_back(set);
            if (devices->Next() != S_OK)
                break;
        }
        seen.push_back(p);
        if (pipelines->Next() != S_OK)
            break;
    }
    return seen;
}

}  // namespace

TEST(LibraryFactory, DefaultFactsOfferTheCpuPipelineWithOneDevice)
{
    RefLibrary lib;
    {
        Held<IBlackmagicRawFactory> factory(lib.createFactory());
        ASSERT_TRUE(factory);
        const std::vector<PipelineSeen> pipelines = listPipelines(factory.get(), blackmagicRawInteropNone);
        ASSERT_EQ(pipelines.size(), 1u);
        EXPECT_EQ(pipelines[0].pipeline, BlackmagicRawPipeline(blackmagicRawPipelineCPU));
        EXPECT_EQ(pipelines[0].name, "CPU");
        ASSERT_EQ(pipelines[0].devices.size(), 1u);

        Held<IBlackmagicRawPipelineDeviceIterator> devices;
        ASSERT_EQ(factory->CreatePipelineDeviceIterator(blackmagicRawPipelineCPU, blackmagicRawInteropNone,
                                                        devices.out()),
                  S_OK);
        Held<IBlackmagicRawPipelineDevice> device;
        ASSERT_EQ(devices->CreateDevice(device.out()), S_OK);
        BlackmagicRawPipeline pipeline = 0;
        void* context = reinterpret_cast<void*>(1);
        void* queue = reinterpret_cast<void*>(1);
        EXPECT_EQ(device->GetPipeline(&pipeline, &context, &queue), S_OK);
        EXPECT_EQ(pipeline, BlackmagicRawPipeline(blackmagicRawPipelineCPU));
        EXPECT_EQ(context, nullptr);
        EXPECT_EQ(queue, nullptr);
        uint32_t index = 99;
        EXPECT_EQ(device->GetIndex(&index), S_OK);
        EXPECT_EQ(index, 0u);
        const char* pipelineName = nullptr;
        EXPECT_EQ(device->GetPipelineName(&pipelineName), S_OK);
        EXPECT_STREQ(pipelineName, "CPU");
        EXPECT_EQ(device->GetPipeline(&pipeline, nullptr, &queue), E_POINTER);
        EXPECT_EQ(devices->Next(), S_FALSE);
        EXPECT_NE(devices->CreateDevice(device.out()), S_OK);  // past the last device
        EXPECT_EQ(device.get(), nullptr);

        // No pipeline offers OpenGL interop; unknown pipelines have no devices.
        EXPECT_TRUE(listPipelines(factory.get(), blackmagicRawInteropOpenGL).empty());
        EXPECT_EQ(factory->CreatePipelineDeviceIterator(blackmagicRawPipelineCUDA, blackmagicRawInteropNone,
                                                        devices.out()),
                  E_INVALIDARG);
        EXPECT_EQ(factory->CreatePipelineIterator(blackmagicRawInteropNone, nullptr), E_POINTER);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryFactory, FactsFileShapesPipelinesDevicesVersionsAndThreads)
{
    TempFolder folder;
    const std::string facts = R"({
        "version": "9.9.9 test", "camera_support_version": "cams 3",
        "cpu_threads": 3, "max_cpu_thread_count": 12, "write_metadata_per_frame": true,
        "pipelines": [
          {"pipeline": "cpub", "devices": [{"name": "Slow CPU", "instruction_set": "se41"}]},
          {"pipeline": "cuda", "name": "CUDA", "interop": "opgl",
           "devices": [{"name": "GPU A", "context": 4096, "command_queue": 8192},
                       {"name": "GPU B", "index": 1, "instruction_set": "avx_"}]}
        ]})";
    RefLibrary lib(RefLibrary::copyWithFacts(folder, "lib", facts));
    {
        Held<IBlackmagicRawFactory> factory(lib.createFactory());
        ASSERT_TRUE(factory);
        const std::vector<PipelineSeen> all = listPipelines(factory.get(), blackmagicRawInteropNone);
        ASSERT_EQ(all.size(), 2u);
        EXPECT_EQ(all[0].devices, std::vector<std::string>({"Slow CPU"}));
        EXPECT_EQ(all[0].instructionSets[0], BlackmagicRawInstructionSet(blackmagicRawInstructionSetSSE41));
        EXPECT_EQ(all[1].devices, std::vector<std::string>({"GPU A", "GPU B"}));
        EXPECT_EQ(all[1].instructionSets[1], BlackmagicRawInstructionSet(blackmagicRawInstructionSetAVX));
        const std::vector<PipelineSeen> gl = listPipelines(factory.get(), blackmagicRawInteropOpenGL);
        ASSERT_EQ(gl.size(), 1u);
        EXPECT_EQ(gl[0].pipeline, BlackmagicRawPipeline(blackmagicRawPipelineCUDA));

        Held<IBlackmagicRaw> codec;
        ASSERT_EQ(factory->CreateCodec(codec.out()), S_OK);
        Held<IBlackmagicRawConfiguration> configuration;
        ASSERT_EQ(queryInto(codec.get(), IID_IBlackmagicRawConfiguration, configuration), S_OK);
        const char* version = nullptr;
        EXPECT_EQ(configuration->GetVersion(&version), S_OK);
        EXPECT_STREQ(version, "9.9.9 test");
        EXPECT_EQ(configuration->GetCameraSupportVersion(&version), S_OK);
        EXPECT_STREQ(version, "cams 3");
        uint32_t threads = 0;
        EXPECT_EQ(configuration->GetCPUThreads(&threads), S_OK);
        EXPECT_EQ(threads, 3u);
        EXPECT_EQ(configuration->GetMaxCPUThreadCount(&threads), S_OK);
        EXPECT_EQ(threads, 12u);
        bool flag = false;
        EXPECT_EQ(configuration->GetWriteMetadataPerFrame(&flag), S_OK);
        EXPECT_TRUE(flag);
        for (auto [pipeline, supported] : {std::pair<uint32_t, bool>{blackmagicRawPipelineCPU, true},
                                           {blackmagicRawPipelineCUDA, true},
                                           {blackmagicRawPipelineOpenCL, false},
                                           {blackmagicRawPipelineMetal, false}}) {
            EXPECT_EQ(configuration->IsPipelineSupported(pipeline, &flag), S_OK);
            EXPECT_EQ(flag, supported) << std::hex << pipeline;
        }

        // Switching to a device takes its pipeline, context and queue, and
        // gives the codec a new default resource manager.
        Held<IBlackmagicRawConfigurationEx> configurationEx;
        ASSERT_EQ(queryInto(codec.get(), IID_IBlackmagicRawConfigurationEx, configurationEx), S_OK);
        Held<IBlackmagicRawResourceManager> before, after;
        ASSERT_EQ(configurationEx->GetResourceManager(before.out()), S_OK);
        Held<IBlackmagicRawPipelineDeviceIterator> devices;
        ASSERT_EQ(factory->CreatePipelineDeviceIterator(blackmagicRawPipelineCUDA, blackmagicRawInteropNone,
                                                        devices.out()),
                  S_OK);
        Held<IBlackmagicRawPipelineDevice> device;
        ASSERT_EQ(devices->CreateDevice(device.out()), S_OK);
        EXPECT_EQ(configuration->SetFromDevice(device.get()), S_OK);
        BlackmagicRawPipeline pipeline = 0;
        void* context = nullptr;
        void* queue = nullptr;
        EXPECT_EQ(configuration->GetPipeline(&pipeline, &context, &queue), S_OK);
        EXPECT_EQ(pipeline, BlackmagicRawPipeline(blackmagicRawPipelineCUDA));
        EXPECT_EQ(context, reinterpret_cast<void*>(4096));
        EXPECT_EQ(queue, reinterpret_cast<void*>(8192));
        EXPECT_EQ(configuration->GetPipeline(&pipeline, nullptr, nullptr), S_OK);
        ASSERT_EQ(configurationEx->GetResourceManager(after.out()), S_OK);
        EXPECT_NE(before.get(), after.get());
        EXPECT_EQ(configuration->SetPipeline(blackmagicRawPipelineOpenCL, nullptr, nullptr), E_INVALIDARG);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryFactory, AFactsFileThatDoesNotParseGivesNoFactory)
{
    TempFolder folder;
    for (const std::string& facts : {std::string("{ \"version\": "), std::string("[1, 2]"),
                                    std::string("{\"pipelines\": [{\"pipeline\": \"zzzzz\"}]}"),
                                    std::string("{\"no_such_member\": 1}"),
                                    std::string("{\"faults\": [{\"result\": \"E_FAIL\"}]}")}) {
        const std::string name = "lib" + std::to_string(facts.size());
        RefLibrary lib(RefLibrary::copyWithFacts(folder, name, facts));
        EXPECT_EQ(lib.createFactory(), nullptr) << facts;
    }
}

TEST(LibraryFactory, CodecLevelFaultsComeFromTheFactsFile)
{
    TempFolder folder;
    const std::string facts = R"({"faults": [
        {"method": "Factory.CreateCodec", "result": "E_OUTOFMEMORY", "skip": 1, "count": 1},
        {"method": "Codec.QueryInterface", "key": "ConfigurationEx", "result": "E_NOINTERFACE"},
        {"method": "Configuration.GetVersion", "result": "E_ACCESSDENIED"}]})";
    RefLibrary lib(RefLibrary::copyWithFacts(folder, "lib", facts));
    {
        Held<IBlackmagicRawFactory> factory(lib.createFactory());
        ASSERT_TRUE(factory);
        Held<IBlackmagicRaw> first, second, third;
        EXPECT_EQ(factory->CreateCodec(first.out()), S_OK);
        EXPECT_EQ(factory->CreateCodec(second.out()), E_OUTOFMEMORY);
        EXPECT_EQ(second.get(), nullptr);
        EXPECT_EQ(factory->CreateCodec(third.out()), S_OK);

        Held<IBlackmagicRawConfiguration> configuration;
        Held<IBlackmagicRawConfigurationEx> configurationEx;
        EXPECT_EQ(queryInto(first.get(), IID_IBlackmagicRawConfiguration, configuration), S_OK);
        EXPECT_EQ(queryInto(first.get(), IID_IBlackmagicRawConfigurationEx, configurationEx), E_NOINTERFACE);
        EXPECT_EQ(configurationEx.get(), nullptr);
        const char* version = nullptr;
        EXPECT_EQ(configuration->GetVersion(&version), E_ACCESSDENIED);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryFactory, ClipGeometryKeepsWhatItIsGiven)
{
    RefLibrary lib;
    {
        Held<IBlackmagicRawFactory> factory(lib.createFactory());
        Held<IBlackmagicRawClipGeometry> geometry;
        ASSERT_EQ(factory->CreateClipGeometry(geometry.out()), S_OK);
        BlackmagicRawAnamorphicRatio ratio = 0;
        BlackmagicRawRotation rotation = 0;
        BlackmagicRawFlip flip = 0;
        EXPECT_EQ(geometry->GetAnamorphicRatio(&ratio), S_OK);
        EXPECT_EQ(ratio, BlackmagicRawAnamorphicRatio(blackmagicRawAnamorphicRatioDisabled));
        EXPECT_EQ(geometry->GetRotation(&rotation), S_OK);
        EXPECT_EQ(rotation, BlackmagicRawRotation(blackmagicRawRotationDisabled));
        EXPECT_EQ(geometry->SetAnamorphicRatio(blackmagicRawAnamorphicRatio166x), S_OK);
        EXPECT_EQ(geometry->SetFlip(blackmagicRawFlipVertical), S_OK);
        EXPECT_EQ(geometry->GetAnamorphicRatio(&ratio), S_OK);
        EXPECT_EQ(ratio, BlackmagicRawAnamorphicRatio(blackmagicRawAnamorphicRatio166x));
        EXPECT_EQ(geometry->GetFlip(&flip), S_OK);
        EXPECT_EQ(flip, BlackmagicRawFlip(blackmagicRawFlipVertical));
        EXPECT_EQ(geometry->SetAnamorphicRatio(0x12345678), E_INVALIDARG);
        EXPECT_EQ(geometry->SetFlip(blackmagicRawRotationClockwise90), E_INVALIDARG);
        EXPECT_EQ(geometry->SetRotation(blackmagicRawRotationClockwise90), E_NOTIMPL);
        EXPECT_EQ(geometry->GetFlip(nullptr), E_POINTER);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryFactory, QueryInterfaceFollowsTheComRules)
{
    RefLibrary lib;
    {
        Held<IBlackmagicRawFactory> factory(lib.createFactory());
        Held<IUnknown> unknown;
        EXPECT_EQ(queryInto(factory.get(), IID_IUnknown, unknown), S_OK);
        EXPECT_EQ(static_cast<void*>(unknown.get()), static_cast<void*>(factory.get()));
        Held<IBlackmagicRaw> notThere;
        EXPECT_EQ(queryInto(factory.get(), IID_IBlackmagicRaw, notThere), E_NOINTERFACE);
        EXPECT_EQ(notThere.get(), nullptr);
        EXPECT_EQ(factory->QueryInterface(IID_IBlackmagicRawFactory, nullptr), E_POINTER);
        EXPECT_EQ(factory->CreateCodec(nullptr), E_POINTER);
        EXPECT_EQ(factory->CreateClipGeometry(nullptr), E_POINTER);

        // The codec answers for its configuration, tone curves and both manual
        // flows; each flow leads back to the codec.
        Held<IBlackmagicRaw> codec;
        ASSERT_EQ(factory->CreateCodec(codec.out()), S_OK);
        Held<IBlackmagicRawManualDecoderFlow1> flow1;
        Held<IBlackmagicRawManualDecoderFlow2> flow2;
        Held<IBlackmagicRawToneCurve> toneCurve;
        EXPECT_EQ(queryInto(codec.get(), IID_IBlackmagicRawManualDecoderFlow1, flow1), S_OK);
        EXPECT_EQ(queryInto(codec.get(), IID_IBlackmagicRawManualDecoderFlow2, flow2), S_OK);
        EXPECT_EQ(queryInto(codec.get(), IID_IBlackmagicRawToneCurve, toneCurve), S_OK);
        Held<IBlackmagicRaw> back;
        EXPECT_EQ(queryInto(flow1.get(), IID_IBlackmagicRaw, back), S_OK);
        EXPECT_EQ(back.get(), codec.get());
        Held<IBlackmagicRawClip> noClip;
        EXPECT_EQ(queryInto(codec.get(), IID_IBlackmagicRawClip, noClip), E_NOINTERFACE);
        codec.reset();  // the flows keep the codec alive
        EXPECT_EQ(back->FlushJobs(), S_OK);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}
