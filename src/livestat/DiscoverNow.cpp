#include "livestat/DiscoverNow.h"

#include "livestat/DiscoveredDevice.h"
#include "livestat/FeatureOwner.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds pollPeriod{100};

/// Longer than anybody waits who did not mean it.
constexpr std::chrono::minutes longSweep{10};

/// Each try loses against a station that saved in the very moment.
constexpr int saveTries = 3;

std::string counted(std::uint64_t number, const char* one, const char* many) {
    return groupedNumber(number) + " " + (number == 1 ? one : many);
}

std::string whatBecameOfThem(const SweepResult& result) {
    if (!result.kept)
        return ", nothing was added.";
    const std::size_t found = result.progress.found;
    if (result.added.size() == found)
        return found == 1 ? ", added to the Discovered/Misc window."
                          : ", all added to the Discovered/Misc window.";
    std::string text = ", " + groupedNumber(result.added.size()) + " added to the Discovered/Misc window.";
    if (result.alreadyKnown > 0)
        text += " " + groupedNumber(result.alreadyKnown) + " had become known meanwhile.";
    return text;
}

} // namespace

int readSweepRate(const CSettings& settings) {
    const std::int32_t rate = settings.read(sweepRateSetting, usualSweepRate);
    return rate >= leastSweepRate ? std::min(rate, mostSweepRate) : usualSweepRate;
}

Result<SweepPlan, std::string> planSweep(const CMirovaneDoc& document) {
    std::vector<AddressRange> ranges;
    for (const CHardware* record : discoverRanges(document)) {
        const auto range = rangeOf(*record);
        if (!range)
            return std::string(invalidRangeText) + " (From \"" + record->Name + "\" To \"" +
                   record->IPAddress + "\").";
        ranges.push_back(*range);
    }
    if (ranges.empty())
        return std::string("Live Discover does not have IP range(s) to discover.");
    std::vector<std::uint32_t> known;
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (const auto address = deviceAddress(document.at(i)))
            known.push_back(*address);
    }
    SweepPlan plan(std::move(ranges), std::move(known));
    if (plan.toProbe() == 0)
        return std::string("Every address of the ranges belongs to a device already.");
    return plan;
}

std::optional<std::string> sweepWarning(const SweepPlan& plan, int perSecond) {
    const auto takes = sweepDuration(plan.toProbe(), perSecond);
    if (takes < longSweep)
        return std::nullopt;
    return "The ranges hold " + groupedNumber(plan.addresses()) + " addresses. At " +
           groupedNumber(static_cast<std::uint64_t>(perSecond)) + " probes a second that takes about " +
           describeDuration(takes) + ".";
}

std::string describeResult(const SweepResult& result) {
    const SweepProgress& progress = result.progress;
    std::string text = result.complete ? "Asked " + counted(progress.sent, "address", "addresses")
                                       : "Stopped after " + groupedNumber(progress.sent) + " of " +
                                             counted(progress.total, "address", "addresses");
    if (progress.found == 0)
        text += ": no host answered.";
    else
        text += ": " + counted(progress.found, "host", "hosts") + " answered" + whatBecameOfThem(result);
    if (result.takenOver)
        text += " Another station runs Live Discover now.";
    if (result.datafileFull)
        text += " The datafile is full.";
    if (result.saveFailed)
        text += " The datafile could not be saved; the message log says why.";
    const std::string failures = describeFailures(progress);
    return failures.empty() ? text : text + " " + failures;
}

CDiscoverNow::CDiscoverNow(CMirovaneDoc& document, SweepProbes& probes, TimerFactory& timers,
                           DiscoverNowHost& host)
    : document_(document), probes_(probes), host_(host), timer_(timers.makeTimer([this] { tick(); })) {}

CDiscoverNow::~CDiscoverNow() = default;

std::optional<std::string> CDiscoverNow::start(int perSecond) {
    if (running())
        return "Discover Now runs already.";
    if (const auto plan = planSweep(document_); !plan)
        return plan.error();
    if (auto reason = probes_.echoUnusable())
        return reason;
    ownedBefore_ = FeatureOwner::isHere(document_, Feature::LiveDiscover);
    if (!ownedBefore_ && !FeatureOwner::takeOver(document_, Feature::LiveDiscover, host_))
        return std::string();
    auto plan =
        planSweep(document_); // anew: while the question stood there the file may have been read again
    if (!plan) {
        releaseOwner();
        return plan.error();
    }
    if (!timer_->start(pollPeriod)) {
        releaseOwner();
        return "System is out of timer resource!";
    }
    SweepOptions options;
    options.perSecond = perSecond;
    options.mostFound = Datafile::maxRecords - std::min(Datafile::maxRecords, document_.size());
    found_.clear();
    places_.clear();
    result_.reset();
    ending_.reset();
    takenOver_ = false;
    document_.log().LogMessage(
        "Discover Now: asking " + counted(plan.value().toProbe(), "address", "addresses") + ".", true);
    sweep_ = std::make_unique<CSweep>(std::move(plan.value()), options, probes_, document_.clock());
    progress_ = sweep_->progress();
    if (onRunning)
        onRunning();
    return std::nullopt;
}

