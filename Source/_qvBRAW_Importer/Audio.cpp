#include "_qvBRAW_Importer/Audio.h"

#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Utils.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "Utils/qvLogging.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

// The host's sample type for the clip's bit depth; a depth the host has no
// integer type for keeps the float default.
void setSampleType(imFileInfoRec8* fileInfo, uint32_t bitDepth) {
    switch (bitDepth) {
        case 0: break;
        case 8: fileInfo->audInfo.sampleType = kPrAudioSampleType_8BitInt; break;
        case 16: fileInfo->audInfo.sampleType = kPrAudioSampleType_16BitInt; break;
        case 24: fileInfo->audInfo.sampleType = kPrAudioSampleType_24BitInt; break;
        case 32: fileInfo->audInfo.sampleType = kPrAudioSampleType_32BitInt; break;
        default: QV_LOG(QV_LOG_ERR, "Unknown audio bit depth"); break;
    }
}

// One reference to the clip's audio interface, released however the read ends.
class ClipAudio {
public:
    ClipAudio() = default;
    ~ClipAudio() { reset(); }
    ClipAudio(const ClipAudio&) = delete;
    ClipAudio& operator=(const ClipAudio&) = delete;

    HRESULT query(IBlackmagicRawClip* clip) {
        reset();
        return clip->QueryInterface(IID_IBlackmagicRawClipAudio, reinterpret_cast<LPVOID*>(&m_audio));
    }
    IBlackmagicRawClipAudio* get() const { return m_audio; }
    IBlackmagicRawClipAudio* operator->() const { return m_audio; }
    void reset() {
        if (m_audio) m_audio->Release();
        m_audio = nullptr;
    }

private:
    IBlackmagicRawClipAudio* m_audio = nullptr;
};

// The host's Audio suite for one conversion.
class ScopedAudioSuite {
public:
    explicit ScopedAudioSuite(SPBasicSuite* basic) : m_basic(basic) {
        const void* suite = nullptr;
        if (m_basic && m_basic->AcquireSuite(kPrSDKAudioSuite, kPrSDKAudioSuiteVersion, &suite) == kSPNoError) {
            m_acquired = true;
            m_suite = static_cast<const PrSDKAudioSuite*>(suite);
        }
    }
    ~ScopedAudioSuite() {
        if (m_acquired) m_basic->ReleaseSuite(kPrSDKAudioSuite, kPrSDKAudioSuiteVersion);
    }
    ScopedAudioSuite(const ScopedAudioSuite&) = delete;
    ScopedAudioSuite& operator=(const ScopedAudioSuite&) = delete;
    const PrSDKAudioSuite* get() const { return m_suite; }

private:
    SPBasicSuite* m_basic;
    bool m_acquired = false;
    const PrSDKAudioSuite* m_suite = nullptr;
};

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};

}  // namespace

QvResult GetInfoAudio(std::shared_ptr<qvBRAW_Clip> in_clip, TWI_PrivateData* privateData, imFileInfoRec8* fileInfo) {
    privateData->hasAudio = false;
    fileInfo->hasAudio = 0;
    if (!in_clip) return QvResult("GetInfoAudio - clip is null");

    QV_LOCK_TRACED(in_clip->m_bmClipMutex);
    if (!in_clip->m_BM) {
        in_clip->m_bmClipMutex.unlock();
        return QvResult("GetInfoAudio - clip is not initialized");
    }
    ClipAudio audio;
    if (FAILED(audio.query(in_clip->m_BM)) || !audio.get()) {
        in_clip->m_bmClipMutex.unlock();
        return QvResult("Impossible to Query IID_IBlackmagicRawClipAudio");
    }
    // Every failure below lets go of the interface, then of the clip.
    auto fail = [&](const char* text) {
        audio.reset();
        in_clip->m_bmClipMutex.unlock();
        return QvResult(text);
    };

    uint32_t bitDepth = 0;
    if (FAILED(audio->GetAudioBitDepth(&bitDepth))) return fail("Impossible to get Audio Bit Depth from BM");
    QV_LOG(QV_LOG_INFO, "Audio Bit Depth : " << bitDepth);
    privateData->audioBitDepth = bitDepth;
    setSampleType(fileInfo, bitDepth);

    uint32_t channels = 0;
    if (FAILED(audio->GetAudioChannelCount(&channels))) return fail("Impossible to get Audio Channel Count from BM");
    QV_LOG(QV_LOG_INFO, "Audio Channel Count : " << channels);
    fileInfo->audInfo.numChannels = static_cast<csSDK_int32>(channels);
    privateData->audioChannelCount = channels;

    uint32_t sampleRate = 0;
    if (FAILED(audio->GetAudioSampleRate(&sampleRate))) return fail("Impossible to get Audio Sample Rate from BM");
    QV_LOG(QV_LOG_INFO, "Audio Sample Rate : " << sampleRate);
    // The private data keeps 48000: it is the host's audio time base, not the clip's.
    fileInfo->audInfo.sampleRate = static_cast<float>(sampleRate);

    uint64_t sampleCount = 0;
    if (FAILED(audio->GetAudioSampleCount(&sampleCount))) return fail("Impossible to get Audio Sample Count from BM");
    QV_LOG(QV_LOG_INFO, "Audio Sample Count : " << sampleCount);
    fileInfo->audDuration = static_cast<PrAudioSample>(sampleCount);
    privateData->audioSampleCount = static_cast<int64_t>(sampleCount);

    audio.reset();
    in_clip->m_bmClipMutex.unlock();

    if (privateData->vidScale != 0) {
        privateData->audioExpectedSamples = static_cast<int64_t>(
            privateData->vidSampleSize *
            (static_cast<double>(privateData->frameCount) * privateData->audioSampleRate) / privateData->vidScale);
    }
    // A clip without audio answers zeros: it gets through, without audio.
    const bool hasAudio = fileInfo->audInfo.numChannels > 0 && fileInfo->audInfo.sampleRate > 0.0f &&
                          fileInfo->audInfo.sampleType != 0 && fileInfo->audDuration > 0;
    fileInfo->hasAudio = hasAudio ? 1 : 0;
    privateData->hasAudio = hasAudio;
    return QvResult();
}

