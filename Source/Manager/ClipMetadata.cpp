// The metadata readers of a clip: single keys as text or bool, the whole list
// as texts, the audio figures, and the labels the host's panels show.

#include "Manager/Clip.h"
#include "Manager/twVariant.h"

#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>

namespace {

// Longer texts and arrays would swamp the host's metadata panels.
constexpr size_t TW_METADATA_MAX_STRING_BYTES = 100;
constexpr long TW_METADATA_MAX_ARRAY_SPAN = 24;
const char* const TW_METADATA_TOO_BIG = "Too big to display";

void writeArrayElement(std::ostringstream& text, BlackmagicRawVariantType type, const uint8_t* data, long index) {
    switch (type) {
        case blackmagicRawVariantTypeU8: text << static_cast<int>(data[index]); break;
        case blackmagicRawVariantTypeS16: text << reinterpret_cast<const int16_t*>(data)[index]; break;
        case blackmagicRawVariantTypeU16: text << reinterpret_cast<const uint16_t*>(data)[index]; break;
        case blackmagicRawVariantTypeS32: text << reinterpret_cast<const int32_t*>(data)[index]; break;
        case blackmagicRawVariantTypeU32: text << reinterpret_cast<const uint32_t*>(data)[index]; break;
        case blackmagicRawVariantTypeFloat32: text << reinterpret_cast<const float*>(data)[index]; break;
        default: break;
    }
}

// The text of a SafeArray value; false when its data can't be reached.
bool arrayText(SafeArray* array, std::string& out) {
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(array, &data))) {
        QV_LOG(QV_LOG_ERR, "Failed to access safeArray data!");
        return false;
    }
    BlackmagicRawVariantType type = blackmagicRawVariantTypeEmpty;
    if (FAILED(SafeArrayGetVartype(array, &type))) {
        QV_LOG(QV_LOG_ERR, "Failed to get BlackmagicRawVariantType from safeArray!");
    }
    long lower = 0;
    long upper = -1;
    if (FAILED(SafeArrayGetLBound(array, 1, &lower))) QV_LOG(QV_LOG_ERR, "Failed to get LBound from safeArray!");
    if (FAILED(SafeArrayGetUBound(array, 1, &upper))) QV_LOG(QV_LOG_ERR, "Failed to get UBound from safeArray!");

    if (upper - lower > TW_METADATA_MAX_ARRAY_SPAN) {
        out = TW_METADATA_TOO_BIG;
    } else {
        std::ostringstream text;
        const uint8_t* elements = static_cast<const uint8_t*>(data);
        for (long index = 0; index <= upper - lower; ++index) {
            if (index > 0) text << ", ";
            if (elements) writeArrayElement(text, type, elements, index);
        }
        out = text.str();
    }
    SafeArrayUnaccessData(array);
    return true;
}

// The text of one value of the list; false when nothing is to be added.
bool valueText(const Variant& value, std::string& out) {
    switch (value.vt) {
        case blackmagicRawVariantTypeS16: out = std::to_string(value.iVal); return true;
        case blackmagicRawVariantTypeU16: out = std::to_string(value.uiVal); return true;
        case blackmagicRawVariantTypeS32: out = std::to_string(value.intVal); return true;
        case blackmagicRawVariantTypeU32: out = std::to_string(value.uintVal); return true;
        case blackmagicRawVariantTypeFloat32: out = std::to_string(value.fltVal); return true;
        case blackmagicRawVariantTypeString: {
            const std::string text = value.bstrVal ? value.bstrVal : "";
            out = text.size() > TW_METADATA_MAX_STRING_BYTES ? TW_METADATA_TOO_BIG : text;
            return true;
        }
        case blackmagicRawVariantTypeSafeArray: return value.parray && arrayText(value.parray, out);
        default: out = "Unknown"; return true;
    }
}

void readFrameGuide(const std::string& value, double* numerator, double* denominator) {
    const size_t colon = value.find(':');
    if (colon == std::string::npos) {
        QV_LOG(QV_LOG_ERR, "frameguide_aspect_ratio Metadata without : inside the string : " << value);
        return;
    }
    *numerator = std::strtod(value.substr(0, colon).c_str(), nullptr);
    *denominator = std::strtod(value.substr(colon + 1).c_str(), nullptr);
}

}  // namespace

