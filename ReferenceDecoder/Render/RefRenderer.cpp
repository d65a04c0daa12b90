#include "Render/RefRenderer.h"
#include "Format/RefLutTools.h"
#include "Render/RefChart.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace twref {

namespace {

// ---- colour pipeline --------------------------------------------------------

float luma(const float c[3]) { return 0.2126f * c[0] + 0.7152f * c[1] + 0.0722f * c[2]; }

// Saturation about luma of each gamut: the named working spaces are wider or
// narrower than the camera's, which this stands in for.
float gamutSaturation(const std::string& gamut)
{
    struct Entry {
        const char* name;
        float saturation;
    };
    // Far enough apart that each gamut shows in an 8-bit picture.
    static const Entry kGamuts[] = {
        {"Blackmagic Design", 1.00f}, {"Rec.709", 1.30f},            {"Rec.2020", 1.12f},
        {"DCI-P3 D65", 1.20f},        {"DCI-P3 Theater", 1.25f},     {"ACES AP0", 0.80f},
        {"ACES AP1", 0.96f},          {"CIE 1931 XYZ D65", 0.72f},   {"CIE 1931 XYZ D50 (PCS)", 0.68f},
        {"V-Gamut", 0.88f},           {"Canon Cinema Gamut", 0.84f}, {"ARRI Wide Gamut 3", 1.04f},
        {"DaVinci Wide Gamut", 0.92f}, {"ARRI Wide Gamut 4", 1.08f},
    };
    for (const Entry& e : kGamuts) {
        if (gamut == e.name)
            return e.saturation;
    }
    return 1.16f;
}

enum class CurveKind { Log, Linear, Rec709, Video, ExtendedVideo, HLG, PQ, Custom };

struct Curve {
    CurveKind kind = CurveKind::Log;
    // Log family: y = mid + slope * log2((x + offset) / 0.18)
    float mid = 0.38f;
    float slope = 0.09f;
    float offset = 0.01f;
};

Curve filmCurve(uint16_t gen)
{
    Curve c;
    if (gen == 4) {
        c.mid = 0.36f;
        c.slope = 0.085f;
        c.offset = 0.012f;
    }
    return c;
}

Curve curveFor(const std::string& gamma, uint16_t gen)
{
    struct Entry {
        const char* name;
        float mid, slope, offset;
    };
    static const Entry kLogs[] = {
        {"V-Log", 0.42f, 0.075f, 0.010f},        {"Canon Log2", 0.39f, 0.080f, 0.020f},
        {"N-Log", 0.36f, 0.085f, 0.015f},        {"ARRI LogC3", 0.39f, 0.074f, 0.011f},
        {"DaVinci Intermediate", 0.336f, 0.078f, 0.008f}, {"L-Log", 0.40f, 0.070f, 0.014f},
        {"ARRI LogC4", 0.278f, 0.072f, 0.006f},  {"ACEScct", 0.414f, 0.057f, 0.004f},
    };
    Curve c = filmCurve(gen);
    if (gamma == "Blackmagic Design Film")
        return c;
    if (gamma == "Linear") c.kind = CurveKind::Linear;
    else if (gamma == "Rec.709") c.kind = CurveKind::Rec709;
    else if (gamma == "Blackmagic Design Video") c.kind = CurveKind::Video;
    else if (gamma == "Blackmagic Design Extended Video") c.kind = CurveKind::ExtendedVideo;
    else if (gamma == "Rec.2100 Hybrid Log Gamma") c.kind = CurveKind::HLG;
    else if (gamma == "Rec.2100 ST2084 (PQ)") c.kind = CurveKind::PQ;
    else if (gamma == "Blackmagic Design Custom") c.kind = CurveKind::Custom;
    else {
        bool known = false;
        for (const Entry& e : kLogs) {
            if (gamma == e.name) {
                c.mid = e.mid;
                c.slope = e.slope;
                c.offset = e.offset;
                known = true;
            }
        }
        if (!known) {
            // Any other name still gets a curve of its own.
            uint32_t h = 2166136261u;
            for (char ch : gamma)
                h = (h ^ uint8_t(ch)) * 16777619u;
            c.mid = 0.33f + float(h % 97) / 970.0f;
            c.slope = 0.065f + float((h >> 8) % 31) / 1000.0f;
        }
    }
    return c;
}

float logCurve(const Curve& c, float x)
{
    return c.mid + c.slope * std::log2((std::max(x, 0.0f) + c.offset) / 0.18f);
}

float rec709(float x)
{
    x = std::max(x, 0.0f);
    return x < 0.018f ? 4.5f * x : 1.099f * std::pow(x, 0.45f) - 0.099f;
}

float hlg(float x)
{
    x = std::max(x, 0.0f);
    if (x <= 1.0f / 12.0f)
        return std::sqrt(3.0f * x);
    return 0.17883277f * std::log(12.0f * x - 0.28466892f) + 0.55991073f;
}

float pq(float x)
{
    const float l = std::max(x, 0.0f) * 0.01f;  // scene 1.0 at 100 of 10000 nits
    const float m1 = 0.1593017578125f, m2 = 78.84375f;
    const float c1 = 0.8359375f, c2 = 18.8515625f, c3 = 18.6875f;
    const float p = std::pow(l, m1);
    return std::pow((c1 + c2 * p) / (1.0f + c3 * p), m2);
}

// The compiled pipeline of one render call: plain numbers only.
struct Pipeline {
    float gain[3];
    bool highlightRecovery;
    float saturation;
    bool gamutCompression;
    bool gen4;
    Curve curve;
    Curve film;
    // Custom tone curve.
    float contrast, midpoint, highlights, shadows, blackLevel, whiteLevel, toneSaturation;
    bool videoBlackLevel;
    const RefLut* lut;

