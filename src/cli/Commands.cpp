#include "cli/Commands.h"

#include "platform/Clock.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr OptionDefinition json{"--json", 0, "", "print one JSON document"};

constexpr std::array newOptions{
    OptionDefinition{"--force", 0, "", "replace FILE where it exists"},
};

constexpr std::array recordsOptions{
    OptionDefinition{"--json", 0, "", "an array of objects with all stored fields, instead of a table"},
};

constexpr std::array listOptions{
    OptionDefinition{"--json", 0, "", "an array of objects: the cells' texts by field name"},
    OptionDefinition{"--floor", 0, "", "devices on the floor map only"},
    OptionDefinition{"--misc", 0, "", "devices in the Discovered/Misc window only"},
    OptionDefinition{"--type", 1, "NAME", "devices of this type only; may be repeated"},
    OptionDefinition{"--sort", 1, "COLUMN", "by this column's title or field (usually Modified)"},
    OptionDefinition{"--descending", 0, "", "greatest first"},
};

constexpr std::array importOptions{
    OptionDefinition{"--misc", 0, "", "put them into the Discovered/Misc window instead of on the floor map"},
    OptionDefinition{"--position", 1, "X,Y", "where they stand on the floor map (usually 0,0)"},
};

constexpr std::array exportOptions{
    OptionDefinition{"--delimiter", 1, "TEXT", "between two fields, instead of a TAB"},
    OptionDefinition{"--quote-all", 0, "", "every field in double quotes"},
    OptionDefinition{"--quote-comment", 0, "", "the comment in double quotes"},
    OptionDefinition{"--header", 0, "", "begin with a line of column names"},
    OptionDefinition{"--floor", 0, "", "devices on the floor map only"},
    OptionDefinition{"--misc", 0, "", "devices in the Discovered/Misc window only"},
    OptionDefinition{"--type", 1, "NAME", "devices of this type only; may be repeated"},
    OptionDefinition{"--sort", 1, "COLUMN", "by this column's title or field (usually Modified)"},
    OptionDefinition{"--descending", 0, "", "greatest first"},
};

constexpr std::array checkOptions{json};

constexpr std::array addOptions{
    OptionDefinition{"--type", 1, "NAME", "the device's type, such as Computer or \"Card Module\""},
    OptionDefinition{"--misc", 0, "", "put it into the Discovered/Misc window instead of on the floor map"},
};

constexpr std::array criteriaOptions{
    OptionDefinition{"--type", 1, "NAME", "this device type's rows only"},
    json,
    OptionDefinition{"--set", 3, "ROW COLUMN VALUE", "change one value of the type; may be repeated"},
    OptionDefinition{"--reset", 0, "", "restore the defaults of every type"},
};

constexpr std::array rangesOptions{
    OptionDefinition{"--add", 2, "FROM TO", "add a range, both ends included; may be repeated"},
    OptionDefinition{"--delete", 1, "N", "delete the range of this number; may be repeated"},
    json,
};

constexpr std::array pingOptions{
    OptionDefinition{"-v", 0, "", "say first by which kind of socket, or what to do when none is allowed"},
};

constexpr std::array registryOptions{
    OptionDefinition{"--credentials", 1, "FILE", "Samba authentication file that only its owner can read"},
    OptionDefinition{"--smb-port", 1, "N", "ask on this port instead of 445"},
};

constexpr std::array testOptions{
    OptionDefinition{"--json", 0, "", "an array of objects, one for each row"},
    registryOptions[0],
    registryOptions[1],
};

constexpr std::array stationOptions{
    OptionDefinition{"--live-stat", 0, "", "run Live Stat; without it the station only watches"},
    OptionDefinition{"--discover", 0, "", "run Live Discover over the ranges of the datafile"},
    OptionDefinition{"--take-over", 0, "", "answer Yes when another station runs what is to run here"},
    OptionDefinition{"--now", OptionDefinition::recordIDs, "RECID...",
                     "start with Live Stat Now on these devices"},
    OptionDefinition{"--loops", 1, "N",
                     "end after N loops over the devices (a pass of --now alone counts as one)"},
    OptionDefinition{"--for", 1, "SECONDS", "end after this time"},
    OptionDefinition{"--run-sec", 1, "N", "pause between two runs in seconds, for this station only"},
    OptionDefinition{"--per-run", 1, "N", "device checks per run, for this station only"},
    registryOptions[0],
    registryOptions[1],
    OptionDefinition{"--json", 0, "", "one JSON object a line"},
};

