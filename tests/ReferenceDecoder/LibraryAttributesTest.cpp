// Clip and frame processing attributes: lists, ranges and read-only flags as
// the clip describes them, validation of what a caller sets, the LUT
// attributes, and a frame answering for its own decode settings.

#include "LibraryTestSupport.h"

#include "Writer/RefClipWriter.h"

using namespace twtest;
using twref::RefClipModel;
using twref::RefValue;

namespace {

struct AttributesFixture : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;

    void TearDown() override { EXPECT_NO_LIVE_OBJECTS(lib); }
};

}  // namespace

TEST_F(AttributesFixture, ListsRangesAndReadOnlyFlagsAreTheClips)
{
    RefClipModel model = smallClip();
    model.clipAttribute(twref::RefClipAttr::HighlightRecovery)->readOnly = true;
    model.clipAttribute(twref::RefClipAttr::ToneCurveContrast)->minimum = RefValue::f32(0.25f);
    const std::string path = writeClip(folder, "a.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);

    // Two calls: the count, then the values (strings the caller clears).
    uint32_t count = 0;
    bool readOnly = true;
    ASSERT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeGamma, nullptr, &count, &readOnly),
              S_OK);
    EXPECT_EQ(count, 16u);
    EXPECT_FALSE(readOnly);
    std::vector<Variant> gammas(count);
    uint32_t small = count - 1;
    EXPECT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeGamma, gammas.data(), &small,
                                               &readOnly),
              E_INVALIDARG);
    ASSERT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeGamma, gammas.data(), &count,
                                               &readOnly),
              S_OK);
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(gammas[i].vt, BlackmagicRawVariantType(blackmagicRawVariantTypeString));
        EXPECT_EQ(gammas[i].bstrVal, twref::refDefaultGammas()[i]);
        lib.variantClear(&gammas[i]);
    }
    EXPECT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeColorScienceGen, nullptr, &count,
                                               &readOnly),
              S_OK);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeToneCurveContrast, nullptr, &count,
                                               &readOnly),
              E_INVALIDARG);  // a range, not a list
    EXPECT_EQ(attributes->GetClipAttributeList(blackmagicRawClipProcessingAttributeGamma, nullptr, nullptr, &readOnly),
              E_POINTER);

    Variant low, high;
    lib.variantInit(&low);
    lib.variantInit(&high);
    ASSERT_EQ(attributes->GetClipAttributeRange(blackmagicRawClipProcessingAttributeToneCurveContrast, &low, &high,
                                                &readOnly),
              S_OK);
    EXPECT_EQ(low.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeFloat32));
    EXPECT_FLOAT_EQ(low.fltVal, 0.25f);
    EXPECT_FLOAT_EQ(high.fltVal, 1.998f);
    ASSERT_EQ(attributes->GetClipAttributeRange(blackmagicRawClipProcessingAttributeHighlightRecovery, &low, &high,
                                                &readOnly),
              S_OK);
    EXPECT_TRUE(readOnly);
    EXPECT_EQ(attributes->GetClipAttributeRange(blackmagicRawClipProcessingAttributeGamut, &low, &high, &readOnly),
              E_INVALIDARG);  // a list, not a range
    EXPECT_EQ(attributes->GetClipAttributeRange(blackmagicRawClipProcessingAttributeGamut, &low, &high, nullptr),
              E_POINTER);
    EXPECT_EQ(attributes->GetClipAttributeRange(0x7A7A7A7A, &low, &high, &readOnly), E_INVALIDARG);

    // The ISO list, through the clip's attributes as through the frame's.
    ASSERT_EQ(attributes->GetISOList(nullptr, &count, &readOnly), S_OK);
    ASSERT_EQ(count, 16u);
    std::vector<uint32_t> isos(count);
    ASSERT_EQ(attributes->GetISOList(isos.data(), &count, &readOnly), S_OK);
    EXPECT_EQ(isos.front(), 100u);
    EXPECT_EQ(isos.back(), 3200u);
    uint32_t tooFew = 3;
    EXPECT_EQ(attributes->GetISOList(isos.data(), &tooFew, &readOnly), E_INVALIDARG);
}

