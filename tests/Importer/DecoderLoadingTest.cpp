// imInit with the decoder library in each place an install can leave it: beside
// the plug-in, only in the fixed install folder, missing, or of another build.
// The plug-in is copied into the product's bundle layout under a temporary
// folder, so that its own folder is the first one searched.

#include "ImporterTestSupport.h"

#include "Library/RefDecoderDebug.h"
#include "twExpectedDecoderSize.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace {

const char kFacts[] = R"({"version": "5.0.0 e2e", "camera_support_version": "5.0 e2e cameras",
  "cpu_threads": 5, "max_cpu_thread_count": 9, "write_metadata_per_frame": false,
  "pipelines": [{"pipeline": "cpub", "devices": [{"name": "E2E CPU", "instruction_set": "avx2"}]},
                {"pipeline": "cuda"}]})";

const char kFixedFolder[] = "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick/";

void copyFile(const std::string& from, const std::string& to) {
    std::filesystem::create_directories(std::filesystem::path(to).parent_path());
    std::ifstream in(from, std::ios::binary);
    std::ofstream out(to, std::ios::binary | std::ios::trunc);
    out << in.rdbuf();
}

uint64_t decoderLiveObjects() {
    const auto live =
        reinterpret_cast<TwRefDecoderLiveObjectsFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_LIVE_OBJECTS_SYMBOL));
    return live ? live(nullptr, 0) : 0;
}

class DecoderLoading : public ImporterTest {
protected:
    // The product's folder of the copied install, with its trailing "/".
    std::string productCopy() const { return m_folder.join("install/Qervane Tarnwick") + "/"; }
    std::string fixedFolder() const { return m_root + kFixedFolder; }

    // The plug-in in its bundle inside the copied product folder.
    std::string copyPlugin() const {
        const std::string plugin = productCopy() + "Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so";
        copyFile(TW_IMPORTER_PLUGIN, plugin);
        return plugin;
    }
    // The built decoder in `folder` at the accepted size plus `extraBytes`.
    static void installDecoder(const std::string& folder, int64_t extraBytes = 0, const std::string& facts = "") {
        const std::string library = folder + "libBlackmagicRawAPI.so";
        copyFile(TW_REF_DECODER_LIBRARY, library);
        const auto size = static_cast<int64_t>(std::filesystem::file_size(library));
        const int64_t wanted = static_cast<int64_t>(TW_EXPECTED_DECODER_SIZE) + extraBytes;
        ASSERT_GE(wanted, size) << "the accepted decoder size is below the size of the built one";
        std::ofstream(library, std::ios::binary | std::ios::app)
            << std::string(static_cast<size_t>(wanted - size), '\0');
        if (!facts.empty()) std::ofstream(folder + "libBlackmagicRawAPI.json") << facts;
    }

    twSimHost& startFrom(const std::string& plugin) {
        m_host.reset();
        twSimHostConfig config;
        config.useTestRoots = true;
        config.testHome = m_home;
        config.testSystemRoot = m_root;
        m_host = std::make_unique<twSimHost>(config);
        m_host->loadPlugin(plugin);
        return *m_host;
    }

