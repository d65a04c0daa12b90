#pragma once
// What the pixel conversion tests share: a request whose buffers are plain test
// memory, and a host frame with guard bytes around it, addressed the way a
// host addresses it (from its last row in memory when the stride is negative).

#include "Manager/Request.h"
#include "Manager/twBufferManager.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
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

}  // namespace twtest
