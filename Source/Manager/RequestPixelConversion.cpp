// The conversion of the library's processed image into the host's frame: the
// choice of algorithm and resource format per request, and the passes
// themselves. Every pass is a single-threaded walk over the rows on the
// library's callback thread, under the request's m_mutex, and none of them
// takes memory. The hot loops take their cursors as __restrict parameters, so
// that the compiler knows source and frame apart and vectorises them, or work
// on explicit eight-element vectors where the element pattern is too irregular
// for the compiler to see.

#include "Manager/Request.h"
#include "Manager/twBufferManager.h"
#include "Utils/qvLogging.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

constexpr uint16_t kAlpha16 = 32768;
constexpr uint32_t kResourceTypeOpenCL = 0x6F636C62;  // 'oclb'
constexpr uint32_t kResourceTypeMetal = 0x6D657462;   // 'metb'
constexpr uint32_t kNoResourceFormat = 0;

// The library's 16-bit range (0..65535) to the host's (0..32768): a halving,
// except for the top value, which alone reaches 32768. A select on one
// compare, so that loops of it vectorise.
inline uint16_t hostFrom16(uint16_t v) { return v == 65535 ? kAlpha16 : static_cast<uint16_t>(v >> 1); }

// Eight 16-bit elements in one 16-byte register, for the loops whose element
// pattern the compiler doesn't turn into vectors by itself. Pixels are read
// as little-endian words: element 0 is the lowest.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "pixels are read as little-endian words");
typedef uint16_t qvU16x8 __attribute__((vector_size(16)));
typedef uint64_t qvU64x2 __attribute__((vector_size(16)));

// The same rule on eight elements: the same select on the same compare.
inline qvU16x8 hostFrom16(qvU16x8 v) {
    const qvU16x8 top = reinterpret_cast<qvU16x8>(v == 65535);
    return (top & kAlpha16) | (~top & (v >> 1));
}

template <typename T>
inline T load(const unsigned char* p) {
    T v;
    std::memcpy(&v, p, sizeof(T));
    return v;
}

template <typename T>
inline void store(unsigned char* p, T v) {
    std::memcpy(p, &v, sizeof(T));
}

// --- Copiers of the row walker: `count` elements from *src to *dst ---

// A: floats as they are. Leaves the cursors.
void copierA(qvBRAW_Request* request, unsigned char** dst, unsigned char** src, const unsigned long& count) {
    request->CopyMemoryCPUorGPU(*dst, *src, count * 4, false);
}

// B: bytes as they are. Leaves the cursors.
void copierB(qvBRAW_Request* request, unsigned char** dst, unsigned char** src, const unsigned long& count) {
    request->CopyMemoryCPUorGPU(*dst, *src, count, false);
}

// `count` elements through the range rule. The cursors are parameters so
// that the compiler knows they don't overlap and vectorises the loop.
void ruleElements(unsigned char* __restrict d, const unsigned char* __restrict s, unsigned long count) {
    const unsigned long vectors = count / 8;
    for (unsigned long i = 0; i < vectors; ++i) store<qvU16x8>(d + 16 * i, hostFrom16(load<qvU16x8>(s + 16 * i)));
    for (unsigned long i = vectors * 8; i < count; ++i) store<uint16_t>(d + 2 * i, hostFrom16(load<uint16_t>(s + 2 * i)));
}

// Whole four-element pixels: three elements through the rule, the fourth
// 32768. Two pixels make one vector.
constexpr qvU16x8 kColourLanes = {0xFFFF, 0xFFFF, 0xFFFF, 0, 0xFFFF, 0xFFFF, 0xFFFF, 0};
constexpr qvU16x8 kAlphaLast = {0, 0, 0, kAlpha16, 0, 0, 0, kAlpha16};

