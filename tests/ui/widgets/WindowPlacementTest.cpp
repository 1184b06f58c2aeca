#include "ui/widgets/WindowPlacement.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

const QRect leftScreen(0, 0, 1920, 1080);
const QRect rightScreen(1920, 0, 1280, 1024);

TEST(WindowPlacementTest, AWindowThatIsSeenWholeStaysWhereItWas) {
    const QList<QRect> screens{leftScreen, rightScreen};
    for (const QRect& place :
         {QRect(100, 50, 800, 600), QRect(2000, 20, 900, 700), QRect(1500, 0, 1200, 900)}) // across both
        EXPECT_EQ(reachable(place, screens), place);
}

TEST(WindowPlacementTest, AWindowOpensBesideAnotherOrOverItsEdge) {
    const QRect screen(0, 0, 1400, 900);
    const QSize size(400, 300);
    EXPECT_EQ(placeBeside(size, QRect(0, 0, 900, 800), screen).x(), 900);
    EXPECT_LE(placeBeside(size, QRect(500, 0, 900, 800), screen).x() + size.width(), 500);
    const QPoint over = placeBeside(size, QRect(70, 30, 1260, 860), screen);
    EXPECT_GT(over.x(), 800);
    EXPECT_TRUE(screen.contains(QRect(over, size)));
    EXPECT_TRUE(
        QRect(0, 0, 800, 600).contains(placeBeside({900, 700}, QRect(0, 0, 800, 600), {0, 0, 800, 600})))
        << "one that is larger than the screen begins on it";
}

TEST(WindowPlacementTest, AWindowOffEveryScreenIsBroughtBack) {
    struct Case {
        QRect stored;
        QRect expected;
    };
    const Case cases[] = {
        {{-300, 10, 800, 600}, {0, 10, 800, 600}},      // half out to the left
        {{2000, 20, 900, 700}, {1020, 20, 900, 700}},   // its screen was unplugged
        {{100, -400, 800, 600}, {100, 0, 800, 600}},    // title bar above the screen
        {{100, 1079, 800, 600}, {100, 480, 800, 600}},  // a sliver at the bottom
        {{-790, 100, 800, 600}, {0, 100, 800, 600}},    // a sliver at the left
        {{5000, 5000, 4000, 3000}, {0, 0, 1920, 1080}}, // larger than what is left
    };
    for (const Case& test : cases)
        EXPECT_EQ(reachable(test.stored, {leftScreen}), test.expected)
            << test.stored.x() << ',' << test.stored.y();
}

class PlacementTest : public testing::Test {
protected:
    CMemorySettingsStore store;
    CSettings settings{store};
    QWidget window;

    void storePlace(int left, int top, int width, int height) {
        store.writeInteger("WindowTopX", left);
        store.writeInteger("WindowTopY", top);
        store.writeInteger("WindowBotX", width);
        store.writeInteger("WindowBotY", height);
    }
};

TEST_F(PlacementTest, EachValueReplacesTheDefaultOnItsOwn) {
    window.setGeometry(10, 20, 300, 200);
    storePlace(placementNotSet, placementNotSet, 500, placementNotSet);
    applyPlacement(window, readPlacement(settings, mainFramePlacement));
    EXPECT_EQ(window.geometry(), QRect(10, 20, 500, 200));

    storePlace(40, placementNotSet, placementNotSet, 444);
    applyPlacement(window, readPlacement(settings, mainFramePlacement));
    EXPECT_EQ(window.geometry(), QRect(40, 20, 500, 444));
}

TEST_F(PlacementTest, AbsurdValuesStillGiveAUsableWindow) {
    storePlace(2'000'000'000, -2'000'000'000, -5, 2'000'000'000);
    applyPlacement(window, readPlacement(settings, mainFramePlacement));
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(window.pos()));
    EXPECT_LE(window.height(), screen.height());
    EXPECT_GT(window.width(), 0);
}

TEST_F(PlacementTest, MovesAreStoredButNotWhileMaximisedOrMinimised) {
    auto* keeper = new CPlacementKeeper(window, settings, mainFramePlacement);
    window.resize(320, 240);
    window.move(30, 40);
    window.show();
    QApplication::processEvents();
    keeper->flush();
    EXPECT_EQ(settings.read("WindowTopX", -1), 30);
    EXPECT_EQ(settings.read("WindowTopY", -1), 40);
    EXPECT_EQ(settings.read("WindowBotX", -1), 320);
    EXPECT_EQ(settings.read("WindowBotY", -1), 240);

    for (const Qt::WindowState state : {Qt::WindowMaximized, Qt::WindowMinimized, Qt::WindowFullScreen}) {
        window.setWindowState(state);
        window.resize(700, 500);
        QApplication::processEvents();
        keeper->flush();
        EXPECT_EQ(settings.read("WindowBotX", -1), 320) << state;
    }
}

TEST_F(PlacementTest, NothingIsLostWhenTheWindowClosesRightAfterAMove) {
    new CPlacementKeeper(window, settings, mainFramePlacement);
    window.show();
    window.move(77, 88);
    QApplication::processEvents();
    window.close();
    EXPECT_EQ(settings.read("WindowTopX", -1), 77);
    EXPECT_EQ(settings.read("WindowTopY", -1), 88);
}

} // namespace
} // namespace mirovane