    Pipeline(const RefRenderSettings& s, const RefLut* l)
    {
        const float exposure = std::isfinite(s.exposure) ? std::max(-16.0f, std::min(16.0f, s.exposure)) : 0.0f;
        float g = std::exp2(exposure);
        if (s.referenceIso > 0)
            g *= float(s.iso) / float(s.referenceIso);
        if (std::isfinite(s.analogGain) && s.analogGain > 0.0f)
            g *= s.analogGain;
        float t = 0.0f;
        if (s.kelvin > 0 && s.referenceKelvin > 0)
            t = std::max(-4.0f, std::min(4.0f, std::log2(float(s.kelvin) / float(s.referenceKelvin))));
        const float d = float(s.tint - s.referenceTint) / 150.0f;
        gain[0] = g * std::exp2(0.5f * t);
        gain[1] = g * std::exp2(-0.5f * d);
        gain[2] = g * std::exp2(-0.5f * t);
        highlightRecovery = s.highlightRecovery;
        gen4 = s.colorScienceGen == 4;
        saturation = gamutSaturation(s.gamut) * (gen4 ? 0.96f : 1.0f);
        gamutCompression = s.gamutCompression;
        curve = curveFor(s.gamma, s.colorScienceGen);
        film = filmCurve(s.colorScienceGen);
        auto finite = [](float v, float fallback) { return std::isfinite(v) ? v : fallback; };
        contrast = finite(s.toneCurveContrast, 0.5f);
        midpoint = finite(s.toneCurveMidpoint, 0.41f);
        highlights = finite(s.toneCurveHighlights, 1.0f);
        shadows = finite(s.toneCurveShadows, 1.0f);
        blackLevel = finite(s.toneCurveBlackLevel, 0.0f);
        whiteLevel = finite(s.toneCurveWhiteLevel, 1.0f);
        toneSaturation = finite(s.toneCurveSaturation, 1.0f);
        videoBlackLevel = s.toneCurveVideoBlackLevel;
        lut = l;
    }

