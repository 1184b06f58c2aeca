#include "ui/frame/file/ExportCommand.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/frame/FrameFixture.h"

#include <filesystem>

namespace mirovane::test {
namespace {

const std::string overwriteQuestion = "File already exist! Do you want to overwrite the file?";

class ExportCommandTest : public FrameFixture {
protected:
    void SetUp() override {
        FrameFixture::SetUp();
        station->newDatafile();
        addComputer();
        addComputer();
        station->saveDatafileAs(inFolder("floor.mv"));
    }
    ExportSettings wanted(const std::string& filename) {
        ExportSettings choice;
        choice.ExportFilename = filename;
        choice.ExportCustomText = ";";
        choice.ExportAuto = true;
        return choice;
    }
    ExportSettings stored() {
        ExportSettings read;
        read.read(settings, station->datafile().path());
        return read;
    }

    void run() { CExportCommand(*station, settings, dialogs).run(); }
};

TEST_F(ExportCommandTest, WritesTheListViewsRowsAndRemembersHow) {
    dialogs.exportAnswers = {wanted("list.txt"), std::nullopt};
    run();
    EXPECT_EQ(dialogs.exportRequests[0].settings, ExportSettings());
    EXPECT_EQ(dialogs.exportRequests[0].rowCount, 2U);
    EXPECT_EQ(dialogs.exportRequests[0].firstRows.size(), 2U);
    const std::string text = readBytes(inFolder("list.txt"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_TRUE(dialogs.failures.empty());
    EXPECT_TRUE(logged("Exported 2 device(s) to " + inFolder("list.txt")));
    run();
    EXPECT_EQ(dialogs.exportRequests[1].settings, wanted("list.txt"));
    EXPECT_EQ(stored(), wanted("list.txt")) << "cancelled: nothing is stored";
}

TEST_F(ExportCommandTest, AsksBeforeItOverwritesButStoresFirst) {
    writeBytes(inFolder("list.txt"), "mine");
    dialogs.exportAnswers = {wanted("list.txt"), std::nullopt, wanted("list.txt")};
    dialogs.answers = {false, true};
    run();
    EXPECT_EQ(dialogs.questions, std::vector{overwriteQuestion});
    EXPECT_EQ(dialogs.exportRequests.size(), 2U) << "\"No\" leads back to the dialog";
    EXPECT_EQ(readBytes(inFolder("list.txt")), "mine");
    EXPECT_EQ(stored(), wanted("list.txt"));
    run();
    EXPECT_NE(readBytes(inFolder("list.txt")), "mine");
}

TEST_F(ExportCommandTest, SaysWhyAFileCannotBeMade) {
    dialogs.exportAnswers = {wanted("no/folder/list.txt"), wanted(""), wanted("floor.mv"), std::nullopt};
    dialogs.answers = {true};
    const std::string before = readBytes(inFolder("floor.mv"));
    for (int i = 0; i < 3; ++i)
        run();
    ASSERT_EQ(dialogs.failures.size(), 3U);
    for (const std::string& failure : dialogs.failures)
        EXPECT_TRUE(failure.starts_with("Error creating export file!\n\n")) << failure;
    EXPECT_NE(dialogs.failures[0].find(inFolder("no/folder/list.txt")), std::string::npos);
    EXPECT_EQ(readBytes(inFolder("floor.mv")), before);
    run();
    EXPECT_NE(dialogs.exportRequests[3].lastFailure.find("datafile"), std::string::npos);
}

} // namespace
} // namespace mirovane::test
