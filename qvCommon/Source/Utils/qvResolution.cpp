#include "Utils/qvResolution.h"

#include <string>

qvUtf8String QvResolution::toString() const {
    return qvUtf8String(std::to_string(width) + "x" + std::to_string(height));
}
