// Every conversion pass against a reference written here pixel by pixel from
// the rules of each algorithm: odd widths, one and several rows, tight, padded
// and negative strides, areas away from the origin, 16-bit edge values and
// floats outside 0..1 (NaN and infinities among them), compared byte for byte
// over the whole host frame and the guards around it. Then the deliberate
// quirks one by one.

#include "ConversionTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using twtest::ConversionRequest;
using twtest::Element;
using twtest::Facts;
using twtest::factsOf;
using twtest::HostFrame;
using twtest::kFacts;
using twtest::prepare;
using twtest::walksRows;

// --- The reference rules ---

uint16_t rule16(uint16_t v) {
    if (v == 65535) return 32768;
    return static_cast<uint16_t>(v / 2);
}

template <typename T>
T get(const uint8_t* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
void put(uint8_t* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

float floatOf(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

// Random elements salted with the values where rules go wrong: 16-bit ends
// and neighbours, floats below 0 and above 1, NaNs with payloads, infinities.
std::vector<uint8_t> makeSource(Element element, size_t bytes, uint32_t seed) {
    std::vector<uint8_t> out(bytes);
    std::mt19937 random(seed);
    if (element == Element::U8) {
        for (uint8_t& b : out) b = static_cast<uint8_t>(random());
    } else if (element == Element::U16) {
        static const uint16_t edges[] = {0, 1, 2, 32767, 32768, 65533, 65534, 65535};
        for (size_t i = 0; i + 2 <= bytes; i += 2) {
            const uint32_t r = random();
            put<uint16_t>(&out[i], r % 3 == 0 ? edges[(r >> 8) % 8] : static_cast<uint16_t>(r >> 12));
        }
    } else {
        static const uint32_t specials[] = {0x7FC00001u, 0xFFC12345u, 0x7F800000u, 0xFF800000u,
                                            0x80000000u, 0x00000001u, 0x3F800001u, 0x477FFF80u};
        std::uniform_real_distribution<float> values(-2.0f, 3.0f);
        for (size_t i = 0; i + 4 <= bytes; i += 4) {
            const uint32_t r = random();
            put<float>(&out[i], r % 4 == 0 ? floatOf(specials[(r >> 8) % 8]) : values(random));
        }
    }
    return out;
}

struct Geometry {
    uint32_t srcWidth = 0, srcHeight = 0;
    int32_t rowBytes = 0;
    QvRect rect;
    uint32_t width = 0, height = 0;
    float scaleX = 1.0f, scaleY = 1.0f;

    std::string describe() const {
        std::ostringstream text;
        text << "src " << srcWidth << "x" << srcHeight << " R " << rowBytes << " rect " << rect.left << ","
             << rect.top << "," << rect.right << "," << rect.bottom << " out " << width << "x" << height << " scale "
             << scaleX << "," << scaleY;
        return text.str();
    }
};

// The first row's address moved to the lowest row, for the passes that walk a
// buffer addressed from its last row upwards.
uint8_t* lowestRow(uint8_t* first, int32_t rowBytes, uint32_t height) {
    if (rowBytes >= 0 || height == 0) return first;
    return first - static_cast<size_t>(-rowBytes) * (height - 1);
}

// What algorithm `f` must leave in the host frame whose first row is at `a`.
void reference(const Facts& f, const Geometry& g, const std::vector<uint8_t>& source, uint8_t* a) {
    const uint8_t* src = source.data();
    const uint32_t Ws = g.srcWidth, Hs = g.srcHeight, W = g.width, H = g.height;
    const int64_t R = g.rowBytes;
    const size_t B = f.srcBytes;
    auto srcPixel = [&](int64_t row, int64_t column) { return src + (row * Ws + column) * B; };

    switch (f.algorithm) {
        case 1:
            for (uint32_t y = 0; y < Hs; ++y)
                for (uint32_t x = 0; x < Ws; ++x) std::memcpy(a + y * R + 4 * x, srcPixel(y, x), 4);
            return;
        case 21:
            if (static_cast<int64_t>(4 * Ws) != R) return;
            for (uint32_t y = 0; y < Hs; ++y)
                for (uint32_t x = 0; x < Ws; ++x) std::memcpy(a + y * R + 4 * x, srcPixel(y, x), 4);
            return;
        case 2:
            for (uint32_t y = 0; y < Hs; ++y) {
                for (uint32_t x = 0; x < Ws; ++x) {
                    uint8_t* q = a + y * R + 4 * x;
                    const uint8_t* cur = srcPixel(Hs - 1 - y, x);
                    q[0] = x == 0 ? 255 : srcPixel(Hs - 1 - y, x - 1)[3];
                    q[1] = cur[0];
                    q[2] = cur[1];
                    q[3] = cur[2];
                }
            }
            return;
        case 4: {
            uint8_t* base = lowestRow(a, g.rowBytes, H);
            for (size_t p = 0; p < static_cast<size_t>(Ws) * Hs; ++p) {
                for (int c = 0; c < 3; ++c) put<uint16_t>(base + 8 * p + 2 * c, rule16(get<uint16_t>(src + 8 * p + 2 * c)));
                put<uint16_t>(base + 8 * p + 6, 32768);
            }
            return;
        }
        case 5:
        case 6: {
            const size_t plane = static_cast<size_t>(Ws) * Hs * 2;
            for (uint32_t y = 0; y < Hs; ++y) {
                for (uint32_t x = 0; x < Ws; ++x) {
                    uint8_t* q = a + (static_cast<int64_t>(Hs) - 1 - y) * R + 8 * x;
                    const size_t at = (static_cast<size_t>(y) * Ws + x) * 2;
                    const uint16_t c0 = rule16(get<uint16_t>(src + at));
                    const uint16_t c1 = rule16(get<uint16_t>(src + plane + at));
                    const uint16_t c2 = rule16(get<uint16_t>(src + 2 * plane + at));
                    const uint16_t pixel5[4] = {32768, c0, c1, c2};
                    const uint16_t pixel6[4] = {c2, c1, c0, 32768};
                    std::memcpy(q, f.algorithm == 5 ? pixel5 : pixel6, 8);
                }
            }
            return;
        }
        default:
            break;
    }

    const int64_t Rp = R < 0 ? -R : R;
    uint8_t* base = lowestRow(a, g.rowBytes, H);
    if (!f.downscale) {
        const bool oneRun = static_cast<int64_t>(B * Ws) == Rp && g.rect.left == 0 &&
                            g.rect.right == static_cast<int32_t>(Ws);
        for (uint32_t y = 0; y < H; ++y) {
            for (uint32_t x = 0; x < W; ++x) {
                const size_t flat = static_cast<size_t>(y) * W + x;
                uint8_t* q = oneRun ? base + flat * f.dstBytes : base + y * Rp + x * f.dstBytes;
                const uint8_t* cur = srcPixel(g.rect.top + y, g.rect.left + x);
                // In one run the pixel before is the one before in memory,
                // which is the end of the row above at a row's start.
                const bool first = oneRun ? flat == 0 : x == 0;
                const uint8_t* before = first ? nullptr : cur - B;
                if (f.algorithm == 7) {
                    std::memcpy(q, cur, 16);
                } else if (f.algorithm == 12) {
                    q[0] = first ? 255 : before[3];
                    std::memcpy(q + 1, cur, 3);
                } else if (f.algorithm == 13) {
                    put<uint16_t>(q, first ? 32768 : rule16(get<uint16_t>(before + 6)));
                    for (int c = 0; c < 3; ++c) put<uint16_t>(q + 2 + 2 * c, rule16(get<uint16_t>(cur + 2 * c)));
                } else if (f.algorithm == 14) {
                    put<float>(q, 1.0f);
                    std::memcpy(q + 4, cur, 12);
                }
            }
        }
        return;
    }

    if (g.rect.bottom == 0 && g.rect.right == 0) return;
    float yf = static_cast<float>(g.rect.top) * g.scaleY;
    for (uint32_t y = 0; y < H; ++y) {
        const int64_t ys = static_cast<int64_t>(std::floor(yf));
        float xf = static_cast<float>(g.rect.left) * g.scaleX;
        for (uint32_t x = 0; x < W; ++x) {
            const int64_t xs = static_cast<int64_t>(std::floor(xf));
            const uint8_t* cur = srcPixel(ys, xs);
            uint8_t* q = base + y * Rp + x * f.dstBytes;
            switch (f.algorithm) {
                case 9:
                    q[0] = 255;
                    std::memcpy(q + 1, cur, 3);
                    break;
                case 10:
                    put<uint16_t>(q, 32768);
                    for (int c = 0; c < 3; ++c) put<uint16_t>(q + 2 + 2 * c, rule16(get<uint16_t>(cur + 2 * c)));
                    break;
                case 11:
                    put<float>(q, 1.0f);
                    std::memcpy(q + 4, cur, 12);
                    break;
                case 16:
                    for (int c = 0; c < 3; ++c) put<uint16_t>(q + 2 * c, rule16(get<uint16_t>(cur + 2 * c)));
                    put<uint16_t>(q + 6, 32768);
                    break;
                default:  // 15, 17, 22: the pixel as it is
                    std::memcpy(q, cur, f.dstBytes);
                    break;
            }
            xf += g.scaleX;
        }
        yf += g.scaleY;
    }
}

// Runs algorithm `f` over `g` and over the reference; the two frames, guards
// included, must be equal to the byte.
void expectMatchesReference(const Facts& f, const Geometry& g, uint32_t seed) {
    SCOPED_TRACE("algorithm " + std::to_string(f.algorithm) + " " + g.describe());
    const size_t sourceBytes = static_cast<size_t>(g.srcWidth) * g.srcHeight * f.srcBytes;
    const std::vector<uint8_t> source = makeSource(f.element, sourceBytes, seed);
    const uint32_t frameRows = f.downscale || walksRows(f) ? g.height : g.srcHeight;
    HostFrame actual(g.rowBytes, frameRows);
    HostFrame expected(g.rowBytes, frameRows);

    ConversionRequest request;
    request.m_pxlConvAlgo = f.algorithm;
    request.m_bmBytesPerPixel = f.srcBytes;
    request.m_srcWidth = g.srcWidth;
    request.m_srcHeight = g.srcHeight;
    request.m_rowBytes = g.rowBytes;
    request.m_rect = g.rect;
    request.m_width = g.width;
    request.m_height = g.height;
    request.m_scaleX = g.scaleX;
    request.m_scaleY = g.scaleY;
    request.setBuffers(source.data(), actual.address());
    ASSERT_EQ(request.HeavyProcessing(), 0);

    reference(f, g, source, expected.address());
    ASSERT_EQ(actual.bytes().size(), expected.bytes().size());
    size_t firstDifference = 0;
    while (firstDifference < actual.bytes().size() &&
           actual.bytes()[firstDifference] == expected.bytes()[firstDifference])
        ++firstDifference;
    EXPECT_EQ(firstDifference, actual.bytes().size()) << "first different byte of the frame with its guards";
}

enum class Rows { Tight, Padded, NegativeTight, NegativePadded };
const Rows kRows[] = {Rows::Tight, Rows::Padded, Rows::NegativeTight, Rows::NegativePadded};

int32_t rowBytesOf(Rows rows, uint32_t width, uint32_t bytesPerPixel) {
    const int32_t tight = static_cast<int32_t>(width * bytesPerPixel);
    switch (rows) {
        case Rows::Tight: return tight;
        case Rows::Padded: return tight + 12;
        case Rows::NegativeTight: return -tight;
        case Rows::NegativePadded: return -(tight + 12);
    }
    return tight;
}

const uint32_t kWidths[] = {1, 3, 33, 2864};
const uint32_t kHeights[] = {1, 7};

class PixelConversion : public ::testing::TestWithParam<int> {};

TEST_P(PixelConversion, MatchesTheReferenceForEveryShapeOfFrame) {
    const Facts& f = factsOf(GetParam());
    uint32_t seed = 1;
    for (uint32_t width : kWidths) {
        for (uint32_t height : kHeights) {
            for (Rows rows : kRows) {
                if (f.downscale) {
                    const std::pair<float, float> scales[] = {{1.0f, 1.0f}, {1.5f, 2.0f}, {1.37f, 1.73f}};
                    for (const auto& [sx, sy] : scales) {
                        for (int offset : {0, 1}) {
                            Geometry g;
                            g.rect = {5 * offset, 3 * offset, 5 * offset + static_cast<int32_t>(width),
                                      3 * offset + static_cast<int32_t>(height)};
                            g.width = width;
                            g.height = height;
                            g.scaleX = sx;
                            g.scaleY = sy;
                            g.srcWidth = static_cast<uint32_t>(std::ceil(g.rect.right * sx)) + 2;
                            g.srcHeight = static_cast<uint32_t>(std::ceil(g.rect.bottom * sy)) + 2;
                            g.rowBytes = rowBytesOf(rows, width, f.dstBytes);
                            expectMatchesReference(f, g, seed++);
                        }
                    }
                } else if (walksRows(f)) {
                    // The row walker: the whole image, the image below its top
                    // rows (still one run when tight), and an inner area.
                    for (int area = 0; area < 3; ++area) {
                        Geometry g;
                        g.width = width;
                        g.height = height;
                        const int32_t left = area == 2 ? 2 : 0;
                        const int32_t top = area == 0 ? 0 : area == 1 ? 2 : 1;
                        g.rect = {left, top, left + static_cast<int32_t>(width), top + static_cast<int32_t>(height)};
                        g.srcWidth = width + (area == 2 ? 5 : 0);
                        g.srcHeight = height + static_cast<uint32_t>(top) + (area == 2 ? 2 : 0);
                        g.rowBytes = rowBytesOf(rows, width, f.dstBytes);
                        expectMatchesReference(f, g, seed++);
                    }
                } else {
                    // The whole-frame passes read the image's own size.
                    Geometry g;
                    g.srcWidth = g.width = width;
                    g.srcHeight = g.height = height;
                    g.rect = {0, 0, static_cast<int32_t>(width), static_cast<int32_t>(height)};
                    g.rowBytes = rowBytesOf(rows, width, f.dstBytes);
                    expectMatchesReference(f, g, seed++);
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, PixelConversion,
                         ::testing::Values(1, 2, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17, 21, 22),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return "Algorithm" + std::to_string(info.param);
                         });

TEST(PixelConversionQuirks, Algorithm2FlipsAndShiftsByOneByteWith255OnlyAtEachRowsStart) {
    // Two rows of two R G B A pixels; source alphas are never 255.
    const std::vector<uint8_t> source = {10, 11, 12, 13, 20, 21, 22, 23,   // row 0
                                         30, 31, 32, 33, 40, 41, 42, 43};  // row 1
    HostFrame frame(8, 2);
    ConversionRequest request;
    prepare(request, 2, 2, 2, 8);
    request.setBuffers(source.data(), frame.address());
    ASSERT_EQ(request.HeavyProcessing(), 0);
    const std::vector<uint8_t> rows(frame.address(), frame.address() + 16);
    EXPECT_EQ(rows, (std::vector<uint8_t>{255, 30, 31, 32, 33, 40, 41, 42,    // from source row 1
                                          255, 10, 11, 12, 13, 20, 21, 22}));  // from source row 0
}

TEST(PixelConversionQuirks, Algorithm21LeavesAPaddedFrameUntouchedAndCountsItDone) {
    const std::vector<uint8_t> source(3 * 2 * 4, 7);
    for (int32_t rowBytes : {3 * 4 + 4, -(3 * 4)}) {
        HostFrame frame(rowBytes, 2);
        const std::vector<uint8_t> before = frame.bytes();
        ConversionRequest request;
        prepare(request, 21, 3, 2, rowBytes);
        request.setBuffers(source.data(), frame.address());
        EXPECT_EQ(request.HeavyProcessing(), 0);
        EXPECT_EQ(frame.bytes(), before) << rowBytes;
    }
}

TEST(PixelConversionQuirks, Algorithm4WritesTightRowsWhateverTheStrideAndStaysInsideAFrameAddressedFromItsEnd) {
    const uint16_t pixels[2][4] = {{0, 1, 65534, 9}, {65535, 2, 32768, 65535}};
    const uint16_t converted[2][4] = {{0, 0, 32767, 32768}, {32768, 1, 16384, 32768}};
    std::vector<uint8_t> source(sizeof pixels);
    std::memcpy(source.data(), pixels, sizeof pixels);

    // Padded: the second pixel row lands right behind the first, not a stride later.
    HostFrame padded(8 + 24, 2);
    ConversionRequest request;
    prepare(request, 4, 1, 2, 8 + 24);
    request.setBuffers(source.data(), padded.address());
    ASSERT_EQ(request.HeavyProcessing(), 0);
    EXPECT_EQ(std::memcmp(padded.address(), converted, sizeof converted), 0);
    EXPECT_EQ(padded.address()[32], HostFrame::kFill);

    // Negative: written from the frame's lowest row up, nothing past its end.
    HostFrame negative(-8, 2);
    ConversionRequest fromEnd;
    prepare(fromEnd, 4, 1, 2, -8);
    fromEnd.setBuffers(source.data(), negative.address());
    ASSERT_EQ(fromEnd.HeavyProcessing(), 0);
    EXPECT_EQ(std::memcmp(negative.lowest(), converted, sizeof converted), 0);
    for (size_t i = 0; i < HostFrame::kGuard; ++i) {
        EXPECT_EQ(negative.bytes()[i], HostFrame::kFill);
        EXPECT_EQ(negative.bytes()[HostFrame::kGuard + 16 + i], HostFrame::kFill);
    }
    EXPECT_EQ(fromEnd.m_rowBytes, -8);
}

TEST(PixelConversionQuirks, TheRowWalkerAndTheDownscaleKeepTheStridePositiveAfterwardsTheRowCopiesDoNot) {
    const std::vector<uint8_t> source(4 * 3 * 16, 1);
    for (int algorithm : {7, 12, 13, 14, 9, 10, 11, 15, 16, 17, 22}) {
        const Facts& f = factsOf(algorithm);
        const int32_t rowBytes = -static_cast<int32_t>(3 * f.dstBytes);
        HostFrame frame(rowBytes, 2);
        ConversionRequest request;
        prepare(request, algorithm, 3, 2, rowBytes);
        request.setBuffers(source.data(), frame.address());
        ASSERT_EQ(request.HeavyProcessing(), 0);
        EXPECT_EQ(request.m_rowBytes, -rowBytes) << algorithm;
    }
    for (int algorithm : {1, 2, 5, 6}) {
        const int32_t rowBytes = -static_cast<int32_t>(3 * factsOf(algorithm).dstBytes);
        HostFrame frame(rowBytes, 2);
        ConversionRequest request;
        prepare(request, algorithm, 3, 2, rowBytes);
        request.setBuffers(source.data(), frame.address());
        ASSERT_EQ(request.HeavyProcessing(), 0);
        EXPECT_EQ(request.m_rowBytes, rowBytes) << algorithm;
    }
}

// A source whose every pixel holds its own column number, so that a host
// pixel tells which column was sampled.
std::vector<uint8_t> numberedColumns(uint32_t Ws, uint32_t Hs) {
    std::vector<uint8_t> source(static_cast<size_t>(Ws) * Hs * 4);
    for (uint32_t y = 0; y < Hs; ++y)
        for (uint32_t x = 0; x < Ws; ++x) put<uint32_t>(&source[(static_cast<size_t>(y) * Ws + x) * 4], x + 1000 * y);
    return source;
}

TEST(PixelConversionQuirks, DownscaleColumnsFollowTheRunningSingleSumWithItsDrift) {
    const float scale = 1.1f;
    const uint32_t W = 2864;
    // The columns where the running sum and the product part ways.
    std::vector<uint32_t> drifted;
    float running = 0.0f;
    for (uint32_t x = 0; x < W; ++x) {
        if (std::floor(running) != std::floor(static_cast<double>(x) * static_cast<double>(scale)) &&
            std::floor(running) != std::floor(static_cast<float>(x) * scale))
            drifted.push_back(x);
        running += scale;
    }
    ASSERT_FALSE(drifted.empty());

    const uint32_t Ws = static_cast<uint32_t>(W * scale) + 4;
    const std::vector<uint8_t> source = numberedColumns(Ws, 1);
    HostFrame frame(static_cast<int32_t>(W * 4), 1);
    ConversionRequest request;
    prepare(request, 15, Ws, 1, static_cast<int32_t>(W * 4));
    request.m_width = W;
    request.m_rect = {0, 0, static_cast<int32_t>(W), 1};
    request.m_scaleX = scale;
    request.setBuffers(source.data(), frame.address());
    ASSERT_EQ(request.HeavyProcessing(), 0);

    running = 0.0f;
    for (uint32_t x = 0; x < W; ++x) {
        ASSERT_EQ(get<uint32_t>(frame.address() + 4 * x), static_cast<uint32_t>(std::floor(running))) << x;
        running += scale;
    }
    for (uint32_t x : drifted) {
        EXPECT_NE(get<uint32_t>(frame.address() + 4 * x),
                  static_cast<uint32_t>(std::floor(static_cast<double>(x) * static_cast<double>(scale))));
    }
}

TEST(PixelConversionQuirks, DownscaleSamplesBeyondTheImageAreHeldAtItsEdge) {
    // Columns 0, 2, 4, 6 and rows 0, 2 of a 5 x 2 image: column 6 and row 2
    // are outside it.
    const std::vector<uint8_t> source = numberedColumns(5, 2);
    HostFrame frame(16, 2);
    ConversionRequest request;
    prepare(request, 15, 5, 2, 16);
    request.m_width = 4;
    request.m_height = 2;
    request.m_rect = {0, 0, 4, 2};
    request.m_scaleX = 2.0f;
    request.m_scaleY = 2.0f;
    request.setBuffers(source.data(), frame.address());
    ASSERT_EQ(request.HeavyProcessing(), 0);
    const uint32_t expected[8] = {0, 2, 4, 4, 1000, 1002, 1004, 1004};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(get<uint32_t>(frame.address() + 4 * i), expected[i]) << i;
}

}  // namespace
