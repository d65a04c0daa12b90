#include "twSimFile.h"

#include "twSimAsyncReader.h"
#include "twSimHost.h"
#include "twSimText.h"

#include <cstring>

namespace {
void* IndexParam(int index) { return reinterpret_cast<void*>(static_cast<intptr_t>(index)); }
}  // namespace

twSimFile::twSimFile(twSimHost& host, const std::string& path)
    : m_host(host), m_path(path), m_importerID(host.newImporterID()) {
    const std::u16string units = twSimText::Utf8ToUtf16(path);
    m_pathUtf16.assign(units.begin(), units.end());
    m_pathUtf16.push_back(0);
}

twSimFile::~twSimFile() {
    if (!m_closed && (m_everOpened || m_privateData)) close();
    if (m_prefs) {
        m_host.memory().setHostHeld(m_prefs, false);
        m_host.memory().disposePtr(m_prefs);
    }
}

imFileAccessRec8 twSimFile::accessRecord() {
    imFileAccessRec8 rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.importID = this;
    rec.filetype = m_fileType;
    rec.filepath = m_pathUtf16.data();
    rec.fileref = m_fileRef;
    rec.newfilename = nullptr;
    return rec;
}

void twSimFile::takePrefs(void* prefs) {
    char* blob = static_cast<char*>(prefs);
    if (blob == m_prefs) return;
    // The importer replaced the blob: freeing the old one was its job, so if it
    // is still alive it is the importer's leak from now on.
    if (m_prefs) m_host.memory().setHostHeld(m_prefs, false);
    m_prefs = blob;
    if (m_prefs) m_host.memory().setHostHeld(m_prefs, true);
}

csSDK_int32 twSimFile::prefsSize() const {
    if (!m_prefs || !m_host.memory().isLivePtr(m_prefs)) return 0;
    return m_host.memory().getPtrSize(m_prefs);
}

void twSimFile::setPrefs(const void* data, size_t size) {
    char* blob = m_host.memory().newPtr(static_cast<csSDK_uint32>(size), true);
    if (data && size) std::memcpy(blob, data, size);
    if (m_prefs) {
        m_host.memory().setHostHeld(m_prefs, false);
        m_host.memory().disposePtr(m_prefs);
    }
    m_prefs = blob;
    m_host.memory().setHostHeld(m_prefs, true);
}

csSDK_int32 twSimFile::open(PrFileOpenAccess access) {
    imFileOpenRec8 rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.fileinfo = accessRecord();
    rec.privatedata = m_privateData;
    rec.inReadWrite = access;
    rec.inImporterID = m_importerID;
    rec.inStreamIdx = 0;
    // The documented argument order (the interface's own comment block has
    // them the other way round): param1 the file reference to fill, param2 the
    // open record. This is the one place that decides it.
    m_openResult = m_host.call(imOpenFile8, &m_fileRef, &rec);
    m_everOpened = true;
    m_closed = false;
    m_open = m_openResult == imNoErr;
    if (rec.privatedata != m_privateData) m_privateData = rec.privatedata;
    if (rec.fileinfo.filetype != 0) m_fileType = rec.fileinfo.filetype;
    return m_openResult;
}

csSDK_int32 twSimFile::getInfo() {
    m_streams.clear();
    csSDK_int32 result = imNoErr;
    for (csSDK_int32 stream = 0; stream < 64; ++stream) {
        auto rec = std::make_unique<imFileInfoRec8>();
        std::memset(rec.get(), 0, sizeof(imFileInfoRec8));
        rec->privatedata = m_privateData;
        rec->prefs = m_prefs;
        rec->vidInfo.importerID = m_importerID;
        rec->streamIdx = stream;
        rec->sessionPluginID = m_host.config().pluginID;
        twSimText::CopyToUtf16Field(m_path, rec->filePath, 2048);
        imFileAccessRec8 access = accessRecord();
        result = m_host.call(imGetInfo8, &access, rec.get());
        if (result == imBadStreamIndex) {
            result = imNoErr;
            break;
        }
        m_privateData = rec->privatedata;
        takePrefs(rec->prefs);
        // The codec name is the host's to keep and free.
        std::string codec;
        m_host.strings().text(rec->vidInfo.codecDescription, codec);
        m_host.strings().release(rec->vidInfo.codecDescription);
        if (stream == 0) m_codecDescription = codec;
        m_streams.push_back(std::move(rec));
        if (result != imIterateStreams) break;
    }
    if (result == imIterateStreams) result = imNoErr;
    m_infoResult = result;
    return result;
}

