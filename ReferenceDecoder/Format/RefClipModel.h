#pragma once
// Everything a reference clip describes, as plain structs. A default-constructed
// RefClipModel is a valid, complete clip (1920x1080, 24 fps, 48 frames, a full
// set of processing attributes, lists, ranges and tone curves, no audio, no
// faults), so a test sets only the fields it cares about.
//
// The model is what the clip file holds; the parser (RefClipFile) fills it from
// a file and the writer (RefClipWriter) makes files from it. The library keeps
// one model per opened clip and never changes it: current values the caller
// sets live in the library's own objects.

#include "Format/RefTypes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace twref {

// A typed value: what a Variant carries. Every number is held as a double,
// which is exact for all the integer types a Variant has (at most 32 bits) and
// for Float32.
struct RefValue {
    RefVariantType type = RefVariantType::Empty;
    double number = 0.0;                 // U8 .. Float32, Float64
    std::string text;                    // String
    RefVariantType elementType = RefVariantType::Empty;  // SafeArray: element type
    std::vector<double> numbers;         // SafeArray of numbers
    std::vector<std::string> texts;      // SafeArray of String

    static RefValue empty();
    static RefValue u8(uint8_t v);
    static RefValue s16(int16_t v);
    static RefValue u16(uint16_t v);
    static RefValue s32(int32_t v);
    static RefValue u32(uint32_t v);
    static RefValue f32(float v);
    static RefValue f64(double v);
    static RefValue string(const std::string& v);
    // A value of a numeric type, the number converted (wrapped or rounded) the
    // way a cast to that type does; Empty for String/SafeArray/Empty.
    static RefValue ofType(RefVariantType type, double v);
    static RefValue numberArray(RefVariantType elementType, const std::vector<double>& values);
    static RefValue stringArray(const std::vector<std::string>& values);

    bool isNumber() const;  // U8 .. Float32, Float64
    bool isArray() const { return type == RefVariantType::SafeArray; }
    // Element count of an array, 0 otherwise.
    size_t arraySize() const;
    bool operator==(const RefValue& other) const;
    bool operator!=(const RefValue& other) const { return !(*this == other); }
};

struct RefMetadataEntry {
    std::string key;
    RefValue value;
};

// One entry of the resolution list, in the order the library gives them.
//   GetResolution(i)                 -> width, height
//   GetRecordedResolution(i)         -> recordedWidth, recordedHeight (0 = same as width/height)
//   GetClosestScaleForResolution(w,h)-> scale of the first entry of that exact size,
//                                       else of the entry nearest in area
//   GetClosestResolutionForScale(s)  -> size of the first entry of that scale,
//                                       else the full size divided by the scale's divisor
// An entry whose scale is shared with an earlier entry of another size does not
// map back to itself: that is how a fault test builds a broken table.
struct RefResolution {
    uint32_t width = 0;
    uint32_t height = 0;
    RefResolutionScale scale = RefResolutionScale::Full;
    uint32_t recordedWidth = 0;
    uint32_t recordedHeight = 0;
};

// The procedural test tone of each audio channel: channel c is a sine of
// frequency * (c + 1) Hz at the given amplitude (1.0 = full scale).
struct RefAudioTone {
    double frequency = 1000.0;
    double amplitude = 0.5;
};

struct RefAudioModel {
    bool present = false;  // false: every audio query answers zeros
    uint32_t format = kRefAudioFormatPCMLittleEndian;
    uint32_t channelCount = 2;
    uint32_t sampleRate = 48000;
    uint32_t bitDepth = 16;  // 8, 16, 24, 32, or anything else for fault tests
    // 0: derived from the video, frameCount * sampleRate / frameRate (0 for a
    // rate of 0 or less). Any other value is reported as it is.
    uint64_t sampleCount = 0;
    RefAudioTone tone;
};

// One processing attribute as the clip offers it.
//   value:    the clip's (or frame's) current value at opening
//   minimum/maximum: the range; Empty type = the attribute has no range, and
//             Get...AttributeRange fails with InvalidArg
//   list:     the allowed values; empty = no list, Get...AttributeList fails
//             with InvalidArg
//   readOnly: Set... is refused (InvalidArg) and every query reports it
//   supported:false makes every access to the attribute fail with InvalidArg
struct RefAttribute {
    uint32_t id = 0;
    RefValue value;
    RefValue minimum;
    RefValue maximum;
    std::vector<RefValue> list;
    bool readOnly = false;
    bool supported = true;
};

