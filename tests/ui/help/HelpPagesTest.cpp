#include "ui/help/HelpPages.h"

#include "ui/frame/table/CommandTable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

TEST(HelpPagesTest, AThingWithoutAPageHasThatOfWhatItIsPartOf) {
    QWidget window;
    window.setObjectName(QStringLiteral("listViewWindow"));
    auto* inside = new QWidget(&window);
    auto* nameless = new QWidget(inside);
    EXPECT_EQ(helpPageOf(nameless), QStringLiteral("list-view.html"));
    inside->setObjectName(QStringLiteral("criteriaArgument"));
    EXPECT_EQ(helpPageOf(nameless), QStringLiteral("rules.html"));
    EXPECT_EQ(helpPageOf(nullptr), QStringLiteral("index.html"));
}

TEST(HelpPagesTest, EveryMenuLeadsToAPageOfItsOwn) {
    EXPECT_EQ(helpPageOfCommand("toolsDiscoverNow"), QStringLiteral("live-discover.html"));
    EXPECT_EQ(helpPageOfCommand("fileExport"), QStringLiteral("export.html"));
    for (const CommandDefinition& command : commandTable())
        if (command.menu != MenuId::Help)
            EXPECT_NE(helpPageOfCommand(command.name), QStringLiteral("index.html")) << command.name;
}

TEST(HelpPagesTest, TheFirstFolderThatHasThePageCounts) {
    QTemporaryDir first;
    QTemporaryDir second;
    const QStringList folders{first.path(), second.path()};
    const auto page = QStringLiteral("index.html");
    EXPECT_FALSE(findManualPage(page, folders));
    for (const QString& folder : {second.path(), first.path()}) {
        QFile file(QDir(folder).filePath(page));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(findManualPage(page, folders), QFileInfo(file).absoluteFilePath());
    }
}

} // namespace
} // namespace mirovane
