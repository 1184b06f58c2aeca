#include "ui/applications/ApplicationsWindow.h"

#include "tests/station/StationFixture.h"
#include "tests/support/Colleague.h"
#include "ui/applications/ApplicationRows.h"
#include "ui/applications/InsertTextDialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

namespace mirovane {
namespace {

class ApplicationsWindowTest : public testing::Test {
protected:
    test::TestFolder folder;
    const std::string path = folder.file("floor.mv");
    test::FakeClock clock;
    test::FakeTimers timers{clock};
    test::Site site{clock, timers, {"host", "user"}, false};
    std::unique_ptr<CApplicationsWindow> window;
    int failedSaves = 0;
    std::vector<std::string> asked;
    bool mayDelete = true;

    CMirovaneDoc& document() { return site.doc(); }

    void SetUp() override {
        site.station->newDatafile();
        for (int i = 0; i < 7; ++i) {
            const std::string number = std::to_string(i);
            changeApplication(document(), *addApplication(document()),
                              {i % 2 == 0, "n" + number, "c" + number});
        }
        ASSERT_TRUE(site.station->saveDatafileAs(path).saved());
        ASSERT_FALSE(site.station->openDatafile(path));
        open();
    }

    void open() {
        window = std::make_unique<CApplicationsWindow>(
            *site.station, site.settings,
            CApplicationsWindow::Asking{[this](const FileError&) { ++failedSaves; },
                                        [this](const std::string& name) {
                                            asked.push_back(name);
                                            return mayDelete;
                                        }});
        window->present();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    template <typename Widget>
    Widget* part(const char* name, int row = -1) {
        return window->findChild<Widget*>(QLatin1String(name) + (row < 0 ? QString() : QString::number(row)));
    }
    QLineEdit* name(int row) { return part<QLineEdit>("applicationName", row); }
    QLineEdit* command(int row) { return part<QLineEdit>("applicationCommand", row); }
    QScrollBar* bar() { return part<QScrollBar>("applicationScroll"); }
    void type(QLineEdit* box, const char* text) {
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QLatin1String(text));
    }

    ApplicationValues entry(std::size_t place) {
        return applicationFromRecord(*applicationRecords(document()).at(place));
    }
    std::size_t count() { return applicationRecords(document()).size(); }

