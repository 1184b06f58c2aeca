#include "tests/support/Paths.h"
#include "ui/frame/table/CommandTable.h"
#include "ui/help/HelpPages.h"

#include <QFile>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

QString manualPage(const QString& name) {
    QFile file(QString::fromStdString(test::sourceFile("docs/manual/")) + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST(ManualTest, EveryPageThatHelpOpensIsWritten) {
    for (QString page : helpPages())
        EXPECT_FALSE(manualPage(page.replace(QStringLiteral(".html"), QStringLiteral(".md"))).isEmpty())
            << page.toStdString();
}

QString menuPath(MenuId id) {
    const MenuDefinition* menu = findMenu(id);
    if (!menu)
        return QStringLiteral("right click › ");
    return (menu->parent == MenuId::None ? QString() : menuPath(menu->parent)) + commandText(menu->text) +
           QStringLiteral(" › ");
}

/// As the manual has it: | Ctrl+Z, Alt+Backspace | Edit › Undo | Take the latest edit back |
QString shortcutRow(const CommandDefinition& command) {
    const auto text = [](std::string_view words) {
        return commandText(words)
            .remove(u'&')
            .replace(u'\\', QStringLiteral("\\\\"))
            .replace(u'|', QStringLiteral("\\|"));
    };
    const QStringList keys =
        QString::fromUtf8(command.keys.data(), qsizetype(command.keys.size())).split(u' ');
    return QStringLiteral("| `%1` | %2%3 | %4 |\n")
        .arg(keys.join(QStringLiteral("` `")), menuPath(command.menu).remove(u'&'), text(command.text),
             text(command.help));
}

TEST(ManualTest, TheShortcutsAreThoseOfTheCommands) {
    QString rows;
    for (const CommandDefinition& command : commandTable())
        if (!command.keys.empty())
            rows += shortcutRow(command);
    EXPECT_TRUE(manualPage(QStringLiteral("shortcuts.md")).contains(rows))
        << "shortcuts.md must have these rows:\n"
        << rows.toStdString();
}

} // namespace
} // namespace mirovane
