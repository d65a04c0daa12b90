// Playback through the plug-in in the host simulator, as a host plays (one
// asynchronous reader, frames started ahead, collected in order), against the
// reference decoder's own manual flow for the same frames, size and resource
// format with the same number of frames in flight, measured in the same run.
// Printed per case: both rates in frames per second and their ratio. Then the
// median cost of InitiateAsyncRead as a share of one frame's decode time, and
// the plug-in's own allocations per frame in steady playback: allocations
// whose caller is code of the plug-in's module (the host's frames and the
// decoder library's resources are made elsewhere and not counted).

#include "twBenchManualFlow.h"
#include "twSimAsyncReader.h"
#include "twSimFile.h"
#include "twSimHost.h"

#include "Writer/RefClipWriter.h"

#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

std::atomic<bool> s_counting{false};
std::atomic<uint64_t> s_pluginAllocations{0};
const void* s_pluginBase = nullptr;

void countIfFromPlugin(const void* caller) {
    if (!s_counting.load(std::memory_order_relaxed) || !s_pluginBase) return;
    Dl_info info;
    if (dladdr(caller, &info) && info.dli_fbase == s_pluginBase) s_pluginAllocations.fetch_add(1);
}

}  // namespace

// Replaced for the whole process: the plug-in's module calls these too. The
// pair is malloc/free on both sides.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(size_t size) {
    countIfFromPlugin(__builtin_return_address(0));
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void* operator new[](size_t size) {
    countIfFromPlugin(__builtin_return_address(0));
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr long long kClipFrames = 48;
constexpr size_t kAhead = 4;
constexpr long long kFrames = 24;

struct Case {
    const char* name;
    PrPixelFormat hostFormat;
    BlackmagicRawResourceFormat resource;  // what the plug-in asks the library for
    bool half;
    double goal;
};

double baselineFps(const std::string& path, const Case& c, size_t inFlight) {
    void* library = dlopen(TW_REF_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    auto create = reinterpret_cast<IBlackmagicRawFactory* (*)()>(dlsym(library, "CreateBlackmagicRawFactoryInstance"));
    if (!create) return 0.0;
    IBlackmagicRawFactory* factory = create();
    IBlackmagicRaw* codec = nullptr;
    factory->CreateCodec(&codec);
    double fps = 0.0;
    {
        twbench::Flow flow(codec);
        IBlackmagicRawClip* clip = nullptr;
        IBlackmagicRawClipEx* clipEx = nullptr;
        codec->OpenClip(path.c_str(), &clip);
        clip->QueryInterface(IID_IBlackmagicRawClipEx, reinterpret_cast<void**>(&clipEx));
        std::vector<std::unique_ptr<twbench::Slot>> slots;
        for (size_t i = 0; i < inFlight; ++i) {
            slots.push_back(std::make_unique<twbench::Slot>());
            slots.back()->format = c.resource;
            slots.back()->scale = c.half ? blackmagicRawResolutionScaleHalf : blackmagicRawResolutionScaleFull;
        }
        // The first pass grows the slots' buffers; the second is measured.
        auto pass = [&](long long first) {
            for (long long f = first; f < first + kFrames; f += static_cast<long long>(inFlight)) {
                for (size_t i = 0; i < inFlight; ++i) flow.read(clipEx, static_cast<uint64_t>(f) + i, *slots[i]);
                flow.flush();
            }
        };
        pass(kFrames);
        const Clock::time_point start = Clock::now();
        pass(0);
        fps = static_cast<double>(kFrames) / std::chrono::duration<double>(Clock::now() - start).count();
        clipEx->Release();
        clip->Release();
        flow.flush();
    }
    codec->Release();
    factory->Release();
    return fps;
}

struct PluginRun {
    double fps = 0.0;
    std::vector<double> initiateMicros;
    double allocationsPerFrame = 0.0;
    bool ok = true;
};

PluginRun pluginPlayback(twSimHost& host, twSimFile& file, const Case& c) {
    PluginRun run;
    std::unique_ptr<twSimAsyncReader> reader = file.createAsyncReader();
    if (!reader) {
        run.ok = false;
        return run;
    }
    const int width = c.half ? kWidth / 2 : kWidth;
    const int height = c.half ? kHeight / 2 : kHeight;
    auto request = [&](long long f) { return file.frameRequest(f, width, height, c.hostFormat); };
    // Frames from 24 on warm the plug-in, the host's frame allocator and the
    // library up; the measured frames are others, so the host's cache never answers.
    auto play = [&](long long first, bool measure) {
        for (size_t i = 0; i < kAhead; ++i) reader->initiateRead(request(first + static_cast<long long>(i)));
        for (long long f = first; f < first + kFrames; ++f) {
            if (f + static_cast<long long>(kAhead) < first + kFrames) {
                const Clock::time_point t = Clock::now();
                reader->initiateRead(request(f + static_cast<long long>(kAhead)));
                if (measure)
                    run.initiateMicros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - t).count());
            }
            twSimFrameResult got = reader->waitForFrame(request(f));
            run.ok = run.ok && got.result == 0 && got.frame;
        }
    };
    play(kFrames, false);
    host.cache().expireAll();
    const uint64_t before = s_pluginAllocations.load();
    s_counting = true;
    const Clock::time_point start = Clock::now();
    play(0, true);
    run.fps = static_cast<double>(kFrames) / std::chrono::duration<double>(Clock::now() - start).count();
    s_counting = false;
    run.allocationsPerFrame = static_cast<double>(s_pluginAllocations.load() - before) / static_cast<double>(kFrames);
    reader->close();
    host.cache().expireAll();
    return run;
}

