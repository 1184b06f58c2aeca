#pragma once

#include "platform/Descriptor.h"
#include "probes/snmp/transport/SNMPMessage.h"
#include "tests/support/TestFolder.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace mirovane::test {

/// A UDP socket on 127.0.0.1, on a port that was free.
class LoopbackSocket {
public:
    explicit LoopbackSocket(const char* address = "127.0.0.1", std::uint16_t port = 0)
        : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in at = loopback(port);
        ::inet_pton(AF_INET, address, &at.sin_addr);
        bound_ = ::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&at), sizeof at) == 0;
    }

    bool bound() const { return bound_; }

    std::uint16_t port() const {
        sockaddr_in at{};
        socklen_t length = sizeof at;
        ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&at), &length);
        return ntohs(at.sin_port);
    }

    template <typename Bytes>
    bool sendTo(const sockaddr_in& peer, const Bytes& bytes) const {
        return ::sendto(socket_.get(), bytes.data(), bytes.size(), 0,
                        reinterpret_cast<const sockaddr*>(&peer),
                        sizeof peer) == static_cast<ssize_t>(bytes.size());
    }

    /// The next datagram and who sent it; nothing when none comes in time.
    std::optional<std::string> receive(int timeoutMs, sockaddr_in* sender = nullptr) const {
        pollfd wait{socket_.get(), POLLIN, 0};
        if (::poll(&wait, 1, timeoutMs) <= 0)
            return std::nullopt;
        std::string bytes(65536, '\0');
        sockaddr_in from{};
        socklen_t length = sizeof from;
        const ssize_t size = ::recvfrom(socket_.get(), bytes.data(), bytes.size(), 0,
                                        reinterpret_cast<sockaddr*>(&from), &length);
        if (size < 0)
            return std::nullopt;
        bytes.resize(static_cast<std::size_t>(size));
        if (sender != nullptr)
            *sender = from;
        return bytes;
    }

    int descriptor() const { return socket_.get(); }

    static sockaddr_in loopback(std::uint16_t port) {
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(port);
        at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return at;
    }

private:
    CDescriptor socket_;
    bool bound_ = false;
};

/// A GetRequest of sysUpTime as it stands on the wire.
inline SNMPBytes snmpGetOfUpTime(const std::string& community, std::int32_t requestId) {
    SNMPMessage message;
    message.context.community = community;
    message.pdu.type = static_cast<std::int32_t>(SNMPPduType::GetRequest);
    message.pdu.requestId = requestId;
    message.pdu.bindings.push_back({{1, 3, 6, 1, 2, 1, 1, 3, 0}, {}});
    return *encodeSnmpMessage(message);
}

/// A real agent (snmpd) on a loopback port, with files of its own. Ended with the object.
class SNMPDaemon {
public:
    /// `configuration`: further lines, for example "override 1.3.6.1.4.1.99999.1.0 integer -5". `port` 0: one
    /// that is free.
    explicit SNMPDaemon(const std::string& configuration = "", std::uint16_t port = 0)
        : port_(port != 0 ? port : LoopbackSocket().port()) {
        writeBytes(
            folder_.file("snmpd.conf"),
            "agentaddress udp:127.0.0.1:" + std::to_string(port_) +
                "\nrocommunity public 127.0.0.1\nrocommunity inner 127.0.0.1\nsysName mirovane-test\n" +
                configuration);
        start();
    }
    ~SNMPDaemon() {
        if (child_ > 0) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, nullptr, 0);
        }
    }
    SNMPDaemon(const SNMPDaemon&) = delete;
    SNMPDaemon& operator=(const SNMPDaemon&) = delete;

    /// Why it does not run, for a test to skip itself.
    const std::optional<std::string>& refused() const { return refused_; }
    std::uint16_t port() const { return port_; }
    const std::string& folder() const { return folder_.path(); }

private:
    static constexpr const char* program = "/usr/sbin/snmpd";

    void start() {
        if (::access(program, X_OK) != 0) {
            refused_ = std::string("no ") + program + " on this computer";
            return;
        }
        const std::string configuration = folder_.file("snmpd.conf");
        const std::string log = folder_.file("log");
        std::vector<std::string> words{program, "-f", "-C", "-c", configuration, "-Lf", log, "-r"};
        std::vector<std::string> settings{"MIBS=", "MIBDIRS=" + folder_.path(), "HOME=" + folder_.path(),
                                          "SNMP_PERSISTENT_DIR=" + folder_.path(), "PATH=/usr/bin:/bin"};
        const int error = ::posix_spawn(&child_, program, nullptr, nullptr, pointers(words).data(),
                                        pointers(settings).data());
        if (error != 0 || !answersSoon())
            refused_ = "snmpd does not start: " + readBytes(log);
    }

    static std::vector<char*> pointers(std::vector<std::string>& words) {
        std::vector<char*> result;
        for (std::string& word : words)
            result.push_back(word.data());
        result.push_back(nullptr);
        return result;
    }

    bool answersSoon() const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        const LoopbackSocket socket;
        while (std::chrono::steady_clock::now() < deadline) {
            socket.sendTo(LoopbackSocket::loopback(port_), snmpGetOfUpTime("public", 1));
            if (socket.receive(20))
                return true;
        }
        return false;
    }

    TestFolder folder_;
    std::uint16_t port_;
    pid_t child_ = -1;
    std::optional<std::string> refused_;
};

} // namespace mirovane::test
