#include "Library/RefLibraryConfig.h"

#include "Format/RefClipFile.h"

#include <BlackmagicRawAPI.h>

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <dlfcn.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <thread>

namespace twref {
namespace {

uint32_t bestInstructionSet()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        return blackmagicRawInstructionSetAVX2;
    if (__builtin_cpu_supports("avx"))
        return blackmagicRawInstructionSetAVX;
    return blackmagicRawInstructionSetSSE41;
}

std::string defaultPipelineName(uint32_t pipeline)
{
    switch (pipeline) {
    case blackmagicRawPipelineCPU: return "CPU";
    case blackmagicRawPipelineCUDA: return "CUDA";
    case blackmagicRawPipelineOpenCL: return "OpenCL";
    case blackmagicRawPipelineMetal: return "Metal";
    default: return refFourCCText(pipeline);
    }
}

bool readFourCC(const rapidjson::Value& v, const std::string& where, uint32_t& out, std::string& error)
{
    if (v.IsUint()) {
        out = v.GetUint();
        return true;
    }
    if (v.IsString() && refParseFourCC(v.GetString(), out))
        return true;
    error = where + ": expected a four-character code";
    return false;
}

bool readUint(const rapidjson::Value& v, const std::string& where, uint32_t& out, std::string& error)
{
    if (!v.IsUint()) {
        error = where + ": expected an unsigned integer";
        return false;
    }
    out = v.GetUint();
    return true;
}

bool readText(const rapidjson::Value& v, const std::string& where, std::string& out, std::string& error)
{
    if (!v.IsString()) {
        error = where + ": expected a string";
        return false;
    }
    out = v.GetString();
    return true;
}

bool readDevice(const rapidjson::Value& v, const std::string& where, RefDeviceConfig& device, std::string& error)
{
    if (!v.IsObject()) {
        error = where + ": expected an object";
        return false;
    }
    for (auto it = v.MemberBegin(); it != v.MemberEnd(); ++it) {
        const std::string name = it->name.GetString();
        const std::string at = where + "." + name;
        bool ok = true;
        if (name == "name")
            ok = readText(it->value, at, device.name, error);
        else if (name == "index")
            ok = readUint(it->value, at, device.index, error);
        else if (name == "instruction_set")
            ok = readFourCC(it->value, at, device.instructionSet, error);
        else if (name == "context" || name == "command_queue") {
            if (!it->value.IsUint64()) {
                error = at + ": expected an unsigned integer";
                return false;
            }
            (name == "context" ? device.context : device.commandQueue) = it->value.GetUint64();
        } else {
            error = at + ": unknown member";
            ok = false;
        }
        if (!ok)
            return false;
    }
    return true;
}

bool readPipeline(const rapidjson::Value& v, const std::string& where, RefPipelineConfig& pipeline,
                  std::string& error)
{
    if (!v.IsObject() || !v.HasMember("pipeline")) {
        error = where + ": expected an object with a \"pipeline\" member";
        return false;
    }
    if (!readFourCC(v["pipeline"], where + ".pipeline", pipeline.pipeline, error))
        return false;
    pipeline.name = defaultPipelineName(pipeline.pipeline);
    pipeline.interop = blackmagicRawInteropNone;
    bool devicesGiven = false;
    for (auto it = v.MemberBegin(); it != v.MemberEnd(); ++it) {
        const std::string name = it->name.GetString();
        const std::string at = where + "." + name;
        if (name == "pipeline")
            continue;
        if (name == "name") {
            if (!readText(it->value, at, pipeline.name, error))
                return false;
        } else if (name == "interop") {
            if (!readFourCC(it->value, at, pipeline.interop, error))
                return false;
        } else if (name == "devices") {
            if (!it->value.IsArray()) {
                error = at + ": expected an array";
                return false;
            }
            devicesGiven = true;
            uint32_t index = 0;
            for (const rapidjson::Value& d : it->value.GetArray()) {
                RefDeviceConfig device;
                device.index = index;
                device.instructionSet = bestInstructionSet();
                device.name = "Reference " + pipeline.name + " device " + std::to_string(index);
                if (!readDevice(d, at + "[" + std::to_string(index) + "]", device, error))
                    return false;
                pipeline.devices.push_back(device);
                ++index;
            }
        } else {
            error = at + ": unknown member";
            return false;
        }
    }
    if (!devicesGiven) {
        RefDeviceConfig device;
        device.instructionSet = bestInstructionSet();
        device.name = "Reference " + pipeline.name + " device 0";
        pipeline.devices.push_back(device);
    }
    return true;
}

std::string toJson(const rapidjson::Value& v)
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    v.Accept(writer);
    return buffer.GetString();
}

}  // namespace

