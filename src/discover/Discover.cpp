#include "discover/Discover.h"

#include "discover/AddressRanges.h"

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds idlePeriod{300};
constexpr std::chrono::milliseconds knownPeriod{1000};
constexpr std::chrono::milliseconds probePeriod{5000};
constexpr std::chrono::minutes publishPeriod{10};

/// An address that nobody may ping, such as a network's own, must not end the walk.
constexpr int mostTries = 12;

} // namespace

CLiveDiscover::CLiveDiscover(const FeatureServices& services, CFeatureOwnership& ownership,
                             HostProbes& probes, Workers& workers, LiveDiscoverHost& host)
    : document_(services.document),
      log_(services.log),
      clock_(services.clock),
      probes_(probes),
      host_(host),
      timer_(services.timers.makeTimer([this] { tick(); })),
      switch_(ownership, *timer_, host, log_),
      known_(document_),
      walk_(document_),
      ping_(probes, workers) {}

CLiveDiscover::~CLiveDiscover() = default;

// ---- on and off

std::optional<StartRefusal> CLiveDiscover::toggle() {
    if (!switch_.on())
        return enable();
    disable();
    return std::nullopt;
}

std::optional<StartRefusal> CLiveDiscover::enable() {
    if (discoverRanges(document_).empty())
        return StartRefusal{StartRefusal::Kind::NoRanges, {}};
    if (auto refusal = switch_.turnOn(probePeriod))
        return refusal;
    walk_.forget();
    published_ = clock_.monotonic();
    reportedTrouble_.reset();
    echoesFail();
    host_.indicatorsChanged();
    return std::nullopt;
}

void CLiveDiscover::disable() {
    switch_.turnOff();
    ping_.stop();
    switch_.arm(idlePeriod);
    host_.indicatorsChanged();
}

void CLiveDiscover::disableNow() {
    if (switch_.on())
        disable();
    if (!switch_.goingOff())
        return;
    ping_.wait();
    finishDisabling();
}

/// A host that answered just now is not added any more: its address is pinged again.
void CLiveDiscover::finishDisabling() {
    if (const auto answer = ping_.take(); answer && answer->kind != CAddressPing::Answer::Kind::Silent)
        walk_.goTo(beforePing_);
    releaseOwner();
    switch_.finish();
    walk_.forget();
    host_.indicatorsChanged();
}

void CLiveDiscover::releaseOwner() {
    const CDiscoverWalk::Place reached = walk_.place();
    switch_.release();
    // Where another station had saved in this very moment, its file brought an older place with it.
    if (walk_.place() == reached || FeatureOwner::isElsewhere(document_, Feature::LiveDiscover))
        return;
    walk_.goTo(reached);
    host_.saveNow(SaveNote::None);
}

void CLiveDiscover::reset() {
    switch_.cut();
    ping_.forget();
    walk_.reset();
    host_.indicatorsChanged();
}

void CLiveDiscover::afterReload() {
    if (switch_.state() == CFeatureSwitch::State::Off)
        return;
    if (switch_.isHere()) {
        walk_.restore();
        return;
    }
    walk_.forget(); // whoever walked meanwhile came further
    if (!switch_.on() || switch_.keep())
        return;
    ping_.forget();
    walk_.forget();
    host_.indicatorsChanged();
}

// ---- the walk

void CLiveDiscover::tick() {
    if (host_.holdsStill())
        return; // the timer goes on at its period
    switch_.arm(idlePeriod);
    if (ping_.inFlight())
        return;
    if (!switch_.on()) {
        finishDisabling();
        return;
    }
    if (!findAddress())
        return;
    // Adding a host saves, and the save may have found the file changed: other ranges, or another owner.
    if (takeAnswer() && !(switch_.on() && findAddress()))
        return;
    probeNext();
}

bool CLiveDiscover::findAddress() {
    if (walk_.findAddress())
        return true;
    log_.LogMessage("Live Discover does not have IP range(s) to discover.", true);
    disable();
    return false;
}

/// What the last ping brought. True when the datafile was saved for it.
bool CLiveDiscover::takeAnswer() {
    const auto answer = ping_.take();
    if (!answer)
        return false;
    using Kind = CAddressPing::Answer::Kind;
    const bool notAsked = answer->kind == Kind::NotAsked;
    tries_ = notAsked ? tries_ + 1 : 0;
    // Nobody knows whether it is there: stopped, or this computer is ill.
    if (answer->kind == Kind::Stopped || (notAsked && tries_ % mostTries != 0))
        walk_.goTo(beforePing_);
    if (notAsked)
        reportTrouble("Live Discover cannot ping " + formatRangeAddress(answer->address) + ": " +
                      answer->why);
    else
        reportedTrouble_.reset();
    if (answer->kind != Kind::Answered)
        return false;
    addHost(answer->address);
    return true;
}

void CLiveDiscover::addHost(std::uint32_t address) {
    if (const CHardware* owner = FeatureOwner::record(document_, Feature::LiveDiscover))
        document_.editInBackground(*owner, [this](CHardware& held) { held.Modified = document_.now(); });
    if (known_.contains(address))
        return; // somebody entered it while the ping was under way
    if (!addDiscoveredDevice(document_, address))
        return;
    log_.LogMessage("Discover added a new device");
    host_.deviceDiscovered();
    if (switch_.on() && !known_.contains(address))
        walk_.goTo(beforePing_); // lost with what another station's save replaced
}

void CLiveDiscover::probeNext() {
    const auto address = walk_.address();
    if (!address)
        return;
    if (known_.contains(*address)) {
        walk_.moveOn();
        publishSometimes();
        switch_.arm(knownPeriod);
        return;
    }
    switch_.arm(probePeriod);
    if (echoesFail())
        return; // going on would pass over living hosts without a sound
    if (!ping_.start(*address)) {
        log_.LogTrouble("Live Discover cannot start a thread; raise the limit of processes.");
        return;
    }
    beforePing_ = walk_.place();
    walk_.moveOn();
    publishSometimes();
    log_.LogMessage("Live Discover Enabled: Pinging" + formatRangeAddress(*address));
}

void CLiveDiscover::publishSometimes() {
    const auto now = clock_.monotonic();
    if (now - published_ < publishPeriod)
        return;
    published_ = now;
    host_.changesPending();
}

bool CLiveDiscover::echoesFail() {
    const auto trouble = probes_.echoUnusable();
    if (trouble)
        reportTrouble(*trouble);
    return trouble.has_value();
}

/// Once, however often the walk meets it.
void CLiveDiscover::reportTrouble(const std::string& trouble) {
    if (trouble != reportedTrouble_)
        log_.LogTrouble(trouble, true);
    reportedTrouble_ = trouble;
}

} // namespace mirovane
