#include "Adobe/qvHost.h"

#include <string>

qvUtf8String QV_APP_ENUM::toString() const {
    switch (m_value) {
        case QV_APP_UNKNOWN: return qvUtf8String("Unknown");
        case QV_APP_PPRO: return qvUtf8String("Premiere Pro");
        case QV_APP_PREL: return qvUtf8String("Premiere Elements");
        case QV_APP_AE: return qvUtf8String("After Effects");
        case QV_APP_AME: return qvUtf8String("Adobe Media Encoder");
        case QV_APP_COTTON_WOOD: return qvUtf8String("Cotton Wood");
        case QV_APP_PRELUDE: return qvUtf8String("Prelude");
        case QV_APP_SPEED_GRADE: return qvUtf8String("Speed Grade");
        case QV_APP_AUDITION: return qvUtf8String("Audition");
        case QV_APP_CHARACTER_ANIMATOR: return qvUtf8String("Character Animator");
        case QV_APP_DESKTOP: return qvUtf8String("Desktop");
        default: return qvUtf8String(std::to_string(unsigned(m_value)));
    }
}
