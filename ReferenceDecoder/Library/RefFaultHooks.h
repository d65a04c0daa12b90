#pragma once
// Fault injection and delays of one clip (from its description) or of the
// codec level (from the library's options file). Every method of the library
// asks its hooks first: a matching delay holds the call, a matching fault
// makes it return the fault's result.

#include "Format/RefClipModel.h"

#include <BlackmagicRawAPI.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace twref {

class RefFaultHooks {
public:
    RefFaultHooks(std::vector<RefFault> faults, std::vector<RefDelay> delays);

    // S_OK, or the result of the first matching fault (its skip/count
    // counting advances). Sleeps first when a delay matches.
    HRESULT enter(const char* method, int64_t frame = -1, uint32_t attribute = 0,
                  const std::string& key = std::string());
    // Only the delay part (job stages apply their fault separately).
    void delay(const char* method, int64_t frame);
    bool empty() const { return m_faults.empty() && m_delays.empty(); }

private:
    struct Counted {
        RefFault fault;
        uint32_t matched = 0;
    };
    std::mutex m_mutex;
    std::vector<Counted> m_faults;
    std::vector<RefDelay> m_delays;
};

// The hooks an object consults: its clip's, then the codec level's. Either may be null.
struct RefHooks {
    std::shared_ptr<RefFaultHooks> clip;
    std::shared_ptr<RefFaultHooks> codec;

    HRESULT enter(const char* method, int64_t frame = -1, uint32_t attribute = 0,
                  const std::string& key = std::string()) const;
    void delay(const char* method, int64_t frame) const;
};

}  // namespace twref
