#include "tests/station/StationFixture.h"

#include <array>
#include <stdexcept>

namespace mirovane::test {
namespace {

class EditDoorTest : public StationFixture {
protected:
    const EditStep& lastStep() const { return a.station->edits().history().steps().back(); }
};

TEST_F(EditDoorTest, EachEditIsAStepWithWhatWasBefore) {
    open(a);
    ASSERT_TRUE(
        updateDevices(*a.station, std::array{1, 2}, [](CHardware& device) { device.Name = "new"; }).saved());
    EXPECT_EQ(lastStep().name, "Change devices");
    ASSERT_EQ(lastStep().records.size(), 2U);
    EXPECT_EQ(lastStep().records[1].before->RecID, 2);
    EXPECT_EQ(lastStep().records[1].before->Name, "");
    EXPECT_EQ(lastStep().records[1].after->Name, "new");

    ASSERT_TRUE(deleteDevices(*a.station, std::array{3}).saved());
    EXPECT_EQ(lastStep().records.front().before->RecID, 3);
    EXPECT_FALSE(lastStep().records.front().after);

    // Only what is different in the end is in the step.
    a.station->edit({EditRequest::Kind::Add, "Add and change", {}}, [](CMirovaneDoc& document) {
        const CHardware& gone = *document.addDevice(DeviceType::Jack);
        const CHardware& kept = *document.addDevice(DeviceType::Jack);
        document.editByUser(kept, [](CHardware& device) { device.Name = "kept"; });
        document.remove(gone);
    });
    ASSERT_EQ(lastStep().records.size(), 1U);
    EXPECT_FALSE(lastStep().records.front().before);
    EXPECT_EQ(lastStep().records.front().after->Name, "kept");

    const std::size_t steps = a.station->edits().history().steps().size();
    a.station->edit({EditRequest::Kind::Settings, "Nothing", {}}, [](CMirovaneDoc&) {});
    EXPECT_EQ(a.station->edits().history().steps().size(), steps);
    rename(a, 1, "by Live Stat"); // past the door: not the user's
    EXPECT_EQ(a.station->edits().history().steps().size(), steps);

    a.station->newDatafile();
    EXPECT_TRUE(a.station->edits().history().steps().empty());
}

TEST_F(EditDoorTest, TheOldestStepGoesFirst) {
    open(a);
    for (std::size_t i = 0; i <= CEditHistory::mostSteps; ++i)
        a.station->edit({EditRequest::Kind::Settings, std::to_string(i), {}, EditRequest::Saving::Later},
                        [](CMirovaneDoc& document) {
                            document.edit(*document.findDevice(1), [](CHardware& held) { ++held.Priority; });
                        });
    EXPECT_EQ(a.station->edits().history().steps().size(), CEditHistory::mostSteps);
    EXPECT_EQ(a.station->edits().history().steps().front().name, "1");
}

TEST_F(EditDoorTest, AnEditForLaterIsSavedByTheWatch) {
    open(a);
    const SaveReport report =
        a.station->edit({EditRequest::Kind::Settings, "Rename", {}, EditRequest::Saving::Later},
                        [this](CMirovaneDoc& document) {
                            document.editByUser(a.device(1), [](CHardware& held) { held.Name = "later"; });
                        });
    EXPECT_EQ(report.outcome, SaveReport::Outcome::Deferred);
    open(b);
    EXPECT_EQ(b.device(1).Name, "");
    pass(18'000);
    EXPECT_EQ(b.device(1).Name, "later");
}

TEST_F(EditDoorTest, TheTwinInADamagedFileStays) {
    open(a);
    a.doc().edit(a.device(2), [](CHardware& held) { held.RecID = 1; });
    ASSERT_TRUE(a.station->saveDatafile().saved());
    const EditRequest request{EditRequest::Kind::Delete, "Delete the second", {DeviceKey{1, 1}}};
    ASSERT_TRUE(
        a.station->edit(request, [&](CMirovaneDoc& document) { document.removeDevices(request.devices); })
            .saved());
    open(b);
    EXPECT_EQ(b.doc().deviceCount(), 2U);
    EXPECT_EQ(b.device(1).IPAddress, "127.0.0.1");
}

TEST_F(EditDoorTest, AMergeKnowsTwinsApart) {
    open(a);
    a.doc().edit(a.device(2), [](CHardware& held) { held.RecID = 1; });
    ASSERT_TRUE(a.station->saveDatafile().saved());
    open(b);
    rename(a, 3, "something else");
    ASSERT_TRUE(a.station->saveDatafile().saved());
    const DeviceKey twin{1, 1};
    b.station->edit({EditRequest::Kind::Change, "Comment", {twin}}, [&](CMirovaneDoc& document) {
        document.editByUser(*document.findDevice(twin),
                            [](CHardware& held) { held.Comment = "for the twin"; });
    });
    EXPECT_EQ(b.doc().findDevice(twin)->Comment, "for the twin");
    EXPECT_EQ(b.device(1).Comment, "");
    EXPECT_EQ(b.device(3).Name, "something else");

    a.station->edit({EditRequest::Kind::Delete, "Delete", {DeviceKey{1, 0}}}, [](CMirovaneDoc& document) {
        document.removeDevices(std::array{DeviceKey{1, 0}}); // merges with the comment on the other one
    });
    EXPECT_EQ(a.doc().deviceCount(), 2U);
    EXPECT_EQ(a.device(1).Comment, "for the twin");
}

TEST_F(EditDoorTest, EditsForLaterDoNotHoldTheWatchBack) {
    open(a);
    open(b);
    rename(b, 1, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    for (int i = 0; i < 10; ++i) {
        a.station->edit({EditRequest::Kind::Settings, "Type", {}, EditRequest::Saving::Later},
                        [this](CMirovaneDoc& document) {
                            document.editByUser(a.device(2), [](CHardware& held) { ++held.Priority; });
                        });
        pass(2500);
    }
    EXPECT_EQ(a.device(1).Name, "by b");
    pass(3000);
    EXPECT_GT(b.device(2).Priority, 0) << "saved while the user typed";
}

TEST_F(EditDoorTest, AnEditThatThrowsLeavesTheStationAtWork) {
    open(a);
    open(b);
    const auto fails = [&] {
        a.station->edit({EditRequest::Kind::Delete, "Fail", {}},
                        [](CMirovaneDoc&) { throw std::logic_error("half way"); });
    };
    EXPECT_THROW(fails(), std::logic_error);
    rename(b, 1, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    pass(6000);
    EXPECT_EQ(a.device(1).Name, "by b");
}

/// The records must not be replaced while an edit holds some of them.
TEST_F(EditDoorTest, ASaveWithinAnEditComesAfterIt) {
    open(a);
    open(b);
    rename(b, 2, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    const SaveReport report =
        a.station->edit({EditRequest::Kind::Settings, "Rename", {}, EditRequest::Saving::Later},
                        [this](CMirovaneDoc& document) {
                            const CHardware& first = a.device(1);
                            EXPECT_EQ(a.station->saveDatafile().outcome, SaveReport::Outcome::Deferred);
                            document.editByUser(first, [](CHardware& held) { held.Name = "by a"; });
                        });
    EXPECT_TRUE(report.saved());
    EXPECT_EQ(a.device(2).Name, "by b");
    EXPECT_EQ(open(b).device(1).Name, "by a");
    a.station->undo();
    EXPECT_EQ(a.device(1).Name, "");
}

TEST_F(EditDoorTest, AnEditWithinAnEditIsRefused) {
    open(a);
    updateDevices(*a.station, std::array{1}, [](CHardware& held) { held.Name = "first"; });
    bool ran = false;
    a.station->edit({EditRequest::Kind::Settings, "Outer", {}}, [&](CMirovaneDoc& document) {
        const SaveReport inner =
            a.station->edit({EditRequest::Kind::Settings, "Inner", {}}, [&](CMirovaneDoc&) { ran = true; });
        EXPECT_TRUE(inner.failed());
        EXPECT_EQ(inner.error->sentence, "\"Inner\" was not done: another edit is being made");
        EXPECT_TRUE(a.station->undo().failed());
        document.editByUser(a.device(2), [](CHardware& held) { held.Name = "second"; });
    });
    EXPECT_FALSE(ran);
    EXPECT_EQ(a.device(1).Name, "first");
    EXPECT_EQ(lastStep().name, "Outer");
}

} // namespace
} // namespace mirovane::test
