#pragma once
// One file imported into the simulated host: the host's side of its records
// (file reference, private data, the prefs blob the host keeps for the clip,
// the importer ID) and the selectors a host sends about a file, built the way
// a host builds them.
//
// The host holds the prefs blob: whatever the importer leaves in the record's
// prefs member after imGetInfo8 or imGetPrefs8 becomes the clip's blob, and the
// host disposes of it when the file object goes.

#include "twSimFrameRef.h"

#include "MediaCoreSDK.h"

#include <memory>
#include <string>
#include <vector>

class twSimHost;
class twSimAsyncReader;

struct twSimFrameRequest {
    PrTime time = 0;                     // ticks
    std::vector<imFrameFormat> formats;  // in order of preference; empty passes no list
    PrRenderQuality quality = kPrRenderQuality_High;
    imRenderContext context = {imRenderIntent_Unknown, 1.0, 0.0};
    std::string selectedColorProfileName;  // a host string when not empty
    bool useWorkingColorSpace = true;      // else colorSpace below
    PrSDKColorSpaceID colorSpace = kPrSDKColorSpaceID_Invalid;
    csSDK_int32 stream = 0;
    bool removePulldown = false;
};

struct twSimColorSpace {
    PrSDKColorSpaceType type = kPrSDKColorSpaceType_Undefined;
    std::string name;
    std::vector<char> profile;  // ICC data, when the type says so
    prSEIColorCodesRec seiCodes;
};

struct twSimAudioResult {
    csSDK_int32 result = 0;
    std::vector<std::vector<float>> channels;
};

class twSimFile {
public:
    twSimFile(twSimHost& host, const std::string& path);
    // Closes the file if it is still open and gives the prefs blob back.
    ~twSimFile();
    twSimFile(const twSimFile&) = delete;
    twSimFile& operator=(const twSimFile&) = delete;

    // ---- the file's life ----
    // imOpenFile8 (param1: the file reference to fill, param2: imFileOpenRec8).
    csSDK_int32 open(PrFileOpenAccess access = kPrOpenFileAccess_ReadOnly);
    // imGetInfo8 for every stream the importer reports (imIterateStreams).
    csSDK_int32 getInfo();
    csSDK_int32 quiet();
    // imCloseFile; the private data handle belongs to the importer, which frees it.
    csSDK_int32 close();
    csSDK_int32 openResult() const { return m_openResult; }
    csSDK_int32 infoResult() const { return m_infoResult; }

    // ---- what the host knows ----
    const std::string& path() const { return m_path; }
    csSDK_int32 importerID() const { return m_importerID; }
    csSDK_int32 fileType() const { return m_fileType; }
    void setFileType(csSDK_int32 fileType) { m_fileType = fileType; }
    imFileRef fileRef() const { return m_fileRef; }
    void* privateData() const { return m_privateData; }
    char* prefs() const { return m_prefs; }
    csSDK_int32 prefsSize() const;
    // Stream 0 and the others, as the importer last filled them.
    const imFileInfoRec8& info(size_t stream = 0) const;
    size_t streamCount() const { return m_streams.size(); }
    const std::string& codecDescription() const { return m_codecDescription; }
    // The host storing another blob for the clip (a project saved elsewhere).
    void setPrefs(const void* data, size_t size);
    // Frame number to ticks by the file's time base (frameRate, else vidScale and vidSampleSize).
    PrTime frameTime(long long frame) const;
    twSimFrameRequest frameRequest(long long frame, int width, int height, PrPixelFormat format) const;

    // ---- selectors about the file ----
    // Two passes as a host makes them: the size, then a host buffer (holding the
    // current blob when the sizes agree); a successful second pass replaces the blob.
    csSDK_int32 getPrefs();
    twSimFrameResult getSourceVideo(const twSimFrameRequest& request);
    std::vector<twSimColorSpace> colorSpaces(csSDK_int32* endResult = nullptr);
    // imImportAudio7; the buffers are filled with `fill` before the call.
    twSimAudioResult importAudio(PrAudioSample position, csSDK_uint32 frames, int channels, float fill = 0.0f);
    // imGetPreferredFrameSize from index 0 while the importer answers imIterateFrameSizes.
    std::vector<std::pair<int, int>> preferredFrameSizes(PrPixelFormat format, csSDK_int32* endResult = nullptr);
    csSDK_int32 selectClipFrameDescriptor(imClipFrameDescriptorRec& rec);
    csSDK_int32 timeInfo(imTimeInfoRec8& rec);
    std::string analysis(csSDK_int32 bufferSize, csSDK_int32* result = nullptr);
    std::vector<std::string> inputFileList(csSDK_int32* result = nullptr);
    csSDK_int32 sourceSettingsCommand(char* data, csSDK_int32 size);
    std::unique_ptr<twSimAsyncReader> createAsyncReader(csSDK_int32* result = nullptr);

    // Builds the source-video record of a request; the formats and the host
    // string it may hold live in `formats` and are released by the caller.
    void fillSourceRecord(imSourceVideoRec& rec, const twSimFrameRequest& request, void* privateData,
                          PPixHand* outFrame, std::vector<imFrameFormat>& formats) const;
    twSimHost& host() { return m_host; }

private:
    imFileAccessRec8 accessRecord();
    void takePrefs(void* prefs);

    twSimHost& m_host;
    std::string m_path;
    std::vector<prUTF16Char> m_pathUtf16;
    csSDK_int32 m_importerID;
    csSDK_int32 m_fileType = 0;
    imFileRef m_fileRef = nullptr;
    void* m_privateData = nullptr;
    char* m_prefs = nullptr;
    std::vector<std::unique_ptr<imFileInfoRec8>> m_streams;
    std::string m_codecDescription;
    csSDK_int32 m_openResult = -1;
    csSDK_int32 m_infoResult = -1;
    bool m_open = false;
    bool m_everOpened = false;
    bool m_closed = false;
};
