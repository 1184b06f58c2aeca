#include "ui/floor/paint/LabelLines.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

using Background = LabelBackground;

CHardware computer() {
    CHardware device;
    device.Type = DeviceType::Computer;
    device.RecID = 7;
    device.Name = "pc";
    device.IPAddress = "127.0.0.1";
    device.Username = "ann";
    device.MACAddress = "aa:bb";
    device.ToJack = "J1";
    device.Comment = "one\rtwo";
    device.SlashText = "s";
    device.BackslashText = "b";
    device.HorzText = "h";
    device.VertText = "v";
    return device;
}

DisplaySettings nothingShown() {
    DisplaySettings display;
    display.PropertiesUsername = false;
    return display;
}

std::string written(const std::vector<LabelLine>& lines) {
    std::string all;
    for (const LabelLine& line : lines)
        all += line.text + "@" + std::to_string(line.row) + "=" + "-rgm"[static_cast<int>(line.background)] +
               (line.underline ? "_ " : " ");
    return all;
}

TEST(LabelLinesTest, HoverShowsEveryTextInOrderOnGrey) {
    CHardware device = computer();
    device.ShowAll = 1;
    EXPECT_EQ(written(labelLines(device, nothingShown(), {})),
              "pc@0=g 127.0.0.1@1=g ann@2=g aa:bb@3=g J1@4=g one@5=g two@6=g s@7=g b@8=g h@9=g v@10=g ");
}

TEST(LabelLinesTest, EmptyTextsAndSettingsThatAreOffTakeNoLine) {
    CHardware device = computer();
    device.IPAddress.clear();
    DisplaySettings display = nothingShown();
    EXPECT_TRUE(labelLines(device, display, {}).empty());
    display.PropertiesComputer = display.PropertiesIPAddress = display.PropertiesVert = true;
    EXPECT_EQ(written(labelLines(device, display, {})), "pc@0=- v@1=- ");
}

TEST(LabelLinesTest, LoggedOnUserIsMagentaAndOnlyHisLine) {
    CHardware device = computer();
    DisplaySettings display = nothingShown();
    display.PropertiesUsername = display.PropertiesMACAddress = true;
    EXPECT_EQ(written(labelLines(device, display, {})), "ann@0=- aa:bb@1=- ");
    device.State = DeviceState::On;
    EXPECT_EQ(written(labelLines(device, display, {})), "ann@0=m aa:bb@1=- ");
    for (const char* absent : {"[ann]", "[ann", "ann]"}) {
        device.Username = absent;
        EXPECT_EQ(labelLines(device, display, {})[0].background, Background::Canvas) << absent;
    }
}

TEST(LabelLinesTest, DueRedLastsUntilTheUsername) {
    CHardware device = computer();
    device.ReminderDue = 1;
    device.ToDo = "call";
    DisplaySettings display = nothingShown();
    display.PropertiesComputer = display.PropertiesMACAddress = true;
    LabelState state;
    EXPECT_EQ(written(labelLines(device, display, state)), "pc@0=- aa:bb@1=- ") << "the phase is off";
    state.ReminderPhase = true;
    EXPECT_EQ(written(labelLines(device, display, state)), "Due:call@0=r_ pc@1=r aa:bb@2=r ");
    display.PropertiesUsername = true;
    EXPECT_EQ(written(labelLines(device, display, state)), "Due:call@0=r_ pc@1=r ann@2=r aa:bb@3=- ");
    display.ReminderDeviceShow = false;
    EXPECT_EQ(labelLines(device, display, state)[0].text, "pc");
    state.find.FindReminderMode = true;
    EXPECT_EQ(labelLines(device, display, state)[0].text, "Due:call");
}

TEST(LabelLinesTest, LocationMarkerShowsItsCommentAndNeverItsOutline) {
    CHardware marker = computer();
    marker.Type = DeviceType::LocationMarker;
    marker.ToJack = "1,2,3,4,";
    marker.Comment = "Hall\r\r\nB";
    EXPECT_EQ(written(labelLines(marker, nothingShown(), {})), "Hall@0=- @1=- \nB@2=- ");
    marker.ShowAll = 1;
    for (const LabelLine& line : labelLines(marker, nothingShown(), {})) {
        EXPECT_NE(line.text, "1,2,3,4,");
        EXPECT_NE(line.text, "v");
    }
}

TEST(LabelLinesTest, SelectedDevicesGoWithoutLabelsWhileAButtonIsDown) {
    CHardware device = computer();
    device.Selected = 1;
    device.ShowAll = 1;
    LabelState state;
    state.find.FindHitCount = 3;
    const auto lines = labelLines(device, nothingShown(), state);
    EXPECT_EQ(lines[0], (LabelLine{"Found:3", Background::ShowAll, false, -1}));
    EXPECT_EQ(lines[1].row, 0);
    EXPECT_TRUE(state.find.clicked());
    EXPECT_EQ(labelLines(device, nothingShown(), state)[0].row, 0) << "a click takes the count away";
    EXPECT_FALSE(state.find.clicked());
    state.LabelsShown = false;
    EXPECT_TRUE(labelLines(device, nothingShown(), state).empty());
    device.Selected = 0;
    EXPECT_FALSE(labelLines(device, nothingShown(), state).empty());
}

TEST(LabelLinesTest, ReminderSearchNamesWhatItFound) {
    CHardware device = computer();
    device.ToDo = "call";
    device.Selected = 1;
    LabelState state;
    EXPECT_FALSE(foundReminderLine(device, state));
    state.find.FindReminderMode = true;
    EXPECT_EQ(foundReminderLine(device, state), (LabelLine{"Reminder:call", Background::ShowAll, true, 0}));
    device.ReminderDue = 1;
    EXPECT_EQ(foundReminderLine(device, state)->text, "Reminder:call") << "due alone is not enough";
    device.ReminderOn = 1;
    EXPECT_EQ(foundReminderLine(device, state), (LabelLine{"Due:call", Background::Due, true, 0}));
    EXPECT_TRUE(state.find.clicked());
    EXPECT_FALSE(foundReminderLine(device, state));
}

} // namespace

} // namespace mirovane