RefLibraryConfig::RefLibraryConfig()
{
    const uint32_t hardware = std::max(1u, std::thread::hardware_concurrency());
    version = "5.0.0 (reference decoder)";
    cameraSupportVersion = "5.0 (reference cameras)";
    workerThreads = std::min(std::max(hardware, 2u), 16u);
    cpuThreads = workerThreads;
    maxCpuThreadCount = std::max(hardware, workerThreads);
    RefPipelineConfig cpu;
    cpu.pipeline = blackmagicRawPipelineCPU;
    cpu.name = "CPU";
    cpu.interop = blackmagicRawInteropNone;
    RefDeviceConfig device;
    device.name = "Reference CPU";
    device.instructionSet = bestInstructionSet();
    cpu.devices.push_back(device);
    pipelines.push_back(cpu);
}

const RefPipelineConfig* RefLibraryConfig::pipeline(uint32_t code) const
{
    for (const RefPipelineConfig& p : pipelines)
        if (p.pipeline == code)
            return &p;
    return nullptr;
}

std::string RefLibraryConfig::libraryFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&RefLibraryConfig::libraryFolder), &info) == 0 || !info.dli_fname)
        return std::string();
    std::string path = info.dli_fname;
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string("./") : path.substr(0, slash + 1);
}

bool RefLibraryConfig::load(RefLibraryConfig& config, std::string& error)
{
    config = RefLibraryConfig();
    const std::string folder = libraryFolder();
    if (folder.empty())
        return true;
    std::ifstream in(folder + kFileName, std::ios::binary);
    if (!in)
        return true;
    std::ostringstream text;
    text << in.rdbuf();
    return parse(text.str(), config, error);
}

bool RefLibraryConfig::parse(const std::string& json, RefLibraryConfig& config, std::string& error)
{
    rapidjson::Document doc;
    doc.Parse(json.c_str(), json.size());
    if (doc.HasParseError()) {
        error = std::string(kFileName) + ": " + rapidjson::GetParseError_En(doc.GetParseError()) +
                " at offset " + std::to_string(doc.GetErrorOffset());
        return false;
    }
    if (!doc.IsObject()) {
        error = std::string(kFileName) + ": expected a JSON object";
        return false;
    }
    rapidjson::Document hooks(rapidjson::kObjectType);
    for (auto it = doc.MemberBegin(); it != doc.MemberEnd(); ++it) {
        const std::string name = it->name.GetString();
        bool ok = true;
        if (name == "version")
            ok = readText(it->value, name, config.version, error);
        else if (name == "camera_support_version")
            ok = readText(it->value, name, config.cameraSupportVersion, error);
        else if (name == "cpu_threads")
            ok = readUint(it->value, name, config.cpuThreads, error);
        else if (name == "max_cpu_thread_count")
            ok = readUint(it->value, name, config.maxCpuThreadCount, error);
        else if (name == "worker_threads") {
            ok = readUint(it->value, name, config.workerThreads, error);
            if (ok && (config.workerThreads == 0 || config.workerThreads > 256)) {
                error = "worker_threads: expected 1 to 256";
                ok = false;
            }
        } else if (name == "write_metadata_per_frame") {
            ok = it->value.IsBool();
            if (ok)
                config.writeMetadataPerFrame = it->value.GetBool();
            else
                error = name + ": expected a boolean";
        } else if (name == "pipelines") {
            if (!it->value.IsArray()) {
                error = name + ": expected an array";
                return false;
            }
            config.pipelines.clear();
            size_t index = 0;
            for (const rapidjson::Value& p : it->value.GetArray()) {
                RefPipelineConfig pipeline;
                if (!readPipeline(p, name + "[" + std::to_string(index++) + "]", pipeline, error))
                    return false;
                config.pipelines.push_back(pipeline);
            }
        } else if (name == "faults" || name == "delays") {
            rapidjson::Value key(name.c_str(), hooks.GetAllocator());
            rapidjson::Value copy(it->value, hooks.GetAllocator());
            hooks.AddMember(key, copy, hooks.GetAllocator());
        } else {
            error = name + ": unknown member";
            ok = false;
        }
        if (!ok)
            return false;
    }
    if (hooks.MemberCount() > 0) {
        // Faults and delays share the clip description's syntax and reader.
        const std::string text = toJson(hooks);
        RefClipModel model;
        if (!RefClipFile::parseDescription(text.c_str(), text.size(), model, error))
            return false;
        config.faults = model.faults;
        config.delays = model.delays;
    }
    return true;
}

}  // namespace twref
