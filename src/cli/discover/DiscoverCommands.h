#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command rangesCommand;
extern const Command sweepCommand;

} // namespace mirovane
