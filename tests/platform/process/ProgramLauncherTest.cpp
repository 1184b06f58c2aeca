#include "platform/process/ProgramLauncher.h"

#include "platform/process/Terminal.h"
#include "tests/support/TestFolder.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirovane {
namespace {

/// Another process writes when it runs, not when we look.
bool comesTrue(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}

const std::vector<std::string> hostileArguments = {
    "plain",       "two words",   "",
    "a\"b'c",      "; touch ran", "$(touch ran)",
    "`touch ran`", "| touch ran", "$HOME",
    "line\nbreak", "\r\n",        "*",
    "~",           "-n",          "> ran < /none",
    "\\",          "a\\",         "\xC3\xA4\xFF",
    "%41%",        "%",           "& touch ran &",
};

class ProgramLauncherTest : public testing::Test {
protected:
    test::TestFolder folder;
    CPosixLauncher launcher;

    /// A program that writes what it found about itself and, last, its arguments, each with a zero byte at
    /// its end.
    std::string makeReporter() {
        const std::string path = folder.file("report it.sh");
        test::writeBytes(path, "#!/bin/sh\n"
                               "cd \"${0%/*}\"\n"
                               "readlink /proc/self/fd/* > descriptors\n"
                               "ps -o sid=,ppid= -p $$ > session\n"
                               "printf '%s\\0' \"$@\" > arguments.part\n"
                               "mv arguments.part arguments\n");
        chmod(path.c_str(), 0700);
        return path;
    }

    std::string report(const std::string& name) {
        EXPECT_TRUE(comesTrue([this] { return access(folder.file("arguments").c_str(), R_OK) == 0; }));
        return test::readBytes(folder.file(name));
    }

    static std::string terminated(const std::vector<std::string>& words) {
        std::string all;
        for (const std::string& word : words)
            all += word + '\0';
        return all;
    }
};

TEST_F(ProgramLauncherTest, HandsArgumentsOverAsTheyAreAndRunsNothingElse) {
    std::vector<std::string> words{makeReporter()};
    words.insert(words.end(), hostileArguments.begin(), hostileArguments.end());
    ASSERT_FALSE(launcher.start(words));
    EXPECT_EQ(report("arguments"), terminated(hostileArguments));
    EXPECT_NE(access(folder.file("ran").c_str(), F_OK), 0);
}

TEST_F(ProgramLauncherTest, TheProgramStandsOnItsOwn) {
    const int ours = open(folder.path().c_str(), O_RDONLY | O_DIRECTORY); // without close-on-exec
    ASSERT_GE(ours, 0);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    const auto error = launcher.start({makeReporter()});
    const std::string status = folder.file("status"); // a shell blocks signals itself, cp does not
    EXPECT_FALSE(launcher.start({"cp", "/proc/self/status", status}));
    std::signal(SIGPIPE, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    close(ours);
    ASSERT_FALSE(error);

    const std::string descriptors = report("descriptors");
    EXPECT_EQ(descriptors.find(folder.path() + "\n"), std::string::npos) << descriptors;
    EXPECT_NE(descriptors.find("/dev/null"), std::string::npos) << descriptors;
    const auto seen = [&status](const char* line) {
        return comesTrue([&] { return test::readBytes(status).find(line) != std::string::npos; });
    };
    EXPECT_TRUE(seen("SigBlk:\t0000000000000000\n")) << test::readBytes(status);
    EXPECT_TRUE(seen("SigIgn:\t0000000000000000\n")) << test::readBytes(status);
    EXPECT_NE(std::stoi(report("session")), static_cast<int>(getsid(0)));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left to be waited for";
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(ProgramLauncherTest, FailuresAreKnownAtOnce) {
    test::writeBytes(folder.file("data"), "no program");
    EXPECT_EQ(launcher.start({"mirovane-no-such-program", "x"}), std::errc::no_such_file_or_directory);
    EXPECT_EQ(launcher.start({folder.file("data")}), std::errc::permission_denied);
    EXPECT_EQ(launcher.start({folder.path()}), std::errc::permission_denied);
    EXPECT_EQ(launcher.start({std::string("a\0b", 3)}), std::errc::invalid_argument);
    EXPECT_TRUE(launcher.start({""}));
    EXPECT_TRUE(launcher.start({}));
}

/// A terminal emulator of the bad kind: it joins its words and lets a shell take them apart again.
TEST_F(ProgramLauncherTest, WordsSurviveATerminalThatAsksAShell) {
    std::vector<std::string> words{makeReporter()};
    words.insert(words.end(), hostileArguments.begin(), hostileArguments.end());
    const auto command = commandInTerminal({"terminal", "-e"}, "/usr/bin/runner", words);
    ASSERT_EQ(command.size(), words.size() + 4);
    EXPECT_EQ(command[3], "--in-terminal");
    std::string line = "cd '" + folder.path() + "' && printf '%s\\0'";
    for (std::size_t i = 4; i < command.size(); ++i)
        line += ' ' + command[i];
    ASSERT_EQ(std::system((line + " > seen").c_str()), 0); // NOLINT: a shell is what is tested against
    const std::string seen = test::readBytes(folder.file("seen"));
    EXPECT_NE(access(folder.file("ran").c_str(), F_OK), 0);

    std::vector<std::string> arrived;
    for (std::size_t at = 0; at < seen.size(); at = seen.find('\0', at) + 1)
        arrived.push_back(seen.substr(at, seen.find('\0', at) - at));
    const int input = dup(STDIN_FILENO);
    ASSERT_NE(freopen("/dev/null", "r", stdin), nullptr); // Enter is never pressed
    testing::internal::CaptureStdout();
    EXPECT_EQ(runInTerminal(arrived), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n[ended - press Enter to close this window]");
    EXPECT_EQ(report("arguments"), terminated(hostileArguments));

    test::writeBytes(folder.file("typed"), "yes\n");
    ASSERT_NE(freopen(folder.file("typed").c_str(), "r", stdin), nullptr);
    const auto asking = commandInTerminal({}, "", {"sh", "-c", "read answer; [ \"$answer\" = yes ]"});
    testing::internal::CaptureStdout();
    EXPECT_EQ(runInTerminal({asking.begin() + 2, asking.end()}), 0) << "what is typed goes to the program";
    testing::internal::GetCapturedStdout();

    testing::internal::CaptureStdout();
    EXPECT_EQ(runInTerminal({"mirovane-no-such-program"}), 127);
    EXPECT_EQ(runInTerminal({"sh", "-c", "exit%203"}), 3);
    const auto ownCtrlC = commandInTerminal({}, "", {"sh", "-c", "kill -INT $PPID; exit 4"});
    EXPECT_EQ(runInTerminal({ownCtrlC.begin() + 2, ownCtrlC.end()}), 4) << "Ctrl+C leaves the runner alone";
    const auto itsCtrlC = commandInTerminal({}, "", {"sh", "-c", "kill -INT $$; exit 4"});
    EXPECT_EQ(runInTerminal({itsCtrlC.begin() + 2, itsCtrlC.end()}), 130) << "and ends the program";
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_NE(said.find("No such file"), std::string::npos) << said;
    EXPECT_NE(said.find("ended with status 3"), std::string::npos) << said;
    EXPECT_EQ(runInTerminal({"sh", "%4"}), 2);
    EXPECT_EQ(runInTerminal({"sh", "\033]0;x"}), 2);
    dup2(input, STDIN_FILENO);
    close(input);
}

} // namespace
} // namespace mirovane