    /// Another station changes the file, and this one reads it again.
    void colleagueEdits(const std::function<void(CMirovaneDoc&)>& edit) {
        test::Colleague other(clock);
        ASSERT_TRUE(other.open(path));
        edit(other.doc);
        ASSERT_TRUE(other.save());
        timers.advance(std::chrono::seconds(3)); // the watch reads it
        QTest::qWait(0);
    }
};

TEST_F(ApplicationsWindowTest, ABoxIsStoredWhenItIsLeftAndTheFileSavedAtTheEnd) {
    type(name(1), "Remote");
    EXPECT_EQ(entry(1).name, "n1");
    QTest::keyClick(name(1), Qt::Key_Tab);
    EXPECT_TRUE(command(1)->hasFocus());
    EXPECT_EQ(entry(1), (ApplicationValues{false, "Remote", "c1"}));
    EXPECT_TRUE(document().modified());
    QTest::keyClick(part<QCheckBox>("applicationOnMenu", 1), Qt::Key_Space);
    EXPECT_TRUE(entry(1).onMenu);
    type(command(1), "xfreerdp /v:$mvI");
    QTest::keyClick(command(1), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(document().modified());
    test::Colleague again(clock);
    ASSERT_TRUE(again.open(path));
    EXPECT_EQ(applicationsOnMenu(again.doc).at(1), (ApplicationValues{true, "Remote", "xfreerdp /v:$mvI"}));
    EXPECT_EQ(failedSaves, 0);
}

TEST_F(ApplicationsWindowTest, AFieldThatNobodyTouchedKeepsItsBytes) {
    const std::string bytes = "Dr\xFC"
                              "cker";
    changeApplication(document(), *applicationRecords(document())[0], {true, bytes, "c0"});
    changeApplication(document(), *applicationRecords(document())[1], {true, "n1", bytes});
    QTest::qWait(0);
    EXPECT_EQ(name(0)->text(), QString::fromUtf8("Dr\xC3\xBC"
                                                 "cker"));
    type(command(0), "new");
    QTest::keyClick(command(0), Qt::Key_Return);
    EXPECT_EQ(entry(0), (ApplicationValues{true, bytes, "new"}));
    type(name(1), "new");
    QTest::keyClick(name(1), Qt::Key_Return);
    EXPECT_EQ(entry(1), (ApplicationValues{true, "new", bytes}));
}

TEST_F(ApplicationsWindowTest, AddScrollsToTheNewEntryAndDeleteTakesTheRightOne) {
    EXPECT_EQ(bar()->maximum(), 2);
    part<QPushButton>("applicationAdd")->click();
    EXPECT_EQ(count(), 8U);
    EXPECT_EQ(entry(7), ApplicationValues{});
    EXPECT_EQ(bar()->value(), 3);
    EXPECT_EQ(bar()->maximum(), 3);
    EXPECT_TRUE(name(4)->hasFocus());
    EXPECT_EQ(name(3)->text(), QStringLiteral("n6"));
    part<QPushButton>("applicationDelete", 3)->click();
    EXPECT_EQ(count(), 7U);
    EXPECT_EQ(entry(5).name, "n5");
    EXPECT_EQ(entry(6).name, "");
    EXPECT_EQ(bar()->maximum(), 2);
    for (int left = 7; left > 0; --left)
        part<QPushButton>("applicationDelete", 0)->click();
    EXPECT_EQ(count(), 0U);
    EXPECT_FALSE(name(0)->isVisible());
    part<QPushButton>("applicationAdd")->click();
    EXPECT_TRUE(name(0)->hasFocus());
}

TEST_F(ApplicationsWindowTest, DeleteAsksAndTheCursorStaysInTheRows) {
    mayDelete = false;
    part<QPushButton>("applicationDelete", 1)->click();
    EXPECT_EQ(asked, std::vector<std::string>{"n1"});
    EXPECT_EQ(count(), 7U);
    EXPECT_TRUE(name(1)->hasFocus());
}

TEST_F(ApplicationsWindowTest, AnEntryMovesWithTheCursorAlsoOutOfView) {
    command(4)->setFocus();
    part<QPushButton>("applicationDown")->click();
    EXPECT_EQ(entry(4).name, "n5");
    EXPECT_EQ(entry(5).name, "n4");
    EXPECT_EQ(bar()->value(), 1);
    EXPECT_TRUE(command(4)->hasFocus());
    EXPECT_EQ(name(4)->text(), QStringLiteral("n4"));
    for (int i = 0; i < 7; ++i) // the first place is the end of it
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(entry(0).name, "n4");
    EXPECT_EQ(entry(6).name, "n6");
    EXPECT_TRUE(command(0)->hasFocus());
}

TEST_F(ApplicationsWindowTest, DeleteSparesAnEntryThatMovesUnderThePointer) {
    document().remove(*applicationRecords(document())[0]); // as a reload does, in the moment of the click
    part<QPushButton>("applicationDelete", 0)->click();
    EXPECT_EQ(count(), 6U);
    EXPECT_EQ(name(0)->text(), QStringLiteral("n1"));
    part<QPushButton>("applicationDelete", 0)->click();
    EXPECT_EQ(entry(0).name, "n2");
}

TEST_F(ApplicationsWindowTest, ArrowKeysReachEveryEntryAndStoreOnTheWay) {
    name(0)->setFocus();
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(bar()->value(), 2);
    EXPECT_TRUE(name(4)->hasFocus());
    type(name(4), "last");
    QTest::keyClick(name(4), Qt::Key_Up);
    EXPECT_EQ(entry(6).name, "last");
    type(name(3), "sixth");
    bar()->setValue(0); // the wheel leaves the box under the cursor
    EXPECT_EQ(entry(5).name, "sixth");
    EXPECT_EQ(name(3)->text(), QStringLiteral("n3"));
}

TEST_F(ApplicationsWindowTest, WhatIsTypedSurvivesAReloadInItsOwnEntry) {
    type(command(1), "half typ");
    colleagueEdits([](CMirovaneDoc& other) {
        other.remove(*applicationRecords(other)[0]);
        changeApplication(other, *applicationRecords(other)[1], {false, "theirs", "c2"});
    });
    EXPECT_EQ(name(0)->text(), QStringLiteral("n1"));
    EXPECT_EQ(command(0)->text(), QStringLiteral("half typ"));
    EXPECT_TRUE(command(0)->hasFocus());
    EXPECT_EQ(name(1)->text(), QStringLiteral("theirs"));
    EXPECT_EQ(command(1)->text(), QStringLiteral("c2"));
    QTest::keyClick(command(0), Qt::Key_Return);
    EXPECT_EQ(entry(0).command, "half typ");
    EXPECT_EQ(entry(1).command, "c2");
}

TEST_F(ApplicationsWindowTest, AnEntryThatTwoEditKeepsBothAndOneThatWentComesBack) {
    type(command(1), "mine");
    colleagueEdits([](CMirovaneDoc& other) {
        changeApplication(other, *applicationRecords(other)[1], {true, "theirs", "c1"});
    });
    EXPECT_EQ(name(1)->text(), QStringLiteral("theirs"));
    EXPECT_EQ(command(1)->text(), QStringLiteral("mine"));
    colleagueEdits([](CMirovaneDoc& other) { other.remove(*applicationRecords(other)[1]); });
    window->close();
    EXPECT_EQ(count(), 7U);
    EXPECT_EQ(entry(6).command, "mine");
}

TEST_F(ApplicationsWindowTest, TypingIntoAnEmptyWindowDoesNotNameTheTerminal) {
    while (count() > 0)
        document().remove(*applicationRecords(document()).front());
    open();
    EXPECT_EQ(QApplication::focusWidget(), part<QPushButton>("applicationAdd"));
    EXPECT_LE(window->minimumSizeHint().width(), 780) << "half of a screen of 1600 pixels at twice the size";
}

TEST_F(ApplicationsWindowTest, TheTerminalIsTheUsersOwn) {
    auto* box = part<QLineEdit>("applicationTerminal");
    type(box, "xterm -e");
    window->close();
    EXPECT_EQ(site.settings.store().readText("TerminalCommand"), "xterm -e");
    EXPECT_FALSE(document().modified());
    open();
    EXPECT_EQ(part<QLineEdit>("applicationTerminal")->text(), QStringLiteral("xterm -e"));
}

TEST_F(ApplicationsWindowTest, SaysWhatACommandWillDo) {
    CHardware device;
    device.Name = "pc one";
    EXPECT_EQ(commandExplained("", &device), QString());
    EXPECT_EQ(commandExplained("ping $mvN", nullptr), QStringLiteral("Opens in a terminal"));
    EXPECT_EQ(commandExplained("ping $mvN", &device), QStringLiteral("Opens in a terminal: ping \"pc one\""));
    EXPECT_TRUE(commandExplained("$mvN", &device).startsWith(QStringLiteral("Cannot be started")));
    type(command(2), "term:tool");
    EXPECT_EQ(part<QLabel>("applicationExplained")->text(), QStringLiteral("Opens in a terminal"));
}

TEST(InsertTextDialogTest, EnterExecutesWithTheTypedText) {
    CInsertTextDialog dialog("ping $mvW $mvI");
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("insertTextCommand"))->text(),
              QStringLiteral("ping $mvW $mvI"));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("-c 4"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.text(), "-c 4");
}

} // namespace
} // namespace mirovane
