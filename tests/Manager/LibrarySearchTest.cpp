// Where the instance looks for the library, in which order, what it keeps of a
// folder, and the exact-size test of the library it found.

#include "ManagerTestSupport.h"

#include "Common/TW_Debug_Options.h"

#include <filesystem>

namespace {

class LibrarySearch : public twtest::DecoderTest {
protected:
    std::string successLine(const std::string& folder) const {
        return "Succeeded in creating IBlackmagicRawFactory with this path " + folder;
    }
    std::string failureLine(const std::string& folder) const {
        return "Failed to create IBlackmagicRawFactory with this path " + folder;
    }
    // The lines of the search, successes and failures, in order.
    std::vector<std::string> searchLines() const {
        std::vector<std::string> out;
        for (const std::string& line : twtest::SplitLines(logText())) {
            twtest::LogLine parsed;
            if (!twtest::ParseLogLine(line, parsed)) continue;
            if (parsed.message.find("IBlackmagicRawFactory with this path") != std::string::npos) {
                out.push_back(parsed.level + " " + parsed.message);
            }
        }
        return out;
    }
};

}  // namespace

TEST_F(LibrarySearch, GoodInstallBesideThePluginWinsAndASecondInitChangesNothing) {
    const std::string plugin = twtest::installDecoder(pluginFolder());
    twtest::installDecoder(fixedFolder());

    qvBRAW_Instance instance(QV_PLUGIN_IMPORTER);
    EXPECT_FALSE(instance.m_BMInit);
    EXPECT_EQ(instance.searchLibrary(plugin), 0);
    EXPECT_TRUE(instance.m_BMInit);
    ASSERT_NE(instance.m_factory, nullptr);
    EXPECT_EQ(instance.m_libraryPath.ToString(), plugin);
    EXPECT_FALSE(instance.m_acceptAnyPipeline);
    EXPECT_EQ(instance.m_pipeline, nullptr);
    EXPECT_TRUE(instance.isTheDllLastVersion());
    EXPECT_TRUE(logged("INFO", "Dll Filesize : " + std::to_string(qvBRAW_Instance::expectedLibrarySize())));

    IBlackmagicRawFactory* const factory = instance.m_factory;
    EXPECT_EQ(instance.searchLibrary(fixedFolder()), 1);
    EXPECT_EQ(instance.init(), 1);
    EXPECT_EQ(instance.m_factory, factory);
    EXPECT_EQ(instance.m_libraryPath.ToString(), plugin);
    EXPECT_EQ(searchLines(), std::vector<std::string>{"INFO " + successLine(plugin)});

    EXPECT_EQ(instance.Release(), 0);
    EXPECT_FALSE(instance.m_BMInit);
    EXPECT_EQ(instance.m_factory, nullptr);
    EXPECT_TRUE(instance.m_libraryPath.IsNull());
    EXPECT_DECODER_CLEAN();
}

TEST_F(LibrarySearch, FirstCandidateWithoutAWorkingLibraryFallsThroughToTheFixedFolder) {
    // A folder beside the plug-in whose library file cannot be loaded.
    m_roots.folder().writeFile("plugin/libBlackmagicRawAPI.so", "truncated download");
    twtest::installDecoder(fixedFolder());

    qvBRAW_Instance instance(QV_PLUGIN_IMPORTER);
    EXPECT_EQ(instance.searchLibrary(pluginFolder()), 0);
    EXPECT_TRUE(instance.m_BMInit);
    EXPECT_EQ(instance.m_libraryPath.ToString(), fixedFolder());
    EXPECT_TRUE(instance.isTheDllLastVersion());
    EXPECT_EQ(searchLines(),
              (std::vector<std::string>{"ERR " + failureLine(pluginFolder()), "INFO " + successLine(fixedFolder())}));
}

TEST_F(LibrarySearch, WithoutABundleFolderOnlyTheFixedFolderIsTried) {
    twtest::installDecoder(fixedFolder());
    // The test program is no plug-in bundle: its own folder is no candidate.
    qvBRAW_Instance instance(QV_PLUGIN_IMPORTER);
    EXPECT_EQ(instance.init(), 0);
    EXPECT_EQ(instance.m_libraryPath.ToString(), fixedFolder());
    EXPECT_EQ(searchLines(), std::vector<std::string>{"INFO " + successLine(fixedFolder())});
    EXPECT_EQ(fixedFolder(), m_roots.systemRoot() +
                                 "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick/");
}

