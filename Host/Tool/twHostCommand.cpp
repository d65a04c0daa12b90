#include "twHostCommand.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace {

// Filled while the program's static objects are made, in no fixed order of
// files: a function-local list is there before the first command registers.
std::vector<twHostCommandEntry>& Registry() {
    static std::vector<twHostCommandEntry> entries;
    return entries;
}

}  // namespace

bool twHostRegisterCommandEntry(twHostCommandEntry entry) {
    Registry().push_back(std::move(entry));
    return true;
}

std::vector<twHostCommandEntry> twHostRegisteredCommands() {
    std::vector<twHostCommandEntry> sorted = Registry();
    std::stable_sort(sorted.begin(), sorted.end(), [](const twHostCommandEntry& a, const twHostCommandEntry& b) {
        return a.rank != b.rank ? a.rank < b.rank : a.name < b.name;
    });
    return sorted;
}

CLI::Validator twHostWholeNumber(long long min, long long max, const std::string& what) {
    return CLI::Validator(
        [min, max, what](std::string& text) -> std::string {
            char* end = nullptr;
            errno = 0;
            const long long v = std::strtoll(text.c_str(), &end, 10);
            if (text.empty() || *end != 0 || errno != 0 || v < min || v > max)
                return "bad value '" + text + "' (expected " + what + ")";
            return std::string();
        },
        "");
}
