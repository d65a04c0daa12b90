#pragma once
// End-to-end tests on reference clips: each test writes the clips it needs,
// imports them into the simulated host as a host does (imOpenFile8, then
// imGetInfo8) and, at its end, closes every file and shuts the importer down,
// after which nothing may be left: no host memory, suite, string or frame, and
// no object of the decoder library.

#include "ImporterTestSupport.h"

#include "Format/RefClipModel.h"
#include "twSimFile.h"

#include "_qvBRAW_Importer/PrivateData.h"

#include <memory>
#include <string>
#include <vector>

class ClipImportTest : public ImporterTest {
protected:
    void TearDown() override;

    // A started and initialised host.
    twSimHost& startHost(const twSimIdentity& identity = twSimIdentity::PremierePro(),
                         const std::string& plugin = TW_IMPORTER_PLUGIN);
    // Writes `model` as test-folder/<name> and gives its path.
    std::string writeClip(const std::string& name, const twref::RefClipModel& model) const;
    // The host's import of `path`; the file stays the test's until the end.
    twSimFile& importClip(const std::string& path);
    // A file the host knows but has not sent any selector for yet.
    twSimFile& newFile(const std::string& path);
    // The importer's record of a file, through its handle.
    static const TWI_PrivateData& record(const twSimFile& file);
    // The prefs blob the host keeps for the file, as bytes.
    static std::vector<unsigned char> prefsBytes(const twSimFile& file);
    // The whole log of the importer in Premiere Pro, for entries of several lines.
    std::string logText(const std::string& hostText = "Premiere Pro") const;
    // Closes every file, shuts the importer down and checks that nothing is
    // left behind. Runs at the end of every test that started a host.
    void finish();

    std::vector<std::unique_ptr<twSimFile>> m_files;
    bool m_finished = false;
    // Off for a test whose importer runs without the decoder library.
    bool m_expectDecoder = true;
};

// Objects the decoder library has handed out and not had back; fails the test
// when the library offers no count.
uint64_t decoderLiveObjectCount(std::string* report = nullptr);
// A default clip with audio of that layout (samples derived from the video).
twref::RefClipModel clipWithAudio(uint32_t channels, uint32_t sampleRate, uint32_t bitDepth);
// The samples the host should receive: the library's samples of [first, first + count)
// as the Audio suite turns them into floats, one vector per channel.
std::vector<std::vector<float>> expectedAudio(const twref::RefClipModel& model, int64_t first, uint32_t count);
int32_t readInt32(const void* bytes, size_t offset);
// A member of a packed host record, read as a value: the assertion macros bind
// references, and a member at an odd offset has none to give.
template <typename T>
T packed(T value) {
    return value;
}
