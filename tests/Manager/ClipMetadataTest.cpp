// The metadata of a clip as the host's panels get it: every value type as
// text within the panels' limits, the typed single-key readers, the frame
// guide, the audio figures, and the labels made of keys.

#include "ManagerTestSupport.h"

#include "Writer/RefClipWriter.h"

#include <string>

namespace {

using twref::RefClipModel;
using twref::RefValue;
using twref::RefVariantType;

class ClipMetadata : public twtest::ManagerTest {
protected:
    std::shared_ptr<qvBRAW_Clip> add(const std::string& name, const RefClipModel& model) {
        uint64_t id = 0;
        EXPECT_EQ(m_manager->AddClip(writeClip(name, model), id), 0);
        return m_manager->GetClip(id);
    }
    // A clip with only the given metadata.
    static RefClipModel bareModel() {
        RefClipModel model = smallModel();
        model.metadata.clear();
        return model;
    }
};

std::vector<double> counting(size_t count) {
    std::vector<double> values;
    for (size_t i = 0; i < count; ++i) values.push_back(static_cast<double>(i));
    return values;
}

std::string joined(size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) text += (i ? ", " : "") + std::to_string(i);
    return text;
}

}  // namespace

TEST_F(ClipMetadata, TheListShowsEveryTypeWithinThePanelsLimits) {
    RefClipModel model = bareModel();
    twref::RefClipWriter::addAllMetadataTypes(model);
    model.setMetadata("text_100", RefValue::string(std::string(100, 'x')));
    model.setMetadata("text_101", RefValue::string(std::string(101, 'y')));
    model.setMetadata("text_empty", RefValue::string(""));
    model.setMetadata("array_25", RefValue::numberArray(RefVariantType::U16, counting(25)));
    model.setMetadata("array_26", RefValue::numberArray(RefVariantType::U16, counting(26)));
    model.setMetadata("array_empty", RefValue::numberArray(RefVariantType::S32, {}));
    auto clip = add("types.braw", model);
    ASSERT_NE(clip, nullptr);

    qvBRAW_MetadataList list = {{"stale", "entry"}};
    EXPECT_EQ(clip->getClipMetadata(list), 0);
    const qvBRAW_MetadataList expected = {
        // Only 16- and 32-bit integers and 32-bit floats are numbers to the panels.
        {"test_u8", "Unknown"},
        {"test_s16", "-1234"},
        {"test_u16", "54321"},
        {"test_s32", "-123456789"},
        {"test_u32", "4000000000"},
        {"test_float32", "3.250000"},
        {"test_float64", "Unknown"},
        {"test_string", "reference"},
        {"test_empty", "Unknown"},
        {"test_array_u8", "1, 2, 3"},
        {"test_array_s16", "-1, 0, 1"},
        {"test_array_u16", "10, 20"},
        {"test_array_s32", "-70000, 70000"},
        {"test_array_u32", "1, 4000000000"},
        {"test_array_float32", "0.5, 1.5, 2.5"},
        // Elements of other types write nothing but their separators.
        {"test_array_float64", ", "},
        {"test_array_string", ", "},
        {"text_100", std::string(100, 'x')},
        {"text_101", "Too big to display"},
        {"array_25", joined(25)},
        {"array_26", "Too big to display"},
    };
    EXPECT_EQ(list, expected);
    EXPECT_TRUE(logged("INFO", " - Metadata Found : test_s16 : -1234"));
}

TEST_F(ClipMetadata, TheListStopsAtAFailingValueAndNeedsAnOpenClip) {
    RefClipModel model = bareModel();
    model.setMetadata("first", RefValue::string("one"));
    model.setMetadata("second", RefValue::string("two"));
    model.setMetadata("third", RefValue::string("three"));
    twref::RefFault fault;
    fault.method = "MetadataIterator.GetData";
    fault.key = "second";
    model.faults.push_back(fault);
    auto clip = add("stops.braw", model);
    ASSERT_NE(clip, nullptr);

    qvBRAW_MetadataList list;
    EXPECT_EQ(clip->getClipMetadata(list), 0);
    EXPECT_EQ(list, (qvBRAW_MetadataList{{"first", "one"}}));
    EXPECT_TRUE(logged("ERR", "Failed to get data from IBlackmagicRawMetadataIterator!"));

    RefClipModel noIterator = bareModel();
    noIterator.addFault("Clip.GetMetadataIterator", twref::RefResult::Fail);
    auto other = add("noiterator.braw", noIterator);
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->getClipMetadata(list), 1);
    EXPECT_TRUE(logged("ERR", "Failed to get IBlackmagicRawMetadataIterator!"));

    clip->Close(false);
    EXPECT_EQ(clip->getClipMetadata(list), 1);
    EXPECT_TRUE(logged("WARN", "No clip openeded, cannot write Metadata"));
    EXPECT_EQ(list, (qvBRAW_MetadataList{{"first", "one"}})) << "a failure leaves the list alone";
    EXPECT_TRUE(qvBRAW_Clip::GetMetadataFromIterator(nullptr, false, nullptr, nullptr).empty());
}

