#pragma once
// Base of every object the library hands out: a real reference count that
// frees the object at zero, and an entry in the process-wide live-object
// registry that twRefDecoderLiveObjects reports, so that tests can prove that
// a caller released everything it took.

#include <BlackmagicRawAPI.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>

namespace twref {

inline bool refSameIid(const REFIID& a, const REFIID& b)
{
    return std::memcmp(&a, &b, sizeof(REFIID)) == 0;
}

// The interface's name without its "IBlackmagicRaw" prefix ("Codec" for
// IBlackmagicRaw itself): the key a fault on QueryInterface matches.
const char* refInterfaceName(const REFIID& iid);

class RefLibObject {
public:
    // kind: a short static text naming the object in the live report.
    explicit RefLibObject(const char* kind);
    virtual ~RefLibObject();
    RefLibObject(const RefLibObject&) = delete;
    RefLibObject& operator=(const RefLibObject&) = delete;

    ULONG addRef();
    // Deletes the object when the count reaches zero.
    ULONG release();
    ULONG refCount() const { return m_refCount.load(std::memory_order_acquire); }

private:
    const char* m_kind;
    std::atomic<ULONG> m_refCount{1};
};

// Items that are not COM objects but that a caller must give back: strings the
// library put into a Variant, SafeArrays. Both live in the same report.
void refTrackItem(const void* item, const char* kind);
// True when the item was tracked (it is then forgotten).
bool refUntrackItem(const void* item);
bool refIsTrackedItem(const void* item);

uint64_t refLiveObjectCount();
// One line per live object or item: "<kind> <address> refs=<n>".
std::string refLiveObjectReport();

// The release journal: once started, every Release of a library object is
// noted in call order as "<kind> <address> refs=<n>", n being the count the
// release left (0: the object is gone). Starting or stopping empties it.
void refStartReleaseJournal(bool on);
std::string refReleaseJournal();
uint64_t refReleaseJournalSize();

}  // namespace twref

// The IUnknown reference counting of a class deriving from RefLibObject.
#define TW_REF_REFCOUNTED                                  \
    ULONG AddRef() override { return addRef(); }           \
    ULONG Release() override { return release(); }
