#include "ui/frame/table/CommandTable.h"

#include "model/Settings.h"

#include <QKeySequence>

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace mirovane {
namespace {

struct PromisedRow {
    MenuId menu;
    std::string_view text;
    std::string_view keys = {};
    bool checkable = false;

    bool is(const CommandDefinition& command) const { return command.menu == menu && command.text == text; }
};

// clang-format off
/// The menus top to bottom, as people's instructions and habits rely on them. Commands that are not in this
/// list may come between them.
constexpr auto promised = std::to_array<PromisedRow>({
    {MenuId::File, "&New", "Ctrl+N"}, {MenuId::File, "&Open...", "Ctrl+O"},
    {MenuId::File, "&Save", "Ctrl+S"}, {MenuId::File, "Save &As..."},
    {MenuId::File, "&Print...", "Ctrl+P"}, {MenuId::File, "Print Pre&view"},
    {MenuId::File, "P&rint Setup..."}, {MenuId::File, "&Export..."}, {MenuId::File, "Sen&d..."},
    {MenuId::File, ""}, {MenuId::File, "E&xit"},
    {MenuId::Edit, "&Undo", "Ctrl+Z Alt+Backspace"}, {MenuId::Edit, "Cu&t", "Ctrl+X Shift+Del"},
    {MenuId::Edit, "&Copy", "Ctrl+C Ctrl+Ins"}, {MenuId::Edit, "P&aste", "Ctrl+V Shift+Ins"},
    {MenuId::Edit, "&Delete", "Del"}, {MenuId::Edit, "&Move to"}, {MenuId::Edit, "&Find...", "Ctrl+F"},
    {MenuId::Edit, "Find &Next", "F3"}, {MenuId::Edit, "Find Reminder Due", "F4"},
    {MenuId::Select, "&All", "Ctrl+A"}, {MenuId::Select, "&Boxed", "Ctrl+B"},
    {MenuId::Select, "Location Markers"}, {MenuId::Select, "Loca&tion Marker's Marked Area", "Ctrl+T"},
    {MenuId::Select, "Jack"}, {MenuId::Select, "Active Computers"}, {MenuId::Select, "Active Printers"},
    {MenuId::Select, "Active Laptops"}, {MenuId::Select, "Active Routers"},
    {MenuId::Select, "Active Switches"}, {MenuId::Select, "Active Phones"},
    {MenuId::Select, "Active Camera"}, {MenuId::Select, "Active Card Modules"},
    {MenuId::Select, "Active UPS"}, {MenuId::Select, "Active Wireless"},
    {MenuId::Select, "Active Unkown"}, {MenuId::Select, "Inactive Computers"},
    {MenuId::Select, "Inactive Printers"}, {MenuId::Select, "Inactive Laptops"},
    {MenuId::Select, "Inactive Routers"}, {MenuId::Select, "Inactive Switches"},
    {MenuId::Select, "Inactive Phones"}, {MenuId::Select, "Inactive Camera"},
    {MenuId::Select, "Inactive Card Modules"}, {MenuId::Select, "Inactive UPS"},
    {MenuId::Select, "Inactive Wireless"}, {MenuId::Select, "Inactive Unknown"},
    {MenuId::Edit, "&Properties", "Alt+Return Alt+Enter"}, {MenuId::RightClick, "P&roperties"},
    {MenuId::View, "&Toolbar", "", true}, {MenuId::View, "&Status Bar", "", true},
    {MenuId::View, "LS Status on Devices", "", true}, {MenuId::View, "Reminder on Title Bar", "", true},
    {MenuId::View, "Reminder on Devices", "", true}, {MenuId::View, "&Discover/Misc", "Ctrl+D"},
    {MenuId::View, "&Message logs", "Ctrl+M"}, {MenuId::View, "&List View", "Ctrl+L"},
    {MenuId::Hide, "Location Mar&ker", "", true}, {MenuId::Hide, "&Jacks", "", true},
    {MenuId::Hide, "&Computers", "", true}, {MenuId::Hide, "&Printers", "", true},
    {MenuId::Hide, "Lap&tops", "", true}, {MenuId::Hide, "&Routers", "", true},
    {MenuId::Hide, "&Switches", "", true}, {MenuId::Hide, "P&hones", "", true},
    {MenuId::Hide, "Ca&mera", "", true}, {MenuId::Hide, "Car&d Module", "", true},
    {MenuId::Hide, "&UPS", "", true}, {MenuId::Hide, "Wir&eless", "", true},
    {MenuId::Hide, "Unknown", "", true}, {MenuId::Hide, "&Floor Map", "", true}, {MenuId::Hide, "&All"},
    {MenuId::Hide, "&None"},
    {MenuId::Zoom, "&In  5%", "+"}, {MenuId::Zoom, "&Out 5%", "-"}, {MenuId::Zoom, "&25%"},
    {MenuId::Zoom, "&50%"}, {MenuId::Zoom, "&100%", "*"}, {MenuId::Zoom, "2&00%"},
    {MenuId::Zoom, "&300%"}, {MenuId::Zoom, "Fit to &width"}, {MenuId::Zoom, "Fit to &Height"},
    {MenuId::Zoom, "Fit &all"}, {MenuId::Zoom, "&Custom...", "/"},
    {MenuId::Zoom, "Zoom Devices", "", true}, {MenuId::Zoom, "Zoom Floormap", "", true},
    {MenuId::Properties, "Computer name", "1", true}, {MenuId::Properties, "IP Address", "2", true},
    {MenuId::Properties, "Username", "3", true}, {MenuId::Properties, "MAC Address", "4", true},
    {MenuId::Properties, "Jack", "5", true}, {MenuId::Properties, "Comment", "6", true},
    {MenuId::Properties, "/ Text", "7", true}, {MenuId::Properties, "\\ Text", "8", true},
    {MenuId::Properties, "- Text", "9", true}, {MenuId::Properties, "| Text", "0", true},
    {MenuId::Properties, "Draw /", "Ctrl+7", true}, {MenuId::Properties, "Draw \\", "Ctrl+8", true},
    {MenuId::Properties, "Draw -", "Ctrl+9", true}, {MenuId::Properties, "Draw |", "Ctrl+0", true},
    {MenuId::Tools, "&Floor Map..."}, {MenuId::Tools, "Users Photo Path.."},
    {MenuId::Tools, "Live Stat/Discover &Option..."}, {MenuId::Tools, "&Live Stat (LS - Loop)", "", true},
    {MenuId::Tools, "Live Discover (LD - Loop)", "", true},
    {MenuId::Tools, "Perform Live Stat &Now on selected object(s)"}, {MenuId::Tools, "Reset Live Status"},
    {MenuId::Tools, "Track \"Live Stat\"", "", true}, {MenuId::Tools, "&Group by proximity"},
    {MenuId::Tools, "Add &Applications.."}, {MenuId::Tools, "Add Location Mar&ker"},
    {MenuId::Tools, "Add &Jack"}, {MenuId::Tools, "Add &Computer"}, {MenuId::Tools, "Add &Printer"},
    {MenuId::Tools, "Add Lap&top"}, {MenuId::Tools, "Add &Router"}, {MenuId::Tools, "Add &Switch"},
    {MenuId::Tools, "Add P&hone"}, {MenuId::Tools, "Add Ca&mera"}, {MenuId::Tools, "Add Car&d Module"},
    {MenuId::Tools, "Add &UPS"}, {MenuId::Tools, "Add Wir&eless"}, {MenuId::Tools, "Add Unknown"},
    {MenuId::Help, "&Help Topics", "F1"}, {MenuId::Help, "&About Mirovane..."},
});
// clang-format on

std::string mnemonic(std::string_view text) {
    const auto mark = text.find('&');
    if (mark == std::string_view::npos || mark + 1 == text.size())
        return {};
    return {static_cast<char>(std::toupper(static_cast<unsigned char>(text[mark + 1])))};
}

std::string place(MenuId id) {
    const MenuDefinition* menu = findMenu(id);
    if (menu)
        return std::string(menu->name);
    return id == MenuId::RightClick ? "the menu of the right button" : "the menu bar";
}

TEST(CommandTableTest, EveryPromisedCommandIsInItsPlace) {
    auto from = commandTable().begin();
    for (const PromisedRow& row : promised) {
        const auto found =
            std::find_if(from, commandTable().end(), [&row](const auto& command) { return row.is(command); });
        if (found == commandTable().end()) {
            const bool elsewhere =
                std::ranges::any_of(commandTable(), [&row](const auto& command) { return row.is(command); });
            ADD_FAILURE() << row.text << (elsewhere ? " comes too early in " : " is not in ")
                          << place(row.menu);
            continue;
        }
        EXPECT_EQ(found->keys, row.keys) << row.text;
        EXPECT_EQ(found->checkable, row.checkable) << row.text;
        from = found + 1;
    }
}

TEST(CommandTableTest, EveryKeyAndNameLeadsToOneCommand) {
    std::map<QKeySequence, std::string_view> owners;
    std::set<std::string_view> names;
    for (const CommandDefinition& command : commandTable()) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name << " is there twice";
        std::istringstream keys{std::string(command.keys)};
        for (std::string key; keys >> key;) {
            const auto sequence = QKeySequence::fromString(QString::fromStdString(key));
            EXPECT_NE(sequence[0].key(), Qt::Key_unknown) << key << " is not a key";
            EXPECT_TRUE(owners.emplace(sequence, command.name).second)
                << key << " belongs to " << owners[sequence] << " and " << command.name;
        }
    }
}

/// Those of a menu's commands and those of the menus in it.
TEST(CommandTableTest, MnemonicsDifferWithinAMenu) {
    std::set<std::string> taken;
    for (const MenuDefinition& menu : menuTable())
        EXPECT_TRUE(taken.insert(place(menu.parent) + mnemonic(menu.text)).second) << menu.text;
    for (const CommandDefinition& command : commandTable()) {
        const std::string letter = mnemonic(command.text);
        if (!letter.empty() && command.menu != MenuId::None)
            EXPECT_TRUE(taken.insert(place(command.menu) + letter).second) << command.text;
    }
}

TEST(CommandTableTest, EveryCommandCanBeFoundAndExplainsItself) {
    for (const CommandDefinition& command : commandTable()) {
        EXPECT_FALSE(command.help.empty()) << command.name;
        EXPECT_FALSE(command.menu == MenuId::None && command.keys.empty())
            << command.name << " cannot be reached";
        if (command.id == CommandId::ViewDisplayToggle)
            EXPECT_NE(displayToggle(command.setting), nullptr) << command.setting;
        CommandState nothing;
        CommandState everything;
        for (const NeedDefinition& need : needTable())
            everything.*need.met = true;
        EXPECT_EQ(unmetReason(command.needs, nothing).empty(), command.needs == CommandNeeds::Nothing)
            << command.name << " is disabled for no reason";
        EXPECT_TRUE(unmetReason(command.needs, everything).empty()) << command.name;
    }
}

} // namespace
} // namespace mirovane