constexpr std::array sweepOptions{
    OptionDefinition{"--dry-run", 0, "", "print what answers and is new; write nothing at all"},
    OptionDefinition{"--rate", 1, "N", "probes a second, 1 to 10000 (usually 500)"},
    OptionDefinition{"--take-over", 0, "", "answer Yes when another station runs Live Discover"},
    OptionDefinition{"--yes", 0, "", "also where it takes more than ten minutes"},
    OptionDefinition{"--json", 0, "", "an array of objects: IPAddress, Name, RecID"},
};

constexpr std::string_view listDetails =
    "On a terminal only the columns that fit are shown; into a pipe or a file, all seventeen.\n"
    "Columns: ID, Modified, LS, Priority, Reminder, To Do, Device, Name, IP Address, Username,\n"
    "MAC Address, to Jack/#, Comment, / Text, \\ Text, - Text, | Text.\n";

constexpr std::string_view checkDetails =
    "Tells which station runs Live Stat and Live Discover, and how old its last sign of life is.\n"
    "Exit status 1 when anything is odd, 3 when the file cannot be read at all.\n";

constexpr std::string_view copyDetails =
    "Without RECID all devices are copied. A line has 19 fields with a TAB between them: Modified, state\n"
    "(Active, Inactive), reminder, to do, type, name, IP address, user name, MAC address, to jack, comment,\n"
    "then \"Check\" and text of the /, \\, - and | line. `import` reads them back.\n";

constexpr std::string_view importDetails =
    "TEXTFILE holds a line per device as `copy` prints it; - is standard input. The fifth field, the type,\n"
    "must be there, every other may be empty. Dates are in the locale's form or as 2026-11-22 14:30; "
    "without\n"
    "one Modified is now. All devices are added, or none when a line makes no sense.\n";

constexpr std::string_view exportDetails =
    "OUT is replaced whole where it exists; - is standard output. A line per device: Modified, LS, Pri,\n"
    "Reminder, To Do, Device, Name, IP Address, Username, MAC Address, to Jack/#, Comment, / Text, \\Text,\n"
    "- Text, | Text. Lines end with CR LF. Line breaks in the comment become blanks, nothing is escaped.\n";

constexpr std::string_view fieldDetails =
    "Fields: Type, State, Position, Name, IPAddress, MACAddress, Username, ToJack, Comment, SlashText,\n"
    "BackslashText, HorzText, VertText, SlashDraw, BackslashDraw, HorzDraw, VertDraw, ReminderOn,\n"
    "ReminderDate, ToDo, Priority.\n"
    "Values: Position=100,200  State=On  SlashDraw=1  ReminderDate=\"2026-11-22 14:30\" (empty: none)\n";

constexpr std::string_view criteriaDetails =
    "Rows: 0 Live Stat Status (LSS), 1 Name, 2 IP Address, 3 Username, 4 MAC/Port, 5 to Jack/#,\n"
    "6 Comment/Marker, 7 / Text, 8 \\ Text, 9 -- Text, 10 | Text, 11 To Do; by number or label.\n"
    "Columns: Command, Argument, Delimiter, FieldPos, SearchFor, IfMatch, Condition.\n"
    "Arguments: Ping, NS Lookup: HOST...; NS Lookup(reverse): ADDRESS...; SNMPGet: HOST COMMUNITY OID;\n"
    "Registry: \\\\HOST\\HIVE\\KEY\\...\\VALUE; Search in Text File: FILE; Search for File: FOLDER/NAMES*;\n"
    "Set Value: TEXT; with $mvN, $mvI, $mvU, $mvM, $mvJ, $mvC ... for the device's fields (quote them).\n";

