// The start of the manager: a working codec on the CPU pipeline with its
// configuration block in the log, the error a start leaves for the first file
// to show, the interfaces whose failure stops the start, and the geometry each
// clip is opened through.

#include "ManagerTestSupport.h"

#include "Utils/qvUtils.h"

namespace {

class ManagerInit : public twtest::DecoderTest {
protected:
    // A new instance over the installed library, searched as at imInit.
    static qvBRAW_Instance* searchedInstance() {
        auto* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
        instance->init();
        return instance;
    }
    static std::string error(HRESULT hr) { return qvUtils::getHRESULTerrorMessage(hr).Str(); }
};

}  // namespace

TEST_F(ManagerInit, WorkingStartRunsOnTheCpuAndLogsTheCodecConfiguration) {
    twtest::installDecoder(fixedFolder(), 0, twtest::kSeveralPipelinesFacts);
    auto manager = std::make_unique<qvBRAW_Manager>();
    EXPECT_TRUE(manager->m_errorInfo.hasError);
    EXPECT_EQ(manager->m_errorInfo.toString().Str(), "");

    qvBRAW_Instance* instance = searchedInstance();
    ASSERT_EQ(manager->init(instance), 0);
    EXPECT_TRUE(manager->m_errorInfo.isOk());
    EXPECT_EQ(manager->m_instance, instance);
    EXPECT_NE(manager->m_codec, nullptr);
    EXPECT_NE(manager->m_configuration, nullptr);
    EXPECT_NE(manager->m_configurationEx, nullptr);
    EXPECT_NE(manager->m_resourceManager, nullptr);
    EXPECT_NE(manager->m_manualDecoderFlow1, nullptr);
    EXPECT_EQ(manager->m_manualDecoderFlow2, nullptr);
    EXPECT_NE(manager->m_callback, nullptr);
    EXPECT_FALSE(manager->m_flipVertical);
    EXPECT_FALSE(manager->m_useMetadataGeometry);
    // The CPU's first device, whatever its instruction set.
    ASSERT_NE(instance->m_pipeline, nullptr);
    EXPECT_EQ(instance->m_pipeline->m_pipeline, blackmagicRawPipelineCPU);
    EXPECT_EQ(instance->m_pipeline->m_name.ToString(), "CPU A");
    BlackmagicRawPipeline running = 0;
    ASSERT_EQ(manager->m_configuration->GetPipeline(&running, nullptr, nullptr), S_OK);
    EXPECT_EQ(running, blackmagicRawPipelineCPU);

    EXPECT_NE(logText().find("| logCodecConfiguration|Thread : \n"
                             "    - Count : 3\n"
                             "    - MaxCount : 12\n"
                             "Pipeline supported : \n"
                             "    - CPU : 1\n"
                             "    - CUDA : 1\n"
                             "    - METAL : 0\n"
                             "    - OPENCL : 1\n"
                             "General Infos : \n"
                             "    - Current Pipeline : CPU\n"
                             "    - WriteMetadataPerFrame : 1\n"
                             "    - Version : 5.0.0 test\n"
                             "    - Camera Supported Version : 5.0 test cameras\n"),
              std::string::npos)
        << logText();

    // A manager starts once; the second call changes nothing.
    IBlackmagicRaw* const codec = manager->m_codec;
    qvBRAW_Manager_Callback* const callback = manager->m_callback;
    EXPECT_EQ(manager->init(instance), 1);
    EXPECT_TRUE(logged("ERR", "m_errorInfo should be on Error at init"));
    EXPECT_EQ(manager->m_codec, codec);
    EXPECT_EQ(manager->m_callback, callback);
    EXPECT_TRUE(manager->m_errorInfo.isOk());

    EXPECT_EQ(manager->init(nullptr), 1);
    EXPECT_TRUE(logged("ERR", "qvBRAW_Manager init - Instance is nullptr !"));
    EXPECT_EQ(manager->m_instance, instance);

    EXPECT_EQ(manager->Release(), 0);
    EXPECT_TRUE(logged("INFO", "Releasing Global Manager"));
    EXPECT_EQ(manager->m_codec, nullptr);
    EXPECT_EQ(manager->m_callback, nullptr);
    manager.reset();
    EXPECT_DECODER_CLEAN();
}

