#include "ui/livestat/LiveStatOptionsWindow.h"

#include "discover/AddressRanges.h"
#include "tests/station/StationFixture.h"
#include "ui/livestat/CriteriaWindow.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

namespace mirovane {
namespace {

class LiveStatOptionsTest : public test::StationFixture {
protected:
    std::unique_ptr<CLiveStatOptionsWindow> window;

    void SetUp() override {
        a.settings.write("LSRunSec", 7);
        a.settings.write("LSIncludeMisc", 0);
        open(a);
        show();
    }
    void show() {
        window = std::make_unique<CLiveStatOptionsWindow>(
            CLiveStatOptionsWindow::Services{*a.station, a.settings, clock, a.dialogs});
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    template <typename T>
    T* find(const char* name) {
        return window->findChild<T*>(QLatin1String(name));
    }
    void press(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    void addRange(const char* from, const char* to) {
        press("addRange");
        QTest::keyClicks(QApplication::focusWidget(), QLatin1String(from));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClicks(QApplication::focusWidget(), QLatin1String(to));
    }
    std::vector<std::string> ranges(test::Site& site) {
        std::vector<std::string> texts;
        for (const CHardware* range : discoverRanges(site.doc()))
            texts.push_back(range->Name + "-" + range->IPAddress);
        return texts;
    }
    QString fault() { return find<QLabel>("rangeFault")->text(); }
};

TEST_F(LiveStatOptionsTest, ClosingStoresTheSettingsAndResizesThePool) {
    EXPECT_EQ(find<QSpinBox>("LSNumPerRun")->value(), 30);
    find<QSpinBox>("LSNumPerRun")->setValue(40);
    find<QSpinBox>("LSRunSec")->setValue(1);
    EXPECT_EQ(find<QSpinBox>("LSConfirmOff")->value(), 1);
    find<QSpinBox>("LSConfirmOff")->setValue(9);
    QTest::mouseClick(find<QCheckBox>("LSAutoPerform"), Qt::LeftButton, {}, QPoint(8, 8));
    press("close");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(a.settings.read("LSNumPerRun", -1), 40);
    EXPECT_EQ(a.settings.read("LSRunSec", -1), 1);
    EXPECT_EQ(a.settings.read("LSAutoPerform", -1), 0);
    EXPECT_EQ(a.settings.read("LSAutoStart", -1), 1);
    EXPECT_EQ(a.settings.read("LSConfirmOff", -1), 5) << "the most";
    EXPECT_EQ(a.station->features().liveStat().settings().LSConfirmOff, 5);
    EXPECT_EQ(a.station->features().liveStat().settings().LSRunSec, 1);
    EXPECT_EQ(a.liveStat().slotCount(), 40u);
    EXPECT_EQ(a.logged(),
              (test::Lines{"adding 10 more device checks per run", "Saved changes to data file"}));
}

TEST_F(LiveStatOptionsTest, AWrongRangeKeepsTheWindowOpenUntilItIsRight) {
    addRange("10.0.0.9", "10.0.0.256");
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(fault(), QStringLiteral("Invalid IP Address/Range or entry cannot be blank"));
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("rangeTo"));
    EXPECT_EQ(ranges(a), test::Lines{}) << "nothing wrong gets into the datafile";
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("10.0.0.10"));
    EXPECT_EQ(fault(), QString());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    open(b);
    EXPECT_EQ(ranges(b), test::Lines{"10.0.0.9-10.0.0.10"});
}

TEST_F(LiveStatOptionsTest, RangesAreChangedAndDeletedOneByOne) {
    for (const char* to : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"})
        addRange("10.0.0.1", to);
    press("close");
    show();
    const auto buttons = window->findChildren<QPushButton*>(QStringLiteral("deleteRange"));
    ASSERT_EQ(buttons.size(), 4);
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    QApplication::processEvents();
    auto* last = window->findChildren<QLineEdit*>(QStringLiteral("rangeTo")).back();
    last->setFocus();
    last->selectAll();
    QTest::keyClicks(last, QStringLiteral("10.0.0.44"));
    addRange("", ""); // left blank
    press("close");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("rangeFrom"));
    QTest::mouseClick(window->findChildren<QPushButton*>(QStringLiteral("deleteRange")).back(),
                      Qt::LeftButton);
    QApplication::processEvents();
    press("close");
    EXPECT_EQ(ranges(a), (test::Lines{"10.0.0.1-10.0.0.1", "10.0.0.1-10.0.0.3", "10.0.0.1-10.0.0.44"}));
}

TEST_F(LiveStatOptionsTest, ARangeThatCameFromElsewhereIsCheckedToo) {
    CHardware range;
    range.Type = SpecialType::DiscoverRangeRecord;
    range.Name = "somewhere";
    a.doc().append(range);
    press("close");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(find<QLineEdit>("rangeFrom")->text(), QStringLiteral("somewhere"));
    QTest::mouseClick(find<QPushButton>("deleteRange"), Qt::LeftButton);
    QApplication::processEvents();
    press("close");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ranges(a), test::Lines{});
}

TEST_F(LiveStatOptionsTest, SaysWhenTheRangesCouldNotBeSaved) {
    addRange("10.0.0.1", "10.0.0.9");
    std::filesystem::remove_all(folder.path());
    press("close");
    EXPECT_FALSE(window->isVisible());
    ASSERT_EQ(a.dialogs.failures.size(), 1U);
    EXPECT_THAT(a.dialogs.failures[0], testing::HasSubstr(path));
    EXPECT_EQ(ranges(a), std::vector<std::string>{"10.0.0.1-10.0.0.9"}) << "kept for the next save";
}

TEST_F(LiveStatOptionsTest, OpensTheCriteria) {
    press("criteria");
    auto* criteria = window->findChild<CCriteriaWindow*>();
    ASSERT_NE(criteria, nullptr);
    EXPECT_TRUE(criteria->isVisible() && criteria->isModal());
    criteria->close();
    EXPECT_TRUE(window->isVisible());
}

} // namespace
} // namespace mirovane
