#pragma once
// What went wrong on the worker threads of a test, gathered for the test's own
// thread to report: gtest's assertions are only safe on the thread that runs it.

#include <mutex>
#include <string>
#include <vector>

namespace twtest {

class ThreadFailures {
public:
    void add(const std::string& what) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_list.push_back(what);
    }
    std::vector<std::string> list() const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_list;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_list;
};

}  // namespace twtest