double median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

// A temporary folder for the clip and the plug-in's home, removed at the end.
struct BenchFolder {
    std::string path;
    BenchFolder() {
        char pattern[] = "/tmp/tw-bench-playback-XXXXXX";
        path = mkdtemp(pattern) ? pattern : "/tmp";
    }
    ~BenchFolder() {
        std::error_code ignored;
        if (path != "/tmp") std::filesystem::remove_all(path, ignored);
    }
    std::string make(const std::string& name) const {
        std::filesystem::create_directories(path + "/" + name);
        return path + "/" + name;
    }
};

int main() {
    // A host keeps the memory of the frames it disposes of for the next ones,
    // and so does this one: freed blocks stay in the process instead of going
    // back to the system, whose fresh pages cost a fault each on first touch.
    mallopt(M_MMAP_THRESHOLD, 512 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 1024 * 1024 * 1024);
    BenchFolder folder;
    const std::string clipPath = folder.path + "/bench.braw";
    twref::RefClipModel model;
    model.width = kWidth;
    model.height = kHeight;
    model.frameCount = kClipFrames;
    std::string error;
    if (!twref::RefClipWriter::write(clipPath, model, &error)) {
        std::fprintf(stderr, "cannot write the clip: %s\n", error.c_str());
        return 1;
    }

    twSimHostConfig config;
    config.useTestRoots = true;
    config.testHome = folder.make("home");
    config.testSystemRoot = folder.make("root");
    twSimHost host(config);
    host.loadPlugin(TW_IMPORTER_PLUGIN);
    Dl_info info;
    if (dladdr(reinterpret_cast<const void*>(host.plugin().entry()), &info)) s_pluginBase = info.dli_fbase;
    if (host.init() != imNoErr) {
        std::fprintf(stderr, "imInit failed\n");
        return 1;
    }
    std::unique_ptr<twSimFile> file = host.importFile(clipPath);
    if (file->infoResult() != imNoErr) {
        std::fprintf(stderr, "the clip could not be imported\n");
        return 1;
    }

    const Case cases[] = {
        {"BGRA_8u full (direct fill)", PrPixelFormat_BGRA_4444_8u, blackmagicRawResourceFormatBGRAU8, false, 0.95},
        {"BGRA_16u full", PrPixelFormat_BGRA_4444_16u, blackmagicRawResourceFormatBGRAU16, false, 0.9},
        {"BGRA_32f full", PrPixelFormat_BGRA_4444_32f, blackmagicRawResourceFormatBGRAF32, false, 0.9},
        {"BGRA_8u half", PrPixelFormat_BGRA_4444_8u, blackmagicRawResourceFormatBGRAU8, true, 0.9},
    };
    std::printf("%d frames of %dx%d, %zu in flight, one reader\n", static_cast<int>(kFrames), kWidth, kHeight,
                kAhead);
    std::printf("%-28s %14s %14s %8s %6s %18s\n", "case", "library fps", "plug-in fps", "ratio", "goal",
                "plug-in allocs/fr");
    double frameDecodeMicros = 0.0;
    std::vector<double> initiate;
    bool ok = true;
    for (const Case& c : cases) {
        const double library = baselineFps(clipPath, c, kAhead);
        const PluginRun plugin = pluginPlayback(host, *file, c);
        ok = ok && plugin.ok;
        const double ratio = library > 0 ? plugin.fps / library : 0.0;
        std::printf("%-28s %14.2f %14.2f %7.3fx %5.2fx %18.1f%s\n", c.name, library, plugin.fps, ratio, c.goal,
                    plugin.allocationsPerFrame, ratio >= c.goal ? "" : "  (below the goal)");
        if (c.hostFormat == PrPixelFormat_BGRA_4444_8u && !c.half) {
            const double alone = baselineFps(clipPath, c, 1);
            frameDecodeMicros = alone > 0 ? 1e6 / alone : 0.0;
            initiate = plugin.initiateMicros;
        }
    }
    // One frame's decode time: the library's time for a frame decoded alone.
    const double initiateMedian = median(initiate);
    std::printf("InitiateAsyncRead median %.0f us, one frame's decode %.0f us: %.3f (goal at most 0.05)\n",
                initiateMedian, frameDecodeMicros, frameDecodeMicros > 0 ? initiateMedian / frameDecodeMicros : 0.0);
    file->close();
    file.reset();
    host.shutdown();
    if (!ok) {
        std::fprintf(stderr, "a frame failed during playback\n");
        return 1;
    }
    return 0;
}
