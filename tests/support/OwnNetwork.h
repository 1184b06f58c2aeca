#pragma once

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <net/if.h>
#include <netinet/in.h>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace mirovane {

/// A network namespace for the calling thread and the threads that it starts, until the end of this object.
/// It has no name and nothing to clean up: it goes when its last user goes, however that one ends. Loopback
/// is up.
class OwnNetwork {
public:
    OwnNetwork() : before_(::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC)) {
        if (before_ < 0 || ::unshare(CLONE_NEWNET) != 0) {
            refused_ = std::string("no network namespace of its own: ") + std::strerror(errno);
            return;
        }
        entered_ = true;
        raise("lo");
    }
    ~OwnNetwork() {
        if (entered_)
            ::setns(before_, CLONE_NEWNET);
        ::close(before_);
    }
    OwnNetwork(const OwnNetwork&) = delete;
    OwnNetwork& operator=(const OwnNetwork&) = delete;

    /// Why it could not be made, for a test to skip itself.
    const std::optional<std::string>& refused() const { return refused_; }

    /// Sets a value of the calling thread's namespace, for example "ipv4/ping_group_range".
    static bool set(const std::string& key, const std::string& value) {
        std::ofstream file("/proc/sys/net/" + key);
        file << value << std::flush;
        return file.good();
    }

    static void raise(const char* device) {
        ifreq request = named(device);
        onSocket(SIOCGIFFLAGS, request);
        request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
        onSocket(SIOCSIFFLAGS, request);
    }

    static ifreq named(const char* device) {
        ifreq request{};
        std::strncpy(request.ifr_name, device, IFNAMSIZ - 1);
        return request;
    }

    static bool onSocket(unsigned long command, ifreq& request) {
        const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const bool done = ::ioctl(socket, command, &request) == 0;
        ::close(socket);
        return done;
    }

private:
    int before_;
    bool entered_ = false;
    std::optional<std::string> refused_;
};

} // namespace mirovane
