#include "Library/RefWorkerPool.h"

#include <memory>

namespace twref {
namespace {
thread_local bool t_onWorker = false;
}

RefWorkerPool& RefWorkerPool::instance(uint32_t threadCount)
{
    static std::unique_ptr<RefWorkerPool> s_pool(new RefWorkerPool(threadCount == 0 ? 2 : threadCount));
    return *s_pool;
}

RefWorkerPool::RefWorkerPool(uint32_t threadCount)
{
    for (uint32_t i = 0; i < threadCount; ++i)
        m_threads.emplace_back([this] { workerLoop(); });
}

RefWorkerPool::~RefWorkerPool()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    for (std::thread& t : m_threads)
        if (t.joinable())
            t.join();
}

void RefWorkerPool::post(std::function<void()> task)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_wake.notify_one();
}

bool RefWorkerPool::onWorkerThread()
{
    return t_onWorker;
}

bool RefWorkerPool::runOnePending()
{
    std::function<void()> task;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_tasks.empty())
            return false;
        task = std::move(m_tasks.front());
        m_tasks.pop_front();
    }
    task();
    return true;
}

void RefWorkerPool::workerLoop()
{
    t_onWorker = true;
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopping || !m_tasks.empty(); });
            // Queued work still runs at shutdown: its callers are waiting for it.
            if (m_tasks.empty())
                return;
            task = std::move(m_tasks.front());
            m_tasks.pop_front();
        }
        task();
    }
}

}  // namespace twref
