#include "ui/frame/file/FileCommands.h"

#include "tests/ui/frame/FrameFixture.h"

#include <filesystem>
#include <fstream>

namespace mirovane {
namespace {

namespace fs = std::filesystem;
using testing::Test;

class FileCommandsTest : public test::FrameFixture {
protected:
    int shown = 0;
    std::unique_ptr<CFileCommands> files;

    void SetUp() override {
        FrameFixture::SetUp();
        files = std::make_unique<CFileCommands>(*station, dialogs, recent, [this] { ++shown; });
        ASSERT_TRUE(files->newFile());
    }

    /// A datafile with one computer on disk, while the document itself is new again.
    std::string makeDatafile(const char* name) {
        addComputer();
        dialogs.files = {inFolder(name)};
        EXPECT_TRUE(files->saveAs());
        EXPECT_TRUE(files->newFile());
        return inFolder(name);
    }
};

TEST_F(FileCommandsTest, ANewFloorWithDevicesIsNeverLostSilently) {
    EXPECT_TRUE(dialogs.questions.empty()); // nothing was on the first one
    addComputer();

    dialogs.saveAnswers = {SaveAnswer::Cancel};
    EXPECT_FALSE(files->newFile());
    EXPECT_EQ(document().deviceCount(), 1u);

    dialogs.saveAnswers = {SaveAnswer::Save};
    dialogs.files = {std::nullopt}; // Save, then Cancel in the file dialog
    EXPECT_FALSE(files->newFile());
    EXPECT_EQ(document().deviceCount(), 1u);

    dialogs.saveAnswers = {SaveAnswer::Save};
    dialogs.files = {inFolder("kept")};
    EXPECT_TRUE(files->newFile());
    EXPECT_EQ(document().deviceCount(), 0u);
    EXPECT_TRUE(station->datafile().path().empty());
    ASSERT_TRUE(files->openPath(inFolder("kept.mv")));
    EXPECT_EQ(document().deviceCount(), 1u);

    ASSERT_TRUE(files->newFile()); // saved already: no question
    addComputer();
    dialogs.saveAnswers = {SaveAnswer::Discard};
    EXPECT_TRUE(files->newFile());
    EXPECT_EQ(document().deviceCount(), 0u);
}

TEST_F(FileCommandsTest, SaveAsAddsTheExtensionAndAsksBeforeItReplaces) {
    std::ofstream(inFolder("other.mv")) << "precious";
    addComputer();
    dialogs.files = {inFolder("other"), std::nullopt}; // "No" leads back to the file dialog
    dialogs.answers = {false};
    EXPECT_FALSE(files->saveAs());
    EXPECT_EQ(dialogs.choices.back().start, inFolder("other.mv"));
    EXPECT_EQ(fs::file_size(inFolder("other.mv")), 8u);
    EXPECT_TRUE(station->datafile().path().empty());

    dialogs.files = {inFolder("other")};
    dialogs.answers = {true};
    EXPECT_TRUE(files->saveAs());
    EXPECT_EQ(station->datafile().path(), inFolder("other.mv"));
    EXPECT_GT(fs::file_size(inFolder("other.mv")), 100u);

    dialogs.files = {inFolder("OTHER.MV")};
    EXPECT_TRUE(files->saveAs());
    EXPECT_EQ(station->datafile().path(), inFolder("OTHER.MV"));
    EXPECT_TRUE(dialogs.failures.empty());
}

TEST_F(FileCommandsTest, ASaveThatFailsSaysWhereAndWhatToDoAndKeepsTheDocument) {
    addComputer();
    dialogs.files = {inFolder("no/such/folder/a.mv")};
    EXPECT_FALSE(files->saveAs());
    ASSERT_EQ(dialogs.failures.size(), 1u);
    EXPECT_NE(dialogs.failures[0].find(inFolder("no/such/folder/a.mv")), std::string::npos)
        << dialogs.failures[0];
    EXPECT_NE(dialogs.failures[0].find("Save As"), std::string::npos);
    EXPECT_TRUE(station->datafile().path().empty());
    EXPECT_EQ(document().deviceCount(), 1u);
    EXPECT_TRUE(recent.paths().empty());
}

TEST_F(FileCommandsTest, AnOpenThatFailsLeavesTheOpenDatafileAlone) {
    const std::string good = makeDatafile("good.mv");
    std::ofstream(inFolder("bad.mv")) << "this is no datafile at all, is it?";
    ASSERT_TRUE(files->openPath(good));
    for (const std::string& path :
         {inFolder("bad.mv"), inFolder("missing.mv"), folder.path().toStdString()}) {
        EXPECT_FALSE(files->openPath(path));
        EXPECT_EQ(station->datafile().path(), good);
        EXPECT_EQ(document().deviceCount(), 1u);
        ASSERT_FALSE(dialogs.failures.empty());
        EXPECT_NE(dialogs.failures.back().find(path + " could not be opened"), std::string::npos);
    }
    EXPECT_EQ(dialogs.failures.size(), 3u);
    EXPECT_NE(dialogs.failures[0].find("\n\nNot a Mirovane datafile: "), std::string::npos)
        << dialogs.failures[0];
    EXPECT_TRUE(files->save());
    EXPECT_EQ(recent.paths(), std::vector<std::string>{good});
}

TEST_F(FileCommandsTest, RecentFilesKeepFourAndForgetWhatIsGone) {
    for (const char* name : {"a.mv", "b.mv", "c.mv", "d.mv", "e.mv"})
        makeDatafile(name);
    ASSERT_TRUE(files->openPath(inFolder("c.mv")));
    const std::vector<std::string> expected{inFolder("c.mv"), inFolder("e.mv"), inFolder("d.mv"),
                                            inFolder("b.mv")};
    EXPECT_EQ(recent.paths(), expected);
    EXPECT_EQ(CRecentFiles(store).paths(), expected); // the next start reads the same

    fs::remove(inFolder("e.mv"));
    EXPECT_FALSE(files->openPath(inFolder("e.mv")));
    EXPECT_EQ(recent.paths().size(), 3u);
}

TEST_F(FileCommandsTest, ClosingSwitchesLiveStatOffAndReleasesTheDatafile) {
    const std::string path = makeDatafile("live.mv");
    ASSERT_TRUE(files->openPath(path));
    station->features().liveStat().toggle();
    ASSERT_EQ(document().findSpecial(SpecialType::LiveStatOwnerRecord)->State, 1);
    EXPECT_TRUE(files->close());
    ASSERT_TRUE(files->openPath(path));
    EXPECT_EQ(document().findSpecial(SpecialType::LiveStatOwnerRecord)->State, 0);
}

TEST_F(FileCommandsTest, ClosingAsksWhenTheLastSaveFails) {
    fs::create_directory(inFolder("share"));
    const std::string path = makeDatafile("share/live.mv");
    ASSERT_TRUE(files->openPath(path));
    station->features().liveStat().toggle();
    fs::remove_all(inFolder("share"));
    addComputer();
    dialogs.saveAnswers = {SaveAnswer::Cancel};
    EXPECT_FALSE(files->close());
    EXPECT_EQ(dialogs.offers, std::vector{SaveOffer::SaveAs});

    EXPECT_FALSE(logged("Error reading/loading from datafile!"));
    timers.advance(std::chrono::seconds(4)); // the user stays: the datafile is still watched
    EXPECT_TRUE(logged("Error reading/loading from datafile!"));
    dialogs.files = {inFolder("rescued.mv")};
    EXPECT_TRUE(files->saveAs());
    EXPECT_TRUE(files->close());
}

TEST_F(FileCommandsTest, WhoLeavesWithoutSavingIsAskedOnce) {
    fs::create_directory(inFolder("share"));
    const std::string path = makeDatafile("share/live.mv");
    ASSERT_TRUE(files->openPath(path));
    station->features().liveStat().toggle();
    fs::remove_all(inFolder("share"));
    addComputer();
    ASSERT_TRUE(
        station->saveDatafile().failed()); // the device is not on disk, and Live Stat's release won't be
    dialogs.questions.clear();
    dialogs.saveAnswers = {SaveAnswer::Discard};
    EXPECT_TRUE(files->close());
    EXPECT_EQ(dialogs.questions.size(), 1u);
}

TEST_F(FileCommandsTest, ADatafileThatNobodyMayWriteIsLeftWithoutAQuestionUnlessItWasEdited) {
    const std::string path = makeDatafile("archive.mv");
    fs::permissions(path, fs::perms::owner_read);
    ASSERT_TRUE(files->openPath(path));
    EXPECT_TRUE(files->readOnly());
    document().editInBackground(*document().findDevice(1), [](CHardware& device) { device.State = 1; });
    EXPECT_TRUE(files->close());
    ASSERT_TRUE(files->openPath(path));
    addComputer();
    dialogs.saveAnswers = {SaveAnswer::Save};
    dialogs.files = {inFolder("mine.mv")};
    EXPECT_TRUE(files->close());
    EXPECT_EQ(dialogs.offers, std::vector{SaveOffer::SaveAs});
    ASSERT_TRUE(files->openPath(inFolder("mine.mv")));
    EXPECT_EQ(document().deviceCount(), 2u);
    EXPECT_FALSE(files->readOnly());
}

} // namespace
} // namespace mirovane
