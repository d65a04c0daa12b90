#pragma once
// Runs one command line through "/bin/sh -c" as a child process, feeds its
// standard input on request, gathers its standard output and standard error
// into one text, and returns its exit code. Synchronous: the caller's thread
// waits, and the callbacks run on it.

#include <memory>
#include <string>
#include <sys/types.h>

class qvUtf8String;
class PosixPipe;

namespace Environment {
class Package;
}

namespace Spawn {

// Bit of Context::flags: poll with a 50 ms limit, so that onIdle runs even
// while the child stays silent.
constexpr unsigned FLAG_IDLE_POLL = 2;

struct Context {
    void* userData = nullptr;    // the caller's own state, untouched here
    void* logContext = nullptr;  // first argument of logCallback
    // Receives error reports, printf-style; null silences them.
    void (*logCallback)(void* logContext, const char* format, ...) = nullptr;
    unsigned flags = 0;
    void (*onStarted)(Context& context) = nullptr;  // once, after the child runs
    void (*onIdle)(Context& context) = nullptr;     // after every return from the poll
    pid_t pid = 0;                                  // set before onStarted
    PosixPipe* inputPipe = nullptr;                 // the child's standard input; valid until Spawn returns
};

// `environment` empty: the child gets the parent's environment.
// The std::string form appends to `output`; the qvUtf8String form assigns it
// once the child has ended.
int Spawn(const std::string& command, const std::shared_ptr<Environment::Package>& environment, std::string& output,
          Context& context);
int Spawn(const std::wstring& command, const std::shared_ptr<Environment::Package>& environment, std::string& output,
          Context& context);
int Spawn(const qvUtf8String& command, const std::shared_ptr<Environment::Package>& environment,
          qvUtf8String& output, Context& context);

// One write to the child's standard input: 0, or errno.
int Write(Context& context, const void* data, size_t size);

// The console of this platform reads UTF-8: a plain copy.
std::string Utf8ToConsoleCP(const std::string& text);

// Sends a printf-style report to the context's log callback, if any.
void Report(const Context& context, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace Spawn

// `out` = `in` with every blank escaped by a backslash. `flag` matters only on
// platforms with another shell.
void EscapePathString(const std::string& in, std::string& out, bool flag);

// `out` = `in` without trailing blanks, every blank escaped by a backslash,
// and a backslash at the very end cut.
void EscapeCLArgumentString(const std::string& in, std::string& out);
