#include "Platform/qvPlatformThread.h"

#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qvPlatform {

uint64_t CurrentKernelThreadId() {
    // The id never changes for a thread; asking the kernel once per thread keeps
    // the log line free of a system call.
    thread_local const uint64_t s_tid = static_cast<uint64_t>(::syscall(SYS_gettid));
    return s_tid;
}

int GetThreadSchedule(pthread_t thread, ThreadSchedule& schedule) {
    sched_param parameters{};
    int policy = 0;
    const int error = pthread_getschedparam(thread, &policy, &parameters);
    if (error != 0) return error;
    schedule.policy = policy;
    schedule.priority = parameters.sched_priority;
    return 0;
}

int SetThreadSchedule(pthread_t thread, const ThreadSchedule& schedule) {
    sched_param parameters{};
    parameters.sched_priority = schedule.priority;
    return pthread_setschedparam(thread, schedule.policy, &parameters);
}

ThreadSchedule LowestThreadSchedule(const ThreadSchedule& current) {
    if (current.policy == SCHED_OTHER || current.policy == SCHED_BATCH) return ThreadSchedule{SCHED_IDLE, 0};
    return ThreadSchedule{current.policy, sched_get_priority_min(current.policy)};
}

}  // namespace qvPlatform
