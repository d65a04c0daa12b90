#include "Library/RefAttributeSet.h"

#include "Library/RefVariant.h"

#include <algorithm>

namespace twref {
namespace {

bool isLutAttribute(uint32_t id)
{
    switch (id) {
    case RefClipAttr::EmbeddedPost3DLUTName:
    case RefClipAttr::EmbeddedPost3DLUTTitle:
    case RefClipAttr::EmbeddedPost3DLUTSize:
    case RefClipAttr::EmbeddedPost3DLUTData:
    case RefClipAttr::SidecarPost3DLUTName:
    case RefClipAttr::SidecarPost3DLUTTitle:
    case RefClipAttr::SidecarPost3DLUTSize:
    case RefClipAttr::SidecarPost3DLUTData:
        return true;
    default:
        return false;
    }
}

// A caller's value converted to the attribute's own type; false when the
// kinds differ (text for a number or the reverse).
bool convertTo(const RefAttribute& attribute, const RefValue& in, RefValue& out)
{
    const RefVariantType type = attribute.value.type;
    if (type == RefVariantType::String) {
        if (in.type != RefVariantType::String)
            return false;
        out = in;
        return true;
    }
    if (!in.isNumber() || !attribute.value.isNumber())
        return false;
    out = RefValue::ofType(type, in.number);
    return true;
}

bool allowed(const RefAttribute& attribute, const RefValue& value)
{
    if (!attribute.list.empty() &&
        std::find(attribute.list.begin(), attribute.list.end(), value) == attribute.list.end())
        return false;
    if (attribute.minimum.isNumber() && value.number < attribute.minimum.number)
        return false;
    if (attribute.maximum.isNumber() && value.number > attribute.maximum.number)
        return false;
    return true;
}

}  // namespace

RefAttributeSet::RefAttributeSet(std::vector<RefAttribute> clipAttributes, std::vector<RefAttribute> frameAttributes,
                                 std::shared_ptr<const RefLut> embeddedLut, std::shared_ptr<const RefLut> sidecarLut)
    : m_clip(std::move(clipAttributes)),
      m_frame(std::move(frameAttributes)),
      m_embeddedLut(std::move(embeddedLut)),
      m_sidecarLut(std::move(sidecarLut))
{
}

const RefAttribute* RefAttributeSet::find(Side side, uint32_t id) const
{
    if (side != Side::Frame)
        for (const RefAttribute& a : m_clip)
            if (a.id == id)
                return a.supported ? &a : nullptr;
    if (side != Side::Clip)
        for (const RefAttribute& a : m_frame)
            if (a.id == id)
                return a.supported ? &a : nullptr;
    return nullptr;
}

RefAttribute* RefAttributeSet::find(Side side, uint32_t id)
{
    return const_cast<RefAttribute*>(static_cast<const RefAttributeSet*>(this)->find(side, id));
}

bool RefAttributeSet::lutAttribute(uint32_t id, RefValue& value, HRESULT& result) const
{
    if (!isLutAttribute(id))
        return false;
    const bool embedded = id == RefClipAttr::EmbeddedPost3DLUTName || id == RefClipAttr::EmbeddedPost3DLUTTitle ||
                          id == RefClipAttr::EmbeddedPost3DLUTSize || id == RefClipAttr::EmbeddedPost3DLUTData;
    const RefLut* lut = embedded ? m_embeddedLut.get() : m_sidecarLut.get();
    if (!lut) {
        result = E_FAIL;
        return true;
    }
    result = S_OK;
    switch (id) {
    case RefClipAttr::EmbeddedPost3DLUTName:
    case RefClipAttr::SidecarPost3DLUTName: value = RefValue::string(lut->name); break;
    case RefClipAttr::EmbeddedPost3DLUTTitle:
    case RefClipAttr::SidecarPost3DLUTTitle: value = RefValue::string(lut->title); break;
    case RefClipAttr::EmbeddedPost3DLUTSize:
    case RefClipAttr::SidecarPost3DLUTSize: value = RefValue::u16(uint16_t(lut->size)); break;
    default:
        value = RefValue::numberArray(RefVariantType::Float32, std::vector<double>(lut->data.begin(), lut->data.end()));
        break;
    }
    return true;
}

HRESULT RefAttributeSet::get(Side side, uint32_t id, Variant* value) const
{
    if (!value)
        return E_POINTER;
    std::lock_guard<std::mutex> lock(m_mutex);
    RefValue lutValue;
    HRESULT lutResult = S_OK;
    if (side != Side::Frame && lutAttribute(id, lutValue, lutResult))
        return FAILED(lutResult) ? lutResult : refValueToVariant(lutValue, value);
    const RefAttribute* attribute = find(side, id);
    if (!attribute)
        return E_INVALIDARG;
    return refValueToVariant(attribute->value, value);
}

HRESULT RefAttributeSet::set(Side side, uint32_t id, const Variant* value)
{
    if (!value)
        return E_POINTER;
    RefValue in;
    if (!refValueFromVariant(*value, in))
        return E_INVALIDARG;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (side != Side::Frame && isLutAttribute(id))
        return E_INVALIDARG;  // the LUTs come from the clip and its sidecar only
    RefAttribute* attribute = find(side, id);
    if (!attribute || attribute->readOnly)
        return E_INVALIDARG;
    RefValue converted;
    if (!convertTo(*attribute, in, converted) || !allowed(*attribute, converted))
        return E_INVALIDARG;
    attribute->value = converted;
    return S_OK;
}

HRESULT RefAttributeSet::range(Side side, uint32_t id, Variant* minimum, Variant* maximum, bool* readOnly) const
{
    if (!minimum || !maximum || !readOnly)
        return E_POINTER;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (side != Side::Frame && isLutAttribute(id)) {
        *readOnly = true;
        return E_INVALIDARG;
    }
    const RefAttribute* attribute = find(side, id);
    if (!attribute)
        return E_INVALIDARG;
    *readOnly = attribute->readOnly;
    if (!attribute->minimum.isNumber() || !attribute->maximum.isNumber())
        return E_INVALIDARG;
    HRESULT hr = refValueToVariant(attribute->minimum, minimum);
    if (SUCCEEDED(hr))
        hr = refValueToVariant(attribute->maximum, maximum);
    if (FAILED(hr)) {
        refVariantClear(minimum);
        refVariantClear(maximum);
    }
    return hr;
}

HRESULT RefAttributeSet::list(Side side, uint32_t id, Variant* array, uint32_t* count, bool* readOnly) const
{
    if (!array && !count)
        return E_POINTER;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (side != Side::Frame && isLutAttribute(id)) {
        if (readOnly)
            *readOnly = true;
        return E_INVALIDARG;
    }
    const RefAttribute* attribute = find(side, id);
    if (!attribute)
        return E_INVALIDARG;
    if (readOnly)
        *readOnly = attribute->readOnly;
    if (attribute->list.empty())
        return E_INVALIDARG;
    const uint32_t size = uint32_t(attribute->list.size());
    if (!array) {
        *count = size;
        return S_OK;
    }
    // With both given, the count in is the array's capacity.
    if (count && *count < size)
        return E_INVALIDARG;
    for (uint32_t i = 0; i < size; ++i) {
        const HRESULT hr = refValueToVariant(attribute->list[i], &array[i]);
        if (FAILED(hr)) {
            for (uint32_t j = 0; j < i; ++j)
                refVariantClear(&array[j]);
            return hr;
        }
    }
    if (count)
        *count = size;
    return S_OK;
}

HRESULT RefAttributeSet::isoList(uint32_t* array, uint32_t* count, bool* readOnly) const
{
    if (!array && !count)
        return E_POINTER;
    std::lock_guard<std::mutex> lock(m_mutex);
    const RefAttribute* iso = find(Side::Frame, RefFrameAttr::ISO);
    if (!iso)
        return E_INVALIDARG;
    if (readOnly)
        *readOnly = iso->readOnly;
    const uint32_t size = uint32_t(iso->list.size());
    if (!array) {
        *count = size;
        return S_OK;
    }
    if (count && *count < size)
        return E_INVALIDARG;
    for (uint32_t i = 0; i < size; ++i)
        array[i] = uint32_t(iso->list[i].number);
    if (count)
        *count = size;
    return S_OK;
}

std::shared_ptr<const RefLut> RefAttributeSet::activeLut() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const RefAttribute* mode = find(Side::Clip, RefClipAttr::Post3DLUTMode);
    if (!mode || mode->value.type != RefVariantType::String)
        return nullptr;
    if (mode->value.text == "Embedded")
        return m_embeddedLut;
    if (mode->value.text == "Sidecar")
        return m_sidecarLut;
    return nullptr;
}

std::vector<RefAttribute> RefAttributeSet::clipAttributes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_clip;
}

std::vector<RefAttribute> RefAttributeSet::frameAttributes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_frame;
}

void RefAttributeSet::takeClipValuesFrom(const RefAttributeSet& other)
{
    if (&other == this)
        return;
    std::vector<RefAttribute> values = other.clipAttributes();
    std::shared_ptr<const RefLut> embedded, sidecar;
    {
        std::lock_guard<std::mutex> lock(other.m_mutex);
        embedded = other.m_embeddedLut;
        sidecar = other.m_sidecarLut;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_clip = std::move(values);
    m_embeddedLut = std::move(embedded);
    m_sidecarLut = std::move(sidecar);
}

void RefAttributeSet::takeFrameValuesFrom(const RefAttributeSet& other)
{
    if (&other == this)
        return;
    std::vector<RefAttribute> values = other.frameAttributes();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_frame = std::move(values);
}

}  // namespace twref
