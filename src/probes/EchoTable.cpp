#include "probes/EchoTable.h"

#include <algorithm>
#include <netinet/ip_icmp.h>

namespace mirovane {

namespace {

// An id carries the sequence number that its probe got at once, so that a cancel finds it without a search.
constexpr unsigned numberBits = 16;
constexpr ProbeId numberMask = 0xffff;

constexpr auto later = [](const auto& a, const auto& b) {
    return a.at > b.at;
};

EchoKind judge(const EchoMessage& message, std::uint8_t payloadSize) {
    if (!message.isReply) {
        return message.type == ICMP_TIME_EXCEEDED ? EchoKind::TtlExpired : EchoKind::Unreachable;
    }
    if (message.payloadSize != payloadSize) {
        return EchoKind::WrongLength;
    }
    return message.payloadRight ? EchoKind::Reply : EchoKind::WrongPayload;
}

} // namespace

EchoTable::EchoTable(std::size_t capacity) : probes_(std::min<std::size_t>(capacity, numberMask + 1)) {}

EchoTable::Added EchoTable::add(std::uint32_t address, const EchoOptions& options,
                                std::shared_ptr<const EchoCallback> callback, Time now, bool mayLeave) {
    auto probe = std::make_unique<Probe>();
    probe->address = address;
    probe->options = options;
    probe->callback = std::move(callback);
    const ProbeId serial = nextSerial_++ << numberBits;
    if (!mayLeave || !canAdmit() || !line_.empty()) {
        probe->id = serial;
        line_.push_back(std::move(probe));
        return {serial, std::nullopt};
    }
    Probe& placed = *probe;
    const EchoRequest request = place(std::move(probe), now);
    placed.id = serial | request.sequence;
    dues_.back().id = placed.id;
    std::push_heap(dues_.begin(), dues_.end(), later);
    return {placed.id, request};
}

/// Leaves the probe's deadline at the end of the heap's vector, not yet pushed.
EchoRequest EchoTable::place(std::unique_ptr<Probe> probe, Time now) {
    forgetEndedDeadlines();
    const std::uint16_t sequence = takeNumber();
    probe->sentAt = now;
    dues_.push_back({now + std::chrono::milliseconds(probe->options.timeoutMs), probe->id, sequence});
    const EchoRequest request{probe->address, sequence, probe->options.ttl, probe->options.payloadSize};
    probes_[sequence] = std::move(probe);
    ++inFlight_;
    return request;
}

std::uint16_t EchoTable::takeNumber() {
    while (probes_[nextNumber_] != nullptr) {
        nextNumber_ = (nextNumber_ + 1) % probes_.size();
    }
    const auto number = static_cast<std::uint16_t>(nextNumber_);
    nextNumber_ = (nextNumber_ + 1) % probes_.size();
    return number;
}

std::optional<EchoRequest> EchoTable::admitOne(Time now) {
    if (line_.empty() || !canAdmit()) {
        return std::nullopt;
    }
    auto probe = std::move(line_.front());
    line_.pop_front();
    const ProbeId id = probe->id;
    const EchoRequest request = place(std::move(probe), now);
    std::push_heap(dues_.begin(), dues_.end(), later);
    admitted_[id] = request.sequence;
    return request;
}

std::unique_ptr<EchoTable::Probe> EchoTable::remove(std::uint16_t sequence) {
    std::unique_ptr<Probe> probe = std::move(probes_[sequence]);
    --inFlight_;
    if (!admitted_.empty()) {
        admitted_.erase(probe->id);
    }
    return probe;
}

std::unique_ptr<EchoTable::Probe> EchoTable::find(ProbeId id) {
    const std::size_t number = id & numberMask;
    if (number < probes_.size() && probes_[number] != nullptr && probes_[number]->id == id) {
        return remove(static_cast<std::uint16_t>(number));
    }
    if (const auto admitted = admitted_.find(id); admitted != admitted_.end()) {
        return remove(admitted->second);
    }
    const auto waiting =
        std::find_if(line_.begin(), line_.end(), [id](const auto& probe) { return probe->id == id; });
    if (waiting == line_.end()) {
        return nullptr;
    }
    auto probe = std::move(*waiting);
    line_.erase(waiting);
    return probe;
}

EchoCompletion EchoTable::complete(const Probe& probe, EchoKind kind) {
    EchoCompletion completion;
    completion.callback = probe.callback;
    completion.result.kind = kind;
    completion.result.target = probe.address;
    return completion;
}

std::optional<EchoCompletion> EchoTable::match(const EchoArrival& arrival) {
    const EchoMessage& message = arrival.message;
    if (message.sequence >= probes_.size()) {
        return std::nullopt;
    }
    const Probe* waiting = probes_[message.sequence].get();
    if (waiting == nullptr || waiting->address != message.requestTarget) {
        return std::nullopt;
    }
    const auto probe = remove(message.sequence);
    EchoCompletion completion = complete(*probe, judge(message, probe->options.payloadSize));
    completion.result.reporter = message.source;
    if (message.isReply) {
        completion.result.roundTrip = std::max(arrival.at - probe->sentAt, Time::duration::zero());
    } else {
        completion.result.icmpType = message.type;
        completion.result.icmpCode = message.code;
    }
    return completion;
}

std::optional<EchoCompletion> EchoTable::end(ProbeId id, EchoKind kind, int systemError) {
    const auto probe = find(id);
    if (!probe) {
        return std::nullopt;
    }
    EchoCompletion completion = complete(*probe, kind);
    completion.result.systemError = systemError;
    return completion;
}

bool EchoTable::stillDue(const Due& due) const {
    const auto& probe = probes_[due.sequence];
    return probe != nullptr && probe->id == due.id;
}

std::optional<EchoCompletion> EchoTable::expireOne(Time now) {
    const auto deadline = nextDeadline();
    if (!deadline || *deadline > now) {
        return std::nullopt;
    }
    const auto probe = remove(dues_.front().sequence);
    EchoCompletion completion =
        complete(*probe, probe->refusal == 0 ? EchoKind::TimedOut : EchoKind::SendFailed);
    completion.result.systemError = probe->refusal;
    return completion;
}

std::optional<EchoCompletion> EchoTable::endAny() {
    if (!line_.empty()) {
        const auto probe = std::move(line_.front());
        line_.pop_front();
        return complete(*probe, EchoKind::Stopped);
    }
    if (!nextDeadline()) {
        return std::nullopt;
    }
    return complete(*remove(dues_.front().sequence), EchoKind::Stopped);
}

bool EchoTable::noteSending(ProbeId id, std::uint16_t sequence, Time now, int refusal) {
    Probe* probe = probes_[sequence].get();
    if (probe == nullptr || probe->id != id) {
        return false;
    }
    probe->sentAt = now;
    probe->refusal = refusal;
    return true;
}

ProbeId EchoTable::holder(std::uint16_t sequence) const {
    const auto& probe = probes_[sequence];
    return probe == nullptr ? 0 : probe->id;
}

std::optional<EchoTable::Time> EchoTable::nextDeadline() {
    while (!dues_.empty() && !stillDue(dues_.front())) {
        std::pop_heap(dues_.begin(), dues_.end(), later);
        dues_.pop_back();
    }
    return dues_.empty() ? std::nullopt : std::optional(dues_.front().at);
}

/// Most probes are answered long before their deadline. Sweeping the heap when it has grown to twice what is
/// in flight keeps it small at a constant cost per probe.
void EchoTable::forgetEndedDeadlines() {
    constexpr std::size_t small = 4096;
    if (dues_.size() < small + 2 * inFlight_) {
        return;
    }
    std::erase_if(dues_, [this](const Due& due) { return !stillDue(due); });
    std::make_heap(dues_.begin(), dues_.end(), later);
}

} // namespace mirovane
