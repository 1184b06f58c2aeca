#include "platform/process/ChildProcess.h"

#include "platform/BlockedSignals.h"
#include "platform/Descriptor.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {

namespace {

std::error_code systemError(int code) {
    return {code, std::generic_category()};
}

// ---- In the child. Nothing here allocates or locks, because another thread may have held a lock when the
// ---- child was made.

struct ChildSetup {
    char* const* words;
    char* const* environment;
    ProcessStart::Ties ties;
    const std::array<int, 3>& streams;
    int report; ///< where errno goes when the program cannot be started; closes when it runs
    int highestDescriptor;
};

void resetSignals() {
    struct sigaction usual = {};
    usual.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number)
        sigaction(number, &usual, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void closeOnExec(int highest) {
    constexpr int first = STDERR_FILENO + 1;
    if (close_range(first, UINT_MAX, CLOSE_RANGE_CLOEXEC) == 0)
        return;
    for (int descriptor = first; descriptor < highest; ++descriptor) // an old kernel
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

/// False with errno set, such as for too many open files: a program without its streams would fail in ways
/// that nobody understands.
bool setStreams(const std::array<int, 3>& streams) {
    const int null = open("/dev/null", O_RDWR);
    if (null < 0)
        return false;
    int standard = STDIN_FILENO;
    for (const int stream : streams)
        if (dup2(stream < 0 ? null : stream, standard++) < 0)
            return false;
    if (null > STDERR_FILENO)
        close(null);
    return true;
}

/// We raise our own limit; a program that waits with select() writes past its arrays beyond the usual one.
void lowerDescriptorLimit() {
    constexpr rlim_t usual = 1024;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur <= usual)
        return;
    limit.rlim_cur = usual;
    setrlimit(RLIMIT_NOFILE, &limit);
}

[[noreturn]] void failChild(const ChildSetup& setup) {
    const int code = errno;
    const ssize_t written = write(setup.report, &code, sizeof code);
    _exit(written == sizeof code ? 0 : 1);
}

[[noreturn]] void runChild(const ChildSetup& setup) {
    if (setup.ties != ProcessStart::Ties::Foreground)
        setsid();
    if (setup.ties == ProcessStart::Ties::Detached) {
        // The child's own child is nobody's here, so nobody has to wait for it.
        const pid_t program = fork();
        if (program < 0)
            failChild(setup);
        if (program > 0)
            _exit(0);
    }
    if (!setStreams(setup.streams))
        failChild(setup);
    closeOnExec(setup.highestDescriptor);
    lowerDescriptorLimit();
    resetSignals();
    execvpe(setup.words[0], setup.words, setup.environment);
    failChild(setup);
}

// ---- In the parent.

int highestDescriptor() {
    rlimit limit{};
    constexpr rlim_t most = 65536;
    getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<int>(limit.rlim_cur < most ? limit.rlim_cur : most);
}

/// The error that arrives before the pipe closes; none when it just closes.
std::error_code readReport(int pipe) {
    int code = 0;
    ssize_t size = 0;
    do
        size = read(pipe, &code, sizeof code);
    while (size < 0 && errno == EINTR);
    return size == sizeof code ? systemError(code) : std::error_code();
}

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str())); // exec changes none
    pointers.push_back(nullptr);
    return pointers;
}

/// `errno` says why when there is no child. Handlers of ours must not run in it: it has a copy of our memory
/// and nothing else of us.
pid_t forkChild(const ChildSetup& setup) {
    const CBlockedSignals held;
    const pid_t child = fork();
    if (child == 0)
        runChild(setup);
    return child;
}

} // namespace

CChildProcess::~CChildProcess() {
    if (id_ == none)
        return;
    // Its number stays its own until it is waited for, so this meets nobody else.
    kill(headsSession_ ? -id_ : id_, SIGKILL);
    while (waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::optional<ChildEnd> CChildProcess::look(bool wait) {
    siginfo_t info{};
    int looked = 0;
    do
        looked = waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOWAIT | (wait ? 0 : WNOHANG));
    while (looked < 0 && errno == EINTR);
    if (looked < 0) { // whoever started us had SIGCHLD ignored: the system waited for it already
        id_ = none;
        return ChildEnd();
    }
    if (info.si_pid == 0)
        return std::nullopt;
    return info.si_code == CLD_EXITED ? ChildEnd{info.si_status, 0} : ChildEnd{-1, info.si_status};
}

Result<CChildProcess, std::error_code> startProcess(const ProcessStart& start) {
    if (start.words.empty())
        return systemError(ENOENT);
    for (const std::string& word : start.words)
        if (word.find('\0') != std::string::npos)
            return systemError(EINVAL);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return systemError(errno);
    const CDescriptor report(ends[0]);
    CDescriptor reporting(ends[1]);
    const std::vector<char*> words = pointersTo(start.words);
    const std::vector<char*> variables =
        start.environment ? pointersTo(*start.environment) : std::vector<char*>();
    const pid_t id = forkChild({words.data(), start.environment ? variables.data() : environ, start.ties,
                                start.streams, ends[1], highestDescriptor()});
    if (id < 0)
        return systemError(errno);
    reporting.close(); // else the report would never end
    const bool detached = start.ties == ProcessStart::Ties::Detached;
    CChildProcess child(id, start.ties == ProcessStart::Ties::Session);
    if (detached)
        child.waitForEnd(); // of the one between us and the program
    if (const std::error_code error = readReport(report.get()))
        return error;
    return detached ? CChildProcess() : std::move(child);
}

} // namespace mirovane
