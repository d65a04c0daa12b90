#include "twSimSuites.h"

twSimSuites::twSimSuites(twSimDiagnostics& diagnostics) : m_diagnostics(diagnostics) {}

void twSimSuites::add(const std::string& name, int version, const void* table) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_served[{name, version}] = Served{table, true};
}

void twSimSuites::setAvailable(const std::string& name, bool available) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& s : m_served)
        if (s.first.first == name) s.second.available = available;
}

void twSimSuites::setAvailable(const std::string& name, int version, bool available) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_served.find({name, version});
    if (it != m_served.end()) it->second.available = available;
}

SPErr twSimSuites::acquire(const char* name, int version, const void** suite) {
    if (!name || !suite) {
        m_diagnostics.add(twSimIssue::BadParameter, "AcquireSuite with a null name or out pointer");
        if (suite) *suite = nullptr;
        return kSPBadParameterError;
    }
    *suite = nullptr;
    const std::pair<std::string, int> key{name, version};
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_served.find(key);
    if (it == m_served.end() || !it->second.available) {
        ++m_counts[key].refused;
        m_calls.push_back({true, key.first, version, kSPSuiteNotFoundError});
        m_diagnostics.add(twSimIssue::SuiteNotFound, std::string("\"") + name + "\" version " + std::to_string(version));
        return kSPSuiteNotFoundError;
    }
    *suite = it->second.table;
    m_calls.push_back({true, key.first, version, kSPNoError});
    ++m_counts[key].acquired;
    ++m_open[key];
    return kSPNoError;
}

SPErr twSimSuites::release(const char* name, int version) {
    if (!name) {
        m_diagnostics.add(twSimIssue::BadParameter, "ReleaseSuite with a null name");
        return kSPBadParameterError;
    }
    const std::pair<std::string, int> key{name, version};
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_counts[key].released;
    m_calls.push_back({false, key.first, version, kSPNoError});
    auto open = m_open.find(key);
    if (open != m_open.end() && open->second > 0) {
        --open->second;
        return kSPNoError;
    }
    for (auto& other : m_open) {
        if (other.first.first == key.first && other.second > 0) {
            --other.second;
            m_diagnostics.add(twSimIssue::ReleaseVersionMismatch,
                              std::string("\"") + name + "\" acquired as version " +
                                  std::to_string(other.first.second) + ", released as version " +
                                  std::to_string(version));
            return kSPNoError;
        }
    }
    m_diagnostics.add(twSimIssue::ReleaseNotAcquired, std::string("\"") + name + "\" version " + std::to_string(version));
    m_calls.back().result = kSPSuiteNotFoundError;
    return kSPSuiteNotFoundError;
}

std::vector<twSimSuiteUsage> twSimSuites::usage() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<twSimSuiteUsage> out;
    for (const auto& c : m_counts) {
        twSimSuiteUsage u;
        u.name = c.first.first;
        u.version = c.first.second;
        u.acquired = c.second.acquired;
        u.released = c.second.released;
        u.refused = c.second.refused;
        out.push_back(u);
    }
    return out;
}

int twSimSuites::outstanding(const std::string& name) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    int n = 0;
    for (const auto& o : m_open)
        if (o.first.first == name) n += o.second;
    return n;
}

int twSimSuites::acquireCount(const std::string& name) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    int n = 0;
    for (const auto& c : m_counts)
        if (c.first.first == name) n += c.second.acquired;
    return n;
}

std::vector<std::string> twSimSuites::unreleased() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::map<std::string, int> perName;
    for (const auto& o : m_open)
        if (o.second > 0) perName[o.first.first] += o.second;
    std::vector<std::string> out;
    for (const auto& p : perName)
        out.push_back("suite \"" + p.first + "\" acquired " + std::to_string(p.second) + " more time(s) than released");
    return out;
}

std::vector<twSimSuiteCall> twSimSuites::calls() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}
