#include "livestat/steps/ValueActions.h"

#include "model/records/KeptText.h"

namespace mirovane {

namespace {

void takeAnswer(CActionRun& run, const std::string& value, PatternOutcome answer) {
    switch (answer) {
    case PatternOutcome::Match:
        run.outcome.result = value;
        run.outcome.failed = false;
        break;
    case PatternOutcome::NoMatch:
        run.say([] { return "the pattern does not match"; });
        break;
    case PatternOutcome::LimitReached:
        run.say([] { return "the pattern takes too many steps for this value: that counts as no match"; });
        break;
    case PatternOutcome::Stopped:
        run.outcome.cancelled = true;
        break;
    }
}

/// A value that was read becomes the result when it matches the row's pattern.
void matchValue(CActionRun& run, const std::string& value) {
    run.failWithNothing();
    const std::optional<std::string> pattern = run.searchText();
    if (!pattern)
        return;
    try {
        takeAnswer(run, value, MatchPattern(value, *pattern, run.input.stop));
    } catch (const bad_regexpr& refused) {
        run.refuse(refused);
    }
}

/// Where the user is looked for: the row's argument is not used.
std::string logonHost(const CHardware& device) {
    const std::string_view name = withoutKeptMark(device.Name);
    return "\\\\" + std::string(name.empty() ? withoutKeptMark(device.IPAddress) : name);
}

void keepInBrackets(CActionRun& run) {
    const std::string user = run.outcome.result; // the field as it is
    if (user.starts_with('[')) {
        run.outcome.acted = false;
        return;
    }
    run.outcome.result = "[" + user + "]";
    run.outcome.failed = false;
}

} // namespace

void matchToJack(CActionRun& run) {
    const auto& matched = run.input.matchedState;
    run.outcome.failed = !matched;
    run.outcome.stateIfMatch = matched.value_or(DeviceState::Def);
    run.outcome.stateIfNoMatch = DeviceState::Def;
    run.say([&] {
        return std::string(matched ? "a device is plugged into this jack" : "no device names this jack");
    });
}

void setValue(CActionRun& run) {
    run.outcome.result = run.argument;
    run.outcome.failed = false;
}

void readRegistry(CActionRun& run) {
    std::string value;
    const ProbeAnswer answer =
        run.probes.registry.ReadRegistryValue(run.argument, run.input.computerName, value, run.input.stop);
    run.say([&] { return answer.isYes() ? "value: " + value : "not read: " + answer.why; });
    if (run.endedBy(answer, run.argument))
        return;
    if (answer.isYes())
        matchValue(run, value);
    else
        run.failWithNothing();
}

void getFromAgent(CActionRun& run) {
    const std::vector<std::string> words = argumentTokens(run.argument);
    if (words.size() < 3) {
        run.say([] { return "not asked: the argument needs a host, a community and an object identifier"; });
        run.failWithNothing();
        return;
    }
    const SNMPQuery query{words[0], words[1], words[2], 0, snmpTimeoutMs};
    const SNMPAnswer answer = run.probes.snmp.SnmpGet(query, run.input.stop);
    run.say([&] {
        return answer.hasValue() ? "value: " + answer.text
                                 : words[0] + ": " + describeSnmpAnswer(answer, query);
    });
    if (run.endedBy(answerOf(answer, query), words[0]))
        return;
    if (answer.hasValue())
        matchValue(run, answer.text);
    else
        run.failWithNothing();
}

void lookUpUser(CActionRun& run) {
    const CHardware& device = run.input.device;
    if (withoutKeptMark(device.Name).empty() && withoutKeptMark(device.IPAddress).empty()) {
        run.say([] { return "not asked: the device has neither a name nor an address"; });
        run.outcome.acted = false;
        return;
    }
    const std::string host = logonHost(device);
    LoggedOnUser user;
    const ProbeAnswer answer = run.probes.registry.LookUpLoggedOnUser(host, user, run.input.stop);
    run.say([&] {
        if (answer.isYes())
            return host + ": " + (user.name.empty() ? "nobody is logged on" : user.name);
        return host + ": not reached" + (answer.why.empty() ? "" : ": " + answer.why);
    });
    if (run.endedBy(answer, host))
        return;
    if (!answer.isYes()) {
        run.failWithNothing();
        run.outcome.acted = false;
    } else if (!user.name.empty()) {
        run.outcome.result = user.name;
        run.outcome.failed = false;
    } else {
        keepInBrackets(run);
    }
}

} // namespace mirovane
