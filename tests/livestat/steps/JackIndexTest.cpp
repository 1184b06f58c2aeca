#include "livestat/steps/JackIndex.h"

#include "tests/livestat/schedule/SchedulerFixture.h"
#include "tests/support/NewFloor.h"

namespace mirovane {

namespace {

class JackIndexTest : public test::SchedulerFixture {
protected:
    std::int32_t plug(std::int32_t type, const std::string& jack, std::int32_t state) {
        return doc
            .addDevice(
                type,
                [&](CHardware& plugged) {
                    plugged.ToJack = jack;
                    plugged.State = state;
                })
            ->RecID;
    }
    void edit(std::int32_t recID, const std::function<void(CHardware&)>& change) {
        doc.edit(device(recID), change);
    }

    CJackIndex index{doc};
};

TEST_F(JackIndexTest, TheFirstDeviceInTheListThatNamesTheJackCounts) {
    plug(DeviceType::Jack, "A-1", DeviceState::Def);
    plug(DeviceType::LocationMarker, "A-1", DeviceState::Def);
    EXPECT_EQ(index.stateAtJack("A-1"), std::nullopt) << "neither is plugged anywhere";
    const std::int32_t first = plug(DeviceType::Printer, "A-1", DeviceState::On);
    plug(DeviceType::Computer + DeviceType::discoveredOffset, "A-1", DeviceState::Off);
    plug(DeviceType::Printer, "", DeviceState::On);
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::On);
    EXPECT_EQ(index.stateAtJack("A-1 >>"), DeviceState::On) << "kept by the user, and the same jack";
    plug(DeviceType::Printer, "A-2>>", DeviceState::Off);
    EXPECT_EQ(index.stateAtJack("A-2"), DeviceState::Off);
    EXPECT_EQ(index.stateAtJack("a-1"), std::nullopt);
    EXPECT_EQ(index.stateAtJack(""), std::nullopt);
    doc.removeDevices(std::array{DeviceKey{first}});
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::Off);
}

TEST_F(JackIndexTest, FollowsWhatIsEdited) {
    EXPECT_EQ(index.stateAtJack("A-1"), std::nullopt); // builds it
    const std::int32_t printer = plug(DeviceType::Printer, "A-1", DeviceState::On);
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::On);
    edit(printer, [](CHardware& held) { held.State = DeviceState::Off; });
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::Off);

    edit(printer, [](CHardware& held) { held.Type = DeviceType::Jack; });
    EXPECT_EQ(index.stateAtJack("A-1"), std::nullopt) << "it is a jack itself now";
    edit(printer, [](CHardware& held) { held.Type = DeviceType::Switch; });
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::Off) << "and plugged in again";

    edit(printer, [](CHardware& held) { held.ToJack = "A-2"; });
    EXPECT_EQ(index.stateAtJack("A-1"), std::nullopt);
    EXPECT_EQ(index.stateAtJack("A-2"), DeviceState::Off);
    edit(printer, [](CHardware& held) { held.ToJack.clear(); });
    EXPECT_EQ(index.stateAtJack("A-2"), std::nullopt);
}

TEST_F(JackIndexTest, ANewDatafileStartsAfresh) {
    plug(DeviceType::Printer, "A-1", DeviceState::On);
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::On);
    test::newFloor(doc);
    EXPECT_EQ(index.stateAtJack("A-1"), std::nullopt);
    plug(DeviceType::Computer, "A-1", DeviceState::Off);
    EXPECT_EQ(index.stateAtJack("A-1"), DeviceState::Off);
}

} // namespace

} // namespace mirovane
