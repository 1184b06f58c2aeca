#include "probes/icmp/OutstandingEchoes.h"

#include <algorithm>
#include <netinet/ip_icmp.h>

namespace mirovane {

namespace {

constexpr std::size_t sequenceNumbers = 65536;

EchoKind judge(const EchoMessage& message, std::uint8_t payloadSize) {
    if (!message.isReply)
        return message.type == ICMP_TIME_EXCEEDED ? EchoKind::TtlExpired : EchoKind::Unreachable;
    if (message.payloadSize != payloadSize)
        return EchoKind::WrongLength;
    return message.payloadRight ? EchoKind::Reply : EchoKind::WrongPayload;
}

} // namespace

COutstandingEchoes::COutstandingEchoes() : probes_(sequenceNumbers) {}

EchoRequest COutstandingEchoes::add(std::shared_ptr<const EchoOrder> order, std::uint32_t address, Time now) {
    while (probes_[nextNumber_] != nullptr)
        ++nextNumber_;
    const std::uint16_t sequence = nextNumber_++;

    auto probe = std::make_unique<Probe>();
    probe->order = std::move(order);
    probe->address = address;
    startTimeout(*probe, sequence, now);
    const EchoOptions& options = probe->order->options;
    probe->token = options.payloadSize < echoTokenSize ? 0 : tokens_.next();
    const EchoRequest request{address, sequence, options.ttl, options.payloadSize, probe->token};
    probes_[sequence] = std::move(probe);
    return request;
}

/// Deadlines mostly come in rising order, and then the hint makes this as cheap as appending to a list.
void COutstandingEchoes::startTimeout(Probe& probe, std::uint16_t sequence, Time now) {
    probe.sentAt = now;
    const Time at = now + std::chrono::milliseconds(probe.order->options.timeoutMs);
    probe.deadline = deadlines_.emplace_hint(deadlines_.end(), at, sequence);
}

void COutstandingEchoes::noteLeft(std::uint16_t sequence, Time now) {
    Probe& probe = *probes_[sequence];
    probe.left = true;
    if (probe.sentAt == now)
        return;
    deadlines_.erase(probe.deadline);
    startTimeout(probe, sequence, now);
}

bool COutstandingEchoes::waitsToLeave(std::uint16_t sequence) const {
    return probes_[sequence] != nullptr && !probes_[sequence]->left;
}

EndedEcho COutstandingEchoes::end(std::uint16_t sequence, EchoKind kind) {
    const auto probe = std::move(probes_[sequence]);
    deadlines_.erase(probe->deadline);
    EndedEcho ended{std::move(probe->order), {}};
    ended.result.kind = kind;
    ended.result.target = probe->address;
    return ended;
}

/// A reply that was cut before its number ended can still be told by its sender.
bool COutstandingEchoes::isAbout(const Probe& probe, const EchoMessage& message) {
    const bool fromTarget = message.requestTarget == probe.address;
    if (!message.isReply || probe.token == 0 || message.payloadSize < echoTokenSize)
        return fromTarget;
    return message.token == probe.token;
}

std::optional<EndedEcho> COutstandingEchoes::match(const EchoArrival& arrival) {
    const EchoMessage& message = arrival.message;
    const Probe* waiting = probes_[message.sequence].get();
    if (waiting == nullptr || !isAbout(*waiting, message))
        return std::nullopt;
    const Time sentAt = waiting->sentAt;
    EndedEcho ended = end(message.sequence, judge(message, waiting->order->options.payloadSize));
    ended.result.reporter = message.source;
    if (message.isReply) {
        ended.result.roundTrip = std::max(arrival.at - sentAt, Time::duration::zero());
    } else {
        ended.result.icmpType = message.type;
        ended.result.icmpCode = message.code;
    }
    return ended;
}

EndedEcho COutstandingEchoes::fail(std::uint16_t sequence, int error) {
    EndedEcho ended = end(sequence, EchoKind::SendFailed);
    ended.result.systemError = error;
    return ended;
}

std::optional<EndedEcho> COutstandingEchoes::expireOne(Time now) {
    if (deadlines_.empty() || deadlines_.begin()->first > now)
        return std::nullopt;
    const std::uint16_t sequence = deadlines_.begin()->second;
    return end(sequence, probes_[sequence]->left ? EchoKind::TimedOut : EchoKind::SendFailed);
}

std::optional<EndedEcho> COutstandingEchoes::stopOne() {
    if (deadlines_.empty())
        return std::nullopt;
    return end(deadlines_.begin()->second, EchoKind::Stopped);
}

std::optional<COutstandingEchoes::Time> COutstandingEchoes::nextDeadline() const {
    return deadlines_.empty() ? std::nullopt : std::optional(deadlines_.begin()->first);
}

} // namespace mirovane
