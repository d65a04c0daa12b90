#pragma once
// The host's memory manager as plug-ins see it through PlugMemoryFuncs and the
// SweetPea block functions: pointers with their sizes, handles (a pointer to a
// master pointer) with lock counts, and SP blocks. Every allocation is tracked,
// so what the plug-in leaves behind is visible.

#include "twSimDiagnostics.h"

#include "MediaCoreTypes.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class twSimMemory {
public:
    explicit twSimMemory(twSimDiagnostics& diagnostics);
    ~twSimMemory();
    twSimMemory(const twSimMemory&) = delete;
    twSimMemory& operator=(const twSimMemory&) = delete;

    // ---- pointers ----
    char* newPtr(csSDK_uint32 size, bool clear);
    void setPtrSize(PrMemoryPtr* ptr, csSDK_uint32 newSize);
    // The size asked for at allocation; 0 (and a diagnostic) for an unknown pointer.
    csSDK_int32 getPtrSize(const char* ptr);
    void disposePtr(char* ptr);

    // ---- handles ----
    char** newHandle(csSDK_uint32 size, bool clear);
    // 0 on success; -1 for an unknown handle or a locked one, whose memory is pinned.
    csSDK_int16 setHandleSize(PrMemoryHandle h, csSDK_uint32 newSize);
    csSDK_int32 getHandleSize(PrMemoryHandle h);
    void disposeHandle(PrMemoryHandle h);
    void lockHandle(PrMemoryHandle h);
    void unlockHandle(PrMemoryHandle h);

    // ---- SweetPea blocks ----
    SPErr allocateBlock(size_t size, void** block);
    SPErr freeBlock(void* block);
    SPErr reallocateBlock(void* block, size_t newSize, void** newBlock);

    // ---- host side ----
    bool isLivePtr(const char* ptr) const;
    bool isLiveHandle(PrMemoryHandle h) const;
    int lockCount(PrMemoryHandle h) const;  // -1 for an unknown handle
    // Memory the plug-in handed over to the host (a clip's prefs) stops being the
    // plug-in's leak while the host holds it.
    void setHostHeld(const char* ptr, bool held);
    // Moves the contents of every unlocked handle to a fresh block, as a real
    // memory manager may do at any time: a plug-in that kept a dereferenced
    // handle without locking it now reads freed memory.
    size_t relocateUnlockedHandles();

    size_t livePointerCount() const;
    size_t liveHandleCount() const;
    size_t liveBlockCount() const;
    // One line per allocation the plug-in still owns, and per handle still locked.
    std::vector<std::string> leakedPointers() const;
    std::vector<std::string> leakedHandles() const;
    std::vector<std::string> lockedHandles() const;
    std::vector<std::string> leakedBlocks() const;

private:
    struct PtrInfo {
        size_t size;
        unsigned long long serial;
        bool hostHeld;
    };
    struct HandleInfo {
        size_t size;
        int lockCount;
        unsigned long long serial;
    };

    mutable std::mutex m_mutex;
    twSimDiagnostics& m_diagnostics;
    unsigned long long m_serial = 0;
    std::unordered_map<const char*, PtrInfo> m_ptrs;
    std::unordered_map<PrMemoryHandle, HandleInfo> m_handles;
    // Master pointers of disposed handles stay allocated until the host goes, so
    // that a stale handle is recognised instead of aliasing a new one.
    std::unordered_set<PrMemoryHandle> m_retiredHandles;
    std::unordered_map<void*, size_t> m_blocks;
};
