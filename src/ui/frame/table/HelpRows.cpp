#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto rows = std::to_array<CommandDefinition>({
    {.id = CommandId::HelpTopics, .name = "helpTopics", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&Help Topics"), .keys = "F1",
     .help = QT_TRANSLATE_NOOP("Commands", "Show the manual")},
    {.id = CommandId::HelpContext, .name = "helpContext", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&What Is This?"), .keys = "Shift+F1",
     .help = QT_TRANSLATE_NOOP("Commands", "Point at something to read about it in the manual")},
    {.id = CommandId::HelpAbout, .name = "helpAbout", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&About Mirovane..."),
     .help = QT_TRANSLATE_NOOP("Commands", "What this program is, and its version")},
});
// clang-format on

} // namespace

std::span<const CommandDefinition> helpCommands() {
    return rows;
}

} // namespace mirovane
