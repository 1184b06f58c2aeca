#include "livestat/Engine.h"

#include "livestat/Placeholders.h"
#include "probes/HostAddress.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr std::string_view keptByUser = ">>";

/// One token after the other until one answers; the name may be unknown to the resolver while the address
/// lives.
void ping(const StepInput& input, HostProbes& probes, const std::vector<std::string>& hosts,
          StepOutcome& outcome) {
    outcome.failed = true;
    for (const std::string& host : hosts) {
        PingReply reply;
        std::optional<std::uint32_t> resolved;
        if (probes.PingHost(host, reply, resolved, pingTtl, pingTimeoutMs, pingPayloadSize, input.stop)) {
            outcome.failed = false;
            return;
        }
        if (input.stop.stop_requested()) {
            outcome.cancelled = true;
            return;
        }
    }
}

std::string addressOf(HostProbes& probes, const std::string& name, const std::stop_token& stop) {
    std::uint32_t address = 0;
    std::string unused;
    if (parseDottedAddress(name) || !probes.ResolveHost(name, address, unused, stop) || address == 0)
        return {};
    return formatAddress(address);
}

std::string nameOf(HostProbes& probes, const std::string& address, const std::stop_token& stop) {
    std::uint32_t unused = 0;
    std::string name;
    if (!parseDottedAddress(address) || !probes.ResolveHost(address, unused, name, stop))
        return {};
    return name;
}

/// Every token is looked up and the last one decides; with no token at all the field keeps its text.
template <typename LookUp>
void lookUp(const StepInput& input, HostProbes& probes, const std::vector<std::string>& hosts, LookUp one,
            StepOutcome& outcome) {
    outcome.failed = false;
    for (const std::string& host : hosts) {
        outcome.result = one(probes, host, input.stop);
        outcome.failed = outcome.result.empty();
        if (input.stop.stop_requested()) {
            outcome.cancelled = true;
            return;
        }
    }
}

void matchToJack(const StepInput& input, StepOutcome& outcome) {
    outcome.failed = !input.matchedState;
    outcome.stateIfMatch = input.matchedState.value_or(DeviceState::Def);
    outcome.stateIfNoMatch = DeviceState::Def;
}

bool decidesState(std::string_view command) {
    return command == Action::Ping || command == Action::DoNothing || command == Action::MatchToJack;
}

std::int32_t stateIfMatch(const CriteriaRow& criteria) {
    return criteria.Condition == "On" ? DeviceState::On : DeviceState::Off;
}

void performAction(const StepInput& input, HostProbes& probes, StepOutcome& outcome) {
    const std::string& command = input.criteria.Command;
    const std::string argument = Expand(input.criteria.Argument, input.device, ExpandMode::Argument);
    outcome.acted = true;
    if (command == Action::Ping)
        ping(input, probes, argumentTokens(argument), outcome);
    else if (command == Action::NsLookup)
        lookUp(input, probes, argumentTokens(argument), addressOf, outcome);
    else if (command == Action::NsLookupReverse)
        lookUp(input, probes, argumentTokens(argument), nameOf, outcome);
    else if (command == Action::MatchToJack)
        matchToJack(input, outcome);
    else if (command == Action::SetValue) {
        outcome.result = argument;
        outcome.failed = false;
    } else
        outcome.acted = false;
}

} // namespace

bool actionAvailable(std::string_view command) {
    constexpr std::array notYet = {Action::SearchInTextFile, Action::SearchForFile, Action::Registry,
                                   Action::SnmpGet, Action::WhosLogon};
    return std::find(notYet.begin(), notYet.end(), command) == notYet.end();
}

bool rowCounts(const CHardware& device, int row, const CriteriaRow& criteria) {
    if (criteria.Command == Action::DoNothing || !actionAvailable(criteria.Command))
        return false;
    return row == 0 || !(device.*criteriaTargetField(row)).ends_with(keptByUser);
}

std::vector<std::string> argumentTokens(std::string_view argument) {
    std::vector<std::string> tokens;
    std::string token;
    bool quoted = false;
    const auto finish = [&] {
        if (!token.empty())
            tokens.push_back(std::move(token));
        token.clear();
    };
    for (const char c : argument) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ' ' && !quoted)
            finish();
        else
            token += c;
    }
    finish();
    return tokens;
}

bool conditionAllows(const CHardware& device, int row, const CriteriaRow& criteria) {
    if (row == 0 || decidesState(criteria.Command) || criteria.Condition == "On/Off")
        return true;
    return device.State == stateIfMatch(criteria);
}

StepOutcome runStep(const StepInput& input, HostProbes& probes) {
    StepOutcome outcome;
    outcome.stateIfMatch = stateIfMatch(input.criteria);
    outcome.stateIfNoMatch = outcome.stateIfMatch == DeviceState::On ? DeviceState::Off : DeviceState::On;
    // An action that has no text of its own (a ping in a field rule) leaves the field as it is.
    if (input.row > 0)
        outcome.result = input.device.*criteriaTargetField(input.row);
    if (input.stop.stop_requested())
        outcome.cancelled = true;
    else if (conditionAllows(input.device, input.row, input.criteria))
        performAction(input, probes, outcome);
    return outcome;
}

} // namespace mirovane
