#include "probes/RegistryProcess.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirovane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

ProcessRequest request(std::vector<std::string> words, milliseconds limit = seconds(60)) {
    return {std::move(words), steady_clock::now() + limit, {}, {}};
}

class RegistryProcessTest : public testing::Test {
protected:
    ~RegistryProcessTest() override {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD) << "a process was left behind";
    }
};

TEST_F(RegistryProcessTest, CollectsWhatItPrints) {
    const ProcessResult result =
        runRegistryProcess(request({"sh", "-c", "echo out; echo err >&2; cat; exit 3"}));
    EXPECT_EQ(result.end, ProcessEnd::Exited);
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.output, "out\n");
    EXPECT_EQ(result.diagnostics, "err\n");
    const std::string wild = "$(id); `id` | \" ' \n *";
    EXPECT_EQ(runRegistryProcess(request({"printf", "%s", wild})).output, wild);
    EXPECT_EQ(runRegistryProcess(request({"sh", "-c", "kill -9 $$"})).exitStatus, -1);
    EXPECT_EQ(runRegistryProcess(request({"sh", "-c", "exec >&- 2>&-; sleep 0.02; exit 7"})).exitStatus, 7);
}

TEST_F(RegistryProcessTest, GetsNothingOfOurs) {
    const int ours = open("/dev/null", O_RDONLY); // would be inherited
    setenv("PASSWD", "Secret-1", 1);
    setenv("USER", "root%Secret-1", 1);
    const std::string environment = runRegistryProcess(request({"env"})).output;
    unsetenv("PASSWD");
    EXPECT_EQ(environment.find("Secret-1"), std::string::npos);
    EXPECT_THAT(environment, testing::HasSubstr("LC_ALL=C.UTF-8\n"));
    EXPECT_EQ(runRegistryProcess(request({"sh", "-c", "ls /proc/$$/fd; exec 3</dev/tty"})).output,
              "0\n1\n2\n")
        << "no descriptors";
    EXPECT_NE(runRegistryProcess(request({"sh", "-c", "exec 3</dev/tty"})).exitStatus, 0) << "no terminal";
    close(ours);
}

TEST_F(RegistryProcessTest, IsEndedWhenItsTimeIsOver) {
    EXPECT_EQ(runRegistryProcess(request({"sleep", "1000"}, milliseconds(30))).end, ProcessEnd::TimedOut);
    EXPECT_EQ(
        runRegistryProcess(request({"sh", "-c", "exec >&- 2>&-; exec sleep 1000"}, milliseconds(30))).end,
        ProcessEnd::TimedOut);
    EXPECT_EQ(runRegistryProcess(request({"yes"})).end, ProcessEnd::TooMuch);
    ProcessRequest enough = request({"sh", "-c", "echo wanted; exec sleep 1000"});
    enough.enough = [](std::string_view output) {
        return output == "wanted\n";
    };
    EXPECT_EQ(runRegistryProcess(enough).end, ProcessEnd::Enough);
}

TEST_F(RegistryProcessTest, IsEndedByTheStopToken) {
    std::stop_source stop;
    ProcessRequest stopped = request({"sh", "-c", "echo begun; exec sleep 1000"});
    stopped.stop = stop.get_token();
    stopped.enough = [&stop](std::string_view /*output*/) {
        stop.request_stop();
        return false;
    };
    EXPECT_EQ(runRegistryProcess(stopped).end, ProcessEnd::Stopped);
    ProcessRequest elsewhere = request({"sleep", "1000"});
    std::stop_source other;
    elsewhere.stop = other.get_token();
    const std::jthread stopper([&other] { other.request_stop(); });
    EXPECT_EQ(runRegistryProcess(elsewhere).end, ProcessEnd::Stopped);
}

TEST_F(RegistryProcessTest, SaysWhyItDidNotStart) {
    const ProcessResult result = runRegistryProcess(request({"/nonexistent/net"}));
    EXPECT_EQ(result.end, ProcessEnd::NotStarted);
    EXPECT_EQ(result.error, ENOENT);
}

} // namespace
} // namespace mirovane
