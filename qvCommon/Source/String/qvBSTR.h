#pragma once
// Wrapper of the decoder library's string handle. On Linux that handle is a
// plain UTF-8 `const char*`, so a qvBSTR is exactly one pointer and a
// `qvBSTR*` can stand where the library expects a `const char**`.
//
// A plain value with no destructor: copies share the handle, and the holder
// calls release() once. Strings the library hands out stay the library's;
// release() on such a handle only forgets it.

#include <cstddef>
#include <string>
#include <type_traits>

#include "Platform/qvPlatformString.h"
#include "String/qvUtf8String.h"

class qvBSTR {
public:
    // Each makes a new string; the handle held before is not released.
    void SetFromUtf8Str(const qvUtf8String& text);
    void SetFromUtf16Wstr(const std::wstring& wideText);

    // Empty for a null handle.
    std::string ToString() const;
    qvUtf8String ToQvUtf8String() const;
    std::wstring ToWstring() const;

    // strncpy of ToString(): no terminator when the text fills `size` bytes.
    void FillStr(char* destination, size_t size) const;
    // wcscpy of ToWstring(): `size` is not used, the caller sizes the buffer.
    void FillWstr(wchar_t* destination, size_t size) const;

    // Releases the handle when it is ours and nulls it; safe on null.
    void release();

    bool IsNull() const { return m_str == nullptr; }
    qvPlatform::StringRef Get() const { return m_str; }

    // The handle itself, public so that the value has the library's layout.
    qvPlatform::StringRef m_str = nullptr;
};

static_assert(sizeof(qvBSTR) == sizeof(const char*), "qvBSTR must stay one handle wide");
static_assert(std::is_standard_layout<qvBSTR>::value, "qvBSTR crosses the library's ABI");
static_assert(std::is_trivially_copyable<qvBSTR>::value, "qvBSTR is passed like a bare pointer");