TEST_F(LibrarySearch, NoLibraryAnywhereLeavesTheInstanceUnloadedOnTheFixedFolder) {
    m_roots.folder().makeFolder("plugin");
    qvBRAW_Instance instance(QV_PLUGIN_IMPORTER);
    EXPECT_EQ(instance.searchLibrary(pluginFolder()), 1);
    EXPECT_FALSE(instance.m_BMInit);
    EXPECT_EQ(instance.m_factory, nullptr);
    EXPECT_EQ(instance.m_libraryPath.ToString(), fixedFolder());
    EXPECT_FALSE(instance.isTheDllLastVersion());
    EXPECT_FALSE(instance.initPipeline(blackmagicRawPipelineCPU, blackmagicRawInstructionSetAVX2, true, true));
    EXPECT_EQ(searchLines(),
              (std::vector<std::string>{"ERR " + failureLine(pluginFolder()), "ERR " + failureLine(fixedFolder())}));
    // A later search may still succeed once the library is there.
    twtest::installDecoder(fixedFolder());
    EXPECT_EQ(instance.init(), 0);
    EXPECT_TRUE(instance.m_BMInit);
}

TEST_F(LibrarySearch, AnyPipelineIsAcceptedOnlyByTheLayerSettingsPluginWithItsOption) {
    twtest::installDecoder(fixedFolder());
    qvBRAW_Instance importer(QV_PLUGIN_IMPORTER);
    importer.init();
    EXPECT_FALSE(importer.m_acceptAnyPipeline);

    debugOptions.aeLayerSettingsGPUEnabled = true;
    qvBRAW_Instance layer(QV_PLUGIN_LAYER_SETTINGS);
    layer.init();
    EXPECT_TRUE(layer.m_acceptAnyPipeline);

    debugOptions.aeLayerSettingsGPUEnabled = false;
    qvBRAW_Instance layerWithoutOption(QV_PLUGIN_LAYER_SETTINGS);
    layerWithoutOption.init();
    EXPECT_FALSE(layerWithoutOption.m_acceptAnyPipeline);
    debugOptions.aeLayerSettingsGPUEnabled = true;
}

// Once loaded, the library stays the one of the first folder; a later folder
// only moves m_libraryPath, and with it the file whose size is tested.
TEST_F(LibrarySearch, LaterFolderMovesOnlyThePathThatTheSizeTestMeasures) {
    const std::string first = twtest::installDecoder(m_roots.folder().join("first"));
    qvBRAW_Instance instance(QV_PLUGIN_IMPORTER);
    ASSERT_TRUE(instance.tryToInitBM(first));

    // Not a library at all: only its size is ever looked at.
    const std::string second = m_roots.folder().makeFolder("second") + "/";
    const std::string file = second + "libBlackmagicRawAPI.so";
    m_roots.folder().writeFile("second/libBlackmagicRawAPI.so", "x");
    EXPECT_TRUE(instance.tryToInitBM(second));
    EXPECT_NE(instance.m_factory, nullptr);
    EXPECT_EQ(instance.m_libraryPath.ToString(), second);
    // The earlier factory was given back: only the new one is alive.
    EXPECT_EQ(twtest::decoderLiveObjects(), 1u) << twtest::decoderLiveReport();

    const int64_t expected = qvBRAW_Instance::expectedLibrarySize();
    for (const int64_t delta : {-1, 1, 0}) {
        std::filesystem::resize_file(file, static_cast<uintmax_t>(expected + delta));
        EXPECT_EQ(instance.isTheDllLastVersion(), delta == 0) << "size " << expected + delta;
        EXPECT_TRUE(logged("INFO", "Dll Filesize : " + std::to_string(expected + delta)));
    }
    std::filesystem::remove(file);
    EXPECT_FALSE(instance.isTheDllLastVersion());
    EXPECT_TRUE(logged("INFO", "Dll Filesize : -1"));

    // An empty folder keeps the path and still makes a factory.
    EXPECT_TRUE(instance.tryToInitBM(""));
    EXPECT_EQ(instance.m_libraryPath.ToString(), second);

    instance.Release();
    EXPECT_DECODER_CLEAN();
}
