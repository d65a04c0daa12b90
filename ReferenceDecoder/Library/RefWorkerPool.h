#pragma once
// The library's worker threads: one fixed pool for the process, started by the
// first submitted job. Jobs of every codec run here and call back from here.

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace twref {

class RefWorkerPool {
public:
    // The pool; threadCount is used only by the call that starts it.
    static RefWorkerPool& instance(uint32_t threadCount);

    void post(std::function<void()> task);
    // True on one of the pool's threads.
    static bool onWorkerThread();
    // Runs one queued task on the calling thread; false when none is queued.
    // Lets a worker that waits for other jobs keep the queue moving.
    bool runOnePending();
    uint32_t threadCount() const { return uint32_t(m_threads.size()); }

    ~RefWorkerPool();

private:
    explicit RefWorkerPool(uint32_t threadCount);
    void workerLoop();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_tasks;
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};

}  // namespace twref
