#include "model/CriteriaEdit.h"
#include "model/records/Criteria.h"
#include "tests/station/StationFixture.h"
#include "tests/support/Colleague.h"
#include "tests/support/LateWorkers.h"

#include <filesystem>
#include <functional>

namespace mirovane {

namespace {

using test::Colleague;

/// A's user works on a share that answers when the test lets it.
class SlowShareTest : public test::StationFixture {
protected:
    SlowShareTest() {
        a.dialogs.whileWaiting = [this] {
            share.finish();
            return true;
        };
        StationServices services = servicesOfA(a.files);
        services.datafileWorkers = &share;
        services.stateFolder = folder.file("state");
        station = std::make_unique<CStation>(std::move(services));
        EXPECT_FALSE(station->openDatafile(path));
    }

    SaveReport rename(std::int32_t recID, const std::string& name) {
        const EditRequest request{EditRequest::Kind::Place, "Rename", {{recID, 0}}};
        return station->edit(request, [&](CMirovaneDoc& document) {
            document.editByUser(*document.findDevice(recID), [&](CHardware& device) { device.Name = name; });
        });
    }
    std::string nameHere(std::int32_t recID) { return station->document().findDevice(recID)->Name; }

    /// As a colleague reads it.
    std::string nameThere(std::int32_t recID) {
        Colleague colleague(clock);
        EXPECT_TRUE(colleague.open(path));
        return colleague.doc.findDevice(recID)->Name;
    }
    void colleagueRenames(std::int32_t recID, const std::string& name) {
        Colleague colleague(clock);
        EXPECT_TRUE(colleague.open(path));
        colleague.doc.editByUser(*colleague.doc.findDevice(recID),
                                 [&](CHardware& device) { device.Name = name; });
        EXPECT_TRUE(colleague.save());
    }

    /// What was asked so far is answered, and the station takes notice.
    void answer() {
        share.finish();
        pass(10);
    }
    void answerAll() {
        for (int i = 0; i < 6; ++i)
            answer();
    }

