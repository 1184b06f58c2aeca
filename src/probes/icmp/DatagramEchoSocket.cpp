#include "platform/Descriptor.h"
#include "probes/icmp/EchoBatch.h"
#include "probes/icmp/EchoSocket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <linux/errqueue.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <sys/socket.h>

namespace mirovane {

namespace {

/// Reads what the error queue says about one request. The queue hands out the address that the request was
/// for, the quoted ICMP header and, beside them, the error with the address of the computer that sent it.
std::optional<EchoMessage> readQueuedError(CIncomingEchoes& batch, std::size_t index,
                                           std::uint16_t identifier) {
    const auto quoted = batch.bytes(index);
    if (quoted.size() < echoHeaderSize || quoted[0] != std::byte{ICMP_ECHO})
        return std::nullopt;
    msghdr& header = batch.header(index);
    for (cmsghdr* control = CMSG_FIRSTHDR(&header); control != nullptr;
         control = CMSG_NXTHDR(&header, control)) {
        if (control->cmsg_level != IPPROTO_IP || control->cmsg_type != IP_RECVERR)
            continue;
        struct {
            sock_extended_err error;
            sockaddr_in offender;
        } report{};
        if (control->cmsg_len < CMSG_LEN(sizeof report))
            return std::nullopt;
        std::memcpy(&report, CMSG_DATA(control), sizeof report);
        const auto type = report.error.ee_type;
        if (report.error.ee_origin != SO_EE_ORIGIN_ICMP ||
            (type != ICMP_DEST_UNREACH && type != ICMP_TIME_EXCEEDED && type != ICMP_PARAMETERPROB))
            return std::nullopt;
        EchoMessage message;
        message.source = report.offender.sin_addr.s_addr;
        message.requestTarget = batch.address(index);
        message.identifier = identifier;
        std::uint16_t sequence = 0;
        std::memcpy(&sequence, quoted.data() + 6, sizeof sequence);
        message.sequence = ntohs(sequence);
        message.type = type;
        message.code = report.error.ee_code;
        return message;
    }
    return std::nullopt;
}

/// The unprivileged kind. The kernel chooses the identifier and hands this socket nothing but its own
/// replies; errors come through the error queue.
class CDatagramEchoSocket final : public EchoSocket {
public:
    CDatagramEchoSocket(CDescriptor descriptor, std::uint16_t identifier)
        : descriptor_(std::move(descriptor)), identifier_(identifier) {}

    std::string kind() const override { return "unprivileged ICMP socket"; }
    std::size_t receiveCapacity() const override { return repliesThatFit(descriptor_.get()); }
    int descriptor() const override { return descriptor_.get(); }

    std::size_t send(std::span<const EchoRequest> requests, int& error) override;
    bool receive(std::vector<EchoArrival>& arrivals) override;

private:
    bool receiveReplies(std::vector<EchoArrival>& arrivals);
    bool receiveErrors(std::vector<EchoArrival>& arrivals);

    CDescriptor descriptor_;
    std::uint16_t identifier_;
    COutgoingEchoes outgoing_;
    CIncomingEchoes incoming_;
};

std::size_t CDatagramEchoSocket::send(std::span<const EchoRequest> requests, int& error) {
    return outgoing_.send(descriptor_.get(), identifier_, requests, error);
}

bool CDatagramEchoSocket::receiveReplies(std::vector<EchoArrival>& arrivals) {
    const std::size_t count = incoming_.receive(descriptor_.get(), 0);
    for (std::size_t i = 0; i < count; ++i) {
        const auto message = parseIcmp(incoming_.bytes(i), incoming_.address(i));
        if (message && message->isReply && message->identifier == identifier_)
            arrivals.push_back({*message, incoming_.arrival(i)});
    }
    return count == echoBatch;
}

bool CDatagramEchoSocket::receiveErrors(std::vector<EchoArrival>& arrivals) {
    const std::size_t count = incoming_.receive(descriptor_.get(), MSG_ERRQUEUE);
    for (std::size_t i = 0; i < count; ++i)
        if (const auto message = readQueuedError(incoming_, i, identifier_))
            arrivals.push_back({*message, incoming_.arrival(i)});
    return count == echoBatch;
}

bool CDatagramEchoSocket::receive(std::vector<EchoArrival>& arrivals) {
    const bool moreReplies = receiveReplies(arrivals);
    const bool moreErrors = receiveErrors(arrivals);
    return moreReplies || moreErrors;
}

} // namespace

EchoSocketOpening openDatagramEchoSocket() {
    const auto failed = [](const char* what) {
        return EchoSocketOpening{nullptr,
                                 std::string("unprivileged ICMP socket: ") + what + std::strerror(errno)};
    };
    CDescriptor descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_ICMP));
    if (!descriptor)
        return failed("");
    sockaddr_in own{};
    own.sin_family = AF_INET;
    socklen_t length = sizeof own;
    if (::bind(descriptor.get(), reinterpret_cast<sockaddr*>(&own), sizeof own) != 0 ||
        ::getsockname(descriptor.get(), reinterpret_cast<sockaddr*>(&own), &length) != 0)
        return failed("no identifier: ");
    if (!prepareEchoSocket(descriptor.get()))
        return failed("no error queue: ");
    return {std::make_unique<CDatagramEchoSocket>(std::move(descriptor), ntohs(own.sin_port)), {}};
}

} // namespace mirovane