void rulePixelsOpaque(unsigned char* __restrict d, const unsigned char* __restrict s, size_t pixels) {
    const size_t pairs = pixels / 2;
    for (size_t p = 0; p < pairs; ++p) {
        store<qvU16x8>(d + 16 * p, (hostFrom16(load<qvU16x8>(s + 16 * p)) & kColourLanes) | kAlphaLast);
    }
    if (pixels % 2) {
        const size_t last = 8 * (pixels - 1);
        store<uint16_t>(d + last, hostFrom16(load<uint16_t>(s + last)));
        store<uint16_t>(d + last + 2, hostFrom16(load<uint16_t>(s + last + 2)));
        store<uint16_t>(d + last + 4, hostFrom16(load<uint16_t>(s + last + 4)));
        store<uint16_t>(d + last + 6, kAlpha16);
    }
}

// C: each 16-bit element through the range rule. Moves the cursors.
void copierC(qvBRAW_Request*, unsigned char** dst, unsigned char** src, const unsigned long& count) {
    ruleElements(*dst, *src, count);
    *dst += count * 2;
    *src += count * 2;
}

// Three floats copied, then 1.0, `groups` times.
void threeFloatsToFour(unsigned char* __restrict d, const unsigned char* __restrict s, size_t groups) {
    const float one = 1.0f;
    for (size_t g = 0; g < groups; ++g) {
        std::memcpy(d + 16 * g, s + 12 * g, 12);
        std::memcpy(d + 16 * g + 12, &one, 4);
    }
}

// D: three-float pixels into four-float ones. Counted from the run's leading
// alpha, three floats are copied and the fourth position is 1.0, unread. Moves
// the cursors; the source cursor ends on the last float read plus one.
void copierD(qvBRAW_Request*, unsigned char** dst, unsigned char** src, const unsigned long& count) {
    const size_t groups = count / 4;
    threeFloatsToFour(*dst, *src, groups);
    const size_t tail = count - groups * 4;
    const size_t tailCopied = std::min<size_t>(tail, 3);
    std::memcpy(*dst + 16 * groups, *src + 12 * groups, tailCopied * sizeof(float));
    *dst += count * sizeof(float);
    *src += (3 * groups + tailCopied) * sizeof(float);
}

// --- Pixel functions of the downscale: one pixel, both cursors advanced ---

// a: u8 R G B A to 255 R G B.
void pixelA(unsigned char** dst, unsigned char** src) {
    const unsigned char* s = *src;
    unsigned char* d = *dst;
    d[0] = 255;
    d[1] = s[0];
    d[2] = s[1];
    d[3] = s[2];
    *dst += 4;
    *src += 4;
}

// b: u16 R G B A to 32768 R G B, through the range rule.
void pixelB(unsigned char** dst, unsigned char** src) {
    const unsigned char* s = *src;
    unsigned char* d = *dst;
    store<uint16_t>(d, kAlpha16);
    store<uint16_t>(d + 2, hostFrom16(load<uint16_t>(s)));
    store<uint16_t>(d + 4, hostFrom16(load<uint16_t>(s + 2)));
    store<uint16_t>(d + 6, hostFrom16(load<uint16_t>(s + 4)));
    *dst += 8;
    *src += 8;
}

// c: float R G B to 1.0 R G B.
void pixelC(unsigned char** dst, unsigned char** src) {
    store<float>(*dst, 1.0f);
    std::memcpy(*dst + 4, *src, 12);
    *dst += 16;
    *src += 12;
}

// d: four bytes as they are.
void pixelD(unsigned char** dst, unsigned char** src) {
    std::memcpy(*dst, *src, 4);
    *dst += 4;
    *src += 4;
}

// e: u16 B G R A to B G R 32768, through the range rule.
void pixelE(unsigned char** dst, unsigned char** src) {
    const unsigned char* s = *src;
    unsigned char* d = *dst;
    store<uint16_t>(d, hostFrom16(load<uint16_t>(s)));
    store<uint16_t>(d + 2, hostFrom16(load<uint16_t>(s + 2)));
    store<uint16_t>(d + 4, hostFrom16(load<uint16_t>(s + 4)));
    store<uint16_t>(d + 6, kAlpha16);
    *dst += 8;
    *src += 8;
}

