// Speed of the reference decoder's pictures. The reference decoder must stay
// far cheaper than the product that consumes its frames, so each case reports
// frames per second and its cost as a multiple of a memcpy of the same output
// size, measured in the same run ("x_memcpy": 1.0 means as cheap as one copy).

#include "Format/RefLutTools.h"
#include "Render/RefRenderer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <vector>

using namespace twref;

namespace {

double secondsPerMemcpy(size_t bytes)
{
    std::vector<uint8_t> source(bytes, 1), target(bytes);
    std::memcpy(target.data(), source.data(), bytes);  // fault the pages in first
    const int rounds = 8;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i) {
        source[i] = static_cast<uint8_t>(i);
        std::memcpy(target.data(), source.data(), bytes);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / rounds;
}

void renderCase(benchmark::State& state, RefResourceFormat format, bool withLut)
{
    const uint32_t width = static_cast<uint32_t>(state.range(0));
    const uint32_t height = static_cast<uint32_t>(state.range(1));
    std::vector<uint8_t> buffer(RefRenderer::resourceSizeBytes(format, width, height));
    RefRenderSettings settings;
    settings.gamma = "Blackmagic Design Custom";
    settings.exposure = 0.3f;
    const RefLut lut = RefLutTools::make(RefLutKind::Warm, 33);
    RefRenderTarget target;
    target.data = buffer.data();
    target.sizeBytes = buffer.size();
    target.width = width;
    target.height = height;
    target.format = format;

    const double copy = secondsPerMemcpy(buffer.size());
    double rendering = 0.0;
    uint64_t frame = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        RefRenderer::render(frame++, settings, withLut ? &lut : nullptr, target);
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
        rendering += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    const double perFrame = rendering / double(state.iterations());
    state.counters["fps"] = benchmark::Counter(1.0 / perFrame);
    state.counters["x_memcpy"] = benchmark::Counter(perFrame / copy);
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(buffer.size()));
}

void BM_RenderRGBAU8(benchmark::State& state) { renderCase(state, RefResourceFormat::RGBAU8, false); }
void BM_RenderBGRAU8_LUT(benchmark::State& state) { renderCase(state, RefResourceFormat::BGRAU8, true); }
void BM_RenderRGBU16Planar(benchmark::State& state) { renderCase(state, RefResourceFormat::RGBU16Planar, false); }
void BM_RenderRGBAF32(benchmark::State& state) { renderCase(state, RefResourceFormat::RGBAF32, false); }
void BM_RenderBGRAF32_LUT(benchmark::State& state) { renderCase(state, RefResourceFormat::BGRAF32, true); }

}  // namespace

#define TW_SIZES ->Args({1920, 1080})->Args({4096, 2160})->Unit(benchmark::kMillisecond)->UseRealTime()
BENCHMARK(BM_RenderRGBAU8) TW_SIZES;
BENCHMARK(BM_RenderBGRAU8_LUT) TW_SIZES;
BENCHMARK(BM_RenderRGBU16Planar) TW_SIZES;
BENCHMARK(BM_RenderRGBAF32) TW_SIZES;
BENCHMARK(BM_RenderBGRAF32_LUT) TW_SIZES;

BENCHMARK_MAIN();