TEST_F(ManagerInit, MissingLibraryLeavesItsMessageForTheFirstFileAndNoCodec) {
    auto manager = std::make_unique<qvBRAW_Manager>();
    EXPECT_EQ(manager->init(searchedInstance()), 1);
    EXPECT_TRUE(manager->m_errorInfo.hasError);
    EXPECT_EQ(manager->m_errorInfo.toString().Str(),
              "Blackmagic RAW library hasn't been found - Please Reinstall our Software from our website");
    EXPECT_TRUE(logged("ERR", "qvBRAW_Manager init - Instance BMInit was false"));
    EXPECT_EQ(manager->m_codec, nullptr);
    EXPECT_EQ(manager->FlushQueue(TW_ALL_QUEUES), 1);
    IBlackmagicRawClipGeometry* geometry = nullptr;
    EXPECT_LT(manager->createGeometryForClip(&geometry), 0);
    EXPECT_EQ(geometry, nullptr);
    // Destroyed as imShutdown destroys it, with the instance it was given.
    manager.reset();
}

TEST_F(ManagerInit, LibraryOfAnotherSizeIsRefusedBeforeAnyCodec) {
    twtest::installDecoder(fixedFolder(), 1);
    auto manager = std::make_unique<qvBRAW_Manager>();
    EXPECT_EQ(manager->init(searchedInstance()), 1);
    EXPECT_EQ(manager->m_errorInfo.toString().Str(),
              "Blackmagic RAW library has not the good version  - Please Reinstall our Software from our website");
    EXPECT_TRUE(logged("ERR", "qvBRAW_Manager init - BlackmagicRawAPI seems to be an old version."));
    EXPECT_TRUE(logged("INFO", "Dll Filesize : " + std::to_string(qvBRAW_Instance::expectedLibrarySize() + 1)));
    EXPECT_TRUE(manager->m_instance->m_BMInit);
    EXPECT_EQ(manager->m_codec, nullptr);
    EXPECT_EQ(manager->m_instance->m_pipeline, nullptr);
    manager.reset();
    EXPECT_DECODER_CLEAN();
}

TEST_F(ManagerInit, InstanceWithoutFactoryIsRefused) {
    auto* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
    instance->m_BMInit = true;
    qvBRAW_Manager manager;
    EXPECT_EQ(manager.init(instance), 1);
    EXPECT_EQ(manager.m_errorInfo.toString().Str(), "Manager Init : Factory is nullptr");
    EXPECT_TRUE(logged("ERR", "qvBRAW_Manager init - Instance Factory was nullptr"));
}

