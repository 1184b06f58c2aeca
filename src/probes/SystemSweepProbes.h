#pragma once

#include "probes/SweepProbes.h"
#include "probes/SystemHostProbes.h"

namespace mirovane {

/// The real network for sweeps, through the one engine and the one resolver of the program.
class CSystemSweepProbes final : public SweepProbes {
public:
    /// `probes` outlives this object.
    explicit CSystemSweepProbes(CSystemHostProbes& probes) : probes_(probes) {}

    std::optional<std::string> echoUnusable() override { return probes_.echoUnusable(); }

    void startEchoes(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                     EchoCallback callback) override {
        probes_.engine().startAll(addresses, options, std::move(callback));
    }

    void startNameLookUp(std::uint32_t address, NameCallback callback) override {
        probes_.resolver().startNameOf(address, std::move(callback));
    }

private:
    CSystemHostProbes& probes_;
};

} // namespace mirovane
