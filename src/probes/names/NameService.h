#pragma once

#include "platform/ProbeAnswer.h"

#include <cstdint>
#include <memory>
#include <string>

namespace mirovane {

/// What a look-up brought. A name that the name system does not have is a no; a name server that does not
/// answer, or fails, could not be asked.
template <typename Value>
struct LookedUp {
    ProbeAnswer answer;
    Value value{}; ///< of a yes

    bool found() const { return answer.isYes(); }
};

/// The name system as the resolver asks it. A call may take as long as it likes and is made on any thread,
/// several at once.
class NameService {
public:
    virtual ~NameService() = default;

    /// The first IPv4 address of a name, network byte order. The first is the one that the name server gave
    /// first: people put the address that is to be asked in front.
    virtual LookedUp<std::uint32_t> addressOf(const std::string& name) = 0;

    /// The official name of an address.
    virtual LookedUp<std::string> nameOf(std::uint32_t address) = 0;
};

/// What this computer is set up to use: its hosts file, DNS and so on.
std::shared_ptr<NameService> systemNameService();

} // namespace mirovane
