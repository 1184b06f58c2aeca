#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/datafile/DatafileCheck.h"
#include "cli/datafile/DatafileCommands.h"
#include "cli/datafile/ListRequest.h"

#include <array>

namespace mirovane {

namespace {

void printRecordTable(COutput& out, const Datafile::RecordList& records) {
    CTextTable table(
        {{"#", 2, true}, {"Type", 3, true}, {"Kind", 0}, {"RecID", 4, true}, {"Name", 1}, {"IPAddress", 5}});
    for (std::size_t place = 0; place < records.size(); ++place) {
        const CHardware& record = *records[place];
        table.addRow({std::to_string(place), std::to_string(record.Type), recordKind(record.Type),
                      std::to_string(record.RecID), printable(record.Name), printable(record.IPAddress)});
    }
    table.print(out);
}

/// On a narrow terminal a device is its name, its state and its address first.
constexpr std::array<int, listColumnCount> columnRanks{3, 8,  1, 9, 10, 11, 4,  0, 2,
                                                       5, 12, 6, 7, 13, 14, 15, 16};

bool isNumberColumn(ListColumn column) {
    return column == ListColumn::ID || column == ListColumn::Priority;
}

void printListTable(COutput& out, const std::vector<const CHardware*>& rows) {
    std::vector<TableColumn> columns;
    columns.reserve(columnRanks.size());
    for (std::size_t column = 0; column < columnRanks.size(); ++column)
        columns.push_back({std::string(listColumns()[column].title), columnRanks[column],
                           isNumberColumn(static_cast<ListColumn>(column))});
    CTextTable table(std::move(columns));
    for (const CHardware* row : rows) {
        std::vector<std::string> cells;
        cells.reserve(columnRanks.size());
        for (int column = 0; column < listColumnCount; ++column)
            cells.push_back(printable(listCellText(*row, static_cast<ListColumn>(column))));
        table.addRow(std::move(cells));
    }
    table.print(out);
}

void printListJson(COutput& out, const std::vector<const CHardware*>& rows) {
    CJsonArrayPrinter printer(out);
    for (const CHardware* row : rows) {
        QJsonObject object;
        for (int place = 0; place < listColumnCount; ++place) {
            const auto column = static_cast<ListColumn>(place);
            const std::string text = listCellText(*row, column);
            const QJsonValue value =
                isNumberColumn(column) ? QJsonValue(std::stoi(text)) : QJsonValue(jsonText(text));
            object.insert(jsonKey(listColumns()[static_cast<std::size_t>(place)].field), value);
        }
        printer.add(object);
    }
    printer.end();
}

constexpr std::array recordsOptions{
    OptionDefinition{"--json", 0, "", "an array of objects with all stored fields, instead of a table"},
};

ExitStatus runRecords(CommandContext& context) {
    const auto content = readDatafile(context.out, context.arguments.positionals[0]);
    if (!content)
        return ExitStatus::FileFailed;
    if (!context.arguments.has("--json")) {
        printRecordTable(context.out, content->records);
        return ExitStatus::Done;
    }
    CJsonArrayPrinter printer(context.out);
    for (const auto& record : content->records)
        printer.add(recordObject(*record));
    printer.end();
    return ExitStatus::Done;
}

} // namespace

constinit const Command recordsCommand{
    .name = "records",
    .help = "print every record as it is stored",
    .usage = "FILE [--json]",
    .least = 1,
    .most = 1,
    .options = recordsOptions,
    .run = runRecords,
};

namespace {

constexpr auto listOptions = joined(
    std::array{OptionDefinition{"--json", 0, "", "an array of objects: the cells' texts by field name"}},
    listRequestOptions);

constexpr std::string_view listDetails =
    "On a terminal only the columns that fit are shown; into a pipe or a file, all seventeen.\n"
    "Columns: ID, Modified, LS, Priority, Reminder, To Do, Device, Name, IP Address, Username,\n"
    "MAC Address, to Jack/#, Comment, / Text, \\ Text, - Text, | Text.\n";

ExitStatus runList(CommandContext& context) {
    const auto request = listRequest(context.arguments);
    if (!request)
        return usageError(context, request.error().sentence);
    const auto content = readDatafile(context.out, context.arguments.positionals[0]);
    if (!content)
        return ExitStatus::FileFailed;
    const auto rows = requestedRows(*content, request.value());
    if (context.arguments.has("--json"))
        printListJson(context.out, rows);
    else
        printListTable(context.out, rows);
    return ExitStatus::Done;
}

} // namespace

constinit const Command listCommand{
    .name = "list",
    .help = "print the devices as the List View shows them",
    .usage = "FILE [--json] [--floor] [--misc] [--type NAME]... [--sort COLUMN] [--descending]",
    .least = 1,
    .most = 1,
    .options = listOptions,
    .details = listDetails,
    .run = runList,
};

} // namespace mirovane
