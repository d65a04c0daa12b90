#include "twSimLeakReport.h"

bool twSimLeakReport::clean() const {
    return pointers.empty() && handles.empty() && lockedHandles.empty() && blocks.empty() && strings.empty() &&
           frames.empty() && suites.empty() && dependencies.empty() && misuse.empty();
}

std::string twSimLeakReport::toString() const {
    if (clean()) return "clean";
    std::string out;
    auto section = [&out](const char* title, const std::vector<std::string>& lines) {
        if (lines.empty()) return;
        out += std::string(title) + " (" + std::to_string(lines.size()) + "):\n";
        for (const auto& l : lines) out += "  " + l + "\n";
    };
    section("leaked pointers", pointers);
    section("leaked handles", handles);
    section("handles left locked", lockedHandles);
    section("leaked SP blocks", blocks);
    section("undisposed host strings", strings);
    section("undisposed frames", frames);
    section("unreleased suites", suites);
    section("unreleased cache dependencies", dependencies);
    section("misuse", misuse);
    return out;
}