csSDK_int32 twSimFile::quiet() {
    const csSDK_int32 result = m_host.call(imQuietFile, &m_fileRef, m_privateData);
    m_open = false;
    return result;
}

csSDK_int32 twSimFile::close() {
    const csSDK_int32 result = m_host.call(imCloseFile, &m_fileRef, m_privateData);
    m_open = false;
    m_closed = true;
    m_privateData = nullptr;
    return result;
}

const imFileInfoRec8& twSimFile::info(size_t stream) const {
    static const imFileInfoRec8 kEmpty = [] {
        imFileInfoRec8 rec;
        std::memset(&rec, 0, sizeof(rec));
        return rec;
    }();
    return stream < m_streams.size() ? *m_streams[stream] : kEmpty;
}

PrTime twSimFile::frameTime(long long frame) const {
    const imFileInfoRec8& rec = info();
    if (rec.vidInfo.frameRate > 0) return static_cast<PrTime>(frame) * rec.vidInfo.frameRate;
    if (rec.vidScale <= 0) return 0;
    const __int128 ticks = static_cast<__int128>(frame) * m_host.config().ticksPerSecond * rec.vidSampleSize;
    return static_cast<PrTime>(ticks / rec.vidScale);
}

twSimFrameRequest twSimFile::frameRequest(long long frame, int width, int height, PrPixelFormat format) const {
    twSimFrameRequest request;
    request.time = frameTime(frame);
    request.formats.push_back(imFrameFormat{width, height, format});
    return request;
}

void twSimFile::fillSourceRecord(imSourceVideoRec& rec, const twSimFrameRequest& request, void* privateData,
                                 PPixHand* outFrame, std::vector<imFrameFormat>& formats) const {
    std::memset(&rec, 0, sizeof(rec));
    formats = request.formats;
    rec.inPrivateData = privateData;
    rec.currentStreamIdx = request.stream;
    rec.inFrameTime = request.time;
    rec.inFrameFormats = formats.empty() ? nullptr : formats.data();
    rec.inNumFrameFormats = static_cast<csSDK_int32>(formats.size());
    rec.removePulldown = request.removePulldown;
    rec.outFrame = outFrame;
    rec.prefs = m_prefs;
    rec.prefsSize = prefsSize();
    if (!request.selectedColorProfileName.empty())
        rec.selectedColorProfileName = m_host.strings().make(request.selectedColorProfileName);
    rec.inQuality = request.quality;
    rec.inRenderContext = request.context;
    rec.opaqueColorSpaceIdentifier =
        request.useWorkingColorSpace ? m_host.config().workingColorSpace : request.colorSpace;
}

