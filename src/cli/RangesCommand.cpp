#include "cli/Commands.h"
#include "cli/Datafiles.h"
#include "cli/RecordJson.h"
#include "cli/TextTable.h"
#include "livestat/AddressRanges.h"

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
            return UsageError{"option --delete: \"" + text + "\" is no number from 1 on"};
        changes.deleted.insert(static_cast<std::size_t>(*number));
    }
    return changes;
}

/// As the options window does when it closes: with a range that is none, nothing is kept.
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
        range.Name = from;
        range.IPAddress = to;
        range.Modified = doc.now();
        if (!doc.append(std::move(range)))
            return EditRefusal{"cannot add the range " + named(from, to) + ": the datafile is full",
                               ExitStatus::FileFailed};
    }
    return refuseInvalid(doc);
}

/// Nothing for a range that is none.
std::optional<std::int64_t> addressCount(const CHardware& record) {
    const auto range = rangeOf(record);
    return range ? std::optional(std::int64_t{range->to} - range->from + 1) : std::nullopt;
}

void printTable(Output& out, const std::vector<const CHardware*>& ranges) {
    TextTable table({{"N", 0, true}, {"From", 1}, {"To", 2}, {"Addresses", 3, true}});
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto count = addressCount(*ranges[i]);
        table.addRow({std::to_string(i + 1), printable(ranges[i]->Name), printable(ranges[i]->IPAddress),
                      count ? std::to_string(*count) : "invalid"});
    }
    table.print(out);
}

void printJson(Output& out, const std::vector<const CHardware*>& ranges) {
    JsonArrayPrinter printer(out);
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto count = addressCount(*ranges[i]);
        printer.add({{jsonKey("N"), static_cast<int>(i + 1)},
                     {jsonKey("From"), jsonText(ranges[i]->Name)},
                     {jsonKey("To"), jsonText(ranges[i]->IPAddress)},
                     {jsonKey("Addresses"), count ? QJsonValue(qint64{*count}) : QJsonValue()}});
    }
    printer.end();
}

} // namespace

ExitStatus runRanges(CommandContext& context) {
    const std::string& file = context.arguments.positionals[0];
    const auto changes = changesFrom(context.arguments);
    if (!changes)
        return usageError(context, changes.error().sentence);
    if (!changes.value().added.empty() || !changes.value().deleted.empty())
        return editDatafile(context.out, file,
                            [&](CMirovaneDoc& doc) { return apply(doc, changes.value()); });
    return viewDatafile(context.out, file, [&](const CMirovaneDoc& doc) {
        const auto ranges = discoverRanges(doc);
        if (context.arguments.has("--json"))
            printJson(context.out, ranges);
        else
            printTable(context.out, ranges);
    });
}

} // namespace mirovane
