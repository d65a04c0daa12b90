#include "Library/RefCodecCore.h"

#include "Library/RefWorkerPool.h"

#include <chrono>

namespace twref {
namespace {
// The codec whose job the current worker thread is running, if any.
thread_local const RefCodecCore* t_runningFor = nullptr;
}

RefCodecCore::RefCodecCore(std::shared_ptr<const RefLibraryConfig> config)
    : m_config(std::move(config)),
      m_hooks(std::make_shared<RefFaultHooks>(m_config->faults, m_config->delays)),
      m_pipeline(blackmagicRawPipelineCPU)
{
}

void RefCodecCore::runJob(std::function<void()> task)
{
    {
        std::lock_guard<std::mutex> lock(m_jobsMutex);
        ++m_inFlight;
    }
    std::shared_ptr<RefCodecCore> self = shared_from_this();
    RefWorkerPool::instance(m_config->workerThreads).post([self, task = std::move(task)] {
        const RefCodecCore* outer = t_runningFor;
        t_runningFor = self.get();
        task();
        t_runningFor = outer;
        self->jobFinished();
    });
}

void RefCodecCore::jobFinished()
{
    {
        std::lock_guard<std::mutex> lock(m_jobsMutex);
        --m_inFlight;
    }
    m_jobsDone.notify_all();
}

HRESULT RefCodecCore::flush()
{
    std::unique_lock<std::mutex> lock(m_jobsMutex);
    if (!RefWorkerPool::onWorkerThread()) {
        m_jobsDone.wait(lock, [this] { return m_inFlight == 0; });
        return S_OK;
    }
    // On a worker thread: the job running this callback, and those of other
    // callbacks waiting here, cannot finish while we wait, so they do not
    // count; and the queue must keep moving even when every worker waits.
    const bool insideOwnJob = t_runningFor == this;
    if (insideOwnJob)
        ++m_flushingCallbacks;
    RefWorkerPool& pool = RefWorkerPool::instance(m_config->workerThreads);
    while (m_inFlight > m_flushingCallbacks) {
        lock.unlock();
        const bool ran = pool.runOnePending();
        lock.lock();
        if (!ran)
            m_jobsDone.wait_for(lock, std::chrono::milliseconds(2));
    }
    if (insideOwnJob)
        --m_flushingCallbacks;
    lock.unlock();
    m_jobsDone.notify_all();
    return S_OK;
}

HRESULT RefCodecCore::setPipeline(BlackmagicRawPipeline pipeline, void* context, void* commandQueue)
{
    if (m_clipOpened.load())
        return E_FAIL;
    if (!m_config->pipeline(pipeline))
        return E_INVALIDARG;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pipeline = pipeline;
    m_context = context;
    m_commandQueue = commandQueue;
    return S_OK;
}

void RefCodecCore::pipeline(BlackmagicRawPipeline* pipeline, void** context, void** commandQueue) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (pipeline)
        *pipeline = m_pipeline;
    if (context)
        *context = m_context;
    if (commandQueue)
        *commandQueue = m_commandQueue;
}

BlackmagicRawResourceType RefCodecCore::resourceType() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    switch (m_pipeline) {
    case blackmagicRawPipelineCUDA: return blackmagicRawResourceTypeBufferCUDA;
    case blackmagicRawPipelineOpenCL: return blackmagicRawResourceTypeBufferOpenCL;
    case blackmagicRawPipelineMetal: return blackmagicRawResourceTypeBufferMetal;
    default: return blackmagicRawResourceTypeBufferCPU;
    }
}

void RefCodecCore::registerToneCurves(const std::string& cameraType, const std::vector<RefToneCurve>& curves)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_toneCurves.emplace(cameraType, curves);
}

bool RefCodecCore::toneCurve(const std::string& cameraType, const std::string& gamma, uint16_t gen,
                             RefToneCurve& out) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_toneCurves.find(cameraType);
    const std::vector<RefToneCurve> defaults = it == m_toneCurves.end() ? refDefaultToneCurves()
                                                                         : std::vector<RefToneCurve>();
    const std::vector<RefToneCurve>& curves = it == m_toneCurves.end() ? defaults : it->second;
    for (const RefToneCurve& curve : curves) {
        if (curve.gamma == gamma && curve.colorScienceGen == gen) {
            out = curve;
            return true;
        }
    }
    return false;
}

}  // namespace twref