// f: sixteen bytes as they are.
void pixelF(unsigned char** dst, unsigned char** src) {
    std::memcpy(*dst, *src, 16);
    *dst += 16;
    *src += 16;
}

// Source columns of one stretch of an output row. The running sum of the
// column position is the same on every row, so it is worked out once per
// stretch and kept on the stack, not recomputed per pixel and row.
constexpr uint32_t kColumnsPerStretch = 4096;

// One output row stretch of `count` pixels through the pixel function F,
// known at compile time so that the call melts into the loop.
template <qvBRAW_PixelFunction F>
inline unsigned char* downscaleStretch(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                       uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        unsigned char* s = const_cast<unsigned char*>(row + offsets[i]);
        F(&dst, &s);
    }
    return dst;
}

// Faster forms of the stretch for the small pixels, two pixels at a time;
// each writes exactly what its pixel function writes.

// a: 255 R G B from R G B A, as a word: one shift and one or.
template <>
inline unsigned char* downscaleStretch<&pixelA>(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                                uint32_t count) {
    unsigned char* d = dst;
    uint32_t i = 0;
    for (; i + 2 <= count; i += 2) {
        const uint64_t first = (load<uint32_t>(row + offsets[i]) << 8) | 0xFFu;
        const uint64_t second = (load<uint32_t>(row + offsets[i + 1]) << 8) | 0xFFu;
        store<uint64_t>(d, first | (second << 32));
        d += 8;
    }
    if (i < count) {
        store<uint32_t>(d, (load<uint32_t>(row + offsets[i]) << 8) | 0xFFu);
        d += 4;
    }
    return d;
}

// d: four bytes as they are.
template <>
inline unsigned char* downscaleStretch<&pixelD>(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                                uint32_t count) {
    unsigned char* d = dst;
    uint32_t i = 0;
    for (; i + 2 <= count; i += 2) {
        const uint64_t first = load<uint32_t>(row + offsets[i]);
        const uint64_t second = load<uint32_t>(row + offsets[i + 1]);
        store<uint64_t>(d, first | (second << 32));
        d += 8;
    }
    if (i < count) {
        std::memcpy(d, row + offsets[i], 4);
        d += 4;
    }
    return d;
}

// b and e: two 16-bit pixels in one vector through the rule, then moved
// (b: up one element, alpha first) or masked (e: alpha last).
template <bool alphaFirst>
inline unsigned char* downscaleStretch16(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                         uint32_t count) {
    constexpr qvU16x8 kAlphaFirst = {kAlpha16, 0, 0, 0, kAlpha16, 0, 0, 0};
    unsigned char* d = dst;
    uint32_t i = 0;
    for (; i + 2 <= count; i += 2) {
        const qvU64x2 pair = {load<uint64_t>(row + offsets[i]), load<uint64_t>(row + offsets[i + 1])};
        const qvU16x8 converted = hostFrom16(reinterpret_cast<qvU16x8>(pair));
        if (alphaFirst) {
            store<qvU16x8>(d, reinterpret_cast<qvU16x8>(reinterpret_cast<qvU64x2>(converted) << 16) | kAlphaFirst);
        } else {
            store<qvU16x8>(d, (converted & kColourLanes) | kAlphaLast);
        }
        d += 16;
    }
    if (i < count) {
        unsigned char* s = const_cast<unsigned char*>(row + offsets[i]);
        if (alphaFirst) {
            pixelB(&d, &s);
        } else {
            pixelE(&d, &s);
        }
    }
    return d;
}

template <>
inline unsigned char* downscaleStretch<&pixelB>(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                                uint32_t count) {
    return downscaleStretch16<true>(dst, row, offsets, count);
}

