#include "ui/discover/DiscoverNowWindow.h"

#include "tests/station/StationFixture.h"
#include "tests/support/InstantNetwork.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::uint32_t at(const char* text) {
    return parseRangeAddress(text).value();
}

class DiscoverNowWindowTest : public testing::Test {
protected:
    void SetUp() override {
        station->newDatafile();
        ASSERT_FALSE(station->saveDatafileAs(folder.file("floor.mv")).failed());
    }

    CMirovaneDoc& document() { return const_cast<CMirovaneDoc&>(station->document()); }

    void addRange(const char* from, const char* to) {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = from;
        range.IPAddress = to;
        document().append(range);
    }

    void open() {
        window = std::make_unique<CDiscoverNowWindow>(*station, settings, dialogs, nullptr);
        window->present();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    QString text(const char* name) { return window->findChild<QLabel*>(QLatin1String(name))->text(); }
    QPushButton* button(const char* name) { return window->findChild<QPushButton*>(QLatin1String(name)); }
    QTableView* table() { return window->findChild<QTableView*>(); }

    bool passUntil(const std::function<bool()>& enough) {
        return QTest::qWaitFor(
            [&] {
                timers.advance(std::chrono::milliseconds(100));
                return enough();
            },
            20'000);
    }
    /// A slow sweep that has found two hosts and goes on.
    void findTwo() {
        addRange("127.0.0.1", "127.0.3.254");
        network.living = {at("127.0.0.1"), at("127.0.0.2")};
        settings.write(sweepRateSetting, 20);
        open();
        button("discoverNowStart")->click();
        ASSERT_TRUE(passUntil([this] { return station->features().discoverNow()->found().size() == 2; }));
    }
    bool over() { return !station->features().discoverNow()->running(); }
    std::size_t devices() { return station->document().deviceCount(); }

    TestFolder folder;
    FakeClock clock;
    FakeTimers timers{clock};
    InstantNetwork network;
    Site site{clock, timers, {"host", "user"}, false, nullptr, &network};
    CStation* station = site.station.get();
    ScriptedDialogs& dialogs = site.dialogs;
    CSettings& settings = site.settings;
    std::unique_ptr<CDiscoverNowWindow> window;
};

TEST_F(DiscoverNowWindowTest, ShowsWhoAnswersAndWhatBecameOfThem) {
    addRange("127.0.0.1", "127.0.0.100");
    document().addDevice(DeviceType::Printer, [](CHardware& d) { d.IPAddress = "127.0.0.7"; });
    network.living = {at("127.0.0.7"), at("127.0.0.50"), at("127.0.0.90")};
    network.names[at("127.0.0.50")] = "<b>fifty</b>.example";
    open();
    EXPECT_EQ(text("discoverNowPlan"),
              QStringLiteral("The Live Discover ranges hold 100 addresses. Devices have 1 of "
                             "them already; the others are asked."));
    window->findChild<QSpinBox*>()->setValue(50);
    EXPECT_EQ(text("discoverNowTakes"), QStringLiteral("takes about 7 s"));
    QTest::keyClick(window.get(), Qt::Key_Return);
    ASSERT_FALSE(over());
    EXPECT_TRUE(button("discoverNowStop")->isVisible());
    EXPECT_FALSE(button("discoverNowStart")->isVisible());
    ASSERT_TRUE(passUntil([this] { return over(); }));
    EXPECT_EQ(
        text("discoverNowStatus"),
        QStringLiteral("Asked 99 addresses: 2 hosts answered, all added to the Discovered/Misc window."));
    ASSERT_EQ(table()->model()->rowCount(), 2);
    EXPECT_EQ(table()->model()->index(0, CFoundHostsModel::Name).data().toString(),
              QStringLiteral("<b>fifty</b>.example"));
    EXPECT_FALSE(table()
                     ->model()
                     ->index(0, CFoundHostsModel::Name)
                     .data(Qt::ToolTipRole)
                     .toString()
                     .contains(QStringLiteral("<b>")));
    EXPECT_EQ(devices(), 3U);
    EXPECT_EQ(settings.read(sweepRateSetting, 0), 50);
    EXPECT_TRUE(button("discoverNowStart")->isVisible()) << "it may be done again";
    table()->selectAll();
    QTest::keyClick(table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("127.0.0.50")));
}

TEST_F(DiscoverNowWindowTest, SaysWhereRangesAreEntered) {
    open();
    EXPECT_TRUE(text("discoverNowPlan").contains(QStringLiteral("does not have IP range(s)")));
    EXPECT_TRUE(text("discoverNowPlan").contains(QStringLiteral("Live Stat/Discover Option...")));
    EXPECT_FALSE(button("discoverNowStart")->isEnabled());
    QSignalSpy wanted(window.get(), &CDiscoverNowWindow::rangesWanted);
    button("discoverNowRanges")->click();
    EXPECT_EQ(wanted.count(), 1);
}

TEST_F(DiscoverNowWindowTest, EscapeAsksBeforeItForgetsFoundHosts) {
    ASSERT_NO_FATAL_FAILURE(findTwo());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_THAT(dialogs.questions, ElementsAre("Cancel Discover Now and forget the 2 hosts found so far?"));
    EXPECT_FALSE(over()) << "the answer was No";
    dialogs.answer = true;
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(over());
    EXPECT_EQ(devices(), 0U);
    EXPECT_TRUE(window->isVisible()) << "it shows how that ended";
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(DiscoverNowWindowTest, EscapeAsksNothingWhereNothingIsLost) {
    addRange("127.0.0.1", "127.0.3.254");
    open();
    button("discoverNowStart")->click();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_THAT(dialogs.questions, ElementsAre());
    EXPECT_TRUE(over());
}

TEST_F(DiscoverNowWindowTest, StopAndAddKeepsThem) {
    ASSERT_NO_FATAL_FAILURE(findTwo());
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_TRUE(over());
    EXPECT_EQ(devices(), 2U);
    EXPECT_THAT(dialogs.questions, IsEmpty());
}

TEST_F(DiscoverNowWindowTest, AsksBeforeAMistypedRangeAndTellsWhatIsMissing) {
    addRange("127.0.0.1", "127.255.255.254");
    open();
    button("discoverNowStart")->click();
    ASSERT_EQ(dialogs.questions.size(), 1U);
    EXPECT_THAT(dialogs.questions[0], HasSubstr("16,777,214 addresses. At 500 probes a second, fewer where "
                                                "nobody answers, that takes up to 34:57 h."));
    EXPECT_TRUE(over());
    EXPECT_THAT(network.asked(), IsEmpty());
    dialogs.answer = true;
    network.unusable = "Ping is not permitted: do this.";
    button("discoverNowStart")->click();
    EXPECT_TRUE(over());
    EXPECT_THAT(dialogs.failures, ElementsAre(HasSubstr("Ping is not permitted: do this.")));
}

} // namespace
} // namespace mirovane::test
