#pragma once

#include "cli/base/Output.h"

#include <span>
#include <string>

namespace mirovane {

/// mirovanectl without its process: `words` are the command line behind the program's name. Returns the exit
/// status.
int runCli(std::span<const std::string> words, COutput& out);

} // namespace mirovane
