#include "String/qvString.h"

#include <iconv.h>

#include <cstdint>
#include <cstring>

#include "Platform/qvPlatformString.h"
#include "String/qvUtf8Encode.h"

static_assert(sizeof(wchar_t) == 4, "wide text is taken as 32 bits per unit");

// ---- marker types ----------------------------------------------------------

qvUtf8Ptr::qvUtf8Ptr(const char* text) : m_ptr(text) {}
qvUtf8Ptr::qvUtf8Ptr(const std::string& text) : m_owned(text), m_owns(true) {}
qvUtf8Ptr::qvUtf8Ptr(const qvUtf8Ptr& other) = default;
qvUtf8Ptr& qvUtf8Ptr::operator=(const qvUtf8Ptr& other) = default;
const char* qvUtf8Ptr::c_str() const {
    // The owned text is read through the string each time: a copied marker
    // must not point into the buffer of the one it was copied from.
    if (m_owns) return m_owned.c_str();
    return m_ptr != nullptr ? m_ptr : "";
}

qvAnsiPtr::qvAnsiPtr(const char* text) : m_ptr(text) {}
qvAnsiPtr::qvAnsiPtr(const std::string& text) : m_owned(text), m_owns(true) {}
qvAnsiPtr::qvAnsiPtr(const qvAnsiPtr& other) = default;
qvAnsiPtr& qvAnsiPtr::operator=(const qvAnsiPtr& other) = default;
const char* qvAnsiPtr::c_str() const {
    if (m_owns) return m_owned.c_str();
    return m_ptr != nullptr ? m_ptr : "";
}

namespace qvString {
namespace {

const char* const kUtf8 = "UTF-8";
const char* const kUtf16 = "UTF-16LE";
const char* const kAnsi = "WINDOWS-1251";

template <typename In, typename Out>
std::basic_string<Out> encode(const In* input, size_t inputLength, const char* fromCode,
                              const char* toCode) {
    if (input == nullptr || inputLength == 0 || fromCode == nullptr || toCode == nullptr) return {};
    iconv_t descriptor = ::iconv_open(toCode, fromCode);
    if (descriptor == reinterpret_cast<iconv_t>(-1)) return {};

    // Four times the input's bytes always holds the output and a zero unit
    // behind it for the code pages we use. Short texts stay on the stack;
    // longer ones (rare: paths and labels are short) go to the heap rather
    // than risk the host thread's stack.
    size_t inBytes = inputLength * sizeof(In);
    size_t outBytes = 4 * inBytes;
    size_t outUnits = outBytes / sizeof(Out) + 1;
    Out stackArea[1024];
    std::basic_string<Out> heapArea;
    Out* area = stackArea;
    if (outUnits > sizeof(stackArea) / sizeof(Out)) {
        heapArea.assign(outUnits, Out(0));
        area = &heapArea[0];
    } else {
        std::memset(stackArea, 0, outUnits * sizeof(Out));
    }

    char* in = const_cast<char*>(reinterpret_cast<const char*>(input));
    char* out = reinterpret_cast<char*>(area);
    size_t inLeft = inBytes;
    size_t outLeft = outBytes;
    if (::iconv(descriptor, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1)) {
        area[0] = Out(0);
    }
    ::iconv_close(descriptor);

    size_t length = 0;
    while (length < outUnits && area[length] != Out(0)) ++length;
    return std::basic_string<Out>(area, length);
}

// Folds surrogate pairs; any unpaired surrogate fails the whole text.
template <typename Wide>
std::basic_string<Wide> foldSurrogates(const std::u16string& units) {
    std::basic_string<Wide> out;
    out.reserve(units.size());
    for (size_t i = 0; i < units.size(); ++i) {
        char32_t unit = units[i];
        if (unit >= 0xDC00 && unit <= 0xDFFF) return {};
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            if (i + 1 >= units.size()) return {};
            char32_t low = units[i + 1];
            if (low < 0xDC00 || low > 0xDFFF) return {};
            out.push_back(static_cast<Wide>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
            ++i;
        } else {
            out.push_back(static_cast<Wide>(unit));
        }
    }
    return out;
}

template <typename Wide>
std::string encodeUtf8(const std::basic_string<Wide>& text) {
    std::string out;
    out.reserve(text.size());
    for (Wide unit : text) {
        uint32_t cp = static_cast<uint32_t>(unit);
        if ((cp >= 0xD800 && cp <= 0xDFFF) || cp >= 0x110000) return {};
        qvAppendUtf8CodePoint(cp, out);
    }
    return out;
}

std::vector<char16_t> fixedUnits(const std::wstring& text, size_t size) {
    std::vector<char16_t> out(size, u'\0');
    std::u16string units = WstringToUtf16(text);
    size_t count = units.size() < size ? units.size() : size;
    for (size_t i = 0; i < count; ++i) out[i] = units[i];
    return out;
}

}  // namespace

std::u16string macEncodeString(const char* input, size_t inputLength, const char* fromCode,
                               const char* toCode) {
    return encode<char, char16_t>(input, inputLength, fromCode, toCode);
}

std::string macEncodeString(const char16_t* input, size_t inputLength, const char* fromCode,
                            const char* toCode) {
    return encode<char16_t, char>(input, inputLength, fromCode, toCode);
}

std::u16string Utf8ToUtf16(const std::string& text) {
    return macEncodeString(text.data(), text.size(), kUtf8, kUtf16);
}

std::u16string AnsiToUtf16(const std::string& text) {
    return macEncodeString(text.data(), text.size(), kAnsi, kUtf16);
}

std::string Utf16ToUtf8(const std::u16string& text) {
    return macEncodeString(text.data(), text.size(), kUtf16, kUtf8);
}

std::string Utf16ToAnsi(const std::u16string& text) {
    return macEncodeString(text.data(), text.size(), kUtf16, kAnsi);
}

std::string AnsiToUtf8(const std::string& text) { return Utf16ToUtf8(AnsiToUtf16(text)); }

std::string Utf8ToAnsi(const std::string& text) { return Utf16ToAnsi(Utf8ToUtf16(text)); }

std::u32string Utf8ToUtf32(const std::string& text) {
    return foldSurrogates<char32_t>(Utf8ToUtf16(text));
}

std::wstring Utf8ToWstring(const std::string& text) {
    return foldSurrogates<wchar_t>(Utf8ToUtf16(text));
}

std::string Utf32ToUtf8(const std::u32string& text) { return encodeUtf8(text); }

std::string WstringToUtf8(const std::wstring& text) { return encodeUtf8(text); }

std::u16string WstringToUtf16(const std::wstring& text) { return Utf8ToUtf16(WstringToUtf8(text)); }

std::vector<char16_t> WstringToUtf16(const std::wstring& text, size_t size) {
    return fixedUnits(text, size);
}

std::vector<char16_t> WstringToUtf16z(const std::wstring& text, size_t size) {
    std::vector<char16_t> out = fixedUnits(text, size);
    if (!out.empty()) out.back() = u'\0';
    return out;
}

std::wstring Utf16ToWstring(const std::u16string& text) { return Utf8ToWstring(Utf16ToUtf8(text)); }

std::string Utf8ToLower(const std::string& text) { return qvPlatform::LowercaseUtf8(text.c_str()); }

std::string Utf8ToUpper(const std::string& text) { return qvPlatform::UppercaseUtf8(text.c_str()); }

}  // namespace qvString
