#pragma once
// One pipe between the parent and a child process. Its ends close with the
// object; a failure to close is reported through the context, never thrown.

#include <cstddef>
#include <string>

#include "Spawn/PosixSpawn.h"

class PosixPipe {
public:
    // Throws std::runtime_error ("Error " + errno) when no pipe can be made.
    explicit PosixPipe(const Spawn::Context& context);
    ~PosixPipe();
    PosixPipe(const PosixPipe&) = delete;
    PosixPipe& operator=(const PosixPipe&) = delete;

    int ReadEnd() const { return m_readEnd; }
    int WriteEnd() const { return m_writeEnd; }

    // Closes a still open end and sets it to -1; `name` goes into the report.
    void Close(int& end, const char* name);
    void CloseReadEnd();
    void CloseWriteEnd();

    // One read of at most `size` bytes; empty for end of file or an error.
    std::string ReadString(size_t size);
    // One write, not repeated when short: 0, or errno.
    int Write(const void* data, size_t size);

private:
    int m_readEnd = -1;
    int m_writeEnd = -1;
    Spawn::Context m_context;
};
