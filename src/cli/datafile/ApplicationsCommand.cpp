#include "applications/Applications.h"
#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/datafile/DatafileCommands.h"

#include <QJsonObject>

#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

/// Numbers count from 1, as the command prints them.
struct Changes {
    std::vector<ApplicationValues> added;
    std::set<std::size_t> onMenu;
    std::set<std::size_t> offMenu;
    std::set<std::size_t> removed;
    std::optional<std::pair<std::size_t, std::size_t>> moved;

    bool any() const {
        return !added.empty() || !onMenu.empty() || !offMenu.empty() || !removed.empty() || moved;
    }

    std::size_t greatest() const {
        std::size_t number = moved ? std::max(moved->first, moved->second) : 0;
        for (const auto* set : {&onMenu, &offMenu, &removed})
            if (!set->empty())
                number = std::max(number, *set->rbegin());
        return number;
    }
};

Result<std::vector<std::size_t>, UsageError> numbersOf(const Arguments& arguments, const char* option) {
    std::vector<std::size_t> numbers;
    for (const std::string& text : arguments.values(option)) {
        const auto number = numberArgument(text, 1, std::numeric_limits<std::int32_t>::max());
        if (!number)
            return UsageError{"option " + std::string(option) + ": \"" + text +
                              "\" is not a number from 1 on"};
        numbers.push_back(static_cast<std::size_t>(*number));
    }
    return numbers;
}

std::optional<UsageError> readNumbers(const Arguments& arguments, Changes& changes) {
    for (const auto& [option, set] : {std::pair{"--on-menu", &changes.onMenu},
                                      {"--off-menu", &changes.offMenu},
                                      {"--remove", &changes.removed}}) {
        const auto numbers = numbersOf(arguments, option);
        if (!numbers)
            return numbers.error();
        set->insert(numbers.value().begin(), numbers.value().end());
    }
    const auto move = numbersOf(arguments, "--move");
    if (!move)
        return move.error();
    if (move.value().size() > 2)
        return UsageError{"option --move: only one entry can be moved at a time"};
    if (!move.value().empty())
        changes.moved.emplace(move.value()[0], move.value()[1]);
    if (changes.moved && !changes.removed.empty())
        return UsageError{"option --move: not together with --remove, which changes the numbers"};
    return std::nullopt;
}

Result<Changes, UsageError> changesFrom(const Arguments& arguments) {
    Changes changes;
    const auto words = arguments.values("--add");
    for (std::size_t at = 0; at + 1 < words.size(); at += 2) {
        if (words[at + 1].find_first_not_of(" \t") == std::string::npos)
            return UsageError{"option --add: the command of \"" + words[at] + "\" is empty"};
        changes.added.push_back({true, words[at], words[at + 1]});
    }
    if (const auto error = readNumbers(arguments, changes))
        return *error;
    return changes;
}

void setOnMenu(CMirovaneDoc& doc, const CHardware& record, bool onMenu) {
    ApplicationValues values = applicationFromRecord(record);
    values.onMenu = onMenu;
    changeApplication(doc, record, values);
}

std::optional<EditRefusal> apply(CMirovaneDoc& doc, const Changes& changes) {
    const auto records = applicationRecords(doc);
    if (changes.greatest() > records.size())
        return EditRefusal{"there is no application " + std::to_string(changes.greatest()) +
                               ": nothing was changed",
                           ExitStatus::No};
    for (const std::size_t number : changes.onMenu)
        setOnMenu(doc, *records[number - 1], true);
    for (const std::size_t number : changes.offMenu)
        setOnMenu(doc, *records[number - 1], false);
    if (changes.moved)
        moveApplication(doc, changes.moved->first - 1, changes.moved->second - 1);
    for (const std::size_t number : changes.removed)
        doc.remove(*records[number - 1]);
    for (const ApplicationValues& values : changes.added) {
        const CHardware* added = addApplication(doc);
        if (!added)
            return EditRefusal{"cannot add \"" + values.name + "\": the datafile is full",
                               ExitStatus::FileFailed};
        changeApplication(doc, *added, values);
    }
    return std::nullopt;
}

void printTable(COutput& out, const std::vector<const CHardware*>& records) {
    CTextTable table({{"N", 0, true}, {"On Menu", 1}, {"Name", 2}, {"Command", 3}});
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationValues values = applicationFromRecord(*records[i]);
        table.addRow({std::to_string(i + 1), values.onMenu ? "yes" : "no", printable(values.name),
                      printable(values.command)});
    }
    table.print(out);
}

void printJson(COutput& out, const std::vector<const CHardware*>& records) {
    CJsonArrayPrinter printer(out);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationValues values = applicationFromRecord(*records[i]);
        printer.add({{jsonKey("N"), static_cast<int>(i + 1)},
                     {jsonKey("OnMenu"), values.onMenu},
                     {jsonKey("Name"), jsonText(values.name)},
                     {jsonKey("Command"), jsonText(values.command)}});
    }
    printer.end();
}

ExitStatus runApplications(CommandContext& context) {
    const std::string& file = context.arguments.positionals[0];
    const auto changes = changesFrom(context.arguments);
    if (!changes)
        return usageError(context, changes.error().sentence);
    if (changes.value().any())
        return editDatafile(context.out, file, "Change applications",
                            [&](CMirovaneDoc& doc) { return apply(doc, changes.value()); });
    return viewDatafile(context.out, file, [&](const CMirovaneDoc& doc) {
        const auto records = applicationRecords(doc);
        if (context.arguments.has("--json"))
            printJson(context.out, records);
        else
            printTable(context.out, records);
    });
}

constexpr std::array applicationsOptions{
    OptionDefinition{"--add", 2, "NAME COMMAND", "add an entry, on the menu; may be repeated"},
    OptionDefinition{"--on-menu", 1, "N", "put the entry of this number on the menu; may be repeated"},
    OptionDefinition{"--off-menu", 1, "N", "take it off the menu; may be repeated"},
    OptionDefinition{"--remove", 1, "N", "remove the entry; may be repeated"},
    OptionDefinition{"--move", 2, "N TO", "move the entry to the place TO"},
    jsonOption,
};

constexpr std::string_view applicationsDetails =
    "Entries are printed in the order of the menu. All options take the numbers that the command prints, as\n"
    "they were before the first of them changed anything. In a COMMAND, $mvN and its like stand for fields "
    "of\n"
    "the device that it is started for.\n";

} // namespace

constinit const Command applicationsCommand{
    .name = "applications",
    .help = "print or change the External Applications",
    .usage = "FILE [--add NAME COMMAND]... [--on-menu N]... [--off-menu N]... [--remove N]... [--move N TO] "
             "[--json]",
    .least = 1,
    .most = 1,
    .options = applicationsOptions,
    .details = applicationsDetails,
    .run = runApplications,
};

} // namespace mirovane
