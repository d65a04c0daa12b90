#include "Library/RefLibObject.h"

#include <cstdio>
#include <map>
#include <mutex>

namespace twref {
namespace {

struct LiveEntry {
    const char* kind = "";
    const RefLibObject* object = nullptr;  // null for tracked items
};

// Never destroyed: objects may die during static destruction.
struct LiveRegistry {
    std::mutex mutex;
    std::map<const void*, LiveEntry> entries;
};

LiveRegistry& registry()
{
    static LiveRegistry* s_registry = new LiveRegistry;
    return *s_registry;
}

}  // namespace

const char* refInterfaceName(const REFIID& iid)
{
    static const std::pair<REFIID, const char*> s_names[] = {
        {IID_IUnknown, "Unknown"},
        {IID_IBlackmagicRaw, "Codec"},
        {IID_IBlackmagicRawFactory, "Factory"},
        {IID_IBlackmagicRawPipelineIterator, "PipelineIterator"},
        {IID_IBlackmagicRawPipelineDeviceIterator, "PipelineDeviceIterator"},
        {IID_IBlackmagicRawOpenGLInteropHelper, "OpenGLInteropHelper"},
        {IID_IBlackmagicRawPipelineDevice, "PipelineDevice"},
        {IID_IBlackmagicRawToneCurve, "ToneCurve"},
        {IID_IBlackmagicRawConfiguration, "Configuration"},
        {IID_IBlackmagicRawConfigurationEx, "ConfigurationEx"},
        {IID_IBlackmagicRawClipGeometry, "ClipGeometry"},
        {IID_IBlackmagicRawResourceManager, "ResourceManager"},
        {IID_IBlackmagicRawMetadataIterator, "MetadataIterator"},
        {IID_IBlackmagicRawClipProcessingAttributes, "ClipProcessingAttributes"},
        {IID_IBlackmagicRawFrameProcessingAttributes, "FrameProcessingAttributes"},
        {IID_IBlackmagicRawPost3DLUT, "Post3DLUT"},
        {IID_IBlackmagicRawProcessedImage, "ProcessedImage"},
        {IID_IBlackmagicRawJob, "Job"},
        {IID_IBlackmagicRawReadJobHints, "ReadJobHints"},
        {IID_IBlackmagicRawCallback, "Callback"},
        {IID_IBlackmagicRawClipAudio, "ClipAudio"},
        {IID_IBlackmagicRawClipAccelerometerMotion, "ClipAccelerometerMotion"},
        {IID_IBlackmagicRawClipGyroscopeMotion, "ClipGyroscopeMotion"},
        {IID_IBlackmagicRawClipPDAFData, "ClipPDAFData"},
        {IID_IBlackmagicRawFrame, "Frame"},
        {IID_IBlackmagicRawFrameEx, "FrameEx"},
        {IID_IBlackmagicRawFrameMultiVideo, "FrameMultiVideo"},
        {IID_IBlackmagicRawManualDecoderFlow1, "ManualDecoderFlow1"},
        {IID_IBlackmagicRawManualDecoderFlow2, "ManualDecoderFlow2"},
        {IID_IBlackmagicRawClip, "Clip"},
        {IID_IBlackmagicRawClipEx, "ClipEx"},
        {IID_IBlackmagicRawClipMultiVideo, "ClipMultiVideo"},
        {IID_IBlackmagicRawClipImmersiveVideo, "ClipImmersiveVideo"},
        {IID_IBlackmagicRawClipResolutions, "ClipResolutions"},
    };
    for (const auto& [known, name] : s_names)
        if (refSameIid(known, iid))
            return name;
    return "";
}

RefLibObject::RefLibObject(const char* kind)
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.entries[this] = LiveEntry{kind, this};
}

RefLibObject::~RefLibObject()
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.entries.erase(this);
}

ULONG RefLibObject::addRef()
{
    return m_refCount.fetch_add(1, std::memory_order_relaxed) + 1;
}

ULONG RefLibObject::release()
{
    const ULONG previous = m_refCount.fetch_sub(1, std::memory_order_acq_rel);
    if (previous == 1) {
        delete this;
        return 0;
    }
    return previous - 1;
}

void refTrackItem(const void* item, const char* kind)
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.entries[item] = LiveEntry{kind, nullptr};
}

bool refUntrackItem(const void* item)
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.entries.find(item);
    if (it == r.entries.end() || it->second.object != nullptr)
        return false;
    r.entries.erase(it);
    return true;
}

bool refIsTrackedItem(const void* item)
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.entries.find(item);
    return it != r.entries.end() && it->second.object == nullptr;
}

uint64_t refLiveObjectCount()
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.entries.size();
}

std::string refLiveObjectReport()
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    std::string report;
    char line[160];
    for (const auto& [address, entry] : r.entries) {
        if (entry.object)
            std::snprintf(line, sizeof line, "%s %p refs=%lu\n", entry.kind, address,
                          static_cast<unsigned long>(entry.object->refCount()));
        else
            std::snprintf(line, sizeof line, "%s %p\n", entry.kind, address);
        report += line;
    }
    return report;
}

}  // namespace twref
