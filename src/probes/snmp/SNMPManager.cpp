#include "probes/snmp/SNMPManager.h"

#include "probes/snmp/SNMPException.h"
#include "probes/snmp/SNMPSession.h"

namespace mirovane {

SNMPManager::~SNMPManager() {
    Cleanup();
}

void SNMPManager::Startup() {
    const std::lock_guard lock(gate_);
    if (started_)
        return;
    if (!transport_.SnmpStartup(info_)) {
        raiseSnmp("SNMPManager", "Could not start WinSNMP API",
                  static_cast<std::int32_t>(transport_.SnmpGetLastError(nullptr)));
    }
    transport_.SnmpSetTranslateMode(snmpUntranslatedV1);
    transport_.SnmpSetRetransmitMode(snmpRetransmitOff);
    started_ = true;
}

void SNMPManager::Cleanup() {
    std::unique_lock lock(gate_);
    if (!started_)
        return;
    started_ = false;
    while (!sessions_.empty()) {
        SNMPSession* const session = *sessions_.begin();
        lock.unlock(); // its end takes it out
        delete session;
        lock.lock();
    }
    lock.unlock(); // the transport waits for a callback that runs
    transport_.SnmpCleanup();
}

bool SNMPManager::started() const {
    const std::lock_guard lock(gate_);
    return started_;
}

SNMPStartupInfo SNMPManager::startupInfo() const {
    const std::lock_guard lock(gate_);
    return info_;
}

void SNMPManager::add(SNMPSession& session) {
    const std::lock_guard lock(gate_);
    sessions_.insert(&session);
}

void SNMPManager::remove(SNMPSession& session) {
    const std::lock_guard lock(gate_);
    sessions_.erase(&session);
}

} // namespace mirovane
