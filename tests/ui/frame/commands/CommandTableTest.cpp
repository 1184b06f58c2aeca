#include "ui/frame/commands/CommandTable.h"

#include "model/Settings.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace mirovane {
namespace {

std::string mnemonic(std::string_view text) {
    const auto mark = text.find('&');
    if (mark == std::string_view::npos || mark + 1 == text.size())
        return {};
    return {static_cast<char>(std::toupper(static_cast<unsigned char>(text[mark + 1])))};
}

TEST(CommandTableTest, EveryKeyAndNameLeadsToOneCommand) {
    std::map<std::string, std::string_view> owners;
    std::set<std::string_view> names;
    for (const CommandDefinition& command : commandTable()) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name << " is there twice";
        std::istringstream keys{std::string(command.keys)};
        for (std::string key; keys >> key;)
            EXPECT_TRUE(owners.emplace(key, command.name).second)
                << key << " belongs to " << owners[key] << " and " << command.name;
    }
}

TEST(CommandTableTest, MnemonicsDifferWithinAMenu) {
    std::set<std::string> taken;
    for (const CommandDefinition& command : commandTable()) {
        const std::string letter = mnemonic(command.text);
        if (!letter.empty() && !command.menu.empty())
            EXPECT_TRUE(taken.insert(std::string(command.menu) + letter).second) << command.text;
    }
}

TEST(CommandTableTest, EveryCommandCanBeFoundAndExplainsItself) {
    for (const CommandDefinition& command : commandTable()) {
        EXPECT_FALSE(command.help.empty()) << command.name;
        EXPECT_FALSE(command.menu.empty() && command.keys.empty()) << command.name << " cannot be reached";
        const std::string_view top = command.menu.substr(0, command.menu.find('/'));
        const auto menus = menuBarOrder();
        EXPECT_TRUE(top.empty() || std::ranges::find(menus, top) != menus.end()) << top;
        EXPECT_EQ(command.id == CommandId::ViewDisplayToggle, displayToggle(command.setting) != nullptr)
            << command.setting;
    }
}

} // namespace
} // namespace mirovane
