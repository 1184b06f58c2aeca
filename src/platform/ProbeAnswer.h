#pragma once

#include <string>
#include <utility>

namespace mirovane {

/// What a question goes through. When that is out of order, every device seems to be.
enum class AskedThrough {
    NameService, ///< the resolver and the name servers that it asks
    Echo,        ///< this computer's way of sending pings
    Snmp,        ///< this computer's way of sending queries
    Registry,    ///< Samba, and the right to read another computer's registry
    File,        ///< the disk or the share that the file is on
};

/// What became of a question to the network: yes, no, or that it could not be asked. Only yes and no say
/// anything about the device. A silent host is a no; a silent name server is not.
struct ProbeAnswer {
    enum class Kind { Yes, No, CouldNotAsk, Stopped };

    Kind kind = Kind::No;
    std::string why;                           ///< for people, a few words; empty for a yes
    AskedThrough through = AskedThrough::Echo; ///< what is out of order, when it could not be asked

    static ProbeAnswer yes() { return {Kind::Yes, {}}; }
    static ProbeAnswer no(std::string why) { return {Kind::No, std::move(why)}; }
    static ProbeAnswer couldNotAsk(AskedThrough through, std::string why) {
        return {Kind::CouldNotAsk, std::move(why), through};
    }
    static ProbeAnswer stopped() { return {Kind::Stopped, "stopped"}; }

    bool isYes() const { return kind == Kind::Yes; }
    bool couldNotBeAsked() const { return kind == Kind::CouldNotAsk; }
};

} // namespace mirovane