    float transfer(float x) const
    {
        switch (curve.kind) {
        case CurveKind::Linear: return x;
        case CurveKind::Rec709: return std::min(rec709(x), 1.0f);
        case CurveKind::Video: {
            // The camera's video look: Rec.709 with a slightly firmer toe.
            const float y = std::min(rec709(x), 1.0f);
            return y * y * (1.6f - 0.6f * y) * 0.98f + 0.02f * y;
        }
        case CurveKind::ExtendedVideo: return std::min(rec709(1.25f * x / (1.0f + 0.25f * x)), 1.0f);
        case CurveKind::HLG: return hlg(x);
        case CurveKind::PQ: return pq(x);
        case CurveKind::Custom: {
            const float y0 = logCurve(film, x);
            const float factor = 1.0f + (contrast - 0.5f) * 2.0f;
            float y = midpoint + (y0 - film.mid) * factor;
            y = y < midpoint ? midpoint - (midpoint - y) * shadows : midpoint + (y - midpoint) * highlights;
            y = blackLevel + y * (whiteLevel - blackLevel);
            if (videoBlackLevel)
                y = 0.0625f + y * (0.91796875f - 0.0625f);
            return y;
        }
        case CurveKind::Log: break;
        }
        return logCurve(curve, x);
    }

    void run(const float scene[3], float out[3]) const
    {
        float c[3];
        for (int i = 0; i < 3; ++i)
            c[i] = scene[i] * gain[i];
        // The sensor clips each photosite; highlight recovery rebuilds the
        // clipped channels from the others, which keeps the hue.
        const float peak = std::max(c[0], std::max(c[1], c[2]));
        if (highlightRecovery) {
            if (peak > 1.0f) {
                for (float& v : c)
                    v /= peak;
            }
        } else {
            for (float& v : c)
                v = std::min(v, 1.0f);
        }
        if (gen4)
            c[0] *= 1.01f;
        float y = luma(c);
        for (float& v : c)
            v = y + (v - y) * saturation;
        if (gamutCompression) {
            const float hi = std::max(c[0], std::max(c[1], c[2]));
            const float lo = std::min(c[0], std::min(c[1], c[2]));
            const float sat = hi > 1e-6f ? std::min(1.0f, (hi - lo) / hi) : 0.0f;
            const float f = 1.0f / (1.0f + 0.5f * sat);
            y = luma(c);
            for (float& v : c)
                v = y + (v - y) * f;
        }
        for (float& v : c)
            v = transfer(v);
        if (curve.kind == CurveKind::Custom) {
            y = luma(c);
            for (float& v : c)
                v = y + (v - y) * toneSaturation;
        }
        if (lut) {
            float clamped[3];
            for (int i = 0; i < 3; ++i)
                clamped[i] = std::isfinite(c[i]) ? std::min(1.0f, std::max(0.0f, c[i])) : 0.0f;
            RefLutTools::apply(*lut, clamped, c);
        }
        for (int i = 0; i < 3; ++i)
            out[i] = std::isfinite(c[i]) ? c[i] : 0.0f;
    }
};

// ---- pixel formats ----------------------------------------------------------

enum class Sample { U8, U16, F32, F16 };

struct FormatInfo {
    Sample sample;
    uint32_t channels;   // 3 or 4 (planar: 3)
    bool planar;
    bool bgr;            // blue first
    uint32_t sampleBytes;
};

bool formatInfo(RefResourceFormat f, FormatInfo& info)
{
    switch (f) {
    case RefResourceFormat::RGBAU8: info = {Sample::U8, 4, false, false, 1}; return true;
    case RefResourceFormat::BGRAU8: info = {Sample::U8, 4, false, true, 1}; return true;
    case RefResourceFormat::RGBU16: info = {Sample::U16, 3, false, false, 2}; return true;
    case RefResourceFormat::RGBAU16: info = {Sample::U16, 4, false, false, 2}; return true;
    case RefResourceFormat::BGRAU16: info = {Sample::U16, 4, false, true, 2}; return true;
    case RefResourceFormat::RGBU16Planar: info = {Sample::U16, 3, true, false, 2}; return true;
    case RefResourceFormat::RGBF32: info = {Sample::F32, 3, false, false, 4}; return true;
    case RefResourceFormat::RGBAF32: info = {Sample::F32, 4, false, false, 4}; return true;
    case RefResourceFormat::BGRAF32: info = {Sample::F32, 4, false, true, 4}; return true;
    case RefResourceFormat::RGBF32Planar: info = {Sample::F32, 3, true, false, 4}; return true;
    case RefResourceFormat::RGBF16: info = {Sample::F16, 3, false, false, 2}; return true;
    case RefResourceFormat::RGBAF16: info = {Sample::F16, 4, false, false, 2}; return true;
    case RefResourceFormat::BGRAF16: info = {Sample::F16, 4, false, true, 2}; return true;
    case RefResourceFormat::RGBF16Planar: info = {Sample::F16, 3, true, false, 2}; return true;
    }
    return false;
}

uint16_t toHalf(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    const uint32_t sign = (bits >> 16) & 0x8000u;
    const int32_t exponent = int32_t((bits >> 23) & 0xFF) - 127 + 15;
    uint32_t mantissa = bits & 0x7FFFFFu;
    if (((bits >> 23) & 0xFF) == 0xFF)
        return uint16_t(sign | 0x7C00u | (mantissa ? 0x200u : 0u));
    if (exponent >= 31)
        return uint16_t(sign | 0x7C00u);
    if (exponent <= 0) {
        if (exponent < -10)
            return uint16_t(sign);
        mantissa |= 0x800000u;
        const uint32_t shift = uint32_t(14 - exponent);
        uint32_t half = mantissa >> shift;
        if ((mantissa >> (shift - 1)) & 1u)
            ++half;
        return uint16_t(sign | half);
    }
    uint32_t half = sign | (uint32_t(exponent) << 10) | (mantissa >> 13);
    if (mantissa & 0x1000u)
        ++half;  // round half up; a carry into the exponent is still correct
    return uint16_t(half);
}

// Writes one colour as the format's samples into out: interleaved pixel bytes,
// or for planar formats the three samples one after the other.
void encodePixel(const FormatInfo& info, const float rgb[3], uint8_t* out)
{
    float v[4] = {rgb[0], rgb[1], rgb[2], 1.0f};
    if (info.bgr)
        std::swap(v[0], v[2]);
    for (uint32_t c = 0; c < info.channels; ++c) {
        switch (info.sample) {
        case Sample::U8: {
            const float x = std::min(1.0f, std::max(0.0f, v[c]));
            out[c] = static_cast<uint8_t>(x * 255.0f + 0.5f);
            break;
        }
        case Sample::U16: {
            const float x = std::min(1.0f, std::max(0.0f, v[c]));
            const uint16_t s = static_cast<uint16_t>(x * 65535.0f + 0.5f);
            std::memcpy(out + 2 * c, &s, 2);
            break;
        }
        case Sample::F32:
            std::memcpy(out + 4 * c, &v[c], 4);
            break;
        case Sample::F16: {
            const uint16_t h = toHalf(v[c]);
            std::memcpy(out + 2 * c, &h, 2);
            break;
        }
        }
    }
}

// The output picture seen as rows; planar formats have three planes of
// width * sampleBytes per row.
class Canvas {
public:
    Canvas(const RefRenderTarget& t, const FormatInfo& info)
        : m_base(static_cast<uint8_t*>(t.data)),
          m_width(t.width),
          m_height(t.height),
          m_info(info),
          m_pixelBytes(info.planar ? info.sampleBytes * 3 : info.sampleBytes * info.channels),
          m_rowBytes(size_t(t.width) * (info.planar ? info.sampleBytes : m_pixelBytes)),
          m_planeBytes(m_rowBytes * t.height),
          m_flipV(t.flipVertical),
          m_flipH(t.flipHorizontal)
    {
    }