csSDK_int32 twSimFile::getPrefs() {
    const imFileInfoRec8& rec8 = info();
    imGetPrefsRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.prefs = nullptr;
    rec.prefsLength = 0;
    rec.firstTime = m_prefs ? 0 : 1;
    rec.sessionPluginID = m_host.config().pluginID;
    rec.imageWidth = rec8.vidInfo.imageWidth;
    rec.imageHeight = rec8.vidInfo.imageHeight;
    rec.pixelAspectNum = rec8.vidInfo.pixelAspectNum;
    rec.pixelAspectDen = rec8.vidInfo.pixelAspectDen;
    rec.vidScale = rec8.vidScale;
    rec.vidSampleSize = rec8.vidSampleSize;
    rec.sampleRate = rec8.audInfo.sampleRate;
    imFileAccessRec8 access = accessRecord();
    csSDK_int32 result = m_host.call(imGetPrefs8, &access, &rec);
    if (rec.prefsLength <= 0) return result;

    const csSDK_int32 length = rec.prefsLength;
    char* buffer = m_host.memory().newPtr(static_cast<csSDK_uint32>(length), true);
    m_host.memory().setHostHeld(buffer, true);
    if (m_prefs && prefsSize() == length) std::memcpy(buffer, m_prefs, static_cast<size_t>(length));
    rec.prefs = buffer;
    rec.firstTime = 0;
    access = accessRecord();
    result = m_host.call(imGetPrefs8, &access, &rec);
    if (result == imNoErr) {
        if (m_prefs) {
            m_host.memory().setHostHeld(m_prefs, false);
            m_host.memory().disposePtr(m_prefs);
        }
        m_prefs = buffer;
    } else {
        m_host.memory().setHostHeld(buffer, false);
        m_host.memory().disposePtr(buffer);
    }
    return result;
}

twSimFrameResult twSimFile::getSourceVideo(const twSimFrameRequest& request) {
    PPixHand out = nullptr;
    std::vector<imFrameFormat> formats;
    imSourceVideoRec rec;
    fillSourceRecord(rec, request, m_privateData, &out, formats);
    twSimFrameResult result;
    result.result = m_host.call(imGetSourceVideo, m_fileRef, &rec);
    m_host.strings().release(rec.selectedColorProfileName);
    result.frame = twSimFrameRef(m_host.frames(), out);
    return result;
}

std::vector<twSimColorSpace> twSimFile::colorSpaces(csSDK_int32* endResult) {
    std::vector<twSimColorSpace> out;
    csSDK_int32 result = imNoErr;
    for (int index = 0; index < 16; ++index) {
        ColorSpaceRec rec{};
        rec.inPrivateData = m_privateData;
        result = m_host.call(imGetIndColorSpace, IndexParam(index), &rec);
        if (result != imNoErr) break;
        twSimColorSpace space;
        space.type = rec.outColorSpaceType;
        space.seiCodes = rec.outSEICodesRec;
        if (rec.outColorSpaceType == kPrSDKColorSpaceType_ICC && rec.ioProfileRec.ioBufferSize > 0) {
            // ICC data comes in a second pass, into a buffer of the announced size.
            space.profile.assign(static_cast<size_t>(rec.ioProfileRec.ioBufferSize), 0);
            m_host.strings().release(rec.ioProfileRec.outName);
            rec.ioProfileRec.outName = PrSDKString{};
            rec.ioProfileRec.inDestinationBuffer = space.profile.data();
            result = m_host.call(imGetIndColorSpace, IndexParam(index), &rec);
            if (result != imNoErr) break;
        }
        m_host.strings().text(rec.ioProfileRec.outName, space.name);
        m_host.strings().release(rec.ioProfileRec.outName);
        out.push_back(space);
    }
    if (endResult) *endResult = result;
    return out;
}

twSimAudioResult twSimFile::importAudio(PrAudioSample position, csSDK_uint32 frames, int channels, float fill) {
    twSimAudioResult out;
    out.channels.assign(static_cast<size_t>(channels > 0 ? channels : 0), std::vector<float>(frames, fill));
    std::vector<float*> buffers;
    for (auto& c : out.channels) buffers.push_back(c.data());
    imImportAudioRec7 rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.position = position;
    rec.size = frames;
    rec.buffer = buffers.empty() ? nullptr : buffers.data();
    rec.privateData = m_privateData;
    rec.prefs = m_prefs;
    out.result = m_host.call(imImportAudio7, m_fileRef, &rec);
    return out;
}