bool qvBRAW_Clip::getClipMetadataMetadataCommon(const qvUtf8String& key, bool lock, Variant& out) {
    qvBSTR bstrKey;
    bstrKey.SetFromUtf8Str(key);
    if (lock) QV_LOCK_TRACED(m_bmClipMutex);
    bool found = false;
    if (m_BM == nullptr) {
        QV_LOG(QV_LOG_ERR, "getClipMetadata - m_BM is nullptr");
    } else {
        found = m_BM->GetMetadata(bstrKey.Get(), &out) == S_OK;
    }
    if (lock) m_bmClipMutex.unlock();
    bstrKey.release();
    return found;
}

qvUtf8String qvBRAW_Clip::getClipMetadata(const qvUtf8String& key, bool lock) {
    ScopedVariant value;
    qvUtf8String text;
    if (getClipMetadataMetadataCommon(key, lock, value.get())) {
        if (value.get().vt == blackmagicRawVariantTypeString) {
            text = value.get().bstrVal ? value.get().bstrVal : "";
        } else {
            // The wording names the bool reader; log readers search for it as it is.
            QV_LOG(QV_LOG_ERR,
                   "getClipMetadataBool called on clip with key : " << key.Str() << " but result is not a string");
        }
    }
    return text;
}

bool qvBRAW_Clip::getClipMetadataBool(const qvUtf8String& key, bool lock) {
    ScopedVariant value;
    if (!getClipMetadataMetadataCommon(key, lock, value.get())) return false;
    switch (value.get().vt) {
        case blackmagicRawVariantTypeU8:
        case blackmagicRawVariantTypeS16:
        case blackmagicRawVariantTypeU16:
        case blackmagicRawVariantTypeS32:
        case blackmagicRawVariantTypeU32: return value.get().iVal == 1;
        default:
            QV_LOG(QV_LOG_ERR,
                   "getClipMetadataBool called on clip with key : " << key.Str() << " but result is not a bool");
            return false;
    }
}

int32_t qvBRAW_Clip::getClipMetadata(qvBRAW_MetadataList& out) {
    QV_LOCK_TRACED(m_bmClipMutex);
    if (!m_opened || m_BM == nullptr) {
        QV_LOG(QV_LOG_WARN, "No clip openeded, cannot write Metadata");
        m_bmClipMutex.unlock();
        return 1;
    }
    IBlackmagicRawMetadataIterator* iterator = nullptr;
    const HRESULT hr = m_BM->GetMetadataIterator(&iterator);
    if (FAILED(hr)) {
        QV_LOG(QV_LOG_ERR, "Failed to get IBlackmagicRawMetadataIterator!");
        if (iterator) iterator->Release();
        m_bmClipMutex.unlock();
        return 1;
    }
    out = GetMetadataFromIterator(iterator, false, nullptr, nullptr);
    if (iterator) iterator->Release();
    m_bmClipMutex.unlock();
    return 0;
}

qvBRAW_MetadataList qvBRAW_Clip::GetMetadataFromIterator(IBlackmagicRawMetadataIterator* iterator,
                                                         bool withFrameGuide, double* frameGuideNumerator,
                                                         double* frameGuideDenominator) {
    QV_LOG(QV_LOG_INFO, "Getting Metadata from Iterator");
    qvBRAW_MetadataList list;
    if (iterator == nullptr) return list;
    try {
        for (;;) {
            qvBSTR bstrKey;
            // The iterator says that it is at its end by failing here.
            if (FAILED(iterator->GetKey(&bstrKey.m_str))) break;
            const std::string key = bstrKey.ToString();
            ScopedVariant value;
            if (FAILED(iterator->GetData(&value.get()))) {
                QV_LOG(QV_LOG_ERR, "Failed to get data from IBlackmagicRawMetadataIterator!");
                bstrKey.release();
                break;
            }
            std::string text;
            if (valueText(value.get(), text)) {
                QV_LOG(QV_LOG_INFO, " - Metadata Found : " << key << " : " << text);
                if (!text.empty()) list.emplace_back(key, text);
            }
            if (withFrameGuide && frameGuideNumerator && frameGuideDenominator &&
                value.get().vt == blackmagicRawVariantTypeString && key == "frameguide_aspect_ratio") {
                readFrameGuide(text, frameGuideNumerator, frameGuideDenominator);
            }
            bstrKey.release();
            if (iterator->Next() != S_OK) break;
        }
    } catch (const std::exception& error) {
        QV_LOG(QV_LOG_ERR, "Error raised when Getting Metadatas : " << error.what());
    } catch (...) {
        QV_LOG(QV_LOG_ERR, "Unknown error raised when Getting Metadatas ");
    }
    return list;
}

