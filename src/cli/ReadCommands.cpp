#include "cli/Commands.h"
#include "cli/DatafileCheck.h"
#include "cli/Datafiles.h"
#include "cli/ListRequest.h"
#include "cli/RecordJson.h"
#include "cli/TextTable.h"

#include <array>

namespace mirovane {

namespace {

void printRecordTable(Output& out, const Datafile::RecordList& records) {
    TextTable table(
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

void printListTable(Output& out, const std::vector<const CHardware*>& rows) {
    std::vector<TableColumn> columns;
    columns.reserve(columnRanks.size());
    for (std::size_t column = 0; column < columnRanks.size(); ++column)
        columns.push_back({std::string(listColumns()[column].title), columnRanks[column],
                           isNumberColumn(static_cast<ListColumn>(column))});
    TextTable table(std::move(columns));
    for (const CHardware* row : rows) {
        std::vector<std::string> cells;
        cells.reserve(columnRanks.size());
        for (int column = 0; column < listColumnCount; ++column)
            cells.push_back(printable(listCellText(*row, static_cast<ListColumn>(column))));
        table.addRow(std::move(cells));
    }
    table.print(out);
}

void printListJson(Output& out, const std::vector<const CHardware*>& rows) {
    JsonArrayPrinter printer(out);
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

} // namespace

ExitStatus runRecords(CommandContext& context) {
    const auto content = readDatafile(context.out, context.arguments.positionals[0]);
    if (!content)
        return ExitStatus::FileFailed;
    if (!context.arguments.has("--json")) {
        printRecordTable(context.out, content->records);
        return ExitStatus::Done;
    }
    JsonArrayPrinter printer(context.out);
    for (const auto& record : content->records)
        printer.add(recordObject(*record));
    printer.end();
    return ExitStatus::Done;
}

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

} // namespace mirovane
