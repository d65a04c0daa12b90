#pragma once
// The tests' stand-in for the settings application (tests/Popup/
// PopupTestChild.cpp), put where the plug-in looks for the application and told
// what to do by a script beside it.

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace twtest {

class SettingsAppStandIn {
public:
    // Links the stand-in program `program` at `path`, creating its folders.
    SettingsAppStandIn(const std::string& program, const std::string& path);

    // The instructions of its next runs (see PopupTestChild.cpp).
    void script(const std::vector<std::string>& lines) const;
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// The arguments a run wrote with "argv FILE"; empty when it never ran.
std::vector<std::string> readArguments(const std::string& file);

// Ends a stand-in that hangs: waits, on a thread of its own, for the process id
// that "hang FILE" writes, then kills that process. Destroying it stops the
// wait for a stand-in that never started.
class HangBreaker {
public:
    explicit HangBreaker(const std::string& pidFile);
    ~HangBreaker();
    HangBreaker(const HangBreaker&) = delete;
    HangBreaker& operator=(const HangBreaker&) = delete;

private:
    std::shared_ptr<std::atomic<bool>> m_stop;
    std::thread m_thread;
};

}  // namespace twtest
