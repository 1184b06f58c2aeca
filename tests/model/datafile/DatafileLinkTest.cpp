#include "model/datafile/DatafileLink.h"

#include "model/records/Criteria.h"
#include "tests/model/DocumentFixture.h"

#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {

namespace {

namespace fs = std::filesystem;
using DatafileLinkTest = test::DocumentFixture;

void expectSameRecords(const CMirovaneDoc& a, const CMirovaneDoc& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_TRUE(sameStored(a.at(i), b.at(i))) << i;
}

TEST_F(DatafileLinkTest, WhatIsSavedIsReadAgain) {
    makeFloor(3);
    doc.edit(*doc.findDevice(2), [](CHardware& held) {
        held.Name = std::string(10'000, 'n');
        held.Selected = 1;
        held.LSNowMark = 1;
    });
    EXPECT_TRUE(doc.modified());
    ASSERT_FALSE(link.save().failed());
    EXPECT_FALSE(doc.modified());
    EXPECT_EQ(lastLine, "Saved changes to data file");
    EXPECT_TRUE(lastToStatusBar);
    EXPECT_EQ(test::readBytes(path).substr(0, 21),
              std::string("\xA2\0\xFF\xFF\x01\0\x09\0CHardware\xD8\x07\0\0", 21));
    ASSERT_FALSE(otherLink.open(path));
    expectSameRecords(doc, other);
    EXPECT_EQ(other.findDevice(2)->Selected, 0);
    EXPECT_EQ(otherLink.knownIdentity(), link.knownIdentity());
    EXPECT_EQ(otherLink.path(), path);
}

/// As a station that saves whenever the records are other ones.
class SavesWhenReplaced final : public DocumentObserver {
public:
    SavesWhenReplaced(CMirovaneDoc& document, CDatafileLink& link) : document_(document), link_(link) {
        document_.addObserver(*this);
    }
    ~SavesWhenReplaced() override { document_.removeObserver(*this); }
    void documentReplaced() override { outcome = link_.save().outcome; }

    std::optional<SaveReport::Outcome> outcome;

private:
    CMirovaneDoc& document_;
    CDatafileLink& link_;
};

TEST_F(DatafileLinkTest, NothingIsWrittenWithoutAPathOrFromWithinAReload) {
    link.newDatafile();
    EXPECT_FALSE(link.save().failed());
    EXPECT_TRUE(doc.modified());
    EXPECT_TRUE(log.lines().empty());
    makeFloor(1);
    SavesWhenReplaced saver(doc, link);
    ASSERT_FALSE(link.reload());
    EXPECT_EQ(saver.outcome, SaveReport::Outcome::Deferred);
    fs::remove(path);
    // Where a share is not connected, its folder is there and empty: only the user knows that it is the
    // place.
    ASSERT_TRUE(link.save().failed());
    EXPECT_EQ(link.save().error->kind, FileError::Kind::NotFound);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(link.saveAs(path).failed());
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(DatafileLinkTest, VersionRecordComesFirstAndFilesWithoutOneStayReadable) {
    makeFloor(2);
    const std::int32_t sixth = doc.at(5).Type;
    const std::int32_t seventh = doc.at(6).Type;
    doc.exchange(0, 5);
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
    EXPECT_EQ(doc.at(5).Type, sixth);
    EXPECT_EQ(doc.at(6).Type, seventh);

    CHardware second;
    second.Type = SpecialType::VersionRecord;
    second.State = 1999;
    doc.append(second);
    doc.exchange(0, 7);
    ASSERT_FALSE(link.save().failed());
    ASSERT_FALSE(otherLink.open(path));
    EXPECT_EQ(other.at(0).State, Datafile::currentVersion);
    EXPECT_EQ(other.at(other.size() - 1).State, 1999);

    while (const CHardware* version = doc.findSpecial(SpecialType::VersionRecord))
        doc.remove(*version);
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
    EXPECT_FALSE(otherLink.open(path));
}

TEST_F(DatafileLinkTest, OlderDatafilesAreUpgradedWithTheNextSave) {
    for (const std::int32_t version : {2002, 2003, 2004}) {
        test::writeBytes(path, golden("floor-" + std::to_string(version) + ".mv"));
        ASSERT_FALSE(link.open(path)) << version;
        EXPECT_EQ(link.fileVersion(), version);
        EXPECT_TRUE(link.upgradePending()) << version;
        EXPECT_FALSE(doc.modified());
        EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
        EXPECT_EQ(doc.at(0).State, Datafile::currentVersion);
        EXPECT_EQ(doc.findDevice(7)->Priority, 5);
        EXPECT_EQ(doc.findDevice(7)->ToDo, "replace the fan");
        ASSERT_FALSE(link.save().failed());
        EXPECT_EQ(lastLine, "Saved updated datafile version " + std::to_string(version) +
                                " to 2008 changes to data file");
        EXPECT_FALSE(lastToStatusBar);
        EXPECT_FALSE(link.upgradePending());
        ASSERT_FALSE(otherLink.open(path));
        EXPECT_EQ(otherLink.fileVersion(), 2008);
        EXPECT_FALSE(otherLink.upgradePending());
        expectSameRecords(doc, other);
    }
}

TEST_F(DatafileLinkTest, OpenAddsWhatADatafileLacks) {
    test::writeBytes(path, golden("floor-2008.mv"));
    ASSERT_FALSE(link.open(path));
    EXPECT_EQ(doc.size(), 10U + 13U);
    for (std::int32_t type = 1; type <= 13; ++type) {
        const CHardware* row = doc.criteria(type, 11);
        ASSERT_TRUE(row) << type;
        EXPECT_EQ(criteriaFromRecord(*row), (CriteriaRow{"Do Nothing", "", "", 0, "", "On", 0})) << type;
    }
    EXPECT_FALSE(doc.modified() || link.upgradePending());

    makeFloor(1);
    doc.remove(*doc.findSpecial(SpecialType::LiveStatOwnerRecord));
    doc.remove(*doc.findSpecial(SpecialType::LiveDiscoverOwnerRecord));
    ASSERT_FALSE(link.save().failed());
    ASSERT_FALSE(otherLink.open(path));
    ASSERT_TRUE(other.findSpecial(SpecialType::LiveStatOwnerRecord));
    EXPECT_EQ(other.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "");
    EXPECT_TRUE(other.findSpecial(SpecialType::LiveDiscoverOwnerRecord));
}

TEST_F(DatafileLinkTest, ASaveGoesOnTopOfWhatAnotherStationSaved) {
    makeFloor(2);
    ASSERT_FALSE(otherLink.open(path));
    other.editByUser(*other.findDevice(1), [](CHardware& held) { held.Name = "theirs"; });
    ASSERT_FALSE(otherLink.save().failed());

    doc.editByUser(*doc.findDevice(2), [](CHardware& held) { held.Name = "ours"; });
    doc.setSelected(*doc.findDevice(1), true);
    const SaveReport report = link.save(SaveNote::LiveStat);
    ASSERT_TRUE(report.saved());
    EXPECT_TRUE(report.readAgain);
    EXPECT_EQ(log.lines()[log.lines().size() - 2].text, "Merged changes from data file");
    EXPECT_EQ(lastLine, "Saved Live Stat changes to data file");
    EXPECT_EQ(doc.findDevice(1)->Selected + doc.findDevice(1)->ShowAll, 2);
    ASSERT_FALSE(otherLink.reload());
    EXPECT_EQ(other.findDevice(1)->Name + " " + other.findDevice(2)->Name, "theirs ours");
    EXPECT_FALSE(doc.modified() || doc.unsavedEdits());
    EXPECT_FALSE(link.save().readAgain);
}

TEST_F(DatafileLinkTest, AReloadKeepsEditsAndDropsWhatIsFoundAgain) {
    makeFloor(2);
    ASSERT_FALSE(otherLink.open(path));
    other.editByUser(*other.findDevice(2), [](CHardware& held) { held.Name = "theirs"; });
    ASSERT_FALSE(otherLink.save().failed());
    doc.editInBackground(*doc.findDevice(1), [](CHardware& held) { held.State = DeviceState::On; });
    ASSERT_FALSE(link.reload());
    EXPECT_EQ(doc.findDevice(1)->State, DeviceState::Def);
    EXPECT_FALSE(doc.unsavedEdits());

    doc.editByUser(*doc.findDevice(1), [](CHardware& held) { held.Name = "ours"; });
    ASSERT_FALSE(link.reload()); // also where nobody else saved
    EXPECT_EQ(doc.findDevice(1)->Name, "ours");
    EXPECT_TRUE(doc.unsavedEdits() && doc.modified());
}

TEST_F(DatafileLinkTest, FailedReloadKeepsTheRecordsAndTheFile) {
    makeFloor(2);
    const std::string half = test::readBytes(path).substr(0, 5000);
    test::writeBytes(path, half);
    const auto error = link.reload();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, Datafile::Error::Kind::Damaged);
    EXPECT_EQ(doc.deviceCount(), 2U);
    doc.editByUser(*doc.findDevice(1), [](CHardware& held) { held.Name = "kept"; });
    ASSERT_TRUE(link.save().failed());
    EXPECT_EQ(link.save().error->kind, FileError::Kind::Changed);
    EXPECT_TRUE(link.saveAs(path).failed());
    EXPECT_EQ(test::readBytes(path), half);
    EXPECT_EQ(lastLine, "Error accessing datafile " + path);

    // What is still in memory can be put somewhere else.
    ASSERT_FALSE(link.saveAs(folder.file("rescued.mv")).failed());
    ASSERT_FALSE(otherLink.open(folder.file("rescued.mv")));
    EXPECT_EQ(other.findDevice(1)->Name, "kept");
}

TEST_F(DatafileLinkTest, ReloadThatSucceedsAfterAFailureAllowsSavingAgain) {
    makeFloor(1);
    const std::string whole = test::readBytes(path);
    fs::remove(path);
    ASSERT_TRUE(link.reload());
    EXPECT_EQ(link.reload()->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_TRUE(link.save().failed());
    test::writeBytes(path, whole);
    ASSERT_FALSE(link.reload());
    EXPECT_FALSE(link.save().failed());
}

TEST_F(DatafileLinkTest, FailuresLeaveTheDocumentAsItWas) {
    makeFloor(1);
    test::writeBytes(folder.file("text.mv"), "this is no datafile but a text of some length");
    EXPECT_EQ(link.open(folder.file("text.mv"))->kind, Datafile::Error::Kind::NotADatafile);
    EXPECT_EQ(link.open(folder.file("none.mv"))->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_EQ(link.open(folder.path())->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_EQ(link.path(), path);
    EXPECT_EQ(doc.deviceCount(), 1U);
    const auto error = link.saveAs(folder.file("none/floor.mv")).error;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::NotFound);
    EXPECT_EQ(lastLine, "Error accessing datafile " + folder.file("none/floor.mv"));
    EXPECT_EQ(link.path(), path);
    EXPECT_FALSE(link.save().failed());

    fs::remove_all(folder.path());
    EXPECT_EQ(link.save().error->kind, FileError::Kind::NotFound);
    EXPECT_EQ(doc.deviceCount(), 1U);
}

/// Saves without end, each time another number of devices, until it is killed. Says on `ready` when it
/// starts.
[[noreturn]] void saveForEver(CMirovaneDoc& doc, CDatafileLink& link, const std::string& path, int ready) {
    if (link.open(path) || write(ready, "!", 1) != 1)
        _exit(1);
    for (int round = 0;; ++round) {
        if (round % 7 == 6)
            for (std::int32_t id = 2; doc.findDevice(id); ++id)
                doc.remove(*doc.findDevice(id));
        doc.addDevice(DeviceType::Computer);
        doc.edit(*doc.findDevice(1),
                 [&doc](CHardware& held) { held.Priority = static_cast<int>(doc.size()); });
        if (link.save().failed())
            _exit(2);
    }
}

TEST_F(DatafileLinkTest, BytesAfterTheLastRecordCostNothingButACopy) {
    makeFloor(3);
    const std::string whole = test::readBytes(path);
    const std::string strange = whole + std::string(700, 'x');
    test::writeBytes(path, strange);
    ASSERT_FALSE(link.open(path)); // once by an open, once by the reload that a save does
    EXPECT_EQ(doc.deviceCount(), 3U);
    EXPECT_NE(lastLine.find("700 byte(s) after its last record"), std::string::npos) << lastLine;
    ASSERT_FALSE(otherLink.open(path));
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(test::readBytes(path), whole);
    EXPECT_EQ(test::readBytes(path + ".before-repair"), strange);

    test::writeBytes(path, whole + "again");
    other.editByUser(*other.findDevice(2), [](CHardware& held) { held.Name = "merged"; });
    ASSERT_FALSE(otherLink.save().failed());
    EXPECT_EQ(test::readBytes(path + ".before-repair-2"), whole + "again");
    ASSERT_FALSE(otherLink.save().failed());
    EXPECT_FALSE(fs::exists(path + ".before-repair-3"));
    ASSERT_FALSE(link.reload());
    EXPECT_EQ(doc.findDevice(2)->Name, "merged");
}

TEST_F(DatafileLinkTest, KilledSaversLeaveAWholeFileAndNoLitter) {
    makeFloor(1);
    ASSERT_FALSE(link.open(path));
    doc.edit(*doc.findDevice(1), [this](CHardware& held) { held.Priority = static_cast<int>(doc.size()); });
    ASSERT_FALSE(link.save().failed());
    std::mt19937 random(20260122);
    std::size_t differentFiles = 0;
    std::string last;
    // On a busy computer many a saver dies before its first save is over.
    for (int round = 0; round < 300 || (differentFiles <= 50 && round < 3000); ++round) {
        int ready[2] = {};
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            saveForEver(doc, link, path, ready[1]);
        char started = 0;
        close(ready[1]);
        EXPECT_EQ(read(ready[0], &started, 1), 1);
        close(ready[0]);
        usleep(std::uniform_int_distribution<useconds_t>(500, 9000)(random));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the saver ended by itself with " << WEXITSTATUS(status);

        const std::string bytes = test::readBytes(path);
        const auto content = Datafile::decode(bytes);
        ASSERT_TRUE(content) << content.error().sentence;
        // The number of records is written inside, so that a mixture of two saves would show.
        const auto& records = content.value().records;
        const auto first =
            std::find_if(records.begin(), records.end(), [](const auto& r) { return r->RecID == 1; });
        ASSERT_EQ((*first)->Priority, static_cast<int>(records.size()));
        ASSERT_LE(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 2);
        differentFiles += bytes != last ? 1 : 0;
        last = bytes;
    }
    EXPECT_GT(differentFiles, 50U);
    ASSERT_FALSE(link.reload());
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
}

} // namespace

} // namespace mirovane
