#include "discover/AddressPing.h"

#include "discover/AddressRanges.h"

#include <memory>
#include <string>
#include <utility>

namespace mirovane {

namespace {

ProbeAnswer answers(HostProbes& probes, const std::string& target, std::stop_token stop) {
    PingReply reply;
    std::optional<std::uint32_t> resolved;
    return probes.PingHost(target, reply, resolved, pingTtl, pingTimeoutMs, pingPayloadSize, std::move(stop));
}

} // namespace

bool CAddressPing::start(std::uint32_t address) {
    Ping ping{address, {}, {}};
    // The worker's own share of the promise: it may end after this object.
    const auto answer = std::make_shared<std::promise<ProbeAnswer>>();
    ping.answer = answer->get_future();
    const bool started =
        workers_.start([answer, target = formatRangeAddress(address), stop = ping.stop.get_token(),
                        &probes = probes_] { answer->set_value(answers(probes, target, stop)); });
    if (started)
        ping_ = std::move(ping);
    return started;
}

std::optional<CAddressPing::Answer> CAddressPing::take() {
    if (!ping_ || inFlight())
        return std::nullopt;
    Ping ping = std::move(*ping_);
    ping_.reset();
    if (ping.stop.stop_requested())
        return Answer{Answer::Kind::Stopped, ping.address, {}};
    const ProbeAnswer answer = ping.answer.get();
    if (answer.couldNotBeAsked())
        return Answer{Answer::Kind::NotAsked, ping.address, answer.why};
    return Answer{answer.isYes() ? Answer::Kind::Answered : Answer::Kind::Silent, ping.address, {}};
}

void CAddressPing::stop() {
    if (inFlight())
        ping_->stop.request_stop();
}

void CAddressPing::forget() {
    if (ping_)
        ping_->stop.request_stop();
    ping_.reset();
}

} // namespace mirovane
