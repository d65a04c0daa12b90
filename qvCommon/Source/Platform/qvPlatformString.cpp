#include "Platform/qvPlatformString.h"

#include "String/qvUtf8Encode.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_set>

namespace qvPlatform {
namespace {

// The strings we created. Deliberately never destroyed: handles may be
// released from static destructors of other objects, in any order.
struct OwnedStrings {
    std::mutex mutex;
    std::unordered_set<const char*> live;
};

OwnedStrings& owned() {
    static OwnedStrings* s_owned = new OwnedStrings();
    return *s_owned;
}

// Strict UTF-8 decoding, as the platform's string service reads text: no
// overlong forms, no surrogates, nothing above U+10FFFF.
bool decodeUtf8(const char* text, std::u32string& out) {
    out.clear();
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    while (*p) {
        unsigned char lead = *p;
        char32_t cp;
        int extra;
        char32_t minimum;
        if (lead < 0x80) {
            cp = lead;
            extra = 0;
            minimum = 0;
        } else if ((lead & 0xE0) == 0xC0) {
            cp = lead & 0x1F;
            extra = 1;
            minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            cp = lead & 0x0F;
            extra = 2;
            minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            cp = lead & 0x07;
            extra = 3;
            minimum = 0x10000;
        } else {
            return false;
        }
        ++p;
        for (int i = 0; i < extra; ++i, ++p) {
            if ((*p & 0xC0) != 0x80) return false;  // the terminator stops here too
            cp = (cp << 6) | (*p & 0x3F);
        }
        if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        out.push_back(cp);
    }
    return true;
}

size_t units16(const std::u32string& codePoints) {
    size_t units = 0;
    for (char32_t cp : codePoints) units += cp >= 0x10000 ? 2 : 1;
    return units;
}

void encodeUtf8(const std::u32string& codePoints, std::string& out) {
    out.clear();
    for (char32_t cp : codePoints) qvAppendUtf8CodePoint(static_cast<uint32_t>(cp), out);
}

// The getter of the platform's string service: fails when the UTF-8 form and
// its terminator do not fit the buffer.
bool copyOut(const std::u32string& codePoints, size_t bufferSize, std::string& out) {
    encodeUtf8(codePoints, out);
    if (out.size() + 1 > bufferSize) {
        out.clear();
        return false;
    }
    return true;
}

std::string caseMap(const char* utf8, bool upper) {
    if (utf8 == nullptr) return std::string();
    std::u32string codePoints;
    if (!decodeUtf8(utf8, codePoints)) return std::string();
    // Without a locale only the ASCII letters have a mapping that keeps the
    // text readable through the copy back below; the others are left as they
    // are and fail that copy anyway.
    for (char32_t& cp : codePoints) {
        if (upper && cp >= U'a' && cp <= U'z') cp -= 0x20;
        if (!upper && cp >= U'A' && cp <= U'Z') cp += 0x20;
    }
    std::string out;
    copyOut(codePoints, units16(codePoints) + 1, out);
    return out;
}

}  // namespace

StringRef CreateString(const char* utf8, size_t size) {
    if (utf8 == nullptr) return nullptr;
    size_t length = ::strnlen(utf8, size);
    char* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, utf8, length);
    copy[length] = '\0';
    OwnedStrings& strings = owned();
    std::lock_guard<std::mutex> lock(strings.mutex);
    strings.live.insert(copy);
    return copy;
}

StringRef CreateString(const char* utf8) {
    return utf8 == nullptr ? nullptr : CreateString(utf8, std::strlen(utf8));
}

void ReleaseString(StringRef str) {
    if (str == nullptr) return;
    OwnedStrings& strings = owned();
    {
        std::lock_guard<std::mutex> lock(strings.mutex);
        if (strings.live.erase(str) == 0) return;
    }
    std::free(const_cast<char*>(str));
}

bool IsOwnedString(StringRef str) {
    if (str == nullptr) return false;
    OwnedStrings& strings = owned();
    std::lock_guard<std::mutex> lock(strings.mutex);
    return strings.live.count(str) != 0;
}

bool StringLength16(StringRef str, size_t& units) {
    units = 0;
    if (str == nullptr) return true;
    std::u32string codePoints;
    if (!decodeUtf8(str, codePoints)) return false;
    units = units16(codePoints);
    return true;
}

bool CopyStringToBuffer(StringRef str, size_t bufferSize, std::string& out) {
    out.clear();
    if (str == nullptr) return bufferSize > 0;
    std::u32string codePoints;
    if (!decodeUtf8(str, codePoints)) return false;
    return copyOut(codePoints, bufferSize, out);
}

std::string LowercaseUtf8(const char* utf8) { return caseMap(utf8, false); }
std::string UppercaseUtf8(const char* utf8) { return caseMap(utf8, true); }

}  // namespace qvPlatform
