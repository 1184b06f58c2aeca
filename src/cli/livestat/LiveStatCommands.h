#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command criteriaCommand;
extern const Command testCommand;

} // namespace mirovane
