#include "Manager/qvParallelWorker.h"

void qvParallelWorker_Task::Work_Before() {
    m_started = true;
    m_finished = false;
}

void qvParallelWorker_Task::Work_After() {
    {
        std::lock_guard<std::mutex> lock(m_finishedMutex);
        m_finished = true;
    }
    m_finishedCondition.notify_all();
}

void qvParallelWorker_Task::waitFinished() {
    if (m_finished) return;
    std::unique_lock<std::mutex> lock(m_finishedMutex);
    // Looked at once more under the mutex: a task that finished between the
    // test above and this lock has already sent its only wake-up, and waiting
    // for it would never end. There is still one wait and no test after it.
    if (m_finished) return;
    m_finishedCondition.wait(lock);
}

// The thread starts in the body, not among the initialisers: it is declared
// before the mutex and the condition variable it uses, which would not be
// constructed yet when it first runs.
qvParallelWorker::qvParallelWorker() { m_thread = std::thread(&qvParallelWorker::WorkLoop, this); }

qvParallelWorker::~qvParallelWorker() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
        m_wakeUp.notify_all();
    }
    if (m_thread.joinable()) m_thread.join();
}

void qvParallelWorker::addTask(qvParallelWorker_Task** task) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_tasks.push_back(task);
    }
    m_wakeUp.notify_all();
}

void qvParallelWorker::waitTaskAsyncAndRemove() {}

void qvParallelWorker::FinishAllTasks() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_finishAll = true;
    }
    m_wakeUp.notify_all();
    Join();
}

void qvParallelWorker::Join() {
    if (m_thread.joinable()) m_thread.join();
}

bool qvParallelWorker::StopWork() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_stop;
}

bool qvParallelWorker::ThereIsATask() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return !m_tasks.empty();
}

void qvParallelWorker::RunNextTask() {}

void qvParallelWorker::WaitForNewTask() {}

bool qvParallelWorker::mustLeave() const {
    if (m_stop && !m_finishAll) return true;
    return (m_stop || m_finishAll) && m_tasks.empty();
}

// The flags are read under m_mutex, also where the thread only decides
// whether to leave: they are written by other threads.
void qvParallelWorker::WorkLoop() {
    for (;;) {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (mustLeave()) return;
        while (m_tasks.empty() && !m_stop && !m_finishAll) m_wakeUp.wait(lock);
        if (mustLeave()) continue;
        qvParallelWorker_Task** entry = m_tasks.front();
        m_tasks.pop_front();
        lock.unlock();

        qvParallelWorker_Task* task = entry ? *entry : nullptr;
        if (task) {
            task->Work_Before();
            task->Work();
            task->Work_After();
        }
    }
}