TEST_F(ClipMetadata, TheFrameGuideIsReadOnlyWhenAsked) {
    RefClipModel model = bareModel();
    model.setMetadata("frameguide_aspect_ratio", RefValue::string("16:9"));
    auto clip = add("guide.braw", model);
    ASSERT_NE(clip, nullptr);

    auto readGuide = [&](bool withFrameGuide, double& numerator, double& denominator) {
        IBlackmagicRawMetadataIterator* iterator = nullptr;
        ASSERT_EQ(clip->m_BM->GetMetadataIterator(&iterator), S_OK);
        const qvBRAW_MetadataList list =
            qvBRAW_Clip::GetMetadataFromIterator(iterator, withFrameGuide, &numerator, &denominator);
        iterator->Release();
        EXPECT_EQ(list.size(), 1u);
    };
    double numerator = -1.0;
    double denominator = -1.0;
    readGuide(false, numerator, denominator);
    EXPECT_EQ(numerator, -1.0);
    EXPECT_EQ(denominator, -1.0);
    readGuide(true, numerator, denominator);
    EXPECT_EQ(numerator, 16.0);
    EXPECT_EQ(denominator, 9.0);

    RefClipModel bad = bareModel();
    bad.setMetadata("frameguide_aspect_ratio", RefValue::string("2.39"));
    clip = add("badguide.braw", bad);
    ASSERT_NE(clip, nullptr);
    numerator = denominator = -1.0;
    readGuide(true, numerator, denominator);
    EXPECT_EQ(numerator, -1.0);
    EXPECT_TRUE(logged("ERR", "frameguide_aspect_ratio Metadata without : inside the string : 2.39"));
}

TEST_F(ClipMetadata, SingleKeysAreReadAsTextOrAsBool) {
    RefClipModel model = bareModel();
    twref::RefClipWriter::addAllMetadataTypes(model);
    model.setMetadata("u8_one", RefValue::u8(1));
    model.setMetadata("u8_zero", RefValue::u8(0));
    model.setMetadata("s16_one", RefValue::s16(1));
    model.setMetadata("u16_one", RefValue::u16(1));
    model.setMetadata("s32_one", RefValue::s32(1));
    model.setMetadata("u32_one", RefValue::u32(1));
    model.setMetadata("u32_two", RefValue::u32(2));
    model.setMetadata("float_one", RefValue::f32(1.0f));
    model.setMetadata("text_one", RefValue::string("1"));
    auto clip = add("single.braw", model);
    ASSERT_NE(clip, nullptr);

    EXPECT_EQ(clip->getClipMetadata("test_string", true).Str(), "reference");
    EXPECT_TRUE(clip->getClipMetadata("test_s32", true).Empty());
    EXPECT_TRUE(logged("ERR", "getClipMetadataBool called on clip with key : test_s32 but result is not a string"));
    EXPECT_TRUE(clip->getClipMetadata("absent", true).Empty());

    for (const char* key : {"u8_one", "s16_one", "u16_one", "s32_one", "u32_one"}) {
        EXPECT_TRUE(clip->getClipMetadataBool(key, true)) << key;
    }
    EXPECT_FALSE(clip->getClipMetadataBool("u8_zero", true));
    EXPECT_FALSE(clip->getClipMetadataBool("u32_two", true));
    EXPECT_FALSE(clip->getClipMetadataBool("absent", true));
    EXPECT_TRUE(logged("ERR", "getClipMetadataBool called on clip with key : absent but result is not a bool"));
    EXPECT_FALSE(clip->getClipMetadataBool("float_one", true));
    EXPECT_FALSE(clip->getClipMetadataBool("text_one", true));
    EXPECT_TRUE(logged("ERR", "getClipMetadataBool called on clip with key : text_one but result is not a bool"));

    // Under the caller's lock.
    clip->m_bmClipMutex.lock();
    EXPECT_TRUE(clip->getClipMetadataBool("u8_one", false));
    clip->m_bmClipMutex.unlock();

    clip->Close(false);
    EXPECT_TRUE(clip->getClipMetadata("test_string", true).Empty());
    EXPECT_FALSE(clip->getClipMetadataBool("u8_one", true));
    EXPECT_TRUE(logged("ERR", "getClipMetadata - m_BM is nullptr"));
}

