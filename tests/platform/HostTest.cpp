#include "platform/Host.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {
namespace {

TEST(HostTest, TheComputersNameFitsIntoARecord) {
    std::array<char, 256> name{};
    ASSERT_EQ(gethostname(name.data(), name.size() - 1), 0);
    EXPECT_FALSE(computerName().empty());
    EXPECT_EQ(computerName(), std::string(name.data()).substr(0, 30));
}

/// As a user whom the system does not list, which happens in containers. In a process of its own, because it
/// cannot go back.
TEST(HostTest, AUserWithoutAnEntryIsCalledAsTheEnvironmentSays) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become somebody else";
    const pid_t child = fork();
    if (child == 0) {
        const bool listed = loginName() == "root";
        const bool changed = setresuid(54321, 54321, 54321) == 0;
        unsetenv("LOGNAME");
        unsetenv("USER");
        const bool nobody = loginName().empty();
        setenv("USER", "carla", 1);
        const bool second = loginName() == "carla";
        setenv("LOGNAME", "anna", 1);
        _exit(listed && changed && nobody && second && loginName() == "anna" ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace mirovane
