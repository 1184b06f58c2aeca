#include "platform/process/ProcessRun.h"

#include "platform/Places.h"
#include "platform/process/DescriptorLimit.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirovane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

ProcessRequest request(std::vector<std::string> words, milliseconds limit = seconds(60)) {
    ProcessRequest made;
    made.words = std::move(words);
    made.deadline = steady_clock::now() + limit;
    return made;
}

class ProcessRunTest : public testing::Test {
protected:
    ~ProcessRunTest() override {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD) << "a process was left behind";
    }
};

TEST_F(ProcessRunTest, CollectsWhatItPrints) {
    const ProcessResult result = runProcess(request({"sh", "-c", "echo out; echo err >&2; cat; exit 3"}));
    EXPECT_EQ(result.end, ProcessEnd::Exited);
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.output, "out\n");
    EXPECT_EQ(result.diagnostics, "err\n");
    const std::string wild = "$(id); `id` | \" ' \n *";
    EXPECT_EQ(runProcess(request({"printf", "%s", wild})).output, wild);
    EXPECT_EQ(runProcess(request({"sh", "-c", "kill -9 $$"})).exitStatus, -1);
    EXPECT_EQ(runProcess(request({"sh", "-c", "exec >&- 2>&-; sleep 0.02; exit 7"})).exitStatus, 7);
}

TEST_F(ProcessRunTest, GetsNothingOfOurs) {
    const int ours = open("/dev/null", O_RDONLY); // would be inherited
    EXPECT_EQ(runProcess(request({"sh", "-c", "ls /proc/$$/fd"})).output, "0\n1\n2\n") << "no descriptors";
    EXPECT_NE(runProcess(request({"sh", "-c", "exec 3</dev/tty"})).exitStatus, 0) << "no terminal";
    close(ours);
    ProcessRequest poor = request({"env"});
    poor.environment = {"PATH=" + std::string(std::getenv("PATH")), "LC_ALL=C"};
    EXPECT_EQ(runProcess(poor).output, poor.environment->at(0) + "\nLC_ALL=C\n");
    setenv("MIROVANE_TEST", "inherited", 1);
    EXPECT_THAT(runProcess(request({"env"})).output, testing::HasSubstr("MIROVANE_TEST=inherited\n"));
    unsetenv("MIROVANE_TEST");
}

TEST_F(ProcessRunTest, IsEndedWhenItsTimeIsOver) {
    EXPECT_EQ(runProcess(request({"sleep", "1000"}, milliseconds(30))).end, ProcessEnd::TimedOut);
    EXPECT_EQ(runProcess(request({"sh", "-c", "exec >&- 2>&-; exec sleep 1000"}, milliseconds(30))).end,
              ProcessEnd::TimedOut);
    ProcessRequest enough = request({"sh", "-c", "echo wanted; exec sleep 1000"});
    enough.enough = [](std::string_view output) {
        return output == "wanted\n";
    };
    EXPECT_EQ(runProcess(enough).end, ProcessEnd::Enough);
}

TEST_F(ProcessRunTest, WhatItPrintsIsBounded) {
    EXPECT_EQ(runProcess(request({"yes"})).end, ProcessEnd::TooMuch);
    ProcessRequest four = request({"printf", "1234"});
    four.mostOutput = 4;
    EXPECT_EQ(runProcess(four).end, ProcessEnd::Exited);
    four.words.back() = "12345";
    EXPECT_EQ(runProcess(four).end, ProcessEnd::TooMuch);
    const ProcessResult said = runProcess(request({"sh", "-c", "printf %20000d 1 >&2"}));
    EXPECT_EQ(said.end, ProcessEnd::Exited);
    EXPECT_EQ(said.diagnostics, std::string(16 * 1024, ' ')) << "the beginning";
}

/// A program that was killed by us can stay listed until the system's first process has waited for it.
bool comesToItsEnd(const std::string& id) {
    const auto deadline = steady_clock::now() + seconds(20);
    while (steady_clock::now() < deadline) {
        std::ifstream file("/proc/" + id + "/stat");
        std::string number, name, state;
        if (!(file >> number >> name >> state) || state == "Z")
            return true;
        std::this_thread::yield();
    }
    return false;
}

