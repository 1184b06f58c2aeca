#include "probes/icmp/EchoSocket.h"

#include <filesystem>

namespace mirovane {

namespace {

std::string programPath() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string("this program") : path.string();
}

} // namespace

EchoSocketOpening openEchoSocket() {
    EchoSocketOpening datagram = openDatagramEchoSocket();
    if (datagram.socket)
        return datagram;
    EchoSocketOpening raw = openRawEchoSocket();
    if (raw.socket)
        return raw;
    return {
        nullptr,
        "Ping is not possible (" + datagram.reason + "; " + raw.reason +
            "). As root, run \"setcap cap_net_raw+ep " + programPath() +
            "\" or \"sysctl -w net.ipv4.ping_group_range='0 2147483647'\", then start the program again."};
}

} // namespace mirovane
