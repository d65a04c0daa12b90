#pragma once
// The one text type of the product: a byte string that holds UTF-8.
//
// Positions and lengths count characters (Length, indices, Substr); Size and the
// lower-case length() count bytes. A character is one UTF-8 sequence sized by
// its lead byte alone; nothing validates the bytes on the way in (Verify and
// Valid do that on request). Character walks stop at a NUL byte or at a byte
// that cannot lead a sequence, and a string whose last sequence is cut off is
// treated as empty by the character operations.
//
// Bare `const char*` and std::string are UTF-8. qvAnsiPtr marks Windows-1251.
// 16-bit text is the host's, wide text (wchar_t) is 32 bits per unit.
// Conversions that fail give an empty string; positions that do not exist give
// npos; edits that cannot be done give false.

#include <cstddef>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "String/qvString.h"
#include "String/qvUtf8Char.h"

class qvUtf8String {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    // ---- construction -------------------------------------------------------
    qvUtf8String() = default;
    qvUtf8String(const qvUtf8String& other) = default;
    qvUtf8String(qvUtf8String&& other) noexcept = default;
    // A length of npos means up to the terminator.
    qvUtf8String(const char* text, size_t length = npos);
    qvUtf8String(const std::string& text);
    qvUtf8String(const qvUtf8Ptr& text);
    qvUtf8String(const qvAnsiPtr& text);
    qvUtf8String(const char16_t* text, size_t length = npos);
    qvUtf8String(const std::u16string& text);
    qvUtf8String(const wchar_t* text, size_t length = npos);
    qvUtf8String(const std::wstring& text);
    qvUtf8String(const qvUtf8Char& c);
    qvUtf8String(const qvUtf8Char& c, size_t count);
    ~qvUtf8String() = default;

    // Takes over the buffer of `source` and leaves it empty.
    void MoveFromUtf8String(std::string& source);

    // Copies up to the first NUL of a fixed char array (never past the array).
    template <size_t N>
    static qvUtf8String FromFixedUtf8CharArray(const char (&array)[N]);

    // ---- bytes out ----------------------------------------------------------
    const char* c_str() const { return m_str.c_str(); }
    operator const char*() const { return m_str.c_str(); }
    const std::string& Str() const { return m_str; }
    operator const std::string&() const { return m_str; }
    std::string ToUtf8() const { return m_str; }
    std::string ToNativeString() const { return m_str; }
    std::string ToAnsi() const;
    std::wstring ToWstring() const;
    std::wstring ToStdWstring() const;

    // ---- counting and addressing -------------------------------------------
    // Bytes of the sequence led by *p: 0 for null, NUL and non-lead bytes.
    static size_t CharSize(const char* p);

    size_t Length() const;
    size_t Size() const { return m_str.size(); }
    size_t length() const { return m_str.size(); }  // bytes, not characters
    bool Empty() const;
    size_t SizeOf(size_t index) const;
    size_t OffsetOf(size_t index) const;
    size_t PosToBitPos(size_t index) const;
    size_t PtrToPos(const char* pointer) const;
    qvUtf8Char CharAt(size_t index) const;
    qvUtf8Char operator[](size_t index) const;
    qvUtf8Char at(size_t index) const;
    qvUtf8Char LastChar() const;
    qvUtf8Char Last() const;

    // ---- editing in place ---------------------------------------------------
    bool RemoveAt(size_t index);
    bool InsertAt(size_t index, const qvUtf8Char& c);
    bool ReplaceAt(size_t index, const qvUtf8Char& c);
    void Clear();
    // In place on a modifiable string; a copy from a const one. A temporary
    // gives its mapped value, so `Substr(1).ToLowerCase()` reads naturally.
    void ToLowerCase() &;
    void ToUpperCase() &;
    qvUtf8String ToLowerCase() const&;
    qvUtf8String ToUpperCase() const&;
    qvUtf8String ToLowerCase() &&;
    qvUtf8String ToUpperCase() &&;
    void TrimLeft(const qvUtf8Char& c);
    void TrimRight(const qvUtf8Char& c);
    void Trim(const qvUtf8Char& c);
    // One pass each of tab, line feed, carriage return and blank, in that order.
    void TrimRightAll();
    void Remove(const qvUtf8Char& c);
    void Replace(const qvUtf8Char& from, const qvUtf8Char& to);
    bool ReplaceString(const qvUtf8String& from, const qvUtf8String& to);
    // Byte by byte: multi-byte characters go as well.
    void FilterNonPrintableChars();
    // Stops at a NUL of `text`; += appends every byte.
    qvUtf8String& Append(const qvUtf8String& text);

    // ---- search -------------------------------------------------------------
    // Search in the string's own form; the typed overloads below convert first.
    // `limit` of LastIndexOf is a byte offset, its result a character index.
    bool StartsWith(const qvUtf8String& x) const;
    bool EndsWith(const qvUtf8String& x) const;
    bool Includes(const qvUtf8String& x, size_t start = 0) const;
    size_t IndexOf(const qvUtf8String& x, size_t start = 0) const;
    size_t LastIndexOf(const qvUtf8String& x, size_t limit = npos) const;
    bool IsEqual(const qvUtf8String& x) const;
    bool IsEqualNoCase(const qvUtf8String& x) const;

