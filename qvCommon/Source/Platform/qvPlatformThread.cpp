#include "Platform/qvPlatformThread.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace qvPlatform {

uint64_t CurrentKernelThreadId() {
    // The id never changes for a thread; asking the kernel once per thread keeps
    // the log line free of a system call.
    thread_local const uint64_t s_tid = static_cast<uint64_t>(::syscall(SYS_gettid));
    return s_tid;
}

}  // namespace qvPlatform
