// Moving the codec to another pipeline: open clips are closed and reopened on
// the new codec under their numbers, every queue is flushed, the callback is
// made anew, and the rules that decide whether a new codec is needed at all.

#include "ManagerTestSupport.h"

namespace {

class CodecSwitch : public twtest::DecoderTest {
protected:
    void SetUp() override {
        twtest::DecoderTest::SetUp();
        m_install = twtest::installDecoder(fixedFolder(), 0, twtest::kSeveralPipelinesFacts);
        auto* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
        instance->init();
        m_manager = std::make_unique<qvBRAW_Manager>();
        ASSERT_EQ(m_manager->init(instance), 0);
        m_manager->m_flipVertical = true;
    }
    void TearDown() override {
        m_manager.reset();
        EXPECT_DECODER_CLEAN();
        twtest::DecoderTest::TearDown();
    }

    int32_t switchTo(QV_GPU_DEVICE_FRAMEWORK framework, void* context = nullptr, void* queue = nullptr) {
        return m_manager->setCodecFromFrameWork(framework, context, queue);
    }
    BlackmagicRawPipeline runningPipeline() const {
        BlackmagicRawPipeline pipeline = 0;
        m_manager->m_configuration->GetPipeline(&pipeline, nullptr, nullptr);
        return pipeline;
    }
    // The current codec, kept alive by the test so that a new one cannot take its address.
    IBlackmagicRaw* holdCodec() {
        m_manager->m_codec->AddRef();
        return m_manager->m_codec;
    }

    std::string m_install;
    std::unique_ptr<qvBRAW_Manager> m_manager;
};

void* address(uintptr_t value) { return reinterpret_cast<void*>(value); }

}  // namespace

TEST_F(CodecSwitch, OpenClipsAreReopenedOnTheNewCodecUnderTheirNumbersAndEveryQueueIsFlushed) {
    std::vector<std::shared_ptr<qvBRAW_Clip>> clips;
    std::vector<IBlackmagicRawClip*> oldObjects;
    for (uint64_t id = 0; id < 3; ++id) {
        auto clip = twtest::addClip(
            *m_manager, twtest::writeSmallClip(m_roots.folder(), "clip" + std::to_string(id) + ".braw"), id);
        ASSERT_NE(clip, nullptr);
        clip->m_BM->AddRef();
        oldObjects.push_back(clip->m_BM);
        clips.push_back(clip);
    }
    // Requests of two queues, each with a finished and an unfinished one.
    auto finished3 = std::make_shared<twtest::TestRequest>(3, 0, 1, true);
    auto running3 = std::make_shared<twtest::TestRequest>(3, 0, 2, false);
    auto finished8 = std::make_shared<twtest::TestRequest>(8, 1, 5, true);
    auto running8 = std::make_shared<twtest::TestRequest>(8, 2, 6, false);
    m_manager->m_queue = {finished3, running3, finished8, running8};

    IBlackmagicRaw* const oldCodec = holdCodec();
    ASSERT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_CUDA), 0);
    EXPECT_TRUE(m_manager->m_errorInfo.isOk());
    EXPECT_NE(m_manager->m_codec, oldCodec);
    EXPECT_EQ(runningPipeline(), blackmagicRawPipelineCUDA);
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_name.ToString(), "GPU 0");
    EXPECT_NE(m_manager->m_manualDecoderFlow2, nullptr);
    EXPECT_NE(m_manager->m_callback, nullptr);
    EXPECT_TRUE(logged("INFO", "Setting Codec to Framework : CUDA"));

    ASSERT_EQ(m_manager->m_clips.size(), 3u);
    for (uint64_t id = 0; id < 3; ++id) {
        const std::shared_ptr<qvBRAW_Clip>& clip = m_manager->m_clips.at(id);
        EXPECT_EQ(clip, clips[id]);
        EXPECT_EQ(clip->m_ID, id);
        EXPECT_TRUE(clip->m_opened);
        EXPECT_NE(clip->m_BM, nullptr);
        EXPECT_NE(clip->m_BM, oldObjects[id]) << "clip " << id << " kept its old library object";
        EXPECT_NE(clip->m_BMEx, nullptr);
        EXPECT_TRUE(logged("INFO", "[C" + std::to_string(id) + "]Closing Clip"));
        // The reopened object answers, through the geometry the clip was opened with.
        uint64_t frames = 0;
        EXPECT_EQ(clip->m_BM->GetFrameCount(&frames), S_OK);
        EXPECT_EQ(frames, 4u);
        oldObjects[id]->Release();
    }
    oldCodec->Release();

    // Finished requests of every queue are gone; the others are cancelled and stay.
    EXPECT_EQ(m_manager->m_queue, (std::vector<std::shared_ptr<qvBRAW_Request>>{running3, running8}));
    EXPECT_TRUE(running3->m_cancelled);
    EXPECT_TRUE(running8->m_cancelled);
    EXPECT_EQ(running3->m_onCancelledCount, 0);
    EXPECT_TRUE(logged("INFO", "Flushing Queue - size before/after :4/2"));
    EXPECT_TRUE(logged("ERR", running3->logPrefix().Str() + "Request not finished after FlushJobs!"));

    // And back to the CPU: no GPU decoder there.
    ASSERT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_CPU), 0);
    EXPECT_EQ(runningPipeline(), blackmagicRawPipelineCPU);
    EXPECT_EQ(m_manager->m_manualDecoderFlow2, nullptr);
    for (const auto& clip : clips) EXPECT_TRUE(clip->m_opened);
}

