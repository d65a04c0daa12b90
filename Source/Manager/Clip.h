#pragma once
// One open .braw file: the library's clip object and what outlives it. A clip
// can be closed to free the file and reopened later under the same number,
// which is how a switch of codec keeps the registry's clips.

#include <BlackmagicRawAPI.h>

#include "String/qvBSTR.h"
#include "String/qvUtf8String.h"
#include "Utils/qvMutex.h"
#include "Utils/qvResult.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class twSettingsInitData;

class qvBRAW_Clip {
public:
    qvBRAW_Clip(uint64_t id, const qvUtf8String& path);
    // Closes the clip and gives back the geometry it was opened with.
    ~qvBRAW_Clip();
    qvBRAW_Clip(const qvBRAW_Clip&) = delete;
    qvBRAW_Clip& operator=(const qvBRAW_Clip&) = delete;

    // Opens the file through `geometry`, which the clip then keeps for its
    // reopenings and releases when it goes. The caller holds m_clipsMutex.
    QvResult openAndInit(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry);
    // Reopens the same file on `codec`, without reading the clip's figures again.
    QvResult reload(IBlackmagicRaw* codec);
    // Frees the library's objects; the figures stay. 0.
    int32_t Close(bool keepSettings);

    const uint32_t m_objectTag = 0x636C6970;  // "clip"
    uint64_t m_ID;
    qvUtf8String m_path;
    qvBSTR m_bstrPath;
    bool m_opened = false;
    std::shared_ptr<twSettingsInitData> m_sourceSettingsInitData;
    std::vector<std::pair<qvUtf8String, qvUtf8String>> m_metadata;
    IBlackmagicRawClip* m_BM = nullptr;
    IBlackmagicRawClipEx* m_BMEx = nullptr;
    // Not counted on its own: the one reference handed over at opening.
    IBlackmagicRawClipGeometry* m_geometry = nullptr;
    qvMutex m_bmClipMutex{"m_bmClipMutex"};

private:
    // Under m_bmClipMutex.
    void releaseLibraryObjects();
    HRESULT openWithLibrary(IBlackmagicRaw* codec, IBlackmagicRawClipGeometry* geometry);
};