    uint32_t width() const { return m_width; }
    uint32_t pixelBytes() const { return m_pixelBytes; }
    // Bytes of one encoded row as built by makeRow (all planes).
    size_t encodedRowBytes() const { return size_t(m_width) * m_pixelBytes; }

    // Encodes a row of colours (chart order, left to right) into the layout
    // writeRow expects, mirrored for a horizontal flip.
    void makeRow(const float* rgb, uint8_t* row) const
    {
        uint8_t pixel[16];
        for (uint32_t x = 0; x < m_width; ++x) {
            const uint32_t dx = m_flipH ? m_width - 1 - x : x;
            if (x == 0 || std::memcmp(rgb + 3 * x, rgb + 3 * (x - 1), 3 * sizeof(float)) != 0)
                encodePixel(m_info, rgb + 3 * x, pixel);
            if (m_info.planar) {
                for (int p = 0; p < 3; ++p)
                    std::memcpy(row + p * m_rowBytes + size_t(dx) * m_info.sampleBytes,
                                pixel + p * m_info.sampleBytes, m_info.sampleBytes);
            } else {
                std::memcpy(row + size_t(dx) * m_pixelBytes, pixel, m_pixelBytes);
            }
        }
    }

    void writeRow(uint32_t chartY, const uint8_t* row) const
    {
        const uint32_t y = m_flipV ? m_height - 1 - chartY : chartY;
        if (m_info.planar) {
            for (int p = 0; p < 3; ++p)
                std::memcpy(m_base + p * m_planeBytes + size_t(y) * m_rowBytes, row + p * m_rowBytes, m_rowBytes);
        } else {
            std::memcpy(m_base + size_t(y) * m_rowBytes, row, m_rowBytes);
        }
    }

