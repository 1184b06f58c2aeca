#include "platform/process/ServiceManager.h"

#include "platform/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace mirovane {

namespace {

std::string taken(const char* variable) {
    const char* value = std::getenv(variable);
    std::string text = value ? value : "";
    unsetenv(variable);
    return text;
}

std::optional<std::int64_t> numberIn(const std::string& text) {
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end && number > 0 ? std::optional(number) : std::nullopt;
}

} // namespace

CServiceManager CServiceManager::fromEnvironment() {
    const std::string socket = taken("NOTIFY_SOCKET");
    const auto period = numberIn(taken("WATCHDOG_USEC"));
    const std::string whom = taken("WATCHDOG_PID");
    const bool forUs = whom.empty() || numberIn(whom) == getpid();
    if (socket.size() < 2 || socket.size() >= sizeof(sockaddr_un::sun_path) ||
        (socket[0] != '/' && socket[0] != '@'))
        return {};
    return {socket, period && forUs ? std::optional(std::chrono::microseconds(*period)) : std::nullopt};
}

bool CServiceManager::tell(std::string_view lines) const {
    if (!listens())
        return true;
    const CDescriptor sender(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!sender)
        return false;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(socket_.begin(), socket_.end(), address.sun_path);
    if (socket_[0] == '@')
        address.sun_path[0] = '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socket_.size());
    const ssize_t sent = sendto(sender.get(), lines.data(), lines.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&address), size);
    return sent >= 0 || (errno != EAGAIN && errno != ENOBUFS && errno != EINTR);
}

bool goesToJournal(int descriptor) {
    const char* stream = std::getenv("JOURNAL_STREAM");
    struct stat status {};
    if (!stream || fstat(descriptor, &status) != 0)
        return false;
    return stream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

std::string monotonicMicroseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr std::int64_t perSecond = 1'000'000;
    constexpr std::int64_t nanosecondsPer = 1000;
    return std::to_string(now.tv_sec * perSecond + now.tv_nsec / nanosecondsPer);
}

} // namespace mirovane
