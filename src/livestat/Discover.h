#pragma once

#include "livestat/DiscoveredDevice.h"
#include "livestat/FeatureHost.h"
#include "livestat/Workers.h"
#include "model/Document.h"
#include "platform/Timers.h"
#include "probes/HostProbes.h"

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace mirovane {

/// Walks through the datafile's address ranges, one address at a time, pings each that no device has and adds
/// every host that answers to the Discovered/Misc window. Main thread only; the ping runs on `workers`, which
/// see an address and a stop token and nothing else. At most one is in flight.
///
/// Timer: 300 ms while a ping is in flight or while going off, 1000 ms after an address that a device has,
/// 5000 ms after a ping was sent: a /24 of unknown addresses takes some 21 minutes.
///
/// The walk goes on where it stopped, also on another computer: its place stands in Live Discover's owner
/// record. That record changes at every tick, and every save makes all other stations read the file again; so
/// the place is saved along with whatever else is saved, when Live Discover goes off, and every ten minutes
/// at the latest. What a crash costs is therefore ten minutes of pings. A reload brings back the place of the
/// last save; the walk then goes on from where it really is.
///
/// An address whose ping was stopped, or whose answer nobody could take in any more, is pinged again later.
class CLiveDiscover {
public:
    /// All references must outlive it. The destructor stops the ping in flight; the probes must outlive that
    /// ping, too.
    CLiveDiscover(CMirovaneDoc& document, HostProbes& probes, Workers& workers, TimerFactory& timers,
                  LiveDiscoverHost& host);
    ~CLiveDiscover();
    CLiveDiscover(const CLiveDiscover&) = delete;
    CLiveDiscover& operator=(const CLiveDiscover&) = delete;

    bool enabled() const { return enabled_; }
    bool disabling() const { return disabling_; }

    /// Enables or disables. Enabling does nothing without a range; it asks when another station runs Live
    /// Discover, claims the datafile and saves it.
    void toggle();

    // ---- for the station

    /// Off at once: stops the ping, waits for it (milliseconds), releases the datafile and saves it.
    void disableNow();

    /// The records were read again. Asks where another station claimed the datafile meanwhile.
    void afterReload();

    /// Another document: off, nothing released, nothing logged.
    void reset();

private:
    /// The range being walked and the address that comes next, as the owner record holds them.
    struct Walk {
        std::string from, to, next;

        bool operator==(const Walk&) const = default;
    };

    struct Probe {
        Walk before; ///< the walk that led to it
        std::uint32_t address;
        std::stop_source stop;
        std::future<bool> answered;
    };

    void enable();
    void disable();
    void stopHere();
    void finishDisabling();
    void leaveOwner();

    void tick();
    bool findAddress();
    void moveTo(const std::vector<const CHardware*>& ranges, std::size_t place);
    std::optional<std::size_t> placeOf(const Walk& walk, const std::vector<const CHardware*>& ranges) const;
    bool takeAnswer();
    void addHost(const Probe& probe);
    void probeNext();
    bool startProbe(const Walk& walk, std::uint32_t address);

    bool probing() const;
    void stopProbe();
    void forgetProbe();
    Walk walk() const;
    void setWalk(const Walk& walk);
    void publishSometimes();
    bool echoesFail();
    void arm(std::chrono::milliseconds period);

    CMirovaneDoc& document_;
    HostProbes& probes_;
    Workers& workers_;
    LiveDiscoverHost& host_;
    CKnownAddresses known_;
    std::unique_ptr<Timer> timer_;

    std::optional<Probe> probe_;   ///< in flight, or its answer not taken in yet
    std::optional<Walk> lastWalk_; ///< as this station left the owner record
    std::size_t place_ = 0;        ///< of the range being walked, among the valid ones
    std::chrono::steady_clock::time_point published_{};
    std::optional<std::string> reportedTrouble_;
    bool enabled_ = false;
    bool disabling_ = false;
};

} // namespace mirovane
