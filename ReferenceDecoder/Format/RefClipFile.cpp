#include "Format/RefClipFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>

namespace twref {

namespace {

constexpr char kRecordMarker[4] = {'F', 'R', 'M', 'E'};

uint32_t loadU32(const uint8_t* p)
{
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

uint64_t loadU64(const uint8_t* p) { return uint64_t(loadU32(p)) | (uint64_t(loadU32(p + 4)) << 32); }

void storeU32(std::string& out, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

void storeU64(std::string& out, uint64_t v)
{
    storeU32(out, static_cast<uint32_t>(v));
    storeU32(out, static_cast<uint32_t>(v >> 32));
}

uint32_t fnv1a(const uint8_t* data, size_t size)
{
    uint32_t h = 2166136261u;
    for (size_t i = 0; i < size; ++i) {
        h ^= data[i];
        h *= 16777619u;
    }
    return h;
}

// Closes a descriptor on every way out.
class FileHandle {
public:
    explicit FileHandle(const std::string& path) : m_fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~FileHandle()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    int fd() const { return m_fd; }
    bool readAt(uint64_t offset, void* buffer, size_t size) const
    {
        uint8_t* out = static_cast<uint8_t*>(buffer);
        while (size > 0) {
            const ssize_t n = ::pread(m_fd, out, size, static_cast<off_t>(offset));
            if (n <= 0)
                return false;
            out += n;
            offset += static_cast<uint64_t>(n);
            size -= static_cast<size_t>(n);
        }
        return true;
    }

private:
    int m_fd;
};

using ReadAt = std::function<bool(uint64_t offset, void* buffer, size_t size)>;

// Header and description; fills model and the description part of layout.
bool parseHead(const ReadAt& readAt, uint64_t fileSize, RefClipModel& model, RefClipLayout& layout,
               std::string& error)
{
    uint8_t header[kRefClipHeaderBytes];
    if (fileSize < kRefClipHeaderBytes || !readAt(0, header, sizeof header)) {
        error = "file too short for a reference clip header";
        return false;
    }
    if (std::memcmp(header, kRefClipMarker, 8) != 0) {
        error = "not a reference clip (marker missing)";
        return false;
    }
    const uint32_t version = loadU32(header + 8);
    if (version != kRefClipVersion) {
        error = "unsupported reference clip version " + std::to_string(version);
        return false;
    }
    const uint32_t length = loadU32(header + 12);
    if (length > kRefMaxDescriptionBytes) {
        error = "description length " + std::to_string(length) + " is beyond the limit";
        return false;
    }
    if (uint64_t(length) > fileSize - kRefClipHeaderBytes) {
        error = "file cut short inside the description";
        return false;
    }
    std::string json(length, '\0');
    if (length > 0 && !readAt(kRefClipHeaderBytes, &json[0], length)) {
        error = "description cannot be read";
        return false;
    }
    if (!RefClipFile::parseDescription(json.data(), json.size(), model, error))
        return false;
    layout = RefClipLayout();
    layout.fileSize = fileSize;
    layout.descriptionOffset = kRefClipHeaderBytes;
    layout.descriptionBytes = length;
    return true;
}

// Walks the record headers that follow the description. A record that is
// missing, cut short or out of order ends the table: later frames have no
// record, as in a file whose end was lost.
void scanRecords(const ReadAt& readAt, const RefClipModel& model, RefClipLayout& layout)
{
    uint64_t offset = layout.descriptionOffset + layout.descriptionBytes;
    const uint64_t expected = model.recordedFrameCount();
    for (uint64_t index = 0; index < expected; ++index) {
        if (layout.fileSize - offset < kRefFrameRecordHeaderBytes)
            break;
        uint8_t head[kRefFrameRecordHeaderBytes];
        if (!readAt(offset, head, sizeof head))
            break;
        if (std::memcmp(head, kRecordMarker, 4) != 0 || loadU64(head + 8) != index)
            break;
        const uint64_t size = kRefFrameRecordHeaderBytes + uint64_t(loadU32(head + 4));
        if (size > 0xFFFFFFFFull || layout.fileSize - offset < size)
            break;
        RefFrameRecordInfo info;
        info.offset = offset;
        info.sizeBytes = static_cast<uint32_t>(size);
        layout.frames.push_back(info);
        if (info.sizeBytes > layout.maxRecordBytes)
            layout.maxRecordBytes = info.sizeBytes;
        offset += size;
    }
}

// Deterministic filler that looks like compressed data and differs per frame.
void fillPayload(uint64_t frameIndex, uint8_t* data, size_t size)
{
    uint64_t state = (frameIndex + 1) * 0x9E3779B97F4A7C15ull;
    for (size_t i = 0; i < size; ++i) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        data[i] = static_cast<uint8_t>(state >> 24);
    }
}

}  // namespace

std::string RefClipFile::fileHeader(uint32_t descriptionBytes)
{
    std::string out(kRefClipMarker, 8);
    storeU32(out, kRefClipVersion);
    storeU32(out, descriptionBytes);
    return out;
}

bool RefClipFile::parse(const uint8_t* data, size_t size, RefClipModel& model, RefClipLayout& layout,
                        std::string& error)
{
    if (data == nullptr && size != 0) {
        error = "no data";
        return false;
    }
    ReadAt readAt = [data, size](uint64_t offset, void* buffer, size_t length) {
        if (offset > size || size - offset < length)
            return false;
        std::memcpy(buffer, data + offset, length);
        return true;
    };
    RefClipModel parsed;
    RefClipLayout parsedLayout;
    if (!parseHead(readAt, size, parsed, parsedLayout, error))
        return false;
    scanRecords(readAt, parsed, parsedLayout);
    model = std::move(parsed);
    layout = std::move(parsedLayout);
    return true;
}

bool RefClipFile::read(const std::string& path, RefClipModel& model, RefClipLayout& layout, std::string& error)
{
    FileHandle file(path);
    if (file.fd() < 0) {
        error = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    struct stat st;
    if (::fstat(file.fd(), &st) != 0 || !S_ISREG(st.st_mode)) {
        error = path + " is not a regular file";
        return false;
    }
    ReadAt readAt = [&file](uint64_t offset, void* buffer, size_t length) {
        return file.readAt(offset, buffer, length);
    };
    RefClipModel parsed;
    RefClipLayout parsedLayout;
    if (!parseHead(readAt, static_cast<uint64_t>(st.st_size), parsed, parsedLayout, error))
        return false;
    scanRecords(readAt, parsed, parsedLayout);
    model = std::move(parsed);
    layout = std::move(parsedLayout);
    return true;
}

std::string RefClipFile::makeFrameRecord(const RefClipModel& model, uint64_t frameIndex)
{
    const uint32_t payloadBytes = model.frameBitStreamBytes(frameIndex);
    std::string record;
    record.reserve(kRefFrameRecordHeaderBytes + payloadBytes);
    record.append(kRecordMarker, 4);
    storeU32(record, payloadBytes);
    storeU64(record, frameIndex);
    const size_t hashAt = record.size();
    storeU32(record, 0);
    storeU32(record, 0);
    record.resize(kRefFrameRecordHeaderBytes + payloadBytes);
    uint8_t* payload = reinterpret_cast<uint8_t*>(&record[kRefFrameRecordHeaderBytes]);
    fillPayload(frameIndex, payload, payloadBytes);
    uint32_t hash = fnv1a(payload, payloadBytes);
    const RefFrameOverride* f = model.frameOverride(frameIndex);
    if (f && f->corrupt)
        hash = ~hash;
    for (int i = 0; i < 4; ++i)
        record[hashAt + i] = static_cast<char>((hash >> (8 * i)) & 0xFF);
    return record;
}

std::string RefClipFile::serialize(const RefClipModel& model)
{
    const std::string json = describe(model, true);
    std::string out = fileHeader(static_cast<uint32_t>(json.size()));
    out += json;
    const uint64_t records = model.recordedFrameCount();
    for (uint64_t i = 0; i < records; ++i)
        out += makeFrameRecord(model, i);
    return out;
}

bool RefClipFile::validateFrameRecord(const void* data, size_t size, uint64_t frameIndex, std::string& error)
{
    const uint8_t* p = static_cast<const uint8_t*>(data);
    if (p == nullptr || size < kRefFrameRecordHeaderBytes) {
        error = "bit stream too short";
        return false;
    }
    if (std::memcmp(p, kRecordMarker, 4) != 0) {
        error = "bit stream has no frame marker";
        return false;
    }
    const uint32_t payloadBytes = loadU32(p + 4);
    if (size - kRefFrameRecordHeaderBytes < payloadBytes) {
        error = "bit stream shorter than its frame record";
        return false;
    }
    if (loadU64(p + 8) != frameIndex) {
        error = "bit stream belongs to frame " + std::to_string(loadU64(p + 8)) + ", not " +
                std::to_string(frameIndex);
        return false;
    }
    if (fnv1a(p + kRefFrameRecordHeaderBytes, payloadBytes) != loadU32(p + 16)) {
        error = "frame " + std::to_string(frameIndex) + " is damaged (checksum)";
        return false;
    }
    return true;
}

bool RefClipFile::readFrameRecord(const std::string& path, const RefClipLayout& layout, uint64_t frameIndex,
                                  std::vector<uint8_t>& out, bool& damaged, std::string& error)
{
    damaged = false;
    if (frameIndex >= layout.frames.size()) {
        error = "frame " + std::to_string(frameIndex) + " has no record in the file";
        return false;
    }
    const RefFrameRecordInfo& info = layout.frames[frameIndex];
    FileHandle file(path);
    if (file.fd() < 0) {
        error = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    out.resize(info.sizeBytes);
    if (!file.readAt(info.offset, out.data(), out.size())) {
        error = "frame " + std::to_string(frameIndex) + " cannot be read";
        return false;
    }
    if (!validateFrameRecord(out.data(), out.size(), frameIndex, error)) {
        damaged = true;
        return false;
    }
    return true;
}

bool RefClipFile::stillReadable(const std::string& path, const RefClipLayout& layout)
{
    FileHandle file(path);
    if (file.fd() < 0)
        return false;
    struct stat st;
    if (::fstat(file.fd(), &st) != 0 || static_cast<uint64_t>(st.st_size) != layout.fileSize)
        return false;
    char marker[8];
    return file.readAt(0, marker, sizeof marker) && std::memcmp(marker, kRefClipMarker, 8) == 0;
}

}  // namespace twref
