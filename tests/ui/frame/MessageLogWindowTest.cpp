#include "ui/frame/MessageLogWindow.h"

#include "tests/support/FakeTime.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

class MessageLogWindowTest : public testing::Test {
protected:
    test::FakeClock clock;
    CMessageLog log{clock};
    CMemorySettingsStore store;
    CSettings settings{store};

    static QPlainTextEdit* textOf(CMessageLogWindow& window) {
        return window.findChild<QPlainTextEdit*>(QStringLiteral("messageLogText"));
    }
    static QString lineAt(CMessageLogWindow& window, int number) {
        return textOf(window)->document()->findBlockByNumber(number).text();
    }
    void fill(int lines) {
        for (int i = 0; i < lines; ++i)
            log.LogMessage("line " + std::to_string(i));
    }
};

TEST_F(MessageLogWindowTest, KeepsFourHundredLinesAndStartGoesFirst) {
    CMessageLogWindow window(log, settings);
    EXPECT_EQ(lineAt(window, 0), QStringLiteral("Start Mirovane"));
    fill(398);
    EXPECT_EQ(textOf(window)->blockCount(), 400); // with the empty line after the last line end
    EXPECT_EQ(lineAt(window, 0), QStringLiteral("Start Mirovane"));
    fill(1);
    EXPECT_EQ(textOf(window)->blockCount(), 400);
    EXPECT_TRUE(lineAt(window, 0).endsWith(QStringLiteral(" - line 0"))) << lineAt(window, 0).toStdString();
    fill(5);
    ASSERT_EQ(static_cast<int>(log.lines().size()) + 1, textOf(window)->blockCount());
    for (int i = 0; i < static_cast<int>(log.lines().size()); ++i)
        EXPECT_EQ(lineAt(window, i).toStdString(), log.lines()[static_cast<std::size_t>(i)].shown());
}

TEST_F(MessageLogWindowTest, ShowsWhatWasLoggedBeforeAndWhileItWasHidden) {
    log.LogMessage("early");
    CMessageLogWindow window(log, settings);
    EXPECT_TRUE(lineAt(window, 0).endsWith(QStringLiteral("early")));
    log.LogMessage("hidden");
    window.present();
    EXPECT_TRUE(lineAt(window, 1).endsWith(QStringLiteral("hidden")));
}

TEST_F(MessageLogWindowTest, FollowsTheEndUnlessSomebodyReadsFurtherUp) {
    CMessageLogWindow window(log, settings);
    window.resize(400, 200);
    fill(100);
    window.present();
    QApplication::processEvents();
    QScrollBar* bar = textOf(window)->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    fill(1);
    EXPECT_EQ(bar->value(), bar->maximum());

    bar->setValue(10);
    fill(20);
    EXPECT_EQ(bar->value(), 10);
    window.present();
    EXPECT_EQ(bar->value(), bar->maximum());
    fill(20);
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(MessageLogWindowTest, AFilterLeavesTheLinesWithAllItsWords) {
    CMessageLogWindow window(log, settings);
    log.LogMessage("Saved 3 changes to data file");
    log.LogStatistics("Live Stat Now: Processing 3 device(s).");
    auto* filter = window.findChild<QLineEdit*>(QStringLiteral("messageLogFilter"));
    const auto lines = [&window] {
        return textOf(window)->blockCount() - 1;
    };
    EXPECT_EQ(lines(), 3);
    filter->setText(QStringLiteral("FILE saved"));
    EXPECT_EQ(lines(), 1);
    log.LogMessage("Saved nothing");
    log.LogMessage("saved another file");
    EXPECT_EQ(lines(), 2);
    window.present();
    QTest::keyClick(filter, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(lines(), 5);
    window.findChild<QCheckBox*>(QStringLiteral("messageLogNoStatistics"))->click();
    EXPECT_EQ(lines(), 4);
    log.LogStatistics("Live Stat Now: Processing 4 device(s).");
    EXPECT_EQ(lines(), 4);
    EXPECT_EQ(textOf(*std::make_unique<CMessageLogWindow>(log, settings))->blockCount() - 1, 4)
        << "remembered";
}

TEST_F(MessageLogWindowTest, TakesItsPlaceOnlyWhenCornerAndSizeAreStored) {
    store.writeInteger("WindowMLogBotX", 333);
    store.writeInteger("WindowMLogBotY", 222);
    EXPECT_NE(CMessageLogWindow(log, settings).width(), 333);
    store.writeInteger("WindowMLogTopX", 44);
    CMessageLogWindow window(log, settings);
    EXPECT_EQ(window.size(), QSize(333, 222));
    EXPECT_EQ(window.x(), 44);
}

} // namespace
} // namespace mirovane