    // Paints chart pixels [x0, x1) of chart row chartY with one encoded pixel.
    void paint(uint32_t chartY, uint32_t x0, uint32_t x1, const uint8_t* pixel) const
    {
        if (x0 >= x1)
            return;
        const uint32_t y = m_flipV ? m_height - 1 - chartY : chartY;
        if (m_flipH) {
            const uint32_t a = m_width - x1;
            x1 = m_width - x0;
            x0 = a;
        }
        if (m_info.planar) {
            for (int p = 0; p < 3; ++p) {
                uint8_t* dst = m_base + p * m_planeBytes + size_t(y) * m_rowBytes;
                for (uint32_t x = x0; x < x1; ++x)
                    std::memcpy(dst + size_t(x) * m_info.sampleBytes, pixel + p * m_info.sampleBytes,
                                m_info.sampleBytes);
            }
        } else {
            uint8_t* dst = m_base + size_t(y) * m_rowBytes;
            for (uint32_t x = x0; x < x1; ++x)
                std::memcpy(dst + size_t(x) * m_pixelBytes, pixel, m_pixelBytes);
        }
    }

private:
    uint8_t* m_base;
    uint32_t m_width, m_height;
    FormatInfo m_info;
    uint32_t m_pixelBytes;
    size_t m_rowBytes;
    size_t m_planeBytes;
    bool m_flipV, m_flipH;
};

uint32_t toPixels(float fraction, uint32_t size)
{
    const float v = std::floor(fraction * float(size) + 0.5f);
    return v <= 0.0f ? 0u : (v >= float(size) ? size : static_cast<uint32_t>(v));
}

// 5 x 7 digits, one byte per row, bit 4 the leftmost column.
constexpr uint8_t kFont[10][7] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C},
};

// Renders with the pipeline compiled; every band's rows are alike, so each
// band is processed once and copied.
class ChartPainter {
public:
    ChartPainter(const Pipeline& pipeline, const Canvas& canvas, const FormatInfo& info, uint32_t height)
        : m_info(info), m_pipeline(pipeline), m_canvas(canvas), m_width(canvas.width()), m_height(height),
          m_rgb(size_t(canvas.width()) * 3), m_row(canvas.encodedRowBytes())
    {
        const float bg[3] = {RefChart::kBackground, RefChart::kBackground, RefChart::kBackground};
        m_pipeline.run(bg, m_background);
    }