TEST_F(AttributesFixture, SetChecksTypeListRangeAndReadOnly)
{
    RefClipModel model = smallClip();
    model.clipAttribute(twref::RefClipAttr::HighlightRecovery)->readOnly = true;
    model.clipAttribute(twref::RefClipAttr::AnalogGain)->supported = false;
    const std::string path = writeClip(folder, "a.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);

    Variant gamma = makeString("Blackmagic Design Custom");
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &gamma), S_OK);
    Variant contrast = makeFloat(1.5f);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &contrast), S_OK);
    Variant gen = makeU32(4);  // another integer type converts
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeColorScienceGen, &gen), S_OK);
    Variant v;
    lib.variantInit(&v);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeColorScienceGen, &v), S_OK);
    EXPECT_EQ(v.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeU16));
    EXPECT_EQ(v.uiVal, 4u);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &v), S_OK);
    EXPECT_STREQ(v.bstrVal, "Blackmagic Design Custom");
    EXPECT_NE(v.bstrVal, gamma.bstrVal);  // the library's own copy
    lib.variantClear(&v);

    Variant unknownGamma = makeString("No Such Gamma");
    Variant tooHigh = makeFloat(2.5f);
    Variant wrongKind = makeString("1.0");
    Variant number = makeU16(1);
    Variant nullText = makeString(nullptr);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamma, &unknownGamma), E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &tooHigh),
              E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &wrongKind),
              E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamut, &number), E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamut, &nullText), E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeHighlightRecovery, &number),
              E_INVALIDARG);  // read-only
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeAnalogGain, &contrast), E_INVALIDARG);
    EXPECT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeAnalogGain, &v), E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTName, &gamma),
              E_INVALIDARG);
    EXPECT_EQ(attributes->SetClipAttribute(blackmagicRawClipProcessingAttributeGamma, nullptr), E_POINTER);
    // Refused values changed nothing; another clone starts from the clip again.
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &v), S_OK);
    EXPECT_FLOAT_EQ(v.fltVal, 1.5f);
    Held<IBlackmagicRawClipProcessingAttributes> other;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(other.out()), S_OK);
    ASSERT_EQ(other->GetClipAttribute(blackmagicRawClipProcessingAttributeToneCurveContrast, &v), S_OK);
    EXPECT_FLOAT_EQ(v.fltVal, 0.5f);
}

TEST_F(AttributesFixture, EmbeddedLutIsDescribedAndSelectedByTheMode)
{
    RefClipModel model = smallClip();
    twref::RefClipWriter::addEmbeddedLut(model, 9);
    const std::string path = writeClip(folder, "lut.braw", model);

    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);
    Variant v;
    lib.variantInit(&v);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTName, &v), S_OK);
    EXPECT_EQ(v.bstrVal, model.embeddedLut.name);
    lib.variantClear(&v);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTSize, &v), S_OK);
    EXPECT_EQ(v.uiVal, 9u);
    ASSERT_EQ(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTData, &v), S_OK);
    ASSERT_EQ(v.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeSafeArray));
    long upper = 0;
    EXPECT_EQ(lib.safeArrayGetUBound(v.parray, 1, &upper), S_OK);
    EXPECT_EQ(upper + 1, 9 * 9 * 9 * 3);
    lib.variantClear(&v);
    EXPECT_LT(attributes->GetClipAttribute(blackmagicRawClipProcessingAttributeSidecarPost3DLUTName, &v), 0);

    Held<IBlackmagicRawPost3DLUT> lut;
    ASSERT_EQ(attributes->GetPost3DLUT(lut.out()), S_OK);
    ASSERT_TRUE(lut);
    uint32_t size = 0, bytes = 0;
    void* cpu = nullptr;
    void* gpu = nullptr;
    BlackmagicRawResourceType type = 0;
    EXPECT_EQ(lut->GetSize(&size), S_OK);
    EXPECT_EQ(lut->GetResourceSizeBytes(&bytes), S_OK);
    EXPECT_EQ(lut->GetResourceCPU(&cpu), S_OK);
    EXPECT_EQ(lut->GetResourceGPU(nullptr, nullptr, &type, &gpu), S_OK);
    EXPECT_EQ(size, 9u);
    EXPECT_EQ(bytes, 9u * 9u * 9u * 3u * 4u);
    EXPECT_EQ(type, BlackmagicRawResourceType(blackmagicRawResourceTypeBufferCPU));
    EXPECT_EQ(cpu, gpu);
    ASSERT_NE(cpu, nullptr);
    EXPECT_FLOAT_EQ(static_cast<const float*>(cpu)[5], model.embeddedLut.data[5]);
    EXPECT_EQ(lut->WriteCubeFile(folder.join("x.cube").c_str()), E_NOTIMPL);
    lut.reset();
    attributes.reset();
    // The table outlives the LUT object and the clone that handed it out.
    EXPECT_FLOAT_EQ(static_cast<const float*>(cpu)[5], model.embeddedLut.data[5]);

    Held<IBlackmagicRawClipProcessingAttributes> disabled;
    ASSERT_EQ(clip->CloneClipProcessingAttributes(disabled.out()), S_OK);
    Variant mode = makeString("Disabled");
    ASSERT_EQ(disabled->SetClipAttribute(blackmagicRawClipProcessingAttributePost3DLUTMode, &mode), S_OK);
    ASSERT_EQ(disabled->GetPost3DLUT(lut.out()), S_OK);
    EXPECT_FALSE(lut);
    EXPECT_EQ(disabled->GetPost3DLUT(nullptr), E_POINTER);
}

