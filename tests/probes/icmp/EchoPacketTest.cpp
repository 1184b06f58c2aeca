#include "probes/icmp/EchoPacket.h"

#include "tests/probes/icmp/EchoFixture.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace mirovane {
namespace {

std::vector<std::byte> toBytes(const TunHosts::Bytes& packet) {
    std::vector<std::byte> bytes;
    std::transform(packet.begin(), packet.end(), std::back_inserter(bytes),
                   [](auto b) { return std::byte{b}; });
    return bytes;
}

/// The IPv4 packet of a request from 10.77.0.1 to 10.77.1.2, as hosts get it.
TunHosts::Bytes requestPacket() {
    TunHosts::Bytes packet{0x45, 0, 0, 60, 0, 0, 0, 0, 10, 1, 0, 0, 10, 77, 0, 1, 10, 77, 1, 2};
    std::array<std::byte, longestEcho> buffer{};
    for (const std::byte b : buildEchoRequest(buffer, 0x1234, 0xabcd, 32, 0x0102030405060708))
        packet.push_back(std::to_integer<std::uint8_t>(b));
    return packet;
}

void putIcmpSum(TunHosts::Bytes& packet) {
    packet[22] = packet[23] = 0;
    const auto bytes = toBytes(packet);
    const std::uint16_t sum = internetChecksum(std::span(bytes).subspan(20));
    packet[22] = static_cast<std::uint8_t>(sum >> 8);
    packet[23] = static_cast<std::uint8_t>(sum & 0xff);
}

TunHosts::Bytes replyPacket() {
    auto reply = TunHosts::replyTo(requestPacket());
    putIcmpSum(reply);
    return reply;
}

TunHosts::Bytes errorPacket() {
    auto error = TunHosts::errorFor(requestPacket(), 11, 0, 5, 1);
    error[3] = static_cast<std::uint8_t>(error.size());
    putIcmpSum(error);
    return error;
}

TEST(EchoPacketTest, RequestIsOnlyEsBehindItsNumberWithTheRightSum) {
    std::array<std::byte, longestEcho> buffer{};
    for (int size = 0; size <= 255; ++size) {
        const auto request = buildEchoRequest(buffer, 7, 9, static_cast<std::uint8_t>(size), 77);
        const std::ptrdiff_t token = size < 8 ? 0 : 8;
        ASSERT_EQ(request.size(), 8U + static_cast<unsigned>(size));
        EXPECT_EQ(internetChecksum(request), 0);
        EXPECT_TRUE(std::all_of(request.begin() + 8 + token, request.end(),
                                [](std::byte b) { return b == std::byte{'E'}; }));
    }
}

TEST(EchoPacketTest, ReadsRepliesAndQuotedRequests) {
    const auto reply = parseIpPacket(toBytes(replyPacket()));
    ASSERT_TRUE(reply);
    EXPECT_TRUE(reply->isReply && reply->payloadRight);
    EXPECT_EQ(reply->token, 0x0102030405060708U);
    EXPECT_EQ(reply->requestTarget, addressOf("10.77.1.2"));
    EXPECT_EQ(reply->identifier, 0x1234);
    EXPECT_EQ(reply->sequence, 0xabcd);
    EXPECT_EQ(reply->payloadSize, 32U);

    const auto error = parseIpPacket(toBytes(errorPacket()));
    ASSERT_TRUE(error);
    EXPECT_FALSE(error->isReply);
    EXPECT_EQ(error->source, addressOf("10.77.5.1"));
    EXPECT_EQ(error->requestTarget, addressOf("10.77.1.2"));
    EXPECT_EQ(error->identifier, 0x1234);
    EXPECT_EQ(error->sequence, 0xabcd);
}

TEST(EchoPacketTest, PaddingOfTheLinkIsNoPayload) {
    auto padded = replyPacket();
    padded.insert(padded.end(), 14, 0);
    const auto reply = parseIpPacket(toBytes(padded));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->payloadSize, 32U);
}

TEST(EchoPacketTest, CutOffPacketsAreNothing) {
    for (const auto& whole : {toBytes(replyPacket()), toBytes(errorPacket())}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::vector<std::byte> cut(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(parseIpPacket(cut)) << length << " of " << whole.size() << " bytes";
        }
    }
}

TEST(EchoPacketTest, OneFlippedBitInTheMessageIsNothing) {
    const auto whole = toBytes(replyPacket());
    for (std::size_t bit = 20 * 8; bit < whole.size() * 8; ++bit) {
        auto flipped = whole;
        flipped[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(parseIpPacket(flipped)) << "bit " << bit;
    }
}

} // namespace
} // namespace mirovane
