// The importer's preferences selector in the hosts that open the source
// settings window there, with the real plug-in and decoder library installed
// and the tests' stand-in application beside them.

#include "ClipImportSupport.h"

#include "SettingsAppStandIn.h"
#include "TW_Settings_Utils/TW_Presets.h"
#include "Manager/twSettingsVocabulary.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include <cstring>
#include <filesystem>

using twref::RefClipModel;
using twtest::readArguments;

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 32;

// The sum of all the bytes of a frame: a brighter picture has the greater one.
uint64_t byteSum(const twSimFrameRef& frame) {
    uint64_t sum = 0;
    for (int row = 0; row < kHeight; ++row) {
        const unsigned char* bytes = frame.row(row);
        for (int i = 0; i < kWidth * 4; ++i) sum += bytes[i];
    }
    return sum;
}

const char kProduct[] = "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick";

std::vector<unsigned char> defaultBlob() {
    const twImporterSharedPrefs prefs;
    const auto* bytes = reinterpret_cast<const unsigned char*>(&prefs);
    return std::vector<unsigned char>(bytes, bytes + sizeof(prefs));
}

class SettingsPopupImport : public ClipImportTest {
protected:
    SettingsPopupImport() {
        // The stand-ins of the install make way for the real modules.
        namespace fs = std::filesystem;
        const fs::path product = m_root + kProduct;
        fs::copy_file(TW_IMPORTER_PLUGIN, m_plugin, fs::copy_options::overwrite_existing);
        fs::copy_file(TW_REF_DECODER_LIBRARY, product / "libBlackmagicRawAPI.so", fs::copy_options::overwrite_existing);
    }

    std::string resultPreset(uint32_t iso) const {
        TW_Preset preset;
        twFrameAttributes frame;
        frame.iso = iso;
        preset.setValues(twClipAttributes(), frame, WB_PRESET_AS_SHOT, std::vector<bool>(BRAW_SETTINGS_COUNT, true));
        const std::string path = m_folder.join("edited.twPreset");
        EXPECT_TRUE(preset.save(qvUtf8String(path)).isOk());
        return path;
    }

    std::string m_plugin = m_root + kProduct + "/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so";
    twtest::SettingsAppStandIn m_app{TW_POPUP_TEST_CHILD, m_root + kProduct + "/Tarnwick.app/Contents/MacOS/Tarnwick"};
    std::string m_record = m_folder.join("argv");
};

}  // namespace

TEST_F(SettingsPopupImport, AfterEffectsWindowChangeReachesThePrefsBlob) {
    m_app.script({"argv " + m_record, "result " + resultPreset(1600), "out json:{\"modified\":false}"});
    startHost(twSimIdentity::AfterEffects(), m_plugin);
    const std::string clip = writeClip("A clip \"one\".braw", RefClipModel());
    twSimFile& file = importClip(clip);
    const twSimFrameRequest request = file.frameRequest(0, kWidth, kHeight, PrPixelFormat_BGRA_4444_8u);
    twSimFrameResult before = file.getSourceVideo(request);
    ASSERT_EQ(before.result, imNoErr);
    ASSERT_EQ(file.getPrefs(), imNoErr);

    const std::vector<std::string> args = readArguments(m_record);
    ASSERT_EQ(args.size(), 6u);
    EXPECT_EQ(args[0], "-sourceSettingsPopup");
    EXPECT_EQ(args[1], clip);
    EXPECT_EQ(args[5], "1");
    const std::vector<unsigned char> blob = prefsBytes(file);
    ASSERT_EQ(blob.size(), 396u);
    EXPECT_EQ(blob[4], 1);  // the settings are in use
    EXPECT_EQ(readInt32(blob.data(), 188), 1600);

    // The next frame is decoded at ISO 1600: two stops brighter than before.
    twSimFrameResult after = file.getSourceVideo(request);
    ASSERT_EQ(after.result, imNoErr);
    EXPECT_GT(byteSum(after.frame), byteSum(before.frame));
    before.frame.reset();
    after.frame.reset();
    finish();
}

TEST_F(SettingsPopupImport, CancelChangesNothingAndAChangedOptionsFileIsReadAgain) {
    // The window rewrites the options file (logging on) but says nothing changed.
    const std::string options = m_folder.writeFile("options.ini", "[General]\nlogging=INFO\n");
    const std::string ini = m_home + "/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini";
    const std::string log = productFolder() + "/Logs/Tarnwick_Importer_Adobe Media Encoder.log";
    m_app.script({"copy " + options + " " + ini, "out json:{\"modified\":false}"});
    startHost(twSimIdentity::MediaEncoder(), m_plugin);
    twSimFile& file = importClip(writeClip("clip.braw", RefClipModel()));
    ASSERT_EQ(file.getPrefs(), imNoErr);
    EXPECT_EQ(prefsBytes(file), defaultBlob());
    EXPECT_FALSE(std::filesystem::exists(log));

    m_app.script({"out json:{\"modified\":true}"});
    ASSERT_EQ(file.getPrefs(), imNoErr);
    EXPECT_EQ(prefsBytes(file), defaultBlob());
    EXPECT_TRUE(std::filesystem::exists(log));
    finish();
}

TEST_F(SettingsPopupImport, HostKeepsWorkingWhateverTheApplicationDoes) {
    startHost(twSimIdentity::AfterEffects(), m_plugin);
    twSimFile& file = importClip(writeClip("clip.braw", RefClipModel()));

    const std::string pidFile = m_folder.join("pid");
    const std::vector<std::vector<std::string>> scripts = {
        {"out json:{\"modified\":true}", "crash"},
        {"out no answer at all"},
        {"out json:{\"modified\":tr"},
        {"hang " + pidFile},
    };
    for (const auto& script : scripts) {
        m_app.script(script);
        std::filesystem::remove(pidFile);
        twtest::HangBreaker breaker(pidFile);
        EXPECT_EQ(file.getPrefs(), imNoErr) << script.front();
        EXPECT_EQ(prefsBytes(file), defaultBlob()) << script.front();
    }

    std::filesystem::remove(m_app.path());
    EXPECT_EQ(file.getPrefs(), imNoErr);
    EXPECT_EQ(prefsBytes(file), defaultBlob());

    // A sound application afterwards is heard as ever.
    twtest::SettingsAppStandIn again(TW_POPUP_TEST_CHILD, m_app.path());
    again.script({"result " + resultPreset(3200), "out json:{\"modified\":false}"});
    ASSERT_EQ(file.getPrefs(), imNoErr);
    EXPECT_EQ(readInt32(prefsBytes(file).data(), 188), 3200);
    finish();
}

TEST_F(SettingsPopupImport, PremiereProOpensNoWindowHere) {
    m_app.script({"argv " + m_record});
    startHost(twSimIdentity::PremierePro(), m_plugin);
    twSimFile& file = importClip(writeClip("clip.braw", RefClipModel()));
    ASSERT_EQ(file.getPrefs(), imNoErr);
    EXPECT_FALSE(std::filesystem::exists(m_record));
    finish();
}
