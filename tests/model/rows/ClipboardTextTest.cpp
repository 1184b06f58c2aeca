#include "model/rows/ClipboardText.h"

#include "model/records/Dates.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

using testing::HasSubstr;

constexpr TimeStamp now = 1'700'000'000;

class ClipboardTextTest : public testing::Test {
protected:
    ClipboardTextTest() { setZone("UTC"); }
    ~ClipboardTextTest() override { setZone("UTC"); }

    static void setZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }

    static CHardware fullDevice() {
        CHardware device;
        device.Type = DeviceType::Printer;
        device.RecID = 12;
        device.State = DeviceState::Off;
        device.Priority = 2;
        device.Modified = 86400;
        device.ReminderOn = 1;
        device.ReminderDate = *dateTimeFromIso("2026-11-22 14:30:05");
        device.ToDo = "toner";
        device.Name = "prn-1";
        device.IPAddress = "10.0.0.9";
        device.Username = "anna";
        device.MACAddress = "00-11";
        device.ToJack = "A-7";
        device.Comment = "by the \"door\"";
        device.SlashText = "s";
        device.BackslashDraw = 1;
        device.BackslashText = "b";
        device.HorzDraw = 1;
        device.VertText = "v";
        return device;
    }
};

TEST_F(ClipboardTextTest, NineteenFieldsInTheirOrder) {
    EXPECT_EQ(
        clipboardLine(fullDevice(), ClipboardForm::Bytes),
        "Fri Jan  2 00:00:00 1970\tInactive\tSun Nov 22 14:30:05 2026\ttoner\tPrinter\tprn-1\t10.0.0.9\t"
        "anna\t00-11\tA-7\tby the \"door\"\t\ts\tCheck\tb\tCheck\t\t\tv");

    CHardware marker;
    marker.Type = DeviceType::LocationMarker + DeviceType::discoveredOffset;
    marker.State = 3;
    marker.ToJack = "10,10,20,20,";
    marker.ReminderDate = {DateTime::valid, 1.5};
    EXPECT_EQ(clipboardLine(marker, ClipboardForm::Bytes),
              "Thu Jan  1 00:00:00 1970\t\t\t\tLocation Marker\t\t\t\t\t\t\t\t\t\t\t\t\t\t")
        << "neither its area nor a date without a reminder, nor a state that does not exist";
}

TEST_F(ClipboardTextTest, FieldsCannotBreakLinesOrColumns) {
    CHardware device = fullDevice();
    device.Comment = "one\r\ntwo\rthree\nfour\n\nfive";
    device.Name = "a\tb";
    device.VertText = "end\r\n";
    const ClipboardReading reading = readClipboardText(clipboardLine(device, ClipboardForm::Bytes), now);
    ASSERT_EQ(reading.rows.size(), 1U);
    EXPECT_EQ(reading.rows[0].device.Comment, "one two three four  five");
    EXPECT_EQ(reading.rows[0].device.Name, "a b");
    EXPECT_EQ(reading.rows[0].device.VertText, "end ");
}

TEST_F(ClipboardTextTest, QuotationMarksTravelAsSpreadsheetsWriteThem) {
    CHardware device = fullDevice();
    device.Name = "\"quoted\" at first";
    device.Comment = "\"";
    const std::string line = clipboardLine(device, ClipboardForm::Bytes);
    EXPECT_THAT(line, HasSubstr("\t\"\"\"quoted\"\" at first\"\t"));
    const ClipboardReading reading = readClipboardText(
        line + "\r\n\t\t\t\tJack\t\"a\nb\tc \"\"d\"\"\"\t\"e\" f\t\"never closed\r\n\t\t\t\tJack\tlast", now);
    ASSERT_EQ(reading.rows.size(), 3U);
    EXPECT_EQ(reading.rows[0].device.Name, device.Name);
    EXPECT_EQ(reading.rows[0].device.Comment, device.Comment);
    EXPECT_EQ(reading.rows[1].device.Name, "a b c \"d\"");
    EXPECT_EQ(reading.rows[1].device.IPAddress, "\"e\" f");
    EXPECT_EQ(reading.rows[1].device.Username, "\"never closed");
    EXPECT_EQ(reading.rows[2].device.Name, "last");
}

TEST_F(ClipboardTextTest, EverythingThatTravelsComesBack) {
    setZone("Europe/Berlin");
    CHardware first = fullDevice();
    first.Name = "M\xFCller"; // no UTF-8: bytes of an old station
    CHardware second;
    second.Type = DeviceType::Ups;
    second.State = DeviceState::On;
    second.Modified = 1'783'000'000; // in summer time
    const std::vector<const CHardware*> devices = {&first, &second};
    const std::string text = clipboardText(devices, ClipboardForm::Bytes);
    const ClipboardReading reading = readClipboardText(text, now);
    EXPECT_TRUE(reading.problems.empty());
    ASSERT_EQ(reading.rows.size(), 2U);
    first.RecID = 0;
    first.Priority = newDevicePriority(DeviceType::Printer);
    EXPECT_TRUE(sameStored(reading.rows[0].device, first));
    second.Priority = newDevicePriority(DeviceType::Ups);
    EXPECT_TRUE(sameStored(reading.rows[1].device, second));
    EXPECT_EQ(reading.rows[1].line, 2U);
}

