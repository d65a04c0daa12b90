#pragma once
// What the simulated host noticed about the plug-in's use of its services.
// Misuse (a double dispose, an unknown handle) is what a real host would crash
// or corrupt memory on; notices are tolerated behaviour that tests may still
// want to see (a suite released under another version than it was acquired).

#include <mutex>
#include <string>
#include <vector>

enum class twSimIssue {
    // misuse
    UnknownPointer,
    UnknownHandle,
    UnknownBlock,
    UnlockNotLocked,
    DisposeLockedHandle,
    UnknownFrame,
    FrameBufferOverrun,
    ReleaseNotAcquired,
    UnknownString,
    BadParameter,
    ExceptionEscaped,
    // notices
    CallAfterClose,  // the host side asked for a call on a closed reader; not sent
    SuiteNotFound,
    ReleaseVersionMismatch,
    ResizeLockedHandle
};

const char* twSimIssueName(twSimIssue issue);
bool twSimIssueIsMisuse(twSimIssue issue);

struct twSimDiagnostic {
    twSimIssue issue;
    std::string detail;
};

class twSimDiagnostics {
public:
    void add(twSimIssue issue, std::string detail);
    std::vector<twSimDiagnostic> all() const;
    std::vector<twSimDiagnostic> misuse() const;
    size_t count(twSimIssue issue) const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::vector<twSimDiagnostic> m_items;
};
