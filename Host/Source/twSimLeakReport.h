#pragma once
// What a plug-in left behind, collected at the end of a test: host memory it
// still owns, frames nobody disposed, suites acquired more often than released,
// host strings never disposed, cache dependencies never released, and every
// misuse the host noticed on the way.

#include <string>
#include <vector>

struct twSimLeakReport {
    std::vector<std::string> pointers;
    std::vector<std::string> handles;
    std::vector<std::string> lockedHandles;
    std::vector<std::string> blocks;
    std::vector<std::string> strings;
    std::vector<std::string> frames;
    std::vector<std::string> suites;
    std::vector<std::string> dependencies;
    std::vector<std::string> misuse;

    bool clean() const;
    // One line per finding, grouped; "clean" when there is none.
    std::string toString() const;
};