    // Plain IndexOf / LastIndexOf in spite of the names: `x` is searched whole,
    // and `pos` of find_last_of is not used.
    size_t find_first_of(const qvUtf8String& x, size_t start = 0) const;
    size_t find_first_of(char c, size_t start = 0) const;
    size_t find_last_of(const qvUtf8String& x, size_t pos = npos) const;
    size_t find_last_of(char c, size_t pos = npos) const;
    size_t Find(const qvUtf8Char& c, bool fromEnd = false) const;

    // ---- pieces -------------------------------------------------------------
    qvUtf8String Substr(size_t start, size_t count = npos) const;
    qvUtf8String SubstrToIndex(size_t first, size_t last) const;
    qvUtf8String Left(size_t n) const;
    // Size() - n used as a character index: right for single-byte text only.
    qvUtf8String Right(size_t n) const;
    qvUtf8String AfterFirst(const qvUtf8Char& c) const;
    // Each character of `separators` separates; empty fields are kept.
    std::vector<qvUtf8String> Split(const qvUtf8String& separators) const;
    std::vector<qvUtf8String> Split(const std::set<qvUtf8Char>& separators) const;
    static qvUtf8String Join(const std::vector<qvUtf8String>& list, const qvUtf8Char& separator);

    // ---- numbers ------------------------------------------------------------
    bool IsNumber(bool allowNegative, bool allowDecimal, char decimalChar) const;
    bool IsInt() const;
    bool IsUInt() const;
    bool IsFloat(char decimalChar = '.') const;
    // `out` is written even when the answer is false.
    bool ToInt(long& out) const;
    bool ToDouble(double& out) const;
    static qvUtf8String DoubleToString(double value, int precision);

    // ---- validation ---------------------------------------------------------
    // Null when `text` is well-formed UTF-8 up to its terminator, otherwise the
    // first bad sequence.
    static const char* Verify(const char* text);
    static bool Valid(const char* text);
    static bool Valid(const std::string& text);

    // ---- overload families --------------------------------------------------
    // Each converts its argument as the matching constructor does, then acts as
    // the qvUtf8String form.
#define QV_UTF8STRING_FAMILY(T)                                       \
    bool StartsWith(T x) const;                                       \
    bool EndsWith(T x) const;                                         \
    bool Includes(T x, size_t start = 0) const;                       \
    size_t IndexOf(T x, size_t start = 0) const;                      \
    size_t LastIndexOf(T x, size_t limit = npos) const;               \
    bool IsEqual(T x) const;                                          \
    bool IsEqualNoCase(T x) const;                                    \
    bool operator==(T x) const;                                       \
    bool operator!=(T x) const;                                       \
    bool operator<(T x) const;                                        \
    bool operator>(T x) const;                                        \
    qvUtf8String& operator=(T x);                                     \
    qvUtf8String& operator+=(T x);                                    \
    qvUtf8String operator+(T x) const;
    QV_UTF8STRING_FAMILY(const qvAnsiPtr&)
    QV_UTF8STRING_FAMILY(const qvUtf8Ptr&)
    QV_UTF8STRING_FAMILY(const char*)
    QV_UTF8STRING_FAMILY(const std::string&)
    QV_UTF8STRING_FAMILY(const char16_t*)
    QV_UTF8STRING_FAMILY(const std::u16string&)
    QV_UTF8STRING_FAMILY(const wchar_t*)
    QV_UTF8STRING_FAMILY(const std::wstring&)
    QV_UTF8STRING_FAMILY(const qvUtf8Char&)
#undef QV_UTF8STRING_FAMILY

    bool operator==(const qvUtf8String& x) const;
    bool operator!=(const qvUtf8String& x) const;
    bool operator<(const qvUtf8String& x) const;
    bool operator>(const qvUtf8String& x) const;
    qvUtf8String& operator=(const qvUtf8String& x) = default;
    qvUtf8String& operator=(qvUtf8String&& x) noexcept = default;
    qvUtf8String& operator+=(const qvUtf8String& x);
    qvUtf8String operator+(const qvUtf8String& x) const;

    bool operator<(char c) const;
    bool operator>(char c) const;
    qvUtf8String& operator+=(char c);
    qvUtf8String operator+(char c) const;

private:
    std::string m_str;
};

qvUtf8String operator+(const char* left, const qvUtf8String& right);
qvUtf8String operator+(const std::string& left, const qvUtf8String& right);

template <size_t N>
qvUtf8String qvUtf8String::FromFixedUtf8CharArray(const char (&array)[N]) {
    // A full array has no terminator: stop at its end rather than read on.
    return qvUtf8String(array, ::strnlen(array, N));
}
