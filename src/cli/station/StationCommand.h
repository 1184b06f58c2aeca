#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command stationCommand;

} // namespace mirovane
