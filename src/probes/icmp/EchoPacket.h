#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace mirovane {

constexpr std::byte echoPayloadByte{0x45};
constexpr std::size_t echoHeaderSize = 8;
constexpr std::size_t longestEcho = echoHeaderSize + 255;

/// A payload begins with a number of so many bytes that nobody can guess, and goes on with echoPayloadByte. A
/// shorter one is made of that byte alone.
constexpr std::size_t echoTokenSize = 8;

/// What one received ICMP message says about one of our requests. Addresses in network byte order, the rest
/// in the computer's.
struct EchoMessage {
    bool isReply = false;
    std::uint32_t source = 0; ///< who sent the message
    std::uint32_t requestTarget =
        0; ///< whom the request was for: the source of a reply, the quoted one of an error
    std::uint16_t identifier = 0;
    std::uint16_t sequence = 0;
    std::size_t payloadSize = 0; ///< replies only
    std::uint64_t token = 0;     ///< replies only: as it came; 0 in a payload too short for one
    bool payloadRight = false;   ///< replies only: every byte behind the token is the one we send
    std::uint8_t type = 0;
    std::uint8_t code = 0;
};

/// Writes an echo request with its checksum into `packet` and returns its bytes. `packet` holds longestEcho
/// bytes.
std::span<const std::byte> buildEchoRequest(std::span<std::byte> packet, std::uint16_t identifier,
                                            std::uint16_t sequence, std::uint8_t payloadSize,
                                            std::uint64_t token);

/// Reads an ICMP message: an echo reply, or an error (destination unreachable, time exceeded, parameter
/// problem) that quotes an echo request. Nothing for anything else, truncated or malformed messages included.
/// Trusts no length.
std::optional<EchoMessage> parseIcmp(std::span<const std::byte> icmp, std::uint32_t source);

/// The same for what a raw socket delivers, which starts at the IP header.
std::optional<EchoMessage> parseIpPacket(std::span<const std::byte> packet);

/// The Internet checksum, in the byte order of the data.
std::uint16_t internetChecksum(std::span<const std::byte> data);

} // namespace mirovane
