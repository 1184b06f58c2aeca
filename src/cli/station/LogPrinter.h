#pragma once

#include "cli/base/Output.h"
#include "cli/station/StationOptions.h"
#include "model/MessageLog.h"

namespace mirovane {

/// Prints the lines of the message log as they are written, from the weight on that the options say. Main
/// thread.
class CLogPrinter final : public LogListener {
public:
    explicit CLogPrinter(COutput& out) : out_(out) {}

    void take(const StationOptions& options) {
        log_ = options.log;
        json_ = options.json;
    }

private:
    void lineLogged(const LogLine& line) override;

    COutput& out_;
    LogWeight log_ = LogWeight::Debug;
    bool json_ = false;
};

} // namespace mirovane