std::vector<std::pair<int, int>> twSimFile::preferredFrameSizes(PrPixelFormat format, csSDK_int32* endResult) {
    std::vector<std::pair<int, int>> out;
    csSDK_int32 result = imNoErr;
    for (int index = 0; index < 64; ++index) {
        imPreferredFrameSizeRec rec;
        std::memset(&rec, 0, sizeof(rec));
        rec.inPrivateData = m_privateData;
        rec.inPrefs = m_prefs;
        rec.inPixelFormat = format;
        rec.inIndex = index;
        result = m_host.call(imGetPreferredFrameSize, &rec, nullptr);
        if (result != imNoErr && result != imIterateFrameSizes) break;
        out.emplace_back(rec.outWidth, rec.outHeight);
        if (result != imIterateFrameSizes) break;
    }
    if (endResult) *endResult = result;
    return out;
}

csSDK_int32 twSimFile::selectClipFrameDescriptor(imClipFrameDescriptorRec& rec) {
    if (!rec.inPrefs) rec.inPrefs = m_prefs;
    if (!rec.inPrivateData) rec.inPrivateData = m_privateData;
    return m_host.call(imSelectClipFrameDescriptor, m_fileRef, &rec);
}

csSDK_int32 twSimFile::timeInfo(imTimeInfoRec8& rec) {
    rec.privatedata = m_privateData;
    rec.prefs = m_prefs;
    return m_host.call(imGetTimeInfo8, m_fileRef, &rec);
}

std::string twSimFile::analysis(csSDK_int32 bufferSize, csSDK_int32* result) {
    std::vector<char> buffer(static_cast<size_t>(bufferSize > 0 ? bufferSize : 0) + 1, 0);
    imAnalysisRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.privatedata = m_privateData;
    rec.prefs = m_prefs;
    rec.buffersize = bufferSize;
    rec.buffer = buffer.data();
    const csSDK_int32 r = m_host.call(imAnalysis, m_fileRef, &rec);
    if (result) *result = r;
    return std::string(buffer.data(), strnlen(buffer.data(), static_cast<size_t>(bufferSize > 0 ? bufferSize : 0)));
}

std::vector<std::string> twSimFile::inputFileList(csSDK_int32* result) {
    std::vector<std::string> out;
    imQueryInputFileListRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.inPrivateData = m_privateData;
    rec.inPrefs = m_prefs;
    const size_t slash = m_path.rfind('/');
    rec.inBasePath = m_host.strings().make(slash == std::string::npos ? std::string() : m_path.substr(0, slash));
    csSDK_int32 r = m_host.call(imQueryInputFileList, &rec, nullptr);
    if (r == imNoErr && rec.outNumFilePaths > 0 && rec.outNumFilePaths < 4096) {
        std::vector<PrSDKString> paths(static_cast<size_t>(rec.outNumFilePaths), PrSDKString{});
        rec.outFilePaths = paths.data();
        r = m_host.call(imQueryInputFileList, &rec, nullptr);
        for (auto& p : paths) {
            if (r == imNoErr) out.push_back(m_host.strings().textOrEmpty(p));
            m_host.strings().release(p);
        }
    }
    m_host.strings().release(rec.inBasePath);
    if (result) *result = r;
    return out;
}

csSDK_int32 twSimFile::sourceSettingsCommand(char* data, csSDK_int32 size) {
    imSourceSettingsCommandRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.ioData = data;
    rec.inDataSize = size;
    rec.inPrivateData = m_privateData;
    imFileAccessRec8 access = accessRecord();
    return m_host.call(imPerformSourceSettingsCommand, &access, &rec);
}

std::unique_ptr<twSimAsyncReader> twSimFile::createAsyncReader(csSDK_int32* result) {
    imAsyncImporterCreationRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.inPrivateData = m_privateData;
    rec.inPrefs = m_prefs;
    const csSDK_int32 r = m_host.call(imCreateAsyncImporter, &rec, nullptr);
    if (result) *result = r;
    if (r != imNoErr || !rec.outAsyncEntry) return nullptr;
    return std::make_unique<twSimAsyncReader>(*this, rec.outAsyncEntry, rec.outAsyncPrivateData);
}
