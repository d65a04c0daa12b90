// imPerformSourceSettingsCommand end to end: the record check, the two
// commands, the default answer and the wrong-timecode warning.

#include "ClipImportSupport.h"
#include "SourceSettingsSupport.h"

#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace twtest;
using namespace twtest::initdata;
using twref::RefClipModel;

namespace {

const std::string kTimecodeText =
    std::string("You can correct the timecode with our Panel. You can disable this warning in the Settings. More info "
                "here ") +
    TW_TIMECODE_HELP_URL;

RefClipModel clipWithTimecode(float rate, const std::string& start, bool dropFrame) {
    RefClipModel model = twref::RefClipWriter::makeClip(64, 36, rate, 4);
    model.timecode.start = start;
    model.timecode.dropFrame = dropFrame;
    return model;
}

bool hasLine(const std::vector<LogLine>& lines, const std::string& level, const std::string& part) {
    for (const LogLine& line : lines) {
        if (line.level == level && line.message.find(part) != std::string::npos) return true;
    }
    return false;
}

class SourceSettingsTest : public ClipImportTest {
protected:
    // The default command for `file` with the host showing `adobe` as its start.
    EffectExchange askPanelData(twSimFile& file, uint32_t adobe, csSDK_int32 expected = imNoErr) {
        EffectRecord record;
        record.adobeTimecodeSet = 1;
        record.adobeTimecode = adobe;
        EffectExchange exchange(record);
        EXPECT_EQ(exchange.send(file), expected);
        return exchange;
    }

    void writeOptionsText(const std::string& text) const {
        m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini", text);
    }
};

}  // namespace

TEST_F(SourceSettingsTest, ARecordOfAnotherSizeOrWithoutDataIsRefusedWithABox) {
    startHost();
    twSimFile& file = importClip(writeClip("a.braw", RefClipModel()));
    host().events().clear();

    EffectExchange other;
    EXPECT_EQ(other.send(file, 4000), imOtherErr);
    EXPECT_EQ(events(), std::vector<std::string>{
                            std::string("3|BRAW - Your project uses Tarnwick but has been created with the BM plugin and "
                                        "could not work well because of this (The BM plugin is still running and "
                                        "could be not stable). More informations on our website ") +
                            TW_WEBSITE_URL + "| - " + bugReportText()});
    EXPECT_EQ(other.effectBytes().at(kImporterAnswered), 0) << "a foreign record is not written";

    host().events().clear();
    EXPECT_EQ(file.sourceSettingsCommand(nullptr, static_cast<csSDK_int32>(kSize)), imOtherErr);
    EffectExchange empty;
    std::memset(empty.slot(), 0, 8);
    EXPECT_EQ(empty.send(file), imOtherErr);
    EXPECT_EQ(events(),
              (std::vector<std::string>{
                  "3|BRAW - Importer PerformSSCommand Error|SDKPerformSourceSettingsCommand - initData is nullptr ! - " +
                      bugReportText(),
                  "3|BRAW - Importer PerformSSCommand Error|SDKPerformSourceSettingsCommand - *initData is nullptr ! - " +
                      bugReportText()}));
    finish();
}

TEST_F(SourceSettingsTest, TheOptionsCommandRereadsTheOptionsAndDoesNothingElse) {
    startHost();
    twSimFile& file = importClip(writeClip("a.braw", RefClipModel()));
    EXPECT_TRUE(logLines().empty()) << "the log is off at the start";

    writeOptions("INFO");
    EffectRecord both;
    both.reloadOptions = 1;
    both.reloadSidecar = 1;
    EffectExchange options(both);
    EXPECT_EQ(options.send(file), imNoErr);
    EXPECT_EQ(options.effectBytes().at(kImporterAnswered), 1);
    EXPECT_FALSE(options.answered());
    // The reread options switched the log on; the sidecar was left alone.
    EXPECT_FALSE(logLines().empty());
    EXPECT_FALSE(hasLine(logLines(), "INFO", "Reloading SidecarFile"));

    EffectRecord sidecar;
    sidecar.reloadSidecar = 1;
    EffectExchange reload(sidecar);
    EXPECT_EQ(reload.send(file), imNoErr);
    EXPECT_FALSE(reload.answered());
    EXPECT_TRUE(hasLine(logLines(), "INFO", "Reloading SidecarFile"));
    finish();
}

TEST_F(SourceSettingsTest, AClipTheRegistryDoesNotKnowFailsTheFillButNotTheSidecarReload) {
    writeOptions("INFO");
    startHost();
    const std::string path = writeClip("never-opened.braw", RefClipModel());
    twSimFile& file = newFile(path);

    EffectExchange fill;
    EXPECT_EQ(fill.send(file), imOtherErr);
    EXPECT_EQ(fill.effectBytes().at(kImporterFailed), 1);
    EXPECT_EQ(fill.effectBytes().at(kImporterAnswered), 1);
    EXPECT_FALSE(fill.answered());
    EXPECT_TRUE(hasLine(logLines(), "ERR",
                        "Getting SS InitData - Clip has not been found in list from filepath : " + path +
                            " - Test clipFound : 0"));

    EffectRecord sidecar;
    sidecar.reloadSidecar = 1;
    EffectExchange reload(sidecar);
    EXPECT_EQ(reload.send(file), imNoErr);
    EXPECT_EQ(reload.effectBytes().at(kImporterFailed), 0);
    EXPECT_TRUE(hasLine(logLines(), "ERR",
                        "Updating Sidecar - Clip has not been found in list from filepath : " + path +
                            " - Test clipFound : 0"));
    finish();
}

