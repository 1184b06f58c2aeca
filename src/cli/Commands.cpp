#include "cli/Commands.h"

#include "cli/datafile/DatafileCommands.h"
#include "cli/discover/DiscoverCommands.h"
#include "cli/doctor/DoctorCommand.h"
#include "cli/livestat/LiveStatCommands.h"
#include "cli/probes/ProbeCommands.h"
#include "cli/station/StationCommand.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr std::array table{
    &newCommand,      &recordsCommand,  &listCommand,     &findDevicesCommand,  &checkCommand,
    &upgradeCommand,  &addCommand,      &setCommand,      &deleteCommand,       &copyCommand,
    &importCommand,   &exportCommand,   &criteriaCommand, &applicationsCommand, &rangesCommand,
    &stationCommand,  &sweepCommand,    &pingCommand,     &lookupCommand,       &snmpGetCommand,
    &registryCommand, &loggedOnCommand, &matchCommand,    &testCommand,         &doctorCommand,
};

} // namespace

std::span<const Command* const> commands() {
    return table;
}

const Command* findCommand(std::string_view name) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [name](const Command* command) { return command->name == name; });
    return found == table.end() ? nullptr : *found;
}

} // namespace mirovane
