#include "model/floor/SelectionCommands.h"

#include "model/floor/Hiding.h"
#include "platform/SettingsStore.h"
#include "tests/model/DocumentFixture.h"

namespace mirovane {

namespace {

using What = SelectionCommand::What;
using IDs = std::vector<std::int32_t>;

class SelectionCommandsTest : public test::DocumentFixture {
protected:
    SelectionCommandsTest() { link.newDatafile(); }

    const CHardware& add(std::int32_t type, std::int32_t state = DeviceState::Def, MapPoint at = {},
                         const std::string& comment = {}) {
        return *doc.addDevice(
            type,
            [&](CHardware& device) {
                device.State = state;
                device.Position = at;
                device.Comment = comment;
            });
    }

    SelectionOutcome run(SelectionCommand command, bool additive = false) {
        return select(command, additive, selection, scene);
    }

    IDs selected() const {
        IDs ids;
        for (const CHardware* device : selection.members())
            ids.push_back(device->RecID);
        return ids;
    }

    CSelection selection{doc};
    DisplaySettings display;
    SelectionScene scene{doc, display, {}, 0, false};
};

TEST_F(SelectionCommandsTest, EachCommandSaysWhatItSelected) {
    add(DeviceType::Computer, DeviceState::On);
    add(DeviceType::Computer, DeviceState::Off);
    add(DeviceType::Computer, DeviceState::Def);
    add(DeviceType::Jack, DeviceState::On, {50, 50});
    add(DeviceType::Jack, DeviceState::Off, {10, 50});
    add(DeviceType::LocationMarker);
    const CHardware& misc = add(DeviceType::Computer + DeviceType::discoveredOffset, DeviceState::On);
    scene.box = MapBox{{10, 10}, {90, 90}};
    struct Case {
        SelectionCommand command;
        const char* message;
        IDs selects;
        bool forLiveStatNow;
    };
    const Case cases[] = {
        {{What::OfType, DeviceType::Jack}, "Selected 2 visible Jack(s)", {4, 5}, true},
        {{What::Active, DeviceType::Computer}, "Selected 1 visible Active Computer(s)", {1}, true},
        {{What::Inactive, DeviceType::Computer}, "Selected 2 visible In-active Computer(s)", {2, 3}, true},
        {{What::Inactive, DeviceType::Laptop}, "Selected 0 visible In-active Laptops(s)", {}, true},
        {{What::Active, DeviceType::Switch}, "Selected 0 visible Active Switch(es)", {}, true},
        {{What::Active, DeviceType::Unknown}, "Selected 0 visible Active Unknown", {}, true},
        {{What::Inactive, DeviceType::Ups}, "Selected 0 visible In-active UPS", {}, true},
        {{What::OfType, DeviceType::LocationMarker}, "Selected 1 visible Location Marker(s)", {6}, false},
        {{What::Boxed}, "Selected 1 visible boxed item(s)", {4}, true},
    };
    for (const Case& c : cases) {
        selection.add(misc);
        const SelectionOutcome outcome = run(c.command);
        EXPECT_EQ(outcome.message, c.message);
        EXPECT_EQ(selected(), c.selects) << c.message;
        EXPECT_EQ(outcome.count, c.selects.size()) << c.message;
        EXPECT_EQ(outcome.forLiveStatNow, c.forLiveStatNow) << c.message;
    }
}

TEST_F(SelectionCommandsTest, WithCtrlTheSelectionGrowsAndAllOnlyEverAdds) {
    const CHardware& misc = add(DeviceType::Phone + DeviceType::discoveredOffset);
    add(DeviceType::Jack);
    add(DeviceType::Ups, DeviceState::On);
    add(DeviceType::Router);
    selection.add(misc);
    run({What::OfType, DeviceType::Jack}, true);
    EXPECT_EQ(run({What::Active, DeviceType::Ups}, true).message,
              "Selected 1 visible Active UPS  [additive select]");
    EXPECT_EQ(selected(), (IDs{1, 2, 3}));
    CMemorySettingsStore store;
    CSettings settings(store);
    CHiding(display, settings, selection).toggleType(DeviceType::Ups);
    const SelectionOutcome all = run({What::All}, true);
    EXPECT_EQ(all.message, "Selected all visible hardware: 2");
    EXPECT_FALSE(all.forLiveStatNow);
    EXPECT_EQ(selected(), (IDs{1, 2, 4})) << "what waits in Discovered/Misc stays selected";
}

TEST_F(SelectionCommandsTest, AMarkersAreaSelectsWhatLiesOnIt) {
    const auto area = [this](const char* comment, const char* corners) {
        const CHardware& marker = add(DeviceType::LocationMarker, 0, {20, 20}, comment);
        doc.edit(marker, [corners](CHardware& held) { held.ToJack = corners; });
        return marker.RecID;
    };
    const std::int32_t west = area("West", "0,0,100,0,100,100,0,100,");
    const std::int32_t east = area("East", "200,0,300,0,300,100,200,100,");
    const CHardware& inWest = add(DeviceType::Computer, 0, {50, 50});
    const CHardware& inEast = add(DeviceType::Printer, 0, {250, 50});
    const CHardware& between = add(DeviceType::Computer, 0, {150, 50});
    selection.setShowAll(between, true);

    selection.add(between);
    selection.add(*doc.findDevice(west));
    scene.SelectedMarker = east;
    EXPECT_EQ(run({What::MarkedArea}).message,
              "Selected 1 visible devices on West (Location marker's marked area).");
    EXPECT_EQ(selected(), IDs{inWest.RecID}) << "the marker itself is not selected any more";
    EXPECT_EQ(between.ShowAll, 0);

    scene.PointerInMarkedArea = true;
    display.ZoomPercent = 50;
    selection.add(*doc.findDevice(west));
    EXPECT_EQ(run({What::MarkedArea}, true).message,
              "Selected 2 visible devices on West, East (Location marker's marked area).  [additive select]");
    EXPECT_EQ(selected(), (IDs{inWest.RecID, inEast.RecID}));
    scene.PointerInMarkedArea = false;
    EXPECT_EQ(run({What::MarkedArea}).message,
              "Selected 0 visible devices on  (Location marker's marked area).");
    EXPECT_EQ(selected(), IDs());
}

TEST_F(SelectionCommandsTest, HidingDeselectsAndIsKept) {
    CMemorySettingsStore store;
    CSettings settings(store);
    CHiding hiding(display, settings, selection);
    const CHardware& jack = add(DeviceType::Jack);
    const CHardware& router = add(DeviceType::Router);
    selection.add(jack);
    selection.add(router);
    hiding.toggleType(DeviceType::Jack);
    EXPECT_TRUE(hiding.typeHidden(DeviceType::Jack));
    EXPECT_EQ(selected(), IDs{router.RecID});
    EXPECT_EQ(settings.read("HideJacks", 99), 1);
    hiding.toggleType(DeviceType::Jack);
    EXPECT_EQ(settings.read("HideJacks", 99), 0);

    hiding.toggleMap(false);
    EXPECT_FALSE(hiding.mapHidden()) << "there is no map";
    hiding.toggleMap(true);
    hiding.hideAll();
    EXPECT_EQ(display.VisibleTypes, 0);
    EXPECT_TRUE(selection.empty());
    EXPECT_EQ(settings.read("HideMarkers", 99), 1);
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        hiding.toggleType(type);
    EXPECT_EQ(display.VisibleTypes, -1) << "as it was before anything was hidden";
    EXPECT_TRUE(hiding.mapHidden());
    hiding.hideAll();
    hiding.hideNone();
    EXPECT_EQ(display.VisibleTypes, -1);
    EXPECT_FALSE(hiding.mapHidden());
    EXPECT_EQ(settings.read("HideMarkers", 99), 0);
}

TEST_F(SelectionCommandsTest, TargetsAreNamedUnderTheEye) {
    EXPECT_EQ(targetsText({}), "");
    const CHardware& first = add(DeviceType::Computer);
    doc.edit(first, [](CHardware& held) { held.Name = "pc-1"; });
    EXPECT_EQ(targetsText({&first}), "1 device: pc-1");
    const CHardware& second = add(DeviceType::Phone);
    doc.edit(second, [](CHardware& held) { held.IPAddress = "10.0.0.2"; });
    const CHardware& third = add(DeviceType::Ups);
    EXPECT_EQ(targetsText({&first, &second, &third}), "3 devices: pc-1, 10.0.0.2, UPS");
    EXPECT_EQ(targetsText(CSelection::Devices(6, &first)), "6 devices: pc-1, pc-1, pc-1, pc-1, pc-1, ...");
}

} // namespace

} // namespace mirovane
