#include "Library/RefFaultHooks.h"

#include <chrono>
#include <thread>

namespace twref {

RefFaultHooks::RefFaultHooks(std::vector<RefFault> faults, std::vector<RefDelay> delays)
    : m_delays(std::move(delays))
{
    for (RefFault& fault : faults)
        m_faults.push_back(Counted{std::move(fault), 0});
}

HRESULT RefFaultHooks::enter(const char* method, int64_t frame, uint32_t attribute, const std::string& key)
{
    if (empty())
        return S_OK;
    delay(method, frame);
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Counted& entry : m_faults) {
        if (!refFaultMatches(entry.fault, method, frame, attribute, key))
            continue;
        const uint32_t index = entry.matched++;
        if (index < entry.fault.skip)
            continue;
        if (entry.fault.count != 0 && index >= entry.fault.skip + entry.fault.count)
            continue;
        return entry.fault.result;
    }
    return S_OK;
}

void RefFaultHooks::delay(const char* method, int64_t frame)
{
    uint32_t milliseconds = 0;
    for (const RefDelay& d : m_delays)
        if (refDelayMatches(d, method, frame))
            milliseconds += d.milliseconds;
    if (milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

HRESULT RefHooks::enter(const char* method, int64_t frame, uint32_t attribute, const std::string& key) const
{
    if (clip) {
        const HRESULT hr = clip->enter(method, frame, attribute, key);
        if (hr != S_OK)
            return hr;
    }
    return codec ? codec->enter(method, frame, attribute, key) : S_OK;
}

void RefHooks::delay(const char* method, int64_t frame) const
{
    if (clip)
        clip->delay(method, frame);
    if (codec)
        codec->delay(method, frame);
}

}  // namespace twref