void calculateAudioRequest(const imImportAudioRec7* audio, long long totalSamples, long long* position,
                           long long* start, long long* count) {
    *start = audio->position < 0 ? *position : audio->position;
    const long long size = audio->size;
    if (*start + size <= totalSamples) {
        *count = size;
        *position = *start + size;
    } else {
        *count = totalSamples - *start;
        *position = totalSamples;
    }
}

int SDKImportAudio7(imStdParms* stdParms, void*, imImportAudioRec7* audioRec) {
    if (!audioRec || !audioRec->privateData) return 1;
    // No lock: the handle only pins memory, and the host reads audio of one
    // file from one thread at a time.
    TWI_PrivateData* privateData = *static_cast<TWI_PrivateData**>(audioRec->privateData);
    if (!privateData) return 1;

    long long position = 0;
    long long frames = 0;
    long long next = privateData->audioPosition;
    calculateAudioRequest(audioRec, privateData->audioSampleCount, &next, &position, &frames);
    privateData->audioPosition = next;
    const long long end = position + static_cast<long long>(audioRec->size);

    if (frames < 1) {
        QV_LOG(QV_LOG_INFO, "numAudioFrames negative, stop importing Audio samples \t"
                                << privateData->audioSampleCount << "\t " << end);
        if (audioRec->buffer) {
            for (uint64_t c = 0; c < privateData->audioChannelCount; ++c) {
                if (audioRec->buffer[c]) std::memset(audioRec->buffer[c], 0, sizeof(float) * audioRec->size);
            }
        }
        return 0;
    }

    std::shared_ptr<qvBRAW_Clip> Clip = privateData->manager ? privateData->manager->GetClip(privateData->clipID)
                                                             : nullptr;
    if (!Clip) return 1;

    const uint32_t bitDepth = privateData->audioBitDepth;
    const uint32_t channels = static_cast<uint32_t>(privateData->audioChannelCount);
    ClipAudio audio;
    QV_LOCK_TRACED(Clip->m_bmClipMutex);
    if (!Clip->m_BM || FAILED(audio.query(Clip->m_BM)) || !audio.get()) {
        audio.reset();
        Clip->m_bmClipMutex.unlock();
        return 1;
    }
    const uint64_t bytes = static_cast<uint64_t>(bitDepth / 8) * channels * static_cast<uint64_t>(frames);
    std::unique_ptr<void, FreeDeleter> samples(std::malloc(bytes > 0 ? bytes : 1));
    uint32_t samplesRead = 0;
    uint32_t bytesRead = 0;
    if (samples) {
        audio->GetAudioSamples(position, samples.get(), static_cast<uint32_t>(bytes), static_cast<uint32_t>(frames),
                               &samplesRead, &bytesRead);
    }
    Clip->m_bmClipMutex.unlock();

    ScopedAudioSuite suite(TWI_GetBasicSuite(stdParms));
    if (!suite.get()) {
        QV_LOG(QV_LOG_ERR, "Audio Suite impossible to acquire");
        throw std::runtime_error("Audio Suite impossible to acquire");
    }
    float** out = audioRec->buffer;
    switch (bitDepth) {
        case 8:
            suite.get()->UninterleaveAndConvertFrom8BitInteger(static_cast<char*>(samples.get()), out, channels,
                                                                samplesRead);
            break;
        case 16:
            suite.get()->UninterleaveAndConvertFrom16BitInteger(static_cast<short*>(samples.get()), out, channels,
                                                                 samplesRead);
            break;
        case 24:
            suite.get()->UninterleaveAndConvertFrom24BitInteger(static_cast<char*>(samples.get()), out, channels,
                                                                 samplesRead);
            break;
        case 32:
            suite.get()->UninterleaveAndConvertFrom32BitInteger(static_cast<csSDK_int32*>(samples.get()), out,
                                                                 channels, samplesRead);
            break;
        default: throw std::runtime_error("Irregular audio Bit Depth : " + std::to_string(bitDepth));
    }
    return 0;
}