// The default tone-curve controls of one gamma under one colour science
// generation, as IBlackmagicRawToneCurve::GetToneCurve answers them. A pair
// without an entry makes GetToneCurve fail with InvalidArg.
struct RefToneCurve {
    std::string gamma;
    uint16_t colorScienceGen = 5;
    float contrast = 0.5f;
    float saturation = 1.0f;
    float midpoint = 0.41f;
    float highlights = 1.0f;
    float shadows = 1.0f;
    float blackLevel = 0.0f;
    float whiteLevel = 1.0f;
    uint16_t videoBlackLevel = 0;
};

// Largest LUT edge accepted anywhere: 129^3 entries are 25 MB of floats, and
// no file may make the library allocate more than that for one.
constexpr uint32_t kRefMaxLutSize = 129;

// A 3D LUT in .cube order: red varies fastest, then green, then blue; three
// floats per entry, size * size * size entries. size 0 means no LUT.
struct RefLut {
    std::string name;   // e.g. "Warm.cube"
    std::string title;
    uint32_t size = 0;
    std::vector<float> data;

    bool present() const { return size > 0; }
    // 2 <= size <= kRefMaxLutSize and data holds exactly size^3 * 3 finite values.
    bool valid() const;
    bool operator==(const RefLut& other) const;
};

// Makes a method or a job stage fail. Method names are "Interface.Method"
// without the IBlackmagicRaw prefix ("Clip.GetFrameRate", "ClipEx.QueryTimecodeInfo",
// "ClipProcessingAttributes.GetClipAttributeRange", "Codec.OpenClip"...); job
// stages are "stage.read", "stage.decode", "stage.process" and "stage.trim":
// the job is created and submitted normally and its callback reports the result.
// Filters narrow the match; a filter at its default matches everything.
struct RefFault {
    std::string method;
    int32_t result = RefResult::Fail;
    int64_t frame = -1;      // frame index (stages, frame methods, per-frame queries); -1 any
    uint32_t attribute = 0;  // processing attribute id of the call; 0 any
    std::string key;         // metadata key of the call; empty any
    uint32_t skip = 0;       // matching calls that succeed before the fault starts
    uint32_t count = 0;      // matching calls that fail after that; 0 = all of them
};

// Holds a method or a job stage for some time before it does its work, so
// that races between the caller's threads and the library's can be replayed.
// Names as in RefFault.
struct RefDelay {
    std::string method;
    int64_t frame = -1;
    uint32_t milliseconds = 0;
};

// Exceptions for single frames.
struct RefFrameOverride {
    uint64_t index = 0;
    // The frame's record is written with a broken checksum: reading it fails
    // as a damaged frame does (ReadComplete with corruptResult).
    bool corrupt = false;
    int32_t corruptResult = RefResult::Fail;
    // Timecode text of this frame instead of the computed one; may be empty.
    bool hasTimecode = false;
    std::string timecode;
    // Bit-stream payload size of this frame instead of RefBitStream::frameBytes.
    uint32_t bitStreamBytes = 0;  // 0 = the clip's
    // Metadata entries of this frame, replacing same-key entries of
    // RefClipModel::frameMetadata and adding the others at the end.
    std::vector<RefMetadataEntry> metadata;
    // As-shot frame attribute values of this frame (id and value).
    std::vector<RefAttribute> attributes;
};

struct RefBitStream {
    uint32_t frameBytes = 2048;  // payload bytes of one frame record
    // Records actually written: frames at or past this index have no record, as
    // in a file cut short. UINT64_MAX = one record per frame.
    uint64_t recordedFrames = UINT64_MAX;
};

struct RefTimecodeModel {
    std::string start = "01:00:00:00";  // timecode of frame 0 ("hh:mm:ss:ff", ';' before ff for drop frame)
    bool dropFrame = false;
    // QueryTimecodeInfo's base frame index; -1 = the frame number of start at
    // the clip's rate.
    int64_t baseFrame = -1;
};

struct RefClipModel {
    RefClipModel();  // the complete default clip described above

