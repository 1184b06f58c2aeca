#include "model/ReminderDelay.h"
#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

constexpr CommandDefinition putOff(std::string_view name, ReminderDelay delay, std::string_view text,
                                   bool groupStart = false) {
    return {.id = CommandId::ReminderPutOff,
            .name = name,
            .menu = MenuId::RightClick,
            .text = text,
            .help = QT_TRANSLATE_NOOP("Commands",
                                      "Leave the due reminders of the selected devices alone until then"),
            .value = static_cast<std::int32_t>(delay),
            .needs = CommandNeeds::DueReminder,
            .groupStart = groupStart};
}

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto helpTable = std::to_array<CommandDefinition>({
    {.id = CommandId::HelpTopics, .name = "helpTopics", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&Help Topics"), .keys = "F1",
     .help = QT_TRANSLATE_NOOP("Commands", "Show the manual")},
    {.id = CommandId::HelpContext, .name = "helpContext", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&What Is This?"), .keys = "Shift+F1",
     .help = QT_TRANSLATE_NOOP("Commands", "Point at something to read about it in the manual")},
    {.id = CommandId::HelpAbout, .name = "helpAbout", .menu = MenuId::Help,
     .text = QT_TRANSLATE_NOOP("Commands", "&About Mirovane..."),
     .help = QT_TRANSLATE_NOOP("Commands", "What this program is, and its version")},
    putOff("reminderTenMinutes", ReminderDelay::TenMinutes,
           QT_TRANSLATE_NOOP("Commands", "Put reminder off 10 &minutes"), true),
    putOff("reminderHour", ReminderDelay::Hour, QT_TRANSLATE_NOOP("Commands", "Put reminder off an &hour")),
    putOff("reminderTomorrow", ReminderDelay::UntilTomorrow,
           QT_TRANSLATE_NOOP("Commands", "Put reminder off until &tomorrow 9:00")),
    {.id = CommandId::ReminderDone, .name = "reminderDone", .menu = MenuId::RightClick,
     .text = QT_TRANSLATE_NOOP("Commands", "Reminder &done"),
     .help = QT_TRANSLATE_NOOP("Commands", "End the due reminders of the selected devices"),
     .needs = CommandNeeds::DueReminder},
});
// clang-format on

} // namespace

std::span<const CommandDefinition> helpCommands() {
    return helpTable;
}

} // namespace mirovane
