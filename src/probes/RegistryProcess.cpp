#include "probes/RegistryProcess.h"

#include "probes/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {

namespace {

using std::chrono::steady_clock;

constexpr std::size_t mostOutput = std::size_t{4} * 1024 * 1024;
constexpr std::size_t mostDiagnostics = std::size_t{16} * 1024;

/// How often a child that closed its output is asked whether it has gone.
constexpr std::chrono::milliseconds endPoll{2};

struct Pipe {
    Descriptor reading;
    Descriptor writing;
};

void closeNow(Descriptor& descriptor) {
    const Descriptor closed = std::move(descriptor);
}

std::optional<Pipe> newPipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::nullopt;
    return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

std::vector<std::string> childEnvironment() {
    std::vector<std::string> variables{"LC_ALL=C.UTF-8"};
    for (const char* name : {"PATH", "HOME", "SMB_CONF_PATH", "KRB5CCNAME", "KRB5_CONFIG"}) {
        if (const char* value = std::getenv(name))
            variables.push_back(std::string(name) + "=" + value);
    }
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// What the child starts with: our two pipes, nothing else of ours, and no signal blocked or ignored.
class SpawnSetup {
public:
    SpawnSetup(int output, int diagnostics) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, diagnostics, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
        sigset_t usual;
        sigemptyset(&usual);
        sigaddset(&usual, SIGPIPE);
        sigaddset(&usual, SIGINT);
        sigaddset(&usual, SIGTERM);
        posix_spawnattr_setsigdefault(&attributes_, &usual);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    int start(pid_t& child, std::vector<std::string> words) const {
        std::vector<std::string> variables = childEnvironment();
        return posix_spawnp(&child, words.front().c_str(), &actions_, &attributes_, pointersTo(words).data(),
                            pointersTo(variables).data());
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

/// A started child; killed and waited for at the end of its life, whatever happened.
class Child {
public:
    explicit Child(pid_t id) : id_(id) {}
    ~Child() {
        if (id_ > 0) {
            kill(id_, SIGKILL);
            while (waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// True once it is gone; `exitStatus` is -1 when a signal ended it.
    bool gone(int& exitStatus) {
        int status = 0;
        const pid_t ended = waitpid(id_, &status, WNOHANG);
        if (ended == 0 || (ended < 0 && errno == EINTR))
            return false;
        id_ = -1;
        exitStatus = ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return true;
    }

private:
    pid_t id_;
};

/// Collects what a child prints until it ends or has to be ended.
class Listener {
public:
    Listener(const ProcessRequest& request, Child& child, Descriptor output, Descriptor diagnostics)
        : request_(request),
          child_(child),
          output_(std::move(output)),
          diagnostics_(std::move(diagnostics)) {}

    ProcessResult listen() {
        // Wakes the poll at once; the callback is gone before the descriptor that it writes to.
        const std::stop_callback wake(request_.stop, [this] { eventfd_write(wake_.get(), 1); });
        std::optional<ProcessEnd> end;
        while (!end)
            end = step();
        result_.end = *end;
        return std::move(result_);
    }

private:
    bool reading() const { return output_ || diagnostics_; }

    std::optional<ProcessEnd> step() {
        if (request_.stop.stop_requested())
            return ProcessEnd::Stopped;
        if (!reading() && child_.gone(result_.exitStatus))
            return ProcessEnd::Exited;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(request_.deadline - steady_clock::now());
        if (left.count() <= 0)
            return ProcessEnd::TimedOut;
        const auto wait = reading() ? left : std::min(left, endPoll);
        std::array<pollfd, 3> waiting{pollfd{wake_.get(), POLLIN, 0}, pollfd{output_.get(), POLLIN, 0},
                                      pollfd{diagnostics_.get(), POLLIN, 0}};
        const int longest = 60000;
        if (poll(waiting.data(), waiting.size(),
                 static_cast<int>(std::min<std::int64_t>(wait.count(), longest))) <= 0)
            return std::nullopt;
        if (waiting[2].revents != 0)
            readDiagnostics();
        return waiting[1].revents != 0 ? readOutput() : std::nullopt;
    }

    std::optional<ProcessEnd> readOutput() {
        if (!readSome(output_, result_.output))
            return std::nullopt;
        if (request_.enough && request_.enough(result_.output))
            return ProcessEnd::Enough;
        return result_.output.size() > mostOutput ? std::optional(ProcessEnd::TooMuch) : std::nullopt;
    }

    void readDiagnostics() {
        readSome(diagnostics_, result_.diagnostics);
        result_.diagnostics.resize(std::min(result_.diagnostics.size(), mostDiagnostics));
    }

    /// False when nothing came; at the end the descriptor is closed.
    static bool readSome(Descriptor& from, std::string& into) {
        std::array<char, 65536> block; // NOLINT: filled by the read
        const ssize_t size = read(from.get(), block.data(), block.size());
        if (size > 0) {
            into.append(block.data(), static_cast<std::size_t>(size));
            return true;
        }
        if (size == 0 || errno != EINTR)
            closeNow(from);
        return false;
    }

    const ProcessRequest& request_;
    Child& child_;
    Descriptor output_;
    Descriptor diagnostics_;
    Descriptor wake_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    ProcessResult result_;
};

ProcessResult notStarted(int error) {
    ProcessResult result;
    result.error = error;
    return result;
}

} // namespace

ProcessResult runRegistryProcess(const ProcessRequest& request) {
    auto output = newPipe();
    auto diagnostics = output ? newPipe() : std::nullopt;
    if (!diagnostics)
        return notStarted(errno);
    pid_t id = -1;
    const int error = SpawnSetup(output->writing.get(), diagnostics->writing.get()).start(id, request.words);
    if (error != 0)
        return notStarted(error);
    Child child(id);
    // Else the ends of the pipes would never be seen.
    closeNow(output->writing);
    closeNow(diagnostics->writing);
    return Listener(request, child, std::move(output->reading), std::move(diagnostics->reading)).listen();
}

} // namespace mirovane
