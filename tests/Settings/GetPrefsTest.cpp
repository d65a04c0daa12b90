#include "twImporterSharedPrefs/twImporterGetPrefs.h"

#include "Common/TW_Debug_Options.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include "ProductConfig.h"
#include "RawBytes.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <string>
#include <thread>

using namespace twtest;

namespace {

constexpr int32_t kUnknown = 0, kAfterEffects = 1, kPremierePro = 2, kMediaEncoder = 3, kDesktop = 4;
constexpr size_t kBlobSize = 396;

// "/clips/Été/A001.braw" as the host gives it.
const std::u16string kPath = u"/clips/\u00c9t\u00e9/A001.braw";
const std::string kPathUtf8 = "/clips/\xc3\x89t\xc3\xa9/A001.braw";

Bytes defaultBlobBytes() { return bytesOf(twImporterSharedPrefs()); }

struct PopupCall {
    int32_t host = -1;
    std::string bundle;
    std::string path;
    Bytes attributes;
    bool flagWhileOpen = false;
};

class GetPrefs : public ::testing::Test {
protected:
    void SetUp() override {
        UseProductConfig();
        g_SettingsPopupOpen = false;
        m_access.filepath = reinterpret_cast<const prUTF16Char*>(kPath.c_str());
    }

    imGetPrefsRec record(Bytes* buffer, int32_t length) {
        imGetPrefsRec rec{};
        rec.prefs = buffer ? reinterpret_cast<char*>(buffer->data()) : nullptr;
        rec.prefsLength = length;
        return rec;
    }

    // A popup that records how it was opened, then applies `edit`.
    twImporterPrefsServices recordingPopup(std::function<void(bool&, twAttributes&)> edit = nullptr) {
        twImporterPrefsServices services;
        services.openSettingsPopup = [this, edit](int32_t host, const char* bundle, const qvUtf8String& path,
                                                  bool& optionsChanged, twAttributes& attributes) {
            PopupCall call;
            call.host = host;
            call.bundle = bundle;
            call.path = path.Str();
            call.attributes = bytesOf(attributes);
            call.flagWhileOpen = g_SettingsPopupOpen;
            m_calls.push_back(call);
            if (edit) edit(optionsChanged, attributes);
        };
        services.updateLogs = [this] { ++m_logUpdates; };
        return services;
    }

    ScopedTestRoots m_roots;
    imFileAccessRec8 m_access{};
    std::vector<PopupCall> m_calls;
    int m_logUpdates = 0;
};

}  // namespace

TEST_F(GetPrefs, PremiereProGetsTheDefaultBlobAndNoPopup) {
    // First pass: no buffer, the host learns the size and nothing is written.
    imGetPrefsRec ask = record(nullptr, 0);
    TWI_GetPrefs(kPremierePro, &m_access, &ask, recordingPopup());
    EXPECT_EQ(ask.prefsLength, 396);
    EXPECT_EQ(ask.prefs, nullptr);

    Bytes buffer(kBlobSize, 0xEE);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kPremierePro, &m_access, &rec, recordingPopup());
    EXPECT_EQ(buffer, defaultBlobBytes());
    EXPECT_EQ(rec.prefsLength, 396);
    EXPECT_TRUE(m_calls.empty());

    for (int32_t host : {kUnknown, kDesktop}) {
        Bytes other(kBlobSize, 0xEE);
        imGetPrefsRec r = record(&other, 396);
        TWI_GetPrefs(host, &m_access, &r, recordingPopup());
        EXPECT_EQ(other, defaultBlobBytes());
    }
    EXPECT_TRUE(m_calls.empty());
}

TEST_F(GetPrefs, AfterEffectsIsAskedToCallAgainThenEditsTheBlob) {
    imGetPrefsRec ask = record(nullptr, 0);
    TWI_GetPrefs(kAfterEffects, &m_access, &ask, recordingPopup());
    EXPECT_EQ(ask.prefsLength, 396);
    EXPECT_TRUE(m_calls.empty());
    EXPECT_FALSE(g_SettingsPopupOpen);

    Bytes buffer(kBlobSize, 0xEE);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup([](bool&, twAttributes& a) {
                     a.useClipAndFrameAttributes = true;
                     a.frame.iso = 1600;
                     twCopyFixedText(a.clip.gamma, sizeof(a.clip.gamma), "Linear");
                 }));
    ASSERT_EQ(m_calls.size(), 1u);
    EXPECT_EQ(m_calls[0].host, kAfterEffects);
    EXPECT_EQ(m_calls[0].bundle, "com.qervane.tarnwick.importer");
    EXPECT_EQ(m_calls[0].path, kPathUtf8);
    EXPECT_EQ(m_calls[0].attributes, bytesOf(twAttributes()));
    EXPECT_TRUE(m_calls[0].flagWhileOpen);
    EXPECT_FALSE(g_SettingsPopupOpen);
    EXPECT_EQ(rec.prefsLength, 396);

    // The popup's settings sit at offset 4 of an otherwise default blob.
    Bytes expected = defaultBlobBytes();
    putU8(expected, 4 + attr::useClipAndFrameAttributes, 1);
    putU32(expected, 4 + attr::iso, 1600);
    putText(expected, 4 + attr::gamma, 64, "Linear");
    EXPECT_EQ(buffer, expected);
    EXPECT_EQ(m_logUpdates, 0);
}

TEST_F(GetPrefs, MediaEncoderGetsThePopupToo) {
    Bytes buffer(kBlobSize, 0);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kMediaEncoder, &m_access, &rec, recordingPopup());
    ASSERT_EQ(m_calls.size(), 1u);
    EXPECT_EQ(m_calls[0].host, kMediaEncoder);
    EXPECT_EQ(buffer, defaultBlobBytes());
}