TEST_F(CodecSwitch, SamePipelineKeepsTheCodecAndAnAbsentOneLeavesItRunning) {
    IBlackmagicRaw* const codec = holdCodec();
    QV_GPU_DEVICE_FRAMEWORK other = static_cast<QV_GPU_DEVICE_FRAMEWORK>(7);
    for (QV_GPU_DEVICE_FRAMEWORK framework : {QV_GPU_DEVICE_FRAMEWORK_CPU, QV_GPU_DEVICE_FRAMEWORK_UNKNOWN, other}) {
        EXPECT_EQ(switchTo(framework), 0);
        EXPECT_EQ(m_manager->m_codec, codec);
    }
    EXPECT_TRUE(logged("INFO", "Setting Codec to Framework : CPU"));
    EXPECT_TRUE(logged("INFO", "Setting Codec to Framework : Unknown"));
    EXPECT_TRUE(logged("INFO", "Setting Codec to Framework : 7"));
    size_t alreadySet = 0;
    for (const std::string& m : messages("INFO"))
        alreadySet += m == "Pipeline already set - No need to do anything here";
    EXPECT_EQ(alreadySet, 3u);

    // The library offers no Metal: the running codec stays as it was.
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_METAL), 1);
    EXPECT_TRUE(logged("ERR", "Pipeline Init Failed"));
    EXPECT_EQ(m_manager->m_codec, codec);
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_pipeline, blackmagicRawPipelineCPU);
    EXPECT_TRUE(m_manager->m_errorInfo.isOk());
    codec->Release();
}

TEST_F(CodecSwitch, OpenClRepeatsCompareTheQueueForEquality) {
    ASSERT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0xC1), address(0x01)), 0);
    EXPECT_EQ(runningPipeline(), blackmagicRawPipelineOpenCL);
    // The host's context and queue replace the device's.
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_context, address(0xC1));
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_commandQueue, address(0x01));

    IBlackmagicRaw* codec = holdCodec();
    // Same context, another queue: counted as already set.
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0xC1), address(0x02)), 0);
    EXPECT_EQ(m_manager->m_codec, codec);
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_commandQueue, address(0x01));
    // Without both pointers: already set.
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0xC1), nullptr), 0);
    EXPECT_EQ(m_manager->m_codec, codec);
    EXPECT_FALSE(logged("WARN", "OpenCL Pipeline asked twice but not with same context / command queue !"));

    // Same context and the same queue: a new codec.
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0xC1), address(0x01)), 0);
    EXPECT_TRUE(logged("WARN", "OpenCL Pipeline asked twice but not with same context / command queue !"));
    EXPECT_NE(m_manager->m_codec, codec);
    codec->Release();

    // Another context: a new codec on it.
    codec = holdCodec();
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0xC2), address(0x03)), 0);
    EXPECT_NE(m_manager->m_codec, codec);
    EXPECT_EQ(m_manager->m_instance->m_pipeline->m_context, address(0xC2));
    codec->Release();

    // Unknown means the CPU, and any pipeline that yields a device: the first one listed.
    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_UNKNOWN), 0);
    EXPECT_EQ(runningPipeline(), blackmagicRawPipelineCPU);
}

