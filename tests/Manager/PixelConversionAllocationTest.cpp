// No conversion pass takes memory: every allocation of this program is
// counted, and each pass runs with the count on. Its own program, built
// without ThreadSanitizer, whose runtime owns the allocation functions.

#include "ConversionTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

// Every allocation of the test program goes through here, so that a pass can
// be shown to take none.
namespace {
thread_local bool t_countAllocations = false;
std::atomic<size_t> g_allocations{0};
}  // namespace

void* operator new(std::size_t size) {
    if (t_countAllocations) ++g_allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
// Not inlined: the compiler would then pair the free with a new expression.
__attribute__((noinline)) void operator delete(void* p) noexcept { std::free(p); }
__attribute__((noinline)) void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using twtest::ConversionRequest;
using twtest::Facts;
using twtest::HostFrame;
using twtest::kFacts;
using twtest::prepare;

TEST(PixelConversionAllocations, NoPassTakesMemory) {
    // The count sees what is taken.
    g_allocations = 0;
    t_countAllocations = true;
    delete new std::string(100, 'x');
    t_countAllocations = false;
    ASSERT_GT(g_allocations.load(), 0u);

    const uint32_t W = 33, H = 5;
    const std::vector<uint8_t> source(static_cast<size_t>(W + 4) * (H + 4) * 16 * 2, 3);
    for (const Facts& f : kFacts) {
        for (int32_t sign : {1, -1}) {
            const int32_t rowBytes = sign * static_cast<int32_t>(W * f.dstBytes + 8);
            HostFrame frame(rowBytes, H);
            ConversionRequest request;
            prepare(request, f.algorithm, W, H, rowBytes);
            request.m_scaleX = request.m_scaleY = 1.25f;
            request.setBuffers(source.data(), frame.address());
            g_allocations = 0;
            t_countAllocations = true;
            const int32_t result = request.HeavyProcessing();
            t_countAllocations = false;
            EXPECT_EQ(result, 0);
            EXPECT_EQ(g_allocations.load(), 0u) << "algorithm " << f.algorithm;
        }
    }
}

}  // namespace
