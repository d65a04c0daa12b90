#pragma once
// What the pixel conversion tests share: a request whose buffers are plain test
// memory, a host frame with guard bytes around it, addressed the way a host
// addresses it (from its last row in memory when the stride is negative), and
// the facts of each conversion pass.

#include "Manager/Request.h"
#include "Manager/twBufferManager.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace twtest {

// A request on the CPU path with a buffer manager that owns no library
// resource: its processed buffer is the test's memory.
class ConversionRequest : public qvBRAW_Request {
public:
    ConversionRequest() : qvBRAW_Request(true, nullptr) {
        m_finished = true;
        m_bufferManager = new twBufferManager(nullptr, nullptr, nullptr, blackmagicRawResourceTypeBufferCPU, false,
                                              nullptr, nullptr);
    }
    void OnCancelled() override {}

    void setBuffers(const void* processed, void* finalImage) {
        m_bufferManager->m_processedBuffer = const_cast<void*>(processed);
        m_bufferManager->m_finalImageBuffer = finalImage;
    }
};

// `height` rows of |rowBytes| bytes between two guards. The host's address is
// the first row's; with a negative stride the first row is the highest one.
class HostFrame {
public:
    static constexpr size_t kGuard = 64;
    static constexpr uint8_t kFill = 0xCD;

    HostFrame(int32_t rowBytes, uint32_t height)
        : m_rowBytes(rowBytes),
          m_height(height),
          m_bytes(kGuard * 2 + static_cast<size_t>(std::abs(rowBytes)) * height, kFill) {}

    unsigned char* address() {
        unsigned char* lowest = m_bytes.data() + kGuard;
        if (m_rowBytes < 0 && m_height > 0) return lowest + static_cast<size_t>(-m_rowBytes) * (m_height - 1);
        return lowest;
    }
    // The lowest row in memory.
    unsigned char* lowest() { return m_bytes.data() + kGuard; }
    const std::vector<uint8_t>& bytes() const { return m_bytes; }

private:
    int32_t m_rowBytes;
    uint32_t m_height;
    std::vector<uint8_t> m_bytes;
};

enum class Element { U8, U16, F32 };

struct Facts {
    int algorithm;
    uint8_t srcBytes;   // per source pixel
    uint32_t dstBytes;  // per host pixel
    Element element;
    bool downscale;
};

// Every pass that converts on the CPU, with the sizes of its pixels and the
// kind of its elements.
inline const Facts kFacts[] = {
    {1, 4, 4, Element::U8, false},    {2, 4, 4, Element::U8, false},    {4, 8, 8, Element::U16, false},
    {5, 6, 8, Element::U16, false},   {6, 6, 8, Element::U16, false},   {7, 16, 16, Element::F32, false},
    {12, 4, 4, Element::U8, false},   {13, 8, 8, Element::U16, false},  {14, 12, 16, Element::F32, false},
    {21, 4, 4, Element::U8, false},   {9, 4, 4, Element::U8, true},     {10, 8, 8, Element::U16, true},
    {11, 12, 16, Element::F32, true}, {15, 4, 4, Element::U8, true},    {16, 8, 8, Element::U16, true},
    {17, 16, 16, Element::F32, true}, {22, 4, 4, Element::U8, true},
};

// The algorithms of the row walker, which reads an area and writes W x H.
inline bool walksRows(const Facts& f) {
    return f.algorithm == 7 || f.algorithm == 12 || f.algorithm == 13 || f.algorithm == 14;
}

inline const Facts& factsOf(int algorithm) {
    for (const Facts& f : kFacts) {
        if (f.algorithm == algorithm) return f;
    }
    throw std::logic_error("no such algorithm");
}

// A request set up for `algorithm` over a source of `Ws` x `Hs` into a frame
// of the same size.
inline void prepare(ConversionRequest& request, int algorithm, uint32_t Ws, uint32_t Hs, int32_t rowBytes) {
    request.m_pxlConvAlgo = algorithm;
    request.m_bmBytesPerPixel = factsOf(algorithm).srcBytes;
    request.m_srcWidth = request.m_width = Ws;
    request.m_srcHeight = request.m_height = Hs;
    request.m_rect = {0, 0, static_cast<int32_t>(Ws), static_cast<int32_t>(Hs)};
    request.m_rowBytes = rowBytes;
}

}  // namespace twtest
