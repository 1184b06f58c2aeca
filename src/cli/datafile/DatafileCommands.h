#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command applicationsCommand;
extern const Command newCommand;
extern const Command recordsCommand;
extern const Command listCommand;
extern const Command findDevicesCommand;
extern const Command checkCommand;
extern const Command upgradeCommand;
extern const Command addCommand;
extern const Command setCommand;
extern const Command deleteCommand;
extern const Command copyCommand;
extern const Command importCommand;
extern const Command exportCommand;

} // namespace mirovane
