#include "ui/frame/commands/ApplicationsMenu.h"

#include "tests/support/Colleague.h"
#include "tests/ui/frame/FrameFixture.h"
#include "ui/floor/MirovaneView.h"

#include <QContextMenuEvent>
#include <QMenuBar>
#include <QTest>

namespace mirovane {
namespace {

using Words = std::vector<std::string>;

class ApplicationsMenuTest : public test::ShownFrame {
protected:
    const CHardware* entry(bool onMenu, const std::string& name, const std::string& command) {
        const CHardware* added = addApplication(document());
        changeApplication(document(), *added, {onMenu, name, command});
        return added;
    }

    void select(const std::string& name) {
        const CHardware* device = document().addDevice(
            DeviceType::Computer, [&name](CHardware& computer) { computer.Name = name; });
        document().setSelected(*device, true);
    }

    /// Titles of the menu bar after the document's changes have arrived there.
    QStringList bar() {
        QTest::qWait(0);
        QStringList titles;
        for (const QAction* top : frame->menuBar()->actions())
            titles << top->text();
        return titles;
    }
    QMenu* menu(const char* name) { return frame->findChild<QMenu*>(QLatin1String(name)); }
    static QStringList items(const QMenu* menu) {
        QStringList texts;
        for (const QAction* action : menu->actions())
            if (action->isVisible())
                texts << action->text();
        if (!texts.isEmpty() && texts.last().isEmpty())
            texts.removeLast(); // a menu shows no separator at its end
        return texts;
    }
    void rightClick() {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(50, 50),
                                floor->viewport()->mapToGlobal(QPoint(50, 50)));
        QApplication::sendEvent(floor->viewport(), &event);
    }
    std::string lastLine() const { return log.lines().back().text; }
};

TEST_F(ApplicationsMenuTest, StandsBeforeHelpWhileAnEntryIsOnTheMenu) {
    const QString title = QStringLiteral("&Applications");
    EXPECT_FALSE(bar().contains(title));
    const CHardware* hidden = entry(false, "Hidden", "x");
    EXPECT_FALSE(bar().contains(title));
    const CHardware* first = entry(true, "R&D\ttools", "x");
    entry(true, "", "y -z");
    EXPECT_EQ(bar().indexOf(title), bar().indexOf(QStringLiteral("&Help")) - 1);
    EXPECT_EQ(bar().count(title), 1);
    EXPECT_EQ(items(menu("menuApplications")),
              (QStringList{QStringLiteral("R&&D tools"), QStringLiteral("y -z"), QString(),
                           QStringLiteral("P&roperties")}));
    EXPECT_EQ(menu("menuApplications")->actions().at(1)->data().toInt(), 48001);

    changeApplication(document(), *hidden, {true, "Shown", "x"});
    bar();
    EXPECT_EQ(items(menu("menuApplications")).first(), QStringLiteral("Shown"));
    document().remove(*first);
    bar();
    EXPECT_EQ(items(menu("menuApplications")).size(), 4);
    dialogs.saveAnswers = {SaveAnswer::Discard};
    frame->files().newFile();
    EXPECT_FALSE(bar().contains(title));
}

TEST_F(ApplicationsMenuTest, ARightClickBringsItOrPropertiesAlone) {
    rightClick();
    ASSERT_TRUE(menu("menuFloor")->isVisible());
    EXPECT_EQ(items(menu("menuFloor")), QStringList{QStringLiteral("P&roperties")});
    menu("menuFloor")->close();
    entry(true, "Tool", "tool $mvN");
    rightClick(); // at once: the menu bar has not been told yet
    ASSERT_TRUE(menu("menuApplications")->isVisible());
    // While it is open it stays as it is.
    entry(true, "Other", "other");
    QTest::qWait(0);
    EXPECT_EQ(items(menu("menuApplications")).size(), 3);
    select("pc-1");
    QTest::keyClick(menu("menuApplications"), Qt::Key_Down);
    QTest::keyClick(menu("menuApplications"), Qt::Key_Return);
    EXPECT_EQ(launcher.started, (std::vector<Words>{{"tool", "pc-1"}}));
    EXPECT_TRUE(QTest::qWaitFor([this] { return items(menu("menuApplications")).size() == 4; }));
}

TEST_F(ApplicationsMenuTest, RunsForEverySelectedDeviceAndForNoneOtherwise) {
    entry(true, "Ping", "noterm:ping $mvN $mvW");
    bar();
    frame->applicationsMenu().runCommand(48000);
    EXPECT_NE(lastLine().find("no device on the floor map is selected"), std::string::npos);
    select("b");
    select("a");
    dialogs.insertedTexts = {std::nullopt, "-c 4"};
    frame->applicationsMenu().runCommand(48000);
    EXPECT_TRUE(launcher.started.empty());
    for (const int id : {47999, 48001, 0, -1})
        frame->applicationsMenu().runCommand(id);
    EXPECT_TRUE(launcher.started.empty());
    frame->applicationsMenu().runCommand(48000);
    EXPECT_EQ(launcher.started, (std::vector<Words>{{"ping", "b", "-c", "4"}, {"ping", "a", "-c", "4"}}));
    EXPECT_NE(lastLine().find("Started \"Ping\" for 2 devices"), std::string::npos);
}

TEST_F(ApplicationsMenuTest, AnEntryThatIsGoneDoesNothingEvenBeforeTheMenuIsRebuilt) {
    const CHardware* gone = entry(true, "Gone", "tool");
    entry(true, "Next", "next");
    bar();
    select("a");
    document().remove(*gone);
    frame->applicationsMenu().runCommand(48000);
    EXPECT_TRUE(launcher.started.empty());
}

TEST_F(ApplicationsMenuTest, AsksBeforeItStartsVeryMany) {
    entry(true, "Tool", "tool");
    bar();
    for (int i = 0; i < 20; ++i)
        select("pc");
    frame->applicationsMenu().runCommand(48000);
    EXPECT_EQ(launcher.started.size(), 20U);
    select("pc");
    dialogs.answers = {false, true};
    frame->applicationsMenu().runCommand(48000);
    EXPECT_EQ(launcher.started.size(), 20U);
    frame->applicationsMenu().runCommand(48000);
    EXPECT_EQ(launcher.started.size(), 41U);
}

TEST_F(ApplicationsMenuTest, TypingInTheWindowIsNotLostWhenTheProgramEnds) {
    ASSERT_FALSE(station->saveDatafileAs(inFolder("floor.mv")).failed());
    const CHardware* tool = entry(true, "Tool", "old");
    frame->actions().action("toolsApplications")->trigger();
    auto* box = frame->findChild<QWidget*>(QStringLiteral("applicationCommand0"));
    ASSERT_NE(box, nullptr);
    box->setProperty("text", QStringLiteral("new"));
    EXPECT_EQ(tool->ToJack, "old");
    EXPECT_FALSE(frame->endSession());
    test::Colleague again(clock);
    ASSERT_TRUE(again.open(inFolder("floor.mv")));
    EXPECT_EQ(applicationsOnMenu(again.doc).at(0).command, "new");
}

} // namespace
} // namespace mirovane
