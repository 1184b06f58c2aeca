#include "livestat/Discover.h"

#include "livestat/AddressRanges.h"
#include "livestat/FeatureOwner.h"

#include <limits>
#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds idlePeriod{300};
constexpr std::chrono::milliseconds knownPeriod{1000};
constexpr std::chrono::milliseconds probePeriod{5000};
constexpr std::chrono::milliseconds waitSlice{10};
constexpr std::chrono::minutes publishPeriod{10};
constexpr std::string_view outOfTimers = "System is out of timer resource!";
constexpr std::string_view disabledLine = "Live Discover disabled.";

/// Others may come in a datafile that another program wrote. They lead nowhere.
std::vector<const CHardware*> validRanges(const CMirovaneDoc& document) {
    auto ranges = discoverRanges(document);
    std::erase_if(ranges, [](const CHardware* range) { return !rangeOf(*range); });
    return ranges;
}

/// What follows the last address there is can be no address: the walk then leaves its range instead of
/// beginning at 0.0.0.0.
std::string nextText(std::uint32_t address) {
    return address == std::numeric_limits<std::uint32_t>::max() ? "256.0.0.0"
                                                                : formatRangeAddress(nextAddress(address));
}

bool answers(HostProbes& probes, const std::string& target, std::stop_token stop) {
    PingReply reply;
    std::optional<std::uint32_t> resolved;
    return probes.PingHost(target, reply, resolved, pingTtl, pingTimeoutMs, pingPayloadSize, std::move(stop));
}

} // namespace

CLiveDiscover::CLiveDiscover(CMirovaneDoc& document, HostProbes& probes, Workers& workers,
                             TimerFactory& timers, LiveDiscoverHost& host)
    : document_(document),
      probes_(probes),
      workers_(workers),
      host_(host),
      known_(document),
      timer_(timers.makeTimer([this] { tick(); })) {}

CLiveDiscover::~CLiveDiscover() {
    forgetProbe();
}

// ---- on and off

void CLiveDiscover::toggle() {
    if (enabled_)
        disable();
    else
        enable();
}

void CLiveDiscover::enable() {
    if (discoverRanges(document_).empty())
        return;
    // Proves before anything is written that the timer can be had.
    const bool wasActive = timer_->active();
    if (!wasActive && !timer_->start(probePeriod)) {
        host_.failUser(std::string(outOfTimers));
        return;
    }
    if (!FeatureOwner::takeOver(document_, Feature::LiveDiscover, host_)) {
        if (!wasActive)
            timer_->stop();
        return;
    }
    enabled_ = true;
    disabling_ = false;
    lastWalk_.reset();
    published_ = document_.clock().monotonic();
    reportedTrouble_.reset();
    arm(probePeriod);
    echoesFail();
    host_.indicatorsChanged();
}

void CLiveDiscover::disable() {
    enabled_ = false;
    disabling_ = true;
    document_.log().LogMessage("Live Discover is being disabled, please wait...", true);
    stopProbe();
    arm(idlePeriod);
    host_.indicatorsChanged();
}

void CLiveDiscover::disableNow() {
    if (enabled_)
        disable();
    if (!disabling_)
        return;
    while (probing()) {
        if (probe_->answered.wait_for(waitSlice) != std::future_status::ready)
            host_.waiting();
    }
    finishDisabling();
}

void CLiveDiscover::finishDisabling() {
    if (probe_ && (probe_->stop.stop_requested() || probe_->answered.get()))
        setWalk(probe_->before);
    forgetProbe();
    leaveOwner();
    timer_->stop();
    disabling_ = false;
    lastWalk_.reset();
    document_.log().LogMessage(disabledLine, true);
    host_.indicatorsChanged();
}

void CLiveDiscover::leaveOwner() {
    const Walk reached = walk();
    FeatureOwner::giveUp(document_, Feature::LiveDiscover, host_);
    // Where another station had saved in this very moment, its file brought an older place with it.
    if (walk() == reached || FeatureOwner::isElsewhere(document_, Feature::LiveDiscover))
        return;
    setWalk(reached);
    host_.saveDatafile({});
}

/// The user left Live Discover to another station: nothing is released, the record names that one.
void CLiveDiscover::stopHere() {
    const bool wasOn = enabled_;
    timer_->stop();
    forgetProbe();
    lastWalk_.reset();
    enabled_ = disabling_ = false;
    if (wasOn)
        document_.log().LogMessage(disabledLine, true);
    host_.indicatorsChanged();
}

void CLiveDiscover::reset() {
    timer_->stop();
    forgetProbe();
    lastWalk_.reset();
    place_ = 0;
    enabled_ = disabling_ = false;
    host_.indicatorsChanged();
}

void CLiveDiscover::afterReload() {
    if (!enabled_ && !disabling_)
        return;
    if (FeatureOwner::isHere(document_, Feature::LiveDiscover)) {
        if (lastWalk_)
            setWalk(Walk(*lastWalk_)); // the file's is as old as the last save
        return;
    }
    lastWalk_.reset(); // whoever walked meanwhile came further
    // Also when the record names nobody: the other station came and went while this one kept running.
    if (enabled_ && !FeatureOwner::takeOver(document_, Feature::LiveDiscover, host_))
        stopHere();
}

// ---- the walk

void CLiveDiscover::tick() {
    if (host_.holdsStill())
        return; // the timer goes on at its period
    arm(idlePeriod);
    if (probing())
        return;
    if (!enabled_) {
        finishDisabling();
        return;
    }
    if (!findAddress())
        return;
    // Adding a host saves, and the save may have found the file changed: other ranges, or another owner.
    if (takeAnswer() && !(enabled_ && findAddress()))
        return;
    probeNext();
}

