#pragma once

#include "tests/support/OwnNetwork.h"
#include "tests/support/TestFolder.h"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <map>
#include <poll.h>
#include <string>
#include <sys/mount.h>
#include <thread>
#include <vector>

namespace mirovane::test {

/// A name server on loopback and a resolver that asks nobody else, for the calling thread and the threads
/// that it starts. Make an OwnNetwork first: the server's port belongs to that namespace, and the resolver's
/// files to a mount namespace of the thread. Falls silent when told, as a server that is down.
class NameServer {
public:
    using Addresses = std::map<std::string, std::vector<std::string>>;

    /// Names in lower case; the addresses are given in this order.
    explicit NameServer(Addresses addresses) : addresses_(std::move(addresses)) {
        writeBytes(folder_.file("resolv.conf"), "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n");
        writeBytes(folder_.file("nsswitch.conf"), "hosts: dns\n");
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            !replaceFile("resolv.conf") || !replaceFile("nsswitch.conf")) {
            refused_ = std::string("no resolver of its own: ") + std::strerror(errno);
            return;
        }
        socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(53);
        at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0)
            refused_ = std::string("no port for a name server: ") + std::strerror(errno);
        else
            thread_ = std::jthread([this](const std::stop_token& stop) { run(stop); });
    }
    ~NameServer() {
        if (thread_.joinable()) {
            thread_.request_stop();
            thread_.join();
        }
        ::close(socket_);
        for (const char* file : {"/etc/resolv.conf", "/etc/nsswitch.conf"})
            ::umount2(file, MNT_DETACH);
    }
    NameServer(const NameServer&) = delete;
    NameServer& operator=(const NameServer&) = delete;

    const std::optional<std::string>& refused() const { return refused_; }
    void goAway() { away_ = true; }
    void comeBack() { away_ = false; }

private:
    using Bytes = std::vector<unsigned char>;

    bool replaceFile(const std::string& name) const {
        return ::mount(folder_.file(name).c_str(), ("/etc/" + name).c_str(), nullptr, MS_BIND, nullptr) == 0;
    }

    void run(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            pollfd wait{socket_, POLLIN, 0};
            Bytes query(512);
            sockaddr_in from{};
            socklen_t length = sizeof from;
            if (::poll(&wait, 1, 20) <= 0)
                continue;
            const ssize_t size = ::recvfrom(socket_, query.data(), query.size(), 0,
                                            reinterpret_cast<sockaddr*>(&from), &length);
            if (size < 17 || away_)
                continue;
            query.resize(static_cast<std::size_t>(size));
            const Bytes reply = replyTo(query);
            ::sendto(socket_, reply.data(), reply.size(), 0, reinterpret_cast<sockaddr*>(&from), length);
        }
    }

    /// The question's name as text; `end` becomes the place behind its type and class.
    static std::string nameIn(const Bytes& query, std::size_t& end) {
        std::string name;
        std::size_t at = 12;
        while (at < query.size() && query[at] != 0) {
            const std::size_t label = query[at];
            name += (name.empty() ? "" : ".") +
                    std::string(query.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                query.begin() + static_cast<std::ptrdiff_t>(at + 1 + label));
            at += label + 1;
        }
        end = std::min(at + 5, query.size());
        std::transform(name.begin(), name.end(), name.begin(), ::tolower);
        return name;
    }

    Bytes replyTo(const Bytes& query) const {
        std::size_t end = 0;
        const auto found = addresses_.find(nameIn(query, end));
        Bytes reply(query.begin(), query.begin() + static_cast<std::ptrdiff_t>(end));
        std::fill(reply.begin() + 6, reply.begin() + 12, 0);
        reply[2] = 0x81; // a reply, recursion desired and available
        reply[3] = found == addresses_.end() ? 0x83 : 0x80;
        if (found == addresses_.end())
            return reply;
        reply[7] = static_cast<unsigned char>(found->second.size());
        for (const std::string& address : found->second) {
            const Bytes head{0xc0, 12, 0, 1, 0, 1,
                             0,    0,  0, 0, 0, 4}; // of the question's name, kept by nobody
            reply.insert(reply.end(), head.begin(), head.end());
            in_addr value{};
            ::inet_pton(AF_INET, address.c_str(), &value);
            const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
            reply.insert(reply.end(), bytes, bytes + sizeof value);
        }
        return reply;
    }

    const Addresses addresses_;
    const TestFolder folder_;
    std::optional<std::string> refused_;
    int socket_ = -1;
    std::atomic<bool> away_ = false;
    std::jthread thread_;
};

} // namespace mirovane::test
