#include "LibraryTestSupport.h"

#include "Writer/RefClipWriter.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstring>
#include <fstream>

namespace twtest {

// ---- RefLibrary ---------------------------------------------------------------------

std::string RefLibrary::builtPath()
{
    return TW_REF_LIBRARY_PATH;
}

RefLibrary::RefLibrary() : RefLibrary(builtPath()) {}

RefLibrary::RefLibrary(const std::string& path)
{
    // As a caller does: loaded once, never closed.
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle)
        throw std::runtime_error(std::string("dlopen: ") + dlerror());
    m_create = reinterpret_cast<CreateBlackmagicRawFactoryInstanceFunc>(symbol("CreateBlackmagicRawFactoryInstance"));
    m_live = reinterpret_cast<TwRefDecoderLiveObjectsFunc>(symbol(TW_REF_DECODER_LIVE_OBJECTS_SYMBOL));
    variantInit = reinterpret_cast<VariantInitFunc>(symbol("VariantInit"));
    variantClear = reinterpret_cast<VariantClearFunc>(symbol("VariantClear"));
    safeArrayCreate = reinterpret_cast<SafeArrayCreateFunc>(symbol("SafeArrayCreate"));
    safeArrayGetVartype = reinterpret_cast<SafeArrayGetVartypeFunc>(symbol("SafeArrayGetVartype"));
    safeArrayGetLBound = reinterpret_cast<SafeArrayGetLBoundFunc>(symbol("SafeArrayGetLBound"));
    safeArrayGetUBound = reinterpret_cast<SafeArrayGetUBoundFunc>(symbol("SafeArrayGetUBound"));
    safeArrayAccessData = reinterpret_cast<SafeArrayAccessDataFunc>(symbol("SafeArrayAccessData"));
    safeArrayUnaccessData = reinterpret_cast<SafeArrayUnaccessDataFunc>(symbol("SafeArrayUnaccessData"));
    safeArrayDestroy = reinterpret_cast<SafeArrayDestroyFunc>(symbol("SafeArrayDestroy"));
    if (!m_create || !m_live)
        throw std::runtime_error("the library lacks its entry points");
}

void* RefLibrary::symbol(const char* name) const
{
    return dlsym(m_handle, name);
}

std::string RefLibrary::liveReport() const
{
    std::vector<char> text(64 * 1024);
    m_live(text.data(), uint32_t(text.size()));
    return std::string("live objects:\n") + text.data();
}

std::string RefLibrary::copyWithFacts(const TempFolder& folder, const std::string& name, const std::string& json)
{
    const std::string dir = folder.makeFolder(name);
    const std::string path = dir + "/libBlackmagicRawAPI.so";
    {
        std::ifstream in(builtPath(), std::ios::binary);
        std::ofstream out(path, std::ios::binary);
        out << in.rdbuf();
    }
    if (!json.empty())
        folder.writeFile(name + "/libBlackmagicRawAPI.json", json);
    return path;
}

std::string writeClip(const TempFolder& folder, const std::string& name, const twref::RefClipModel& model)
{
    const std::string path = folder.join(name);
    std::string error;
    if (!twref::RefClipWriter::write(path, model, &error))
        throw std::runtime_error(error);
    return path;
}

twref::RefClipModel smallClip(uint64_t frameCount)
{
    twref::RefClipModel model = twref::RefClipWriter::makeClip(256, 144, 24.0f, frameCount);
    model.bitStream.frameBytes = 512;
    return model;
}

// ---- CodecSession ---------------------------------------------------------------------

CodecSession::CodecSession(const RefLibrary& lib, IBlackmagicRawCallback* callback)
    : factory(lib.createFactory())
{
    if (!factory)
        throw std::runtime_error("no factory");
    if (FAILED(factory->CreateCodec(codec.out())))
        throw std::runtime_error("no codec");
    if (callback)
        codec->SetCallback(callback);
}

HRESULT CodecSession::open(const std::string& path, Held<IBlackmagicRawClip>& clip) const
{
    return codec->OpenClip(path.c_str(), clip.out());
}

// ---- RecordingCallback ----------------------------------------------------------------

void RecordingCallback::ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame)
{
    if (onRead)
        onRead(job, result, frame);
}

void RecordingCallback::DecodeComplete(IBlackmagicRawJob* job, HRESULT result)
{
    if (onDecode)
        onDecode(job, result);
}

void RecordingCallback::ProcessComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image)
{
    if (onProcess)
        onProcess(job, result, image);
}

