#include "discover/sweep/SweepNames.h"

#include <arpa/inet.h>

namespace mirovane {

namespace {

/// Look-ups at once while the name system does not answer: those that hang occupy threads of the resolver.
constexpr std::size_t mostWhileSilent = 2;

} // namespace

std::vector<FoundHost> CSweepNames::take(Time now) {
    std::vector<FoundHost> named;
    for (Answer& answer : inbox_->take()) {
        lastSign_ = now;
        limit_ = mostAtOnce;
        ++answered_;
        if (answer.round == round_)
            --pending_;
        if (answer.name && !answer.name->empty())
            named.push_back({hosts_[answer.host], std::move(*answer.name)});
    }
    return named;
}

void CSweepNames::goOn(Time now, bool probing) {
    if (pending_ > 0 && now - lastSign_ >= patience)
        giveUp(probing);
    while (pending_ < limit_ && begun_ < hosts_.size()) {
        if (pending_++ == 0)
            lastSign_ = now;
        probes_.startNameLookUp(htonl(hosts_[begun_]), [inbox = inbox_, host = begun_,
                                                        round = round_](std::optional<std::string> name) {
            inbox->put({host, round, std::move(name)});
        });
        ++begun_;
    }
}

void CSweepNames::giveUp(bool probing) {
    ++round_;
    pending_ = 0;
    limit_ = mostWhileSilent;
    if (!probing)
        begun_ = hosts_.size();
}

} // namespace mirovane
