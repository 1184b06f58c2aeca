#include "platform/qt/IniSettingsStore.h"

#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <memory>

namespace mirovane {

namespace {

class IniSettingsStoreTest : public testing::Test {
protected:
    /// What another start of the program reads.
    void restart() {
        store.reset();
        store = std::make_unique<CIniSettingsStore>(folder.file("config"));
    }

    test::TestFolder folder;
    std::unique_ptr<CIniSettingsStore> store = std::make_unique<CIniSettingsStore>(folder.file("config"));
};

TEST_F(IniSettingsStoreTest, NumbersStayAcrossStartsAndAbsentOnesAreAbsent) {
    store->writeInteger("LSRunSec", 3);
    store->writeInteger("ZoomFontScale", -2147483647 - 1);
    restart();
    EXPECT_EQ(store->readInteger("LSRunSec"), 3);
    EXPECT_EQ(store->readInteger("ZoomFontScale"), -2147483647 - 1);
    EXPECT_EQ(store->readInteger("LSStatusDeviceShow"), std::nullopt);
    EXPECT_EQ(store->readText("ExportFilename"), std::nullopt);
    EXPECT_EQ(store->fileName(), folder.file("config/mirovane.ini"));
}

TEST_F(IniSettingsStoreTest, NamesWithPathsStayApart) {
    const std::vector<std::string> names = {
        "ExportTab/srv/floor.mv",  "ExportTab/srv//floor.mv",    "ExportTab\\srv\\floor.mv",
        "ExportTab/srv/floor.mv/", "ExportTab/srv/Floor.mv",     "ExportTab%2Fsrv",
        "ExportTab/srv",           "ExportTab/a b=[c];#d,\"e\"", "ExportTab/gr\xC3\xBC\xC3\x9F",
        "ExportTab/gr\xFC\xDF",    "ExportTab/line\nend",
    };
    for (std::size_t i = 0; i < names.size(); ++i) {
        store->writeInteger(names[i], static_cast<std::int32_t>(i));
        store->writeText(names[i] + "-text", names[i]);
    }
    restart();
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(store->readInteger(names[i]), static_cast<std::int32_t>(i)) << names[i];
        EXPECT_EQ(store->readText(names[i] + "-text"), names[i]);
    }
}

TEST_F(IniSettingsStoreTest, TextsKeepTheirBytes) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const std::vector<std::string> texts = {"",           ";", "a, b", "@ByteArray(x)", "\"", " end ", "\\t",
                                            "gr\xC3\xBC", all, "42"};
    for (std::size_t i = 0; i < texts.size(); ++i)
        store->writeText("T" + std::to_string(i), texts[i]);
    restart();
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(store->readText("T" + std::to_string(i)), texts[i]) << i;
}

TEST_F(IniSettingsStoreTest, ForeignValuesStayAndUnreadableOnesCountAsAbsent) {
    std::filesystem::create_directory(folder.file("config"));
    test::writeBytes(folder.file("config/mirovane.ini"),
                     "[Settings]\nLSRunSec=soon\nOfTomorrow=7\nHideCards=1\n\n"
                     "[Other]\nKey=value\n");
    restart();
    EXPECT_EQ(store->readInteger("LSRunSec"), std::nullopt);
    EXPECT_EQ(store->readInteger("HideCards"), 1);
    store->writeInteger("HideCards", 0);
    restart();
    const std::string text = test::readBytes(folder.file("config/mirovane.ini"));
    EXPECT_NE(text.find("OfTomorrow=7"), std::string::npos) << text;
    EXPECT_NE(text.find("Key=value"), std::string::npos) << text;
    EXPECT_NE(text.find("HideCards=0"), std::string::npos) << text;
}

TEST_F(IniSettingsStoreTest, FourRecentFilesAreKept) {
    store->writeRecentFiles({"/a/b.mv", "/c\\d.mv", "/\xFC.mv", "/e.mv", "/f.mv"});
    restart();
    EXPECT_EQ(store->readRecentFiles(),
              (std::vector<std::string>{"/a/b.mv", "/c\\d.mv", "/\xFC.mv", "/e.mv"}));
    store->writeRecentFiles({"/f.mv"});
    restart();
    EXPECT_EQ(store->readRecentFiles(), std::vector<std::string>{"/f.mv"});
}

TEST_F(IniSettingsStoreTest, FolderThatCannotBeMadeIsNoReasonToStop) {
    test::writeBytes(folder.file("config"), "a file in the way");
    restart();
    store->writeInteger("LSRunSec", 5);
    EXPECT_EQ(store->readInteger("LSRunSec"), 5);
}

} // namespace

} // namespace mirovane
