#include "Utils/qvResult.h"

#include <cstring>

QvResult::QvResult() : hasError(false), hasWarning(false) { std::memset(message, 0, sizeof(message)); }

QvResult::QvResult(const qvUtf8String& text, bool isWarning) : hasError(!isWarning), hasWarning(isWarning) {
    // As strncpy would: a text of 256 bytes or more keeps its first 256 and
    // no terminator, a shorter one is zero-filled behind.
    std::memset(message, 0, sizeof(message));
    std::memcpy(message, text.c_str(), ::strnlen(text.c_str(), sizeof(message)));
}

bool QvResult::isOk() const { return !hasError && !hasWarning; }

qvUtf8String QvResult::toString() const { return qvUtf8String::FromFixedUtf8CharArray(message); }