template <>
inline unsigned char* downscaleStretch<&pixelE>(unsigned char* dst, const unsigned char* row, const int32_t* offsets,
                                                uint32_t count) {
    return downscaleStretch16<false>(dst, row, offsets, count);
}

// The same through a pixel function that is only known at run time.
inline unsigned char* downscaleStretch(qvBRAW_PixelFunction fn, unsigned char* dst, const unsigned char* row,
                                       const int32_t* offsets, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        unsigned char* s = const_cast<unsigned char*>(row + offsets[i]);
        fn(&dst, &s);
    }
    return dst;
}

inline unsigned char* runStretch(qvBRAW_PixelFunction fn, unsigned char* dst, const unsigned char* row,
                                 const int32_t* offsets, uint32_t count) {
    if (fn == &pixelA) return downscaleStretch<&pixelA>(dst, row, offsets, count);
    if (fn == &pixelB) return downscaleStretch<&pixelB>(dst, row, offsets, count);
    if (fn == &pixelC) return downscaleStretch<&pixelC>(dst, row, offsets, count);
    if (fn == &pixelD) return downscaleStretch<&pixelD>(dst, row, offsets, count);
    if (fn == &pixelE) return downscaleStretch<&pixelE>(dst, row, offsets, count);
    if (fn == &pixelF) return downscaleStretch<&pixelF>(dst, row, offsets, count);
    return downscaleStretch(fn, dst, row, offsets, count);
}

// One row of planar 16-bit RGB into four-element pixels: alpha 32768 at
// index A, the planes through the range rule at P0, P1 and P2.
template <int P0, int P1, int P2, int A>
void planarRow(unsigned char* __restrict d, const unsigned char* __restrict p0, const unsigned char* __restrict p1,
               const unsigned char* __restrict p2, size_t width) {
    for (size_t x = 0; x < width; ++x) {
        store<uint16_t>(d + 8 * x + 2 * A, kAlpha16);
        store<uint16_t>(d + 8 * x + 2 * P0, hostFrom16(load<uint16_t>(p0 + 2 * x)));
        store<uint16_t>(d + 8 * x + 2 * P1, hostFrom16(load<uint16_t>(p1 + 2 * x)));
        store<uint16_t>(d + 8 * x + 2 * P2, hostFrom16(load<uint16_t>(p2 + 2 * x)));
    }
}

// The destination starts at its last row and walks up by the signed stride.
template <int P0, int P1, int P2, int A>
void planar16ToInterleaved(unsigned char* dstBase, const unsigned char* srcBase, uint32_t Ws, uint32_t Hs,
                           int32_t R) {
    const size_t plane = static_cast<size_t>(Ws) * Hs * 2;
    for (uint32_t y = 0; y < Hs; ++y) {
        unsigned char* d = dstBase + static_cast<ptrdiff_t>(Hs - 1 - y) * static_cast<ptrdiff_t>(R);
        const unsigned char* p0 = srcBase + static_cast<size_t>(y) * Ws * 2;
        planarRow<P0, P1, P2, A>(d, p0, p0 + plane, p0 + 2 * plane, Ws);
    }
}

struct ConversionChoice {
    int32_t algorithm;  // 0: the format can't be delivered this way
    uint32_t resourceFormat;
};

// By output format 0 to 15; a value above 15 has no entry either.
const ConversionChoice kDirectChoices[16] = {
    {0, 0},
    {2, blackmagicRawResourceFormatRGBAU8},
    {3, kNoResourceFormat},
    {8, kNoResourceFormat},
    {1, blackmagicRawResourceFormatBGRAU8},
    {4, blackmagicRawResourceFormatBGRAU16},
    {7, blackmagicRawResourceFormatBGRAF32},
    {12, blackmagicRawResourceFormatRGBAU8},
    {13, blackmagicRawResourceFormatRGBAU16},
    {14, blackmagicRawResourceFormatRGBF32},
    {18, blackmagicRawResourceFormatBGRAF32},
    {19, blackmagicRawResourceFormatBGRAF32},
    {21, blackmagicRawResourceFormatRGBAU8},
    {23, blackmagicRawResourceFormatBGRAU8},
    {0, 0},
    {0, 0},
};

