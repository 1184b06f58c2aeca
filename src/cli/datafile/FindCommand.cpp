#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/datafile/DatafileCommands.h"
#include "model/find/QuickFind.h"
#include "model/rows/ListRows.h"

#include <QJsonObject>

namespace mirovane {

namespace {

constexpr std::string_view findDetails = "Every word of TEXT must be in some field of a device; upper and "
                                         "lower case are alike. A MAC address, or\n"
                                         "a part of one, is found in any notation: 02:1b:5e, 02-1B-5E, "
                                         "021b.5e, 021b5e. The best fit comes first:\n"
                                         "a name or an address that is TEXT, then those that begin with it, "
                                         "then the rest. \"Place\" is the nearest\n"
                                         "location marker. Exit status 1: nothing fits.\n";

std::string findText(const CommandContext& context) {
    std::string text;
    for (std::size_t place = 1; place < context.arguments.positionals.size(); ++place)
        text += (place > 1 ? " " : "") + std::string(context.arguments.positionals[place]);
    return text;
}

std::string cell(const CHardware& device, ListColumn column) {
    return printable(listCellText(device, column));
}

void printTable(COutput& out, CQuickFind& finder, const QuickFindResult& found) {
    CTextTable table({{"ID", 1, true},
                      {"LS", 3},
                      {"Device", 4},
                      {"Name", 0},
                      {"IP Address", 2},
                      {"Username", 5},
                      {"MAC Address", 7},
                      {"Place", 6}});
    for (const CHardware* device : found.devices)
        table.addRow({cell(*device, ListColumn::ID), cell(*device, ListColumn::LS),
                      cell(*device, ListColumn::Device), cell(*device, ListColumn::Name),
                      cell(*device, ListColumn::IPAddress), cell(*device, ListColumn::Username),
                      cell(*device, ListColumn::MACAddress), printable(quickFindPlace(finder, *device))});
    table.print(out);
}

void printJson(COutput& out, CQuickFind& finder, const QuickFindResult& found) {
    CJsonArrayPrinter printer(out);
    for (const CHardware* device : found.devices) {
        QJsonObject object = recordObject(*device);
        object.insert(QStringLiteral("Place"), jsonText(quickFindPlace(finder, *device)));
        printer.add(object);
    }
    printer.end();
}

ExitStatus runFind(CommandContext& context) {
    const std::string text = findText(context);
    if (text.find_first_not_of(" \t") == std::string::npos)
        return usageError(context, "TEXT is empty");
    bool any = false;
    const ExitStatus status =
        viewDatafile(context.out, context.arguments.positionals[0], [&](const CMirovaneDoc& document) {
            CQuickFind finder(document);
            const QuickFindResult found = finder.find(text);
            any = found.total > 0;
            if (context.arguments.has("--json"))
                printJson(context.out, finder, found);
            else if (any)
                printTable(context.out, finder, found);
        });
    return status == ExitStatus::Done && !any ? ExitStatus::No : status;
}

constexpr std::array findOptions{
    OptionDefinition{"--json", 0, "", "an array of objects with all stored fields, and \"Place\""},
};

} // namespace

constinit const Command findDevicesCommand{
    .name = "find",
    .help = "print the devices that a text fits in any field, best first",
    .usage = "FILE TEXT... [--json]",
    .least = 2,
    .most = anyNumber,
    .options = findOptions,
    .details = findDetails,
    .run = runFind,
};

} // namespace mirovane
