#include "ui/frame/table/Menus.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

// clang-format off
constexpr auto menus = std::to_array<MenuDefinition>({
    {MenuId::File,       MenuId::None, "menuFile",       QT_TRANSLATE_NOOP("Commands", "&File")},
    {MenuId::Edit,       MenuId::None, "menuEdit",       QT_TRANSLATE_NOOP("Commands", "&Edit")},
    {MenuId::Arrange,    MenuId::Edit, "menuArrange",    QT_TRANSLATE_NOOP("Commands", "Ali&gn and distribute")},
    {MenuId::Select,     MenuId::Edit, "menuSelect",     QT_TRANSLATE_NOOP("Commands", "&Select"), true},
    {MenuId::View,       MenuId::None, "menuView",       QT_TRANSLATE_NOOP("Commands", "&View")},
    {MenuId::Hide,       MenuId::View, "menuHide",       QT_TRANSLATE_NOOP("Commands", "&Hide"), true},
    {MenuId::Zoom,       MenuId::View, "menuZoom",       QT_TRANSLATE_NOOP("Commands", "&Zoom")},
    {MenuId::Properties, MenuId::View, "menuProperties", QT_TRANSLATE_NOOP("Commands", "&Properties")},
    {MenuId::Tools,      MenuId::None, "menuTools",      QT_TRANSLATE_NOOP("Commands", "&Tools")},
    {MenuId::Help,       MenuId::None, "menuHelp",       QT_TRANSLATE_NOOP("Commands", "&Help")},
});
// clang-format on

} // namespace

std::span<const MenuDefinition> menuTable() {
    return menus;
}

const MenuDefinition* findMenu(MenuId id) {
    const auto found = std::ranges::find(menus, id, &MenuDefinition::id);
    return found == menus.end() ? nullptr : &*found;
}

} // namespace mirovane
