#include "model/rows/TextExport.h"

#include "model/Settings.h"
#include "model/records/Dates.h"
#include "tests/model/DocumentFixture.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;

class TextExportTest : public DocumentFixture {
protected:
    TextExportTest() {
        setenv("TZ", "UTC", 1);
        tzset();
    }

    CMemorySettingsStore store;
    CSettings settings{store};

    static CHardware fullDevice() {
        CHardware device;
        device.Type = DeviceType::Computer + DeviceType::discoveredOffset;
        device.RecID = 7;
        device.State = DeviceState::Off;
        device.Priority = 5;
        device.Modified = 86400;
        device.ReminderOn = 1;
        device.ReminderDate = *dateTimeFromIso("2026-11-22 14:30");
        device.ToDo = "disk";
        device.Name = "pc-\xFC";
        device.IPAddress = "10.0.0.9";
        device.Username = "anna";
        device.MACAddress = "00-11";
        device.ToJack = "A-7";
        device.Comment = "first\r\nsecond \"x\"\n";
        device.SlashText = "a\tb";
        device.BackslashText = "b";
        device.HorzText = "h\nh";
        device.VertText = "v";
        return device;
    }

    static std::string exported(const std::vector<CHardware>& devices, const TextExportFormat& format = {}) {
        std::vector<const CHardware*> rows;
        for (const CHardware& device : devices)
            rows.push_back(&device);
        return exportText(rows, format);
    }
};

TEST_F(TextExportTest, ARowIsTheListViewsTextsWithoutItsId) {
    EXPECT_EQ(exported({fullDevice()}),
              "Fri Jan  2 00:00:00 1970\tInactive\t5\tSun Nov 22 14:30:00 2026\tdisk\tComputer\tpc-\xFC\t"
              "10.0.0.9\tanna\t00-11\tA-7\tfirst  second \"x\" \ta\tb\tb\th\nh\tv\r\n")
        << "line breaks go from the comment alone, and nothing is escaped";

    CHardware marker;
    marker.Type = DeviceType::LocationMarker;
    marker.ToJack = "1,1,2,2,";
    marker.ReminderDate = {DateTime::valid, 1.5};
    EXPECT_EQ(exported({marker, marker}),
              "Thu Jan  1 00:00:00 1970\t\t1\t\t\tLocation Marker\t\t\t\t\t\t\t\t\t\t\r\n"
              "Thu Jan  1 00:00:00 1970\t\t1\t\t\tLocation Marker\t\t\t\t\t\t\t\t\t\t\r\n");
    EXPECT_EQ(exported({}), "");
}

TEST_F(TextExportTest, HeaderQuotesAndDelimiter) {
    EXPECT_EQ(
        exported({}, {.header = true}),
        "Modified\tLS\tPri\tReminder\tTo Do\tDevice\tName\tIP Address\tUsername\tMAC Address\tto Jack/#\t"
        "Comment\t/ Text\t\\Text\t- Text\t| Text\r\n");
    CHardware device;
    device.Type = DeviceType::Jack;
    device.Comment = "c";
    EXPECT_EQ(
        exported({device}, {.delimiter = ", ", .quoteComment = true, .header = true}),
        "Modified, LS, Pri, Reminder, To Do, Device, Name, IP Address, Username, MAC Address, to Jack/#, "
        "\"Comment\", / Text, \\Text, - Text, | Text\r\n"
        "Thu Jan  1 00:00:00 1970, , 1, , , Jack, , , , , , \"c\", , , , \r\n");
    const std::string all =
        "\"Thu Jan  1 00:00:00 1970\";\"\";\"1\";\"\";\"\";\"Jack\";\"\";\"\";\"\";\"\";\"\";"
        "\"c\";\"\";\"\";\"\";\"\"\r\n";
    EXPECT_EQ(exported({device}, {.delimiter = ";", .quoteAll = true}), all);
    EXPECT_EQ(exported({device}, {.delimiter = ";", .quoteAll = true, .quoteComment = true}), all)
        << "quoted once";
    EXPECT_EQ(exported({device}, {.delimiter = ""}), "Thu Jan  1 00:00:00 19701Jackc\r\n");
}

