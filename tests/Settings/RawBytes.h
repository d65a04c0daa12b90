#pragma once
// Little-endian reads and writes at byte offsets of a raw buffer, so that tests
// state the binary layout in numbers instead of through the records under test.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace twtest {

using Bytes = std::vector<uint8_t>;

inline void putU8(Bytes& b, size_t at, uint8_t v) { b.at(at) = v; }
inline void putU16(Bytes& b, size_t at, uint16_t v) {
    b.at(at) = static_cast<uint8_t>(v);
    b.at(at + 1) = static_cast<uint8_t>(v >> 8);
}
inline void putU32(Bytes& b, size_t at, uint32_t v) {
    for (size_t i = 0; i < 4; ++i) b.at(at + i) = static_cast<uint8_t>(v >> (8 * i));
}
inline void putI16(Bytes& b, size_t at, int16_t v) { putU16(b, at, static_cast<uint16_t>(v)); }
inline void putF32(Bytes& b, size_t at, float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    putU32(b, at, bits);
}
// The text and NULs up to `width` bytes.
inline void putText(Bytes& b, size_t at, size_t width, const std::string& text) {
    for (size_t i = 0; i < width; ++i) b.at(at + i) = i < text.size() ? static_cast<uint8_t>(text[i]) : 0;
}

inline uint16_t getU16(const Bytes& b, size_t at) { return static_cast<uint16_t>(b.at(at) | (b.at(at + 1) << 8)); }
inline uint32_t getU32(const Bytes& b, size_t at) {
    uint32_t v = 0;
    for (size_t i = 0; i < 4; ++i) v |= static_cast<uint32_t>(b.at(at + i)) << (8 * i);
    return v;
}
inline int16_t getI16(const Bytes& b, size_t at) { return static_cast<int16_t>(getU16(b, at)); }
inline int32_t getI32(const Bytes& b, size_t at) { return static_cast<int32_t>(getU32(b, at)); }
inline uint64_t getU64(const Bytes& b, size_t at) {
    return static_cast<uint64_t>(getU32(b, at)) | (static_cast<uint64_t>(getU32(b, at + 4)) << 32);
}
// The text of a NUL-padded field of `width` bytes (all of it when it has no NUL).
inline std::string getText(const Bytes& b, size_t at, size_t width) {
    std::string text;
    for (size_t i = 0; i < width && b.at(at + i) != 0; ++i) text.push_back(static_cast<char>(b.at(at + i)));
    return text;
}
inline float getF32(const Bytes& b, size_t at) {
    uint32_t bits = getU32(b, at);
    float v;
    std::memcpy(&v, &bits, 4);
    return v;
}

template <typename T>
Bytes bytesOf(const T& value) {
    Bytes b(sizeof(T));
    std::memcpy(b.data(), &value, sizeof(T));
    return b;
}

template <typename T>
T fromBytes(const Bytes& b) {
    T value;
    std::memcpy(static_cast<void*>(&value), b.data(), sizeof(T));
    return value;
}

// Where the fields of twAttributes sit, from its start. Natural alignment of
// the fields in their order; the blob's projects depend on it.
namespace attr {
constexpr size_t useClipAndFrameAttributes = 0;
constexpr size_t colorScienceGen = 4;
constexpr size_t gamut = 6;
constexpr size_t gamutCompression = 70;
constexpr size_t gamma = 71;
constexpr size_t saturation = 136;
constexpr size_t contrast = 140;
constexpr size_t midpoint = 144;
constexpr size_t highlights = 148;
constexpr size_t shadows = 152;
constexpr size_t whiteLevel = 156;
constexpr size_t blackLevel = 160;
constexpr size_t useVideoBlackLevel = 164;
constexpr size_t highlightRecovery = 168;
constexpr size_t lutMode = 169;
constexpr size_t iso = 184;
constexpr size_t kelvin = 188;
constexpr size_t tint = 192;
constexpr size_t exposure = 196;
constexpr size_t timecode = 200;
constexpr size_t size = 212;
}  // namespace attr

// The default settings as bytes, written field by field at `base`.
inline void putDefaultAttributes(Bytes& b, size_t base) {
    putU8(b, base + attr::useClipAndFrameAttributes, 0);
    putU16(b, base + attr::colorScienceGen, 4);
    putText(b, base + attr::gamut, 64, "Blackmagic Design");
    putU8(b, base + attr::gamutCompression, 0);
    putText(b, base + attr::gamma, 64, "Blackmagic Design Film");
    putF32(b, base + attr::saturation, 1.0f);
    putF32(b, base + attr::contrast, 0.5f);
    putF32(b, base + attr::midpoint, 0.41f);
    putF32(b, base + attr::highlights, 1.0f);
    putF32(b, base + attr::shadows, 1.0f);
    putF32(b, base + attr::whiteLevel, 1.0f);
    putF32(b, base + attr::blackLevel, 0.0f);
    putU8(b, base + attr::useVideoBlackLevel, 0);
    putU8(b, base + attr::highlightRecovery, 0);
    putText(b, base + attr::lutMode, 12, "Disabled");
    putU32(b, base + attr::iso, 800);
    putU32(b, base + attr::kelvin, 5500);
    putI16(b, base + attr::tint, 10);
    putF32(b, base + attr::exposure, 0.0f);
    putText(b, base + attr::timecode, 12, "00:00:00:00");
}

}  // namespace twtest
