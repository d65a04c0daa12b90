// The choice of a pipeline and device over a library that offers several: the
// walk to a device of the asked instruction set, GPU devices with their context
// and queue, what a failed choice keeps, and the library's failures on the way.

#include "ManagerTestSupport.h"

#include "Utils/qvUtils.h"

namespace {

class Pipelines : public twtest::DecoderTest {
protected:
    void SetUp() override {
        twtest::DecoderTest::SetUp();
        m_install = twtest::installDecoder(fixedFolder(), 0, twtest::kSeveralPipelinesFacts);
        ASSERT_EQ(m_instance.init(), 0);
    }
    void TearDown() override {
        m_instance.Release();
        EXPECT_DECODER_CLEAN();
        twtest::DecoderTest::TearDown();
    }

    bool choose(uint32_t pipeline, uint32_t instructionSet, bool anyPipeline, bool anyInstructionSet) {
        return m_instance.initPipeline(pipeline, instructionSet, anyPipeline, anyInstructionSet);
    }
    // Makes the instance's factory anew over these facts.
    void refactor(const std::string& facts) {
        twtest::writeFacts(m_install, facts);
        ASSERT_TRUE(m_instance.tryToInitBM(""));
    }
    static std::string error(HRESULT hr) { return qvUtils::getHRESULTerrorMessage(hr).Str(); }

    std::string m_install;
    qvBRAW_Instance m_instance{QV_PLUGIN_IMPORTER};
};

}  // namespace

TEST_F(Pipelines, AskedInstructionSetIsFoundByWalkingThePipelinesDevices) {
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, false));
    const qvBRAW_GPU_Pipeline* record = m_instance.m_pipeline;
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->m_instructionSet, blackmagicRawInstructionSetAVX2);
    EXPECT_EQ(record->m_deviceIndex, 2u);
    EXPECT_EQ(record->m_pipeline, blackmagicRawPipelineCPU);
    EXPECT_EQ(record->m_resourceType, blackmagicRawResourceTypeBufferCPU);
    EXPECT_EQ(record->m_interop, blackmagicRawInteropNone);
    EXPECT_EQ(record->m_name.ToString(), "CPU C");
    EXPECT_EQ(record->m_pipelineName.ToString(), "CPU");
    EXPECT_EQ(record->m_context, nullptr);
    EXPECT_EQ(record->m_commandQueue, nullptr);
    ASSERT_NE(record->m_device, nullptr);

    // The device's name stands under both headings.
    EXPECT_EQ(record->to_string().Str(),
              "- Pipeline Infos : \n    - Instruction set : AVX2\n    - Device Index : 2\n    - Interop : None\n"
              "    - Name : CPU C\n    - Pipeline Name : CPU C");
    // The first device was looked at, and dropped for its instruction set.
    const std::string log = logText();
    EXPECT_NE(log.find("- Pipeline Infos : \n    - Instruction set : AVX\n    - Device Index : 0\n"),
              std::string::npos);
    EXPECT_TRUE(logged("INFO", "-- New Pipeline : CPU"));
    EXPECT_FALSE(logged("INFO", "Replacing old pipeline with new one created"));

    // Any instruction set: the pipeline's first device, replacing the record.
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    EXPECT_EQ(m_instance.m_pipeline->m_name.ToString(), "CPU A");
    EXPECT_EQ(m_instance.m_pipeline->m_instructionSet, blackmagicRawInstructionSetAVX);
    EXPECT_TRUE(logged("INFO", "Replacing old pipeline with new one created"));

    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetSSE41, false, false));
    EXPECT_EQ(m_instance.m_pipeline->m_name.ToString(), "CPU B");
    EXPECT_EQ(m_instance.m_pipeline->m_deviceIndex, 1u);
}

TEST_F(Pipelines, GpuDevicesCarryTheirResourceTypeContextAndQueue) {
    ASSERT_TRUE(choose(blackmagicRawPipelineCUDA, blackmagicRawInstructionSetAVX2, false, true));
    const qvBRAW_GPU_Pipeline* cuda = m_instance.m_pipeline;
    EXPECT_EQ(cuda->m_pipeline, blackmagicRawPipelineCUDA);
    EXPECT_EQ(cuda->m_resourceType, blackmagicRawResourceTypeBufferCUDA);
    EXPECT_EQ(cuda->m_context, reinterpret_cast<void*>(11));
    EXPECT_EQ(cuda->m_commandQueue, reinterpret_cast<void*>(12));
    EXPECT_EQ(cuda->m_name.ToString(), "GPU 0");
    EXPECT_EQ(cuda->m_pipelineName.ToString(), "CUDA");
    EXPECT_EQ(cuda->m_instructionSet, blackmagicRawInstructionSetSSE41);

    ASSERT_TRUE(choose(blackmagicRawPipelineOpenCL, blackmagicRawInstructionSetAVX2, false, false));
    const qvBRAW_GPU_Pipeline* openCL = m_instance.m_pipeline;
    EXPECT_EQ(openCL->m_resourceType, blackmagicRawResourceTypeBufferOpenCL);
    EXPECT_EQ(openCL->m_context, reinterpret_cast<void*>(21));
    EXPECT_EQ(openCL->m_commandQueue, reinterpret_cast<void*>(22));

    // Every pipeline of the iteration is announced until one is accepted.
    std::vector<std::string> announced;
    for (const std::string& message : messages("INFO")) {
        if (message.rfind("-- New Pipeline : ", 0) == 0) announced.push_back(message);
    }
    EXPECT_EQ(announced,
              (std::vector<std::string>{"-- New Pipeline : CPU", "-- New Pipeline : CUDA", "-- New Pipeline : CPU",
                                        "-- New Pipeline : CUDA", "-- New Pipeline : OpenCL"}));

    EXPECT_EQ(qvBRAW_GPU_Pipeline::resourceTypeForPipeline(blackmagicRawPipelineMetal),
              blackmagicRawResourceTypeBufferMetal);
    EXPECT_EQ(qvBRAW_GPU_Pipeline::resourceTypeForPipeline(0x12345678), blackmagicRawResourceTypeBufferCPU);
}

