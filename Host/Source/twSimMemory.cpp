#include "twSimMemory.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

char* AllocateBytes(size_t size, bool clear) {
    const size_t n = size ? size : 1;
    void* p = clear ? std::calloc(1, n) : std::malloc(n);
    return static_cast<char*>(p);
}

std::string Describe(const void* p, size_t size, unsigned long long serial) {
    std::ostringstream ss;
    ss << "#" << serial << " at " << p << ", " << size << " bytes";
    return ss.str();
}

}  // namespace

twSimMemory::twSimMemory(twSimDiagnostics& diagnostics) : m_diagnostics(diagnostics) {}

twSimMemory::~twSimMemory() {
    for (auto& p : m_ptrs) std::free(const_cast<char*>(p.first));
    for (auto& h : m_handles) {
        std::free(*h.first);
        delete h.first;
    }
    for (PrMemoryHandle h : m_retiredHandles) delete h;
    for (auto& b : m_blocks) std::free(b.first);
}

char* twSimMemory::newPtr(csSDK_uint32 size, bool clear) {
    char* p = AllocateBytes(size, clear);
    if (!p) return nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_ptrs[p] = PtrInfo{size, ++m_serial, false};
    return p;
}

void twSimMemory::setPtrSize(PrMemoryPtr* ptr, csSDK_uint32 newSize) {
    if (!ptr) {
        m_diagnostics.add(twSimIssue::BadParameter, "setPtrSize with a null pointer address");
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_ptrs.find(*ptr);
    if (it == m_ptrs.end()) {
        m_diagnostics.add(twSimIssue::UnknownPointer, "setPtrSize");
        return;
    }
    void* grown = std::realloc(*ptr, newSize ? newSize : 1);
    if (!grown) return;
    PtrInfo info = it->second;
    info.size = newSize;
    m_ptrs.erase(it);
    *ptr = static_cast<char*>(grown);
    m_ptrs[*ptr] = info;
}

csSDK_int32 twSimMemory::getPtrSize(const char* ptr) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_ptrs.find(ptr);
    if (it == m_ptrs.end()) {
        m_diagnostics.add(twSimIssue::UnknownPointer, "getPtrSize");
        return 0;
    }
    return static_cast<csSDK_int32>(it->second.size);
}

void twSimMemory::disposePtr(char* ptr) {
    if (!ptr) return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_ptrs.erase(ptr) == 0) {
            m_diagnostics.add(twSimIssue::UnknownPointer, "disposePtr of a pointer the host never gave or already took back");
            return;
        }
    }
    std::free(ptr);
}

char** twSimMemory::newHandle(csSDK_uint32 size, bool clear) {
    char* data = AllocateBytes(size, clear);
    if (!data) return nullptr;
    auto* master = new char*(data);
    std::lock_guard<std::mutex> lock(m_mutex);
    m_handles[master] = HandleInfo{size, 0, ++m_serial};
    return master;
}

csSDK_int16 twSimMemory::setHandleSize(PrMemoryHandle h, csSDK_uint32 newSize) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_handles.find(h);
    if (it == m_handles.end()) {
        m_diagnostics.add(twSimIssue::UnknownHandle, "setHandleSize");
        return -1;
    }
    if (it->second.lockCount > 0) {
        m_diagnostics.add(twSimIssue::ResizeLockedHandle, "setHandleSize");
        return -1;
    }
    void* grown = std::realloc(*h, newSize ? newSize : 1);
    if (!grown) return -1;
    *h = static_cast<char*>(grown);
    it->second.size = newSize;
    return 0;
}

csSDK_int32 twSimMemory::getHandleSize(PrMemoryHandle h) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_handles.find(h);
    if (it == m_handles.end()) {
        m_diagnostics.add(twSimIssue::UnknownHandle, "getHandleSize");
        return 0;
    }
    return static_cast<csSDK_int32>(it->second.size);
}

void twSimMemory::disposeHandle(PrMemoryHandle h) {
    if (!h) return;
    char* data = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = m_handles.find(h);
        if (it == m_handles.end()) {
            m_diagnostics.add(twSimIssue::UnknownHandle,
                              m_retiredHandles.count(h) ? "disposeHandle of a handle already disposed"
                                                        : "disposeHandle of a handle the host never gave");
            return;
        }
        if (it->second.lockCount > 0)
            m_diagnostics.add(twSimIssue::DisposeLockedHandle, Describe(h, it->second.size, it->second.serial));
        data = *h;
        *h = nullptr;
        m_handles.erase(it);
        m_retiredHandles.insert(h);
    }
    std::free(data);
}

