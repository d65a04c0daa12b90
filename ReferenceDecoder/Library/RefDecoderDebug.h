#pragma once
// What tests of a caller (the product's own tests) may use of the reference
// decoder beyond the published interface. The vendor's library has none of
// this: look the symbol up with dlsym and skip the checks when it is absent.
//
// Live objects
//   uint64_t twRefDecoderLiveObjects(char* report, uint32_t reportSize)
//   returns how many things the library has handed out and not had back:
//   COM objects (factories, codecs, clips, frames, jobs, attribute clones,
//   LUTs, iterators, images, resource managers...), strings and SafeArrays it
//   put into Variants (until VariantClear / SafeArrayDestroy), and resources
//   of its resource managers (until ReleaseResource). With report non-null it
//   also writes one line per item, "<kind> <address> refs=<n>" (refs for COM
//   objects only), cut to reportSize bytes including the terminating zero.
//   After a caller has released everything and FlushJobs has returned, the
//   count is 0: jobs in flight hold their own references until their callback
//   has returned.
//
// Faults, delays and damaged frames
//   Per clip, in the clip's description (see the clip format's README and
//   RefClipModel.h: RefFault, RefDelay, RefFrameOverride::corrupt). Method
//   names are "Interface.Method" without the "IBlackmagicRaw" prefix, the codec
//   itself being "Codec" ("Codec.OpenClip", "Clip.GetFrameRate",
//   "ClipEx.GetBitStreamSizeBytes", "ClipProcessingAttributes.SetClipAttribute",
//   "ManualDecoderFlow1.CreateJobDecode", "Job.Submit", "Frame.SetResourceFormat"...).
//   QueryInterface faults match the interface asked for through "key"
//   ("ClipEx", "ConfigurationEx", "ManualDecoderFlow1"...); metadata faults
//   match the metadata key; attribute faults the attribute id; frame-bound
//   calls (bit-stream queries, read jobs, frames, frame states, jobs) the
//   frame index. Job stages are "stage.read", "stage.decode" and
//   "stage.process": the job is made and submitted normally and its callback
//   reports the fault's result (ReadComplete / ProcessComplete with no frame /
//   image). A corrupt frame fails GetBitStreamSizeBytes and its read with the
//   frame's corrupt result (E_FAIL by default).
//   Codec level, in "libBlackmagicRawAPI.json" beside the library (see
//   RefLibraryConfig.h): "faults" and "delays" in the same syntax, for the
//   factory, codec, configuration, pipeline and device methods, and for any
//   clip method of every clip.

//
// Stage hook
//   void twRefDecoderSetStageHook(TwRefDecoderStageHook hook, void* context)
//   installs one process-wide function that every submitted job calls on its
//   worker thread right before it does its stage's work and reports on the
//   callback: hook(stage, frame, userData, context), stage being "read",
//   "decode" or "process" and userData what the caller set on the job. A test
//   uses it to act at an exact point between two stages (cancel a request,
//   hold a stage) without relying on timing. Null removes it; the previous
//   hook may still be running on a worker when this returns.

#include <cstdint>

extern "C" {
typedef uint64_t (*TwRefDecoderLiveObjectsFunc)(char* report, uint32_t reportSize);
typedef void (*TwRefDecoderStageHook)(const char* stage, uint64_t frame, void* userData, void* context);
typedef void (*TwRefDecoderSetStageHookFunc)(TwRefDecoderStageHook hook, void* context);
}

#define TW_REF_DECODER_LIVE_OBJECTS_SYMBOL "twRefDecoderLiveObjects"
#define TW_REF_DECODER_SET_STAGE_HOOK_SYMBOL "twRefDecoderSetStageHook"
