#include "twSimDiagnostics.h"

const char* twSimIssueName(twSimIssue issue) {
    switch (issue) {
        case twSimIssue::UnknownPointer: return "unknown pointer";
        case twSimIssue::UnknownHandle: return "unknown handle";
        case twSimIssue::UnknownBlock: return "unknown SP block";
        case twSimIssue::UnlockNotLocked: return "unlock of an unlocked handle";
        case twSimIssue::DisposeLockedHandle: return "dispose of a locked handle";
        case twSimIssue::UnknownFrame: return "unknown or disposed frame";
        case twSimIssue::FrameBufferOverrun: return "frame buffer overrun";
        case twSimIssue::ReleaseNotAcquired: return "suite released but not acquired";
        case twSimIssue::UnknownString: return "unknown host string";
        case twSimIssue::BadParameter: return "bad parameter";
        case twSimIssue::ExceptionEscaped: return "exception escaped the plug-in";
        case twSimIssue::CallAfterClose: return "call after close";
        case twSimIssue::SuiteNotFound: return "suite not found";
        case twSimIssue::ReleaseVersionMismatch: return "suite released under another version";
        case twSimIssue::ResizeLockedHandle: return "resize of a locked handle refused";
    }
    return "?";
}

bool twSimIssueIsMisuse(twSimIssue issue) {
    switch (issue) {
        case twSimIssue::SuiteNotFound:
        case twSimIssue::ReleaseVersionMismatch:
        case twSimIssue::ResizeLockedHandle:
        case twSimIssue::CallAfterClose:
            return false;
        default:
            return true;
    }
}

void twSimDiagnostics::add(twSimIssue issue, std::string detail) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_items.push_back({issue, std::move(detail)});
}

std::vector<twSimDiagnostic> twSimDiagnostics::all() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_items;
}

std::vector<twSimDiagnostic> twSimDiagnostics::misuse() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<twSimDiagnostic> out;
    for (const auto& d : m_items)
        if (twSimIssueIsMisuse(d.issue)) out.push_back(d);
    return out;
}

size_t twSimDiagnostics::count(twSimIssue issue) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t n = 0;
    for (const auto& d : m_items)
        if (d.issue == issue) ++n;
    return n;
}

void twSimDiagnostics::clear() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_items.clear();
}
