#pragma once

#include "livestat/steps/Step.h"
#include "model/Document.h"
#include "platform/Clock.h"
#include "probes/StepProbes.h"

#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a dry run of one criteria row for one device showed. Texts are bytes, like the fields they come from.
struct RowTrial {
    struct Change {
        std::string field; ///< spelled as in CHardware
        std::string before;
        std::string after;

        bool operator==(const Change&) const = default;
    };

    int row = 0;
    std::string command;
    std::string expandedArgument;
    std::string expandedPattern;

    bool conditionAllows = false; ///< the state that the device has lets the row run

    /// Live Stat never comes to this row: it does nothing, or the user keeps the field for himself.
    bool passedOver = false;

    /// What the probe answered, or why none was asked, as text for people; one line for each host.
    std::string answer;

    bool acted = false;
    bool failed = false;
    bool cancelled = false;
    bool couldNotAsk = false;    ///< `answer` says why; Live Stat would leave the device as it is
    std::vector<Change> changes; ///< what would be written, without Modified and the stamps of text files
};

/// "match", "no match", "nothing is done", "could not ask", "stopped".
std::string_view outcomeText(const RowTrial& trial);

/// What tryRow() needs, copied out of the document. Main thread. `row` is 0 to 11.
StepInput trialInput(const CMirovaneDoc& document, const CHardware& device, int row, std::stop_token stop);

/// Runs the row as Live Stat does, and writes nothing. A row that Live Stat would pass over is not run; a
/// text file is searched even when it has not changed since Live Stat searched it. Any thread; blocks as
/// long as the probe does.
RowTrial tryRow(const StepInput& input, const StepProbes& probes, const Clock& clock);

} // namespace mirovane
