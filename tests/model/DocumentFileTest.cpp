#include "model/Criteria.h"
#include "model/Document.h"
#include "tests/model/DocumentFixture.h"

#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {

namespace {

namespace fs = std::filesystem;
using DocumentFileTest = test::DocumentFixture;

void expectSameRecords(const CMirovaneDoc& a, const CMirovaneDoc& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_TRUE(sameStored(a.at(i), b.at(i))) << i;
}

TEST_F(DocumentFileTest, WhatIsSavedIsReadAgain) {
    makeFloor(3);
    doc.edit(*doc.findDevice(2), [](CHardware& held) {
        held.Name = std::string(10'000, 'n');
        held.Selected = 1;
        held.LSNowMark = 1;
    });
    EXPECT_TRUE(doc.modified());
    ASSERT_FALSE(doc.save());
    EXPECT_FALSE(doc.modified());
    EXPECT_EQ(lastLine, "Saved changes to data file");
    EXPECT_TRUE(lastToStatusBar);
    EXPECT_EQ(test::readBytes(path).substr(0, 21),
              std::string("\xA2\0\xFF\xFF\x01\0\x09\0CHardware\xD8\x07\0\0", 21));
    ASSERT_FALSE(other.open(path));
    expectSameRecords(doc, other);
    EXPECT_EQ(other.findDevice(2)->Selected, 0);
    EXPECT_EQ(other.creationTime(), doc.creationTime());
    EXPECT_EQ(other.knownIdentity(), doc.knownIdentity());
    EXPECT_EQ(other.path(), path);
}

TEST_F(DocumentFileTest, NothingIsWrittenWithoutAPathOrWhileLoading) {
    doc.newDatafile();
    EXPECT_FALSE(doc.save());
    EXPECT_TRUE(doc.modified());
    EXPECT_TRUE(log.lines().empty());
    makeFloor(1);
    fs::remove(path);
    doc.setLoading(true);
    EXPECT_FALSE(doc.save());
    EXPECT_FALSE(fs::exists(path));
    doc.setLoading(false);
    // Where a share is not connected, its folder is there and empty: only the user knows that it is the
    // place.
    ASSERT_TRUE(doc.save());
    EXPECT_EQ(doc.save()->kind, FileError::Kind::NotFound);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(doc.saveAs(path));
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(DocumentFileTest, VersionRecordComesFirstAndFilesWithoutOneStayReadable) {
    makeFloor(2);
    const std::int32_t sixth = doc.at(5).Type;
    const std::int32_t seventh = doc.at(6).Type;
    doc.exchange(0, 5);
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
    EXPECT_EQ(doc.at(5).Type, sixth);
    EXPECT_EQ(doc.at(6).Type, seventh);

    CHardware second;
    second.Type = SpecialType::VersionRecord;
    second.State = 1999;
    doc.append(second);
    doc.exchange(0, 7);
    ASSERT_FALSE(doc.save());
    ASSERT_FALSE(other.open(path));
    EXPECT_EQ(other.at(0).State, Datafile::currentVersion);
    EXPECT_EQ(other.at(other.size() - 1).State, 1999);

    while (const CHardware* version = doc.findSpecial(SpecialType::VersionRecord))
        doc.remove(*version);
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
    EXPECT_FALSE(other.open(path));
}

TEST_F(DocumentFileTest, OlderDatafilesAreUpgradedWithTheNextSave) {
    for (const std::int32_t version : {2002, 2003, 2004}) {
        test::writeBytes(path, golden("floor-" + std::to_string(version) + ".mv"));
        ASSERT_FALSE(doc.open(path)) << version;
        EXPECT_EQ(doc.fileVersion(), version);
        EXPECT_TRUE(doc.pendingChanges() && doc.upgradePending()) << version;
        EXPECT_FALSE(doc.modified());
        EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
        EXPECT_EQ(doc.at(0).State, Datafile::currentVersion);
        EXPECT_EQ(doc.findDevice(7)->Priority, 5);
        EXPECT_EQ(doc.findDevice(7)->ToDo, "replace the fan");
        ASSERT_FALSE(doc.save());
        EXPECT_EQ(lastLine, "Saved updated datafile version " + std::to_string(version) +
                                " to 2008 changes to data file");
        EXPECT_FALSE(lastToStatusBar);
        EXPECT_TRUE(doc.saveNote().empty() && !doc.upgradePending());
        ASSERT_FALSE(other.open(path));
        EXPECT_EQ(other.fileVersion(), 2008);
        EXPECT_FALSE(other.pendingChanges());
        expectSameRecords(doc, other);
    }
}

TEST_F(DocumentFileTest, OpenAddsWhatADatafileLacks) {
    test::writeBytes(path, golden("floor-2008.mv"));
    store.writeInteger("HideRouters", 1);
    ASSERT_FALSE(doc.open(path));
    EXPECT_EQ(doc.size(), 10U + 13U);
    for (std::int32_t type = 1; type <= 13; ++type) {
        const CHardware* row = doc.criteria(type, 11);
        ASSERT_TRUE(row) << type;
        EXPECT_EQ(criteriaFromRecord(*row), (CriteriaRow{"Do Nothing", "", "", 0, "", "On", 0})) << type;
    }
    EXPECT_FALSE(doc.modified() || doc.pendingChanges());
    EXPECT_FALSE(doc.display().typeVisible(DeviceType::Router));
    EXPECT_EQ(store.readInteger("ExportAuto" + path), 0);
    EXPECT_FALSE(doc.exportAuto());

    makeFloor(1);
    doc.remove(*doc.findSpecial(SpecialType::LiveStatOwnerRecord));
    doc.remove(*doc.findSpecial(SpecialType::LiveDiscoverOwnerRecord));
    ASSERT_FALSE(doc.save());
    store.writeInteger("ExportAuto" + path, 1);
    ASSERT_FALSE(other.open(path));
    EXPECT_TRUE(other.exportAuto());
    ASSERT_TRUE(other.findSpecial(SpecialType::LiveStatOwnerRecord));
    EXPECT_EQ(other.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "");
    EXPECT_TRUE(other.findSpecial(SpecialType::LiveDiscoverOwnerRecord));
}

TEST_F(DocumentFileTest, ASaveGoesOnTopOfWhatAnotherStationSaved) {
    makeFloor(2);
    ASSERT_FALSE(other.open(path));
    other.editByUser(*other.findDevice(1), [](CHardware& held) { held.Name = "theirs"; });
    ASSERT_FALSE(other.save());

    doc.editByUser(*doc.findDevice(2), [](CHardware& held) { held.Name = "ours"; });
    doc.setSelected(*doc.findDevice(1), true);
    doc.setSaveNote("Live Stat ");
    ASSERT_FALSE(doc.save());
    EXPECT_TRUE(doc.readAgainBySave());
    EXPECT_TRUE(log.lines()[log.lines().size() - 2].ends_with(" - Merged changes from data file"));
    EXPECT_EQ(lastLine, "Saved Live Stat changes to data file");
    EXPECT_EQ(doc.findDevice(1)->Selected + doc.findDevice(1)->ShowAll, 2);
    ASSERT_FALSE(other.reload());
    EXPECT_EQ(other.findDevice(1)->Name + " " + other.findDevice(2)->Name, "theirs ours");
    EXPECT_FALSE(doc.modified() || doc.unsavedEdits());
    EXPECT_FALSE(doc.save());
    EXPECT_FALSE(doc.readAgainBySave());
}

TEST_F(DocumentFileTest, AReloadKeepsEditsAndDropsWhatIsFoundAgain) {
    makeFloor(2);
    ASSERT_FALSE(other.open(path));
    other.editByUser(*other.findDevice(2), [](CHardware& held) { held.Name = "theirs"; });
    ASSERT_FALSE(other.save());
    doc.editInBackground(*doc.findDevice(1), [](CHardware& held) { held.State = DeviceState::On; });
    doc.setPendingChanges(true);
    ASSERT_FALSE(doc.reload());
    EXPECT_EQ(doc.findDevice(1)->State, DeviceState::Def);
    EXPECT_TRUE(doc.pendingChanges());
    EXPECT_FALSE(doc.unsavedEdits());

    doc.editByUser(*doc.findDevice(1), [](CHardware& held) { held.Name = "ours"; });
    ASSERT_FALSE(doc.reload()); // also where nobody else saved
    EXPECT_EQ(doc.findDevice(1)->Name, "ours");
    EXPECT_TRUE(doc.unsavedEdits() && doc.modified());
}

TEST_F(DocumentFileTest, FailedReloadKeepsTheRecordsAndTheFile) {
    makeFloor(2);
    const std::string half = test::readBytes(path).substr(0, 5000);
    test::writeBytes(path, half);
    const auto error = doc.reload();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, Datafile::Error::Kind::Damaged);
    EXPECT_EQ(doc.deviceCount(), 2U);
    doc.editByUser(*doc.findDevice(1), [](CHardware& held) { held.Name = "kept"; });
    ASSERT_TRUE(doc.save());
    EXPECT_EQ(doc.save()->kind, FileError::Kind::Changed);
    EXPECT_TRUE(doc.saveAs(path));
    EXPECT_EQ(test::readBytes(path), half);
    EXPECT_EQ(lastLine, "Error accessing datafile " + path);

    // What is still in memory can be put somewhere else.
    ASSERT_FALSE(doc.saveAs(folder.file("rescued.mv")));
    ASSERT_FALSE(other.open(folder.file("rescued.mv")));
    EXPECT_EQ(other.findDevice(1)->Name, "kept");
}

TEST_F(DocumentFileTest, ReloadThatSucceedsAfterAFailureAllowsSavingAgain) {
    makeFloor(1);
    const std::string whole = test::readBytes(path);
    fs::remove(path);
    ASSERT_TRUE(doc.reload());
    EXPECT_EQ(doc.reload()->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_TRUE(doc.save());
    test::writeBytes(path, whole);
    ASSERT_FALSE(doc.reload());
    EXPECT_FALSE(doc.save());
}

TEST_F(DocumentFileTest, FailuresLeaveTheDocumentAsItWas) {
    makeFloor(1);
    test::writeBytes(folder.file("text.mv"), "this is no datafile but a text of some length");
    EXPECT_EQ(doc.open(folder.file("text.mv"))->kind, Datafile::Error::Kind::UnknownVersion);
    EXPECT_EQ(doc.open(folder.file("none.mv"))->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_EQ(doc.open(folder.path())->kind, Datafile::Error::Kind::CannotRead);
    EXPECT_EQ(doc.path(), path);
    EXPECT_EQ(doc.deviceCount(), 1U);
    const auto error = doc.saveAs(folder.file("none/floor.mv"));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::NotFound);
    EXPECT_EQ(lastLine, "Error accessing datafile " + folder.file("none/floor.mv"));
    EXPECT_EQ(doc.path(), path);
    EXPECT_FALSE(doc.save());

    fs::remove_all(folder.path());
    EXPECT_EQ(doc.save()->kind, FileError::Kind::NotFound);
    EXPECT_EQ(doc.deviceCount(), 1U);
}

/// Saves without end, each time another number of devices, until it is killed. Says on `ready` when it
/// starts.
[[noreturn]] void saveForEver(CMirovaneDoc& doc, const std::string& path, int ready) {
    if (doc.open(path) || write(ready, "!", 1) != 1)
        _exit(1);
    for (int round = 0;; ++round) {
        if (round % 7 == 6) {
            for (std::int32_t id = 2; doc.findDevice(id); ++id)
                doc.remove(*doc.findDevice(id));
        }
        doc.addDevice(DeviceType::Computer);
        doc.edit(*doc.findDevice(1),
                 [&doc](CHardware& held) { held.Priority = static_cast<int>(doc.size()); });
        if (doc.save())
            _exit(2);
    }
}

TEST_F(DocumentFileTest, KilledSaversLeaveAWholeFileAndNoLitter) {
    makeFloor(1);
    ASSERT_FALSE(doc.open(path));
    doc.edit(*doc.findDevice(1), [this](CHardware& held) { held.Priority = static_cast<int>(doc.size()); });
    ASSERT_FALSE(doc.save());
    std::mt19937 random(20260122);
    std::size_t differentFiles = 0;
    std::string last;
    for (int round = 0; round < 300; ++round) {
        int ready[2] = {};
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            saveForEver(doc, path, ready[1]);
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
    ASSERT_FALSE(doc.reload());
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
}

} // namespace

} // namespace mirovane
