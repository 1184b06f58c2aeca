#include "platform/process/ProcessRun.h"

#include "platform/Descriptor.h"
#include "platform/process/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace mirovane {

namespace {

using std::chrono::steady_clock;

constexpr std::size_t mostDiagnostics = std::size_t{16} * 1024;

/// How often a child that closed its output is asked whether it has gone.
constexpr std::chrono::milliseconds endPoll{2};

struct Pipe {
    CDescriptor reading;
    CDescriptor writing;
};

std::optional<Pipe> newPipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::nullopt;
    return Pipe{CDescriptor(ends[0]), CDescriptor(ends[1])};
}

/// Collects what a child prints until it ends or has to be ended.
class CListener {
public:
    CListener(const ProcessRequest& request, CChildProcess& child, CDescriptor output,
              CDescriptor diagnostics)
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

    bool hasEnded() {
        const auto end = child_.ended();
        result_.exitStatus = end ? end->exitStatus : result_.exitStatus;
        return end.has_value();
    }

    std::optional<ProcessEnd> step() {
        if (request_.stop.stop_requested())
            return ProcessEnd::Stopped;
        if (!reading() && hasEnded())
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
        return result_.output.size() > request_.mostOutput ? std::optional(ProcessEnd::TooMuch)
                                                           : std::nullopt;
    }

    void readDiagnostics() {
        readSome(diagnostics_, result_.diagnostics);
        result_.diagnostics.resize(std::min(result_.diagnostics.size(), mostDiagnostics));
    }

    /// False when nothing came; at the end the descriptor is closed.
    static bool readSome(CDescriptor& from, std::string& into) {
        std::array<char, 65536> block; // NOLINT: filled by the read
        const ssize_t size = read(from.get(), block.data(), block.size());
        if (size > 0) {
            into.append(block.data(), static_cast<std::size_t>(size));
            return true;
        }
        if (size == 0 || errno != EINTR)
            from.close();
        return false;
    }

    const ProcessRequest& request_;
    CChildProcess& child_;
    CDescriptor output_;
    CDescriptor diagnostics_;
    CDescriptor wake_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    ProcessResult result_;
};

ProcessResult notStarted(int error) {
    ProcessResult result;
    result.error = error;
    return result;
}

} // namespace

ProcessResult runProcess(const ProcessRequest& request) {
    auto output = newPipe();
    auto diagnostics = output ? newPipe() : std::nullopt;
    if (!diagnostics)
        return notStarted(errno);
    auto child = startProcess({request.words,
                               ProcessStart::Ties::Session,
                               {-1, output->writing.get(), diagnostics->writing.get()},
                               request.environment});
    if (!child)
        return notStarted(child.error().value());
    // Else the ends of the pipes would never be seen.
    output->writing.close();
    diagnostics->writing.close();
    return CListener(request, child.value(), std::move(output->reading), std::move(diagnostics->reading))
        .listen();
}

} // namespace mirovane
