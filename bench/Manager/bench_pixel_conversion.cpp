// Speed of each conversion pass into the host's frame, one thread, warm
// buffers, 1920x1080 and 4096x2160. Each iteration times the pass and then a
// memcpy of the same output bytes into the same frame, both in the thread's
// own processor time, so both meet the same machine load and neither counts
// the time the thread waited for a processor; "x_memcpy" is the pass's throughput as a share of memcpy's
// (1.0: as fast as one copy of the output). A summary closes the run with the
// goal of each kind of pass.

#include "Manager/Request.h"
#include "Manager/twBufferManager.h"

#include <benchmark/benchmark.h>

#include <time.h>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

class BenchRequest : public qvBRAW_Request {
public:
    BenchRequest() : qvBRAW_Request(true, nullptr) {
        m_finished = true;
        m_bufferManager = new twBufferManager(nullptr, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, false,
                                              nullptr, nullptr);
    }
    void OnCancelled() override {}
};

struct Pass {
    int algorithm;
    uint32_t srcBytes;
    uint32_t dstBytes;
    bool downscale;
    double goal;  // share of memcpy's throughput
    const char* kind;
};

const Pass kPasses[] = {
    {1, 4, 4, false, 0.95, "copy"},          {7, 16, 16, false, 0.95, "copy"},
    {12, 4, 4, false, 0.95, "copy"},         {21, 4, 4, false, 0.95, "copy"},
    {4, 8, 8, false, 0.9, "16-bit rule"},    {13, 8, 8, false, 0.9, "16-bit rule"},
    {2, 4, 4, false, 0.0, "row shift"},      {14, 12, 16, false, 0.0, "float RGB"},
    {5, 6, 8, false, 0.0, "planar"},         {6, 6, 8, false, 0.0, "planar"},
    {9, 4, 4, true, 0.5, "downscale"},       {10, 8, 8, true, 0.5, "downscale"},
    {11, 12, 16, true, 0.5, "downscale"},    {15, 4, 4, true, 0.5, "downscale"},
    {16, 8, 8, true, 0.5, "downscale"},      {17, 16, 16, true, 0.5, "downscale"},
    {22, 4, 4, true, 0.5, "downscale"},
};

// Downscales read an image this much larger than the output on each axis:
// between two of the library's own scales.
constexpr float kDownscale = 1.5f;

std::map<std::string, double> g_ratios;

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void runPass(benchmark::State& state, const Pass& pass) {
    const uint32_t W = static_cast<uint32_t>(state.range(0));
    const uint32_t H = static_cast<uint32_t>(state.range(1));
    const uint32_t Ws = pass.downscale ? static_cast<uint32_t>(W * kDownscale) + 1 : W;
    const uint32_t Hs = pass.downscale ? static_cast<uint32_t>(H * kDownscale) + 1 : H;
    const size_t outBytes = static_cast<size_t>(W) * H * pass.dstBytes;
    std::vector<uint8_t> source(static_cast<size_t>(Ws) * Hs * pass.srcBytes, 0x5A);
    std::vector<uint8_t> frame(outBytes, 0);
    std::vector<uint8_t> copySource(outBytes, 0x3C);

    BenchRequest request;
    request.m_pxlConvAlgo = pass.algorithm;
    request.m_bmBytesPerPixel = static_cast<uint8_t>(pass.srcBytes);
    request.m_srcWidth = Ws;
    request.m_srcHeight = Hs;
    request.m_width = W;
    request.m_height = H;
    request.m_rect = {0, 0, static_cast<int32_t>(W), static_cast<int32_t>(H)};
    request.m_rowBytes = static_cast<int32_t>(W * pass.dstBytes);
    request.m_scaleX = request.m_scaleY = kDownscale;
    request.m_bufferManager->m_processedBuffer = source.data();
    request.m_bufferManager->m_finalImageBuffer = frame.data();
    request.HeavyProcessing();  // warm: every page of both buffers touched once
    std::memcpy(frame.data(), copySource.data(), outBytes);

    double passSeconds = 0.0;
    double copySeconds = 0.0;
    for (auto _ : state) {
        const double start = threadSeconds();
        benchmark::DoNotOptimize(request.HeavyProcessing());
        benchmark::ClobberMemory();
        const double middle = threadSeconds();
        std::memcpy(frame.data(), copySource.data(), outBytes);
        benchmark::ClobberMemory();
        const double end = threadSeconds();
        passSeconds += middle - start;
        copySeconds += end - middle;
    }
    const double ratio = copySeconds / passSeconds;
    state.counters["x_memcpy"] = benchmark::Counter(ratio);
    state.counters["pass_ms"] = benchmark::Counter(1000.0 * passSeconds / double(state.iterations()));
    state.counters["memcpy_ms"] = benchmark::Counter(1000.0 * copySeconds / double(state.iterations()));
    g_ratios[std::to_string(pass.algorithm) + " " + std::to_string(W) + "x" + std::to_string(H)] = ratio;
}

void summarize() {
    std::printf("\nalgorithm  kind          size        x_memcpy  goal   \n");
    for (const Pass& pass : kPasses) {
        for (const char* size : {"1920x1080", "4096x2160"}) {
            auto it = g_ratios.find(std::to_string(pass.algorithm) + " " + size);
            if (it == g_ratios.end()) continue;
            if (pass.goal > 0.0) {
                std::printf("%9d  %-12s  %-10s  %8.2f  %4.2f   %s\n", pass.algorithm, pass.kind, size, it->second,
                            pass.goal, it->second >= pass.goal ? "met" : "SHORT");
            } else {
                std::printf("%9d  %-12s  %-10s  %8.2f     -\n", pass.algorithm, pass.kind, size, it->second);
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const Pass& pass : kPasses) {
        benchmark::RegisterBenchmark(("Pass/" + std::to_string(pass.algorithm)).c_str(),
                                     [&pass](benchmark::State& state) { runPass(state, pass); })
            ->Args({1920, 1080})
            ->Args({4096, 2160})
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    summarize();
    benchmark::Shutdown();
    return 0;
}
