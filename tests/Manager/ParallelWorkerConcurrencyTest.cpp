// The one-thread task queue: tasks run once each, in the order added, a null
// entry is passed over, a finish drains the queue while a destruction drops
// it, and a wait on a task ends at its first wake-up.

#include "Manager/qvParallelWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace {

// Appends its number to a shared log when it runs.
class RecordingTask final : public qvParallelWorker_Task {
public:
    RecordingTask(int number, std::vector<int>& log, std::mutex& logMutex)
        : m_number(number), m_log(log), m_logMutex(logMutex) {}
    void Work() override {
        std::lock_guard<std::mutex> lock(m_logMutex);
        m_log.push_back(m_number);
    }

private:
    int m_number;
    std::vector<int>& m_log;
    std::mutex& m_logMutex;
};

// Runs until the test opens its gate, so that the test can act while the
// worker is busy.
class GateTask final : public qvParallelWorker_Task {
public:
    void Work() override {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_entered = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }
    void waitEntered() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_entered; });
    }
    void open() {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_entered = false;
    bool m_open = false;
};

}  // namespace

TEST(ParallelWorkerConcurrency, FinishRunsEveryQueuedTaskInOrderOnceAndSkipsNullEntries) {
    std::vector<int> log;
    std::mutex logMutex;
    std::deque<RecordingTask> tasks;
    for (int i = 0; i < 20; ++i) tasks.emplace_back(i, log, logMutex);
    std::vector<qvParallelWorker_Task*> pointers;
    for (RecordingTask& task : tasks) pointers.push_back(&task);
    qvParallelWorker_Task* nothing = nullptr;

    qvParallelWorker worker;
    for (int i = 0; i < 20; ++i) {
        worker.addTask(&pointers[i]);
        if (i == 7) worker.addTask(&nothing);
    }
    worker.addTask(nullptr);
    worker.FinishAllTasks();

    std::vector<int> expected;
    for (int i = 0; i < 20; ++i) expected.push_back(i);
    EXPECT_EQ(log, expected);
    for (RecordingTask& task : tasks) {
        EXPECT_TRUE(task.m_started);
        EXPECT_TRUE(task.m_finished);
    }
    EXPECT_FALSE(worker.ThereIsATask());
    EXPECT_FALSE(worker.StopWork());
    EXPECT_FALSE(worker.m_thread.joinable());
    // Nothing is left to join the second time.
    worker.FinishAllTasks();
    worker.Join();
}

TEST(ParallelWorkerConcurrency, TasksAddedFromSeveralThreadsAllRunOnce) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 50;
    std::vector<int> log;
    std::mutex logMutex;
    std::deque<RecordingTask> tasks;
    for (int i = 0; i < kThreads * kPerThread; ++i) tasks.emplace_back(i, log, logMutex);
    std::vector<qvParallelWorker_Task*> pointers;
    for (RecordingTask& task : tasks) pointers.push_back(&task);

    qvParallelWorker worker;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i) {
                const int n = t * kPerThread + i;
                worker.addTask(&pointers[n]);
                // Each caller sees its own task through to the end.
                if (i % 10 == 9) {
                    while (!tasks[n].m_finished) tasks[n].waitFinished();
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    worker.FinishAllTasks();

    std::vector<int> seen(kThreads * kPerThread, 0);
    for (int n : log) ++seen[n];
    for (int count : seen) EXPECT_EQ(count, 1);
    // Each thread's tasks keep the order that thread added them in.
    for (int t = 0; t < kThreads; ++t) {
        int last = -1;
        for (int n : log) {
            if (n / kPerThread != t) continue;
            EXPECT_GT(n, last);
            last = n;
        }
    }
}

TEST(ParallelWorkerConcurrency, DestructionDropsQueuedTasksWithoutRunningThem) {
    std::vector<int> log;
    std::mutex logMutex;
    GateTask gate;
    RecordingTask later1(1, log, logMutex);
    RecordingTask later2(2, log, logMutex);
    qvParallelWorker_Task* pointers[3] = {&gate, &later1, &later2};

    auto* worker = new qvParallelWorker;
    worker->addTask(&pointers[0]);
    gate.waitEntered();
    worker->addTask(&pointers[1]);
    worker->addTask(&pointers[2]);

    std::thread destroyer([worker] { delete worker; });
    // The stop is set before the destructor waits for the busy task.
    while (!worker->StopWork()) std::this_thread::yield();
    gate.open();
    destroyer.join();

    EXPECT_TRUE(gate.m_finished);
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(later1.m_started);
    EXPECT_FALSE(later2.m_started);
}

TEST(ParallelWorkerConcurrency, AnIdleWorkerEndsWithItsOwner) {
    { qvParallelWorker worker; }
    qvParallelWorker worker;
    worker.FinishAllTasks();
    EXPECT_FALSE(worker.m_thread.joinable());
}

TEST(ParallelWorkerConcurrency, WaitFinishedReturnsAtTheTasksEndOrAtOnceWhenItHasEnded) {
    GateTask gate;
    qvParallelWorker_Task* pointer = &gate;
    qvParallelWorker worker;
    worker.addTask(&pointer);
    gate.waitEntered();

    std::atomic<bool> waited{false};
    std::thread waiter([&] {
        // Real wake-ups only come from the end of the task here, unless the
        // system sends a spurious one: loop on the flag as a caller must.
        while (!gate.m_finished) gate.waitFinished();
        waited = true;
    });
    gate.open();
    waiter.join();
    EXPECT_TRUE(waited);
    gate.waitFinished();  // already finished: no wait at all
    worker.FinishAllTasks();
}

TEST(ParallelWorkerConcurrency, WaitFinishedEndsAtAWakeUpThatIsNotTheTasksEnd) {
    GateTask never;  // never handed to a worker
    std::atomic<bool> returned{false};
    std::thread waiter([&] {
        never.waitFinished();
        returned = true;
    });
    // Wakes the waiter without finishing the task; repeated because the waiter
    // may not be waiting yet at the first notification.
    while (!returned) {
        {
            std::lock_guard<std::mutex> lock(never.m_finishedMutex);
        }
        never.m_finishedCondition.notify_all();
        std::this_thread::yield();
    }
    waiter.join();
    EXPECT_FALSE(never.m_finished);
}
