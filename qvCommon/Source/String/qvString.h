#pragma once
// Code-page conversions between the text forms that meet in the product: UTF-8
// (our own), 16-bit units (the host's), 32-bit wide text (wchar_t here) and the
// Windows-1251 code page that older presets and char literals may carry.
//
// Every function gives an empty result on failure, never a partial one: callers
// must read an empty result as "maybe failed".

#include <cstddef>
#include <string>
#include <vector>

// Marks a bare pointer as UTF-8: the bytes are taken as they are.
class qvUtf8Ptr {
public:
    explicit qvUtf8Ptr(const char* text);
    // Keeps its own copy of the text.
    explicit qvUtf8Ptr(const std::string& text);
    qvUtf8Ptr(const qvUtf8Ptr& other);
    qvUtf8Ptr& operator=(const qvUtf8Ptr& other);

    // Never null: a null pointer reads as an empty text.
    const char* c_str() const;

private:
    const char* m_ptr = nullptr;
    std::string m_owned;
    bool m_owns = false;
};

// Marks a bare pointer as Windows-1251 text: it is converted to UTF-8 on use.
class qvAnsiPtr {
public:
    explicit qvAnsiPtr(const char* text);
    explicit qvAnsiPtr(const std::string& text);
    qvAnsiPtr(const qvAnsiPtr& other);
    qvAnsiPtr& operator=(const qvAnsiPtr& other);

    const char* c_str() const;

private:
    const char* m_ptr = nullptr;
    std::string m_owned;
    bool m_owns = false;
};

namespace qvString {

// One iconv pass. `inputLength` counts input units (bytes for the first form,
// 16-bit units for the second). The output runs to its first zero unit; a
// failed conversion gives an empty result, not the part converted before the
// fault.
std::u16string macEncodeString(const char* input, size_t inputLength, const char* fromCode,
                               const char* toCode);
std::string macEncodeString(const char16_t* input, size_t inputLength, const char* fromCode,
                            const char* toCode);

std::u16string Utf8ToUtf16(const std::string& text);
std::u16string AnsiToUtf16(const std::string& text);
std::string Utf16ToUtf8(const std::u16string& text);
std::string Utf16ToAnsi(const std::u16string& text);

std::string AnsiToUtf8(const std::string& text);
std::string Utf8ToAnsi(const std::string& text);

std::u32string Utf8ToUtf32(const std::string& text);
std::wstring Utf8ToWstring(const std::string& text);
std::string Utf32ToUtf8(const std::u32string& text);
std::string WstringToUtf8(const std::wstring& text);

std::u16string WstringToUtf16(const std::wstring& text);
// Exactly `size` units, zero-filled behind the text; no terminator is promised
// when the text fills them all.
std::vector<char16_t> WstringToUtf16(const std::wstring& text, size_t size);
// The same, with the last unit always zero.
std::vector<char16_t> WstringToUtf16z(const std::wstring& text, size_t size);
std::wstring Utf16ToWstring(const std::u16string& text);

// Case mapping without a locale through the platform's string service. The
// copy back into a buffer sized by 16-bit units fails for any text whose UTF-8
// form is longer, so non-ASCII text comes back empty, as does unreadable text.
std::string Utf8ToLower(const std::string& text);
std::string Utf8ToUpper(const std::string& text);

}  // namespace qvString
