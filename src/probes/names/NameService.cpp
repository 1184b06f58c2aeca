#include "probes/names/NameService.h"

#include <array>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace mirovane {

namespace {

class CSystemNameService final : public NameService {
public:
    std::optional<std::uint32_t> addressOf(const std::string& name) override {
        addrinfo hints{};
        hints.ai_family = AF_INET;
        hints.ai_socktype = SOCK_DGRAM; // one entry per address instead of one per kind of socket
        addrinfo* found = nullptr;
        if (::getaddrinfo(name.c_str(), nullptr, &hints, &found) != 0)
            return std::nullopt;
        const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, ::freeaddrinfo);
        if (found == nullptr || found->ai_addrlen < sizeof(sockaddr_in))
            return std::nullopt;
        sockaddr_in address{};
        std::memcpy(&address, found->ai_addr, sizeof address);
        return address.sin_addr.s_addr;
    }

    std::optional<std::string> nameOf(std::uint32_t address) override {
        sockaddr_in of{};
        of.sin_family = AF_INET;
        of.sin_addr.s_addr = address;
        std::array<char, NI_MAXHOST> name{};
        if (::getnameinfo(reinterpret_cast<const sockaddr*>(&of), sizeof of, name.data(), name.size(),
                          nullptr, 0, NI_NAMEREQD) != 0)
            return std::nullopt;
        return name.data();
    }
};

} // namespace

std::shared_ptr<NameService> systemNameService() {
    return std::make_shared<CSystemNameService>();
}

} // namespace mirovane
