#pragma once
// Writes a clip's or a frame's decode settings into the library's attribute
// objects, one attribute at a time, in a fixed order. Many attributes are
// read-only for some clips and the library then refuses the write: that is
// normal and passed over; any other refusal stops the fill with its text.

#include <BlackmagicRawAPI.h>

#include "Manager/twAttributes.h"
#include "String/qvBSTR.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <cstdint>

class AttributesSetter {
public:
    // The fourteen clip attributes (the eight of the tone curve only under the
    // custom gamma), stopping at the first refused write.
    static QvResult fillClipProcessingAttributesFromPrefs(IBlackmagicRawClipProcessingAttributes* attrs,
                                                          const twClipAttributes& prefs);
    // ISO, white balance and exposure, stopping at the first refused write.
    static QvResult fillFrameProcessingAttributesFromPrefs(IBlackmagicRawFrameProcessingAttributes* attrs,
                                                           const twFrameAttributes& prefs);

    // Writes `value` into whichever object is given (the clip's first) and
    // sets *result to an error when the write was refused and the attribute
    // is not read-only. A *result that is already an error stays as it is on
    // success. T is uint16_t, qvBSTR, bool, float, uint32_t or int16_t.
    template <typename T>
    static void setAttribute(const T& value, const uint32_t& clipAttributeId, const uint32_t& frameAttributeId,
                             const qvUtf8String& name, IBlackmagicRawClipProcessingAttributes* clipAttrs,
                             IBlackmagicRawFrameProcessingAttributes* frameAttrs, QvResult* result);

    // Asks the library whether the attribute is read-only, through its range
    // or its list. The last call's result; *readOnly in every case.
    static HRESULT checkAttributeReadOnly(IBlackmagicRawClipProcessingAttributes* clipAttrs,
                                          IBlackmagicRawFrameProcessingAttributes* frameAttrs,
                                          const uint32_t& clipAttributeId, const uint32_t& frameAttributeId,
                                          const qvUtf8String& name, bool* readOnly);
};