void CDiscoverNow::end(Found found) {
    if (!running())
        return;
    if (!ending_)
        ending_ = found;
    sweep_->stop();
    if (!host_.holdsStill())
        finish();
}

void CDiscoverNow::endNow() {
    if (!running())
        return;
    ending_ = ending_.value_or(Found::Keep);
    finish();
}

void CDiscoverNow::afterReload() {
    if (!running() || !FeatureOwner::isElsewhere(document_, Feature::LiveDiscover))
        return;
    // Where Live Discover runs here as well, it has asked already; then the answer was No.
    if (!host_.liveDiscoverRuns() && FeatureOwner::takeOver(document_, Feature::LiveDiscover, host_))
        return;
    takenOver_ = true;
    end(Found::Keep);
}

void CDiscoverNow::tick() {
    if (!running())
        return;
    takeNews();
    if ((ending_ || sweep_->over()) && !host_.holdsStill())
        finish();
}

void CDiscoverNow::takeNews() {
    std::vector<std::size_t> changed;
    progress_ = sweep_->progress();
    for (FoundHost& host : sweep_->takeNews()) {
        const auto [place, fresh] = places_.try_emplace(host.address, found_.size());
        changed.push_back(place->second);
        if (fresh)
            found_.push_back(std::move(host));
        else
            found_[place->second].name = std::move(host.name);
    }
    progress_.found = found_.size();
    if (onProgress)
        onProgress(changed);
}

void CDiscoverNow::finish() {
    timer_->stop();
    SweepResult result;
    result.complete = !ending_ && !progress_.full;
    sweep_->stop();
    takeNews();
    result.progress = progress_;
    result.kept = ending_ != Found::Discard;
    result.takenOver = takenOver_;
    sweep_.reset(); // before questions that a save may lead to
    if (result.kept && !found_.empty())
        addFound(result);
    else
        releaseOwner();
    document_.log().LogMessage("Discover Now: " + describeResult(result), true);
    result_ = std::move(result);
    if (result_->kept && !result_->added.empty())
        host_.redraw();
    if (onRunning)
        onRunning();
}

/// Adding again after a reload adds only what is still missing.
void CDiscoverNow::addFound(SweepResult& result) {
    std::vector<FoundHost> hosts = found_;
    std::sort(hosts.begin(), hosts.end(),
              [](const FoundHost& a, const FoundHost& b) { return a.address < b.address; });
    for (int i = 0; i < saveTries; ++i) {
        addOnce(hosts, result);
        if (shallRelease())
            FeatureOwner::release(document_, Feature::LiveDiscover);
        const SaveResult saved = host_.saveDatafile("Discover Now ");
        result.saveFailed = saved != SaveResult::Saved;
        if (saved != SaveResult::Reloaded)
            break;
    }
    // A save that met another station's may have given them other numbers.
    const auto there = stillThere(result.added);
    for (SweepResult::Added& one : result.added) {
        if (const auto survivor = there.find(one.host.address); survivor != there.end())
            one.recID = survivor->second;
    }
}

void CDiscoverNow::addOnce(const std::vector<FoundHost>& hosts, SweepResult& result) {
    const auto survivors = stillThere(result.added);
    result.alreadyKnown = 0;
    result.added.clear();
    CKnownAddresses known(document_);
    for (const FoundHost& host : hosts) {
        if (const auto survivor = survivors.find(host.address); survivor != survivors.end()) {
            result.added.push_back({survivor->second, host});
            continue;
        }
        if (known.contains(host.address)) {
            ++result.alreadyKnown;
            continue;
        }
        const CHardware* device = addDiscoveredDevice(document_, host.address, host.name);
        if (!device) {
            result.datafileFull = true;
            return;
        }
        result.added.push_back({device->RecID, host});
    }
}

/// Which of the devices that were added are in the document, by address: a reload may have kept them, maybe
/// under other record IDs.
std::unordered_map<std::uint32_t, std::int32_t>
CDiscoverNow::stillThere(const std::vector<SweepResult::Added>& added) const {
    std::unordered_map<std::uint32_t, std::int32_t> there;
    if (added.empty())
        return there;
    for (const SweepResult::Added& one : added)
        there.emplace(one.host.address, 0);
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        const auto address = deviceAddress(record);
        const auto place = address ? there.find(*address) : there.end();
        if (place != there.end() && place->second == 0 && record.inDiscovered())
            place->second = record.RecID;
    }
    std::erase_if(there, [](const auto& entry) { return entry.second == 0; });
    return there;
}

/// Not while Live Discover goes on here, and not what was on before: another program of the same user on this
/// computer may run it.
bool CDiscoverNow::shallRelease() const {
    return !ownedBefore_ && !host_.liveDiscoverRuns() &&
           FeatureOwner::isHere(document_, Feature::LiveDiscover);
}

void CDiscoverNow::releaseOwner() {
    if (shallRelease())
        FeatureOwner::giveUp(document_, Feature::LiveDiscover, host_);
}

} // namespace mirovane