constexpr std::string_view rangesDetails =
    "Addresses are four numbers from 0 to 255, a range goes from a low one to a high one. Leave out the "
    "first\nand the last address of a subnet. Numbers are those that the command prints; all of --delete are "
    "taken\nas they were before.\n";

constexpr std::string_view testDetails =
    "Runs the rows as Live Stat does, by the fields and the state that the device has in FILE, and writes\n"
    "nothing. ROW is a number from 0 to 11 or a label; without one every row that does something is tried.\n"
    "A text file is searched even when it has not changed since Live Stat searched it.\n"
    "Exit status 1 when a row that ran found no match, or no device has that RECID.\n";

constexpr std::string_view pingDetails = "Exit status 1 when any of them is silent.\n";
constexpr std::string_view lookupDetails = "Exit status 1 when any of them is not found.\n";

constexpr std::string_view snmpGetDetails =
    "Prints the text of each value as a device field shows it, one line each, in the order given. What has "
    "no\n"
    "value is told on standard error: the agent's error status, or that nobody answered within a second.\n"
    "Exit status 1 when any of them has no value.\n"
    "OID: numbers joined by dots, such as 1.3.6.1.2.1.1.5.0.\n";

constexpr std::string_view sweepDetails =
    "Asks every address of the ranges (mirovanectl ranges) that no device has, once, and adds the hosts "
    "that\n"
    "answer to the Discovered/Misc window, with one save at the end. SIGINT and SIGTERM end it: what was\n"
    "found until then is added.\n"
    "Exit status 1 when nothing new is found or the sweep did not reach its end, 4 when another station "
    "runs\n"
    "Live Discover and --take-over was not given.\n";

constexpr std::string_view matchDetails =
    "Without TEXT each line of standard input is tested, and those that match are printed.\n"
    "Letters match whatever their case. The pattern is searched for anywhere in the text; ^ and $ tie it to\n"
    "the beginning and the end. A pattern that begins with - goes behind --.\n"
    "Exit status 1 when nothing matches, 2 when the pattern is none.\n";

constexpr std::string_view registryDetails =
    "PATH: '\\\\HOST\\HIVE\\KEY\\...\\VALUE', without HOST this computer. HIVE is one of "
    "HKEY_LOCAL_MACHINE,\n"
    "HKEY_USERS, HKEY_CLASSES_ROOT and HKEY_CURRENT_USER; the latter of another computer is that of the "
    "first\n"
    "user logged on there who has the value. A path that ends in \\ names a key's default value.\n"
    "Prints the value's text up to the first zero byte. Exit status 1 when it is not found.\n"
    "The credentials file has the lines \"username = NAME\", \"password = TEXT\" and, for a domain account,\n"
    "\"domain = NAME\"; its mode is 0600. Without --credentials it is samba-credentials beside the settings\n"
    "(~/.config/mirovane); where that is missing too, the user's Kerberos ticket serves.\n"
    "Needs Samba's net (package samba-common-bin).\n";

constexpr std::string_view loggedOnDetails =
    "Prints the user's name; of several the first, with their number: anna(2).\n"
    "Exit status 1 when nobody is logged on or the computer cannot be asked.\n"
    "Credentials: as for `mirovanectl registry --help`.\n";

constexpr std::string_view stationDetails =
    "Prints each line of the message log as it is written. SIGTERM and SIGINT end it: Live Stat and Live\n"
    "Discover are switched off and the datafile saved. SIGHUP opens the datafile again. Exit status 4 when\n"
    "another station runs what was asked for and --take-over was not given.\n";

