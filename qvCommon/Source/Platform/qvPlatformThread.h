#pragma once
// Threads as the operating system sees them: the kernel's id for the log's
// thread field, and the scheduling a thread runs with.

#include <pthread.h>

#include <cstdint>

namespace qvPlatform {

// The kernel's id of the calling thread (the id that `top -H` and /proc show),
// not the process-local pthread handle.
uint64_t CurrentKernelThreadId();

// A thread's scheduling: the policy (SCHED_OTHER, SCHED_IDLE, SCHED_FIFO, ...)
// and its static priority within that policy.
struct ThreadSchedule {
    int policy = 0;
    int priority = 0;
};

// 0, or the system's error number.
int GetThreadSchedule(pthread_t thread, ThreadSchedule& schedule);
int SetThreadSchedule(pthread_t thread, const ThreadSchedule& schedule);

// The lowest scheduling a thread now running with `current` can be given
// without privileges. Within a policy that has priority levels it is the
// policy's lowest level. The time-sharing policies have a single level, so
// their lowest is the idle class, which runs only when nothing else wants the
// processor; that is where a background thread goes on Linux.
ThreadSchedule LowestThreadSchedule(const ThreadSchedule& current);

}  // namespace qvPlatform
