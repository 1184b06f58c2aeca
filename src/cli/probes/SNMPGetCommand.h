#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace mirovane {

struct HostAndPort {
    std::string host;
    std::uint32_t port = 0; ///< 0: none was given
};

/// Reads "HOST", "HOST:PORT", an IPv6 address as it is and "[ADDRESS]:PORT". Nothing when the host is empty
/// or the port is not a number from 1 to 65535.
std::optional<HostAndPort> parseHostAndPort(const std::string& text);

} // namespace mirovane
