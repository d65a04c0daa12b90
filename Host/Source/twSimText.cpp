#include "twSimText.h"

#include <cstring>

namespace twSimText {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

void AppendUtf16(std::u16string& out, char32_t cp) {
    if (cp >= 0x10000) {
        cp -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (cp >> 10));
        out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
        out += static_cast<char16_t>(cp);
    }
}

std::string FourCC(csSDK_uint32 code, bool lowFirst) {
    std::string out;
    for (int i = 0; i < 4; ++i) {
        const int shift = lowFirst ? 8 * i : 8 * (3 - i);
        const char c = static_cast<char>((code >> shift) & 0xFF);
        out += (c >= 0x20 && c < 0x7F) ? c : '?';
    }
    return out;
}

}  // namespace

std::u16string Utf8ToUtf16(const std::string& utf8) {
    std::u16string out;
    const auto* s = reinterpret_cast<const unsigned char*>(utf8.data());
    const size_t n = utf8.size();
    size_t i = 0;
    while (i < n) {
        const unsigned char b = s[i];
        int extra = 0;
        char32_t cp = 0;
        if (b < 0x80) {
            cp = b;
        } else if ((b & 0xE0) == 0xC0) {
            extra = 1;
            cp = b & 0x1F;
        } else if ((b & 0xF0) == 0xE0) {
            extra = 2;
            cp = b & 0x0F;
        } else if ((b & 0xF8) == 0xF0) {
            extra = 3;
            cp = b & 0x07;
        } else {
            AppendUtf16(out, kReplacement);
            ++i;
            continue;
        }
        bool ok = true;
        for (int k = 1; ok && k <= extra; ++k) {
            if (i + k >= n || (s[i + k] & 0xC0) != 0x80) ok = false;
            else cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        const bool overlong = (extra == 1 && cp < 0x80) || (extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000);
        if (!ok || overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            AppendUtf16(out, kReplacement);
            ++i;
            continue;
        }
        AppendUtf16(out, cp);
        i += static_cast<size_t>(extra) + 1;
    }
    return out;
}

std::string Utf16ToUtf8(const std::u16string& utf16) {
    std::string out;
    const size_t n = utf16.size();
    for (size_t i = 0; i < n; ++i) {
        const char16_t u = utf16[i];
        if (u >= 0xD800 && u <= 0xDBFF && i + 1 < n && utf16[i + 1] >= 0xDC00 && utf16[i + 1] <= 0xDFFF) {
            AppendUtf8(out, 0x10000 + ((static_cast<char32_t>(u) - 0xD800) << 10) + (utf16[i + 1] - 0xDC00));
            ++i;
        } else if (u >= 0xD800 && u <= 0xDFFF) {
            AppendUtf8(out, kReplacement);
        } else {
            AppendUtf8(out, u);
        }
    }
    return out;
}

std::string Utf16ToUtf8(const void* text, size_t maxUnits) {
    if (!text) return std::string();
    const auto* bytes = static_cast<const unsigned char*>(text);
    std::u16string units;
    for (size_t i = 0; i < maxUnits; ++i) {
        prUTF16Char unit;
        std::memcpy(&unit, bytes + 2 * i, sizeof(unit));
        if (unit == 0) break;
        units += static_cast<char16_t>(unit);
    }
    return Utf16ToUtf8(units);
}

void CopyToUtf16Field(const std::string& utf8, void* field, size_t fieldUnits) {
    if (!field || fieldUnits == 0) return;
    auto* bytes = static_cast<unsigned char*>(field);
    const std::u16string units = Utf8ToUtf16(utf8);
    size_t i = 0;
    for (; i < units.size() && i + 1 < fieldUnits; ++i) {
        const prUTF16Char unit = units[i];
        std::memcpy(bytes + 2 * i, &unit, sizeof(unit));
    }
    const prUTF16Char zero = 0;
    std::memcpy(bytes + 2 * i, &zero, sizeof(zero));
}

std::string FourCCLowFirst(csSDK_uint32 code) { return FourCC(code, true); }
std::string FourCCHighFirst(csSDK_uint32 code) { return FourCC(code, false); }

}  // namespace twSimText
