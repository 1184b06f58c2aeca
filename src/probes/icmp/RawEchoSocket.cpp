#include "platform/Descriptor.h"
#include "probes/icmp/EchoBatch.h"
#include "probes/icmp/EchoSocket.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <linux/filter.h>
#include <linux/icmp.h>
#include <netinet/in.h>
#include <sys/random.h>
#include <sys/socket.h>

namespace mirovane {

namespace {

class CRawEchoSocket final : public EchoSocket {
public:
    CRawEchoSocket(CDescriptor descriptor, std::uint16_t identifier)
        : descriptor_(std::move(descriptor)), identifier_(identifier) {}

    std::string kind() const override { return "raw ICMP socket"; }
    std::size_t receiveCapacity() const override { return repliesThatFit(descriptor_.get()); }
    int descriptor() const override { return descriptor_.get(); }

    std::size_t send(std::span<const EchoRequest> requests, int& error) override {
        return outgoing_.send(descriptor_.get(), identifier_, requests, error);
    }

    bool receive(std::vector<EchoArrival>& arrivals) override {
        const std::size_t count = incoming_.receive(descriptor_.get(), 0);
        for (std::size_t i = 0; i < count; ++i) {
            const auto message = parseIpPacket(incoming_.bytes(i));
            if (message && message->identifier == identifier_)
                arrivals.push_back({*message, incoming_.arrival(i)});
        }
        // The errors have come as packets as well, with all that is needed to match them.
        const std::size_t repeated = incoming_.receive(descriptor_.get(), MSG_ERRQUEUE);
        return count == echoBatch || repeated == echoBatch;
    }

private:
    CDescriptor descriptor_;
    std::uint16_t identifier_;
    COutgoingEchoes outgoing_;
    CIncomingEchoes incoming_;
};

/// Every raw socket gets a copy of every ICMP packet that the computer receives. Let the kernel drop what is
/// not ours before it fills the buffer: all but echo replies with our identifier and errors that quote one of
/// our requests. Loads beyond the packet's end drop it.
bool attachFilter(int descriptor, std::uint16_t identifier) {
    // By type the kernel chooses before it makes the copy, which spares loopback half of them.
    constexpr unsigned wantedTypes =
        1U << ICMP_ECHOREPLY | 1U << ICMP_DEST_UNREACH | 1U << ICMP_TIME_EXCEEDED | 1U << ICMP_PARAMETERPROB;
    const icmp_filter types{~wantedTypes};
    ::setsockopt(descriptor, SOL_RAW, ICMP_FILTER, &types, sizeof types);

    constexpr unsigned quotedProtocol = 8 + 9; // behind the ICMP header of the error, in the quoted IP header
    std::array<sock_filter, 19> program{{
        BPF_STMT(BPF_LDX | BPF_B | BPF_MSH, 0),                         //  0: X = start of the ICMP header
        BPF_STMT(BPF_LD | BPF_B | BPF_IND, 0),                          //  1: its type
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ICMP_ECHOREPLY, 0, 2),      //  2
        BPF_STMT(BPF_LD | BPF_H | BPF_IND, 4),                          //  3: identifier of the reply
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, identifier, 12, 13),        //  4
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ICMP_DEST_UNREACH, 2, 0),   //  5
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ICMP_TIME_EXCEEDED, 1, 0),  //  6
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ICMP_PARAMETERPROB, 0, 10), //  7
        BPF_STMT(BPF_LD | BPF_B | BPF_IND, quotedProtocol),             //  8
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, IPPROTO_ICMP, 0, 8),        //  9
        BPF_STMT(BPF_LD | BPF_B | BPF_IND, 8),                 // 10: X += length of the quoted IP header
        BPF_STMT(BPF_ALU | BPF_AND | BPF_K, 0x0f),             // 11
        BPF_STMT(BPF_ALU | BPF_LSH | BPF_K, 2),                // 12
        BPF_STMT(BPF_ALU | BPF_ADD | BPF_X, 0),                // 13
        BPF_STMT(BPF_MISC | BPF_TAX, 0),                       // 14
        BPF_STMT(BPF_LD | BPF_H | BPF_IND, 8 + 4),             // 15: identifier of the quoted request
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, identifier, 0, 1), // 16
        BPF_STMT(BPF_RET | BPF_K, 0xffff),                     // 17: keep
        BPF_STMT(BPF_RET | BPF_K, 0),                          // 18: drop
    }};
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::setsockopt(descriptor, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter) == 0;
}

/// Two programs that ping the same host at once must not share an identifier; a process id would often repeat
/// within containers.
std::uint16_t randomIdentifier() {
    std::uint16_t identifier = 0;
    if (::getrandom(&identifier, sizeof identifier, GRND_NONBLOCK) != sizeof identifier)
        identifier = static_cast<std::uint16_t>(::getpid());
    return identifier;
}

void drain(int descriptor) {
    std::array<std::byte, 1> byte{};
    while (::recv(descriptor, byte.data(), byte.size(), MSG_DONTWAIT) >= 0) {
    }
}

} // namespace

EchoSocketOpening openRawEchoSocket() {
    CDescriptor descriptor(::socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_ICMP));
    if (!descriptor)
        return {nullptr, std::string("raw ICMP socket: ") + std::strerror(errno)};
    const std::uint16_t identifier = randomIdentifier();
    if (!attachFilter(descriptor.get(), identifier))
        return {nullptr, std::string("raw ICMP socket: no packet filter: ") + std::strerror(errno)};
    drain(descriptor.get()); // whatever queued between the two calls
    if (!prepareEchoSocket(descriptor.get()))
        return {nullptr, std::string("raw ICMP socket: no error queue: ") + std::strerror(errno)};
    return {std::make_unique<CRawEchoSocket>(std::move(descriptor), identifier), {}};
}

} // namespace mirovane
