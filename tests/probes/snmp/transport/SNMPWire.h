#pragma once

#include "probes/snmp/transport/SNMPMessage.h"
#include "tests/support/SNMPDaemon.h"

#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace mirovane::test {

/// Messages made by hand, so that they can be wrong in every way.
namespace wire {

inline std::string thing(int tag, const std::string& content) {
    std::string length;
    if (content.size() < 0x80)
        length = static_cast<char>(content.size());
    else
        length = {'\x82', static_cast<char>(content.size() >> 8), static_cast<char>(content.size() & 0xFF)};
    return static_cast<char>(tag) + length + content;
}

inline std::string number(std::int32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>((value >> shift) & 0xFF);
    return thing(0x02, bytes);
}

inline const std::string upTimeName("\x06\x08\x2B\x06\x01\x02\x01\x01\x03\x00", 10);

inline std::string binding(const std::string& value) {
    return thing(0x30, upTimeName + value);
}

struct Reply {
    std::int32_t id = 0;
    std::string bindings = binding(thing(0x43, "\x19")); ///< 25 ticks
    std::string community = "public";
    int type = 0xA2;
    int version = 0;
    int errorStatus = 0;

    std::string bytes() const {
        return thing(0x30,
                     number(version) + thing(0x04, community) +
                         thing(type, number(id) + number(errorStatus) + number(0) + thing(0x30, bindings)));
    }
};

inline std::span<const std::uint8_t> asBytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace wire

/// A host that answers as a test says. Each request is decoded and given to the script, which sends what it
/// likes, from the right socket or from another.
class ScriptedAgent {
public:
    struct Asked {
        SNMPMessage request;
        sockaddr_in asker{};

        std::int32_t requestId() const { return request.pdu.requestId; }
    };
    using Script = std::function<void(ScriptedAgent&, const Asked&)>;

    explicit ScriptedAgent(Script script)
        : script_(std::move(script)), thread_([this](auto stop) {
              while (!stop.stop_requested()) {
                  Asked asked;
                  const auto bytes = socket_.receive(20, &asked.asker);
                  if (const auto message = bytes ? decodeSnmpMessage(wire::asBytes(*bytes)) : std::nullopt) {
                      asked.request = *message;
                      script_(*this, asked);
                  }
              }
          }) {}

    std::uint16_t port() const { return socket_.port(); }
    void send(const Asked& asked, const std::string& bytes) const { socket_.sendTo(asked.asker, bytes); }
    void sendFromElsewhere(const Asked& asked, const std::string& bytes) const {
        elsewhere_.sendTo(asked.asker, bytes);
    }

private:
    LoopbackSocket socket_;
    LoopbackSocket elsewhere_;
    Script script_;
    std::jthread thread_;
};

} // namespace mirovane::test