void RecordingCallback::SidecarMetadataParseWarning(IBlackmagicRawClip* clip, const char* fileName, uint32_t line,
                                                    const char* info)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sidecarIssues.push_back({false, clip, fileName ? fileName : "", line, info ? info : ""});
}

void RecordingCallback::SidecarMetadataParseError(IBlackmagicRawClip* clip, const char* fileName, uint32_t line,
                                                  const char* info)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sidecarIssues.push_back({true, clip, fileName ? fileName : "", line, info ? info : ""});
}

std::vector<RecordingCallback::SidecarIssue> RecordingCallback::sidecarIssues() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_sidecarIssues;
}

void RecordingCallback::clearSidecarIssues()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sidecarIssues.clear();
}

// ---- FlowDriver -------------------------------------------------------------------------

FlowDriver::FlowDriver(IBlackmagicRaw* codec, RecordingCallback& callback) : m_codec(codec)
{
    Held<IBlackmagicRawConfigurationEx> configurationEx;
    if (FAILED(queryInto(codec, IID_IBlackmagicRawManualDecoderFlow1, m_flow)) ||
        FAILED(queryInto(codec, IID_IBlackmagicRawConfigurationEx, configurationEx)) ||
        FAILED(configurationEx->GetResourceManager(m_resources.out())))
        throw std::runtime_error("no manual flow");
    callback.onRead = [this](IBlackmagicRawJob* job, HRESULT hr, IBlackmagicRawFrame* frame) { read(job, hr, frame); };
    callback.onDecode = [this](IBlackmagicRawJob* job, HRESULT hr) { decoded(job, hr); };
    callback.onProcess = [this](IBlackmagicRawJob* job, HRESULT hr, IBlackmagicRawProcessedImage* image) {
        processed(job, hr, image);
    };
}

FlowDriver::~FlowDriver() = default;

void* FlowDriver::allocate(uint32_t size)
{
    void* resource = nullptr;
    if (FAILED(m_resources->CreateResource(nullptr, nullptr, size, blackmagicRawResourceTypeBufferCPU,
                                           blackmagicRawResourceUsageReadCPUWriteCPU, &resource)))
        return nullptr;
    return resource;
}

void FlowDriver::releaseBuffers(FlowRequest& request)
{
    for (void** buffer : {&request.bitStream, &request.frameState, &request.decoded, &request.processed}) {
        if (*buffer)
            m_resources->ReleaseResource(nullptr, nullptr, *buffer, blackmagicRawResourceTypeBufferCPU);
        *buffer = nullptr;
    }
}

void FlowDriver::finish(FlowRequest& request)
{
    request.finished.store(true);
}

void FlowDriver::submit(FlowRequest& request)
{
    Held<IBlackmagicRawClipEx> clipEx;
    request.createResult = queryInto(request.clip, IID_IBlackmagicRawClipEx, clipEx);
    if (SUCCEEDED(request.createResult))
        request.createResult = clipEx->GetBitStreamSizeBytes(request.frame, &request.bitStreamSize);
    if (FAILED(request.createResult)) {
        finish(request);
        return;
    }
    request.bitStream = allocate(request.bitStreamSize);
    Held<IBlackmagicRawJob> job;
    request.createResult = clipEx->CreateJobReadFrame(request.frame, request.bitStream, request.bitStreamSize, job.out());
    if (SUCCEEDED(request.createResult))
        request.createResult = job->SetUserData(&request);
    if (SUCCEEDED(request.createResult))
        request.createResult = job->Submit();
    if (FAILED(request.createResult))
        finish(request);
}

void FlowDriver::run(FlowRequest& request)
{
    submit(request);
    m_codec->FlushJobs();
}

void FlowDriver::read(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame)
{
    void* userData = nullptr;
    job->GetUserData(&userData);
    FlowRequest& request = *static_cast<FlowRequest*>(userData);
    std::lock_guard<std::mutex> lock(request.mutex);
    request.userDataSeen = userData;
    request.readResult = result;
    if (FAILED(result) || !frame) {
        finish(request);
        return;
    }
    HRESULT hr = frame->SetResourceFormat(request.format);
    if (SUCCEEDED(hr))
        hr = frame->SetResolutionScale(request.scale);
    Held<IBlackmagicRawFrameProcessingAttributes> frameAttributes;
    if (SUCCEEDED(hr) && !request.frameValues.empty()) {
        hr = frame->CloneFrameProcessingAttributes(frameAttributes.out());
        for (auto& [id, value] : request.frameValues)
            if (SUCCEEDED(hr))
                hr = frameAttributes->SetFrameAttribute(id, &value);
    }
    uint32_t stateSize = 0;
    if (SUCCEEDED(hr))
        hr = m_flow->GetFrameStateSizeBytes(&stateSize);
    if (SUCCEEDED(hr)) {
        request.frameState = allocate(stateSize);
        hr = m_flow->PopulateFrameStateBuffer(frame, request.clipAttributes, frameAttributes.get(), request.frameState,
                                              stateSize);
    }
    uint32_t decodedSize = 0;
    if (SUCCEEDED(hr))
        hr = m_flow->GetDecodedSizeBytes(request.frameState, &decodedSize);
    Held<IBlackmagicRawJob> decodeJob;
    if (SUCCEEDED(hr)) {
        request.decoded = allocate(decodedSize);
        hr = m_flow->CreateJobDecode(request.frameState, request.bitStream, request.decoded, decodeJob.out());
    }
    if (SUCCEEDED(hr))
        hr = decodeJob->SetUserData(&request);
    if (SUCCEEDED(hr))
        hr = decodeJob->Submit();
    request.stateResult = hr;
    if (FAILED(hr))
        finish(request);
}