TEST_F(ManagerInit, EachRequiredStepOfTheStartFailsItWithItsMessage) {
    const std::string install = twtest::installDecoder(fixedFolder(), 0, twtest::kSeveralPipelinesFacts);
    struct Case {
        const char* faults;
        const char* userText;
        std::string logLine;
    };
    const Case cases[] = {
        {R"([{"method": "Factory.CreateCodec", "result": "E_OUTOFMEMORY"}])",
         "Blackmagic Factory creation error : Abnormal error.",
         "qvBRAW_Manager init - Failed to create IBlackmagicRaw (CreateCodec function) : " + error(E_OUTOFMEMORY)},
        {R"([{"method": "Codec.QueryInterface", "key": "Configuration", "result": "E_NOINTERFACE"}])",
         "Impossible to Query BlackmagicRawConfiguraton from Codec",
         "qvBRAW_Manager init - Impossible to query Configuration from Codec : " + error(E_NOINTERFACE)},
        {R"([{"method": "Codec.QueryInterface", "key": "ConfigurationEx", "result": "E_NOINTERFACE"}])",
         "Impossible to Get ConfigurationEx from Codec",
         "Impossible to Get ConfigurationEx from Codec" + error(E_NOINTERFACE)},
        {R"([{"method": "ConfigurationEx.GetResourceManager"}])",
         "Impossible to Get ResourceManager from ConfigurationEx",
         "Impossible to Get ResourceManager from ConfigurationEx" + error(E_FAIL)},
        {R"([{"method": "Codec.QueryInterface", "key": "ManualDecoderFlow1"}])",
         "Impossible to Get ManualDecoderCPU from Codec",
         "Impossible to Get ManualDecoderCPU from Codec" + error(E_FAIL)},
        {R"([{"method": "Codec.SetCallback"}])", "Blackmagic Callback setting error : Abnormal error.",
         "qvBRAW_Manager init - Failed to set IBlackmagicRawCallback!"},
        // No pipeline at first start: there is no running codec to keep.
        {R"([{"method": "Factory.CreatePipelineIterator"}])",
         "No pipeline of the Blackmagic RAW library could be initialized - Please Reinstall our Software from our "
         "website",
         "qvBRAW_Manager init - No pipeline and no running codec to fall back on"},
    };
    for (const Case& c : cases) {
        twtest::writeFacts(install, twtest::factsWithFaults(c.faults));
        auto manager = std::make_unique<qvBRAW_Manager>();
        EXPECT_EQ(manager->init(searchedInstance()), 1) << c.faults;
        EXPECT_TRUE(manager->m_errorInfo.hasError) << c.faults;
        EXPECT_EQ(manager->m_errorInfo.toString().Str(), c.userText) << c.faults;
        EXPECT_TRUE(logged("ERR", c.logLine)) << c.logLine;
        // What was made before the failure is given back with the manager.
        manager.reset();
        EXPECT_DECODER_CLEAN() << c.faults;
    }

    // The GPU's manual decoder and the device's pipeline are not needed on the CPU.
    twtest::writeFacts(install,
                       twtest::factsWithFaults(R"([{"method": "Codec.QueryInterface", "key": "ManualDecoderFlow2"},
                                                    {"method": "Configuration.SetFromDevice"}])"));
    auto manager = std::make_unique<qvBRAW_Manager>();
    EXPECT_EQ(manager->init(searchedInstance()), 0);
    EXPECT_TRUE(manager->m_errorInfo.isOk());
    manager.reset();
    EXPECT_DECODER_CLEAN();
}

TEST_F(ManagerInit, GeometryHasNoAnamorphicTreatmentAndFlipsOnlyWhenAsked) {
    const std::string install = twtest::installDecoder(fixedFolder());
    qvBRAW_Manager manager;
    ASSERT_EQ(manager.init(searchedInstance()), 0);

    const auto geometryState = [&manager](BlackmagicRawAnamorphicRatio& ratio, BlackmagicRawFlip& flip) {
        IBlackmagicRawClipGeometry* geometry = nullptr;
        ASSERT_EQ(manager.createGeometryForClip(&geometry), 0);
        ASSERT_NE(geometry, nullptr);
        geometry->GetAnamorphicRatio(&ratio);
        geometry->GetFlip(&flip);
        geometry->Release();
    };
    BlackmagicRawAnamorphicRatio ratio = 0;
    BlackmagicRawFlip flip = 0;
    geometryState(ratio, flip);
    EXPECT_EQ(ratio, blackmagicRawAnamorphicRatioDisabled);
    EXPECT_EQ(flip, blackmagicRawFlipDisabled);
    EXPECT_FALSE(logged("INFO", "Opening Clip with Flip Vertical"));

    manager.m_flipVertical = true;
    geometryState(ratio, flip);
    EXPECT_EQ(flip, blackmagicRawFlipVertical);
    EXPECT_TRUE(logged("INFO", "Opening Clip with Flip Vertical"));

    manager.m_useMetadataGeometry = true;
    geometryState(ratio, flip);
    EXPECT_EQ(ratio, blackmagicRawAnamorphicRatioFromMetadata);

    // The factory's failure is the result.
    twtest::writeFacts(install, R"({"faults": [{"method": "Factory.CreateClipGeometry", "result": "E_OUTOFMEMORY"}]})");
    ASSERT_TRUE(manager.m_instance->tryToInitBM(""));
    IBlackmagicRawClipGeometry* geometry = nullptr;
    EXPECT_EQ(manager.createGeometryForClip(&geometry), E_OUTOFMEMORY);
    EXPECT_TRUE(logged("ERR", "Impossible to Create Clip Geometry .. " + error(E_OUTOFMEMORY)));
}
