#pragma once

#include "feature/Question.h"

#include <string>

namespace mirovane {

/// Yes/No questions to the user, and hard failures shown to him. The desktop program answers with message
/// boxes (the station's timers do not tick while one is open), the headless station with No unless it was
/// told to take over.
class StationDialogs {
public:
    virtual ~StationDialogs() = default;
    virtual bool ask(const Question& question) = 0;
    virtual void fail(const std::string& text) = 0;

    /// Called every few milliseconds while something that the user asked for waits for the share that `path`
    /// is on. A window repaints, and says after a moment what it waits for. False: he does not want to any
    /// longer.
    virtual bool keepWaiting(const std::string& path) {
        (void)path;
        return true;
    }
};

} // namespace mirovane
