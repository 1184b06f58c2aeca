#pragma once

#include <string>

namespace mirovane {

/// A Yes/No question to the user. Whoever answers without a user decides by its kind; the text is for people.
struct Question {
    enum class Kind {
        TakeOverLiveStat,     ///< another station runs it
        TakeOverLiveDiscover, ///< another station runs it
        ReplaceFile,          ///< a file of this name exists
        DeleteApplication,    ///< an entry of External Applications goes
        StartManyPrograms,    ///< one for each of many selected devices
        LongSweep,            ///< the ranges hold so many addresses that it takes many minutes
        ForgetFoundHosts,     ///< a sweep is cancelled
        DeleteDevices,        ///< the selected ones
        MoveDevices,          ///< the selected ones, to the Discovered/Misc window
        ResetCriteria,        ///< all rules go back to the defaults
    };

    Kind kind;
    std::string text;
};

} // namespace mirovane