    uint32_t width = 1920;
    uint32_t height = 1080;
    float frameRate = 24.0f;   // any float, 0 and negatives included
    float sensorRate = 0.0f;   // Frame::GetSensorRate; 0 = frameRate
    uint64_t frameCount = 48;
    std::string cameraType = "Reference Camera 6K";
    uint32_t multicardFileCount = 1;
    RefTimecodeModel timecode;

    // Empty: full, half, quarter and eighth of width x height (see refDefaultResolutions).
    std::vector<RefResolution> resolutions;

    std::vector<RefMetadataEntry> metadata;       // clip metadata, in iteration order
    std::vector<RefMetadataEntry> frameMetadata;  // metadata of every frame, in iteration order

    RefAudioModel audio;

    // Every clip and frame processing attribute, defaults filled by the constructor.
    std::vector<RefAttribute> clipAttributes;
    std::vector<RefAttribute> frameAttributes;

    std::vector<RefToneCurve> toneCurves;
    RefLut embeddedLut;

    RefBitStream bitStream;
    std::vector<RefFrameOverride> frames;  // sparse, any order
    std::vector<RefFault> faults;
    std::vector<RefDelay> delays;

    // Lookups; null when absent.
    const RefAttribute* clipAttribute(uint32_t id) const;
    RefAttribute* clipAttribute(uint32_t id);
    const RefAttribute* frameAttribute(uint32_t id) const;
    RefAttribute* frameAttribute(uint32_t id);
    const RefFrameOverride* frameOverride(uint64_t index) const;
    // The override of that frame, created when missing.
    RefFrameOverride& frameOverrideFor(uint64_t index);
    // Sets (or adds at the end) a clip metadata entry.
    void setMetadata(const std::string& key, const RefValue& value);
    void setFrameMetadata(const std::string& key, const RefValue& value);
    // Sets an attribute's current value (creating the attribute if needed).
    void setClipAttributeValue(uint32_t id, const RefValue& value);
    void setFrameAttributeValue(uint32_t id, const RefValue& value);
    // Adds a fault / a delay.
    void addFault(const std::string& method, int32_t result, int64_t frame = -1);
    void addDelay(const std::string& method, uint32_t milliseconds, int64_t frame = -1);

    // Derived figures.
    std::vector<RefResolution> effectiveResolutions() const;  // resolutions or the defaults
    uint64_t effectiveAudioSampleCount() const;
    uint64_t recordedFrameCount() const;                      // min(frameCount, recordedFrames)
    uint32_t frameBitStreamBytes(uint64_t index) const;       // payload bytes of one record
    // Metadata of one frame: frameMetadata merged with that frame's own entries.
    std::vector<RefMetadataEntry> metadataOfFrame(uint64_t index) const;
    // As-shot value of a frame attribute for one frame (the override, else the
    // attribute's value); Empty when the attribute does not exist.
    RefValue frameAttributeValueOf(uint64_t index, uint32_t id) const;
};

// The default lists of the clip attributes.
const std::vector<std::string>& refDefaultGamuts();   // 14 names
const std::vector<std::string>& refDefaultGammas();   // 16 names
std::vector<RefAttribute> refDefaultClipAttributes();
std::vector<RefAttribute> refDefaultFrameAttributes();
std::vector<RefToneCurve> refDefaultToneCurves();
std::vector<RefMetadataEntry> refDefaultClipMetadata(const std::string& cameraType);
std::vector<RefMetadataEntry> refDefaultFrameMetadata();
// full, half, quarter, eighth of the size (integer division).
std::vector<RefResolution> refDefaultResolutions(uint32_t width, uint32_t height);

// The two resolution look-ups of the library, as RefResolution describes them.
// False when the list is empty or the scale is no scale and has no entry.
bool refClosestScaleForResolution(const RefClipModel& model, uint32_t width, uint32_t height,
                                  RefResolutionScale& scale);
bool refClosestResolutionForScale(const RefClipModel& model, RefResolutionScale scale, uint32_t& width,
                                  uint32_t& height);

// True when a fault or delay entry applies to a call. Counting (skip/count)
// is the caller's business.
bool refFaultMatches(const RefFault& fault, const std::string& method, int64_t frame,
                     uint32_t attribute, const std::string& key);
bool refDelayMatches(const RefDelay& delay, const std::string& method, int64_t frame);

}  // namespace twref
