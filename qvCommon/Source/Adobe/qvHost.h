#pragma once
// Which host application the plug-in runs in.

#include "String/qvUtf8String.h"

#include <cstdint>

// One byte, as stored and passed around. Values 11 and above are unknown to this
// release and print as their number.
class QV_APP_ENUM {
public:
    enum Value : uint8_t {
        QV_APP_UNKNOWN = 0,
        QV_APP_PPRO = 1,
        QV_APP_PREL = 2,
        QV_APP_AE = 3,
        QV_APP_AME = 4,
        QV_APP_COTTON_WOOD = 5,
        QV_APP_PRELUDE = 6,
        QV_APP_SPEED_GRADE = 7,
        QV_APP_AUDITION = 8,
        QV_APP_CHARACTER_ANIMATOR = 9,
        QV_APP_DESKTOP = 10,
    };

    constexpr QV_APP_ENUM() : m_value(QV_APP_UNKNOWN) {}
    constexpr QV_APP_ENUM(uint8_t value) : m_value(value) {}  // NOLINT: a plain byte on purpose
    constexpr operator uint8_t() const { return m_value; }

    // "Premiere Pro", "Adobe Media Encoder", ... ; also the host part of log file names.
    qvUtf8String toString() const;

private:
    uint8_t m_value;
};
static_assert(sizeof(QV_APP_ENUM) == 1, "QV_APP_ENUM travels as one byte");
