#include "ui/frame/bars/StatusPanes.h"

#include "ui/widgets/KeyboardLocks.h"

#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QStatusBar>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

TEST(StatusPanesTest, IndicatorsShowTextOnlyWhileSomethingIsOn) {
    IndicatorState state;
    for (const Indicator indicator : {Indicator::Reminders, Indicator::LiveDiscover, Indicator::LiveStat,
                                      Indicator::Hidden, Indicator::Keyboard})
        EXPECT_TRUE(indicatorText(indicator, state).isEmpty());

    state.floorMapHidden = true;
    EXPECT_EQ(indicatorText(Indicator::Hidden, state), QStringLiteral("HIDE"));
    state = {};
    state.anyTypeHidden = true;
    EXPECT_EQ(indicatorText(Indicator::Hidden, state), QStringLiteral("HIDE"));
    state.remindersDue = 12;
    EXPECT_EQ(indicatorText(Indicator::Reminders, state), QStringLiteral("[F4]Due:12"));
    state.liveDiscoverEnabled = true;
    EXPECT_EQ(indicatorText(Indicator::LiveDiscover, state), QStringLiteral("LD!"));
}

TEST(StatusPanesTest, PanesHoldTheirSizingTextAndStandInOrder) {
    QMainWindow window;
    const CStatusPanes panes(*window.statusBar());
    window.resize(900, 300);
    window.show();
    struct Pane {
        const char* name;
        const char* sizingText;
    };
    int lastLeft = -1;
    for (const Pane& expected :
         {Pane{"paneMessage", ""}, Pane{"paneReminders", "DUE(F4):9999"}, Pane{"paneLiveDiscover", "LD!"},
          Pane{"paneLiveStat", "LIVE!:99"}, Pane{"paneHidden", "HIDE"}}) {
        const auto* pane = window.findChild<QLabel*>(QLatin1String(expected.name));
        ASSERT_NE(pane, nullptr) << expected.name;
        EXPECT_GE(pane->width(), pane->fontMetrics().horizontalAdvance(QLatin1String(expected.sizingText)));
        EXPECT_GT(pane->mapTo(&window, QPoint()).x(), lastLeft) << expected.name;
        lastLeft = pane->mapTo(&window, QPoint()).x();
    }
}

TEST(StatusPanesTest, ALongMessageNeverMakesTheWindowWider) {
    QMainWindow window;
    CStatusPanes panes(*window.statusBar());
    window.resize(500, 300);
    window.show();
    const int before = window.minimumSizeHint().width();
    panes.SetStatusText(QString(5000, u'W'));
    EXPECT_EQ(window.minimumSizeHint().width(), before);
    const auto* message = window.findChild<CMessagePane*>();
    EXPECT_EQ(message->message().size(), 5000);
    EXPECT_LT(message->text().size(), 200);
}

TEST(StatusPanesTest, AMessageIsOneLineOfPlainText) {
    QMainWindow window;
    CStatusPanes panes(*window.statusBar());
    window.resize(500, 300);
    window.show();
    const int before = window.statusBar()->sizeHint().height();
    panes.SetStatusText(QStringLiteral("pc\r\n1\n2\n3\n4 is On"));
    EXPECT_EQ(window.statusBar()->sizeHint().height(), before);
    panes.SetStatusText(QStringLiteral("<img src=x>").repeated(300));
    const QString tip = window.findChild<CMessagePane*>()->toolTip();
    EXPECT_FALSE(tip.isEmpty());
    EXPECT_FALSE(tip.contains(QStringLiteral("<img")));
}

TEST(CKeyboardLightsTest, ReadsTheLightsOfAllKeyboards) {
    const QTemporaryDir folder;
    const auto light = [&folder](const char* name, const char* brightness) {
        QDir(folder.path()).mkpath(QLatin1String(name));
        QFile file(folder.filePath(QLatin1String(name) + QStringLiteral("/brightness")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(brightness);
    };
    light("input3::capslock", "0\n");
    light("input7::capslock", "1\n");
    light("input3::numlock", "1\n");
    light("input3::scrolllock", "0\n");
    const KeyboardLocks locks = CKeyboardLights(folder.path()).read();
    EXPECT_EQ(keyboardText(locks), QStringLiteral("CAP NUM"));
    EXPECT_EQ(CKeyboardLights(QStringLiteral("/nonexistent")).read(), KeyboardLocks{});
    EXPECT_FALSE(CKeyboardLights::displayIsLocal(QStringLiteral("otherhost:10.0")));
    EXPECT_TRUE(CKeyboardLights::displayIsLocal(QStringLiteral(":0")));
}

} // namespace
} // namespace mirovane
