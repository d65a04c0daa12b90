#pragma once
// The exported Variant and SafeArray functions and the conversions between the
// library's values and a caller's Variant. Strings and arrays the library puts
// into a Variant are tracked: VariantClear frees only those, so a Variant that
// points at the caller's own text is never freed behind its back, and every
// one that the caller forgets shows up in the live-object report.

#include "Format/RefClipModel.h"

#include <BlackmagicRawAPI.h>

namespace twref {

HRESULT refVariantInit(Variant* variant);
HRESULT refVariantClear(Variant* variant);
SafeArray* refSafeArrayCreate(BlackmagicRawVariantType type, uint32_t dimensions, SafeArrayBound* bound);
HRESULT refSafeArrayGetVartype(SafeArray* array, BlackmagicRawVariantType* type);
HRESULT refSafeArrayGetLBound(SafeArray* array, uint32_t dimension, long* bound);
HRESULT refSafeArrayGetUBound(SafeArray* array, uint32_t dimension, long* bound);
HRESULT refSafeArrayAccessData(SafeArray* array, void** data);
HRESULT refSafeArrayUnaccessData(SafeArray* array);
HRESULT refSafeArrayDestroy(SafeArray* array);

// A library-owned copy of text for a Variant's string member.
const char* refNewVariantString(const std::string& text);

// Fills out (which the caller owns) with a copy of value. out's previous
// content is overwritten, not cleared.
HRESULT refValueToVariant(const RefValue& value, Variant* out);
// Reads a caller's Variant. False for an Empty or malformed one (a null
// string, an array the library never made).
bool refValueFromVariant(const Variant& variant, RefValue& out);

}  // namespace twref
