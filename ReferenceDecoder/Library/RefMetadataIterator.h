#pragma once
// Walks a clip's or a frame's metadata. It starts on the first entry; Next on
// the last entry answers S_FALSE and leaves the iterator past the end, where
// GetKey and GetData fail.

#include "Format/RefClipModel.h"
#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

#include <vector>

namespace twref {

class RefMetadataIterator final : public RefLibObject, public IBlackmagicRawMetadataIterator {
public:
    RefMetadataIterator(std::vector<RefMetadataEntry> entries, RefHooks hooks, int64_t frame);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT Next() override;
    HRESULT GetKey(const char** key) override;
    HRESULT GetData(Variant* data) override;

private:
    std::vector<RefMetadataEntry> m_entries;
    RefHooks m_hooks;
    int64_t m_frame;
    size_t m_index = 0;
};

}  // namespace twref
