#include "probes/icmp/EchoPacket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>

namespace mirovane {

namespace {

constexpr std::size_t shortestIpHeader = 20;
constexpr std::size_t protocolOffset = 9;
constexpr std::size_t sourceOffset = 12;
constexpr std::size_t destinationOffset = 16;

std::uint8_t byteAt(std::span<const std::byte> data, std::size_t offset) {
    return std::to_integer<std::uint8_t>(data[offset]);
}

std::uint16_t wordAt(std::span<const std::byte> data, std::size_t offset) {
    return static_cast<std::uint16_t>(byteAt(data, offset) << 8 | byteAt(data, offset + 1));
}

std::uint32_t addressAt(std::span<const std::byte> data, std::size_t offset) {
    std::uint32_t address = 0;
    std::memcpy(&address, data.data() + offset, sizeof address);
    return address;
}

void putWord(std::span<std::byte> data, std::size_t offset, std::uint16_t value) {
    data[offset] = static_cast<std::byte>(value >> 8);
    data[offset + 1] = static_cast<std::byte>(value & 0xff);
}

/// The length of the IPv4 header in front of an ICMP message, nothing when it is something else.
std::optional<std::size_t> icmpHeaderStart(std::span<const std::byte> packet) {
    if (packet.size() < shortestIpHeader || byteAt(packet, 0) >> 4 != 4 ||
        byteAt(packet, protocolOffset) != IPPROTO_ICMP)
        return std::nullopt;
    const std::size_t length = (byteAt(packet, 0) & std::size_t{0x0f}) * 4;
    if (length < shortestIpHeader || packet.size() < length + echoHeaderSize)
        return std::nullopt;
    return length;
}

bool isErrorType(std::uint8_t type) {
    return type == ICMP_DEST_UNREACH || type == ICMP_TIME_EXCEEDED || type == ICMP_PARAMETERPROB;
}

void readReply(std::span<const std::byte> icmp, EchoMessage& message) {
    const auto payload = icmp.subspan(echoHeaderSize);
    message.isReply = true;
    message.requestTarget = message.source;
    message.identifier = wordAt(icmp, 4);
    message.sequence = wordAt(icmp, 6);
    message.payloadSize = payload.size();
    const std::size_t tokenSize = payload.size() < echoTokenSize ? 0 : echoTokenSize;
    std::memcpy(&message.token, payload.data(), tokenSize);
    const auto rest = payload.subspan(tokenSize);
    message.payloadRight =
        std::all_of(rest.begin(), rest.end(), [](std::byte b) { return b == echoPayloadByte; });
}

bool readQuotedRequest(std::span<const std::byte> quoted, EchoMessage& message) {
    const auto start = icmpHeaderStart(quoted);
    if (!start || byteAt(quoted, *start) != ICMP_ECHO)
        return false;
    message.requestTarget = addressAt(quoted, destinationOffset);
    message.identifier = wordAt(quoted, *start + 4);
    message.sequence = wordAt(quoted, *start + 6);
    return true;
}

} // namespace

std::uint16_t internetChecksum(std::span<const std::byte> data) {
    std::uint32_t sum = 0;
    std::size_t i = 0;
    for (; i + 1 < data.size(); i += 2)
        sum += wordAt(data, i);
    if (i < data.size())
        sum += static_cast<std::uint32_t>(byteAt(data, i)) << 8;
    while (sum >> 16 != 0)
        sum = (sum & 0xffff) + (sum >> 16);
    return static_cast<std::uint16_t>(~sum);
}

std::span<const std::byte> buildEchoRequest(std::span<std::byte> packet, std::uint16_t identifier,
                                            std::uint16_t sequence, std::uint8_t payloadSize,
                                            std::uint64_t token) {
    const auto request = packet.first(echoHeaderSize + payloadSize);
    std::fill(request.begin() + echoHeaderSize, request.end(), echoPayloadByte);
    if (payloadSize >= echoTokenSize)
        std::memcpy(request.data() + echoHeaderSize, &token, echoTokenSize);
    request[0] = std::byte{ICMP_ECHO};
    request[1] = std::byte{0};
    putWord(request, 2, 0);
    putWord(request, 4, identifier);
    putWord(request, 6, sequence);
    putWord(request, 2, internetChecksum(request));
    return request;
}

std::optional<EchoMessage> parseIcmp(std::span<const std::byte> icmp, std::uint32_t source) {
    if (icmp.size() < echoHeaderSize)
        return std::nullopt;
    EchoMessage message;
    message.source = source;
    message.type = byteAt(icmp, 0);
    message.code = byteAt(icmp, 1);
    if (message.type == ICMP_ECHOREPLY) {
        readReply(icmp, message);
        return message;
    }
    if (isErrorType(message.type) && readQuotedRequest(icmp.subspan(echoHeaderSize), message))
        return message;
    return std::nullopt;
}

std::optional<EchoMessage> parseIpPacket(std::span<const std::byte> packet) {
    const auto start = icmpHeaderStart(packet);
    if (!start)
        return std::nullopt;
    // The link may pad short frames: what counts is the length that the IP header states.
    const std::size_t stated = wordAt(packet, 2);
    if (stated < *start + echoHeaderSize || stated > packet.size())
        return std::nullopt;
    const auto icmp = packet.first(stated).subspan(*start);
    // Raw sockets are served before the kernel has checked the sum.
    if (internetChecksum(icmp) != 0)
        return std::nullopt;
    return parseIcmp(icmp, addressAt(packet, sourceOffset));
}

} // namespace mirovane
