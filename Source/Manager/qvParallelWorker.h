#pragma once
// A task queue served by one background thread, and the task it runs. Tasks
// run one at a time, in the order they were added. The caller owns each task
// and keeps it alive until it has finished; the queue owns only its entries.

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

class qvParallelWorker_Task {
public:
    virtual void Work() = 0;

    // Marks the task as begun; the worker calls it right before Work.
    void Work_Before();
    // Marks the task as finished and wakes its waiters.
    void Work_After();
    // Waits once for the task's end. A wake-up ends the wait whether or not the
    // task has finished: callers that need certainty test m_finished.
    void waitFinished();

    // Atomic because waitFinished reads them on another thread than the
    // worker's without the task's mutex.
    std::atomic<bool> m_finished{false};
    std::atomic<bool> m_started{false};
    std::condition_variable m_finishedCondition;
    std::mutex m_finishedMutex;

protected:
    qvParallelWorker_Task() = default;
    // Nobody deletes a task through this class: its owner knows its type.
    ~qvParallelWorker_Task() = default;
};

class qvParallelWorker {
public:
    using Task = qvParallelWorker_Task;

    qvParallelWorker();
    // Stops the thread after the task it is running, if any; the tasks still
    // queued are dropped without being run.
    ~qvParallelWorker();
    qvParallelWorker(const qvParallelWorker&) = delete;
    qvParallelWorker& operator=(const qvParallelWorker&) = delete;

    // `task` points at the caller's task pointer, which may be null by the
    // time the worker reaches it: the entry is then skipped.
    void addTask(qvParallelWorker_Task** task);
    void waitTaskAsyncAndRemove();
    // Runs every queued task, then ends the thread and joins it.
    void FinishAllTasks();
    void Join();
    bool StopWork();
    bool ThereIsATask();
    void RunNextTask();
    void WaitForNewTask();

    bool m_stop = false;
    bool m_finishAll = false;
    std::list<qvParallelWorker_Task**> m_tasks;
    std::thread m_thread;
    std::condition_variable m_wakeUp;
    std::mutex m_mutex;

private:
    void WorkLoop();
    // With m_mutex held: the thread has nothing more to do.
    bool mustLeave() const;
};