    void paint(uint64_t frameIndex)
    {
        const RefRectF p0 = RefChart::patchRect(0, 0);
        const RefRectF p1 = RefChart::patchRect(1, 0);
        const RefRectF ramp = RefChart::rampRect();
        const RefRectF code = RefChart::barcodeCellRect(0);
        const RefRectF band = RefChart::bottomBandRect();

        uint32_t y = 0;
        y = fillBackground(y, toPixels(p0.top, m_height));
        y = fillBand(y, toPixels(p0.bottom, m_height), [this](float* rgb) { patchRow(0, rgb); });
        y = fillBackground(y, toPixels(p1.top, m_height));
        y = fillBand(y, toPixels(p1.bottom, m_height), [this](float* rgb) { patchRow(1, rgb); });
        y = fillBackground(y, toPixels(ramp.top, m_height));
        y = fillBand(y, toPixels(ramp.bottom, m_height), [this](float* rgb) { rampRow(rgb); });
        y = fillBackground(y, toPixels(code.top, m_height));
        y = fillBand(y, toPixels(code.bottom, m_height), [this, frameIndex](float* rgb) { barcodeRow(frameIndex, rgb); });
        y = fillBackground(y, toPixels(band.top, m_height));
        const uint32_t bandStart = y;
        y = fillBackground(y, m_height);
        (void)y;
        overlays(frameIndex, bandStart);
    }

private:
    void fillRun(float* rgb, uint32_t x0, uint32_t x1, const float colour[3])
    {
        for (uint32_t x = x0; x < x1; ++x) {
            rgb[3 * x] = colour[0];
            rgb[3 * x + 1] = colour[1];
            rgb[3 * x + 2] = colour[2];
        }
    }

    void backgroundRow(float* rgb) { fillRun(rgb, 0, m_width, m_background); }

    template <typename Fill>
    uint32_t fillBand(uint32_t from, uint32_t to, Fill fill)
    {
        if (from >= to)
            return from;
        fill(m_rgb.data());
        m_canvas.makeRow(m_rgb.data(), m_row.data());
        for (uint32_t y = from; y < to; ++y)
            m_canvas.writeRow(y, m_row.data());
        return to;
    }

    uint32_t fillBackground(uint32_t from, uint32_t to)
    {
        if (from >= to)
            return from;
        if (!m_backgroundReady) {
            backgroundRow(m_rgb.data());
            m_backgroundRow.resize(m_row.size());
            m_canvas.makeRow(m_rgb.data(), m_backgroundRow.data());
            m_backgroundReady = true;
        }
        for (uint32_t y = from; y < to; ++y)
            m_canvas.writeRow(y, m_backgroundRow.data());
        return to;
    }

    void patchRow(int row, float* rgb)
    {
        backgroundRow(rgb);
        for (int c = 0; c < RefChart::kPatchColumns; ++c) {
            const RefRectF r = RefChart::patchRect(row, c);
            float scene[3], out[3];
            RefChart::patchColour(row, c, scene);
            m_pipeline.run(scene, out);
            fillRun(rgb, toPixels(r.left, m_width), toPixels(r.right, m_width), out);
        }
    }

    void rampRow(float* rgb)
    {
        backgroundRow(rgb);
        const RefRectF r = RefChart::rampRect();
        const uint32_t x0 = toPixels(r.left, m_width), x1 = toPixels(r.right, m_width);
        for (uint32_t x = x0; x < x1; ++x) {
            const float v = RefChart::rampValue((float(x) + 0.5f) / float(m_width));
            const float scene[3] = {v, v, v};
            m_pipeline.run(scene, rgb + 3 * x);
        }
    }

    void barcodeRow(uint64_t frameIndex, float* rgb)
    {
        backgroundRow(rgb);
        const float whiteScene[3] = {RefChart::kBarcodeWhite, RefChart::kBarcodeWhite, RefChart::kBarcodeWhite};
        const float blackScene[3] = {RefChart::kBarcodeBlack, RefChart::kBarcodeBlack, RefChart::kBarcodeBlack};
        float white[3], black[3];
        m_pipeline.run(whiteScene, white);
        m_pipeline.run(blackScene, black);
        for (int cell = 0; cell < RefChart::kBarcodeBits + 2; ++cell) {
            bool set;
            if (cell < 2)
                set = cell == 0;
            else
                set = ((frameIndex >> (RefChart::kBarcodeBits - 1 - (cell - 2))) & 1u) != 0;
            const RefRectF r = RefChart::barcodeCellRect(cell);
            fillRun(rgb, toPixels(r.left, m_width), toPixels(r.right, m_width), set ? white : black);
        }
    }

