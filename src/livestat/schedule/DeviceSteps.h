#pragma once

#include "livestat/schedule/FoundValues.h"
#include "livestat/schedule/JobSlots.h"
#include "livestat/schedule/LatestFinds.h"
#include "livestat/schedule/Outages.h"
#include "livestat/steps/JackIndex.h"
#include "livestat/steps/Step.h"
#include "model/Document.h"
#include "model/MessageLog.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace mirovane {

/// Which criteria row of a device comes next, what its step is told, and what its outcome changes in the
/// document. Main thread only.
class CDeviceSteps {
public:
    CDeviceSteps(CMirovaneDoc& document, CMessageLog& log)
        : document_(document), log_(log), jacks_(document), outages_(log) {}

    /// The first row from `from` on that is to be run for this device; nothing: it is done.
    std::optional<int> nextRow(const CHardware& device, int from) const;

    /// No row of this type's devices is run until another one, or none, is named: somebody is changing its
    /// criteria, and half a rule empties fields.
    void hold(std::optional<std::int32_t> type) { heldType_ = type; }

    /// How often the test of a device that is On is made again before it turns Off.
    void setConfirmOff(int times) { confirmOff_ = times; }

    /// Everything that the step of this row may look at.
    StepInput input(const CHardware& device, int row);

    /// Writes what the step found out to its device, or has the row run again where the outcome counts no
    /// more: the step was stopped, or what it was asked about has changed meanwhile.
    void takeBack(JobSlot& slot, const StepJob& job);

    const CLatestFinds& finds() const { return finds_; }

    /// A device changed that nobody was told of yet; taking it tells.
    bool changed() const { return changed_; }
    bool takeChanged() { return std::exchange(changed_, false); }

    /// Once a run: rows that went with their device or their rule hold up the end of no outage.
    void forgetGoneOutages();

    /// Live Stat goes on: whoever switched it on learns what cannot be asked.
    void forgetOutages() { outages_.reset(); }

    /// Another document.
    void reset();

private:
    using DeviceRow = COutages::DeviceRow;

    bool isAsked(const DeviceRow& row) const;
    void noteSearch(const JobSlot& slot, const StepJob& job);
    void reportBrokenPattern(const StepJob& job);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    CJackIndex jacks_;
    CFoundValues found_;
    CLatestFinds finds_;
    COutages outages_;
    int confirmOff_ = 0;
    std::uint64_t steps_ = 0;              ///< begun so far
    std::set<DeviceRow> searchAgain_;      ///< although the text file's stamp says that it has not changed
    std::set<std::string> brokenPatterns_; ///< already reported
    std::optional<std::int32_t> heldType_;
    bool changed_ = false;
};

} // namespace mirovane
