#include "model/records/ActionCatalogue.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr ActionInputs searches{
    .Argument = true, .Extraction = true, .SearchFor = true, .IfMatch = true, .Condition = true};
constexpr ActionInputs looksUp{.Argument = true, .IfMatch = true, .Condition = true};

constexpr std::array catalogue = {
    ActionEntry{.name = Action::DoNothing},
    ActionEntry{.name = Action::Ping,
                .inputs = {.Argument = true, .Condition = true},
                .argumentSyntax = "<Name> <IPAddress>",
                .testExample = {.Argument = "$mvI $mvI",
                                .Condition = "On",
                                .description = "Ping using 'Name' field, if not successful, use 'IP Address' "
                                               "field. If successful set Live Stat to On"}},
    ActionEntry{.name = Action::SearchInTextFile,
                .inputs = searches,
                .argumentSyntax = "<Filename>",
                .testExample = {.Argument = "C:\\Temp\\Text.txt",
                                .SearchFor = "$mvN",
                                .Condition = "On",
                                .description = "Search in the file line by line that matches the 'Name' "
                                               "field entry. If match is found, set LS Indicator to On"},
                .fieldExample = {.Argument = "C:\\Temp\\Text.txt",
                                 .Delimiter = ",",
                                 .FieldPos = "2",
                                 .SearchFor = "$mvN",
                                 .Condition = "On",
                                 .description =
                                     "If LS Indicator is On for this device, search in the file. If found a "
                                     "match, extract the 2nd field of the line and assigns it to the field"}},
    ActionEntry{
        .name = Action::SearchForFile,
        .inputs = searches,
        .argumentSyntax = "<Folder Path>\\<*|*.txt|..>",
        .testExample = {.Argument = "C:\\Temp\\*",
                        .SearchFor = "$mvU",
                        .Condition = "On",
                        .description = "Search all files in the Temp folder for a filename that matches the "
                                       "'Username' field entry. If match is found, set LS Indicator to On"},
        .fieldExample = {.Argument = "C:\\Temp\\*",
                         .SearchFor = "$mvU",
                         .Condition = "On",
                         .description =
                             "If device is On, search the Temp folder for a filename that matches the "
                             "'Username' field entry. If found, the filename is assigned to the field"}},
    ActionEntry{
        .name = Action::Registry,
        .inputs = {.Argument = true, .SearchFor = true, .IfMatch = true, .Condition = true},
        .argumentSyntax = "\\\\<Hostname>\\<Key>\\..\\<Valuename>",
        .testExample = {.Argument = "\\\\$mvN\\hkey_current_user\\printers\\DeviceOLD",
                        .SearchFor = "DeskJet",
                        .Condition = "On",
                        .description = "Connects remotely to each computer and gets the registry value. If "
                                       "value matches the word 'DeskJet', sets the LS Indicator to On"},
        .fieldExample = {.Argument = "\\\\$mvN\\hkey_current_user\\printers\\DeviceOLD",
                         .SearchFor = "DeskJet",
                         .Condition = "On",
                         .description =
                             "If LS Indicator is On for this device, connects remotely and gets the registry "
                             "value. If value matches 'DeskJet', the value is assigned to the field"}},
    ActionEntry{.name = Action::WhosLogon,
                .inputs = {.IfMatch = true, .Condition = true},
                .fieldExample = {.Argument = "$mvN $mvI",
                                 .Condition = "On",
                                 .description =
                                     "If device is On, get the username that is logon to that remote "
                                     "computer using 'Name' field first then the 'IP' field"}},
    ActionEntry{.name = Action::SnmpGet,
                .inputs = searches,
                .argumentSyntax = "<hname|IP> <cmty> <oid>",
                .testExample = {.Argument = "$mvI public 1.3.5.2.1.1",
                                .Condition = "On",
                                .description = "'IP Address' field, Community name=public, oid=1.3.5.2.1.1. "
                                               "If match is found, sets LS Indicator to On"},
                .fieldExample = {.Argument = "$mvI public 1.3.5.2.1.1",
                                 .Condition = "On",
                                 .description =
                                     "If device is On, get the value from the remote host SNMP agent. If "
                                     "found a match (blank is consider a match), assigns it to the field"}},
    ActionEntry{.name = Action::NsLookup,
                .inputs = looksUp,
                .argumentSyntax = "<Hostname>",
                .fieldExample =
                    {.Argument = "$mvN",
                     .Condition = "On",
                     .description =
                         "If LS Indicator is On for this device, performs a Hostname-to-IP Address lookup "
                         "using the entry in the 'Name' field. The result is assigned to the field"}},
    ActionEntry{
        .name = Action::NsLookupReverse,
        .inputs = looksUp,
        .argumentSyntax = "<IP Address>",
        .fieldExample = {.Argument = "$mvI",
                         .Condition = "On",
                         .description =
                             "If LS Indicator is On for this device, performs an IP-to-Hostname lookup using "
                             "the entry in the 'IP Address' field. The result is assigned to the field"}},
    ActionEntry{
        .name = Action::SetValue,
        .inputs = looksUp,
        .argumentSyntax = "<Value>",
        .fieldExample = {.Argument = "Hello",
                         .Condition = "On",
                         .description = "If device is On, set the property field to the value 'Hello'"}},
    ActionEntry{
        .name = Action::MatchToJack,
        .inputs = {.Condition = true},
        .testExample =
            {.Condition = "On",
             .description =
                 "If the device Jack # field matches other devices 'to Jack' field, set Live stat to On"}},
};

constexpr std::array<std::string_view, 3> conditions{"On", "Off", "On/Off"};

constexpr int jackRow = 5;
constexpr int commentRow = 6;

} // namespace

std::span<const ActionEntry> actionCatalogue() {
    return catalogue;
}

const ActionEntry& actionEntry(std::string_view name) {
    const auto found = std::ranges::find(catalogue, name, &ActionEntry::name);
    return found == catalogue.end() ? catalogue.front() : *found;
}

std::span<const std::string_view> conditionsForRow(int row) {
    return std::span(conditions).first(row == 0 ? 2 : 3);
}

bool actionChoosable(std::int32_t type, int row) {
    return floorCode(type) != DeviceType::Jack || row == 0 || row == jackRow || row == commentRow;
}

} // namespace mirovane
