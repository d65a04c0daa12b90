// What a log statement costs while its level is off: it must be one integer
// comparison, with no text built and no memory taken. Measured next to an empty
// loop and a bare integer comparison in the same run; prints the ratios and the
// allocations counted during the disabled statements (expected: 0).
#include "Utils/qvLogging.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string>

namespace {
std::atomic<uint64_t> s_allocations{0};
}  // namespace

// The replacement pair below is malloc/free on both sides; GCC cannot see that
// through inlining and warns about a mismatch.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(size_t size) {
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }

namespace {

void BM_EmptyLoop(benchmark::State& state) {
    for (auto _ : state) benchmark::ClobberMemory();
}
BENCHMARK(BM_EmptyLoop);

void BM_IntegerCompare(benchmark::State& state) {
    std::atomic<int32_t> minLevel{QV_LOG_DESACTIVATED};
    int64_t passed = 0;
    for (auto _ : state) {
        if (minLevel.load(std::memory_order_relaxed) <= QV_LOG_INFO) ++passed;
        benchmark::ClobberMemory();
    }
    benchmark::DoNotOptimize(passed);
}
BENCHMARK(BM_IntegerCompare);

void BM_DisabledLog(benchmark::State& state) {
    g_logger.desactivateFileLogging();
    const std::string path = "/Volumes/Card A/A001_08121532_C002.braw";
    int64_t frame = 0;
    const uint64_t before = s_allocations.load();
    for (auto _ : state) {
        QV_LOG(QV_LOG_INFO, "[Q" << 3 << "C" << 7 << "#" << frame << "I" << frame * 31 << "] Decoded " << path
                                 << " at scale " << 0.5 << " in " << 1.25 << " ms");
        ++frame;
        benchmark::ClobberMemory();
    }
    state.counters["allocations"] = static_cast<double>(s_allocations.load() - before);
}
BENCHMARK(BM_DisabledLog);

// Keeps each run's time per iteration for the summary.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            m_nanoPerIteration[run.benchmark_name()] = run.GetAdjustedRealTime();
            auto allocations = run.counters.find("allocations");
            if (allocations != run.counters.end()) m_allocations = allocations->second.value;
        }
    }
    void summarize() const {
        const auto get = [this](const char* name) {
            auto it = m_nanoPerIteration.find(name);
            return it == m_nanoPerIteration.end() ? 0.0 : it->second;
        };
        const double empty = get("BM_EmptyLoop");
        const double compare = get("BM_IntegerCompare");
        const double disabled = get("BM_DisabledLog");
        if (empty > 0 && compare > 0) {
            std::printf("\ndisabled QV_LOG / empty loop        : %.2f\n", disabled / empty);
            std::printf("disabled QV_LOG / integer comparison: %.2f\n", disabled / compare);
        }
        std::printf("allocations during disabled QV_LOG  : %.0f\n", m_allocations);
    }

private:
    std::map<std::string, double> m_nanoPerIteration;
    double m_allocations = -1;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.summarize();
    benchmark::Shutdown();
    return 0;
}
