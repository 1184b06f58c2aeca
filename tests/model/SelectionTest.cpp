#include "model/Selection.h"

#include "tests/model/DocumentFixture.h"

#include <gmock/gmock.h>
#include <random>

namespace mirovane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Scope = CSelection::Scope;
using IDs = std::vector<std::int32_t>;

class SelectionTest : public test::DocumentFixture {
protected:
    SelectionTest() { link.newDatafile(); }

    const CHardware& add(std::int32_t type, MapPoint at = {}, std::int32_t state = DeviceState::Def) {
        return *doc.addDevice(
            type,
            [&](CHardware& device) {
                device.Position = at;
                device.State = state;
            });
    }
    const CHardware& addMisc() { return add(DeviceType::Phone + DeviceType::discoveredOffset); }

    IDs ids(Scope scope = Scope::Everywhere) const {
        IDs found;
        for (const CHardware* device : selection.members(scope))
            found.push_back(device->RecID);
        EXPECT_EQ(found.size(), selection.count(scope));
        return found;
    }

    /// The plain answer, from the flags in the list.
    CSelection::Devices walked(bool floorOnly) const {
        CSelection::Devices found;
        for (std::size_t i = 0; i < doc.size(); ++i)
            if (doc.at(i).Selected && (floorOnly ? doc.at(i).onFloor() : doc.at(i).isDevice()))
                found.push_back(&doc.at(i));
        return found;
    }

    CSelection selection{doc};
    DisplaySettings display;
};

TEST_F(SelectionTest, ADeviceIsAddedRemovedToggledAndSelectedAlone) {
    const CHardware& a = add(DeviceType::Computer);
    const CHardware& b = add(DeviceType::Printer);
    const CHardware& misc = addMisc();
    EXPECT_TRUE(selection.empty());
    selection.add(b);
    selection.add(b);
    selection.toggle(a);
    selection.add(misc);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3)) << "in list order";
    EXPECT_THAT(ids(Scope::DiscoveredMisc), ElementsAre(3));
    selection.only(b);
    EXPECT_THAT(ids(), ElementsAre(2, 3)) << "the other window keeps its selection";
    selection.toggle(b);
    EXPECT_THAT(ids(), ElementsAre(3));
    selection.only(a);
    selection.only(addMisc());
    EXPECT_THAT(ids(), ElementsAre(1, 4));
    selection.none(Scope::Floor);
    EXPECT_THAT(ids(), ElementsAre(4));
    selection.none();
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(walked(false).size(), 0U) << "the flags say the same";
}

TEST_F(SelectionTest, CommandsAddWhatMatchesAndTellHowManyDo) {
    add(DeviceType::Computer, {10, 10}, DeviceState::On);
    add(DeviceType::Computer, {20, 10}, DeviceState::Off);
    add(DeviceType::Computer, {20, 20}, DeviceState::Def);
    add(DeviceType::Printer, {15, 15}, DeviceState::On);
    add(DeviceType::Computer + DeviceType::discoveredOffset, {15, 15}, DeviceState::On);

    EXPECT_EQ(selection.addOfType(DeviceType::Computer, {DeviceState::On}, display), 1U);
    EXPECT_THAT(ids(), ElementsAre(1));
    EXPECT_EQ(selection.addOfType(DeviceType::Computer, {DeviceState::Def, DeviceState::Off}, display), 2U);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3)) << "on top of what was selected";
    EXPECT_EQ(selection.addOfType(DeviceType::Computer, {}, display), 3U) << "also those selected already";

    selection.none();
    EXPECT_EQ(selection.addInBox({{20, 21}, {9, 10}}, display), 1U) << "points on an edge are not inside";
    EXPECT_THAT(ids(), ElementsAre(4));
    EXPECT_EQ(selection.addInBox({{9, 9}, {21, 21}}, display), 4U);

    selection.none();
    display.VisibleTypes = ~(1 << (DeviceType::Printer - 1));
    EXPECT_EQ(selection.addAll(display), 3U);
    EXPECT_EQ(selection.addInBox({{9, 9}, {21, 21}}, display), 3U);
    EXPECT_EQ(selection.addOfType(DeviceType::Printer, {}, display), 0U);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));

    const auto isOn = [](const CHardware& device) {
        return device.State == DeviceState::On;
    };
    EXPECT_EQ(selection.addMatching(Scope::DiscoveredMisc, isOn), 1U);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 5));
    EXPECT_EQ(selection.addMatching(Scope::Everywhere, isOn), 3U);
}

TEST_F(SelectionTest, FollowsEveryChangeOfTheList) {
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i)
        add(1 + static_cast<int>(random() % 13));
    for (int round = 0; round < 400; ++round) {
        const CHardware& record = doc.at(doc.size() - 1 - random() % 20);
        switch (random() % 6) {
        case 0:
            doc.edit(record, [](CHardware& d) { d.Type += d.Type > 1000 ? -1000 : 1000; });
            break;
        case 1:
            doc.exchange(0, random() % doc.size());
            break;
        case 2:
            doc.remove(record);
            doc.addDevice(DeviceType::Jack, [&](CHardware& d) { d.Selected = random() % 2 == 0; });
            break;
        case 3:
            doc.edit(record, [](CHardware& d) { d.Selected = 1 - d.Selected; });
            break;
        default:
            selection.toggle(record);
        }
        ASSERT_EQ(selection.members(), walked(false)) << round;
        const auto floor = walked(true);
        ASSERT_EQ(selection.lastOnFloor(), floor.empty() ? nullptr : floor.back()) << round;
    }
    link.newDatafile();
    EXPECT_TRUE(selection.empty());
    EXPECT_EQ(selection.lastOnFloor(), nullptr);
}

TEST_F(SelectionTest, AReloadKeepsItAndASelectionMayBeginWithOne) {
    makeFloor(3);
    selection.add(*doc.findDevice(2));
    ASSERT_FALSE(otherLink.open(path));
    other.editByUser(*other.findDevice(3), [](CHardware& device) { device.Name = "other"; });
    ASSERT_FALSE(otherLink.save().failed());
    ASSERT_FALSE(link.reload());
    EXPECT_THAT(ids(), ElementsAre(2));
    EXPECT_EQ(selection.members().front(), doc.findDevice(2)) << "the record of today";
    EXPECT_EQ(CSelection(doc).count(), 1U);
}

TEST_F(SelectionTest, TwinsOfADamagedFileAreTwoMembers) {
    CHardware twin;
    twin.Type = DeviceType::Computer;
    twin.RecID = 7;
    const CHardware& first = *doc.append(twin);
    const CHardware& second = *doc.append(twin);
    selection.add(second);
    EXPECT_EQ(selection.members(), CSelection::Devices{&second});
    EXPECT_EQ(selection.lastOnFloor(), &second);
    selection.add(first);
    EXPECT_EQ(selection.members(), (CSelection::Devices{&first, &second}));
    selection.only(first);
    EXPECT_EQ(second.Selected, 0);
}

} // namespace

} // namespace mirovane
