#pragma once
// The child's descriptor set-up for posix_spawn: the three pipes become its
// standard input, output and error, and every other end of them is closed.

#include <spawn.h>

#include "Spawn/PosixSpawn.h"

class PosixPipe;

class PosixSpawnFileActions {
public:
    // Throws std::runtime_error ("Error " + number) when an action cannot be added.
    PosixSpawnFileActions(const Spawn::Context& context, PosixPipe& outputPipe, PosixPipe& errorPipe,
                          PosixPipe& inputPipe);
    ~PosixSpawnFileActions();
    PosixSpawnFileActions(const PosixSpawnFileActions&) = delete;
    PosixSpawnFileActions& operator=(const PosixSpawnFileActions&) = delete;

    void AddClose(int fd);
    void AddDup2(int from, int to);

    const posix_spawn_file_actions_t* Get() const { return &m_actions; }

private:
    void Destroy();

    posix_spawn_file_actions_t m_actions;
    Spawn::Context m_context;
    bool m_initialised = false;
};
