#include "model/Settings.h"

#include "model/MessageLog.h"
#include "model/records/Text.h"
#include "tests/support/FakeTime.h"

#include <gtest/gtest.h>
#include <vector>

namespace mirovane {

namespace {

/// What a user sees of the defaults, and that each of them is written down: other programs read them there.
TEST(SettingsTest, FirstStartWritesEveryDefault) {
    CMemorySettingsStore store;
    CSettings settings(store);
    settings.initialise();
    EXPECT_EQ(store.integers().size(), startupSettings().size());
    for (const auto& [name, value] : std::map<std::string, std::int32_t>{{"LSAutoStart", 1},
                                                                         {"LSRunSec", 3},
                                                                         {"LSNumPerRun", 30},
                                                                         {"ZoomPercent", 100},
                                                                         {"PropertiesUsername", 1},
                                                                         {"PropertiesComputer", 0},
                                                                         {"HideCards", 0}})
        EXPECT_EQ(store.readInteger(name), value) << name;
}

TEST(SettingsTest, LaterStartsKeepWhatTheUserChose) {
    CMemorySettingsStore store;
    CSettings settings(store);
    settings.write("LSNumPerRun", 0);
    settings.write("LSRunSec", 10);
    settings.write("HideCards", 1);
    settings.initialise();
    EXPECT_EQ(settings.read("LSNumPerRun", 50), 30);
    EXPECT_EQ(settings.read("LSRunSec", 3), 10);
    EXPECT_EQ(settings.read("HideCards", 0), 1);
}

TEST(SettingsTest, DisplayIsReadWithoutAStartToo) {
    CMemorySettingsStore store;
    CSettings settings(store);
    DisplaySettings display;
    display.readAll(settings);
    EXPECT_EQ(display.VisibleTypes, -1);
    EXPECT_TRUE(display.LSStatusDeviceShow && display.PropertiesUsername && display.PropertiesVertDraw);
    EXPECT_FALSE(display.PropertiesComputer);
    LiveStatSettings liveStat;
    liveStat.readAll(settings);
    EXPECT_EQ(liveStat.LSNumPerRun, 50);

    settings.write("ZoomPercent", 0);
    settings.write("PropertiesSlash", 7);
    settings.write("PropertiesJack", 1);
    settings.write("HideSwitches", 1);
    DisplaySettings opened;
    opened.readAtOpen(settings);
    EXPECT_TRUE(opened.PropertiesJack);
    EXPECT_FALSE(opened.PropertiesSlash); // not among the six that an open reads
    EXPECT_FALSE(opened.typeVisible(5));
    EXPECT_TRUE(opened.typeVisible(6));
    opened.readAll(settings);
    EXPECT_TRUE(opened.PropertiesSlash);
    EXPECT_EQ(opened.ZoomPercent, 100);
    EXPECT_EQ(displayToggle("PropertiesJack"), &DisplaySettings::PropertiesJack);
    EXPECT_EQ(displayToggle("ZoomPercent"), nullptr);
    const std::vector<std::string_view> hidden = {"HideJacks", "HideRouters", "HideSwitches", "HideMarkers"};
    EXPECT_EQ(hideSettingName(1), hidden[0]);
    EXPECT_EQ(hideSettingName(6), hidden[1]);
    EXPECT_EQ(hideSettingName(5), hidden[2]);
    EXPECT_EQ(hideSettingName(13), hidden[3]);
}

class Told final : public LogListener {
public:
    void lineLogged(const LogLine& line) override { lines.push_back(line); }

    std::vector<LogLine> lines;
};

TEST(MessageLogTest, KeepsTheLatestLinesAndTellsListeners) {
    test::FakeClock clock;
    CMessageLog log(clock);
    Told listener;
    const std::vector<LogLine>& told = listener.lines;
    log.addListener(listener);
    log.begin("Start Mirovane");
    log.LogMessage("first", true);
    EXPECT_EQ(log.lines()[0].shown(), "Start Mirovane");
    EXPECT_TRUE(log.lines()[1].shown().ends_with(" - first"));
    EXPECT_EQ(told.back(), (LogLine{clock.wall(), "first", true}));
    EXPECT_EQ(log.text(), "Start Mirovane\r\n" + log.lines()[1].shown() + "\r\n");
    for (int i = 0; i < 397; ++i)
        log.LogMessage("more");
    EXPECT_EQ(log.lines().size(), 399U);
    EXPECT_EQ(log.lines()[0].text, "Start Mirovane");
    log.LogMessage("a name\r\nMon - forged, \x1B[2Jwiped\x7F \xC3\xA9");
    EXPECT_EQ(log.lines().size(), 399U);
    EXPECT_EQ(log.lines()[0].text, "first");
    EXPECT_EQ(told.back(), (LogLine{clock.wall(), "a name  Mon - forged,  [2Jwiped  \xC3\xA9", false}));
    log.LogMessage("\xC2\x9B"
                   "2J, \xC2\xA3");
    EXPECT_EQ(told.back().text, " 2J, \xC2\xA3");
    log.LogMessage("\x9D"
                   "2J for 5 \x80"); // in the code page of old stations
    EXPECT_EQ(told.back().text, " 2J for 5 \xE2\x82\xAC");

    log.removeListener(listener);
    const std::size_t before = told.size();
    log.LogMessage("unheard");
    EXPECT_EQ(told.size(), before);
}

TEST(TextTest, BytesAreShownInTheRightCodePage) {
    EXPECT_EQ(displayText("M\xC3\xBCller"), "M\xC3\xBCller");
    EXPECT_EQ(displayText("M\xFCller \x80"), "M\xC3\xBCller \xE2\x82\xAC");
    for (const char* invalid : {"\x80", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80",
                                "\xF5\x80\x80\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xF0\x9F\x96"}) {
        EXPECT_FALSE(isValidUtf8(invalid));
        EXPECT_TRUE(isValidUtf8(displayText(invalid)));
    }
    EXPECT_TRUE(isValidUtf8("\xF4\x8F\xBF\xBF \xED\x9F\xBF \xF0\x90\x80\x80"));
}

TEST(TextTest, WideUnitsBecomeUtf8) {
    EXPECT_EQ(bytesFromUtf16Le(std::string_view("A\0\xFC\0\xAC\x20", 6)), "A\xC3\xBC\xE2\x82\xAC");
    EXPECT_EQ(bytesFromUtf16Le("\x3D\xD8\xA7\xDD"), "\xF0\x9F\x96\xA7");
    const std::string lone = "\xEF\xBF\xBD";
    EXPECT_EQ(bytesFromUtf16Le("\x3D\xD8"), lone);
    EXPECT_EQ(bytesFromUtf16Le("\xA7\xDD\x3D\xD8"), lone + lone);
    EXPECT_EQ(bytesFromUtf16Le(std::string_view("\x3D\xD8Z\0", 4)), lone + "Z");
}

} // namespace

} // namespace mirovane
