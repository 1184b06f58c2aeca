#include "livestat/Actions.h"
#include "livestat/Placeholders.h"
#include "probes/RegistryPath.h"

namespace mirovane {

namespace {

constexpr std::string_view noPattern = "the pattern's placeholders gave nothing: it matches nothing";

/// A value that was read becomes the result when it matches the row's pattern.
void matchValue(ActionRun& run, const std::string& value) {
    failWithNothing(run);
    const auto pattern = rowPattern(run, PatternUse::OneText);
    if (!pattern)
        return;
    switch (pattern->search(lowerCased(value), run.input.stop)) {
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

std::string whyNotRead(const std::string& path, const std::string& trouble) {
    if (!registryRoot(splitRegistryPath(path, {}).hive))
        return "its hive is none of HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CLASSES_ROOT and HKEY_CURRENT_USER";
    return trouble.empty() ? "there is no such key or value" : trouble;
}

/// Where the user is looked for: the row's argument is not used.
std::string logonHost(const CHardware& device) {
    return "\\\\" + (device.Name.empty() ? device.IPAddress : device.Name);
}

/// A user who logged off stays visible in brackets.
void keepInBrackets(ActionRun& run) {
    const std::string user = run.outcome.result; // the field as it is
    if (user.starts_with('[')) {
        run.outcome.acted = false;
        return;
    }
    run.outcome.result = "[" + user + "]";
    run.outcome.failed = false;
}

} // namespace

void failWithNothing(ActionRun& run) {
    run.outcome.result.clear();
    run.outcome.failed = true;
}

std::optional<CompiledPattern> rowPattern(ActionRun& run, PatternUse use) {
    const std::string& searchFor = run.input.criteria.SearchFor;
    const std::string pattern = Expand(searchFor, run.input.device, ExpandMode::Pattern);
    if (!searchFor.empty() && (pattern.empty() || pattern == "^")) {
        run.say([] { return noPattern; });
        return std::nullopt;
    }
    try {
        return CompilePattern(lowerCasedPattern(pattern), use);
    } catch (const bad_regexpr& refused) {
        run.outcome.brokenPattern = refused.what();
        run.say([&] { return std::string("the pattern is none: ") + refused.what(); });
        return std::nullopt;
    }
}

void readRegistry(ActionRun& run) {
    std::string trouble;
    const auto value =
        run.probes.registry.ReadRegistryValue(run.argument, run.input.computerName, run.input.stop, &trouble);
    if (run.stopRequested()) {
        run.outcome.cancelled = true;
    } else if (value) {
        run.say([&] { return "value: " + *value; });
        matchValue(run, *value);
    } else {
        run.say([&] { return "not read: " + whyNotRead(run.argument, trouble); });
        failWithNothing(run);
    }
}

void getFromAgent(ActionRun& run) {
    const std::vector<std::string> words = argumentTokens(run.argument);
    if (words.size() < 3) {
        run.say([] { return "not asked: the argument needs a host, a community and an object identifier"; });
        failWithNothing(run);
        return;
    }
    const SnmpQuery query{words[0], words[1], words[2], 0, snmpTimeoutMs};
    const SnmpAnswer answer = run.probes.snmp.SnmpGet(query, run.input.stop);
    if (run.stopRequested()) {
        run.outcome.cancelled = true;
    } else if (answer.hasValue()) {
        run.say([&] { return "value: " + answer.text; });
        matchValue(run, answer.text);
    } else {
        run.say([&] { return words[0] + ": " + describeSnmpAnswer(answer, query); });
        failWithNothing(run);
    }
}

void lookUpUser(ActionRun& run) {
    const CHardware& device = run.input.device;
    if (device.Name.empty() && device.IPAddress.empty()) {
        run.say([] { return "not asked: the device has neither a name nor an address"; });
        run.outcome.acted = false;
        return;
    }
    const std::string host = logonHost(device);
    std::string trouble;
    const LoggedOnUser user = run.probes.registry.LookUpLoggedOnUser(host, run.input.stop, &trouble);
    if (run.stopRequested()) {
        run.outcome.cancelled = true;
    } else if (!user.reached) {
        run.say([&] { return host + ": not reached" + (trouble.empty() ? "" : ": " + trouble); });
        failWithNothing(run);
        run.outcome.acted = false;
    } else if (!user.name.empty()) {
        run.say([&] { return host + ": " + user.name; });
        run.outcome.result = user.name;
        run.outcome.failed = false;
    } else {
        run.say([&] { return host + ": nobody is logged on"; });
        keepInBrackets(run);
    }
}

} // namespace mirovane
