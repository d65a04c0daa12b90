#include "Library/RefFrameState.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace twref {
namespace {

static_assert(std::is_trivially_copyable<RefFrameState>::value, "the state lives in caller memory");

uint32_t fnv1a(const void* data, size_t size)
{
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    uint32_t hash = 2166136261u;
    for (size_t i = 0; i < size; ++i) {
        hash ^= bytes[i];
        hash *= 16777619u;
    }
    return hash;
}

uint32_t checksumOf(const RefFrameState& state)
{
    return fnv1a(&state, offsetof(RefFrameState, checksum));
}

void copyText(char (&to)[96], const std::string& from)
{
    std::memset(to, 0, sizeof to);
    std::memcpy(to, from.c_str(), std::min(from.size(), sizeof to - 1));
}

// The decoded buffer stands in for unpacked sensor data: 16 bits per photosite
// at the output size, behind its header.
uint32_t decodedBytesFor(uint32_t width, uint32_t height)
{
    return uint32_t(sizeof(RefDecodedHeader)) + width * height * 2;
}

}  // namespace

void RefFrameState::setSettings(const RefRenderSettings& s)
{
    colorScienceGen = s.colorScienceGen;
    gamutCompression = s.gamutCompression ? 1 : 0;
    toneCurveVideoBlackLevel = s.toneCurveVideoBlackLevel ? 1 : 0;
    highlightRecovery = s.highlightRecovery ? 1 : 0;
    toneCurveContrast = s.toneCurveContrast;
    toneCurveSaturation = s.toneCurveSaturation;
    toneCurveMidpoint = s.toneCurveMidpoint;
    toneCurveHighlights = s.toneCurveHighlights;
    toneCurveShadows = s.toneCurveShadows;
    toneCurveBlackLevel = s.toneCurveBlackLevel;
    toneCurveWhiteLevel = s.toneCurveWhiteLevel;
    analogGain = s.analogGain;
    iso = s.iso;
    kelvin = s.kelvin;
    tint = s.tint;
    exposure = s.exposure;
    referenceIso = s.referenceIso;
    referenceKelvin = s.referenceKelvin;
    referenceTint = s.referenceTint;
    copyText(gamut, s.gamut);
    copyText(gamma, s.gamma);
}

RefRenderSettings RefFrameState::settings() const
{
    RefRenderSettings s;
    s.colorScienceGen = colorScienceGen;
    s.gamutCompression = gamutCompression != 0;
    s.toneCurveVideoBlackLevel = toneCurveVideoBlackLevel != 0;
    s.highlightRecovery = highlightRecovery != 0;
    s.toneCurveContrast = toneCurveContrast;
    s.toneCurveSaturation = toneCurveSaturation;
    s.toneCurveMidpoint = toneCurveMidpoint;
    s.toneCurveHighlights = toneCurveHighlights;
    s.toneCurveShadows = toneCurveShadows;
    s.toneCurveBlackLevel = toneCurveBlackLevel;
    s.toneCurveWhiteLevel = toneCurveWhiteLevel;
    s.analogGain = analogGain;
    s.iso = iso;
    s.kelvin = kelvin;
    s.tint = tint;
    s.exposure = exposure;
    s.referenceIso = referenceIso;
    s.referenceKelvin = referenceKelvin;
    s.referenceTint = referenceTint;
    s.gamut = std::string(gamut, strnlen(gamut, sizeof gamut));
    s.gamma = std::string(gamma, strnlen(gamma, sizeof gamma));
    return s;
}

void RefFrameState::seal()
{
    magic = kMagic;
    version = kVersion;
    std::memset(reserved, 0, sizeof reserved);
    processedBytes = uint32_t(
        RefRenderer::resourceSizeBytes(static_cast<RefResourceFormat>(resourceFormat), width, height));
    decodedBytes = decodedBytesFor(width, height);
    workingBytes = processedBytes;
    checksum = checksumOf(*this);
}

HRESULT RefFrameState::read(const void* buffer, RefFrameState& out)
{
    if (!buffer)
        return E_POINTER;
    std::memcpy(&out, buffer, sizeof out);
    if (out.magic != kMagic || out.version != kVersion || out.checksum != checksumOf(out))
        return E_INVALIDARG;
    const size_t processed =
        RefRenderer::resourceSizeBytes(static_cast<RefResourceFormat>(out.resourceFormat), out.width, out.height);
    if (processed == 0 || processed != out.processedBytes || out.decodedBytes != decodedBytesFor(out.width, out.height))
        return E_INVALIDARG;
    return S_OK;
}

}  // namespace twref
