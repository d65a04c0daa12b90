#include "Library/RefVariant.h"

#include "Library/RefLibObject.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace twref {
namespace {

constexpr const char* kStringKind = "VariantString";
constexpr const char* kArrayKind = "SafeArray";

size_t elementSize(BlackmagicRawVariantType type)
{
    switch (type) {
    case blackmagicRawVariantTypeU8: return 1;
    case blackmagicRawVariantTypeS16:
    case blackmagicRawVariantTypeU16: return 2;
    case blackmagicRawVariantTypeS32:
    case blackmagicRawVariantTypeU32:
    case blackmagicRawVariantTypeFloat32: return 4;
    case blackmagicRawVariantTypeString:
    case blackmagicRawVariantTypeFloat64: return 8;
    default: return 0;
    }
}

void freeVariantString(const char* text)
{
    if (text && refUntrackItem(text))
        std::free(const_cast<char*>(text));
}

bool knownArray(const SafeArray* array)
{
    return array && refIsTrackedItem(array);
}

void setU8(Variant* v, uint8_t value)
{
    std::memcpy(reinterpret_cast<unsigned char*>(v) + offsetof(Variant, uintVal), &value, 1);
}

uint8_t getU8(const Variant& v)
{
    uint8_t value = 0;
    std::memcpy(&value, reinterpret_cast<const unsigned char*>(&v) + offsetof(Variant, uintVal), 1);
    return value;
}

void storeNumber(BlackmagicRawVariantType type, double number, uint8_t* at)
{
    switch (type) {
    case blackmagicRawVariantTypeU8: { const uint8_t v = uint8_t(number); std::memcpy(at, &v, 1); break; }
    case blackmagicRawVariantTypeS16: { const int16_t v = int16_t(number); std::memcpy(at, &v, 2); break; }
    case blackmagicRawVariantTypeU16: { const uint16_t v = uint16_t(number); std::memcpy(at, &v, 2); break; }
    case blackmagicRawVariantTypeS32: { const int32_t v = int32_t(number); std::memcpy(at, &v, 4); break; }
    case blackmagicRawVariantTypeU32: { const uint32_t v = uint32_t(number); std::memcpy(at, &v, 4); break; }
    case blackmagicRawVariantTypeFloat32: { const float v = float(number); std::memcpy(at, &v, 4); break; }
    case blackmagicRawVariantTypeFloat64: std::memcpy(at, &number, 8); break;
    default: break;
    }
}

double loadNumber(BlackmagicRawVariantType type, const uint8_t* at)
{
    switch (type) {
    case blackmagicRawVariantTypeU8: return *at;
    case blackmagicRawVariantTypeS16: { int16_t v; std::memcpy(&v, at, 2); return v; }
    case blackmagicRawVariantTypeU16: { uint16_t v; std::memcpy(&v, at, 2); return v; }
    case blackmagicRawVariantTypeS32: { int32_t v; std::memcpy(&v, at, 4); return v; }
    case blackmagicRawVariantTypeU32: { uint32_t v; std::memcpy(&v, at, 4); return v; }
    case blackmagicRawVariantTypeFloat32: { float v; std::memcpy(&v, at, 4); return v; }
    case blackmagicRawVariantTypeFloat64: { double v; std::memcpy(&v, at, 8); return v; }
    default: return 0.0;
    }
}

}  // namespace

HRESULT refVariantInit(Variant* variant)
{
    if (!variant)
        return E_POINTER;
    variant->vt = blackmagicRawVariantTypeEmpty;
    variant->dblVal = 0.0;
    return S_OK;
}

HRESULT refVariantClear(Variant* variant)
{
    if (!variant)
        return E_POINTER;
    if (variant->vt == blackmagicRawVariantTypeString)
        freeVariantString(variant->bstrVal);
    else if (variant->vt == blackmagicRawVariantTypeSafeArray && knownArray(variant->parray))
        refSafeArrayDestroy(variant->parray);
    return refVariantInit(variant);
}

SafeArray* refSafeArrayCreate(BlackmagicRawVariantType type, uint32_t dimensions, SafeArrayBound* bound)
{
    const size_t size = elementSize(type);
    if (size == 0 || dimensions != 1 || !bound)
        return nullptr;
    if (bound->cElements > std::numeric_limits<uint32_t>::max() / size)
        return nullptr;
    // At least one byte, so that AccessData of an empty array gives a pointer.
    uint8_t* data = static_cast<uint8_t*>(std::calloc(size_t(bound->cElements) * size + 1, 1));
    SafeArray* array = static_cast<SafeArray*>(std::calloc(1, sizeof(SafeArray)));
    if (!data || !array) {
        std::free(data);
        std::free(array);
        return nullptr;
    }
    array->variantType = type;
    array->cDims = 1;
    array->data = data;
    array->bounds = *bound;
    refTrackItem(array, kArrayKind);
    return array;
}

HRESULT refSafeArrayGetVartype(SafeArray* array, BlackmagicRawVariantType* type)
{
    if (!type)
        return E_POINTER;
    if (!knownArray(array))
        return E_INVALIDARG;
    *type = array->variantType;
    return S_OK;
}

