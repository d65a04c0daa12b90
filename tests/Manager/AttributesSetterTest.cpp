// Decode settings written into the reference decoder's attribute objects: the
// tone curve only under the custom gamma, read-only attributes passed over, a
// refused write stopping the fill.

#include "ManagerTestSupport.h"

#include "Manager/AttributesSetter.h"
#include "Manager/twComRelease.h"
#include "Utils/qvUtils.h"
#include "Writer/RefClipWriter.h"

namespace {

using twref::RefClipModel;

class Attributes : public twtest::ManagerTest {
protected:
    void TearDown() override {
        twReleaseAndNull(m_clipAttrs);
        m_clip.reset();
        twtest::ManagerTest::TearDown();
    }

    // A clone of the attributes of a clip of `model`. (The frame side is
    // written in the read stage: see the request flow's tests.)
    void clone(const RefClipModel& model) {
        uint64_t id = 0;
        ASSERT_EQ(m_manager->AddClip(writeClip("clip.braw", model), id), 0);
        m_clip = m_manager->GetClip(id);
        ASSERT_EQ(m_clip->m_BM->CloneClipProcessingAttributes(&m_clipAttrs), S_OK);
    }

    float clipFloat(uint32_t id) {
        Variant value;
        VariantInit(&value);
        EXPECT_EQ(m_clipAttrs->GetClipAttribute(id, &value), S_OK);
        const float result = value.fltVal;
        VariantClear(&value);
        return result;
    }
    std::string clipText(uint32_t id) {
        Variant value;
        VariantInit(&value);
        EXPECT_EQ(m_clipAttrs->GetClipAttribute(id, &value), S_OK);
        const std::string result = value.bstrVal ? value.bstrVal : "";
        VariantClear(&value);
        return result;
    }

    std::shared_ptr<qvBRAW_Clip> m_clip;
    IBlackmagicRawClipProcessingAttributes* m_clipAttrs = nullptr;
};

TEST_F(Attributes, TheToneCurveIsWrittenOnlyUnderTheCustomGamma) {
    clone(twref::RefClipWriter::makeClip(64, 36, 24.0f, 2));
    twClipAttributes prefs;
    prefs.colorScienceGen = 5;
    twCopyFixedText(prefs.gamut, sizeof prefs.gamut, "Rec.709");
    prefs.gammaControls.contrast = 1.25f;
    prefs.gammaControls.blackLevel = 0.1f;
    twCopyFixedText(prefs.lutMode, sizeof prefs.lutMode, "Disabled");

    ASSERT_TRUE(AttributesSetter::fillClipProcessingAttributesFromPrefs(m_clipAttrs, prefs).isOk());
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributeGamut), "Rec.709");
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributeGamma), "Blackmagic Design Film");
    EXPECT_FLOAT_EQ(clipFloat(blackmagicRawClipProcessingAttributeToneCurveContrast), 0.5f);

    twCopyFixedText(prefs.gamma, sizeof prefs.gamma, TW_CUSTOM_GAMMA_NAME);
    ASSERT_TRUE(AttributesSetter::fillClipProcessingAttributesFromPrefs(m_clipAttrs, prefs).isOk());
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributeGamma), TW_CUSTOM_GAMMA_NAME);
    EXPECT_FLOAT_EQ(clipFloat(blackmagicRawClipProcessingAttributeToneCurveContrast), 1.25f);
    EXPECT_FLOAT_EQ(clipFloat(blackmagicRawClipProcessingAttributeToneCurveBlackLevel), 0.1f);
}

TEST_F(Attributes, AReadOnlyAttributeIsPassedOverAndARefusedOneStopsTheFill) {
    RefClipModel model = twref::RefClipWriter::makeClip(64, 36, 24.0f, 2);
    model.clipAttribute(blackmagicRawClipProcessingAttributeGamutCompressionEnable)->readOnly = true;
    twref::RefFault refused;
    refused.method = "ClipProcessingAttributes.SetClipAttribute";
    refused.attribute = blackmagicRawClipProcessingAttributeHighlightRecovery;
    model.faults.push_back(refused);
    clone(model);

    twClipAttributes prefs;
    prefs.colorScienceGen = 4;
    twCopyFixedText(prefs.gamut, sizeof prefs.gamut, "Rec.709");
    prefs.gamutCompression = true;
    twCopyFixedText(prefs.lutMode, sizeof prefs.lutMode, "Embedded");
    const QvResult result = AttributesSetter::fillClipProcessingAttributesFromPrefs(m_clipAttrs, prefs);
    EXPECT_TRUE(logged("INFO", "Setting Gamut Compression Attribute failed but normal : parameter is ReadOnly"));
    // Written before the refusal, and nothing after it.
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributeGamut), "Rec.709");
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributeGamma), "Blackmagic Design Film");
    EXPECT_EQ(clipText(blackmagicRawClipProcessingAttributePost3DLUTMode), "Disabled");
    ASSERT_TRUE(result.hasError);
    EXPECT_EQ(result.toString().Str(), "Setting Highlight Recovery Attribute failed : " +
                                           qvUtils::getHRESULTerrorMessage(twref::RefResult::Fail).Str());
}

TEST_F(Attributes, NoObjectToWriteIntoIsAnErrorNamingTheAttribute) {
    QvResult result;
    const uint32_t clipId = blackmagicRawClipProcessingAttributeGamut;
    const uint32_t frameId = blackmagicRawFrameProcessingAttributeISO;
    AttributesSetter::setAttribute(uint16_t(3), clipId, frameId, "Gamut", nullptr, nullptr, &result);
    EXPECT_EQ(result.toString().Str(), "Impossible to set Attribute for Gamut !! Both processingAttr are nullptr");
    bool readOnly = true;
    EXPECT_NE(AttributesSetter::checkAttributeReadOnly(nullptr, nullptr, clipId, frameId, "Gamut", &readOnly), S_OK);
    EXPECT_FALSE(readOnly);
    EXPECT_TRUE(logged("ERR", "Clip and Frame Processing Attribute are nullptr !!"));
}

}  // namespace