void twSimMemory::lockHandle(PrMemoryHandle h) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_handles.find(h);
    if (it == m_handles.end()) {
        m_diagnostics.add(twSimIssue::UnknownHandle, "lockHandle");
        return;
    }
    ++it->second.lockCount;
}

void twSimMemory::unlockHandle(PrMemoryHandle h) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_handles.find(h);
    if (it == m_handles.end()) {
        m_diagnostics.add(twSimIssue::UnknownHandle, "unlockHandle");
        return;
    }
    if (it->second.lockCount == 0) {
        m_diagnostics.add(twSimIssue::UnlockNotLocked, Describe(h, it->second.size, it->second.serial));
        return;
    }
    --it->second.lockCount;
}

SPErr twSimMemory::allocateBlock(size_t size, void** block) {
    if (!block) return kSPBadParameterError;
    *block = AllocateBytes(size, false);
    if (!*block) return kSPBadParameterError;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_blocks[*block] = size;
    return kSPNoError;
}

SPErr twSimMemory::freeBlock(void* block) {
    if (!block) return kSPNoError;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_blocks.erase(block) == 0) {
            m_diagnostics.add(twSimIssue::UnknownBlock, "FreeBlock");
            return kSPBadParameterError;
        }
    }
    std::free(block);
    return kSPNoError;
}

SPErr twSimMemory::reallocateBlock(void* block, size_t newSize, void** newBlock) {
    if (!newBlock) return kSPBadParameterError;
    if (!block) return allocateBlock(newSize, newBlock);
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_blocks.find(block);
    if (it == m_blocks.end()) {
        m_diagnostics.add(twSimIssue::UnknownBlock, "ReallocateBlock");
        return kSPBadParameterError;
    }
    void* grown = std::realloc(block, newSize ? newSize : 1);
    if (!grown) return kSPBadParameterError;
    m_blocks.erase(it);
    m_blocks[grown] = newSize;
    *newBlock = grown;
    return kSPNoError;
}

bool twSimMemory::isLivePtr(const char* ptr) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_ptrs.count(ptr) != 0;
}

bool twSimMemory::isLiveHandle(PrMemoryHandle h) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_handles.count(h) != 0;
}

int twSimMemory::lockCount(PrMemoryHandle h) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_handles.find(h);
    return it == m_handles.end() ? -1 : it->second.lockCount;
}

void twSimMemory::setHostHeld(const char* ptr, bool held) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_ptrs.find(ptr);
    if (it != m_ptrs.end()) it->second.hostHeld = held;
}

size_t twSimMemory::relocateUnlockedHandles() {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t moved = 0;
    for (auto& h : m_handles) {
        if (h.second.lockCount > 0) continue;
        char* fresh = AllocateBytes(h.second.size, false);
        if (!fresh) continue;
        std::memcpy(fresh, *h.first, h.second.size);
        std::free(*h.first);
        *h.first = fresh;
        ++moved;
    }
    return moved;
}

size_t twSimMemory::livePointerCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_ptrs.size();
}

size_t twSimMemory::liveHandleCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_handles.size();
}

size_t twSimMemory::liveBlockCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_blocks.size();
}

std::vector<std::string> twSimMemory::leakedPointers() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& p : m_ptrs)
        if (!p.second.hostHeld) out.push_back("pointer " + Describe(p.first, p.second.size, p.second.serial));
    return out;
}

std::vector<std::string> twSimMemory::leakedHandles() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& h : m_handles) out.push_back("handle " + Describe(h.first, h.second.size, h.second.serial));
    return out;
}

std::vector<std::string> twSimMemory::lockedHandles() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& h : m_handles)
        if (h.second.lockCount > 0)
            out.push_back("handle " + Describe(h.first, h.second.size, h.second.serial) + " locked " +
                          std::to_string(h.second.lockCount) + " time(s)");
    return out;
}

std::vector<std::string> twSimMemory::leakedBlocks() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& b : m_blocks) out.push_back("SP block at " + Describe(b.first, b.second, 0));
    return out;
}