const ConversionChoice kDownscaleChoices[16] = {
    {0, 0},
    {0, 0},
    {0, 0},
    {0, 0},
    {15, blackmagicRawResourceFormatBGRAU8},
    {16, blackmagicRawResourceFormatBGRAU16},
    {17, blackmagicRawResourceFormatBGRAF32},
    {9, blackmagicRawResourceFormatRGBAU8},
    {10, blackmagicRawResourceFormatRGBAU16},
    {11, blackmagicRawResourceFormatRGBF32},
    {0, 0},
    {20, blackmagicRawResourceFormatBGRAF32},
    {22, blackmagicRawResourceFormatRGBAU8},
    {0, 0},
    {0, 0},
    {0, 0},
};

}  // namespace

void qvBRAW_Request::decidePixelConversionAlgorithm() {
    const ConversionChoice choice =
        m_pixelFormat < 16 ? (m_downscale ? kDownscaleChoices : kDirectChoices)[m_pixelFormat] : ConversionChoice{0, 0};
    if (choice.algorithm == 0) {
        const std::string name = toString(m_pixelFormat).Str();
        if (m_downscale) throw std::runtime_error("No implemented yet : Downscale and targetPixel " + name);
        throw std::runtime_error("No implemented yet : targetPixel " + name);
    }
    m_pxlConvAlgo = choice.algorithm;
    m_bmPixelFormat = choice.resourceFormat;
    setBMPixelBytesNumber();
}

void qvBRAW_Request::CopyMemoryCPUorGPU(void* dst, void* src, unsigned long bytes, bool withTiming) {
    const bool timed = withTiming && g_logger.isLoggingActivated(QV_LOG_INFO);
    qvChrono chrono;
    if (timed) chrono.start();
    const bool gpu = m_bufferManager && m_bufferManager->m_GPU;
    if (!gpu) {
        std::memcpy(dst, src, bytes);
    } else {
        // There is no GPU-side copy: a GPU pipeline reaches the host through
        // its direct output, never through here.
        const uint32_t type = m_bufferManager->m_resourceType;
        if (type == kResourceTypeOpenCL) QV_LOG(QV_LOG_ERR, logPrefix() << "OpenCL not loaded!");
        if (type == kResourceTypeMetal) {
            if (g_logger.isLoggingActivated(QV_LOG_ERR)) {
                g_logger.log(logPrefix() + "Not supposed to use Metal-CPU hybrid decoding !", QV_LOG_ERR, __FILE__,
                             "qvBRAW_Request_metalMemcpy");
            }
            QV_LOG(QV_LOG_ERR, logPrefix() << "Metal not loaded!");
        }
        QV_LOG(QV_LOG_ERR, logPrefix() << "GPU Decoding enabled but not working");
    }
    if (timed) {
        const int64_t nano = chrono.getLatestSpanNano(false);
        const double gbits = nano > 0 ? static_cast<double>(bytes) * 8.0 / static_cast<double>(nano) : 0.0;
        QV_LOG(QV_LOG_INFO, logPrefix() << gpu << " memcpy = " << nano / 1000 << " us \t" << bytes << " bytes \t "
                                        << gbits << " GBits/s");
    }
}

