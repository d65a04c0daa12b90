#pragma once
// The settings data of a clip as the importer hands it to its source settings
// effect: the clip's facts, the path of the clip they belong to, and the
// commands and answers of the exchange.
//
// The record crosses between two plug-ins through imPerformSourceSettingsCommand,
// so its layout is a wire format that both sides must agree on byte for byte
// (64-bit, the object as the effect sees it, virtual table first):
//
//   offset  field
//        0  the base record (twSettingsInitData), 3536 bytes
//     3536  importerFailed (bool): the importer could not answer
//     3537  reserved, zeros
//     3552  filepathLength (u64)
//     3560  filepath (1024 bytes, UTF-8, NUL-padded)
//     4584  reloadOptionsCommand (u8)
//     4585  reloadSidecarCommand (u8)
//     4586  importerAnswered (u8)
//     4587  adobeTimecodeSet (u8)
//     4588  adobeTimecode (u32, frames; all ones is unknown)
//     4592  end
//
// The size is also how the importer knows that its own effect is calling.

#include "Manager/twSettingsInitData.h"

#include <cstddef>
#include <cstdint>

constexpr size_t TW_IMPORTER_SETTINGS_FILEPATH_SIZE = 1024;
constexpr size_t TW_IMPORTER_SETTINGS_INIT_DATA_SIZE = 4592;
// The host shows no start timecode of its own.
constexpr uint32_t TW_ADOBE_TIMECODE_UNKNOWN = 0xFFFFFFFF;

// Where the exchange's own fields sit in the record. The effect's record is
// another module's memory, never an object of this one: it is read and
// written at these offsets only.
namespace twImporterSettingsWire {
constexpr size_t importerFailed = 3536;
constexpr size_t reloadOptionsCommand = 4584;
constexpr size_t reloadSidecarCommand = 4585;
constexpr size_t importerAnswered = 4586;
constexpr size_t adobeTimecodeSet = 4587;
constexpr size_t adobeTimecode = 4588;
}  // namespace twImporterSettingsWire

class twImporterSettingsInitData : public twSettingsInitData {
public:
    twImporterSettingsInitData();
    // The clip's facts of `data`, with the fields of this record as a new one has them.
    explicit twImporterSettingsInitData(const twSettingsInitData& data);
    ~twImporterSettingsInitData() override;

    // "filepath" first, then the base record's members.
    void fillInfosIntoJSONObject(QV_JSON& json, rapidjson::Value& object) override;

    // Copies `path` with a limit of the field's size; filepathLength is the
    // number of bytes kept.
    void setFilepath(const qvUtf8String& path);

    bool importerFailed;
    uint8_t reserved[15];
    uint64_t filepathLength;
    // UTF-8, NUL-padded; a path that fills the array keeps no terminator.
    char filepath[TW_IMPORTER_SETTINGS_FILEPATH_SIZE];
    uint8_t reloadOptionsCommand;
    uint8_t reloadSidecarCommand;
    uint8_t importerAnswered;
    uint8_t adobeTimecodeSet;
    uint32_t adobeTimecode;
};

static_assert(sizeof(twImporterSettingsInitData) == TW_IMPORTER_SETTINGS_INIT_DATA_SIZE,
              "the settings record is a wire format shared with the source settings effect");
