#include "ui/livestat/CriteriaWindow.h"

#include "model/CriteriaEdit.h"
#include "tests/station/StationFixture.h"
#include "ui/livestat/DeviceTypeList.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPushButton>
#include <QTest>

namespace mirovane {
namespace {

class CriteriaWindowTest : public test::StationFixture {
protected:
    std::unique_ptr<CCriteriaWindow> window;

    void SetUp() override {
        open(a);
        window = std::make_unique<CCriteriaWindow>(*a.station, clock, a.dialogs);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    template <typename T>
    T* find(const QString& name) {
        T* found = window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }
    CLeaveBox* box(int row, const char* name) {
        return find<CLeaveBox>(QStringLiteral("row%1%2").arg(row).arg(QLatin1String(name)));
    }
    CPickList* list(int row, const char* name) {
        return find<CPickList>(QStringLiteral("row%1%2").arg(row).arg(QLatin1String(name)));
    }
    QCheckBox* check(int row) { return find<QCheckBox>(QStringLiteral("row%1IfMatch").arg(row)); }
    QString text(const char* label) { return find<QLabel>(QLatin1String(label))->text(); }
    QString cell(const char* name) { return find<QLineEdit>(QLatin1String(name))->text(); }

    void chooseType(std::int32_t type) {
        find<QComboBox>(QStringLiteral("device"))->setCurrentIndex(type - 1);
    }
    /// With the keys, as somebody without a mouse does it.
    void choose(CPickList* list, const char* entry) {
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        ASSERT_TRUE(list->view()->isVisible());
        list->view()->setCurrentIndex(list->model()->index(list->findText(QLatin1String(entry)), 0));
        QTest::keyClick(list->view(), Qt::Key_Return);
    }
    void type(CLeaveBox* box, const char* text) {
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QLatin1String(text));
    }
    CriteriaRow stored(std::int32_t type, int row) {
        return criteriaFromRecord(*a.doc().criteria(type, row));
    }
    std::string enabled(int row) {
        std::string letters;
        for (const char* name : {"Command", "Argument", "Delimiter", "FieldPos", "SearchFor", "Condition"}) {
            const QString whole = QStringLiteral("row%1%2").arg(row).arg(QLatin1String(name));
            letters += find<QWidget>(whole)->isEnabled() ? name[0] : '-';
        }
        return letters;
    }
};

TEST(DeviceTypeListTest, CodesStandAtTheEndOfTheEntries) {
    const auto entries = deviceTypeEntries();
    ASSERT_EQ(entries.size(), 12u);
    EXPECT_TRUE(entries[0].starts_with("Jack ") && entries[0].ends_with(" 1"));
    EXPECT_TRUE(entries[11].starts_with("Wireless ") && entries[11].ends_with(" 12"));
    for (std::int32_t type = 1; type <= 12; ++type)
        EXPECT_EQ(typeOfEntry(entries[static_cast<std::size_t>(type - 1)]), type);
    for (const char* none : {"", "Jack", "    x"})
        EXPECT_EQ(typeOfEntry(none), 0) << none;
}

TEST_F(CriteriaWindowTest, OpensOnComputerAndShowsWhatIsStored) {
    EXPECT_EQ(window->deviceType(), DeviceType::Computer);
    EXPECT_EQ(list(0, "Command")->currentText(), QStringLiteral("Ping"));
    EXPECT_EQ(box(0, "Argument")->text(), QStringLiteral("$mvN $mvI"));
    EXPECT_EQ(list(2, "Condition")->currentText(), QStringLiteral("On/Off"));
    EXPECT_EQ(box(3, "FieldPos")->text(), QString());
    EXPECT_TRUE(check(7)->isChecked());
    EXPECT_EQ(enabled(0), "CA---C");
    EXPECT_EQ(enabled(1), "C-----");
    EXPECT_EQ(enabled(3), "C----C");
    EXPECT_EQ(text("argumentSyntax"), QString()) << "nothing was chosen yet";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(list(0, "Command")->hasFocus()) << "the first stop after the device list";
}

TEST_F(CriteriaWindowTest, WhatIsTypedIsStoredWhenTheWindowIsDestroyed) {
    type(box(0, "Argument"), "10.0.0.1");
    ASSERT_NE(stored(DeviceType::Computer, 0).Argument, "10.0.0.1");
    window.reset();
    EXPECT_EQ(stored(DeviceType::Computer, 0).Argument, "10.0.0.1");
}

TEST_F(CriteriaWindowTest, ABoxStoresWhenItIsLeft) {
    chooseType(DeviceType::Printer);
    choose(list(1, "Command"), "Search in Text File");
    type(box(1, "Argument"), "/srv/hosts.csv");
    EXPECT_EQ(stored(DeviceType::Printer, 1).Argument, "") << "not while it is typed";
    QTest::keyClick(box(1, "Argument"), Qt::Key_Tab);
    EXPECT_EQ(stored(DeviceType::Printer, 1).Argument, "/srv/hosts.csv");
    EXPECT_TRUE(box(1, "Delimiter")->hasFocus());

    type(box(1, "FieldPos"), "2nd");
    QTest::keyClick(box(1, "FieldPos"), Qt::Key_Return);
    EXPECT_EQ(stored(DeviceType::Printer, 1).FieldPos, 2);
    EXPECT_EQ(box(1, "FieldPos")->text(), QStringLiteral("2"));
    type(box(1, "FieldPos"), "last");
    QTest::keyClick(box(1, "FieldPos"), Qt::Key_Return);
    EXPECT_EQ(stored(DeviceType::Printer, 1).FieldPos, 0);
    EXPECT_EQ(box(1, "FieldPos")->text(), QString());

    type(box(1, "Argument"), "oops");
    QTest::keyClick(box(1, "Argument"), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible()) << "Escape takes the text back first";
    chooseType(DeviceType::Switch);
    EXPECT_EQ(stored(DeviceType::Printer, 1).Argument, "/srv/hosts.csv");
}

TEST_F(CriteriaWindowTest, TextThatIsTypedBelongsToTheTypeThatWasShown) {
    type(box(0, "Argument"), "$mvI");
    chooseType(DeviceType::Laptop);
    EXPECT_EQ(stored(DeviceType::Computer, 0).Argument, "$mvI");
    EXPECT_EQ(stored(DeviceType::Laptop, 0).Argument, "$mvN $mvI");
    EXPECT_EQ(box(0, "Argument")->text(), QStringLiteral("$mvN $mvI"));
}

/// Arrow keys and wheel on a closed list would store every action on the way, and "Who's Logon" among them
/// overwrites the argument.
TEST_F(CriteriaWindowTest, NothingIsChosenOnTheWay) {
    choose(list(11, "Command"), "Set Value");
    type(box(11, "Argument"), "Check it");
    choose(list(11, "Command"), "SNMPGet");
    EXPECT_EQ(stored(DeviceType::Computer, 11).Argument, "Check it");
    QTest::keyClick(list(11, "Command"), Qt::Key_W);
    EXPECT_TRUE(list(11, "Command")->view()->isVisible());
    QTest::keyClick(list(11, "Command")->view(), Qt::Key_Escape);
    EXPECT_EQ(stored(DeviceType::Computer, 11).Command, "SNMPGet");
}

TEST_F(CriteriaWindowTest, ChoosingAnActionExplainsItAndStoresIt) {
    chooseType(DeviceType::Router);
    setCriteria(a.doc(), DeviceType::Router, 0, CriteriaColumn::Delimiter, ",");
    choose(list(0, "Command"), "SNMPGet");
    EXPECT_EQ(stored(DeviceType::Router, 0).Command, "SNMPGet");
    EXPECT_EQ(stored(DeviceType::Router, 0).Delimiter, "");
    EXPECT_EQ(text("argumentSyntax"), QStringLiteral("<hname|IP> <cmty> <oid>"));
    EXPECT_EQ(cell("exampleTestArgument"), QStringLiteral("$mvI public 1.3.5.2.1.1"));
    EXPECT_EQ(cell("exampleFieldCommand"), QStringLiteral("SNMPGet"));
    EXPECT_TRUE(text("exampleFieldDescription").startsWith(QStringLiteral("If device is On, get the value")));

    chooseType(DeviceType::Switch); // whose row is perhaps to become the same
    EXPECT_EQ(text("argumentSyntax"), QStringLiteral("<hname|IP> <cmty> <oid>"));
    EXPECT_EQ(cell("exampleTestCommand"), QStringLiteral("SNMPGet"));
    chooseType(DeviceType::Router);

    choose(list(11, "Command"), "Who's Logon");
    EXPECT_EQ(stored(DeviceType::Router, 11).Argument, "$mvN $mvI");
    EXPECT_EQ(box(11, "Argument")->text(), QStringLiteral("$mvN $mvI"));
    EXPECT_EQ(enabled(11), "C----C");
    EXPECT_TRUE(cell("exampleTestCommand").isEmpty());
}

TEST_F(CriteriaWindowTest, ChecksAndConditionsStoreAtOnce) {
    choose(list(8, "Command"), "Set Value");
    QTest::mouseClick(check(8), Qt::LeftButton, {}, QPoint(8, check(8)->height() / 2));
    EXPECT_EQ(stored(DeviceType::Computer, 8).IfMatch, 0);
    choose(list(8, "Condition"), "Off");
    EXPECT_EQ(stored(DeviceType::Computer, 8).Condition, "Off");
    EXPECT_EQ(list(0, "Condition")->count(), 2);
}

TEST_F(CriteriaWindowTest, AJackMatchesAndChoosesLittle) {
    chooseType(DeviceType::Jack);
    EXPECT_EQ(list(0, "Command")->currentText(), QStringLiteral("Match to Jack#"));
    std::string choosable;
    for (int row = 0; row < criteriaRowCount; ++row)
        choosable += list(row, "Command")->isEnabled() ? 'x' : '-';
    EXPECT_EQ(choosable, "x----xx-----");
    chooseType(DeviceType::Wireless);
    EXPECT_EQ(list(0, "Command")->findText(QStringLiteral("Match to Jack#")), -1);
    EXPECT_TRUE(list(4, "Command")->isEnabled());
}

TEST_F(CriteriaWindowTest, AWrongPatternIsToldAndStoredAllTheSame) {
    choose(list(1, "Command"), "Search in Text File");
    type(box(1, "SearchFor"), "$mvN(");
    EXPECT_TRUE(text("notice").startsWith(QStringLiteral("Name, Search for: ")))
        << text("notice").toStdString();
    QTest::keyClick(box(1, "SearchFor"), Qt::Key_Return);
    EXPECT_EQ(stored(DeviceType::Computer, 1).SearchFor, "$mvN(");
    chooseType(DeviceType::Camera);
    EXPECT_EQ(text("notice"), QString());
    chooseType(DeviceType::Computer);
    EXPECT_NE(text("notice"), QString());
    choose(list(1, "Command"), "NS Lookup"); // which searches for nothing
    EXPECT_EQ(text("notice"), QString());
}

TEST_F(CriteriaWindowTest, ClosingStoresWhatIsTypedAndSaves) {
    window->close();
    EXPECT_EQ(a.logged(), test::Lines{}) << "nothing changed, nothing saved";
    window->show();
    type(box(0, "Argument"), "$mvI");
    window->close();
    EXPECT_EQ(a.logged(), test::Lines{"Saved changes to data file"});
    open(b);
    EXPECT_EQ(criteriaFromRecord(*b.doc().criteria(DeviceType::Computer, 0)).Argument, "$mvI");
}

TEST_F(CriteriaWindowTest, WhatNobodyTypedIsNotStored) {
    const std::string odd = std::string(50'000, 'x') + "\n\t\xE9\x01";
    setCriteria(a.doc(), DeviceType::Computer, 0, CriteriaColumn::Argument, odd);
    QCoreApplication::processEvents();
    window->close();
    EXPECT_EQ(stored(DeviceType::Computer, 0).Argument, odd);
}

TEST_F(CriteriaWindowTest, RulesReachTheDatafileWhenAnotherTypeIsShown) {
    choose(list(1, "Command"), "NS Lookup(reverse)");
    pass(30'000);
    open(b);
    EXPECT_NE(criteriaFromRecord(*b.doc().criteria(DeviceType::Computer, 1)).Command, "NS Lookup(reverse)");
    auto* device = window->findChild<QComboBox*>(QStringLiteral("device"));
    device->setCurrentIndex(device->currentIndex() + 1);
    pass(3000);
    EXPECT_EQ(criteriaFromRecord(*b.doc().criteria(DeviceType::Computer, 1)).Command, "NS Lookup(reverse)");
}

TEST_F(CriteriaWindowTest, AnotherStationsRulesAppearAndTypedTextStays) {
    open(b);
    type(box(0, "Argument"), "typed here");
    setCriteria(b.doc(), DeviceType::Computer, 0, CriteriaColumn::Argument, "$mvI");
    setCriteria(b.doc(), DeviceType::Computer, 0, CriteriaColumn::Command, "SNMPGet");
    setCriteria(b.doc(), DeviceType::Computer, 3, CriteriaColumn::Command, "Set Value");
    ASSERT_FALSE(b.station->saveDatafile().failed());
    pass(3000);
    QApplication::processEvents();
    EXPECT_EQ(list(3, "Command")->currentText(), QStringLiteral("Set Value"));
    EXPECT_EQ(text("argumentSyntax"), QStringLiteral("<hname|IP> <cmty> <oid>"))
        << "of the row that is current";
    EXPECT_EQ(box(0, "Argument")->text(), QStringLiteral("typed here"));
    QTest::keyClick(box(0, "Argument"), Qt::Key_Tab);
    EXPECT_EQ(stored(DeviceType::Computer, 0).Argument, "typed here");

    type(box(0, "Argument"), "meant for this file");
    a.station->newDatafile();
    QApplication::processEvents();
    window->close();
    EXPECT_EQ(stored(DeviceType::Computer, 0).Argument, "$mvN $mvI");
}

TEST_F(CriteriaWindowTest, LiveStatRunsNoRuleThatIsShown) {
    chooseType(DeviceType::Printer);
    a.station->features().liveStat().toggle();
    pass(20'000);
    EXPECT_EQ(a.device(1).State, DeviceState::Def) << "half a rule must not be run";
    chooseType(DeviceType::Computer);
    pass(20'000);
    EXPECT_EQ(a.device(1).State, DeviceState::Off);
    chooseType(DeviceType::Printer);
    a.probes.answer("127.0.0.1");
    pass(20'000);
    EXPECT_EQ(a.device(1).State, DeviceState::Off);
    window->close();
    pass(20'000);
    EXPECT_EQ(a.device(1).State, DeviceState::On);
}

TEST_F(CriteriaWindowTest, ResetAsksFirst) {
    choose(list(1, "Command"), "Set Value");
    auto* reset = find<QPushButton>(QStringLiteral("reset"));
    reset->click();
    EXPECT_EQ(a.dialogs.questions,
              test::Lines{"Are you sure you want to reset all the Devices' Criteria settings?\n\nWith the "
                          "default criteria Live Stat may write the IP Address or Username of 0 devices."})
        << "printers are not among them";
    EXPECT_EQ(stored(DeviceType::Computer, 1).Command, "Set Value");
    a.dialogs.answer = true;
    type(box(1, "Argument"), "before the reset");
    reset->click(); // as by its key: the focus stays in the box
    EXPECT_EQ(box(1, "Argument")->text(), QString());
    EXPECT_EQ(stored(DeviceType::Computer, 1).Command, "Do Nothing");
    EXPECT_EQ(list(1, "Command")->currentText(), QStringLiteral("Do Nothing"));
}

} // namespace
} // namespace mirovane