void qvBRAW_Clip::getAudioMetadata(qvBRAW_MetadataList& out) {
    QV_LOCK_TRACED(m_bmClipMutex);
    IBlackmagicRawClipAudio* audio = nullptr;
    HRESULT hr = E_POINTER;
    if (m_BM) hr = m_BM->QueryInterface(IID_IBlackmagicRawClipAudio, reinterpret_cast<LPVOID*>(&audio));
    if (FAILED(hr) || audio == nullptr) {
        QV_LOG(QV_LOG_ERR, "Impossible to Query IID_IBlackmagicRawClipAudio");
        if (audio) audio->Release();
        m_bmClipMutex.unlock();
        return;
    }

    uint32_t bitDepth = 0;
    if (SUCCEEDED(audio->GetAudioBitDepth(&bitDepth))) {
        QV_LOG(QV_LOG_INFO, "Audio Bit Depth : " << bitDepth);
        out.emplace_back("audioBitDepth", std::to_string(bitDepth));
    } else {
        QV_LOG(QV_LOG_ERR, "Impossible to get BitDepth");
    }
    uint32_t channelCount = 0;
    if (SUCCEEDED(audio->GetAudioChannelCount(&channelCount))) {
        QV_LOG(QV_LOG_INFO, "Audio Channel Count : " << channelCount);
        out.emplace_back("audioChannelCount", std::to_string(channelCount));
    } else {
        QV_LOG(QV_LOG_ERR, "Impossible to get AudioChannelCount");
    }
    uint32_t sampleRate = 0;
    if (SUCCEEDED(audio->GetAudioSampleRate(&sampleRate))) {
        QV_LOG(QV_LOG_INFO, "Audio Sample Rate : " << sampleRate);
        out.emplace_back("audioSampleRate", std::to_string(sampleRate));
    } else {
        QV_LOG(QV_LOG_ERR, "Impossible to get AudioSampleRate");
    }
    uint64_t sampleCount = 0;
    if (SUCCEEDED(audio->GetAudioSampleCount(&sampleCount))) {
        QV_LOG(QV_LOG_INFO, "Audio Sample Count : " << sampleCount);
        out.emplace_back("audioSampleCount", std::to_string(sampleCount));
    } else {
        QV_LOG(QV_LOG_ERR, "Impossible to get AudioSampleCount");
    }
    audio->Release();
    m_bmClipMutex.unlock();
}

qvBRAW_MetadataList qvBRAW_Clip::getMostPopularMetadata() {
    qvBRAW_MetadataList popular;
    try {
        qvBRAW_MetadataList all;
        getClipMetadata(all);
        for (const char* key : {"reel_name", "scene", "take", "good_take", "braw_compression_ratio"}) {
            size_t index = 0;
            while (index < all.size() && all[index].first.Str() != key) ++index;
            if (index >= all.size()) continue;
            qvUtf8String value = all[index].second;
            if (value.Str() == "false") value = "0";
            if (value.Str() == "true") value = "1";
            popular.emplace_back(all[index].first, value);
        }
    } catch (const std::exception& error) {
        QV_LOG(QV_LOG_ERR, "Error raised when Getting Most Popular Metadata : " << error.what());
    } catch (...) {
        QV_LOG(QV_LOG_ERR, "Unknown error raised when Getting Most Popular Metadata ");
    }
    return popular;
}

qvUtf8String qvBRAW_Clip::makeMetadataKeyPretty(const qvUtf8String& key) {
    static const char* const s_upperWords[] = {"braw", "iso", "nd", "id", "3dlut"};
    qvUtf8String walked = key;
    // The last word gets its end too.
    walked += "_";
    qvUtf8String label;
    qvUtf8String word;
    bool firstWord = true;
    const size_t length = walked.Length();
    for (size_t index = 0; index < length; ++index) {
        const qvUtf8Char c = walked.CharAt(index);
        if (c != '_') {
            word += c;
            continue;
        }
        if (!word.Empty()) {
            if (!firstWord) label += " ";
            firstWord = false;
            bool upperAll = false;
            for (const char* upperWord : s_upperWords) upperAll = upperAll || word.Str() == upperWord;
            label += UpperStr(word, !upperAll, upperAll);
        }
        word.Clear();
    }
    return label;
}

qvUtf8String qvBRAW_Clip::UpperStr(qvUtf8String text, bool upperFirst, bool upperAll) {
    qvUtf8String out;
    const size_t length = text.Length();
    for (size_t index = 0; index < length; ++index) {
        const qvUtf8Char c = text.CharAt(index);
        if (((index == 0 && upperFirst) || upperAll) && c.Size() == 1) {
            out += qvUtf8String(c).ToUpperCase();
        } else {
            out += c;
        }
    }
    return out;
}
