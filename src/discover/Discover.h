#pragma once

#include "discover/AddressPing.h"
#include "discover/DiscoverWalk.h"
#include "discover/DiscoveredDevice.h"
#include "feature/FeatureHost.h"
#include "feature/FeatureServices.h"
#include "feature/FeatureSwitch.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Walks through the datafile's address ranges, one address at a time, pings each that no device has and adds
/// every host that answers to the Discovered/Misc window. Main thread only; at most one ping is in flight.
///
/// Timer: 300 ms while a ping is in flight or while going off, 1000 ms after an address that a device has,
/// 5000 ms after a ping was sent: a /24 of unknown addresses takes some 21 minutes.
///
/// The walk's place changes at every tick, and every save makes all other stations read the file again; so
/// the place is saved along with whatever else is saved, when Live Discover goes off, and every ten minutes
/// at the latest. What a crash costs is therefore ten minutes of pings.
///
/// An address whose ping was stopped, or whose answer nobody could take in any more, is pinged again later.
class CLiveDiscover {
public:
    /// All references must outlive it. The destructor stops the ping in flight; the probes must outlive that
    /// ping, too.
    CLiveDiscover(const FeatureServices& services, CFeatureOwnership& ownership, HostProbes& probes,
                  Workers& workers, LiveDiscoverHost& host);
    ~CLiveDiscover();
    CLiveDiscover(const CLiveDiscover&) = delete;
    CLiveDiscover& operator=(const CLiveDiscover&) = delete;

    bool enabled() const { return switch_.on(); }
    bool disabling() const { return switch_.goingOff(); }

    /// Enables or disables. Enabling does nothing without a range; it asks when another station runs Live
    /// Discover, claims the datafile and saves it. Says why it was not enabled.
    std::optional<StartRefusal> toggle();

    // ---- for the station

    /// Off at once: stops the ping, waits for it (milliseconds), releases the datafile and saves it.
    void disableNow();

    /// The records were read again. Asks where another station claimed the datafile meanwhile.
    void afterReload();

    /// Another document: off, nothing released, nothing logged.
    void reset();

private:
    std::optional<StartRefusal> enable();
    void disable();
    void finishDisabling();
    void releaseOwner();

    void tick();
    bool findAddress();
    bool takeAnswer();
    void addHost(std::uint32_t address);
    void probeNext();
    void publishSometimes();
    bool echoesFail();
    void reportTrouble(const std::string& trouble);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    const Clock& clock_;
    HostProbes& probes_;
    LiveDiscoverHost& host_;
    std::unique_ptr<Timer> timer_;
    CFeatureSwitch switch_;
    CKnownAddresses known_;
    CDiscoverWalk walk_;
    CAddressPing ping_;
    CDiscoverWalk::Place beforePing_; ///< the place that led to the last ping
    std::chrono::steady_clock::time_point published_{};
    int tries_ = 0; ///< of pings one after the other that could not be sent
    std::optional<std::string> reportedTrouble_;
};

} // namespace mirovane