TEST_F(ProcessRunTest, WhatItStartedEndsWithIt) {
    ProcessRequest killed = request({"sh", "-c", "sleep 1000 & printf $!.; wait"});
    killed.enough = [](std::string_view output) {
        return output.ends_with('.');
    };
    std::string output = runProcess(killed).output;
    EXPECT_TRUE(comesToItsEnd(output.substr(0, output.find('.')))) << "killed with it";
    const ProcessResult left = runProcess(request({"sh", "-c", "sleep 1000 >&- 2>&- & printf $!"}));
    EXPECT_EQ(left.end, ProcessEnd::Exited);
    EXPECT_EQ(left.exitStatus, 0);
    EXPECT_TRUE(comesToItsEnd(left.output)) << "left behind by it";
}

TEST_F(ProcessRunTest, EndsWhereTheSystemWaitsForChildren) {
    std::signal(SIGCHLD, SIG_IGN); // as some that start us leave it
    const ProcessResult result = runProcess(request({"printf", "x"}));
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(result.end, ProcessEnd::Exited);
    EXPECT_EQ(result.output, "x");
}

TEST_F(ProcessRunTest, IsEndedByTheStopToken) {
    std::stop_source stop;
    ProcessRequest stopped = request({"sh", "-c", "echo begun; exec sleep 1000"});
    stopped.stop = stop.get_token();
    stopped.enough = [&stop](std::string_view /*output*/) {
        stop.request_stop();
        return false;
    };
    EXPECT_EQ(runProcess(stopped).end, ProcessEnd::Stopped);
    ProcessRequest elsewhere = request({"sleep", "1000"});
    std::stop_source other;
    elsewhere.stop = other.get_token();
    const std::jthread stopper([&other] { other.request_stop(); });
    EXPECT_EQ(runProcess(elsewhere).end, ProcessEnd::Stopped);
}

/// A program without its streams would fail in ways that look like its own.
TEST_F(ProcessRunTest, TooManyOpenFilesAreNothingElse) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const int next = open("/dev/null", O_RDONLY);
    close(next);
    int refusals = 0;
    for (int room = 0; room <= 12; ++room) {
        rlimit scarce = before;
        scarce.rlim_cur = static_cast<rlim_t>(next + room);
        setrlimit(RLIMIT_NOFILE, &scarce);
        const ProcessResult result = runProcess(request({"sh", "-c", "echo out"}));
        setrlimit(RLIMIT_NOFILE, &before);
        if (result.end == ProcessEnd::NotStarted) {
            EXPECT_EQ(result.error, EMFILE) << room;
            ++refusals;
        } else {
            EXPECT_EQ(result.output, "out\n") << room;
        }
    }
    EXPECT_GT(refusals, 4);
    EXPECT_LT(refusals, 12);
}

TEST_F(ProcessRunTest, WeMayOpenMoreFilesThanWhatWeStart) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    raiseDescriptorLimit();
    rlimit raised{};
    getrlimit(RLIMIT_NOFILE, &raised);
    EXPECT_EQ(raised.rlim_cur, std::max(before.rlim_cur, std::min<rlim_t>(before.rlim_max, 65536)));
    const std::string ofChild = runProcess(request({"sh", "-c", "ulimit -n"})).output;
    EXPECT_LE(std::stoul(ofChild), 1024U) << "it may wait with select()";
    setrlimit(RLIMIT_NOFILE, &before);
}

TEST(PlacesTest, WhoFindsNoPlaceWaitsUntilOneIsFreeOrTheWaitIsStopped) {
    CPlaces places(1);
    std::stop_source stop;
    auto held = std::make_unique<CPlaces::CHold>(places.take(stop.get_token()));
    std::jthread waiting([&] { EXPECT_TRUE(places.take({})); });
    held.reset();
    waiting.join();
    const CPlaces::CHold again = places.take({});
    stop.request_stop();
    EXPECT_FALSE(places.take(stop.get_token()));
}

TEST_F(ProcessRunTest, SaysWhyItDidNotStart) {
    const ProcessResult result = runProcess(request({"/nonexistent/net"}));
    EXPECT_EQ(result.end, ProcessEnd::NotStarted);
    EXPECT_EQ(result.error, ENOENT);
}

} // namespace
} // namespace mirovane
