#pragma once
// One open .braw file: the library's clip object, what was read from it once
// at opening (size, rate, length, the resolutions the library can give), and
// the caches that later stages fill. A clip can be closed to free the file and
// reopened later under the same number with all its figures, which is how a
// switch of codec and a file that went away and came back keep the registry's
// clips.
//
// Locking: m_bmClipMutex guards m_BM, m_BMEx, m_opened and every call into the
// library's objects. It is not recursive: the readers that take a `lock`
// argument are called with false by a caller that already holds it. It is
// never held across a host call, and it may be taken under the registry's
// m_clipsMutex, never the other way round.

#include <BlackmagicRawAPI.h>

#include "Manager/twAttributes.h"
#include "String/qvBSTR.h"
#include "String/qvUtf8String.h"
#include "Utils/qvMutex.h"
#include "Utils/qvResolution.h"
#include "Utils/qvResult.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class twSettingsInitData;

// Metadata as key and value texts, in the library's iteration order.
using qvBRAW_MetadataList = std::vector<std::pair<qvUtf8String, qvUtf8String>>;

// A size the library can decode the clip at, with the scale that gives it.
using qvBRAW_ClipResolution = std::pair<QvResolution, BlackmagicRawResolutionScale>;

// The answer of the timecode readers when the library gives none.
constexpr uint32_t TW_NO_TIMECODE_FRAMES = 0xFFFFFFFF;

class qvBRAW_Clip {
public:
    qvBRAW_Clip(uint64_t id, const qvUtf8String& path);
    // Closes the clip. The geometry is not the clip's to release.
    ~qvBRAW_Clip();
    qvBRAW_Clip(const qvBRAW_Clip&) = delete;
    qvBRAW_Clip& operator=(const qvBRAW_Clip&) = delete;

    // Opens the file through `geometry` (kept for reopening, not counted) and
    // reads the clip's figures. The caller holds m_clipsMutex. On an error the
    // library's objects are released and the text says why.
    QvResult openAndInit(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry);
    // Reopens the same file on `codec`, without reading the figures again; the
    // settings data and the metadata list are dropped, to be made anew.
    QvResult reload(IBlackmagicRaw* codec);
    // Frees the library's objects; the figures stay. Without keepSettings the
    // settings data goes too. 0.
    int32_t Close(bool keepSettings);
    // True when the clip is closed, or its file can no longer be read: the
    // library is asked for the size of frame 0.
    bool doesNeedToBeReloaded();
    // Replaces the library's clip by a clone that desqueezes the picture by the
    // clip's "anamorphic" metadata, when it names a known ratio.
    QvResult replaceClipByDesqueezedClipIfRectPixel(IBlackmagicRaw* codec);

    // The clip's start timecode in frames, and whether it is drop-frame;
    // TW_NO_TIMECODE_FRAMES when the library gives none. With `lock` false the
    // caller holds m_bmClipMutex.
    uint32_t getTimecodeFrames(bool& dropFrame, bool lock) const;
    // The timecode text of `frame`; empty when there is none.
    qvUtf8String getTimecodeForFrame(uint64_t frame);
    // The clip's post 3D LUT resources: the GPU one into out1 when a context
    // and a queue are given, then the CPU one into out2.
    QvResult getLut3DBuffers(void** out1, void** out2, void* context, void* commandQueue);
    // The settings the camera recorded, in use; the defaults, not in use, before
    // the settings data exists.
    twAttributes getCameraMetadataPrefs();

    // --- Metadata (ClipMetadata.cpp) ---
    // A string value; empty when missing or not a string.
    qvUtf8String getClipMetadata(const qvUtf8String& key, bool lock);
    // An integer value equal to 1; false when missing or not an integer.
    bool getClipMetadataBool(const qvUtf8String& key, bool lock);
    // The raw value; true when the library gave the key. The caller clears `out`.
    bool getClipMetadataMetadataCommon(const qvUtf8String& key, bool lock, Variant& out);
    // The whole clip list into `out`. 0, or 1 when the clip is closed or the
    // library gives no iterator.
    int32_t getClipMetadata(qvBRAW_MetadataList& out);
    // Every entry of `iterator` as text; strings over 100 bytes and arrays over
    // 25 elements show as "Too big to display", empty values are left out. With
    // withFrameGuide, "frameguide_aspect_ratio" "a:b" sets *numerator and
    // *denominator. Takes no lock.
    static qvBRAW_MetadataList GetMetadataFromIterator(IBlackmagicRawMetadataIterator* iterator,
                                                       bool withFrameGuide, double* frameGuideNumerator,
                                                       double* frameGuideDenominator);
    // Appends "audioBitDepth", "audioChannelCount", "audioSampleRate" and
    // "audioSampleCount", each the library gives.
    void getAudioMetadata(qvBRAW_MetadataList& out);
    // Reel, scene, take, good take and compression ratio, those present, with
    // "false" and "true" written "0" and "1".
    qvBRAW_MetadataList getMostPopularMetadata();
    // "camera_iso" -> "Camera ISO".
    static qvUtf8String makeMetadataKeyPretty(const qvUtf8String& key);
    // Single-byte characters in upper case: the first with upperFirst, all with upperAll.
    static qvUtf8String UpperStr(qvUtf8String text, bool upperFirst, bool upperAll);

    const uint32_t m_objectTag = 0x636C6970;  // "clip"
    uint64_t m_ID;
    qvUtf8String m_path;
    qvBSTR m_bstrPath;
    bool m_opened = false;
    float m_frameRate = -1.0f;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    uint64_t m_frameCount = 0;
    std::vector<qvBRAW_ClipResolution> m_resolutions;
    std::shared_ptr<twSettingsInitData> m_sourceSettingsInitData;
    qvBRAW_MetadataList m_metadata;
    IBlackmagicRawClip* m_BM = nullptr;
    IBlackmagicRawClipEx* m_BMEx = nullptr;
    // Held without a reference of its own: the registry that made it owns it.
    IBlackmagicRawClipGeometry* m_geometry = nullptr;
    mutable qvMutex m_bmClipMutex{"m_bmClipMutex"};
    uint32_t m_sidecarReloadCount = 0;

private:
    // Under m_bmClipMutex.
    void releaseLibraryObjects();
    HRESULT openWithLibrary(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry);
    // Under m_bmClipMutex: releases the library's objects, unlocks, and gives `error`.
    QvResult failOpening(const qvUtf8String& error);
};