template <typename T, bool leadingAlpha, bool copierKeepsCursors>
void qvBRAW_Request::HeavyProcessing_Main(const T& alpha, qvBRAW_RowCopier fn, uint32_t elementsPerPixel) {
    const size_t B = m_bmBytesPerPixel;
    const size_t Ws = m_srcWidth;
    const size_t S = B * Ws;
    unsigned char* src = static_cast<unsigned char*>(m_bufferManager->m_processedBuffer) +
                         (static_cast<ptrdiff_t>(m_rect.top) * static_cast<ptrdiff_t>(Ws) + m_rect.left) *
                             static_cast<ptrdiff_t>(B);
    unsigned char* dst = static_cast<unsigned char*>(m_bufferManager->m_finalImageBuffer);
    if (m_rowBytes < 0) {
        // A buffer addressed from its last row: its lowest address is H - 1
        // rows below the one given, and the rows are written upwards from
        // there. The positive stride is kept; the walk never runs twice.
        m_rowBytes = -m_rowBytes;
        if (m_height > 0) dst -= static_cast<ptrdiff_t>(m_height - 1) * m_rowBytes;
    }
    const size_t R = static_cast<size_t>(m_rowBytes);

    const bool oneRun = S == R && m_rect.left == 0 && static_cast<size_t>(m_rect.right) == Ws;
    const unsigned long count = oneRun ? static_cast<unsigned long>(Ws * elementsPerPixel * m_height)
                                       : static_cast<unsigned long>(elementsPerPixel) * m_width;
    const uint32_t runs = oneRun ? 1 : m_height;
    if (count == 0) return;
    unsigned char* d = dst;
    unsigned char* s = src;
    for (uint32_t y = 0; y < runs; ++y) {
        unsigned char* const runDst = d;
        unsigned char* const runSrc = s;
        if (leadingAlpha) {
            std::memcpy(d, &alpha, sizeof(T));
            d += sizeof(T);
        }
        fn(this, &d, &s, leadingAlpha ? count - 1 : count);
        // A copier that keeps the cursors leaves them where the run began, one
        // that moves them leaves them behind what it wrote and read; the rest
        // of the stride is the walker's either way, up to the next row's start.
        if (copierKeepsCursors) {
            d = runDst + R;
            s = runSrc + S;
        } else {
            d += static_cast<ptrdiff_t>(R) - (d - runDst);
            s += static_cast<ptrdiff_t>(S) - (s - runSrc);
        }
    }
}

template <typename T>
void qvBRAW_Request::HeavyProcessing_Downscale(qvBRAW_PixelFunction fn) {
    if (m_rect.bottom == 0 && m_rect.right == 0) {
        QV_LOG(QV_LOG_ERR, logPrefix() << "Render Target bad values to divise ! " << m_rect.bottom << ", "
                                       << m_rect.right);
        return;
    }
    unsigned char* dst = static_cast<unsigned char*>(m_bufferManager->m_finalImageBuffer);
    const unsigned char* src = static_cast<const unsigned char*>(m_bufferManager->m_processedBuffer);
    const uint32_t W = m_width;
    const uint32_t H = m_height;
    if (m_rowBytes < 0) {
        m_rowBytes = -m_rowBytes;
        if (H == 0) return;
        dst -= static_cast<ptrdiff_t>(H - 1) * m_rowBytes;
    }
    if (H == 0 || W == 0) return;
    // Nothing to sample from an empty image.
    if (m_srcWidth == 0 || m_srcHeight == 0) return;
    const ptrdiff_t padding = static_cast<ptrdiff_t>(m_rowBytes) - static_cast<ptrdiff_t>(W) * 4 * static_cast<ptrdiff_t>(sizeof(T));
    const size_t B = m_bmBytesPerPixel;
    const size_t S = B * m_srcWidth;
    const int64_t lastColumn = static_cast<int64_t>(m_srcWidth) - 1;
    const int64_t lastRow = static_cast<int64_t>(m_srcHeight) - 1;

    // Both positions are running single-precision sums, not products: their
    // drift is part of the picture and is kept. A sample that would fall
    // outside the image (a sum that drifted past its edge, an area beyond it)
    // is held at the edge: reading there would leave the library's buffer.
    const float x0 = static_cast<float>(m_rect.left) * m_scaleX;
    float yf = static_cast<float>(m_rect.top) * m_scaleY;
    int32_t offsets[kColumnsPerStretch];
    const bool oneStretch = W <= kColumnsPerStretch;
    for (uint32_t y = 0; y < H; ++y) {
        const int64_t ys = std::clamp<int64_t>(static_cast<int64_t>(std::floor(yf)), 0, lastRow);
        const unsigned char* row = src + static_cast<size_t>(ys) * S;
        float xf = x0;
        for (uint32_t first = 0; first < W; first += kColumnsPerStretch) {
            const uint32_t count = std::min(kColumnsPerStretch, W - first);
            if (!oneStretch || y == 0) {
                for (uint32_t i = 0; i < count; ++i) {
                    const int64_t xs = std::clamp<int64_t>(static_cast<int64_t>(std::floor(xf)), 0, lastColumn);
                    offsets[i] = static_cast<int32_t>(xs * static_cast<int64_t>(B));
                    xf += m_scaleX;
                }
            }
            dst = runStretch(fn, dst, row, offsets, count);
        }
        dst += padding;
        yf += m_scaleY;
    }
}