    test::LateWorkers share;
    std::unique_ptr<CStation> station;
};

TEST_F(SlowShareTest, EditsGoOnWhileASaveIsUnderWay) {
    EXPECT_EQ(rename(1, "first").outcome, SaveReport::Outcome::Deferred);
    rename(2, "second");
    rename(1, "first again");
    EXPECT_TRUE(station->unsavedEditsKept());
    answer();
    EXPECT_EQ(nameThere(1), "first");
    EXPECT_EQ(nameThere(2), "");
    EXPECT_TRUE(station->document().unsavedEdits());
    answer();
    EXPECT_EQ(nameThere(1), "first again");
    EXPECT_EQ(nameThere(2), "second");
    EXPECT_FALSE(station->document().unsavedEdits());
}

TEST_F(SlowShareTest, WhatIsRemovedAndAddedMeanwhileIsNotForgotten) {
    rename(1, "first");
    station->edit({EditRequest::Kind::Delete, "Delete", {{1, 0}}}, [](CMirovaneDoc& document) {
        document.remove(*document.findDevice(1));
        document.addDevice(DeviceType::Printer, [](CHardware& device) { device.Name = "new"; });
    });
    answer();
    colleagueRenames(2, "theirs");
    answerAll();
    Colleague colleague(clock);
    ASSERT_TRUE(colleague.open(path));
    EXPECT_EQ(nameThere(1), "new"); // in its place
    EXPECT_EQ(colleague.doc.deviceCount(), 3U);
    EXPECT_EQ(nameThere(2), "theirs");
}

TEST_F(SlowShareTest, CrossingEditsAreMergedUnderOneLock) {
    rename(1, "mine");
    colleagueRenames(2, "theirs");
    share.finish(); // the file is another one: it was read, and stays locked
    EXPECT_FALSE(b.files.lock(path, FileAccess::Write, std::chrono::milliseconds(0)));
    pass(10);
    answer();
    EXPECT_EQ(nameHere(2), "theirs");
    EXPECT_EQ(nameThere(1), "mine");
    EXPECT_EQ(nameThere(2), "theirs");
}

/// Whoever answers a question, or drags a device, has the records before him that he saw.
TEST_F(SlowShareTest, RecordsStayWhileAQuestionIsOpen) {
    rename(1, "mine");
    colleagueRenames(2, "theirs");
    {
        const CPause question(station->pauses());
        answer();
        EXPECT_EQ(nameHere(2), "");
        share.finish(); // the lock is let go
        colleagueRenames(3, "theirs, too");
    }
    pass(3000);
    answerAll();
    EXPECT_EQ(nameHere(3), "theirs, too");
    EXPECT_EQ(nameThere(1), "mine");
}

TEST_F(SlowShareTest, EditsMadeWhileTheFileIsReadAreOnTopOfIt) {
    colleagueRenames(2, "theirs");
    pass(3000);
    answer(); // another one; it is being read
    rename(1, "mine");
    EXPECT_EQ(nameHere(2), "");
    answerAll();
    EXPECT_EQ(nameHere(2), "theirs");
    EXPECT_EQ(nameThere(1), "mine");
}

TEST_F(SlowShareTest, WhoDoesNotWaitKeepsHisEdits) {
    bool patient = false;
    a.dialogs.whileWaiting = [&] {
        if (patient)
            share.finish();
        return patient;
    };
    rename(1, "mine");
    const SaveReport report = station->saveDatafile(WaitFor::Answer);
    ASSERT_TRUE(report.failed());
    EXPECT_EQ(report.error->kind, FileError::Kind::NotAnswering);
    EXPECT_TRUE(station->document().unsavedEdits());
    EXPECT_TRUE(station->unsavedEditsKept());
    share.finish(); // what was given up is done all the same
    patient = true;
    rename(2, "mine, too");
    EXPECT_FALSE(station->shutDown());
    EXPECT_EQ(nameThere(1), "mine");
    EXPECT_EQ(nameThere(2), "mine, too");
}

/// Whether the save under way arrives, nobody knows then.
TEST_F(SlowShareTest, KilledDuringASaveNothingIsLostAndNothingComesBack) {
    station->edit({EditRequest::Kind::Add, "Add", {}}, [](CMirovaneDoc& document) {
        document.addDevice(DeviceType::Printer, [](CHardware& device) { device.Name = "gone"; });
        document.addDevice(DeviceType::Printer, [](CHardware& device) { device.Name = "added"; });
        document.editByUser(*document.findDevice(1), [](CHardware& device) { device.Name = "one"; });
        document.editByUser(*document.findDevice(2), [](CHardware& device) { device.Name = "two"; });
    });
    station->edit({EditRequest::Kind::Delete, "Delete", {{4, 0}, {1, 0}}}, [](CMirovaneDoc& document) {
        document.remove(*document.findDevice(4));
        document.remove(*document.findDevice(1));
    });
    rename(2, "");
    rename(5, "added and renamed");
    for (const std::string killed : {"before", "after"}) {
        std::filesystem::copy(folder.file("state"), folder.file(killed),
                              std::filesystem::copy_options::recursive);
        std::filesystem::copy(path, folder.file(killed + ".mv"));
        std::filesystem::rename(path, folder.file("aside"));
        std::filesystem::rename(folder.file(killed + ".mv"), path);
        {
            StationServices services = servicesOfA(b.files);
            services.stateFolder = folder.file(killed);
            CStation next(services);
            ASSERT_FALSE(next.openDatafile(path));
            std::vector<std::string> names;
            for (const auto& record : next.document().records())
                if (record->isDevice())
                    names.push_back(record->Name);
            EXPECT_EQ(names, (test::Lines{"", "", "added and renamed"})) << killed;
        }
        std::filesystem::rename(folder.file("aside"), path);
        share.finish();
    }
}

TEST_F(SlowShareTest, HalfTypedRulesStayHere) {
    const auto ruleThere = [this] {
        Colleague colleague(clock);
        EXPECT_TRUE(colleague.open(path));
        return criteriaFromRecord(*colleague.doc.criteria(DeviceType::Printer, 1)).Argument;
    };
    const std::string before = ruleThere();
    station->showCriteriaOf(DeviceType::Printer);
    station->edit({EditRequest::Kind::Settings, "Change criteria", {}, EditRequest::Saving::Later},
                  [](CMirovaneDoc& document) {
                      setCriteria(document, DeviceType::Printer, 1, CriteriaColumn::Argument, "half a ru");
                  });
    rename(1, "mine");
    answerAll();
    EXPECT_EQ(nameThere(1), "mine");
    EXPECT_EQ(ruleThere(), before);
    colleagueRenames(2, "theirs");
    pass(60'000);
    answerAll();
    EXPECT_EQ(nameHere(2), "theirs");
    EXPECT_EQ(ruleThere(), before);
    EXPECT_TRUE(station->document().unsavedEdits());
    station->showCriteriaOf(DeviceType::Computer);
    answerAll();
    EXPECT_EQ(ruleThere(), "half a ru");
    EXPECT_FALSE(station->document().unsavedEdits());
}

} // namespace

} // namespace mirovane