TEST_F(ClipboardTextTest, OtherProgramsGetUtf8FieldByField) {
    CHardware device;
    device.Type = DeviceType::Jack;
    device.Name = "M\xFCller";
    device.Comment = "Größe";
    const std::string line = clipboardLine(device, ClipboardForm::Shown);
    EXPECT_THAT(line, HasSubstr("\tMüller\t"));
    EXPECT_THAT(line, HasSubstr("\tGröße\t"));
}

TEST_F(ClipboardTextTest, UnknownTypesAndShiftedColumnsAreDropped) {
    const std::string good = clipboardLine(fullDevice(), ClipboardForm::Bytes);
    const std::string text =
        good + "\n\r\nnonsense\n" + good + "\tmore\r\n" + good + "\t\t\r\n\t\t\t\tcOMPUTER\tpc-1";
    const ClipboardReading reading = readClipboardText(text, now);
    ASSERT_EQ(reading.rows.size(), 3U);
    EXPECT_EQ(reading.rows[1].line, 5U) << "empty fields behind the last are a spreadsheet's";
    EXPECT_EQ(reading.rows[2].device.Name, "pc-1");
    EXPECT_EQ(reading.rows[2].device.Modified, now);
    ASSERT_EQ(reading.problems.size(), 2U);
    EXPECT_EQ(reading.problems[0].line, 3U);
    EXPECT_TRUE(reading.problems[0].dropped);
    EXPECT_EQ(reading.problems[1].line, 4U);
    EXPECT_THAT(reading.problems[1].sentence, HasSubstr("20 fields"));
}

TEST_F(ClipboardTextTest, WhatIsTooMuchIsCounted) {
    std::string text;
    for (int i = 0; i < 10; ++i)
        text += "nonsense\n\t\t\t\tJack\n";
    const ClipboardReading reading = readClipboardText(text, now, {.rows = 4, .problems = 2});
    EXPECT_EQ(reading.rows.size(), 4U);
    EXPECT_EQ(reading.problems.size(), 2U);
    EXPECT_EQ(reading.dropped, 4U);
    EXPECT_EQ(reading.beyond, 12U);
}

TEST_F(ClipboardTextTest, EveryKindOfLineEndAndAMarkBeforeTheText) {
    const ClipboardReading reading =
        readClipboardText("\xEF\xBB\xBF\t\t\t\tJack\tone\r\t\t\t\tJack\ttwo\r\r\n"
                          "\t\t\t\tJack\tthree\n\t\t\t\tJack\tfour\r",
                          now);
    EXPECT_TRUE(reading.problems.empty());
    ASSERT_EQ(reading.rows.size(), 4U) << "two devices on one line would be one with mixed-up fields";
    EXPECT_EQ(reading.rows[0].device.Name, "one");
    EXPECT_EQ(reading.rows[1].device.Name, "two");
    EXPECT_EQ(reading.rows[2].device.Name, "three");
    EXPECT_EQ(reading.rows[3].device.Name, "four");
    EXPECT_EQ(reading.rows[3].line, 5U);
}

TEST_F(ClipboardTextTest, ADateThatNobodyCanReadIsNamedAndLeftOut) {
    const ClipboardReading reading = readClipboardText("2026-01-02 03:04\t\t2026-11-22 14:30\t\tJack\n"
                                                       "last week\t\tSat Feb 30 10:00:00 2026\t\tJack\n",
                                                       now);
    ASSERT_EQ(reading.rows.size(), 2U);
    EXPECT_EQ(reading.rows[0].device.Modified, 1'767'323'040);
    EXPECT_EQ(isoDateTimeText(reading.rows[0].device.ReminderDate), "2026-11-22 14:30");
    EXPECT_EQ(reading.rows[1].device.Modified, now);
    EXPECT_EQ(reading.rows[1].device.ReminderOn, 0);
    ASSERT_EQ(reading.problems.size(), 2U);
    EXPECT_FALSE(reading.problems[0].dropped);
    EXPECT_THAT(reading.problems[1].sentence, HasSubstr("\"Sat Feb 30 10:00:00 2026\""));
}

TEST_F(ClipboardTextTest, StampsSurviveTheHourThatComesTwice) {
    setZone("Europe/Berlin");
    constexpr TimeStamp changeBack = 1'792'890'000; // 2026-10-25 01:00 UTC
    for (const TimeStamp offset : {-7200, -1, 3600, 7200})
        EXPECT_EQ(stampFromText(stampText(changeBack + offset)), changeBack + offset) << offset;
    EXPECT_EQ(stampFromText(stampText(changeBack + 60)), changeBack + 60 - 3600) << "the earlier of two";
    EXPECT_EQ(stampFromText("Fri Jan  2 00:00:00 2099"), std::nullopt) << "more than a stamp holds";
    EXPECT_EQ(stampFromText(stampText(-86400)), -86400);
}

} // namespace
} // namespace mirovane
