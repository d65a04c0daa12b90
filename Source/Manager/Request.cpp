#include "Manager/Request.h"

#include <sstream>

std::atomic<uint64_t> qvBRAW_Request::m_uniqueIDCounter{0};

qvBRAW_Request::qvBRAW_Request(bool BMInit, qvParallelWorker*)
    : m_BMInit(BMInit), m_uniqueID(m_uniqueIDCounter.fetch_add(1)) {}

qvBRAW_Request::~qvBRAW_Request() = default;

void qvBRAW_Request::Cancel() { m_cancelled = true; }

bool qvBRAW_Request::queueID_match(uint64_t a, uint64_t b) { return a == b || a == 0xFFFFFFFE || b == 0xFFFFFFFE; }

qvUtf8String qvBRAW_Request::logPrefix() const {
    std::ostringstream text;
    text << "[Q" << m_queueID << "C" << m_clipID << "#" << m_frame << "I" << m_uniqueID << "] ";
    return text.str();
}
