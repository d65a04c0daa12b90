#pragma once
// Codec-level facts of the library: version texts, thread counts, the
// pipelines and devices it reports, and codec-level faults and delays. They
// come from the optional file "libBlackmagicRawAPI.json" beside the library,
// read each time a factory is made, so that tests can shape them:
//
// {
//   "version": "5.0.0", "camera_support_version": "5.0",
//   "cpu_threads": 4, "max_cpu_thread_count": 8, "worker_threads": 4,
//   "write_metadata_per_frame": false,
//   "pipelines": [ { "pipeline": "cpub", "name": "CPU", "interop": "none",
//                    "devices": [ { "name": "Reference CPU", "index": 0,
//                                   "instruction_set": "avx2",
//                                   "context": 0, "command_queue": 0 } ] } ],
//   "faults": [ ... ], "delays": [ ... ]   (the syntax of a clip description)
// }
//
// Every member is optional; a missing file gives the defaults (one CPU
// pipeline with one device of the machine's best instruction set).

#include "Format/RefClipModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace twref {

struct RefDeviceConfig {
    std::string name;
    uint32_t index = 0;
    uint32_t instructionSet = 0;
    uint64_t context = 0;
    uint64_t commandQueue = 0;
};

struct RefPipelineConfig {
    uint32_t pipeline = 0;
    std::string name;
    uint32_t interop = 0;
    std::vector<RefDeviceConfig> devices;
};

struct RefLibraryConfig {
    RefLibraryConfig();  // the defaults

    std::string version;
    std::string cameraSupportVersion;
    uint32_t cpuThreads = 0;
    uint32_t maxCpuThreadCount = 0;
    uint32_t workerThreads = 0;
    bool writeMetadataPerFrame = false;
    std::vector<RefPipelineConfig> pipelines;
    std::vector<RefFault> faults;
    std::vector<RefDelay> delays;

    const RefPipelineConfig* pipeline(uint32_t code) const;

    static constexpr const char* kFileName = "libBlackmagicRawAPI.json";
    // The folder holding this library, with a trailing '/'.
    static std::string libraryFolder();
    // Reads the file beside the library; true with the defaults when there is none.
    static bool load(RefLibraryConfig& config, std::string& error);
    static bool parse(const std::string& json, RefLibraryConfig& config, std::string& error);
};

}  // namespace twref
