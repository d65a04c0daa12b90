#pragma once
// The decoder library as this process sees it: where it was found, the factory
// it gave, and the pipeline and device chosen for the codec.

#include <BlackmagicRawAPI.h>

#include "Adobe/qvHost.h"
#include "String/qvBSTR.h"
#include "String/qvUtf8String.h"

#include <cstdint>

// One chosen pipeline and device. A plain record; the device reference is the
// record's own and is released by whoever deletes the record.
struct qvBRAW_GPU_Pipeline {
    uint32_t m_instructionSet = 0;
    uint32_t m_deviceIndex = 0;
    uint32_t m_pipeline = blackmagicRawPipelineCPU;
    uint32_t m_resourceType = blackmagicRawResourceTypeBufferCPU;
    IBlackmagicRawPipelineDevice* m_device = nullptr;
    qvBSTR m_name;
    qvBSTR m_pipelineName;
    uint32_t m_interop = blackmagicRawInteropNone;
    void* m_commandQueue = nullptr;
    void* m_context = nullptr;

    // The device's facts, one per line, for the log.
    qvUtf8String to_string() const;

    // The resource type that buffers of that pipeline have.
    static uint32_t resourceTypeForPipeline(uint32_t pipeline);
};

class qvBRAW_Instance {
public:
    explicit qvBRAW_Instance(const QV_PLUGIN& plugin);
    ~qvBRAW_Instance();
    qvBRAW_Instance(const qvBRAW_Instance&) = delete;
    qvBRAW_Instance& operator=(const qvBRAW_Instance&) = delete;

    // Looks for the library beside the running bundle, then in the product's
    // fixed install folder. 0 when a factory has just been made; 1 when none
    // could be, or when one was made before (nothing then changes).
    int32_t init();
    // init() with the bundle's folder given: empty skips that candidate.
    int32_t searchLibrary(const qvUtf8String& pluginFolder);
    // A factory from the library in `folder` (with its trailing "/"), which
    // becomes m_libraryPath unless it is empty. m_BMInit follows the result.
    bool tryToInitBM(const qvUtf8String& folder);
    // Chooses a pipeline and one of its devices, replacing the current record
    // only when a new one was found.
    bool initPipeline(const uint32_t& pipeline, const uint32_t& instructionSet, bool acceptAnyPipeline,
                      bool acceptAnyInstructionSet);
    // The product is tied to one build of the library, recognised by the exact
    // byte count of its file in m_libraryPath.
    bool isTheDllLastVersion() const;
    int32_t Release();

    // The byte count isTheDllLastVersion accepts.
    static int64_t expectedLibrarySize();
    // The fixed install folder, below the platform layer's system root.
    static qvUtf8String fixedLibraryFolder();

    bool m_BMInit = false;
    qvBSTR m_libraryPath;
    QV_PLUGIN m_plugin;
    IBlackmagicRawFactory* m_factory = nullptr;
    bool m_acceptAnyPipeline = false;
    qvBRAW_GPU_Pipeline* m_pipeline = nullptr;
};

// Log labels of the library's codes: "CPU", "CUDA", "Metal", "OpenCL";
// "SSE41", "AVX", "AVX2"; "None", "OpenGL"; "Unknown" for any other.
const char* qvBRAW_PipelineLabel(uint32_t pipeline);
const char* qvBRAW_InstructionSetLabel(uint32_t instructionSet);
const char* qvBRAW_InteropLabel(uint32_t interop);
