#pragma once

#include "livestat/steps/Step.h"
#include "model/MessageLog.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace mirovane {

/// What Live Stat could not ask, and for which rows of which devices. The log says once that an outage has
/// begun, however many devices are concerned, and once that it is over: when one of the rows that could not
/// be asked got its answer. Main thread only.
class COutages {
public:
    /// One criteria row of one device.
    using DeviceRow = std::pair<std::int32_t, int>;

    explicit COutages(CMessageLog& log) : log_(log) {}

    /// A step has come back, with an answer or without.
    void note(const DeviceRow& asked, const StepInput& input, const StepOutcome& outcome);

    /// Rows that are not asked any more end no outage. `stays` says which are.
    void forget(const std::function<bool(const DeviceRow&)>& stays);

    bool any() const { return !open_.empty(); }

    /// Another document.
    void reset();

private:
    struct Outage {
        AskedThrough through;
        std::string why;
        std::set<DeviceRow> waiting;
    };

    void begin(const DeviceRow& asked, const NotAsked& notAsked);
    void end(const DeviceRow& answered);

    CMessageLog& log_;
    std::vector<Outage> open_;
    std::uint64_t newest_ = 0;                   ///< number of the newest step that came back
    std::map<AskedThrough, std::uint64_t> over_; ///< steps up to this number began within the last outage
};

} // namespace mirovane
