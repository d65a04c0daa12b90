#include "Library/RefMetadataIterator.h"

#include "Library/RefVariant.h"

namespace twref {

RefMetadataIterator::RefMetadataIterator(std::vector<RefMetadataEntry> entries, RefHooks hooks, int64_t frame)
    : RefLibObject("MetadataIterator"), m_entries(std::move(entries)), m_hooks(std::move(hooks)), m_frame(frame)
{
}

HRESULT RefMetadataIterator::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("MetadataIterator.QueryInterface", m_frame, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawMetadataIterator))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawMetadataIterator*>(this);
    return S_OK;
}

HRESULT RefMetadataIterator::Next()
{
    if (HRESULT hr = m_hooks.enter("MetadataIterator.Next", m_frame); hr != S_OK)
        return hr;
    if (m_index + 1 < m_entries.size()) {
        ++m_index;
        return S_OK;
    }
    m_index = m_entries.size();
    return S_FALSE;
}

HRESULT RefMetadataIterator::GetKey(const char** key)
{
    if (!key)
        return E_POINTER;
    const std::string current = m_index < m_entries.size() ? m_entries[m_index].key : std::string();
    if (HRESULT hr = m_hooks.enter("MetadataIterator.GetKey", m_frame, 0, current); hr != S_OK)
        return hr;
    if (m_index >= m_entries.size())
        return E_FAIL;
    *key = m_entries[m_index].key.c_str();
    return S_OK;
}

HRESULT RefMetadataIterator::GetData(Variant* data)
{
    if (!data)
        return E_POINTER;
    const std::string current = m_index < m_entries.size() ? m_entries[m_index].key : std::string();
    if (HRESULT hr = m_hooks.enter("MetadataIterator.GetData", m_frame, 0, current); hr != S_OK)
        return hr;
    if (m_index >= m_entries.size())
        return E_FAIL;
    return refValueToVariant(m_entries[m_index].value, data);
}

}  // namespace twref