    void overlays(uint64_t frameIndex, uint32_t bandStart)
    {
        uint8_t pixel[16];
        float scene[3], out[3];

        RefChart::movingBoxColour(scene);
        m_pipeline.run(scene, out);
        encodePixelFor(out, pixel);
        const RefRectF box = RefChart::movingBoxRect(frameIndex);
        const uint32_t bx0 = toPixels(box.left, m_width), bx1 = toPixels(box.right, m_width);
        for (uint32_t y = std::max(bandStart, toPixels(box.top, m_height)); y < toPixels(box.bottom, m_height); ++y)
            m_canvas.paint(y, bx0, bx1, pixel);

        scene[0] = scene[1] = scene[2] = RefChart::kDigitWhite;
        m_pipeline.run(scene, out);
        encodePixelFor(out, pixel);
        const std::string digits = std::to_string(frameIndex);
        const RefRectF area = RefChart::digitsRect();
        const float left = area.left * m_width, top = area.top * m_height;
        const float areaW = (area.right - area.left) * m_width, areaH = (area.bottom - area.top) * m_height;
        const float unit = std::min(areaH / 7.0f, areaW / float(digits.size() * 6 - 1));
        if (unit <= 0.0f)
            return;
        for (int fontRow = 0; fontRow < 7; ++fontRow) {
            const uint32_t y0 = std::max(bandStart, toPixels((top + fontRow * unit) / m_height, m_height));
            const uint32_t y1 = toPixels((top + (fontRow + 1) * unit) / m_height, m_height);
            for (uint32_t y = y0; y < y1; ++y) {
                for (size_t d = 0; d < digits.size(); ++d) {
                    const uint8_t bits = kFont[digits[d] - '0'][fontRow];
                    for (int col = 0; col < 5; ++col) {
                        if (!(bits & (0x10 >> col)))
                            continue;
                        const float x = left + (float(d) * 6.0f + col) * unit;
                        m_canvas.paint(y, toPixels(x / m_width, m_width), toPixels((x + unit) / m_width, m_width),
                                       pixel);
                    }
                }
            }
        }
    }

    void encodePixelFor(const float rgb[3], uint8_t* pixel) const { encodePixel(m_info, rgb, pixel); }

    FormatInfo m_info;
    const Pipeline& m_pipeline;
    const Canvas& m_canvas;
    uint32_t m_width, m_height;
    std::vector<float> m_rgb;
    std::vector<uint8_t> m_row;
    std::vector<uint8_t> m_backgroundRow;
    bool m_backgroundReady = false;
    float m_background[3];
};

float numberOf(const std::vector<RefAttribute>& list, uint32_t id, float fallback)
{
    for (const RefAttribute& a : list) {
        if (a.id == id && a.value.isNumber())
            return static_cast<float>(a.value.number);
    }
    return fallback;
}

std::string textOf(const std::vector<RefAttribute>& list, uint32_t id, const std::string& fallback)
{
    for (const RefAttribute& a : list) {
        if (a.id == id && a.value.type == RefVariantType::String)
            return a.value.text;
    }
    return fallback;
}

uint32_t toU32(double v, uint32_t fallback)
{
    return std::isfinite(v) && v >= 0.0 && v <= 4294967295.0 ? static_cast<uint32_t>(v) : fallback;
}

}  // namespace

