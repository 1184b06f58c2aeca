#include "probes/icmp/EchoTypes.h"

#include "probes/names/HostAddress.h"

#include <netinet/ip_icmp.h>
#include <system_error>

namespace mirovane {

namespace {

std::string unreachableText(const EchoResult& result) {
    if (result.icmpType != ICMP_DEST_UNREACH)
        return "request refused (ICMP type " + std::to_string(result.icmpType) + ")";
    switch (result.icmpCode) {
    case ICMP_NET_UNREACH:
    case ICMP_NET_UNKNOWN:
        return "network unreachable";
    case ICMP_HOST_UNREACH:
    case ICMP_HOST_UNKNOWN:
        return "host unreachable";
    case ICMP_PROT_UNREACH:
        return "host does not speak ICMP";
    case ICMP_NET_ANO:
    case ICMP_HOST_ANO:
    case ICMP_PKT_FILTERED:
        return "forbidden by a filter";
    default:
        return "unreachable (code " + std::to_string(result.icmpCode) + ")";
    }
}

std::string saysWho(const EchoResult& result) {
    return result.reporter == 0 ? std::string() : ", says " + formatAddress(result.reporter);
}

} // namespace

std::uint32_t EchoResult::roundTripMs() const {
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(roundTrip).count());
}

std::string describeEcho(const EchoResult& result, const EchoOptions& options) {
    switch (result.kind) {
    case EchoKind::Reply:
        return "answered";
    case EchoKind::TimedOut:
        return "no reply within " + std::to_string(options.timeoutMs) + " ms";
    case EchoKind::TtlExpired:
        return "more than " + std::to_string(options.ttl) + " hops away" + saysWho(result);
    case EchoKind::Unreachable:
        return unreachableText(result) + saysWho(result);
    case EchoKind::WrongPayload:
        return "replied with other bytes than were sent";
    case EchoKind::WrongLength:
        return "replied with another number of bytes than were sent";
    case EchoKind::Stopped:
        return "stopped";
    case EchoKind::NotPermitted:
        return "echoes can't be sent on this computer";
    case EchoKind::SendFailed:
        return std::generic_category().message(result.systemError);
    }
    return {};
}

} // namespace mirovane
