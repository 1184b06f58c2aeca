#pragma once

#include "model/records/Criteria.h"
#include "model/records/Hardware.h"
#include "platform/ProbeAnswer.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

namespace mirovane {

/// Everything that a worker needs for one criteria row of one device. A worker sees copies only; no record of
/// the document is ever read on another thread than the main one.
struct StepInput {
    CHardware device;
    int row = 0;
    CriteriaRow criteria;

    /// For "Match to Jack#": state of the first device plugged into this jack, looked up on the main thread
    /// when the step starts; nothing when no device names the jack.
    std::optional<std::int32_t> matchedState;

    /// A test that would turn the device from On to Off is made again up to this many times before it does:
    /// a single lost packet must not.
    int confirmOff = 0;

    /// Counts the steps as they start.
    std::uint64_t number = 0;

    /// For "Registry": the computer that a path without a host means; no backslashes.
    std::string computerName;

    std::stop_token stop;
};

/// A question that could not be asked. It says nothing about the device, so the step changes nothing.
struct NotAsked {
    AskedThrough through;
    std::string about; ///< the host or the file
    std::string why;
};

/// What one step found. Applied on the main thread, at the tick that finds the step finished, to the device
/// with that record ID if it still exists.
struct StepOutcome {
    bool acted = false;               ///< the action ran; otherwise nothing changes
    bool failed = true;               ///< no match, no value, no answer
    bool cancelled = false;           ///< the stop token ended it: nothing changes
    std::optional<NotAsked> notAsked; ///< then it did not act either
    std::string result;               ///< text for the target field (rows 1 to 11)

    /// "Search in Text File": the device was changed since its stamps were true. They are cleared, and true
    /// from now on up to this Modified.
    std::optional<TimeStamp> stampsModified;

    /// Change time of the text file that was searched: the row's stamp from now on. 0 when there was nothing
    /// to search: a file that comes back with its old time is searched.
    std::optional<TimeStamp> fileStamp;

    /// Why the row's pattern cannot be compiled, for the log; else empty.
    std::string brokenPattern;

    std::int32_t stateIfMatch = DeviceState::On;
    std::int32_t stateIfNoMatch = DeviceState::Off;
};

} // namespace mirovane
