#include "Manager/twVariant.h"

#include <cstring>

bool twVariantNumber(const Variant& value, double& out) {
    switch (value.vt) {
        case blackmagicRawVariantTypeU8: {
            // A U8 has no member of its own: it is the first byte of the value.
            uint8_t byte = 0;
            std::memcpy(&byte, &value.iVal, 1);
            out = byte;
            return true;
        }
        case blackmagicRawVariantTypeS16: out = value.iVal; return true;
        case blackmagicRawVariantTypeU16: out = value.uiVal; return true;
        case blackmagicRawVariantTypeS32: out = value.intVal; return true;
        case blackmagicRawVariantTypeU32: out = value.uintVal; return true;
        case blackmagicRawVariantTypeFloat32: out = value.fltVal; return true;
        case blackmagicRawVariantTypeFloat64: out = value.dblVal; return true;
        default: return false;
    }
}
