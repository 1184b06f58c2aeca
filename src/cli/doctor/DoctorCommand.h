#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command doctorCommand;

} // namespace mirovane
