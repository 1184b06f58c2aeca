#include "tests/cli/CliRunner.h"

#include "tests/support/Paths.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane::test {

namespace {

std::vector<char*> argumentVector(std::vector<std::string>& words) {
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    return argv;
}

int occurrences(std::string_view text, std::string_view part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

/// Reads what is there; false at the end.
bool drain(int& descriptor, std::string& text) {
    std::array<char, 65536> buffer{};
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        ::close(descriptor);
        descriptor = -1;
    }
    return descriptor >= 0;
}

} // namespace

CliProcess::CliProcess(const Words& words, const std::function<void()>& arrange) {
    Words command{test::builtProgram("mirovanectl")};
    command.insert(command.end(), words.begin(), words.end());
    const std::vector<char*> argv = argumentVector(command);
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    if (::pipe2(out.data(), O_CLOEXEC) != 0 || ::pipe2(err.data(), O_CLOEXEC) != 0)
        return;
    child_ = ::fork();
    if (child_ == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        if (arrange)
            arrange();
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

CliProcess::~CliProcess() {
    if (child_ > 0) {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }
    if (out_ >= 0)
        ::close(out_);
    if (err_ >= 0)
        ::close(err_);
}

void CliProcess::signal(int number) {
    if (child_ > 0)
        ::kill(child_, number);
}

void CliProcess::pump(int timeoutMs) {
    std::array<pollfd, 2> waiting{pollfd{out_, POLLIN, 0}, pollfd{err_, POLLIN, 0}};
    if (::poll(waiting.data(), waiting.size(), timeoutMs) <= 0)
        return;
    if (out_ >= 0 && waiting[0].revents != 0)
        drain(out_, result_.out);
    if (err_ >= 0 && waiting[1].revents != 0)
        drain(err_, result_.err);
}

bool CliProcess::waitForOutput(std::string_view text, int times, std::chrono::seconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (occurrences(result_.out, text) < times) {
        if (out_ < 0 || std::chrono::steady_clock::now() > end)
            return false;
        pump(100);
    }
    return true;
}

void CliProcess::closeOutput() {
    ::close(out_);
    out_ = -1;
}

CliResult CliProcess::finish() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while ((out_ >= 0 || err_ >= 0) && std::chrono::steady_clock::now() < end)
        pump(100);
    if (out_ >= 0 || err_ >= 0) {
        ADD_FAILURE() << "mirovanectl does not end";
        ::kill(child_, SIGKILL);
    }
    int status = 0;
    ::waitpid(child_, &status, 0);
    child_ = -1;
    result_.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result_;
}

CliResult cli(const Words& words, const std::function<void()>& arrange) {
    return CliProcess(words, arrange).finish();
}

CliFolder::CliFolder() {
    std::filesystem::create_directory(config());
}

std::string CliFolder::datafile(const std::string& name) const {
    const CliResult made = cli({"new", path(name)});
    EXPECT_EQ(made.status, 0) << made.err;
    return path(name);
}

std::string CliFolder::datafile(const std::vector<Words>& devices) const {
    const std::string file = datafile();
    for (const Words& device : devices) {
        Words words{"add", file, "--type"};
        words.insert(words.end(), device.begin(), device.end());
        const CliResult added = cli(words);
        EXPECT_EQ(added.status, 0) << added.err;
    }
    return file;
}

} // namespace mirovane::test
