#pragma once

#include "probes/HostProbes.h"
#include "probes/RegistryProbes.h"
#include "probes/SNMPProbe.h"

namespace mirovane {

/// Everything that a criteria row can ask the network. All of it outlives whoever holds this; any thread.
struct StepProbes {
    HostProbes& hosts;
    SNMPProbe& snmp;
    RegistryProbes& registry;
};

} // namespace mirovane
