#include "cli/base/Command.h"

#include "platform/Clock.h"

#include <chrono>

namespace mirovane {

void printRecIDs(COutput& out, const std::vector<std::int32_t>& recIDs) {
    for (const std::int32_t recID : recIDs)
        out.printLine(std::to_string(recID));
}

TimeStamp secondsNow() {
    return static_cast<TimeStamp>(std::chrono::system_clock::to_time_t(CSystemClock().wall()));
}

ExitStatus usageError(CommandContext& context, std::string_view sentence) {
    context.out.diagnose(sentence);
    return ExitStatus::Usage;
}

} // namespace mirovane
