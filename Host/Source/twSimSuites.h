#pragma once
// The suites the host serves through SPBasicSuite::AcquireSuite, by name and
// version, with every acquire and release counted.
//
// Balances are kept per suite name: a release under another version than the
// acquire settles the acquire and is noted (hosts tolerate it). A release with
// nothing acquired under that name is misuse.

#include "twSimDiagnostics.h"

#include "MediaCoreTypes.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

struct twSimSuiteUsage {
    std::string name;
    int version = 0;
    int acquired = 0;  // successful acquires under this version
    int released = 0;  // releases naming this version
    int refused = 0;   // acquires refused (unknown or switched off)
};

// One AcquireSuite or ReleaseSuite call, as the plug-in made it.
struct twSimSuiteCall {
    bool acquire = true;
    std::string name;
    int version = 0;
    SPErr result = kSPNoError;
};

class twSimSuites {
public:
    explicit twSimSuites(twSimDiagnostics& diagnostics);

    // Serves `table` for (name, version).
    void add(const std::string& name, int version, const void* table);
    // Switches a suite off (every version) or on again: acquiring it then fails
    // as with a host that doesn't have it.
    void setAvailable(const std::string& name, bool available);
    void setAvailable(const std::string& name, int version, bool available);

    SPErr acquire(const char* name, int version, const void** suite);
    SPErr release(const char* name, int version);

    std::vector<twSimSuiteUsage> usage() const;
    // Acquires minus releases over every version of a name.
    int outstanding(const std::string& name) const;
    int acquireCount(const std::string& name) const;
    // One line per suite name with acquires not released.
    std::vector<std::string> unreleased() const;
    // Every acquire and release in call order, refused ones included.
    std::vector<twSimSuiteCall> calls() const;

private:
    struct Served {
        const void* table;
        bool available;
    };
    struct Counts {
        int acquired = 0;
        int released = 0;
        int refused = 0;
    };

    mutable std::mutex m_mutex;
    twSimDiagnostics& m_diagnostics;
    std::map<std::pair<std::string, int>, Served> m_served;
    std::map<std::pair<std::string, int>, Counts> m_counts;
    // Outstanding acquires per name and version, settled by releases.
    std::map<std::pair<std::string, int>, int> m_open;
    std::vector<twSimSuiteCall> m_calls;
};
