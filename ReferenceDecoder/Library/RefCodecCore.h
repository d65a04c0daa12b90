#pragma once
// What a codec shares with its clips, frames and jobs, and what outlives the
// codec object while jobs of it still run: the callback, the count of jobs in
// flight behind FlushJobs, the pipeline, the codec-level facts and hooks, and
// the tone curves of the cameras its clips came from.

#include "Format/RefClipModel.h"
#include "Library/RefFaultHooks.h"
#include "Library/RefLibraryConfig.h"

#include <BlackmagicRawAPI.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace twref {

class RefCodecCore : public std::enable_shared_from_this<RefCodecCore> {
public:
    explicit RefCodecCore(std::shared_ptr<const RefLibraryConfig> config);

    const RefLibraryConfig& config() const { return *m_config; }
    const std::shared_ptr<RefFaultHooks>& hooks() const { return m_hooks; }

    void setCallback(IBlackmagicRawCallback* callback) { m_callback.store(callback); }
    IBlackmagicRawCallback* callback() const { return m_callback.load(); }

    // Runs a job on the worker pool; FlushJobs waits for it. The task must have
    // released everything it holds of the library before it returns.
    void runJob(std::function<void()> task);
    // Returns when every job of the codec has run, callbacks included. From
    // inside a callback of this codec it waits for the others only.
    HRESULT flush();

    // Pipeline configuration; refused once a clip has been opened.
    HRESULT setPipeline(BlackmagicRawPipeline pipeline, void* context, void* commandQueue);
    void pipeline(BlackmagicRawPipeline* pipeline, void** context, void** commandQueue) const;
    BlackmagicRawResourceType resourceType() const;
    void noteClipOpened() { m_clipOpened.store(true); }

    // Tone curves of the camera types of the clips opened on this codec; the
    // first clip of a camera type provides them.
    void registerToneCurves(const std::string& cameraType, const std::vector<RefToneCurve>& curves);
    bool toneCurve(const std::string& cameraType, const std::string& gamma, uint16_t gen,
                   RefToneCurve& out) const;

private:
    void jobFinished();

    std::shared_ptr<const RefLibraryConfig> m_config;
    std::shared_ptr<RefFaultHooks> m_hooks;
    std::atomic<IBlackmagicRawCallback*> m_callback{nullptr};
    std::atomic<bool> m_clipOpened{false};

    std::mutex m_jobsMutex;
    std::condition_variable m_jobsDone;
    uint64_t m_inFlight = 0;
    uint64_t m_flushingCallbacks = 0;

    mutable std::mutex m_mutex;
    BlackmagicRawPipeline m_pipeline;
    void* m_context = nullptr;
    void* m_commandQueue = nullptr;
    std::map<std::string, std::vector<RefToneCurve>> m_toneCurves;
};

}  // namespace twref
