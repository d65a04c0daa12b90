#include "Spawn/PosixPipe.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <stdexcept>
#include <unistd.h>

namespace {

// A child that has already closed its input makes a write raise SIGPIPE, whose
// default action would end the host. The signal is held back on this thread
// for the one write, and a SIGPIPE that the write itself caused is consumed.
class ScopedSigpipeBlock {
public:
    ScopedSigpipeBlock() {
        sigset_t pending;
        sigemptyset(&pending);
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        sigset_t block;
        sigemptyset(&block);
        sigaddset(&block, SIGPIPE);
        m_blocked = pthread_sigmask(SIG_BLOCK, &block, &m_previous) == 0;
    }
    ~ScopedSigpipeBlock() {
        if (!m_blocked) return;
        if (m_brokenPipe && !m_wasPending) {
            sigset_t pipeOnly;
            sigemptyset(&pipeOnly);
            sigaddset(&pipeOnly, SIGPIPE);
            const timespec noWait = {0, 0};
            while (sigtimedwait(&pipeOnly, nullptr, &noWait) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }
    void brokenPipe() { m_brokenPipe = true; }

private:
    sigset_t m_previous;
    bool m_blocked = false;
    bool m_wasPending = false;
    bool m_brokenPipe = false;
};

}  // namespace

PosixPipe::PosixPipe(const Spawn::Context& context) : m_context(context) {
    int ends[2] = {-1, -1};
    // Close-on-exec keeps these ends out of children that other threads of the
    // host start meanwhile; the child's own copies come from dup2, which clears it.
    if (pipe2(ends, O_CLOEXEC) != 0) {
        const int error = errno;
        Spawn::Report(m_context, "pipe() failed: %s", strerror(error));
        throw std::runtime_error("Error " + std::to_string(error));
    }
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
}

PosixPipe::~PosixPipe() {
    CloseReadEnd();
    CloseWriteEnd();
}

void PosixPipe::Close(int& end, const char* name) {
    if (end == -1) return;
    if (close(end) != 0) Spawn::Report(m_context, "close(%s) failed: %s", name, strerror(errno));
    end = -1;
}

void PosixPipe::CloseReadEnd() { Close(m_readEnd, "ReadEnd"); }

void PosixPipe::CloseWriteEnd() { Close(m_writeEnd, "WriteEnd"); }

std::string PosixPipe::ReadString(size_t size) {
    std::string text(size, '\0');
    const ssize_t got = read(m_readEnd, &text[0], size);
    if (got <= 0) return std::string();
    text.resize(static_cast<size_t>(got));
    return text;
}

int PosixPipe::Write(const void* data, size_t size) {
    ScopedSigpipeBlock guard;
    if (write(m_writeEnd, data, size) >= 0) return 0;
    const int error = errno;
    if (error == EPIPE) guard.brokenPipe();
    return error;
}