RefRenderSettings RefRenderSettings::fromAttributes(const std::vector<RefAttribute>& clip,
                                                    const std::vector<RefAttribute>& frame,
                                                    const RefClipModel& model)
{
    RefRenderSettings s;
    s.colorScienceGen = static_cast<uint16_t>(numberOf(clip, RefClipAttr::ColorScienceGen, s.colorScienceGen));
    s.gamut = textOf(clip, RefClipAttr::Gamut, s.gamut);
    s.gamma = textOf(clip, RefClipAttr::Gamma, s.gamma);
    s.gamutCompression = numberOf(clip, RefClipAttr::GamutCompressionEnable, 0.0f) != 0.0f;
    s.toneCurveContrast = numberOf(clip, RefClipAttr::ToneCurveContrast, s.toneCurveContrast);
    s.toneCurveSaturation = numberOf(clip, RefClipAttr::ToneCurveSaturation, s.toneCurveSaturation);
    s.toneCurveMidpoint = numberOf(clip, RefClipAttr::ToneCurveMidpoint, s.toneCurveMidpoint);
    s.toneCurveHighlights = numberOf(clip, RefClipAttr::ToneCurveHighlights, s.toneCurveHighlights);
    s.toneCurveShadows = numberOf(clip, RefClipAttr::ToneCurveShadows, s.toneCurveShadows);
    s.toneCurveBlackLevel = numberOf(clip, RefClipAttr::ToneCurveBlackLevel, s.toneCurveBlackLevel);
    s.toneCurveWhiteLevel = numberOf(clip, RefClipAttr::ToneCurveWhiteLevel, s.toneCurveWhiteLevel);
    s.toneCurveVideoBlackLevel = numberOf(clip, RefClipAttr::ToneCurveVideoBlackLevel, 0.0f) != 0.0f;
    s.highlightRecovery = numberOf(clip, RefClipAttr::HighlightRecovery, 0.0f) != 0.0f;
    s.analogGain = numberOf(clip, RefClipAttr::AnalogGain, 1.0f) * numberOf(frame, RefFrameAttr::AnalogGain, 1.0f);
    s.iso = toU32(numberOf(frame, RefFrameAttr::ISO, float(s.iso)), s.iso);
    s.kelvin = toU32(numberOf(frame, RefFrameAttr::WhiteBalanceKelvin, float(s.kelvin)), s.kelvin);
    s.tint = static_cast<int32_t>(numberOf(frame, RefFrameAttr::WhiteBalanceTint, float(s.tint)));
    s.exposure = numberOf(frame, RefFrameAttr::Exposure, s.exposure);

    const RefValue iso = model.frameAttributeValueOf(0, RefFrameAttr::ISO);
    if (iso.isNumber())
        s.referenceIso = toU32(iso.number, s.referenceIso);
    const RefValue kelvin = model.frameAttributeValueOf(0, RefFrameAttr::WhiteBalanceKelvin);
    if (kelvin.isNumber())
        s.referenceKelvin = toU32(kelvin.number, s.referenceKelvin);
    const RefValue tint = model.frameAttributeValueOf(0, RefFrameAttr::WhiteBalanceTint);
    if (tint.isNumber())
        s.referenceTint = static_cast<int32_t>(tint.number);
    return s;
}

bool RefRenderer::isKnownFormat(RefResourceFormat format)
{
    FormatInfo info;
    return formatInfo(format, info);
}

bool RefRenderer::isPlanar(RefResourceFormat format)
{
    FormatInfo info;
    return formatInfo(format, info) && info.planar;
}

uint32_t RefRenderer::bytesPerPixel(RefResourceFormat format)
{
    FormatInfo info;
    if (!formatInfo(format, info))
        return 0;
    return info.planar ? info.sampleBytes * 3 : info.sampleBytes * info.channels;
}

size_t RefRenderer::resourceSizeBytes(RefResourceFormat format, uint32_t width, uint32_t height)
{
    return size_t(bytesPerPixel(format)) * width * height;
}

void RefRenderer::processColour(const RefRenderSettings& settings, const RefLut* lut, const float sceneRgb[3],
                                float outRgb[3])
{
    const Pipeline pipeline(settings, lut && lut->valid() ? lut : nullptr);
    pipeline.run(sceneRgb, outRgb);
}

bool RefRenderer::render(uint64_t frameIndex, const RefRenderSettings& settings, const RefLut* lut,
                         const RefRenderTarget& target)
{
    FormatInfo info;
    if (!formatInfo(target.format, info) || target.data == nullptr || target.width == 0 || target.height == 0)
        return false;
    if (target.sizeBytes < resourceSizeBytes(target.format, target.width, target.height))
        return false;
    const Pipeline pipeline(settings, lut && lut->valid() ? lut : nullptr);
    const Canvas canvas(target, info);
    ChartPainter painter(pipeline, canvas, info, target.height);
    painter.paint(frameIndex);
    return true;
}

}  // namespace twref