TEST_F(TextExportTest, SettingsAreKeptPerDatafile) {
    ExportSettings read;
    read.ExportQuoteAll = true;
    read.read(settings, "/srv/a.mv");
    EXPECT_EQ(read, ExportSettings()) << "the defaults";
    EXPECT_EQ(store.readInteger("ExportTab/srv/a.mv"), 1);
    EXPECT_EQ(store.readInteger("ExportAuto/srv/a.mv"), 0);
    EXPECT_EQ(store.readText("ExportFilename/srv/a.mv"), "");
    EXPECT_EQ(store.readText("ExportCustomText/srv/a.mv"), "") << "are written when they were absent";

    const ExportSettings mine{"out.txt", false, ";;", true, true, true, true};
    mine.write(settings, "/srv/a.mv");
    read.read(settings, "/srv/b.mv");
    EXPECT_EQ(read, ExportSettings());
    read.read(settings, "/srv/a.mv");
    EXPECT_EQ(read, mine);
    EXPECT_EQ(read.format().delimiter, ";;");
    read.ExportTab = true;
    EXPECT_EQ(read.format().delimiter, "\t");

    read.ExportCustomText = std::string(300, 'x');
    read.write(settings, "/srv/a.mv");
    EXPECT_EQ(store.readText("ExportCustomText/srv/a.mv")->size(), 255U);
    store.writeText("ExportFilename/srv/a.mv", std::string(300, 'y'));
    read.read(settings, "/srv/a.mv");
    EXPECT_EQ(read.ExportFilename.size(), 255U);
}

TEST_F(TextExportTest, TargetsCountFromTheDatafilesFolder) {
    EXPECT_EQ(exportTarget("list.txt", "/srv/site/floor.mv"), "/srv/site/list.txt");
    EXPECT_EQ(exportTarget("../list.txt", "/srv/site/floor.mv"), "/srv/list.txt");
    EXPECT_EQ(exportTarget("/tmp/x.txt", "/srv/site/floor.mv"), "/tmp/x.txt");
    EXPECT_EQ(exportTarget("x.txt", ""), std::filesystem::current_path().string() + "/x.txt");
    EXPECT_EQ(exportTarget("", "/srv/site/floor.mv"), "");
}

TEST_F(TextExportTest, AFileIsReplacedWhole) {
    const std::string target = folder.file("list.txt");
    const auto write = [&](const std::string& to, const std::string& text) {
        return writeExport(files, to, path, text, std::chrono::milliseconds(0));
    };
    EXPECT_FALSE(write(target, std::string(100'000, 'a')));
    std::ifstream reader(target, std::ios::binary);
    EXPECT_EQ(reader.get(), 'a');
    std::filesystem::permissions(target, std::filesystem::perms(0640));
    std::filesystem::create_symlink("list.txt", folder.file("link.txt"));
    EXPECT_FALSE(write(folder.file("link.txt"), "b"));
    std::string rest;
    std::getline(reader, rest);
    EXPECT_EQ(rest, std::string(99'999, 'a')) << "who reads the old file still reads the old file";
    EXPECT_EQ(readBytes(target), "b");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.txt")));
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2)
        << "nothing is left over";
}

TEST_F(TextExportTest, WhatCannotBeWrittenIsNamed) {
    makeFloor(1);
    const std::string before = readBytes(path);
    std::filesystem::create_hard_link(path, folder.file("same.txt"));
    const auto sentence = [&](const std::string& to) {
        const auto error = writeExport(files, to, path, "x", std::chrono::milliseconds(0));
        return error ? error->sentence : std::string("no error");
    };
    EXPECT_THAT(sentence(""), HasSubstr("no file name"));
    EXPECT_THAT(sentence(path), HasSubstr(path + ": it is the datafile itself"));
    EXPECT_THAT(sentence(folder.file("same.txt")), HasSubstr("datafile itself"));
    std::filesystem::copy_file(path, folder.file("backup.mv"));
    EXPECT_THAT(sentence(folder.file("backup.mv")), HasSubstr("it is a datafile"));
    EXPECT_EQ(readBytes(folder.file("backup.mv")), before);
    EXPECT_THAT(sentence(folder.file("none/list.txt")), HasSubstr(folder.file("none/list.txt")));
    EXPECT_THAT(sentence(folder.path()), HasSubstr(folder.path()));
    writeBytes(folder.file("held.txt"), "old");
    const auto held = files.lock(folder.file("held.txt"), FileAccess::Read, std::chrono::milliseconds(0));
    ASSERT_TRUE(held);
    EXPECT_THAT(sentence(folder.file("held.txt")), HasSubstr("is using it"));
    EXPECT_EQ(readBytes(folder.file("held.txt")), "old");
    EXPECT_EQ(readBytes(path), before);
}

} // namespace
} // namespace mirovane::test
