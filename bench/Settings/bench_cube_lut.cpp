// What a user waits for when attaching a .cube LUT to a clip: loading a 33- and
// a 65-point cube (35937 and 274625 rows), and loading it and writing it into
// the clip's sidecar (both passes). Each is measured next to one fread of the
// same file's bytes in the same run; prints the ratios and the time per file.
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/TW_LUT.h"

#include <benchmark/benchmark.h>

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

std::string g_folder;

std::string cubePath(int size) { return g_folder + "/Grade_" + std::to_string(size) + ".cube"; }
std::string sidecarPath(int size) { return g_folder + "/A001_" + std::to_string(size) + ".sidecar"; }

// A cube as grading tools write them: a header and six decimals per number.
void writeCube(int size) {
    FILE* file = std::fopen(cubePath(size).c_str(), "wb");
    if (!file) std::abort();
    std::fprintf(file, "# Created by a grading tool\nTITLE \"Grade %d\"\nLUT_3D_SIZE %d\n\n", size, size);
    const double step = 1.0 / (size - 1);
    for (int b = 0; b < size; ++b) {
        for (int g = 0; g < size; ++g) {
            for (int r = 0; r < size; ++r) {
                std::fprintf(file, "%.6f %.6f %.6f\n", r * step * 0.97 + 0.01, g * step * 0.95, b * step * 0.9 + 0.05);
            }
        }
    }
    std::fclose(file);
}

// A sidecar as a camera leaves it, before the LUT goes in.
void writeFreshSidecar(int size) {
    FILE* file = std::fopen(sidecarPath(size).c_str(), "wb");
    if (!file) std::abort();
    std::fputs("{\n    \"viewing_gamma\": \"Blackmagic Design Film\",\n    \"iso\": {\n        \"01:00:00:00\": 800\n"
               "    }\n}",
               file);
    std::fclose(file);
}

void BM_Fread(benchmark::State& state) {
    const int size = static_cast<int>(state.range(0));
    const std::string path = cubePath(size);
    std::vector<char> buffer(static_cast<size_t>(std::filesystem::file_size(path)));
    for (auto _ : state) {
        FILE* file = std::fopen(path.c_str(), "rb");
        const size_t read = std::fread(buffer.data(), 1, buffer.size(), file);
        std::fclose(file);
        benchmark::DoNotOptimize(read);
        benchmark::ClobberMemory();
    }
}

void BM_LoadCube(benchmark::State& state) {
    const std::string path = cubePath(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        TW_LUT lut;
        if (!lut.loadFromCubeFile(path).isOk()) state.SkipWithError("the cube did not load");
        benchmark::DoNotOptimize(lut.values.data());
    }
}

void BM_LoadCubeIntoSidecar(benchmark::State& state) {
    const int size = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        writeFreshSidecar(size);
        state.ResumeTiming();
        if (!LutUtility::addLUTToSidecar(sidecarPath(size), cubePath(size)).isOk()) {
            state.SkipWithError("the LUT did not go into the sidecar");
        }
    }
}

BENCHMARK(BM_Fread)->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadCube)->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadCubeIntoSidecar)->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);

// Ratios by CPU time, which a busy machine disturbs less than wall time; both
// are printed.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            m_cpuMs[run.benchmark_name()] = run.GetAdjustedCPUTime();
            m_realMs[run.benchmark_name()] = run.GetAdjustedRealTime();
        }
    }
    void summarize() const {
        const auto get = [](const std::map<std::string, double>& times, const std::string& name) {
            auto it = times.find(name);
            return it == times.end() ? 0.0 : it->second;
        };
        std::printf("\n");
        for (int size : {33, 65}) {
            const std::string arg = "/" + std::to_string(size);
            const double fread = get(m_cpuMs, "BM_Fread" + arg);
            if (fread <= 0) continue;
            const double load = get(m_cpuMs, "BM_LoadCube" + arg);
            const double sidecar = get(m_cpuMs, "BM_LoadCubeIntoSidecar" + arg);
            std::printf("%d-point cube, CPU time: one fread %.3f ms; load %.2f ms (%.1f x fread); load and write "
                        "into a sidecar %.2f ms (%.1f x fread)\n",
                        size, fread, load, load / fread, sidecar, sidecar / fread);
            std::printf("%d-point cube, wall time: one fread %.3f ms; load %.2f ms; load and write into a sidecar "
                        "%.2f ms\n",
                        size, get(m_realMs, "BM_Fread" + arg), get(m_realMs, "BM_LoadCube" + arg),
                        get(m_realMs, "BM_LoadCubeIntoSidecar" + arg));
        }
    }

private:
    std::map<std::string, double> m_cpuMs;
    std::map<std::string, double> m_realMs;
};

}  // namespace

int main(int argc, char** argv) {
    char pattern[] = "/tmp/tw-bench-cube-XXXXXX";
    if (!mkdtemp(pattern)) return 1;
    g_folder = pattern;
    writeCube(33);
    writeCube(65);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.summarize();
    benchmark::Shutdown();
    std::filesystem::remove_all(g_folder);
    return 0;
}
