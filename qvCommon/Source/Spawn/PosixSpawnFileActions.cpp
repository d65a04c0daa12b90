#include "Spawn/PosixSpawnFileActions.h"

#include <cstring>
#include <stdexcept>
#include <string>

#include "Spawn/PosixPipe.h"

namespace {
[[noreturn]] void fail(const Spawn::Context& context, const char* format, int error) {
    Spawn::Report(context, format, strerror(error));
    throw std::runtime_error("Error " + std::to_string(error));
}
}  // namespace

PosixSpawnFileActions::PosixSpawnFileActions(const Spawn::Context& context, PosixPipe& outputPipe,
                                             PosixPipe& errorPipe, PosixPipe& inputPipe)
    : m_context(context) {
    const int error = posix_spawn_file_actions_init(&m_actions);
    if (error != 0) fail(m_context, "posix_spawn_file_actions_init() failed: %s", error);
    m_initialised = true;
    try {
        // The parent's ends have no business in the child.
        AddClose(inputPipe.WriteEnd());
        AddClose(outputPipe.ReadEnd());
        AddClose(errorPipe.ReadEnd());
        AddDup2(inputPipe.ReadEnd(), 0);
        AddDup2(outputPipe.WriteEnd(), 1);
        AddDup2(errorPipe.WriteEnd(), 2);
        AddClose(inputPipe.ReadEnd());
        AddClose(outputPipe.WriteEnd());
        AddClose(errorPipe.WriteEnd());
    } catch (...) {
        Destroy();
        throw;
    }
}

PosixSpawnFileActions::~PosixSpawnFileActions() { Destroy(); }

void PosixSpawnFileActions::AddClose(int fd) {
    const int error = posix_spawn_file_actions_addclose(&m_actions, fd);
    if (error != 0) fail(m_context, "posix_spawn_file_actions_addclose() failed: %s", error);
}

void PosixSpawnFileActions::AddDup2(int from, int to) {
    const int error = posix_spawn_file_actions_adddup2(&m_actions, from, to);
    if (error != 0) fail(m_context, "posix_spawn_file_actions_adddup2() failed: %s", error);
}

void PosixSpawnFileActions::Destroy() {
    if (!m_initialised) return;
    m_initialised = false;
    const int error = posix_spawn_file_actions_destroy(&m_actions);
    if (error != 0) Spawn::Report(m_context, "posix_spawn_file_actions_destroy() failed: %s", strerror(error));
}
