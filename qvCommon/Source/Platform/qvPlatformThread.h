#pragma once
// Thread identity as the operating system sees it, for the log's thread field.

#include <cstdint>

namespace qvPlatform {

// The kernel's id of the calling thread (the id that `top -H` and /proc show),
// not the process-local pthread handle.
uint64_t CurrentKernelThreadId();

}  // namespace qvPlatform