/// Sees to it that the walk's next address lies in a range of the datafile. False when there is none.
bool CLiveDiscover::findAddress() {
    const auto ranges = validRanges(document_);
    if (ranges.empty()) {
        document_.log().LogMessage("Live Discover does not have IP range(s) to discover.", true);
        disable();
        return false;
    }
    const Walk now = walk();
    const auto current = placeOf(now, ranges);
    const auto next = parseRangeAddress(now.next);
    if (current && next && *next <= rangeOf(*ranges[*current])->to)
        place_ = *current;
    else
        moveTo(ranges, current && *current + 1 < ranges.size() ? *current + 1 : 0);
    return true;
}

void CLiveDiscover::moveTo(const std::vector<const CHardware*>& ranges, std::size_t place) {
    const CHardware& range = *ranges[place];
    place_ = place;
    setWalk({range.Name, range.IPAddress, range.Name});
}

/// Where the range being walked stands. The place it had last counts first: were a range that is listed twice
/// always found at its first place, the ranges behind its second one would never come up.
std::optional<std::size_t> CLiveDiscover::placeOf(const Walk& walk,
                                                  const std::vector<const CHardware*>& ranges) const {
    const auto isAt = [&](std::size_t place) {
        return ranges[place]->Name == walk.from && ranges[place]->IPAddress == walk.to;
    };
    if (place_ < ranges.size() && isAt(place_))
        return place_;
    for (std::size_t place = 0; place < ranges.size(); ++place) {
        if (isAt(place))
            return place;
    }
    return std::nullopt;
}

/// What the last ping brought. True when the datafile was saved for it.
bool CLiveDiscover::takeAnswer() {
    if (!probe_)
        return false;
    Probe probe = std::move(*probe_);
    probe_.reset();
    if (probe.stop.stop_requested()) { // switched off and on again meanwhile
        setWalk(probe.before);
        return false;
    }
    if (!probe.answered.get())
        return false;
    addHost(probe);
    return true;
}

void CLiveDiscover::addHost(const Probe& probe) {
    if (const CHardware* owner = FeatureOwner::record(document_, Feature::LiveDiscover))
        document_.editInBackground(*owner, [this](CHardware& held) { held.Modified = document_.now(); });
    if (known_.contains(probe.address))
        return; // somebody entered it while the ping was under way
    if (!addDiscoveredDevice(document_, probe.address))
        return;
    host_.deviceDiscovered();
    if (enabled_ && !known_.contains(probe.address))
        setWalk(probe.before); // lost with what another station's save replaced
}

void CLiveDiscover::probeNext() {
    const Walk now = walk();
    const auto address = parseRangeAddress(now.next);
    if (!address)
        return;
    if (known_.contains(*address)) {
        setWalk({now.from, now.to, nextText(*address)});
        publishSometimes();
        arm(knownPeriod);
        return;
    }
    arm(probePeriod);
    // Going on would pass over living hosts without a sound.
    if (echoesFail() || !startProbe(now, *address))
        return;
    setWalk({now.from, now.to, nextText(*address)});
    publishSometimes();
    document_.log().LogMessage("Live Discover Enabled: Pinging" + formatRangeAddress(*address));
}

/// False when the system gives no thread for it.
bool CLiveDiscover::startProbe(const Walk& walk, std::uint32_t address) {
    Probe probe{walk, address, {}, {}};
    // The worker's own share of the promise: it may end after this object.
    const auto answer = std::make_shared<std::promise<bool>>();
    probe.answered = answer->get_future();
    const bool started =
        workers_.start([answer, target = formatRangeAddress(address), stop = probe.stop.get_token(),
                        &probes = probes_] { answer->set_value(answers(probes, target, stop)); });
    if (started)
        probe_ = std::move(probe);
    else
        document_.log().LogMessage("Live Discover cannot start a thread; raise the limit of processes.");
    return started;
}

// ---- small things

bool CLiveDiscover::probing() const {
    return probe_ && probe_->answered.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
}

/// One that has ended needs no second try.
void CLiveDiscover::stopProbe() {
    if (probing())
        probe_->stop.request_stop();
}

void CLiveDiscover::forgetProbe() {
    if (probe_)
        probe_->stop.request_stop();
    probe_.reset();
}

CLiveDiscover::Walk CLiveDiscover::walk() const {
    const CHardware* owner = FeatureOwner::record(document_, Feature::LiveDiscover);
    return owner ? Walk{owner->MACAddress, owner->Comment, owner->IPAddress} : Walk{};
}

void CLiveDiscover::setWalk(const Walk& walk) {
    lastWalk_ = walk;
    if (const CHardware* owner = FeatureOwner::record(document_, Feature::LiveDiscover)) {
        document_.editInBackground(*owner, [&walk](CHardware& held) {
            held.MACAddress = walk.from;
            held.Comment = walk.to;
            held.IPAddress = walk.next;
        });
    }
}

void CLiveDiscover::publishSometimes() {
    const auto now = document_.clock().monotonic();
    if (now - published_ < publishPeriod)
        return;
    published_ = now;
    document_.setPendingChanges(true);
}

/// Says once why no echo can be sent here.
bool CLiveDiscover::echoesFail() {
    const auto trouble = probes_.echoUnusable();
    if (trouble && trouble != reportedTrouble_)
        document_.log().LogMessage(*trouble, true);
    reportedTrouble_ = trouble;
    return trouble.has_value();
}

void CLiveDiscover::arm(std::chrono::milliseconds period) {
    if (!timer_->start(period))
        document_.log().LogMessage(outOfTimers, true);
}

} // namespace mirovane