TEST_F(GetPrefs, ChangedOptionsAreReadAgainAndTheLogSwitched) {
    m_roots.folder().writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini",
                               "[General]\nenableCorrectXml = true\n");
    ASSERT_FALSE(debugOptions.enableCorrectXML);

    Bytes buffer(kBlobSize, 0);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup());
    EXPECT_FALSE(debugOptions.enableCorrectXML);
    EXPECT_EQ(m_logUpdates, 0);

    TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup([](bool& changed, twAttributes&) { changed = true; }));
    EXPECT_TRUE(debugOptions.enableCorrectXML);
    EXPECT_EQ(m_logUpdates, 1);
}

TEST_F(GetPrefs, AnOpenPopupKeepsAnotherFromOpening) {
    g_SettingsPopupOpen = true;
    Bytes buffer(kBlobSize, 0xEE);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup());
    EXPECT_TRUE(m_calls.empty());
    EXPECT_EQ(buffer, defaultBlobBytes());
    EXPECT_TRUE(g_SettingsPopupOpen);  // still the other popup's

    imGetPrefsRec ask = record(nullptr, 0);
    TWI_GetPrefs(kAfterEffects, &m_access, &ask, recordingPopup());
    EXPECT_EQ(ask.prefsLength, 396);
}

TEST_F(GetPrefs, AFailingPopupGivesTheFlagBack) {
    Bytes buffer(kBlobSize, 0);
    imGetPrefsRec rec = record(&buffer, 396);
    twImporterPrefsServices services;
    services.openSettingsPopup = [](int32_t, const char*, const qvUtf8String&, bool&, twAttributes&) {
        throw std::runtime_error("popup failed");
    };
    EXPECT_THROW(TWI_GetPrefs(kAfterEffects, &m_access, &rec, services), std::runtime_error);
    EXPECT_FALSE(g_SettingsPopupOpen);

    TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup());
    EXPECT_EQ(m_calls.size(), 1u);
}

TEST_F(GetPrefs, AShortBufferIsNeverWrittenPast) {
    // Exact-size heap blocks: a write past the end is caught by the address sanitizer.
    for (int32_t length : {1, 3, 100, 215, 395}) {
        Bytes buffer(static_cast<size_t>(length), 0xEE);
        imGetPrefsRec rec = record(&buffer, length);
        TWI_GetPrefs(kAfterEffects, &m_access, &rec, recordingPopup([](bool&, twAttributes& a) {
                         a.useClipAndFrameAttributes = true;
                         a.frame.tint = -7;
                     }));
        Bytes expected = defaultBlobBytes();
        if (length > 4) putU8(expected, 4, 1);
        if (length >= 4 + static_cast<int32_t>(attr::tint) + 2) putI16(expected, 4 + attr::tint, -7);
        expected.resize(static_cast<size_t>(length));
        EXPECT_EQ(buffer, expected) << length;
        EXPECT_EQ(rec.prefsLength, length);
    }
}

TEST_F(GetPrefs, WithoutAPopupServiceTheBlobIsStillMade) {
    Bytes buffer(kBlobSize, 0xEE);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kAfterEffects, nullptr, &rec, twImporterPrefsServices());
    EXPECT_EQ(buffer, defaultBlobBytes());
    EXPECT_FALSE(g_SettingsPopupOpen);
    TWI_GetPrefs(kAfterEffects, nullptr, nullptr, twImporterPrefsServices());
}

TEST_F(GetPrefs, PathlessRequestsOpenThePopupOnAnEmptyPath) {
    Bytes buffer(kBlobSize, 0);
    imGetPrefsRec rec = record(&buffer, 396);
    TWI_GetPrefs(kAfterEffects, nullptr, &rec, recordingPopup());
    imFileAccessRec8 noPath{};
    TWI_GetPrefs(kAfterEffects, &noPath, &rec, recordingPopup());
    ASSERT_EQ(m_calls.size(), 2u);
    EXPECT_EQ(m_calls[0].path, "");
    EXPECT_EQ(m_calls[1].path, "");
}

TEST(GetPrefsConcurrency, ASecondHostThreadGetsNoPopupWhileOneIsOpen) {
    g_SettingsPopupOpen = false;
    std::promise<void> popupOpened;
    std::promise<void> secondCallDone;
    std::shared_future<void> secondDone = secondCallDone.get_future().share();
    std::atomic<int> popups{0};

    twImporterPrefsServices services;
    services.openSettingsPopup = [&](int32_t, const char*, const qvUtf8String&, bool&, twAttributes&) {
        ++popups;
        popupOpened.set_value();
        secondDone.wait();  // the popup stays open until the other request is answered
    };

    Bytes first(kBlobSize, 0), second(kBlobSize, 0xEE);
    std::thread host1([&] {
        imGetPrefsRec rec{};
        rec.prefs = reinterpret_cast<char*>(first.data());
        rec.prefsLength = 396;
        TWI_GetPrefs(kAfterEffects, nullptr, &rec, services);
    });
    popupOpened.get_future().wait();
    {
        imGetPrefsRec rec{};
        rec.prefs = reinterpret_cast<char*>(second.data());
        rec.prefsLength = 396;
        TWI_GetPrefs(kAfterEffects, nullptr, &rec, services);
    }
    secondCallDone.set_value();
    host1.join();

    EXPECT_EQ(popups.load(), 1);
    EXPECT_EQ(second, defaultBlobBytes());
    EXPECT_FALSE(g_SettingsPopupOpen);
}
