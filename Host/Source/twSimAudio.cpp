#include "twSimAudio.h"

#include <cmath>

namespace twSimAudio {

namespace {

bool BuffersValid(const void* interleaved, float** channelsBuffers, unsigned int channels) {
    if (!interleaved || !channelsBuffers) return false;
    for (unsigned int c = 0; c < channels; ++c)
        if (!channelsBuffers[c]) return false;
    return true;
}

long long ToInteger(float sample, int bits) {
    const double scale = static_cast<double>(1LL << (bits - 1));
    const double maxValue = scale - 1.0;
    double v = std::nearbyint(static_cast<double>(sample) * scale);
    if (std::isnan(v)) v = 0.0;
    if (v > maxValue) v = maxValue;
    if (v < -scale) v = -scale;
    return static_cast<long long>(v);
}

float ToFloat(long long value, int bits) {
    return static_cast<float>(static_cast<double>(value) / static_cast<double>(1LL << (bits - 1)));
}

}  // namespace

prSuiteError ToInterleaved8(float** in, char* out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(out, in, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c)
            out[f * channels + c] = static_cast<char>(ToInteger(in[c][f], 8));
    return suiteError_NoError;
}

prSuiteError ToInterleaved16(float** in, short* out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(out, in, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c)
            out[f * channels + c] = static_cast<short>(ToInteger(in[c][f], 16));
    return suiteError_NoError;
}

prSuiteError ToInterleaved24(float** in, char* out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(out, in, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f) {
        for (unsigned int c = 0; c < channels; ++c) {
            const auto v = static_cast<unsigned long long>(ToInteger(in[c][f], 24));
            char* p = out + 3 * (static_cast<size_t>(f) * channels + c);
            p[0] = static_cast<char>(v & 0xFF);
            p[1] = static_cast<char>((v >> 8) & 0xFF);
            p[2] = static_cast<char>((v >> 16) & 0xFF);
        }
    }
    return suiteError_NoError;
}

prSuiteError ToInterleaved32(float** in, csSDK_int32* out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(out, in, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c)
            out[f * channels + c] = static_cast<csSDK_int32>(ToInteger(in[c][f], 32));
    return suiteError_NoError;
}

prSuiteError FromInterleaved8(char* in, float** out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(in, out, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c)
            out[c][f] = ToFloat(static_cast<signed char>(in[f * channels + c]), 8);
    return suiteError_NoError;
}

prSuiteError FromInterleaved16(short* in, float** out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(in, out, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c) out[c][f] = ToFloat(in[f * channels + c], 16);
    return suiteError_NoError;
}

prSuiteError FromInterleaved24(char* in, float** out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(in, out, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f) {
        for (unsigned int c = 0; c < channels; ++c) {
            const auto* p = reinterpret_cast<const unsigned char*>(in + 3 * (static_cast<size_t>(f) * channels + c));
            long v = static_cast<long>(p[0]) | (static_cast<long>(p[1]) << 8) | (static_cast<long>(p[2]) << 16);
            if (v & 0x800000) v -= 0x1000000;
            out[c][f] = ToFloat(v, 24);
        }
    }
    return suiteError_NoError;
}

prSuiteError FromInterleaved32(csSDK_int32* in, float** out, unsigned int channels, unsigned int frames) {
    if (!BuffersValid(in, out, channels)) return suiteError_InvalidParms;
    for (unsigned int f = 0; f < frames; ++f)
        for (unsigned int c = 0; c < channels; ++c) out[c][f] = ToFloat(in[f * channels + c], 32);
    return suiteError_NoError;
}

}  // namespace twSimAudio