TEST_F(Pipelines, ChoiceThatFindsNothingKeepsTheCurrentRecord) {
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    const qvBRAW_GPU_Pipeline* const current = m_instance.m_pipeline;

    // No such pipeline.
    EXPECT_FALSE(choose(blackmagicRawPipelineMetal, blackmagicRawInstructionSetAVX2, false, true));
    // The only device of the pipeline lacks the set: there is no second one to create.
    EXPECT_FALSE(choose(blackmagicRawPipelineCUDA, blackmagicRawInstructionSetAVX2, false, false));
    EXPECT_TRUE(logged("ERR", "- Error while creating Device, Instruction asked not found and Create Device error : " +
                                  error(E_FAIL)));
    // No device of the pipeline has it: the walk runs off the end.
    EXPECT_FALSE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetNEON, false, false));
    EXPECT_TRUE(
        logged("ERR", "- Error while creating Device, Instruction asked not found and Error : " + error(E_FAIL)));
    EXPECT_EQ(m_instance.m_pipeline, current);
    EXPECT_EQ(m_instance.m_pipeline->m_name.ToString(), "CPU A");

    // Any pipeline: the first that yields a device.
    ASSERT_TRUE(choose(blackmagicRawPipelineMetal, blackmagicRawInstructionSetAVX2, true, true));
    EXPECT_EQ(m_instance.m_pipeline->m_pipeline, blackmagicRawPipelineCPU);
    // Any pipeline with an exact set: the walk stays inside the first pipeline.
    ASSERT_TRUE(choose(blackmagicRawPipelineMetal, blackmagicRawInstructionSetSSE41, true, false));
    EXPECT_EQ(m_instance.m_pipeline->m_name.ToString(), "CPU B");
}

TEST_F(Pipelines, LibraryFailuresDuringTheChoiceEndItOrSkipTheDevice) {
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    const qvBRAW_GPU_Pipeline* const current = m_instance.m_pipeline;

    refactor(twtest::factsWithFaults(R"([{"method": "Factory.CreatePipelineIterator", "result": "E_OUTOFMEMORY"}])"));
    EXPECT_FALSE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    EXPECT_TRUE(logged("ERR", "Error while creating Pipeline Iterator : " + error(E_OUTOFMEMORY)));

    refactor(twtest::factsWithFaults(R"([{"method": "PipelineIterator.GetPipeline"}])"));
    EXPECT_FALSE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    EXPECT_TRUE(logged("ERR", "Getting First Pipeline error : " + error(E_FAIL)));

    refactor(
        twtest::factsWithFaults(R"([{"method": "Factory.CreatePipelineDeviceIterator", "result": "E_INVALIDARG"}])"));
    EXPECT_FALSE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    EXPECT_TRUE(logged("ERR", "- Error while creating Device Iterator : " + error(E_INVALIDARG)));
    EXPECT_EQ(m_instance.m_pipeline, current);

    // The CPU's device cannot be made: with any pipeline the next one serves.
    refactor(twtest::factsWithFaults(R"([{"method": "PipelineDeviceIterator.CreateDevice", "count": 1}])"));
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, true, true));
    EXPECT_TRUE(logged("ERR", "- Error while creating Device : " + error(E_FAIL)));
    EXPECT_EQ(m_instance.m_pipeline->m_pipeline, blackmagicRawPipelineCUDA);

    // Getters that fail leave the record's first values.
    refactor(twtest::factsWithFaults(R"([{"method": "PipelineDevice.GetName"}, {"method": "PipelineDevice.GetIndex"},
                                 {"method": "PipelineDevice.GetInstructionSet"}])"));
    ASSERT_TRUE(choose(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, false, true));
    EXPECT_TRUE(m_instance.m_pipeline->m_name.IsNull());
    EXPECT_EQ(m_instance.m_pipeline->m_deviceIndex, 0u);
    EXPECT_EQ(m_instance.m_pipeline->m_instructionSet, 0u);
    EXPECT_EQ(m_instance.m_pipeline->to_string().Str(),
              "- Pipeline Infos : \n    - Instruction set : Unknown\n    - Device Index : 0\n    - Interop : None\n"
              "    - Name : \n    - Pipeline Name : ");
}
