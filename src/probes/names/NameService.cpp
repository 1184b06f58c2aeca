#include "probes/names/NameService.h"

#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>
#include <vector>

namespace mirovane {

namespace {

ProbeAnswer whyNothing(int hostError, int systemError) {
    // The resolver takes files and sockets that it cannot open for servers that do not answer.
    if (hostError != HOST_NOT_FOUND && hostError != NO_DATA &&
        (systemError == EMFILE || systemError == ENFILE))
        hostError = NETDB_INTERNAL;
    switch (hostError) {
    case HOST_NOT_FOUND:
        return ProbeAnswer::no("no such name");
    case NO_DATA:
        return ProbeAnswer::no("no IPv4 address is known for this name");
    case TRY_AGAIN:
        return ProbeAnswer::couldNotAsk(AskedThrough::NameService, "the name server does not answer");
    case NETDB_INTERNAL:
        return ProbeAnswer::couldNotAsk(AskedThrough::NameService,
                                        std::generic_category().message(systemError));
    default:
        return ProbeAnswer::couldNotAsk(AskedThrough::NameService, "the name server refuses to answer");
    }
}

/// Calls one of the resolver's functions with a buffer that grows until the answer fits. These functions keep
/// the order in which the name server gave the addresses, and tell a missing name from a missing server; the
/// newer getaddrinfo() sorts the addresses by rules of its own.
template <typename Call>
ProbeAnswer askSystem(Call call, std::vector<char>& buffer, hostent& entry) {
    constexpr std::size_t longestAnswer = std::size_t{1} << 20;
    for (buffer.resize(2048);; buffer.resize(buffer.size() * 2)) {
        hostent* found = nullptr;
        int hostError = 0;
        errno = 0;
        const int status = call(&entry, buffer.data(), buffer.size(), &found, &hostError);
        if (found != nullptr)
            return ProbeAnswer::yes();
        const int error = errno;
        if (status != ERANGE || buffer.size() >= longestAnswer)
            return whyNothing(hostError, error != 0 ? error : status);
    }
}

class CSystemNameService final : public NameService {
public:
    LookedUp<std::uint32_t> addressOf(const std::string& name) override {
        std::vector<char> buffer;
        hostent entry{};
        const auto call = [&name](hostent* into, char* space, std::size_t size, hostent** found, int* error) {
            return ::gethostbyname2_r(name.c_str(), AF_INET, into, space, size, found, error);
        };
        LookedUp<std::uint32_t> result{askSystem(call, buffer, entry)};
        if (!result.found())
            return result;
        if (entry.h_length != sizeof result.value || entry.h_addr_list[0] == nullptr)
            return {whyNothing(NO_DATA, 0)};
        std::memcpy(&result.value, entry.h_addr_list[0], sizeof result.value);
        return result;
    }

    LookedUp<std::string> nameOf(std::uint32_t address) override {
        std::vector<char> buffer;
        hostent entry{};
        const auto call = [&address](hostent* into, char* space, std::size_t size, hostent** found,
                                     int* error) {
            return ::gethostbyaddr_r(&address, sizeof address, AF_INET, into, space, size, found, error);
        };
        LookedUp<std::string> result{askSystem(call, buffer, entry)};
        if (result.found() && entry.h_name != nullptr)
            result.value = entry.h_name;
        if (!result.answer.couldNotBeAsked() && result.value.empty())
            result.answer = ProbeAnswer::no("no name is known for this address");
        return result;
    }
};

} // namespace

std::shared_ptr<NameService> systemNameService() {
    return std::make_shared<CSystemNameService>();
}

} // namespace mirovane
