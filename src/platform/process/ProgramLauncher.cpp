#include "platform/process/ProgramLauncher.h"

#include "platform/process/ChildProcess.h"

namespace mirovane {

std::error_code CPosixLauncher::start(const std::vector<std::string>& words) {
    const auto started = startProcess({words, ProcessStart::Ties::Detached, {-1, -1, -1}, std::nullopt});
    return started ? std::error_code() : started.error();
}

} // namespace mirovane