void FlowDriver::decoded(IBlackmagicRawJob* job, HRESULT result)
{
    void* userData = nullptr;
    job->GetUserData(&userData);
    FlowRequest& request = *static_cast<FlowRequest*>(userData);
    std::lock_guard<std::mutex> lock(request.mutex);
    request.decodeResult = result;
    if (FAILED(result)) {
        finish(request);
        return;
    }
    HRESULT hr = m_flow->GetProcessedSizeBytes(request.frameState, &request.processedSize);
    void* lutBuffer = nullptr;
    if (SUCCEEDED(hr) && request.withLut && request.clipAttributes) {
        Held<IBlackmagicRawPost3DLUT> lut;
        hr = request.clipAttributes->GetPost3DLUT(lut.out());
        if (SUCCEEDED(hr) && lut)
            hr = lut->GetResourceCPU(&lutBuffer);
    }
    Held<IBlackmagicRawJob> processJob;
    if (SUCCEEDED(hr)) {
        request.processed = allocate(request.processedSize);
        hr = m_flow->CreateJobProcess(request.frameState, request.decoded, request.processed, lutBuffer,
                                      processJob.out());
    }
    if (SUCCEEDED(hr))
        hr = processJob->SetUserData(&request);
    if (SUCCEEDED(hr))
        hr = processJob->Submit();
    request.processStartResult = hr;
    if (FAILED(hr))
        finish(request);
}

void FlowDriver::processed(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image)
{
    void* userData = nullptr;
    job->GetUserData(&userData);
    FlowRequest& request = *static_cast<FlowRequest*>(userData);
    std::lock_guard<std::mutex> lock(request.mutex);
    request.processResult = result;
    if (SUCCEEDED(result) && image) {
        void* resource = nullptr;
        uint32_t size = 0;
        image->GetWidth(&request.width);
        image->GetHeight(&request.height);
        image->GetResourceFormat(&request.imageFormat);
        image->GetResourceType(&request.imageType);
        image->GetResourceSizeBytes(&size);
        image->GetResource(&resource);
        const uint8_t* bytes = static_cast<const uint8_t*>(resource);
        request.pixels.assign(bytes, bytes + size);
    }
    finish(request);
}

// ---- helpers ---------------------------------------------------------------------------------

namespace {

// A Variant of the given type holding v in field.
template <typename Field>
Variant variantOf(BlackmagicRawVariantType type, Field Variant::*field, Field v)
{
    Variant variant{};
    variant.vt = type;
    variant.*field = v;
    return variant;
}

}  // namespace

Variant makeU16(uint16_t v)
{
    return variantOf(blackmagicRawVariantTypeU16, &Variant::uiVal, v);
}

Variant makeS16(int16_t v)
{
    return variantOf(blackmagicRawVariantTypeS16, &Variant::iVal, v);
}

Variant makeU32(uint32_t v)
{
    return variantOf(blackmagicRawVariantTypeU32, &Variant::uintVal, v);
}

Variant makeFloat(float v)
{
    return variantOf(blackmagicRawVariantTypeFloat32, &Variant::fltVal, v);
}

Variant makeString(const char* v)
{
    return variantOf(blackmagicRawVariantTypeString, &Variant::bstrVal, v);
}

double meanChannel(const FlowRequest& request, int channel)
{
    if (request.pixels.size() < 4)
        return -1.0;
    double sum = 0.0;
    const size_t count = request.pixels.size() / 4;
    for (size_t i = 0; i < count; ++i)
        sum += request.pixels[i * 4 + size_t(channel)];
    return sum / double(count);
}

}  // namespace twtest
