#include "Library/RefJob.h"

#include "Library/RefFrame.h"
#include "Library/RefProcessedImage.h"
#include "Render/RefRenderer.h"

#include <cstring>
#include <mutex>

namespace twref {

namespace {

struct StageHook {
    TwRefDecoderStageHook hook = nullptr;
    void* context = nullptr;
};

std::mutex g_stageHookMutex;
StageHook g_stageHook;

StageHook currentStageHook()
{
    std::lock_guard<std::mutex> lock(g_stageHookMutex);
    return g_stageHook;
}

}  // namespace

void RefJob::setStageHook(TwRefDecoderStageHook hook, void* context)
{
    std::lock_guard<std::mutex> lock(g_stageHookMutex);
    g_stageHook.hook = hook;
    g_stageHook.context = context;
}

RefJob::RefJob(Kind kind, std::shared_ptr<RefCodecCore> core, RefHooks hooks, uint64_t frameIndex)
    : RefLibObject(kind == Kind::Read ? "Job(read)" : kind == Kind::Decode ? "Job(decode)" : "Job(process)"),
      m_kind(kind),
      m_core(std::move(core)),
      m_hooks(std::move(hooks)),
      m_frameIndex(frameIndex)
{
}

RefJob* RefJob::makeRead(std::shared_ptr<RefClipData> clip, const RefViewGeometry& geometry, uint64_t frameIndex,
                         void* bitStream, uint32_t bitStreamCapacity)
{
    RefJob* job = new RefJob(Kind::Read, clip->core(), clip->hooks(), frameIndex);
    job->m_clip = std::move(clip);
    job->m_geometry = geometry;
    job->m_bitStream = bitStream;
    job->m_bitStreamCapacity = bitStreamCapacity;
    return job;
}

RefJob* RefJob::makeDecode(std::shared_ptr<RefCodecCore> core, RefHooks hooks, const RefFrameState& state,
                           void* bitStream, void* decoded)
{
    RefJob* job = new RefJob(Kind::Decode, std::move(core), std::move(hooks), state.frameIndex);
    job->m_state = state;
    job->m_bitStream = bitStream;
    job->m_decoded = decoded;
    return job;
}

RefJob* RefJob::makeProcess(std::shared_ptr<RefCodecCore> core, RefHooks hooks, const RefFrameState& state,
                            const ProcessBuffers& buffers)
{
    RefJob* job = new RefJob(Kind::Process, std::move(core), std::move(hooks), state.frameIndex);
    job->m_state = state;
    job->m_buffers = buffers;
    return job;
}

HRESULT RefJob::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("Job.QueryInterface", int64_t(m_frameIndex), 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (refSameIid(iid, IID_IUnknown) || refSameIid(iid, IID_IBlackmagicRawJob))
        *out = static_cast<IBlackmagicRawJob*>(this);
    else if (m_kind == Kind::Read && refSameIid(iid, IID_IBlackmagicRawReadJobHints))
        *out = static_cast<IBlackmagicRawReadJobHints*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT RefJob::Submit()
{
    if (HRESULT hr = m_hooks.enter("Job.Submit", int64_t(m_frameIndex)); hr != S_OK)
        return hr;
    if (m_submitted.exchange(true))
        return E_FAIL;
    AddRef();  // the library's own, given back when the callback has returned
    m_core->runJob([this] {
        execute();
        Release();
    });
    return S_OK;
}

HRESULT RefJob::Abort()
{
    return E_NOTIMPL;
}

HRESULT RefJob::SetUserData(void* userData)
{
    if (HRESULT hr = m_hooks.enter("Job.SetUserData", int64_t(m_frameIndex)); hr != S_OK)
        return hr;
    m_userData.store(userData);
    return S_OK;
}

HRESULT RefJob::GetUserData(void** userData)
{
    if (!userData)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Job.GetUserData", int64_t(m_frameIndex)); hr != S_OK)
        return hr;
    *userData = m_userData.load();
    return S_OK;
}

HRESULT RefJob::SetReaderResolutionScale(BlackmagicRawResolutionScale)
{
    return E_NOTIMPL;
}

void RefJob::execute()
{
    IBlackmagicRawCallback* callback = m_core->callback();
    const StageHook stageHook = currentStageHook();
    if (stageHook.hook) {
        const char* stage = m_kind == Kind::Read ? "read" : m_kind == Kind::Decode ? "decode" : "process";
        stageHook.hook(stage, m_frameIndex, m_userData.load(), stageHook.context);
    }
    switch (m_kind) {
    case Kind::Read: executeRead(callback); break;
    case Kind::Decode: executeDecode(callback); break;
    case Kind::Process: executeProcess(callback); break;
    }
}

void RefJob::executeRead(IBlackmagicRawCallback* callback)
{
    // The bit stream is read now, from the file as it is now: a file that went
    // away or was cut short fails here and works again once it is back.
    HRESULT hr = m_hooks.enter("stage.read", int64_t(m_frameIndex));
    std::vector<uint8_t> record;
    if (hr == S_OK)
        hr = m_clip->readBitStream(m_frameIndex, record);
    if (SUCCEEDED(hr) && m_bitStream) {
        if (record.size() > m_bitStreamCapacity)
            hr = E_FAIL;  // the file changed under the size the caller was given
        else
            std::memcpy(m_bitStream, record.data(), record.size());
    }
    if (FAILED(hr) || hr == S_FALSE) {
        if (callback)
            callback->ReadComplete(this, FAILED(hr) ? hr : E_FAIL, nullptr);
        return;
    }
    RefFrame* frame = new RefFrame(m_clip, m_geometry, m_frameIndex, uint32_t(record.size()));
    if (callback)
        callback->ReadComplete(this, S_OK, frame);
    frame->Release();
}

void RefJob::executeDecode(IBlackmagicRawCallback* callback)
{
    HRESULT hr = m_hooks.enter("stage.decode", int64_t(m_frameIndex));
    if (hr == S_OK) {
        std::string error;
        if (!RefClipFile::validateFrameRecord(m_bitStream, m_state.bitStreamBytes, m_frameIndex, error)) {
            std::shared_ptr<RefClipData> clip = RefClipData::find(m_state.clipId);
            hr = clip ? clip->corruptResult(m_frameIndex) : E_FAIL;
        } else {
            RefDecodedHeader header{};
            header.magic = RefDecodedHeader::kMagic;
            header.bitStreamBytes = m_state.bitStreamBytes;
            header.clipId = m_state.clipId;
            header.frameIndex = m_frameIndex;
            std::memcpy(m_decoded, &header, sizeof header);
        }
    }
    if (callback)
        callback->DecodeComplete(this, hr);
}

void RefJob::executeProcess(IBlackmagicRawCallback* callback)
{
    HRESULT hr = m_hooks.enter("stage.process", int64_t(m_frameIndex));
    if (hr == S_OK) {
        RefDecodedHeader header{};
        std::memcpy(&header, m_buffers.decoded, sizeof header);
        if (header.magic != RefDecodedHeader::kMagic || header.clipId != m_state.clipId ||
            header.frameIndex != m_frameIndex)
            hr = E_INVALIDARG;  // not the decoded data of this frame
    }
    std::shared_ptr<const RefLut> lut;
    RefLut callerLut;
    if (hr == S_OK && m_state.lutSize != 0 && m_buffers.lut) {
        lut = RefClipData::findLut(m_buffers.lut);
        if (!lut || lut->size != m_state.lutSize) {
            // A table of the caller's own, of the size the state announced.
            const float* data = static_cast<const float*>(m_buffers.lut);
            callerLut.size = m_state.lutSize;
            callerLut.data.assign(data, data + m_state.lutBytes() / sizeof(float));
            lut.reset();
        }
    }
    if (hr == S_OK) {
        RefRenderTarget target;
        target.data = m_buffers.processed;
        target.sizeBytes = m_state.processedBytes;
        target.width = m_state.width;
        target.height = m_state.height;
        target.format = static_cast<RefResourceFormat>(m_state.resourceFormat);
        target.flipVertical = (m_state.flags & RefFrameState::kFlipVertical) != 0;
        target.flipHorizontal = (m_state.flags & RefFrameState::kFlipHorizontal) != 0;
        const RefLut* applied = lut ? lut.get() : (callerLut.size ? &callerLut : nullptr);
        if (!RefRenderer::render(m_frameIndex, m_state.settings(), applied, target))
            hr = E_FAIL;
    }
    if (FAILED(hr) || hr == S_FALSE) {
        if (callback)
            callback->ProcessComplete(this, FAILED(hr) ? hr : E_FAIL, nullptr);
        return;
    }
    RefImageDescription image;
    image.width = m_state.width;
    image.height = m_state.height;
    image.resource = m_buffers.processed;
    image.type = m_buffers.type;
    image.format = m_state.resourceFormat;
    image.sizeBytes = m_state.processedBytes;
    image.context = m_buffers.context;
    image.commandQueue = m_buffers.commandQueue;
    RefProcessedImage* processed = new RefProcessedImage(image, m_hooks, int64_t(m_frameIndex));
    if (callback)
        callback->ProcessComplete(this, S_OK, processed);
    processed->Release();
}

}  // namespace twref