    std::string logText() const {
        std::ifstream in(productFolder() + "/Logs/Tarnwick_Importer_Premiere Pro.log", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    // The decoder's own lines about the library and the manager's start, as "<level> <message>".
    std::vector<std::string> loadingLines() const {
        std::vector<std::string> out;
        for (const LogLine& line : logLines()) {
            const std::string& m = line.message;
            if (m.find("IBlackmagicRawFactory with this path") != std::string::npos ||
                m.rfind("qvBRAW_Manager init", 0) == 0 || m.rfind("Dll Filesize", 0) == 0) {
                out.push_back(line.level + " " + m);
            }
        }
        return out;
    }
    // What the host was shown about the decoder library. (The install check,
    // on its own thread, may show its own findings about the test's layout.)
    std::vector<std::string> decoderEvents() const {
        std::vector<std::string> out;
        for (const std::string& event : events()) {
            if (event.find("Blackmagic") != std::string::npos || event.find("OpenFile") != std::string::npos) {
                out.push_back(event);
            }
        }
        return out;
    }
    static std::string size(int64_t extraBytes) {
        return std::to_string(static_cast<int64_t>(TW_EXPECTED_DECODER_SIZE) + extraBytes);
    }
};

}  // namespace

TEST_F(DecoderLoading, LibraryBesideThePluginGivesAWorkingManagerThatLogsItsCodecConfiguration) {
    const std::string plugin = copyPlugin();
    installDecoder(productCopy(), 0, kFacts);
    // Another library in the fixed folder is never looked at.
    m_folder.writeFile("root" + std::string(kFixedFolder) + "libBlackmagicRawAPI.so", "not a library");
    writeOptions("INFO");
    startFrom(plugin);
    ASSERT_EQ(host().init(), imNoErr);

    EXPECT_EQ(loadingLines(), (std::vector<std::string>{
                                  "INFO Succeeded in creating IBlackmagicRawFactory with this path " + productCopy(),
                                  "INFO Dll Filesize : " + size(0)}));
    EXPECT_NE(logText().find("| logCodecConfiguration|Thread : \n"
                             "    - Count : 5\n"
                             "    - MaxCount : 9\n"
                             "Pipeline supported : \n"
                             "    - CPU : 1\n"
                             "    - CUDA : 1\n"
                             "    - METAL : 0\n"
                             "    - OPENCL : 0\n"
                             "General Infos : \n"
                             "    - Current Pipeline : CPU\n"
                             "    - WriteMetadataPerFrame : 0\n"
                             "    - Version : 5.0.0 e2e\n"
                             "    - Camera Supported Version : 5.0 e2e cameras\n"),
              std::string::npos)
        << logText();
    EXPECT_EQ(decoderEvents(), std::vector<std::string>());

    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
    bool released = false;
    for (const LogLine& line : logLines()) released |= line.message == "Releasing Global Manager";
    EXPECT_TRUE(released);
    // Everything the importer took from the library went back at imShutdown.
    EXPECT_EQ(decoderLiveObjects(), 0u);
}

TEST_F(DecoderLoading, StagedPluginLoadsTheLibraryStagedBesideItsBundle) {
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    const std::string staged = TW_IMPORTER_PLUGIN;
    const std::string productFolder = staged.substr(0, staged.rfind("Tarnwick_Importer.bundle"));
    EXPECT_EQ(loadingLines(), (std::vector<std::string>{
                                  "INFO Succeeded in creating IBlackmagicRawFactory with this path " + productFolder,
                                  "INFO Dll Filesize : " + size(0)}));
    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_EQ(decoderLiveObjects(), 0u);
}

TEST_F(DecoderLoading, LibraryOnlyInTheFixedFolderIsFoundThere) {
    const std::string plugin = copyPlugin();
    installDecoder(fixedFolder());
    writeOptions("INFO");
    startFrom(plugin);
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_EQ(loadingLines(), (std::vector<std::string>{
                                  "ERR Failed to create IBlackmagicRawFactory with this path " + productCopy(),
                                  "INFO Succeeded in creating IBlackmagicRawFactory with this path " + fixedFolder(),
                                  "INFO Dll Filesize : " + size(0)}));
    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_EQ(decoderLiveObjects(), 0u);
}

TEST_F(DecoderLoading, WithoutLibraryTheImporterStillStartsAndKeepsTheReasonQuiet) {
    const std::string plugin = copyPlugin();
    writeOptions("INFO");
    startFrom(plugin);
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_EQ(loadingLines(),
              (std::vector<std::string>{"ERR Failed to create IBlackmagicRawFactory with this path " + productCopy(),
                                        "ERR Failed to create IBlackmagicRawFactory with this path " + fixedFolder(),
                                        "ERR qvBRAW_Manager init - Instance BMInit was false"}));
    // Nothing reaches the user at start: the first file opened tells.
    EXPECT_EQ(decoderEvents(), std::vector<std::string>());
    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}

TEST_F(DecoderLoading, LibraryOfAnotherBuildIsLoadedButRefused) {
    const std::string plugin = copyPlugin();
    installDecoder(productCopy(), 1);
    writeOptions("INFO");
    startFrom(plugin);
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_EQ(loadingLines(), (std::vector<std::string>{
                                  "INFO Succeeded in creating IBlackmagicRawFactory with this path " + productCopy(),
                                  "INFO Dll Filesize : " + size(1),
                                  "ERR qvBRAW_Manager init - BlackmagicRawAPI seems to be an old version."}));
    EXPECT_EQ(logText().find("logCodecConfiguration"), std::string::npos);
    EXPECT_EQ(decoderEvents(), std::vector<std::string>());
    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_EQ(decoderLiveObjects(), 0u);
}
