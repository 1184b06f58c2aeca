#include "platform/ProcessLaunch.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {

namespace {

/// Handlers of ours must not run in a child that shares nothing but its memory's copy with us.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_{};
};

std::error_code systemError(int code) {
    return {code, std::generic_category()};
}

// ---- in the child: nothing here allocates or locks, because another thread may have held a lock when the
// ---- child was made

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

void standardToNull() {
    const int null = open("/dev/null", O_RDWR);
    if (null < 0)
        return;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(null, standard);
    if (null > STDERR_FILENO)
        close(null);
}

struct ChildSetup {
    char* const* words;
    int report; ///< where errno goes when the program cannot be started; closed when it runs
    int highestDescriptor;
};

[[noreturn]] void failChild(const ChildSetup& setup) {
    const int code = errno;
    const ssize_t written = write(setup.report, &code, sizeof code);
    _exit(written == sizeof code ? 0 : 1);
}

[[noreturn]] void becomeProgram(const ChildSetup& setup) {
    standardToNull();
    closeOnExec(setup.highestDescriptor);
    resetSignals();
    execvp(setup.words[0], setup.words);
    failChild(setup);
}

/// The child's own child is nobody's here, so no one has to wait for it.
[[noreturn]] void runChild(const ChildSetup& setup) {
    setsid();
    const pid_t program = fork();
    if (program < 0)
        failChild(setup);
    if (program == 0)
        becomeProgram(setup);
    _exit(0);
}

// ---- in the parent

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

std::error_code startChild(char* const* words, const std::array<int, 2>& pipe) {
    pid_t child = -1;
    {
        const ChildSetup setup{words, pipe[1], highestDescriptor()};
        const SignalsHeld held;
        child = fork();
        if (child == 0)
            runChild(setup);
    }
    const int code = errno;
    close(pipe[1]);
    if (child < 0)
        return systemError(code);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return readReport(pipe[0]);
}

} // namespace

std::error_code PosixLauncher::start(const std::vector<std::string>& words) {
    if (words.empty())
        return systemError(ENOENT);
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string& word : words) {
        if (word.find('\0') != std::string::npos)
            return systemError(EINVAL);
        pointers.push_back(const_cast<char*>(word.c_str())); // execvp changes none
    }
    pointers.push_back(nullptr);
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return systemError(errno);
    const std::error_code error = startChild(pointers.data(), pipe);
    close(pipe[0]);
    return error;
}

} // namespace mirovane
