#include "Environment/package.h"
#include "Spawn/PosixPipe.h"
#include "Spawn/PosixSpawn.h"
#include "String/qvUtf8String.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

namespace {

struct Recorder {
    std::vector<std::string> reports;
    int started = 0;
    int idles = 0;
    pid_t pidAtStart = 0;
    bool pipeAtStart = false;
    std::string input;
};

void recordReport(void* context, const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    static_cast<Recorder*>(context)->reports.push_back(text);
}

Recorder& recorderOf(Spawn::Context& context) { return *static_cast<Recorder*>(context.userData); }

void sendInputAndClose(Spawn::Context& context) {
    Recorder& recorder = recorderOf(context);
    ++recorder.started;
    recorder.pidAtStart = context.pid;
    recorder.pipeAtStart = context.inputPipe != nullptr;
    EXPECT_EQ(Spawn::Write(context, recorder.input.data(), recorder.input.size()), 0);
    context.inputPipe->CloseWriteEnd();
}

// Answers the child only from the idle callback: the child cannot finish
// unless the timed poll calls back while it waits silently.
void answerOnFirstIdle(Spawn::Context& context) {
    Recorder& recorder = recorderOf(context);
    if (recorder.idles++ == 0) {
        EXPECT_EQ(Spawn::Write(context, recorder.input.data(), recorder.input.size()), 0);
        context.inputPipe->CloseWriteEnd();
    }
}

void countIdle(Spawn::Context& context) { ++recorderOf(context).idles; }

void throwOnStart(Spawn::Context&) { throw std::runtime_error("callback refused"); }

Spawn::Context contextFor(Recorder& recorder) {
    Spawn::Context context;
    context.userData = &recorder;
    context.logContext = &recorder;
    context.logCallback = recordReport;
    return context;
}

}  // namespace

TEST(Spawn, GathersBothStreamsAndTheExitCode) {
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    std::string output = "kept:";
    EXPECT_EQ(Spawn::Spawn(std::string("printf out; printf err >&2; exit 3"), nullptr, output, context), 3);
    EXPECT_EQ(output.substr(0, 5), "kept:");
    EXPECT_NE(output.find("out"), std::string::npos);
    EXPECT_NE(output.find("err"), std::string::npos);
    EXPECT_EQ(output.size(), 11u);
    EXPECT_TRUE(recorder.reports.empty());
    EXPECT_EQ(context.inputPipe, nullptr) << "the pipe is gone once Spawn returns";

    // A child ended by a signal has no exit code: the shifted status is 0.
    output.clear();
    EXPECT_EQ(Spawn::Spawn(std::string("kill -9 $$"), nullptr, output, context), 0);
}

TEST(Spawn, FeedsStandardInputFromTheStartCallback) {
    Recorder recorder;
    recorder.input = "{\"popup\":\"HostPopup\"}\n";
    Spawn::Context context = contextFor(recorder);
    context.onStarted = sendInputAndClose;
    context.onIdle = countIdle;
    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::string("read line; echo \"json:$line\""), nullptr, output, context), 0);
    EXPECT_EQ(output, "json:{\"popup\":\"HostPopup\"}\n");
    EXPECT_EQ(recorder.started, 1);
    EXPECT_GT(recorder.pidAtStart, 0);
    EXPECT_TRUE(recorder.pipeAtStart);
}

TEST(Spawn, TimedPollCallsIdleWhileTheChildIsSilent) {
    Recorder recorder;
    recorder.input = "ping\n";
    Spawn::Context context = contextFor(recorder);
    context.flags = Spawn::FLAG_IDLE_POLL;
    context.onIdle = answerOnFirstIdle;
    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::string("read line; echo \"got $line\""), nullptr, output, context), 0);
    EXPECT_EQ(output, "got ping\n");
    EXPECT_GE(recorder.idles, 1);
}

TEST(Spawn, LongOutputArrivesWhole) {
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::string("i=0; while [ $i -lt 2000 ]; do echo 0123456789012345678901234567890123456789; "
                                       "i=$((i+1)); done; echo end >&2"),
                           nullptr, output, context),
              0);
    EXPECT_EQ(output.size(), 2000u * 41u + 4u);
}

TEST(Spawn, OtherCommandAndOutputForms) {
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    qvUtf8String text("stale");
    EXPECT_EQ(Spawn::Spawn(qvUtf8String("printf 'caf\xc3\xa9'"), nullptr, text, context), 0);
    EXPECT_EQ(text.Str(), "caf\xc3\xa9");

    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::wstring(L"printf '\u00e9t\u00e9'"), nullptr, output, context), 0);
    EXPECT_EQ(output, "\xc3\xa9t\xc3\xa9");
}

TEST(Spawn, EnvironmentPackageReplacesTheParentsEnvironment) {
    setenv("TW_SPAWN_PARENT", "from parent", 1);
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::string("printf '%s' \"$TW_SPAWN_PARENT\""), nullptr, output, context), 0);
    EXPECT_EQ(output, "from parent");

    auto package = std::make_shared<Environment::Package>(std::vector<std::shared_ptr<Environment::Variable>>{
        Environment::Variable::Create("TW_A", "with space"), Environment::Variable::Create("TW_B=x=y")});
    output.clear();
    EXPECT_EQ(Spawn::Spawn(std::string("printf '%s|%s|%s' \"$TW_A\" \"$TW_B\" \"$TW_SPAWN_PARENT\""), package,
                           output, context),
              0);
    EXPECT_EQ(output, "with space|x=y|");
}

