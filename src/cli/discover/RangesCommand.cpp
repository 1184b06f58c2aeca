#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/discover/DiscoverCommands.h"
#include "discover/AddressRanges.h"
#include "model/records/SpecialRecords.h"

#include <QJsonObject>

#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

/// Ranges to add and the numbers of those to delete.
struct Changes {
    std::vector<std::pair<std::string, std::string>> added;
    std::set<std::size_t> deleted; ///< from 1 on
};

std::string named(const std::string& from, const std::string& to) {
    return "\"" + printable(from).substr(0, 60) + "\" to \"" + printable(to).substr(0, 60) + "\"";
}

Result<Changes, UsageError> changesFrom(const Arguments& arguments) {
    Changes changes;
    const auto ends = arguments.values("--add");
    for (std::size_t at = 0; at + 1 < ends.size(); at += 2) {
        if (!makeRange(ends[at], ends[at + 1]))
            return UsageError{"cannot add the range " + named(ends[at], ends[at + 1]) + ": " +
                              std::string(invalidRangeText)};
        changes.added.emplace_back(ends[at], ends[at + 1]);
    }
    for (const std::string& text : arguments.values("--delete")) {
        const auto number = numberArgument(text, 1, std::numeric_limits<std::int32_t>::max());
        if (!number)
            return UsageError{"option --delete: \"" + text + "\" is not a number from 1 on"};
        changes.deleted.insert(static_cast<std::size_t>(*number));
    }
    return changes;
}

/// As the options window does when it closes: while one range is invalid, nothing is kept.
std::optional<EditRefusal> refuseInvalid(const CMirovaneDoc& doc) {
    const CHardware* invalid = firstInvalidRange(doc);
    if (!invalid)
        return std::nullopt;
    return EditRefusal{"the range " + named(invalid->Name, invalid->IPAddress) +
                           " must go first: " + std::string(invalidRangeText),
                       ExitStatus::No};
}

std::optional<EditRefusal> apply(CMirovaneDoc& doc, const Changes& changes) {
    const auto ranges = discoverRanges(doc);
    if (!changes.deleted.empty() && *changes.deleted.rbegin() > ranges.size())
        return EditRefusal{"there is no range " + std::to_string(*changes.deleted.rbegin()) +
                               ": nothing was changed",
                           ExitStatus::No};
    for (const std::size_t number : changes.deleted)
        doc.remove(*ranges[number - 1]);
    for (const auto& [from, to] : changes.added) {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        toRecord(RangeText{from, to}, range);
        range.Modified = doc.now();
        if (!doc.append(std::move(range)))
            return EditRefusal{"cannot add the range " + named(from, to) + ": the datafile is full",
                               ExitStatus::FileFailed};
    }
    return refuseInvalid(doc);
}

/// Nothing for an invalid range.
std::optional<std::int64_t> addressCount(const CHardware& record) {
    const auto range = rangeOf(record);
    return range ? std::optional(std::int64_t{range->to} - range->from + 1) : std::nullopt;
}

void printTable(COutput& out, const std::vector<const CHardware*>& ranges) {
    CTextTable table({{"N", 0, true}, {"From", 1}, {"To", 2}, {"Addresses", 3, true}});
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto count = addressCount(*ranges[i]);
        const RangeText text = rangeFromRecord(*ranges[i]);
        table.addRow({std::to_string(i + 1), printable(text.From), printable(text.To),
                      count ? std::to_string(*count) : "invalid"});
    }
    table.print(out);
}

void printJson(COutput& out, const std::vector<const CHardware*>& ranges) {
    CJsonArrayPrinter printer(out);
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto count = addressCount(*ranges[i]);
        const RangeText text = rangeFromRecord(*ranges[i]);
        printer.add({{jsonKey("N"), static_cast<int>(i + 1)},
                     {jsonKey("From"), jsonText(text.From)},
                     {jsonKey("To"), jsonText(text.To)},
                     {jsonKey("Addresses"), count ? QJsonValue(qint64{*count}) : QJsonValue()}});
    }
    printer.end();
}

constexpr std::array rangesOptions{
    OptionDefinition{"--add", 2, "FROM TO", "add a range, both ends included; may be repeated"},
    OptionDefinition{"--delete", 1, "N", "delete the range of this number; may be repeated"},
    jsonOption,
};

constexpr std::string_view rangesDetails =
    "Addresses are four numbers from 0 to 255, and a range goes from a low one to a high one. Leave out the\n"
    "first and the last address of a subnet. --delete takes the numbers that the command prints, several at\n"
    "once as they were before the first of them went.\n";

ExitStatus runRanges(CommandContext& context) {
    const std::string& file = context.arguments.positionals[0];
    const auto changes = changesFrom(context.arguments);
    if (!changes)
        return usageError(context, changes.error().sentence);
    if (!changes.value().added.empty() || !changes.value().deleted.empty())
        return editDatafile(context.out, file, "Change address ranges",
                            [&](CMirovaneDoc& doc) { return apply(doc, changes.value()); });
    return viewDatafile(context.out, file, [&](const CMirovaneDoc& doc) {
        const auto ranges = discoverRanges(doc);
        if (context.arguments.has("--json"))
            printJson(context.out, ranges);
        else
            printTable(context.out, ranges);
    });
}

} // namespace

constinit const Command rangesCommand{
    .name = "ranges",
    .help = "print or change the address ranges of Live Discover",
    .usage = "FILE [--add FROM TO]... [--delete N]... [--json]",
    .least = 1,
    .most = 1,
    .options = rangesOptions,
    .details = rangesDetails,
    .run = runRanges,
};

} // namespace mirovane
