#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// The name system as the resolver asks it. A call may take as long as it likes and is made on any thread,
/// several at once.
class NameService {
public:
    virtual ~NameService() = default;

    /// The first IPv4 address of a name, network byte order.
    virtual std::optional<std::uint32_t> addressOf(const std::string& name) = 0;

    /// The official name of an address.
    virtual std::optional<std::string> nameOf(std::uint32_t address) = 0;
};

/// What this computer is set up to use: its hosts file, DNS and so on.
std::shared_ptr<NameService> systemNameService();

} // namespace mirovane