TEST_F(AttributesFixture, AFrameAnswersForItsOwnDecodeSettings)
{
    RefClipModel model = smallClip();
    twref::RefAttribute iso400;
    iso400.id = twref::RefFrameAttr::ISO;
    iso400.value = RefValue::u32(400);
    model.frameOverrideFor(1).attributes = {iso400};
    model.frameAttribute(twref::RefFrameAttr::Exposure)->readOnly = true;
    const std::string path = writeClip(folder, "frame.braw", model);

    CodecSession session(lib, &callback);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    uint32_t iso = 0, cloneIso = 0, kelvinMax = 0, isoCount = 0;
    bool exposureReadOnly = false;
    HRESULT exposureSet = S_OK, clipIdOnFrameSide = S_OK;
    callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
        ASSERT_EQ(hr, S_OK);
        Held<IBlackmagicRawClipProcessingAttributes> settings;
        ASSERT_EQ(queryInto(frame, IID_IBlackmagicRawClipProcessingAttributes, settings), S_OK);
        Variant v, low, high;
        lib.variantInit(&v);
        lib.variantInit(&low);
        lib.variantInit(&high);
        ASSERT_EQ(settings->GetClipAttribute(blackmagicRawFrameProcessingAttributeISO, &v), S_OK);
        iso = v.uintVal;
        bool readOnly = false;
        ASSERT_EQ(settings->GetClipAttributeRange(blackmagicRawFrameProcessingAttributeWhiteBalanceKelvin, &low,
                                                  &high, &readOnly),
                  S_OK);
        kelvinMax = high.uintVal;
        ASSERT_EQ(settings->GetISOList(nullptr, &isoCount, &readOnly), S_OK);

        Held<IBlackmagicRawFrameProcessingAttributes> clone;
        ASSERT_EQ(frame->CloneFrameProcessingAttributes(clone.out()), S_OK);
        ASSERT_EQ(clone->GetFrameAttribute(blackmagicRawFrameProcessingAttributeISO, &v), S_OK);
        cloneIso = v.uintVal;
        ASSERT_EQ(clone->GetFrameAttributeRange(blackmagicRawFrameProcessingAttributeExposure, &low, &high,
                                                &exposureReadOnly),
                  S_OK);
        Variant exposure = makeFloat(1.0f);
        exposureSet = clone->SetFrameAttribute(blackmagicRawFrameProcessingAttributeExposure, &exposure);
        clipIdOnFrameSide = clone->GetFrameAttribute(blackmagicRawClipProcessingAttributeGamma, &v);
    };
    Held<IBlackmagicRawClipEx> clipEx;
    ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
    Held<IBlackmagicRawJob> job;
    ASSERT_EQ(clipEx->CreateJobReadFrame(1, nullptr, 0, job.out()), S_OK);
    ASSERT_EQ(job->Submit(), S_OK);
    ASSERT_EQ(session.codec->FlushJobs(), S_OK);
    EXPECT_EQ(iso, 400u);
    EXPECT_EQ(cloneIso, 400u);
    EXPECT_EQ(kelvinMax, 50000u);
    EXPECT_EQ(isoCount, 16u);
    EXPECT_TRUE(exposureReadOnly);
    EXPECT_EQ(exposureSet, E_INVALIDARG);
    EXPECT_EQ(clipIdOnFrameSide, E_INVALIDARG);
}
