// Frames per second of the reference decoder through the manual flow 1 (read
// into a bit-stream buffer, frame state, decode, process into the caller's
// buffer), at 1920x1080 and 4096x2160, 8-bit and float, with one frame or
// several in flight. Each benchmark measures memcpy of the same output size
// in the same run; "x_memcpy" is the time of one frame over that copy's.

#include "twBenchManualFlow.h"

#include "Writer/RefClipWriter.h"

#include <BlackmagicRawAPI.h>

#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using twbench::Flow;
using twbench::Slot;

struct Library {
    IBlackmagicRawFactory* (*create)() = nullptr;
    Library()
    {
        void* handle = dlopen(TW_REF_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
        if (handle)
            create = reinterpret_cast<IBlackmagicRawFactory* (*)()>(dlsym(handle, "CreateBlackmagicRawFactoryInstance"));
    }
};

const Library& library()
{
    static Library s_library;
    return s_library;
}

// One clip per size, written once into a temporary folder removed at exit.
struct ClipFiles {
    std::string folder;
    std::string hd, dci;
    ClipFiles()
    {
        char pattern[] = "/tmp/tw-bench-XXXXXX";
        folder = mkdtemp(pattern) ? pattern : "/tmp";
        hd = folder + "/hd.braw";
        dci = folder + "/dci.braw";
        twref::RefClipWriter::write(hd, twref::RefClipWriter::makeClip(1920, 1080, 24.0f, 16));
        twref::RefClipWriter::write(dci, twref::RefClipWriter::makeClip(4096, 2160, 24.0f, 16));
    }
    ~ClipFiles()
    {
        unlink(hd.c_str());
        unlink(dci.c_str());
        rmdir(folder.c_str());
    }
};

const ClipFiles& clips()
{
    static ClipFiles s_clips;
    return s_clips;
}

// Seconds of one memcpy of size bytes between two buffers already touched.
double memcpySeconds(size_t size)
{
    std::vector<uint8_t> from(size, 1), to(size, 0);
    constexpr int kRounds = 8;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kRounds; ++i) {
        from[size_t(i)] = uint8_t(i);
        std::memcpy(to.data(), from.data(), size);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / kRounds;
}

// range(0): 0 = 1920x1080, 1 = 4096x2160; range(1): 0 = RGBA 8-bit, 1 = RGBA float; range(2): frames in flight.
void BM_ManualFlow(benchmark::State& state)
{
    if (!library().create) {
        state.SkipWithError("the decoder library could not be loaded");
        return;
    }
    const std::string& path = state.range(0) == 0 ? clips().hd : clips().dci;
    const BlackmagicRawResourceFormat format =
        state.range(1) == 0 ? blackmagicRawResourceFormatRGBAU8 : blackmagicRawResourceFormatRGBAF32;
    const size_t inFlight = size_t(state.range(2));

    IBlackmagicRawFactory* factory = library().create();
    IBlackmagicRaw* codec = nullptr;
    IBlackmagicRawClip* clip = nullptr;
    IBlackmagicRawClipEx* clipEx = nullptr;
    factory->CreateCodec(&codec);
    {
        Flow flow(codec);
        if (FAILED(codec->OpenClip(path.c_str(), &clip)) ||
            FAILED(clip->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<void**>(&clipEx)))) {
            state.SkipWithError("the clip could not be opened");
        } else {
            std::vector<std::unique_ptr<Slot>> slots;
            for (size_t i = 0; i < inFlight; ++i) {
                slots.push_back(std::make_unique<Slot>());
                slots.back()->format = format;
            }
            uint64_t frame = 0, frames = 0;
            bool failed = false;
            for (auto _ : state) {
                for (auto& slot : slots)
                    flow.read(clipEx, frame++ % 16, *slot);
                flow.flush();
                for (auto& slot : slots)
                    failed = failed || !slot->ok.load();
                frames += inFlight;
            }
            if (failed)
                state.SkipWithError("a frame failed to decode");
            const size_t outputBytes = slots.front()->processed.size();
            state.counters["fps"] = benchmark::Counter(double(frames), benchmark::Counter::kIsRate);
            state.counters["output_MB"] = double(outputBytes) / 1e6;
            state.counters["memcpy_fps"] = 1.0 / memcpySeconds(outputBytes);
            state.SetItemsProcessed(int64_t(frames));
            state.SetBytesProcessed(int64_t(frames * outputBytes));
        }
        if (clipEx)
            clipEx->Release();
        if (clip)
            clip->Release();
        flow.flush();
    }
    codec->Release();
    factory->Release();
}

// The per-frame cost against memcpy, from the two rates above, printed by the
// reporter as "x_memcpy" (how many memcpys of the picture one frame costs).
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        std::vector<Run> withRatio = runs;
        for (Run& run : withRatio) {
            auto fps = run.counters.find("fps");
            auto copy = run.counters.find("memcpy_fps");
            if (fps != run.counters.end() && copy != run.counters.end() && fps->second.value > 0)
                run.counters["x_memcpy"] = copy->second.value / fps->second.value;
        }
        ConsoleReporter::ReportRuns(withRatio);
    }
};

}  // namespace

BENCHMARK(BM_ManualFlow)
    ->ArgNames({"dci4k", "float", "inflight"})
    ->ArgsProduct({{0, 1}, {0, 1}, {1, 4}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
