#include "livestat/schedule/DeviceSteps.h"

#include "livestat/steps/Engine.h"
#include "livestat/steps/Outcome.h"

namespace mirovane {

namespace {

/// A stamp has whole seconds. What a writer adds later within the second in which the file was searched would
/// never be found; a clock of a file server that is a little fast makes that second longer.
bool mayChangeUnseen(TimeStamp fileStamp, TimeStamp searchBegan) {
    constexpr std::int64_t fastestClock = 2;
    const std::int64_t age = std::int64_t{searchBegan} - fileStamp;
    return age <= 0 && age >= -fastestClock;
}

} // namespace

std::optional<int> CDeviceSteps::nextRow(const CHardware& device, int from) const {
    if (heldType_ && floorCode(device.Type) == *heldType_)
        return std::nullopt;
    for (int row = from; row < criteriaRowCount; ++row) {
        const CHardware* record = document_.criteria(device.Type, row);
        if (record && rowCounts(device, row, criteriaFromRecord(*record)))
            return row;
    }
    return std::nullopt;
}

StepInput CDeviceSteps::input(const CHardware& device, int row) {
    StepInput input;
    input.device = device;
    if (searchAgain_.contains({device.RecID, row}))
        input.device.RuleStamps[static_cast<std::size_t>(row)] = 0;
    input.row = row;
    input.confirmOff = confirmOff_;
    input.number = ++steps_;
    input.criteria = criteriaFromRecord(*document_.criteria(device.Type, row));
    if (input.criteria.Command == Action::MatchToJack)
        input.matchedState = jacks_.stateAtJack(device.ToJack);
    input.computerName = document_.station().computerName;
    return input;
}

void CDeviceSteps::takeBack(JobSlot& slot, const StepJob& job) {
    const CHardware* device = document_.findDevice(*slot.recID);
    if (!device) {
        slot.row = JobSlot::goneRow;
        return;
    }
    const CHardware* criteria = document_.criteria(device->Type, slot.row);
    if (job.outcome.cancelled || !criteria ||
        !stillHolds(job.input, *device, criteriaFromRecord(*criteria))) {
        --slot.row;
        return;
    }
    outages_.note({device->RecID, slot.row}, job.input, job.outcome);
    if (!job.outcome.brokenPattern.empty())
        reportBrokenPattern(job);
    noteSearch(slot, job);
    if (slot.row > 0 && job.outcome.acted)
        finds_.note(*slot.recID, slot.row, {document_.now(), !job.outcome.failed, job.outcome.result});
    CHardware after = *device;
    const Applied applied = applyOutcome(after, job.input, job.outcome, document_.now());
    if (applied == Applied::Nothing)
        return;
    if (const auto line = found_.replace(*device, after, slot.row))
        log_.LogLasting(*line);
    document_.editInBackground(*device, [&after](CHardware& record) { record = std::move(after); });
    changed_ = changed_ || applied == Applied::Change;
}

void CDeviceSteps::noteSearch(const JobSlot& slot, const StepJob& job) {
    const DeviceRow searched{*slot.recID, slot.row};
    if (!job.outcome.fileStamp)
        return;
    if (mayChangeUnseen(*job.outcome.fileStamp, slot.stepBegan))
        searchAgain_.insert(searched);
    else
        searchAgain_.erase(searched);
}

/// Once for each text: a row whose pattern is broken fails for every device of its type.
void CDeviceSteps::reportBrokenPattern(const StepJob& job) {
    const CriteriaRow& criteria = job.input.criteria;
    if (!brokenPatterns_.insert(criteria.SearchFor).second)
        return;
    log_.LogTrouble("Live Stat criteria of " + std::string(typeName(job.input.device.Type)) + ", row " +
                    std::string(criteriaRowLabel(job.input.row)) + ": \"" + criteria.SearchFor +
                    "\" is not a valid pattern (" + job.outcome.brokenPattern + ") and matches nothing.");
}

bool CDeviceSteps::isAsked(const DeviceRow& row) const {
    const CHardware* device = document_.findDevice(row.first);
    return device && nextRow(*device, row.second) == row.second;
}

void CDeviceSteps::forgetGoneOutages() {
    if (outages_.any())
        outages_.forget([this](const DeviceRow& row) { return isAsked(row); });
}

void CDeviceSteps::reset() {
    searchAgain_.clear();
    found_.clear();
    brokenPatterns_.clear();
    outages_.reset();
    finds_.clear();
    changed_ = false;
}

} // namespace mirovane