// Dimensions count from 1, as in OLE; 0 is taken as the one dimension too.
HRESULT refSafeArrayGetLBound(SafeArray* array, uint32_t dimension, long* bound)
{
    if (!bound)
        return E_POINTER;
    if (!knownArray(array) || dimension > 1)
        return E_INVALIDARG;
    *bound = long(array->bounds.lLbound);
    return S_OK;
}

HRESULT refSafeArrayGetUBound(SafeArray* array, uint32_t dimension, long* bound)
{
    if (!bound)
        return E_POINTER;
    if (!knownArray(array) || dimension > 1)
        return E_INVALIDARG;
    *bound = long(array->bounds.lLbound) + long(array->bounds.cElements) - 1;
    return S_OK;
}

HRESULT refSafeArrayAccessData(SafeArray* array, void** data)
{
    if (!data)
        return E_POINTER;
    if (!knownArray(array))
        return E_INVALIDARG;
    *data = array->data;
    return S_OK;
}

HRESULT refSafeArrayUnaccessData(SafeArray* array)
{
    return knownArray(array) ? S_OK : E_INVALIDARG;
}

HRESULT refSafeArrayDestroy(SafeArray* array)
{
    if (!array)
        return E_POINTER;
    if (!refUntrackItem(array))
        return E_INVALIDARG;
    if (array->variantType == blackmagicRawVariantTypeString) {
        const char** texts = reinterpret_cast<const char**>(array->data);
        for (uint32_t i = 0; i < array->bounds.cElements; ++i)
            freeVariantString(texts[i]);
    }
    std::free(array->data);
    std::free(array);
    return S_OK;
}

const char* refNewVariantString(const std::string& text)
{
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (!copy)
        return nullptr;
    std::memcpy(copy, text.c_str(), text.size() + 1);
    refTrackItem(copy, kStringKind);
    return copy;
}

HRESULT refValueToVariant(const RefValue& value, Variant* out)
{
    if (!out)
        return E_POINTER;
    refVariantInit(out);
    const BlackmagicRawVariantType type = static_cast<BlackmagicRawVariantType>(value.type);
    switch (value.type) {
    case RefVariantType::Empty:
        return S_OK;
    case RefVariantType::U8:
        setU8(out, uint8_t(value.number));
        break;
    case RefVariantType::String: {
        const char* text = refNewVariantString(value.text);
        if (!text)
            return E_OUTOFMEMORY;
        out->bstrVal = text;
        break;
    }
    case RefVariantType::SafeArray: {
        const BlackmagicRawVariantType elementType = static_cast<BlackmagicRawVariantType>(value.elementType);
        SafeArrayBound bound{0, uint32_t(value.arraySize())};
        SafeArray* array = refSafeArrayCreate(elementType, 1, &bound);
        if (!array)
            return E_OUTOFMEMORY;
        if (value.elementType == RefVariantType::String) {
            const char** texts = reinterpret_cast<const char**>(array->data);
            for (size_t i = 0; i < value.texts.size(); ++i)
                texts[i] = refNewVariantString(value.texts[i]);
        } else {
            const size_t size = elementSize(elementType);
            for (size_t i = 0; i < value.numbers.size(); ++i)
                storeNumber(elementType, value.numbers[i], array->data + i * size);
        }
        out->parray = array;
        break;
    }
    default: {
        uint8_t bytes[8] = {};
        storeNumber(type, value.number, bytes);
        std::memcpy(reinterpret_cast<unsigned char*>(out) + offsetof(Variant, uintVal), bytes, 8);
        break;
    }
    }
    out->vt = type;
    return S_OK;
}

bool refValueFromVariant(const Variant& variant, RefValue& out)
{
    switch (variant.vt) {
    case blackmagicRawVariantTypeU8:
        out = RefValue::u8(getU8(variant));
        return true;
    case blackmagicRawVariantTypeS16: out = RefValue::s16(variant.iVal); return true;
    case blackmagicRawVariantTypeU16: out = RefValue::u16(variant.uiVal); return true;
    case blackmagicRawVariantTypeS32: out = RefValue::s32(variant.intVal); return true;
    case blackmagicRawVariantTypeU32: out = RefValue::u32(variant.uintVal); return true;
    case blackmagicRawVariantTypeFloat32: out = RefValue::f32(variant.fltVal); return true;
    case blackmagicRawVariantTypeFloat64: out = RefValue::f64(variant.dblVal); return true;
    case blackmagicRawVariantTypeString:
        if (!variant.bstrVal)
            return false;
        out = RefValue::string(variant.bstrVal);
        return true;
    case blackmagicRawVariantTypeSafeArray: {
        const SafeArray* array = variant.parray;
        if (!knownArray(array))
            return false;
        const size_t size = elementSize(array->variantType);
        if (array->variantType == blackmagicRawVariantTypeString) {
            std::vector<std::string> texts;
            const char* const* items = reinterpret_cast<const char* const*>(array->data);
            for (uint32_t i = 0; i < array->bounds.cElements; ++i)
                texts.push_back(items[i] ? items[i] : "");
            out = RefValue::stringArray(texts);
        } else {
            std::vector<double> numbers;
            numbers.reserve(array->bounds.cElements);
            for (uint32_t i = 0; i < array->bounds.cElements; ++i)
                numbers.push_back(loadNumber(array->variantType, array->data + i * size));
            out = RefValue::numberArray(static_cast<RefVariantType>(array->variantType), numbers);
        }
        return true;
    }
    default:
        return false;
    }
}

}  // namespace twref
