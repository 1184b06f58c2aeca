#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/livestat/LiveStatCommands.h"
#include "livestat/steps/PatternCheck.h"
#include "model/CriteriaEdit.h"
#include "model/records/ActionCatalogue.h"
#include "model/records/Criteria.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <limits>

namespace mirovane {

namespace {

constexpr std::array<std::string_view, 7> columnNames{"Command",   "Argument", "Delimiter", "FieldPos",
                                                      "SearchFor", "IfMatch",  "Condition"};

/// One --set, found valid for its type and row.
struct Change {
    int row = 0;
    CriteriaColumn column = CriteriaColumn::Command;
    std::string value;
};

template <typename List>
std::string joined(const List& list) {
    std::string text;
    for (const std::string_view entry : list)
        text.append(text.empty() ? "\"" : ", \"").append(entry).append("\"");
    return text;
}

std::optional<CriteriaColumn> columnFrom(std::string_view text) {
    for (std::size_t column = 0; column < columnNames.size(); ++column)
        if (equalIgnoringCase(text, columnNames[column]))
            return static_cast<CriteriaColumn>(column);
    return std::nullopt;
}

/// "what: why" where the value does not fit its column; a check box's value becomes the stored form.
std::optional<std::string> refuseValue(std::int32_t type, Change& change) {
    const std::string where = std::string(columnNames[static_cast<std::size_t>(change.column)]) + " of row " +
                              std::to_string(change.row) + " cannot be \"" + change.value.substr(0, 60) +
                              "\": ";
    const auto isValue = [&](std::string_view entry) {
        return entry == change.value;
    };
    if (type == DeviceType::LocationMarker)
        return where + "Live Stat never checks location markers";
    if (change.column == CriteriaColumn::Command && !actionChoosable(type, change.row) &&
        change.value != Action::DoNothing)
        return where + "a jack has actions in the rows 0, 5 and 6 alone";
    if (change.column == CriteriaColumn::Command) {
        const auto actions = actionsForRow(type, change.row);
        if (std::none_of(actions.begin(), actions.end(), isValue))
            return where + "the valid ones are " + joined(actions);
    } else if (change.column == CriteriaColumn::Condition) {
        const auto valid = conditionsForRow(change.row);
        if (std::none_of(valid.begin(), valid.end(), isValue))
            return where + "the valid ones are " + joined(valid);
    } else if (change.column == CriteriaColumn::FieldPos) {
        if (!numberArgument(change.value, 0, std::numeric_limits<std::int32_t>::max()))
            return where + "give the field's number from 1 on, or 0 for the whole line";
    } else if (change.column == CriteriaColumn::IfMatch) {
        if (!criteriaDrawFlag(change.row))
            return where + "only rows 7 to 11 have this check box";
        const bool on = change.value == "1" || equalIgnoringCase(change.value, "T");
        if (!on && change.value != "0" && !equalIgnoringCase(change.value, "F"))
            return where + "give 1 or 0";
        change.value = on ? "T" : "F";
    }
    return std::nullopt;
}

Result<std::vector<Change>, UsageError> changesFrom(std::int32_t type,
                                                    const std::vector<std::string>& words) {
    std::vector<Change> changes;
    for (std::size_t at = 0; at + 2 < words.size(); at += 3) {
        const auto row = criteriaRowArgument(words[at]);
        if (!row)
            return UsageError{"unknown row \"" + words[at] + "\": give 0 to 11 or the row's label"};
        const auto column = columnFrom(words[at + 1]);
        if (!column)
            return UsageError{"unknown column \"" + words[at + 1] + "\": the valid ones are " +
                              joined(columnNames)};
        Change change{*row, *column, words[at + 2]};
        if (const auto refusal = refuseValue(type, change))
            return UsageError{*refusal};
        changes.push_back(std::move(change));
    }
    return changes;
}

std::optional<EditRefusal> applyChanges(CMirovaneDoc& doc, std::int32_t type,
                                        const std::vector<Change>& changes) {
    for (const Change& change : changes) {
        if (!doc.criteria(type, change.row))
            return EditRefusal{"cannot set row " + std::to_string(change.row) + " of " +
                                   std::string(typeName(type)) + ": the datafile has no such row",
                               ExitStatus::No};
        if (change.column == CriteriaColumn::Command)
            chooseAction(doc, type, change.row, change.value);
        else
            setCriteria(doc, type, change.row, change.column, change.value);
    }
    return std::nullopt;
}

QJsonObject rowObject(std::int32_t type, int row, const CriteriaRow& values) {
    return {{jsonKey("Type"), type},
            {jsonKey("Device"), jsonText(typeName(type))},
            {jsonKey("Row"), row},
            {jsonKey("Label"), jsonText(criteriaRowLabel(row))},
            {jsonKey("Command"), jsonText(values.Command)},
            {jsonKey("Argument"), jsonText(values.Argument)},
            {jsonKey("Delimiter"), jsonText(values.Delimiter)},
            {jsonKey("FieldPos"), values.FieldPos},
            {jsonKey("SearchFor"), jsonText(values.SearchFor)},
            {jsonKey("IfMatch"), values.IfMatch},
            {jsonKey("Condition"), jsonText(values.Condition)}};
}

template <typename Visit>
void forEachRow(const CMirovaneDoc& doc, std::int32_t onlyType, Visit visit) {
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type) {
        if (onlyType != 0 && onlyType != type)
            continue;
        for (int row = 0; row < criteriaRowCount; ++row)
            if (const CHardware* record = doc.criteria(type, row))
                visit(type, row, criteriaFromRecord(*record));
    }
}

void printTable(COutput& out, const CMirovaneDoc& doc, std::int32_t onlyType) {
    CTextTable table({{"Device", 1},
                      {"Row", 2, true},
                      {"Label", 4},
                      {"Command", 0},
                      {"Argument", 3},
                      {"Delimiter", 7},
                      {"FieldPos", 8, true},
                      {"SearchFor", 5},
                      {"IfMatch", 9, true},
                      {"Condition", 6}});
    forEachRow(doc, onlyType, [&](std::int32_t type, int row, const CriteriaRow& values) {
        table.addRow({std::string(typeName(type)), std::to_string(row), std::string(criteriaRowLabel(row)),
                      printable(values.Command), printable(values.Argument), printable(values.Delimiter),
                      std::to_string(values.FieldPos), printable(values.SearchFor),
                      std::to_string(values.IfMatch), printable(values.Condition)});
    });
    table.print(out);
}

void printJson(COutput& out, const CMirovaneDoc& doc, std::int32_t onlyType) {
    CJsonArrayPrinter printer(out);
    forEachRow(doc, onlyType, [&](std::int32_t type, int row, const CriteriaRow& values) {
        printer.add(rowObject(type, row, values));
    });
    printer.end();
}

/// Stored all the same, as the criteria window does; without a word it would be found out in Live Stat's log
/// at best.
void warnOfPatterns(COutput& out, const std::vector<Change>& changes) {
    for (const Change& change : changes) {
        if (change.column != CriteriaColumn::SearchFor)
            continue;
        if (const std::string problem = patternProblem(change.value); !problem.empty())
            out.diagnose("SearchFor of row " + std::to_string(change.row) + " will match nothing", problem);
    }
}

ExitStatus changeRows(CommandContext& context, std::int32_t type) {
    const auto changes = changesFrom(type, context.arguments.values("--set"));
    if (!changes)
        return usageError(context, changes.error().sentence);
    const auto edit = [&](CMirovaneDoc& doc) {
        if (context.arguments.has("--reset"))
            resetCriteria(doc);
        return applyChanges(doc, type, changes.value());
    };
    const ExitStatus status =
        editDatafile(context.out, context.arguments.positionals[0], "Change criteria", edit);
    if (status == ExitStatus::Done)
        warnOfPatterns(context.out, changes.value());
    return status;
}

constexpr std::array criteriaOptions{
    OptionDefinition{"--type", 1, "NAME", "this device type's rows only"},
    jsonOption,
    OptionDefinition{"--set", 3, "ROW COLUMN VALUE", "change one value of the type; may be repeated"},
    OptionDefinition{"--reset", 0, "", "restore the defaults of every type"},
};

constexpr std::string_view criteriaDetails =
    "Rows: 0 Live Stat Status (LSS), 1 Name, 2 IP Address, 3 Username, 4 MAC/Port, 5 to Jack/#,\n"
    "6 Comment/Marker, 7 / Text, 8 \\ Text, 9 -- Text, 10 | Text, 11 To Do; by number or label.\n"
    "Columns: Command, Argument, Delimiter, FieldPos, SearchFor, IfMatch, Condition.\n"
    "Arguments: Ping, NS Lookup: HOST...; NS Lookup(reverse): ADDRESS...; SNMPGet: HOST COMMUNITY OID;\n"
    "Registry: \\\\HOST\\HIVE\\KEY\\...\\VALUE; Search in Text File: FILE; Search for File: FOLDER/NAMES*;\n"
    "Set Value: TEXT; with $mvN, $mvI, $mvU, $mvM, $mvJ, $mvC ... for the device's fields (quote them).\n";

ExitStatus runCriteria(CommandContext& context) {
    std::int32_t type = 0;
    if (const auto name = context.arguments.value("--type")) {
        const auto found = typeArgument(*name);
        if (!found)
            return usageError(context, found.error().sentence);
        type = found.value();
    }
    if (context.arguments.has("--set") && type == 0)
        return usageError(context, "option --set needs --type: say of which device type the row is");
    if (context.arguments.has("--reset") && type != 0 && !context.arguments.has("--set"))
        return usageError(context,
                          "option --reset goes without --type: it restores the defaults of every type");
    if (context.arguments.has("--set") || context.arguments.has("--reset"))
        return changeRows(context, type);
    return viewDatafile(context.out, context.arguments.positionals[0], [&](const CMirovaneDoc& doc) {
        if (context.arguments.has("--json"))
            printJson(context.out, doc, type);
        else
            printTable(context.out, doc, type);
    });
}

} // namespace

constinit const Command criteriaCommand{
    .name = "criteria",
    .help = "print or change the Live Stat criteria",
    .usage = "FILE [--type NAME] [--json] [--set ROW COLUMN VALUE]... [--reset]",
    .least = 1,
    .most = 1,
    .options = criteriaOptions,
    .details = criteriaDetails,
    .run = runCriteria,
};

} // namespace mirovane
