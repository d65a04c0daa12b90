#include "SourceSettingsSupport.h"

#include <cstring>

using namespace twtest;

EffectExchange::EffectExchange(const EffectRecord& record) : m_record(initdata::kSize / 8, 0) {
    Bytes bytes(initdata::kSize, 0);
    putU8(bytes, initdata::kReloadOptionsCommand, record.reloadOptions);
    putU8(bytes, initdata::kReloadSidecarCommand, record.reloadSidecar);
    putU8(bytes, initdata::kAdobeTimecodeSet, record.adobeTimecodeSet);
    putU32(bytes, initdata::kAdobeTimecode, record.adobeTimecode);
    std::memcpy(m_record.data(), bytes.data(), bytes.size());
    const void* pointer = m_record.data();
    std::memcpy(m_slot, &pointer, sizeof(pointer));
}

csSDK_int32 EffectExchange::send(twSimFile& file, csSDK_int32 size) { return file.sourceSettingsCommand(m_slot, size); }

Bytes EffectExchange::effectBytes() const {
    const auto* first = reinterpret_cast<const uint8_t*>(m_record.data());
    return Bytes(first, first + initdata::kSize);
}

bool EffectExchange::answered() const {
    const void* pointer = nullptr;
    std::memcpy(&pointer, m_slot, sizeof(pointer));
    return pointer != nullptr && pointer != m_record.data();
}

Bytes EffectExchange::answerBytes() const {
    const uint8_t* first = nullptr;
    std::memcpy(&first, m_slot, sizeof(first));
    return first ? Bytes(first, first + initdata::kSize) : Bytes();
}
