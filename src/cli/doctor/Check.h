#pragma once

#include "model/format/Datafile.h"
#include "platform/Result.h"
#include "probes/icmp/EchoSocket.h"
#include "probes/names/NameService.h"
#include "probes/registry/RegistryRemote.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a check looks at. Read-only and shared: a check that hangs is left behind and reads on.
struct DoctorPlaces {
    std::string datafile; ///< from the root on; empty: none was named

    /// What is in it, or why that cannot be read.
    Result<Datafile::Content, std::string> content = std::string("it was not read");

    std::string stateFolder;
    std::string runtimeFolder;
    std::string program; ///< this one's file
    RegistryRemoteOptions registry;
    bool desktop = false;           ///< the window is installed, too
    std::vector<std::string> icons; ///< where its icons may be
    std::chrono::system_clock::time_point now;

    std::function<EchoSocketOpening()> openEcho;
    std::shared_ptr<NameService> names;

    /// Its first line of output, or nothing: for what other programs know.
    std::function<std::optional<std::string>(const std::vector<std::string>& words)> ask;

    bool hasDatafile() const { return !datafile.empty(); }
};

struct CheckResult {
    enum class State {
        Works,
        Note, ///< not there, and only some need it
        Fails,
    };

    State state = State::Works;
    std::string says;
    std::string mend; ///< the one line that mends it; empty where nothing needs to be

    static CheckResult works(std::string says) { return {State::Works, std::move(says), {}}; }
    static CheckResult note(std::string says, std::string mend) {
        return {State::Note, std::move(says), std::move(mend)};
    }
    static CheckResult fails(std::string says, std::string mend) {
        return {State::Fails, std::move(says), std::move(mend)};
    }
};

/// One thing that works on this computer or does not.
struct Check {
    std::string_view name;
    CheckResult (*run)(const DoctorPlaces&);
    bool (*applies)(const DoctorPlaces&);
    std::string_view hangs; ///< the line that mends it when it does not come to an end
};

/// In the order in which they are told.
std::span<const Check> networkChecks();
std::span<const Check> datafileChecks();
std::span<const Check> computerChecks();

constexpr bool always(const DoctorPlaces&) {
    return true;
}

} // namespace mirovane