TEST(Spawn, ExceptionsOfCallbacksAreReportedAndEndTheRun) {
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    context.onStarted = throwOnStart;
    std::string output;
    EXPECT_EQ(Spawn::Spawn(std::string("exit 7"), nullptr, output, context), 1);
    ASSERT_EQ(recorder.reports.size(), 1u);
    EXPECT_EQ(recorder.reports[0], "std::runtime_error - callback refused");

    // Without a log callback the outcome is the same, in silence.
    context.logCallback = nullptr;
    EXPECT_EQ(Spawn::Spawn(std::string("exit 7"), nullptr, output, context), 1);
    EXPECT_EQ(recorder.reports.size(), 1u);
}

TEST(Spawn, NoPipeNoChild) {
    // Room for exactly one pipe: the second one fails. The first one's two
    // descriptors are free again by the time the failure is handled.
    const int first = open("/dev/null", O_RDONLY);
    const int second = open("/dev/null", O_RDONLY);
    ASSERT_GE(first, 0);
    ASSERT_GT(second, first);
    close(first);
    close(second);
    rlimit limits;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limits), 0);
    rlimit onePipe = limits;
    onePipe.rlim_cur = static_cast<rlim_t>(second) + 1;

    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    std::string output;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &onePipe), 0);
    const int result = Spawn::Spawn(std::string("echo never"), nullptr, output, context);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limits), 0);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(output, "");
    ASSERT_EQ(recorder.reports.size(), 2u);
    EXPECT_EQ(recorder.reports[0], std::string("pipe() failed: ") + strerror(EMFILE));
    EXPECT_EQ(recorder.reports[1], "std::runtime_error - Error " + std::to_string(EMFILE));
}

TEST(Spawn, WritingToAPipeNobodyReadsIsAnErrorNotASignal) {
    Recorder recorder;
    Spawn::Context context = contextFor(recorder);
    PosixPipe pipe(context);
    pipe.CloseReadEnd();
    EXPECT_EQ(pipe.Write("x", 1), EPIPE);
    EXPECT_EQ(pipe.Write("x", 1), EPIPE);

    pipe.CloseWriteEnd();
    pipe.CloseWriteEnd();
    EXPECT_EQ(pipe.WriteEnd(), -1);
    EXPECT_TRUE(recorder.reports.empty());

    Spawn::Context unstarted;
    EXPECT_EQ(Spawn::Write(unstarted, "x", 1), EBADF);
}

TEST(Spawn, EscapingBlanks) {
    std::string out;
    EXPECT_EQ((EscapeCLArgumentString("a b  ", out), out), "a\\ b");
    EXPECT_EQ((EscapeCLArgumentString("dir\\", out), out), "dir");
    EXPECT_EQ((EscapeCLArgumentString("x y\\ ", out), out), "x\\ y");
    EXPECT_EQ((EscapeCLArgumentString("   ", out), out), "");
    EXPECT_EQ((EscapePathString("/Volumes/Work Disk/a b", out, true), out), "/Volumes/Work\\ Disk/a\\ b");
    EXPECT_EQ(Spawn::Utf8ToConsoleCP("caf\xc3\xa9"), "caf\xc3\xa9");
}

TEST(SpawnEnvironment, VariablesSplitAtTheFirstEqualSign) {
    auto variable = Environment::Variable::Create("PATH=/bin=x");
    EXPECT_STREQ(variable->Str(), "PATH=/bin=x");
    EXPECT_EQ(variable->Size(), 12u);
    EXPECT_EQ(variable->GetName(), "PATH");
    EXPECT_EQ(variable->GetValue(), "/bin=x");

    auto bare = Environment::Variable::Create("NOVALUE");
    EXPECT_EQ(bare->GetName(), "NOVALUE");
    EXPECT_EQ(bare->GetValue(), "");

    auto composed = Environment::Variable::Create("LANG", "fr_FR.UTF-8");
    EXPECT_STREQ(static_cast<const char*>(*composed), "LANG=fr_FR.UTF-8");
    auto fromText = Environment::Variable::Create(qvUtf8String("N=\xc3\xa9"));
    EXPECT_EQ(static_cast<std::wstring>(*fromText), L"N=\u00e9");
    EXPECT_EQ(fromText->Size(), 5u);
}

TEST(SpawnEnvironment, PackageArrays) {
    EXPECT_EQ(Environment::Package::Ptr(nullptr), nullptr);

    auto a = Environment::Variable::Create("A=1");
    auto b = Environment::Variable::Create("B", "2");
    auto package = std::make_shared<Environment::Package>(std::vector<std::shared_ptr<Environment::Variable>>{a, nullptr, b});
    char* const* array = Environment::Package::Ptr(package);
    ASSERT_NE(array, nullptr);
    EXPECT_STREQ(array[0], "A=1");
    EXPECT_STREQ(array[1], "B=2");
    EXPECT_EQ(array[2], nullptr);
    EXPECT_EQ(package->WideBlock(), std::wstring(L"A=1\0B=2\0", 8));

    auto empty = std::make_shared<Environment::Package>(std::vector<std::shared_ptr<Environment::Variable>>{});
    ASSERT_NE(Environment::Package::Ptr(empty), nullptr);
    EXPECT_EQ(Environment::Package::Ptr(empty)[0], nullptr);
}
