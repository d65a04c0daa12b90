#include "Library/RefLibObject.h"

#include <cstdio>
#include <map>
#include <mutex>
#include <vector>

namespace twref {
namespace {

struct LiveEntry {
    const char* kind = "";
    const RefLibObject* object = nullptr;  // null for tracked items
};

struct JournalEntry {
    const char* kind;
    const void* object;
    ULONG refs;
};

// Never destroyed: objects may die during static destruction.
struct LiveRegistry {
    std::mutex mutex;
    std::map<const void*, LiveEntry> entries;
    // Off until a test starts it, so that releases cost one load.
    std::atomic<bool> journalOn{false};
    std::vector<JournalEntry> journal;
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

RefLibObject::RefLibObject(const char* kind) : m_kind(kind)
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
    LiveRegistry& r = registry();
    if (r.journalOn.load(std::memory_order_relaxed)) {
        // Noted under the lock, with the count it leaves, so that the journal's
        // order is the order of the releases even across threads.
        std::lock_guard<std::mutex> lock(r.mutex);
        const ULONG previous = m_refCount.fetch_sub(1, std::memory_order_acq_rel);
        r.journal.push_back(JournalEntry{m_kind, this, previous - 1});
        if (previous != 1)
            return previous - 1;
    } else {
        const ULONG previous = m_refCount.fetch_sub(1, std::memory_order_acq_rel);
        if (previous != 1)
            return previous - 1;
    }
    delete this;
    return 0;
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

void refStartReleaseJournal(bool on)
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.journal.clear();
    r.journal.shrink_to_fit();
    r.journalOn.store(on, std::memory_order_relaxed);
}

std::string refReleaseJournal()
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    std::string text;
    char line[160];
    for (const JournalEntry& e : r.journal) {
        std::snprintf(line, sizeof line, "%s %p refs=%lu\n", e.kind, e.object, static_cast<unsigned long>(e.refs));
        text += line;
    }
    return text;
}

uint64_t refReleaseJournalSize()
{
    LiveRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.journal.size();
}

}  // namespace twref
