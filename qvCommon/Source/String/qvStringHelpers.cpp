#include "String/qvStringHelpers.h"

#include <cstring>

namespace {

template <typename Unit>
size_t unitLength(const Unit* text) {
    if (text == nullptr) return 0;
    size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

template <typename Unit>
Unit* unitCopy(Unit* destination, const Unit* source) {
    size_t i = 0;
    do {
        destination[i] = source[i];
    } while (source[i++] != 0);
    return destination;
}

template <typename Unit>
Unit* unitCopyN(Unit* destination, const Unit* source, size_t count) {
    size_t i = 0;
    for (; i < count && source[i] != 0; ++i) destination[i] = source[i];
    for (; i < count; ++i) destination[i] = 0;
    return destination;
}

template <typename Unit>
Unit* unitCopyNZ(Unit* destination, const Unit* source, size_t count) {
    unitCopyN(destination, source, count);
    if (count > 0) destination[count - 1] = 0;
    return destination;
}

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Value of a Base64 digit, or 64 for any byte outside the alphabet.
unsigned char digitValue(unsigned char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c - 'A');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 'a' + 26);
    if (c >= '0' && c <= '9') return static_cast<unsigned char>(c - '0' + 52);
    if (c == '+') return 62;
    if (c == '/') return 63;
    return 64;
}

size_t digitRun(const char* text) {
    size_t n = 0;
    if (text == nullptr) return 0;
    while (digitValue(static_cast<unsigned char>(text[n])) < 64) ++n;
    return n;
}

}  // namespace

qvUtf8String UTF16UShorttoQvString(const unsigned short* units) {
    if (units == nullptr) return qvUtf8String();
    size_t length = unitLength(units);
    std::u16string text(length, u'\0');
    for (size_t i = 0; i < length; ++i) text[i] = static_cast<char16_t>(units[i]);
    return qvUtf8String(text);
}

void CharNull(char* buffer, size_t size) {
    if (buffer != nullptr && size > 0) std::memset(buffer, 0, size);
}

void CharCopyChar(const char* source, size_t sourceSize, char* destination, size_t destinationSize) {
    if (destination == nullptr || destinationSize == 0) return;
    size_t count = source == nullptr ? 0 : sourceSize;
    if (count > destinationSize - 1) count = destinationSize - 1;
    if (count > 0) std::memcpy(destination, source, count);
    std::memset(destination + count, 0, destinationSize - count);
}

void qvStringCopyChar(const qvUtf8String& text, char* destination, size_t destinationSize) {
    CharCopyChar(text.c_str(), text.Size(), destination, destinationSize);
}

void CopyStrCharToCharArray(const qvUtf8String& text, char* destination, size_t destinationSize) {
    if (destination == nullptr || destinationSize == 0) return;
    size_t count = text.Size();
    if (count > destinationSize - 1) count = destinationSize - 1;
    if (count > 0) std::memcpy(destination, text.c_str(), count);
    if (count == 0 || destination[count - 1] != '\0') destination[count] = '\0';
}

size_t w16_strlen(const char16_t* text) { return unitLength(text); }
char16_t* w16_strcpy(char16_t* destination, const char16_t* source) { return unitCopy(destination, source); }
char16_t* w16_strncpy(char16_t* destination, const char16_t* source, size_t count) {
    return unitCopyN(destination, source, count);
}
char16_t* w16_strncpyz(char16_t* destination, const char16_t* source, size_t count) {
    return unitCopyNZ(destination, source, count);
}

size_t w16_strlen(const unsigned short* text) { return unitLength(text); }
unsigned short* w16_strcpy(unsigned short* destination, const unsigned short* source) {
    return unitCopy(destination, source);
}
unsigned short* w16_strncpy(unsigned short* destination, const unsigned short* source, size_t count) {
    return unitCopyN(destination, source, count);
}
unsigned short* w16_strncpyz(unsigned short* destination, const unsigned short* source, size_t count) {
    return unitCopyNZ(destination, source, count);
}

int Base64encode_len(int length) { return ((length + 2) / 3 * 4) + 1; }

int Base64encode(char* destination, const char* source, int length) {
    const unsigned char* in = reinterpret_cast<const unsigned char*>(source);
    char* out = destination;
    int i = 0;
    for (; i + 2 < length; i += 3) {
        *out++ = kAlphabet[in[i] >> 2];
        *out++ = kAlphabet[((in[i] & 0x03) << 4) | (in[i + 1] >> 4)];
        *out++ = kAlphabet[((in[i + 1] & 0x0F) << 2) | (in[i + 2] >> 6)];
        *out++ = kAlphabet[in[i + 2] & 0x3F];
    }
    if (i < length) {
        *out++ = kAlphabet[in[i] >> 2];
        if (i + 1 == length) {
            *out++ = kAlphabet[(in[i] & 0x03) << 4];
            *out++ = '=';
        } else {
            *out++ = kAlphabet[((in[i] & 0x03) << 4) | (in[i + 1] >> 4)];
            *out++ = kAlphabet[(in[i + 1] & 0x0F) << 2];
        }
        *out++ = '=';
    }
    *out++ = '\0';
    return static_cast<int>(out - destination);
}

int Base64decode_len(const char* text) {
    size_t digits = digitRun(text);
    return static_cast<int>((digits + 3) / 4 * 3) + 1;
}

int Base64decode(char* destination, const char* text) {
    size_t digits = digitRun(text);
    const unsigned char* in = reinterpret_cast<const unsigned char*>(text);
    unsigned char* out = reinterpret_cast<unsigned char*>(destination);
    size_t written = 0;
    size_t i = 0;
    for (; i + 4 <= digits; i += 4) {
        unsigned char a = digitValue(in[i]), b = digitValue(in[i + 1]);
        unsigned char c = digitValue(in[i + 2]), d = digitValue(in[i + 3]);
        out[written++] = static_cast<unsigned char>((a << 2) | (b >> 4));
        out[written++] = static_cast<unsigned char>((b << 4) | (c >> 2));
        out[written++] = static_cast<unsigned char>((c << 6) | d);
    }
    // A tail of two or three digits carries one or two bytes; a lone digit
    // carries none.
    size_t tail = digits - i;
    if (tail >= 2) {
        unsigned char a = digitValue(in[i]), b = digitValue(in[i + 1]);
        out[written++] = static_cast<unsigned char>((a << 2) | (b >> 4));
        if (tail == 3) {
            unsigned char c = digitValue(in[i + 2]);
            out[written++] = static_cast<unsigned char>((b << 4) | (c >> 2));
        }
    }
    out[written] = '\0';
    return static_cast<int>(written);
}
