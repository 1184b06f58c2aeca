#include "livestat/schedule/Outages.h"

#include <algorithm>

namespace mirovane {

namespace {

std::string_view asked(AskedThrough through) {
    switch (through) {
    case AskedThrough::NameService:
        return "look up names";
    case AskedThrough::Echo:
        return "send pings";
    case AskedThrough::Snmp:
        return "send SNMP queries";
    case AskedThrough::Registry:
        return "read the registry of other computers";
    case AskedThrough::File:
        break;
    }
    return "read files";
}

} // namespace

void COutages::note(const DeviceRow& row, const StepInput& input, const StepOutcome& outcome) {
    newest_ = std::max(newest_, input.number);
    if (!outcome.notAsked)
        end(row);
    else if (input.number > over_[outcome.notAsked->through])
        begin(row, *outcome.notAsked);
}

void COutages::begin(const DeviceRow& row, const NotAsked& notAsked) {
    const auto same = [&notAsked](const Outage& outage) {
        return outage.through == notAsked.through && outage.why == notAsked.why;
    };
    const auto found = std::find_if(open_.begin(), open_.end(), same);
    if (found != open_.end()) {
        found->waiting.insert(row);
        return;
    }
    log_.LogTrouble("Live Stat cannot " + std::string(asked(notAsked.through)) + " (" + notAsked.about +
                        ": " + notAsked.why + "). What depends on it stays as it is.",
                    true);
    open_.push_back({notAsked.through, notAsked.why, {row}});
}

/// Steps that began before the outage was over may still come back without an answer; they begin no new one.
void COutages::end(const DeviceRow& row) {
    std::erase_if(
        open_,
        [&](const Outage& outage) {
            if (!outage.waiting.contains(row))
                return false;
            over_[outage.through] = newest_;
            log_.LogMessage("Live Stat can " + std::string(asked(outage.through)) + " again (" + outage.why +
                                ": no longer).",
                            true);
            return true;
        });
}

void COutages::forget(const std::function<bool(const DeviceRow&)>& stays) {
    for (Outage& outage : open_)
        std::erase_if(
            outage.waiting, [&stays](const DeviceRow& row) { return !stays(row); });
    std::erase_if(open_, [](const Outage& outage) { return outage.waiting.empty(); });
}

void COutages::reset() {
    open_.clear();
    over_.clear();
}

} // namespace mirovane