constexpr std::array table{
    Command{"new", "create a new datafile", "FILE [--force]", 1, 1, newOptions, "", runNew},
    Command{"records", "print every record as it is stored", "FILE [--json]", 1, 1, recordsOptions, "",
            runRecords},
    Command{"list", "print the devices as the List View shows them",
            "FILE [--json] [--floor] [--misc] [--type NAME]... [--sort COLUMN] [--descending]", 1, 1,
            listOptions, listDetails, runList},
    Command{"check", "read a datafile and report every oddity", "FILE [--json]", 1, 1, checkOptions,
            checkDetails, runCheck},
    Command{"upgrade", "save a datafile in the current layout", "FILE", 1, 1, {}, "", runUpgrade},
    Command{"add", "add a device", "FILE --type NAME [--misc] [FIELD=VALUE]...", 1, anyNumber, addOptions,
            fieldDetails, runAdd},
    Command{"set",
            "change fields of a device",
            "FILE RECID FIELD=VALUE...",
            3,
            anyNumber,
            {},
            fieldDetails,
            runSet},
    Command{"delete", "delete devices", "FILE RECID...", 2, anyNumber, {}, "", runDelete},
    Command{"copy",
            "print devices in the clipboard's text form",
            "FILE [RECID...]",
            1,
            anyNumber,
            {},
            copyDetails,
            runCopy},
    Command{"import", "add the devices of a text in the clipboard's form",
            "FILE TEXTFILE [--misc] [--position X,Y]", 2, 2, importOptions, importDetails, runImport},
    Command{"export", "write the List View's rows into a text file",
            "FILE OUT [--delimiter TEXT] [--quote-all] [--quote-comment] [--header] [--floor] [--misc]"
            " [--type NAME]... [--sort COLUMN] [--descending]",
            2, 2, exportOptions, exportDetails, runExport},
    Command{"criteria", "print or change the Live Stat criteria",
            "FILE [--type NAME] [--json] [--set ROW COLUMN VALUE]... [--reset]", 1, 1, criteriaOptions,
            criteriaDetails, runCriteria},
    Command{"ranges", "print or change the address ranges of Live Discover",
            "FILE [--add FROM TO]... [--delete N]... [--json]", 1, 1, rangesOptions, rangesDetails,
            runRanges},
    Command{"station", "run a station without a display",
            "FILE [--live-stat] [--discover] [--take-over] [--now RECID...] [--loops N] [--for SECONDS] "
            "[--run-sec N]"
            " [--per-run N] [--json]",
            1, 1, stationOptions, stationDetails, runStation},
    Command{"sweep", "ask all Live Discover ranges at once and add who answers",
            "FILE [--dry-run] [--rate N] [--take-over] [--yes] [--json]", 1, 1, sweepOptions, sweepDetails,
            runSweep},
    Command{"ping", "send one echo to each host, as Live Stat does", "[-v] HOST...", 1, anyNumber,
            pingOptions, pingDetails, runPing},
    Command{"lookup",
            "look up addresses of names and names of addresses",
            "HOST_OR_ADDRESS...",
            1,
            anyNumber,
            {},
            lookupDetails,
            runLookup},
    Command{"snmpget",
            "ask an SNMP agent for values, as Live Stat does",
            "HOST[:PORT] COMMUNITY OID...",
            3,
            anyNumber,
            {},
            snmpGetDetails,
            runSnmpGet},
    Command{"registry", "read a value of a computer's registry", "PATH [--credentials FILE] [--smb-port N]",
            1, 1, registryOptions, registryDetails, runRegistry},
    Command{"loggedon", "tell who is logged on to a computer", "HOST [--credentials FILE] [--smb-port N]", 1,
            1, registryOptions, loggedOnDetails, runLoggedOn},
    Command{"match",
            "test a criteria pattern against a text or lines",
            "PATTERN [TEXT]",
            1,
            2,
            {},
            matchDetails,
            runMatch},
    Command{"test", "try criteria rows for a device and change nothing",
            "FILE RECID [ROW...] [--json] [--credentials FILE] [--smb-port N]", 2, anyNumber, testOptions,
            testDetails, runTest},
};

} // namespace

std::span<const Command> commands() {
    return table;
}

const Command* findCommand(std::string_view name) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [name](const Command& command) { return command.name == name; });
    return found == table.end() ? nullptr : &*found;
}

TimeStamp secondsNow() {
    return static_cast<TimeStamp>(std::chrono::system_clock::to_time_t(SystemClock().wall()));
}

ExitStatus usageError(CommandContext& context, std::string_view sentence) {
    context.out.diagnose(sentence);
    return ExitStatus::Usage;
}

} // namespace mirovane
