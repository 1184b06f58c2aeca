#pragma once

#include "model/records/Hardware.h"
#include "model/records/Placeholders.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// Cuts a line at its blanks. Double quotes hold blanks together and go; two of them inside quotes are
/// one. A backslash is a character like any other, and a quote that is never closed reaches to the end.
std::vector<std::string> splitCommandLine(std::string_view line);

/// Where a started program is seen.
enum class ProgramPlace : std::uint8_t {
    OwnWindow, ///< it opens one by itself, or needs none
    Terminal,  ///< it prints: a terminal window has to show it
    Browser,   ///< not a program but a web address
};

/// One process to be started: the program and its arguments, or the one word of a web address.
using ProgramWords = std::vector<std::string>;

/// The command line of an External Application.
///
/// It is cut into arguments before any field is put in, so a field is never more than one argument, whatever
/// it holds, and nothing in it means anything to anybody but the program. What the user types for $mvW is cut
/// like the command. An argument whose fields are empty stays as an empty argument: if it went, the program
/// would take the next one for it.
///
/// Fields come from the network. So the program itself must be written in the command, and an argument may
/// not become an option ("-oProxyCommand=...") through the field that it begins with, except behind an
/// argument "--", by which most programs know that no option follows.
/// Nor may a field that is not plain get to where somebody's shell may read it; see fieldRefusal().
///
/// "term:" or "noterm:" at the beginning of the line decides whether the program gets a terminal; without
/// them the usual programs of the terminal (ping, ssh, traceroute, ...) get one.
class CApplicationCommand {
public:
    explicit CApplicationCommand(std::string_view line);

    /// The program may be the typed text, or begin with it.
    ProgramPlace place(std::string_view insertedText = {}) const;

    /// It holds a $mvW that counts.
    bool wantsText() const;

    /// Why it cannot be started for any device; empty when it can.
    std::string problem() const;

    struct Filled {
        ProgramWords words;
        std::string refusal; ///< why it must not be started for this device; empty: it may be
    };

    /// The process for one device; `insertedText` is what the user typed for $mvW.
    Filled fill(const CHardware& device, std::string_view insertedText) const;

private:
    std::string line_; ///< without its prefix
    std::optional<ProgramPlace> prefixPlace_;
};

/// What one choice of an application comes to.
struct ApplicationRun {
    struct Refusal {
        std::string reason;
        std::string device;      ///< the first one concerned, as people call it
        std::size_t devices = 0; ///< how many are concerned
    };

    ProgramPlace place = ProgramPlace::OwnWindow;
    std::vector<ProgramWords> starts; ///< in the order of the devices
    std::vector<Refusal> refusals;    ///< one per reason
    bool cancelled = false;           ///< at the question for the text: nothing is to be started
};

/// Decides what is started when an application runs for these devices. `askForText` is called at the first
/// $mvW, once at most, and gives nothing when the user cancels.
ApplicationRun planApplicationRun(std::string_view command, std::span<const CHardware> devices,
                                  const std::function<std::optional<std::string>()>& askForText);

} // namespace mirovane
