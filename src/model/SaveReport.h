#pragma once

#include "platform/files/Files.h"

#include <optional>

namespace mirovane {

/// What a save is for, as its line in the log says. That an older datafile was upgraded is always said.
enum class SaveNote { None, LiveStat, DiscoverNow };

/// How reading again or saving is tried: a retry waits for no other station and reports no error of a save a
/// second time.
enum class Attempt { First, Retry };

/// What became of a save.
struct SaveReport {
    enum class Outcome {
        Saved,
        Deferred, ///< nothing was written, and nothing went wrong: it will be with the reload, or has no file
                  ///< yet
        Failed,   ///< see error; what is in memory stays, and the file is as it was
    };

    Outcome outcome = Outcome::Deferred;
    std::optional<FileError> error;
    bool readAgain = false; ///< another station had saved: the records are other ones, as after a reload

    bool saved() const { return outcome == Outcome::Saved; }
    bool failed() const { return outcome == Outcome::Failed; }
};

} // namespace mirovane
