#include "Spawn/PosixSpawn.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

#include "Environment/package.h"
#include "Spawn/PosixPipe.h"
#include "Spawn/PosixSpawnFileActions.h"
#include "String/qvString.h"
#include "String/qvUtf8String.h"

extern char** environ;

namespace Spawn {
namespace {

constexpr int kIdlePollMilliseconds = 50;
constexpr size_t kReadChunk = 4096;

// Reads what a pipe holds until its writer is gone. Only called once the pipe
// reported a hang-up, so every read returns at once and the loop ends at EOF.
void drain(PosixPipe& pipe, std::string& output) {
    for (;;) {
        std::string chunk = pipe.ReadString(kReadChunk);
        if (chunk.empty()) return;
        output += chunk;
    }
}

}  // namespace

void Report(const Context& context, const char* format, ...) {
    if (!context.logCallback) return;
    // The callback is variadic itself, so the arguments travel as one text.
    va_list args;
    va_start(args, format);
    char text[1024];
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    context.logCallback(context.logContext, "%s", text);
}

int Spawn(const std::string& command, const std::shared_ptr<Environment::Package>& environment, std::string& output,
          Context& context) {
    int status = 0;
    try {
        char* const* envp = environment ? Environment::Package::Ptr(environment) : environ;

        PosixPipe outputPipe(context);
        PosixPipe errorPipe(context);
        PosixPipe inputPipe(context);
        PosixSpawnFileActions fileActions(context, outputPipe, errorPipe, inputPipe);

        const char* argv[] = {"/bin/sh", "-c", command.c_str(), nullptr};
        pid_t pid = 0;
        const int spawnError =
            posix_spawn(&pid, "/bin/sh", fileActions.Get(), nullptr, const_cast<char* const*>(argv), envp);
        if (spawnError != 0) {
            Report(context, "posix_spawn() failed: %s\n", strerror(spawnError));
            return spawnError;
        }

        outputPipe.CloseWriteEnd();
        errorPipe.CloseWriteEnd();
        inputPipe.CloseReadEnd();

        context.pid = pid;
        context.inputPipe = &inputPipe;
        // The pipe dies with this frame: never leave its address behind.
        struct InputPipeReset {
            Context& context;
            ~InputPipeReset() { context.inputPipe = nullptr; }
        } inputPipeReset{context};

        if (context.onStarted) context.onStarted(context);

        const int timeout = (context.flags & FLAG_IDLE_POLL) ? kIdlePollMilliseconds : -1;
        for (;;) {
            pollfd fds[2] = {{outputPipe.ReadEnd(), POLLIN, 0}, {errorPipe.ReadEnd(), POLLIN, 0}};
            const int ready = poll(fds, 2, timeout);
            if (ready < 0) {
                // A signal that interrupts the poll is no error of the child's:
                // ending the collection on it would drop the rest of the output
                // and wait for a child that may block on a full pipe. Polling
                // again is the safe form; any other poll error ends the loop.
                if (errno == EINTR) continue;
                break;
            }
            bool hangUp = false;
            if (ready > 0) {
                if (fds[0].revents & POLLIN) output += outputPipe.ReadString(kReadChunk);
                if (fds[1].revents & POLLIN) output += errorPipe.ReadString(kReadChunk);
                // A pipe that hangs up may still hold the child's last bytes
                // (it often writes and exits between two polls). Leaving them
                // unread would lose the end of the output, so the pipe is read
                // to its end before the collection stops, as on a hang-up.
                const short ended = POLLHUP | POLLERR | POLLNVAL;
                if (fds[0].revents & ended) {
                    drain(outputPipe, output);
                    hangUp = true;
                }
                if (fds[1].revents & ended) {
                    drain(errorPipe, output);
                    hangUp = true;
                }
            }
            if (hangUp) break;
            if (context.onIdle) context.onIdle(context);
        }

        int waitStatus = 0;
        pid_t waited = 0;
        while ((waited = waitpid(pid, &waitStatus, 0)) < 0 && errno == EINTR) {
        }
        if (waited < 0) {
            const int error = errno;
            Report(context, "waitpid() failed: %s", strerror(error));
            return error;
        }
        status = waitStatus;
    } catch (const std::runtime_error& error) {
        Report(context, "std::runtime_error - %s", error.what());
        return 1;
    } catch (...) {
    }
    return status >> 8;
}

int Spawn(const std::wstring& command, const std::shared_ptr<Environment::Package>& environment, std::string& output,
          Context& context) {
    return Spawn(qvString::WstringToUtf8(command), environment, output, context);
}

int Spawn(const qvUtf8String& command, const std::shared_ptr<Environment::Package>& environment,
          qvUtf8String& output, Context& context) {
    std::string collected;
    const int result = Spawn(command.Str(), environment, collected, context);
    output = qvUtf8String(collected);
    return result;
}

int Write(Context& context, const void* data, size_t size) {
    if (!context.inputPipe) return EBADF;
    return context.inputPipe->Write(data, size);
}

std::string Utf8ToConsoleCP(const std::string& text) { return text; }

}  // namespace Spawn

void EscapePathString(const std::string& in, std::string& out, bool) {
    std::string escaped;
    escaped.reserve(in.size());
    for (char c : in) {
        if (c == ' ') escaped += '\\';
        escaped += c;
    }
    out = escaped;
}

void EscapeCLArgumentString(const std::string& in, std::string& out) {
    std::string trimmed = in;
    while (!trimmed.empty() && trimmed.back() == ' ') trimmed.pop_back();
    EscapePathString(trimmed, out, false);
    if (!out.empty() && out.back() == '\\') out.pop_back();
}
