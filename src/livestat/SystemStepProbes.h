#pragma once

#include "livestat/StepProbes.h"
#include "platform/Host.h"
#include "probes/SnmpUdpTransport.h"
#include "probes/SystemHostProbes.h"
#include "probes/SystemRegistryProbes.h"

namespace mirovane {

/// The probes of the real network: one of each kind for the whole program, owned by its main object. Opens
/// nothing before the first probe.
class SystemStepProbes {
public:
    SystemStepProbes(RegistryRemoteOptions registry, StationIdentity station)
        : registry_(std::move(registry), std::move(station)) {}
    SystemStepProbes(const SystemStepProbes&) = delete;
    SystemStepProbes& operator=(const SystemStepProbes&) = delete;

    StepProbes all() { return {hosts_, snmp_, registry_}; }
    SystemHostProbes& hosts() { return hosts_; }

private:
    SystemHostProbes hosts_;
    Resolver agentNames_;
    SnmpUdpTransport transport_;
    SNMPManager manager_{transport_, agentNames_};
    SystemSnmpProbe snmp_{manager_};
    SystemRegistryProbes registry_;
};

} // namespace mirovane
