#pragma once
// Fixed-buffer copies, 16-bit counterparts of the C string functions, and
// Base64 (RFC 4648 alphabet).

#include <cstddef>
#include <cstdint>

#include "String/qvUtf8String.h"

// Terminated 16-bit text to UTF-8; null gives empty.
qvUtf8String UTF16UShorttoQvString(const unsigned short* units);

// Zeroes `size` bytes.
void CharNull(char* buffer, size_t size);

// Copy at most destinationSize - 1 bytes and zero the rest of the destination,
// so the result is always terminated (for a destinationSize above 0).
void CharCopyChar(const char* source, size_t sourceSize, char* destination, size_t destinationSize);
void qvStringCopyChar(const qvUtf8String& text, char* destination, size_t destinationSize);

// Copy at most destinationSize - 1 bytes and put a terminator behind them
// unless the last byte copied is already zero. The rest is left as it was.
void CopyStrCharToCharArray(const qvUtf8String& text, char* destination, size_t destinationSize);

// strlen, strcpy, strncpy for 16-bit units. w16_strncpy zero-fills like
// strncpy (no terminator when the source fills `count`); w16_strncpyz also
// forces the last unit to zero.
size_t w16_strlen(const char16_t* text);
char16_t* w16_strcpy(char16_t* destination, const char16_t* source);
char16_t* w16_strncpy(char16_t* destination, const char16_t* source, size_t count);
char16_t* w16_strncpyz(char16_t* destination, const char16_t* source, size_t count);
// The same for the host's 16-bit unit type.
size_t w16_strlen(const unsigned short* text);
unsigned short* w16_strcpy(unsigned short* destination, const unsigned short* source);
unsigned short* w16_strncpy(unsigned short* destination, const unsigned short* source, size_t count);
unsigned short* w16_strncpyz(unsigned short* destination, const unsigned short* source, size_t count);

// Bytes needed to encode `length` bytes, terminator included.
int Base64encode_len(int length);
// Writes the text with "=" padding and a terminator; returns its length with
// the terminator.
int Base64encode(char* destination, const char* source, int length);
// An upper bound of the decoded size, terminator included. Decoding stops at
// the first byte outside the alphabet ("=" included).
int Base64decode_len(const char* text);
// Writes the decoded bytes and a terminator; returns the decoded length.
int Base64decode(char* destination, const char* text);