int32_t qvBRAW_Request::HeavyProcessing() {
    if (!m_imageEnabled) return 0;
    twBufferManager* const buffers = m_bufferManager;
    if (buffers && !buffers->m_ownsProcessedBuffer) {
        QV_LOG(QV_LOG_INFO, logPrefix() << "Final Buffer has been filled by BMD directly !");
        buffers->m_finalImageBuffer = buffers->m_processedBuffer;
        return 0;
    }
    if (!buffers || !buffers->m_finalImageBuffer) {
        QV_LOG(QV_LOG_ERR, logPrefix() << "m_finalImageBuffer is nullptr");
        return 0;
    }
    if (m_skipConversion) return 0;
    // A process stage that left no picture gives nothing to read from.
    if (!buffers->m_processedBuffer) {
        QV_LOG(QV_LOG_ERR, logPrefix() << "m_processedBuffer is nullptr");
        return 1;
    }

    const bool timed = g_logger.isLoggingActivated(QV_LOG_INFO);
    qvChrono chrono;
    if (timed) {
        chrono.start();
        QV_LOG(QV_LOG_INFO, logPrefix() << "Final Buffer to Copy ! PXAL: " << m_pxlConvAlgo << " RB:" << m_rowBytes
                                        << " W:" << m_width << " PX: " << toString(m_pixelFormat));
    }

    unsigned char* const src = static_cast<unsigned char*>(buffers->m_processedBuffer);
    unsigned char* const dst = static_cast<unsigned char*>(buffers->m_finalImageBuffer);
    const uint32_t Ws = m_srcWidth;
    const uint32_t Hs = m_srcHeight;
    const ptrdiff_t S = static_cast<ptrdiff_t>(m_bmBytesPerPixel) * Ws;
    const ptrdiff_t R = m_rowBytes;

    switch (m_pxlConvAlgo) {
        case 1:
            if (S == R) {
                CopyMemoryCPUorGPU(dst, src, static_cast<unsigned long>(R) * Hs, true);
            } else {
                for (uint32_t y = 0; y < Hs; ++y) {
                    CopyMemoryCPUorGPU(dst + y * R, src + y * S, static_cast<unsigned long>(S), y == 0);
                }
            }
            break;
        case 2:
            // R G B A rows, flipped, land one byte later than they were, so
            // that R G B fill the A R G B places; every A but the row's first
            // is the previous pixel's source alpha.
            if (Ws > 0) {
                const ptrdiff_t sourceRow = 4 * static_cast<ptrdiff_t>(Ws);
                for (uint32_t y = 0; y < Hs; ++y) {
                    unsigned char* rowDst = dst + y * R;
                    CopyMemoryCPUorGPU(rowDst + 1, src + (Hs - 1 - y) * sourceRow,
                                       static_cast<unsigned long>(sourceRow - 1), y == 0);
                    rowDst[0] = 255;
                }
            }
            break;
        case 4: {
            // Rows are taken as tight: the stride isn't consulted for the
            // walk. With a buffer addressed from its last row, though, the
            // walk starts at its lowest row as the row walker does: forward
            // from the address given it would run past the end of the frame.
            unsigned char* start = dst;
            if (R < 0 && m_height > 0) start -= static_cast<ptrdiff_t>(m_height - 1) * -R;
            rulePixelsOpaque(start, src, static_cast<size_t>(Ws) * Hs);
            break;
        }
        case 5:
            planar16ToInterleaved<1, 2, 3, 0>(dst, src, Ws, Hs, m_rowBytes);
            break;
        case 6:
            planar16ToInterleaved<2, 1, 0, 3>(dst, src, Ws, Hs, m_rowBytes);
            break;
        case 7:
            HeavyProcessing_Main<float, false, true>(1.0f, &copierA, 4);
            break;
        case 9:
            HeavyProcessing_Downscale<unsigned char>(&pixelA);
            break;
        case 10:
            HeavyProcessing_Downscale<unsigned short>(&pixelB);
            break;
        case 11:
            HeavyProcessing_Downscale<float>(&pixelC);
            break;
        case 12:
            HeavyProcessing_Main<unsigned char, true, true>(255, &copierB, 4);
            break;
        case 13:
            HeavyProcessing_Main<unsigned short, true, false>(kAlpha16, &copierC, 4);
            break;
        case 14:
            HeavyProcessing_Main<float, true, false>(1.0f, &copierD, 4);
            break;
        case 15:
            HeavyProcessing_Downscale<unsigned char>(&pixelD);
            break;
        case 16:
            HeavyProcessing_Downscale<unsigned short>(&pixelE);
            break;
        case 17:
            HeavyProcessing_Downscale<float>(&pixelF);
            break;
        case 18:
        case 19:
        case 20:
            // Only a GPU pipeline's direct output serves these.
            QV_LOG(QV_LOG_ERR, logPrefix() << "This m_pxlConvAlgo should be only GPU : " << m_pxlConvAlgo);
            return 1;
        case 21:
            // A padded row gets nothing at all, and the frame counts as done.
            if (S == R) CopyMemoryCPUorGPU(dst, src, static_cast<unsigned long>(R) * Hs, true);
            break;
        case 22:
            HeavyProcessing_Downscale<unsigned char>(&pixelD);
            break;
        default:
            // 3, 8 and 23 among them: 23 is only ever served by direct fill.
            QV_LOG(QV_LOG_ERR, logPrefix() << "Pixel Format / Conversion not implemented !");
            return 1;
    }

    if (timed) QV_LOG(QV_LOG_INFO, logPrefix() << "ProcessImage" << " dt " << chrono.getLatestSpanMicro(false) << " us");
    return 0;
}

template void qvBRAW_Request::HeavyProcessing_Main<float, false, true>(const float&, qvBRAW_RowCopier, uint32_t);
template void qvBRAW_Request::HeavyProcessing_Main<unsigned char, true, true>(const unsigned char&, qvBRAW_RowCopier,
                                                                              uint32_t);
template void qvBRAW_Request::HeavyProcessing_Main<unsigned short, true, false>(const unsigned short&,
                                                                                qvBRAW_RowCopier, uint32_t);
template void qvBRAW_Request::HeavyProcessing_Main<float, true, false>(const float&, qvBRAW_RowCopier, uint32_t);
template void qvBRAW_Request::HeavyProcessing_Downscale<unsigned char>(qvBRAW_PixelFunction);
template void qvBRAW_Request::HeavyProcessing_Downscale<unsigned short>(qvBRAW_PixelFunction);
template void qvBRAW_Request::HeavyProcessing_Downscale<float>(qvBRAW_PixelFunction);
