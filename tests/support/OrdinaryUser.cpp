#include "OrdinaryUser.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace twtest {
namespace {

// "nobody" on Debian.
constexpr uid_t kOrdinaryUser = 65534;
constexpr gid_t kOrdinaryGroup = 65534;

bool GiveAway(const std::string& folder) {
    std::error_code error;
    if (lchown(folder.c_str(), kOrdinaryUser, kOrdinaryGroup) != 0) return false;
    for (auto it = std::filesystem::recursive_directory_iterator(folder, error);
         !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        if (lchown(it->path().c_str(), kOrdinaryUser, kOrdinaryGroup) != 0) return false;
    }
    return !error;
}

bool DropPrivileges() {
    return setgroups(0, nullptr) == 0 && setresgid(kOrdinaryGroup, kOrdinaryGroup, kOrdinaryGroup) == 0 &&
           setresuid(kOrdinaryUser, kOrdinaryUser, kOrdinaryUser) == 0 && geteuid() == kOrdinaryUser;
}

}  // namespace

void RunAsOrdinaryUser(const std::string& folder, const std::function<void()>& body) {
    if (geteuid() != 0) {
        body();
        return;
    }
    const bool failedBefore = ::testing::Test::HasFailure();
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t child = fork();
    ASSERT_GE(child, 0) << "fork failed";
    if (child == 0) {
        int code = 2;
        if (GiveAway(folder) && DropPrivileges()) {
            body();
            code = ::testing::Test::HasFailure() && !failedBefore ? 1 : 0;
        } else {
            std::fprintf(stderr, "could not run as an ordinary user\n");
        }
        std::fflush(stdout);
        std::fflush(stderr);
        _exit(code);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    // The folder goes back to root, who made it and removes it.
    std::error_code error;
    if (lchown(folder.c_str(), 0, 0) == 0) {
        for (auto it = std::filesystem::recursive_directory_iterator(folder, error);
             !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error))
            if (lchown(it->path().c_str(), 0, 0) != 0) break;
    }
    ASSERT_TRUE(WIFEXITED(status)) << "the ordinary user's part ended by signal " << WTERMSIG(status);
    EXPECT_NE(WEXITSTATUS(status), 2) << "could not run as an ordinary user";
    EXPECT_EQ(WEXITSTATUS(status), failedBefore ? WEXITSTATUS(status) : 0) << "the ordinary user's part failed";
}

}  // namespace twtest
