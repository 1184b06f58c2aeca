#pragma once

#include "cli/base/Command.h"

namespace mirovane {

extern const Command pingCommand;
extern const Command lookupCommand;
extern const Command snmpGetCommand;
extern const Command registryCommand;
extern const Command loggedOnCommand;
extern const Command matchCommand;

} // namespace mirovane