TEST_F(SourceSettingsTest, TheAnswerIsTheClipsRecordWithTheEffectsTimecodeAndThePath) {
    startHost();
    const std::string path = writeClip("answer.braw", RefClipModel());
    twSimFile& file = importClip(path);

    EffectExchange first = askPanelData(file, 86390);
    ASSERT_TRUE(first.answered());
    EXPECT_EQ(first.effectBytes().at(kImporterAnswered), 1);
    const Bytes answer = first.answerBytes();
    EXPECT_EQ(answer.at(kImporterAnswered), 1);
    EXPECT_EQ(answer.at(kImporterFailed), 0);
    EXPECT_EQ(answer.at(kAdobeTimecodeSet), 1);
    EXPECT_EQ(getU32(answer, kAdobeTimecode), 86390u);
    EXPECT_EQ(getU64(answer, kFilepathLength), path.size());
    EXPECT_EQ(getText(answer, kFilepath, kFilepathSize), path);
    EXPECT_EQ(answer.at(kReloadOptionsCommand), 0);
    EXPECT_EQ(answer.at(kReloadSidecarCommand), 0);

    // The same record answers again, with this call's timecode.
    EffectExchange second = askPanelData(file, 12);
    ASSERT_TRUE(second.answered());
    EXPECT_EQ(*reinterpret_cast<void* const*>(second.slot()), *reinterpret_cast<void* const*>(first.slot()));
    EXPECT_EQ(getU32(second.answerBytes(), kAdobeTimecode), 12u);
    finish();
}

TEST_F(SourceSettingsTest, TheWrongTimecodeOfSlowedRatesIsWarnedOncePerClip) {
    writeOptions("INFO");
    startHost();
    // 01:00:00:00 counted at 24: frame 86400, which the host shows as 86313.
    const float rate23 = 24000.0f / 1001.0f;
    twSimFile& wrong = importClip(writeClip("wrong.braw", clipWithTimecode(rate23, "01:00:00:00", false)));
    twSimFile& same = importClip(writeClip("same.braw", clipWithTimecode(rate23, "01:00:00:00", false)));
    twSimFile& unknown = importClip(writeClip("unknown.braw", clipWithTimecode(rate23, "01:00:00:00", false)));
    twSimFile& whole = importClip(writeClip("whole.braw", clipWithTimecode(24.0f, "01:00:00:00", false)));
    host().events().clear();

    askPanelData(wrong, 86313);
    EXPECT_EQ(events(), std::vector<std::string>{"2|BRAW - Wrong Timecode for wrong.braw|" + kTimecodeText});
    EXPECT_TRUE(hasLine(logLines(), "WARN", "Timecode Check for clip"));
    const std::string trace = logText();
    EXPECT_NE(trace.find("    - Timecode BM       : 86400"), std::string::npos) << trace;
    EXPECT_NE(trace.find("    - Timecode BM Wrong : 86313 => Displaying Warning msg"), std::string::npos) << trace;

    // The check runs when the data are made, not on later calls.
    host().events().clear();
    askPanelData(wrong, 86313);
    EXPECT_TRUE(events().empty());

    askPanelData(same, 86400);
    askPanelData(unknown, 0xFFFFFFFF);
    // A whole rate is never the host's mistake, whatever the numbers.
    askPanelData(whole, 86313);
    EXPECT_TRUE(events().empty()) << events().front();
    // The trace is one entry of several lines; its verdict ends the last one.
    EXPECT_NE(logText().find("    - Timecode BM Wrong : 86313 => Timecode Adobe is the same than BM - No need to warn "
                             "user."),
              std::string::npos);
    // A host that differs without being wrong is only logged, as an error.
    EXPECT_TRUE(hasLine(logLines(), "ERR", "Timecode Check for clip 3 : "));
    EXPECT_TRUE(hasLine(logLines(), "ERR", "Timecode Check for clip 2 : "));
    finish();
}

TEST_F(SourceSettingsTest, AnyOtherTimecodeOfNonDropThirtyIsWarnedButDropFrameIsNot) {
    startHost();
    const float rate29 = 30000.0f / 1001.0f;
    twSimFile& nonDrop = importClip(writeClip("nondrop.braw", clipWithTimecode(rate29, "01:00:00:00", false)));
    twSimFile& drop = importClip(writeClip("drop.braw", clipWithTimecode(rate29, "01:00:00;00", true)));
    twSimFile& dropOther = importClip(writeClip("drop-other.braw", clipWithTimecode(rate29, "01:00:00;00", true)));
    host().events().clear();

    // Neither the clip's 108000 nor the host's mistake 107892.
    askPanelData(nonDrop, 108005);
    EXPECT_EQ(events(), std::vector<std::string>{"2|BRAW - Wrong Timecode for nondrop.braw|" + kTimecodeText});

    host().events().clear();
    // Drop-frame 01:00:00;00 is frame 107892, which is no wrong value of its own.
    askPanelData(drop, 107892);
    askPanelData(dropOther, 107900);
    EXPECT_TRUE(events().empty());
    finish();
}

TEST_F(SourceSettingsTest, TheOptionSilencesTheTimecodeWarning) {
    writeOptionsText("[General]\nlogging=INFO\n[PremierePro]\npproDisableTimecodeWarning=true\n");
    startHost();
    twSimFile& file = importClip(writeClip("wrong.braw", clipWithTimecode(24000.0f / 1001.0f, "01:00:00:00", false)));
    host().events().clear();
    EffectExchange exchange = askPanelData(file, 86313);
    EXPECT_TRUE(exchange.answered());
    EXPECT_TRUE(events().empty());
    EXPECT_FALSE(hasLine(logLines(), "WARN", "Timecode Check for clip"));
    finish();
}
