// The buffers of one frame against the reference decoder: growth only for a
// bigger frame, a damaged frame, a handed-in processed buffer that turns out
// too small, the clip's LUT, and the CPU buffer helpers.

#include "ManagerTestSupport.h"

#include "Manager/twBufferManager.h"
#include "Manager/twComRelease.h"
#include "Writer/RefClipWriter.h"

#include <cstring>

namespace {

using twref::RefClipModel;
using twtest::TestFrame;

class BufferManager : public twtest::ManagerTest {
protected:
    std::shared_ptr<qvBRAW_Clip> open(const RefClipModel& model, const std::string& name = "clip.braw") {
        uint64_t id = 0;
        EXPECT_EQ(m_manager->AddClip(writeClip(name, model), id), 0);
        return m_manager->GetClip(id);
    }
    twBufferManager makeCPU() {
        return twBufferManager(m_manager->m_resourceManager, m_manager->m_manualDecoderFlow1, nullptr,
                               blackmagicRawResourceTypeBufferCPU, false, nullptr, nullptr);
    }
};

TEST_F(BufferManager, TheBitStreamGrowsOnlyForABiggerFrame) {
    RefClipModel model = twref::RefClipWriter::makeClip(64, 36, 24.0f, 4);
    model.frameOverrideFor(0).bitStreamBytes = 4000;
    model.frameOverrideFor(1).bitStreamBytes = 1000;
    model.frameOverrideFor(2).bitStreamBytes = 9000;
    std::shared_ptr<qvBRAW_Clip> clip = open(model);
    twBufferManager buffers = makeCPU();

    auto read = [&](uint64_t frame) {
        IBlackmagicRawJob* job = nullptr;
        bool corrupted = true;
        const QvResult result = buffers.createReadJob(clip->m_BMEx, frame, &job, corrupted);
        EXPECT_TRUE(result.isOk()) << result.toString().Str();
        EXPECT_FALSE(corrupted);
        twReleaseAndNull(job);
    };
    read(0);
    void* first = buffers.m_bitStream;
    const uint32_t firstSize = buffers.m_bitStreamSize;
    EXPECT_NE(first, nullptr);
    EXPECT_GE(firstSize, 4000u);
    read(1);
    EXPECT_EQ(buffers.m_bitStream, first);
    EXPECT_EQ(buffers.m_bitStreamSize, firstSize);
    read(2);
    EXPECT_GT(buffers.m_bitStreamSize, firstSize);
    EXPECT_GE(buffers.m_bitStreamSize, 9000u);
}

TEST_F(BufferManager, ADamagedFrameIsReportedAsCorrupted) {
    RefClipModel model = twref::RefClipWriter::makeClip(64, 36, 24.0f, 4);
    model.frameOverrideFor(3).corrupt = true;
    std::shared_ptr<qvBRAW_Clip> clip = open(model);
    twBufferManager buffers = makeCPU();
    IBlackmagicRawJob* job = nullptr;
    bool corrupted = false;
    const QvResult result = buffers.createReadJob(clip->m_BMEx, 3, &job, corrupted);
    EXPECT_TRUE(corrupted);
    EXPECT_EQ(job, nullptr);
    EXPECT_EQ(result.toString().Str().rfind("Frame seems to be corrupted", 0), 0u) << result.toString().Str();
    EXPECT_EQ(buffers.m_bitStream, nullptr);
}

TEST_F(BufferManager, AHandedInBufferTooSmallIsReplacedByOneOfOurOwnAndStaysTheCallers) {
    std::shared_ptr<qvBRAW_Clip> clip = open(twref::RefClipWriter::makeClip(64, 36, 24.0f, 4));
    TestFrame frame(64, 36, 4, 64 * 4);
    auto request = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
    ASSERT_FALSE(request->m_bufferManager->m_ownsProcessedBuffer);
    std::vector<uint8_t> small(64, 0x5A);
    void* smallAddress = small.data();
    request->m_bufferManager->setAllocatedProcessedBuffer(&smallAddress, small.size());

    ASSERT_EQ(m_manager->ProcessFrameSync(request), 0);
    EXPECT_EQ(request->m_errorCode, 0) << request->m_errorMsg.Str();
    EXPECT_TRUE(request->m_bufferManager->m_ownsProcessedBuffer);
    EXPECT_NE(request->m_bufferManager->m_processedBuffer, smallAddress);
    EXPECT_EQ(request->m_bufferManager->m_processedBufferSize, 64u * 36u * 4u);
    EXPECT_TRUE(std::all_of(small.begin(), small.end(), [](uint8_t b) { return b == 0x5A; }));
    // The picture then comes through a pass of its own into the frame.
    EXPECT_FALSE(frame.untouched());
}

TEST_F(BufferManager, TheClipsLutReachesTheProcessJobOnlyWhenThereIsOne) {
    twBufferManager buffers = makeCPU();
    EXPECT_EQ(buffers.fillLut3DBuffersFromClipProcessing(nullptr).toString().Str(),
              "Impossible to get Post3DLUT if clipAttrs is nullptr");

    std::shared_ptr<qvBRAW_Clip> plain = open(twref::RefClipWriter::makeClip(64, 36, 24.0f, 4));
    IBlackmagicRawClipProcessingAttributes* attrs = nullptr;
    ASSERT_EQ(plain->m_BM->CloneClipProcessingAttributes(&attrs), S_OK);
    EXPECT_TRUE(buffers.fillLut3DBuffersFromClipProcessing(attrs).isOk());
    EXPECT_EQ(buffers.m_post3DLUTCPU, nullptr);
    EXPECT_EQ(buffers.m_post3DLUTGPU, nullptr);
    twReleaseAndNull(attrs);

    RefClipModel withLut = twref::RefClipWriter::makeClip(64, 36, 24.0f, 4);
    twref::RefClipWriter::addEmbeddedLut(withLut);
    withLut.setClipAttributeValue(blackmagicRawClipProcessingAttributePost3DLUTMode, twref::RefValue::string("Embedded"));
    std::shared_ptr<qvBRAW_Clip> lutClip = open(withLut, "lut.braw");
    ASSERT_EQ(lutClip->m_BM->CloneClipProcessingAttributes(&attrs), S_OK);
    EXPECT_TRUE(buffers.fillLut3DBuffersFromClipProcessing(attrs).isOk());
    EXPECT_NE(buffers.m_post3DLUTCPU, nullptr);
    EXPECT_EQ(buffers.m_post3DLUTGPU, nullptr);
    twReleaseAndNull(attrs);
}

TEST_F(BufferManager, CPUBuffersAndTheFinalBufferOfEachPath) {
    twBufferManager buffers = makeCPU();
    void* memory = nullptr;
    ASSERT_TRUE(buffers.allocateCPUBuffer(&memory, 256).isOk());
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 1, 256);
    EXPECT_TRUE(buffers.releaseCPUBuffer(&memory).isOk());
    EXPECT_EQ(memory, nullptr);
    EXPECT_EQ(buffers.releaseCPUBuffer(&memory).toString().Str(), "Failed Releasing CPU Buffer, cpuBuffer arg is nullptr");

    buffers.m_processedBuffer = &memory;
    void* out = nullptr;
    EXPECT_TRUE(buffers.convertFinalProcessedBufferToCPU(&out).isOk());
    EXPECT_EQ(out, &memory);
    buffers.m_processedBuffer = nullptr;

    // Hybrid decoding keeps its picture on the device, with no way back.
    twBufferManager hybrid(m_manager->m_resourceManager, nullptr, nullptr, blackmagicRawResourceTypeBufferOpenCL, true,
                           nullptr, nullptr);
    EXPECT_TRUE(hybrid.m_GPU);
    EXPECT_TRUE(hybrid.m_hybrid);
    out = nullptr;
    EXPECT_EQ(hybrid.convertFinalProcessedBufferToCPU(&out).toString().Str(), "Not Implemented");
    EXPECT_EQ(out, nullptr);
    // On the CPU the hybrid flag means nothing.
    twBufferManager cpuHybrid(m_manager->m_resourceManager, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, true,
                              nullptr, nullptr);
    EXPECT_FALSE(cpuHybrid.m_hybrid);
}

}  // namespace
