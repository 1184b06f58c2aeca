#include "probes/SNMPManager.h"

#include "probes/SNMPException.h"
#include "probes/SNMPSession.h"

namespace mirovane {

SNMPManager::~SNMPManager() {
    Cleanup();
}

void SNMPManager::Startup() {
    const std::lock_guard lock(mutex_);
    if (started_) {
        return;
    }
    if (!transport_.SnmpStartup(info_)) {
        raiseSnmp("SNMPManager", "Could not start WinSNMP API",
                  static_cast<std::int32_t>(transport_.SnmpGetLastError({})));
    }
    transport_.SnmpSetTranslateMode(snmpUntranslatedV1);
    transport_.SnmpSetRetransmitMode(snmpRetransmitOff);
    started_ = true;
}

void SNMPManager::Cleanup() {
    std::unique_lock lock(mutex_);
    if (!started_) {
        return;
    }
    started_ = false;
    while (!sessions_.empty()) {
        SNMPSession* const session = *sessions_.begin();
        lock.unlock(); // its end takes it out
        delete session;
        lock.lock();
    }
    transport_.SnmpCleanup();
}

bool SNMPManager::started() const {
    const std::lock_guard lock(mutex_);
    return started_;
}

SnmpStartupInfo SNMPManager::startupInfo() const {
    const std::lock_guard lock(mutex_);
    return info_;
}

void SNMPManager::add(SNMPSession& session) {
    const std::lock_guard lock(mutex_);
    sessions_.insert(&session);
}

void SNMPManager::remove(SNMPSession& session) {
    const std::lock_guard lock(mutex_);
    sessions_.erase(&session);
}

} // namespace mirovane
