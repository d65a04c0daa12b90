#include "String/CFStringHelpers.h"

std::string StringFromCFString(qvPlatform::StringRef handle) {
    if (handle == nullptr) return std::string();
    size_t units = 0;
    if (!qvPlatform::StringLength16(handle, units)) return std::string();
    std::string out;
    qvPlatform::CopyStringToBuffer(handle, units + 1, out);
    return out;
}

qvPlatform::StringRef CFStringFromString(const qvUtf8String& text) {
    return qvPlatform::CreateString(text.c_str());
}

qvUtf8String NSStringToString(qvPlatform::StringRef handle) {
    return handle == nullptr ? qvUtf8String() : qvUtf8String(handle);
}