TEST_F(CodecSwitch, NewCodecGetsANewCallbackWhoseFailureStopsTheSwitch) {
    auto clip = twtest::addClip(*m_manager, twtest::writeSmallClip(m_roots.folder(), "clip.braw"), 0);
    ASSERT_NE(clip, nullptr);
    // The codecs of a new factory refuse any callback.
    twtest::writeFacts(m_install, twtest::factsWithFaults(R"([{"method": "Codec.SetCallback"}])"));
    ASSERT_TRUE(m_manager->m_instance->tryToInitBM(""));

    EXPECT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_CUDA), 1);
    EXPECT_EQ(m_manager->m_errorInfo.toString().Str(), "Blackmagic Callback setting error : Abnormal error.");
    EXPECT_TRUE(logged("ERR", "qvBRAW_Manager init - Failed to set IBlackmagicRawCallback!"));
    // The clip left the old codec and was not reopened.
    EXPECT_FALSE(clip->m_opened);
    EXPECT_EQ(clip->m_BM, nullptr);
}

// The journal's releases of the codec's interfaces, without their addresses:
// "<kind> refs=<left>".
std::vector<std::string> releasesOf(const std::vector<std::string>& journal) {
    std::vector<std::string> releases;
    for (const std::string& line : journal) {
        const std::string kind = line.substr(0, line.find(' '));
        if (kind != "ManualDecoderFlow1" && kind != "ManualDecoderFlow2" && kind != "ResourceManager" &&
            kind != "Codec")
            continue;
        releases.push_back(kind + line.substr(line.rfind(' ')));
    }
    return releases;
}

TEST_F(CodecSwitch, TheLibraryInterfacesGoBackDecoderFlowsFirstAndTheCodecLast) {
    ASSERT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_CUDA), 0);
    ASSERT_NE(m_manager->m_manualDecoderFlow2, nullptr);
    // The same order when the codec is left for another pipeline and when the
    // manager is released.
    twtest::decoderReleaseJournal(1);
    ASSERT_EQ(switchTo(QV_GPU_DEVICE_FRAMEWORK_OPENCL, address(0x5000), address(0x5100)), 0);
    const std::vector<std::string> switched = releasesOf(twtest::decoderReleaseJournal(0));
    twtest::decoderReleaseJournal(1);
    m_manager->Release();
    const std::vector<std::string> released = releasesOf(twtest::decoderReleaseJournal(-1));

    // Each decoder flow gives back its own hold on the codec as it goes; the
    // configuration interfaces are the codec's own object.
    const std::vector<std::string> expected = {
        "ManualDecoderFlow1 refs=0", "Codec refs=4",  // m_manualDecoderFlow1
        "ManualDecoderFlow2 refs=0", "Codec refs=3",  // m_manualDecoderFlow2
        "ResourceManager refs=1",                     // m_resourceManager
        "Codec refs=2",                               // m_configurationEx
        "Codec refs=1",                               // m_configuration
        "Codec refs=0",                               // m_codec
        "ResourceManager refs=0",                     // with the codec
    };
    for (const auto* releases : {&switched, &released}) {
        ASSERT_GE(releases->size(), expected.size());
        EXPECT_EQ(std::vector<std::string>(releases->begin(), releases->begin() + expected.size()), expected);
    }
}
