#include "probes/snmp/transport/SNMPTypes.h"

#include <charconv>

namespace mirovane {

namespace {

/// The first two sub-identifiers share their bytes in a message.
bool fitsMessage(const SNMPOid& oid) {
    constexpr std::uint32_t lastArc = 2;
    constexpr std::uint32_t secondsPerArc = 40;
    return oid.size() >= 2 && oid.size() <= longestSnmpOid && oid[0] <= lastArc &&
           (oid[0] < lastArc ? oid[1] < secondsPerArc : oid[1] <= UINT32_MAX - lastArc * secondsPerArc);
}

} // namespace

std::optional<SNMPOid> SnmpStrToOid(std::string_view text) {
    if (text.starts_with('.'))
        text.remove_prefix(1);
    SNMPOid oid;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (oid.size() <= longestSnmpOid) {
        std::uint32_t subIdentifier = 0;
        const auto [next, error] = std::from_chars(at, end, subIdentifier);
        if (error != std::errc())
            return std::nullopt;
        oid.push_back(subIdentifier);
        if (next == end)
            return fitsMessage(oid) ? std::optional(std::move(oid)) : std::nullopt;
        if (*next != '.')
            return std::nullopt;
        at = next + 1;
    }
    return std::nullopt;
}

std::optional<std::string> SnmpOidToStr(const SNMPOid& oid) {
    if (oid.empty())
        return std::nullopt;
    std::string text;
    for (const std::uint32_t subIdentifier : oid) {
        if (!text.empty())
            text += '.';
        text += std::to_string(subIdentifier);
    }
    return text.size() < snmpOidTextBuffer ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace mirovane
