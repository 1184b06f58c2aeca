#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto fileTable = std::to_array<CommandDefinition>({
    {.id = CommandId::FileNew, .name = "fileNew", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "&New"), .keys = "Ctrl+N",
     .help = QT_TRANSLATE_NOOP("Commands", "Start a new, empty datafile")},
    {.id = CommandId::FileOpen, .name = "fileOpen", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "&Open..."), .keys = "Ctrl+O",
     .help = QT_TRANSLATE_NOOP("Commands", "Open a datafile")},
    {.id = CommandId::FileSave, .name = "fileSave", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "&Save"), .keys = "Ctrl+S",
     .help = QT_TRANSLATE_NOOP("Commands", "Save the datafile")},
    {.id = CommandId::FileSaveAs, .name = "fileSaveAs", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "Save &As..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Save the datafile under a new name")},
    {.id = CommandId::FilePrint, .name = "filePrint", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "&Print..."), .keys = "Ctrl+P",
     .help = QT_TRANSLATE_NOOP("Commands", "Print the floor, or the box that is drawn on it"),
     .groupStart = true},
    {.id = CommandId::FilePrintPreview, .name = "filePrintPreview", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "Print Pre&view"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show the pages that Print would make")},
    {.id = CommandId::FilePrintSetup, .name = "filePrintSetup", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "P&rint Setup..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Choose paper, orientation and margins")},
    {.id = CommandId::FileExport, .name = "fileExport", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "&Export..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Write the rows of the List View into a text file"),
     .groupStart = true},
    {.id = CommandId::FileSend, .name = "fileSend", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "Sen&d..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Send the datafile as an attachment of a mail")},
    {.id = CommandId::FileRecent, .name = "fileRecent", .menu = MenuId::File,
     .help = QT_TRANSLATE_NOOP("Commands", "Open this datafile"), .groupStart = true},
    {.id = CommandId::FileExit, .name = "fileExit", .menu = MenuId::File,
     .text = QT_TRANSLATE_NOOP("Commands", "E&xit"),
     .help = QT_TRANSLATE_NOOP("Commands", "Switch Live Stat off, save and leave the program"),
     .groupStart = true},
});
// clang-format on

} // namespace

std::span<const CommandDefinition> fileCommands() {
    return fileTable;
}

} // namespace mirovane