TEST_F(ClipMetadata, AudioFiguresAreAppendedThoseTheLibraryGives) {
    auto clip = add("audio.braw", twref::RefClipWriter::makeClipWithAudio(64, 36, 24.0f, 48, 2, 48000, 24));
    ASSERT_NE(clip, nullptr);
    qvBRAW_MetadataList list = {{"kept", "yes"}};
    clip->getAudioMetadata(list);
    EXPECT_EQ(list, (qvBRAW_MetadataList{{"kept", "yes"},
                                         {"audioBitDepth", "24"},
                                         {"audioChannelCount", "2"},
                                         {"audioSampleRate", "48000"},
                                         {"audioSampleCount", "96000"}}));

    RefClipModel partial = twref::RefClipWriter::makeClipWithAudio(64, 36, 24.0f, 48, 2, 48000, 16);
    partial.addFault("ClipAudio.GetAudioSampleRate", twref::RefResult::Fail);
    clip = add("partial.braw", partial);
    list.clear();
    clip->getAudioMetadata(list);
    EXPECT_EQ(list, (qvBRAW_MetadataList{
                        {"audioBitDepth", "16"}, {"audioChannelCount", "2"}, {"audioSampleCount", "96000"}}));
    EXPECT_TRUE(logged("ERR", "Impossible to get AudioSampleRate"));

    RefClipModel noAudio = smallModel();
    twref::RefFault fault;
    fault.method = "Clip.QueryInterface";
    fault.key = "ClipAudio";
    noAudio.faults.push_back(fault);
    clip = add("noaudio.braw", noAudio);
    list.clear();
    clip->getAudioMetadata(list);
    EXPECT_TRUE(list.empty());
    EXPECT_TRUE(logged("ERR", "Impossible to Query IID_IBlackmagicRawClipAudio"));
}

TEST_F(ClipMetadata, MostPopularKeysComeInTheirOwnOrderWithBooleansAsDigits) {
    RefClipModel model = bareModel();
    model.setMetadata("braw_compression_ratio", RefValue::string("12:1"));
    model.setMetadata("good_take", RefValue::string("true"));
    model.setMetadata("take", RefValue::string("false"));
    model.setMetadata("lens_type", RefValue::string("50mm"));
    model.setMetadata("reel_name", RefValue::string("A001"));
    auto clip = add("popular.braw", model);
    ASSERT_NE(clip, nullptr);
    EXPECT_EQ(clip->getMostPopularMetadata(), (qvBRAW_MetadataList{{"reel_name", "A001"},
                                                                   {"take", "0"},
                                                                   {"good_take", "1"},
                                                                   {"braw_compression_ratio", "12:1"}}));
    // "scene" is not in the list of five entries: its search ran past the end.
    EXPECT_TRUE(logged("ERR", "Wrong index number : 5"));
}

TEST(ClipMetadataLabels, KeysBecomeWordsInCapitals) {
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("camera_iso").Str(), "Camera ISO");
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("braw_compression_ratio").Str(), "BRAW Compression Ratio");
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("3dlut_mode").Str(), "3DLUT Mode");
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("nd_filter_id").Str(), "ND Filter ID");
    // Only whole words are acronyms, and empty words vanish.
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("isolation").Str(), "Isolation");
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("_white__balance_").Str(), "White Balance");
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("").Str(), "");
    // Characters of more than one byte stay as they are.
    EXPECT_EQ(qvBRAW_Clip::makeMetadataKeyPretty("\xC3\xA9t\xC3\xA9_iso").Str(), "\xC3\xA9t\xC3\xA9 ISO");

    EXPECT_EQ(qvBRAW_Clip::UpperStr("abc", true, false).Str(), "Abc");
    EXPECT_EQ(qvBRAW_Clip::UpperStr("abc", false, true).Str(), "ABC");
    EXPECT_EQ(qvBRAW_Clip::UpperStr("abc", false, false).Str(), "abc");
    EXPECT_EQ(qvBRAW_Clip::UpperStr("a\xC3\xA9z", false, true).Str(), "A\xC3\xA9Z");
}
