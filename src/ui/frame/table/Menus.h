#pragma once

#include <span>
#include <string_view>

namespace mirovane {

enum class MenuId {
    None,
    File,
    Edit,
    Arrange,
    Select,
    View,
    Hide,
    Zoom,
    Properties,
    Tools,
    Help,
    RightClick
};

/// A menu of the menu bar, or one inside another. A menu without commands is not shown.
struct MenuDefinition {
    MenuId id;
    MenuId parent = MenuId::None; ///< None: in the menu bar
    std::string_view name = {};   ///< object name
    std::string_view text = {};   ///< "&" before the mnemonic letter
    bool groupStart = false;      ///< a separator comes before it
};

std::span<const MenuDefinition> menuTable();

/// Null for None and for the right mouse button's menu, which no other menu opens.
const MenuDefinition* findMenu(MenuId id);

} // namespace mirovane
