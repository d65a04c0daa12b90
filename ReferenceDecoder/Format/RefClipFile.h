#pragma once
// The .braw reference clip file: reading, validating and writing it.
//
// Layout (all integers little-endian):
//   0   8   marker "TWREFCLP"
//   8   4   format version, 1
//   12  4   byte length J of the description
//   16  J   the description: UTF-8 JSON (see ReferenceDecoder/README.md)
//   16+J    frame records, frame 0 first, each:
//           0   4  "FRME"
//           4   4  payload byte length P
//           8   8  frame index
//           16  4  FNV-1a 32-bit hash of the payload
//           20  4  0
//           24  P  payload
// A frame's bit stream, as the library hands it out, is its whole record
// (24 + P bytes). Nothing in this file throws: every failure is a false result
// with a readable error text.

#include "Format/RefClipModel.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace twref {

constexpr char kRefClipMarker[9] = "TWREFCLP";
constexpr uint32_t kRefClipVersion = 1;
constexpr size_t kRefClipHeaderBytes = 16;
constexpr size_t kRefFrameRecordHeaderBytes = 24;
// Descriptions above this size are refused (a corrupt length must not make
// the reader allocate gigabytes).
constexpr uint32_t kRefMaxDescriptionBytes = 256u * 1024u * 1024u;

struct RefFrameRecordInfo {
    uint64_t offset = 0;     // of the record header in the file
    uint32_t sizeBytes = 0;  // whole record, header included
};

// Where the frame records are. Frames past frames.size() have no record
// (cut-short file or RefBitStream::recordedFrames).
struct RefClipLayout {
    uint64_t fileSize = 0;
    uint64_t descriptionOffset = kRefClipHeaderBytes;
    uint32_t descriptionBytes = 0;
    std::vector<RefFrameRecordInfo> frames;
    uint32_t maxRecordBytes = 0;
};

class RefClipFile {
public:
    // Reads a whole clip file: header, description and the record table. The
    // records' contents are not checked here (see readFrameRecord).
    static bool read(const std::string& path, RefClipModel& model, RefClipLayout& layout,
                     std::string& error);
    // The same over bytes in memory.
    static bool parse(const uint8_t* data, size_t size, RefClipModel& model,
                      RefClipLayout& layout, std::string& error);
    // Only the JSON description. Members that are absent keep the model's
    // defaults; the model starts as a default-constructed one.
    static bool parseDescription(const char* json, size_t length, RefClipModel& model,
                                 std::string& error);
    // Merges a JSON description over an existing model (used for options files
    // that change only a few figures).
    static bool mergeDescription(const char* json, size_t length, RefClipModel& model,
                                 std::string& error);
    // The JSON description of a model; parseDescription of it gives the model back.
    static std::string describe(const RefClipModel& model, bool pretty = true);
    // The complete file content of a model, records included.
    static std::string serialize(const RefClipModel& model);

    // The 16 header bytes of a file whose description has that length.
    static std::string fileHeader(uint32_t descriptionBytes);
    // One frame record, written the way serialize does (corrupt frames get a
    // wrong hash).
    static std::string makeFrameRecord(const RefClipModel& model, uint64_t frameIndex);
    // Reads the record of a frame from the file into out, resized to the
    // record's size. False (with error) when the file cannot be read or the
    // record is missing or damaged; 'damaged' tells the two apart.
    static bool readFrameRecord(const std::string& path, const RefClipLayout& layout,
                                uint64_t frameIndex, std::vector<uint8_t>& out, bool& damaged,
                                std::string& error);
    // Checks a record held in memory: marker, index, length and hash.
    static bool validateFrameRecord(const void* data, size_t size, uint64_t frameIndex,
                                    std::string& error);
    // Whether the file still exists and is a reference clip of the same size:
    // the cheap probe behind GetBitStreamSizeBytes.
    static bool stillReadable(const std::string& path, const RefClipLayout& layout);
};

}  // namespace twref
