#pragma once
// The source settings effect's side of imPerformSourceSettingsCommand, as the
// tests play it: a record of raw bytes laid out by the wire offsets, handed
// over through a pointer to it, and the answer read back through that pointer.

#include "RawBytes.h"
#include "SettingsInitDataLayout.h"
#include "twSimFile.h"

#include <cstdint>
#include <vector>

struct EffectRecord {
    uint8_t reloadOptions = 0;
    uint8_t reloadSidecar = 0;
    uint8_t adobeTimecodeSet = 0;
    uint32_t adobeTimecode = 0xFFFFFFFF;
};

class EffectExchange {
public:
    explicit EffectExchange(const EffectRecord& record = EffectRecord());

    // imPerformSourceSettingsCommand with `size` as the record's size.
    csSDK_int32 send(twSimFile& file, csSDK_int32 size = static_cast<csSDK_int32>(twtest::initdata::kSize));

    // The effect's own record, as the importer left it.
    twtest::Bytes effectBytes() const;
    // True when the importer put its answer in the effect's pointer.
    bool answered() const;
    // The record the effect's pointer now leads to.
    twtest::Bytes answerBytes() const;

    char* slot() { return m_slot; }

private:
    std::vector<uint64_t> m_record;
    alignas(8) char m_slot[8];
};
