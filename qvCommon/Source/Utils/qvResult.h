#pragma once
// The result of nearly every internal call: a plain 258-byte value, copied
// freely. Success is all zeros; an error or a warning carries a message of at
// most 256 bytes of UTF-8 (a message that fills them has no terminator).

#include <type_traits>

#include "String/qvUtf8String.h"

struct QvResult {
    bool hasError;
    bool hasWarning;
    char message[256];

    // Success.
    QvResult();
    // An error, or with `isWarning` a warning: never both.
    explicit QvResult(const qvUtf8String& text, bool isWarning = false);

    // Neither an error nor a warning.
    bool isOk() const;
    qvUtf8String toString() const;
};

static_assert(sizeof(QvResult) == 258, "QvResult is a 258-byte value");
static_assert(std::is_trivially_copyable<QvResult>::value, "QvResult is copied as plain bytes");
