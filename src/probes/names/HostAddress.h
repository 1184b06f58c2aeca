#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// What a user's text for a host can be. Blanks around it do not count.
enum class HostTextKind {
    DottedAddress, ///< four decimal parts
    Name,          ///< worth a look-up
    Invalid,       ///< neither: no look-up is made and no packet is sent for it
};

/// Reads "10.0.0.5": four decimal parts of 0 to 255, at most three digits each, blanks around allowed.
/// Network byte order. Parts padded with zeros ("192.168.001.008"), common in inventories, are decimal. The
/// short, octal and hexadecimal forms of older tools ("10.1", "0x7f.1", "167772165") are not addresses:
/// somebody's unfinished address must not reach another host.
std::optional<std::uint32_t> parseDottedAddress(std::string_view text);

/// The dotted form of an address in network byte order.
std::string formatAddress(std::uint32_t address);

/// Tells an address from a name that may be looked up. Empty texts, names longer than the name system carries
/// (253 characters), names with blanks, control characters or NUL inside and the numeric forms that
/// parseDottedAddress() refuses are Invalid, because a resolver would cut them or read them as another host's
/// address.
HostTextKind classifyHostText(std::string_view text);

/// The text without the blanks around it.
std::string_view trimmedHostText(std::string_view text);

} // namespace mirovane
