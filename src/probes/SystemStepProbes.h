#pragma once

#include "platform/Host.h"
#include "probes/StepProbes.h"
#include "probes/SystemHostProbes.h"
#include "probes/SystemRegistryProbes.h"
#include "probes/snmp/transport/SNMPUdpTransport.h"

namespace mirovane {

/// The probes of the real network: one of each kind for the whole program, owned by its main object. Opens
/// nothing before the first probe.
class CSystemStepProbes {
public:
    CSystemStepProbes(RegistryRemoteOptions registry, StationIdentity station)
        : registry_(std::move(registry), std::move(station)) {}
    CSystemStepProbes(const CSystemStepProbes&) = delete;
    CSystemStepProbes& operator=(const CSystemStepProbes&) = delete;

    StepProbes all() { return {hosts_, snmp_, registry_}; }
    CSystemHostProbes& hosts() { return hosts_; }

private:
    CSystemHostProbes hosts_;
    CResolver agentNames_;
    SNMPUdpTransport transport_;
    SNMPManager manager_{transport_, agentNames_};
    CSystemSNMPProbe snmp_{manager_};
    CSystemRegistryProbes registry_;
};

} // namespace mirovane
