#include "model/FloorMap.h"
#include "model/records/Dates.h"
#include "tests/ui/frame/FrameFixture.h"
#include "ui/floor/MirovaneView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QMenu>

#include <set>

namespace mirovane {
namespace {

class EditingCommandsTest : public test::ShownFrame {
protected:
    /// What is enabled is looked at when the program is idle, as before a key or a click.
    void run(const char* name) {
        frame->refresh();
        frame->actions().action(name)->trigger();
    }
    bool enabled(const char* name) {
        frame->refresh();
        return frame->actions().action(name)->isEnabled();
    }
    const CHardware& add(std::int32_t type, MapPoint at = {}, const std::string& name = {}) {
        return *document().addDevice(
            type,
            [&](CHardware& device) {
                device.Position = at;
                device.Name = name;
            });
    }
    CSelection& selection() { return station->selection(); }
    std::vector<std::int32_t> selected() {
        std::vector<std::int32_t> ids;
        for (const CHardware* device : selection().members())
            ids.push_back(device->RecID);
        return ids;
    }
    std::string lastStep() { return station->edits().history().steps().back().name.words(); }
    void saveAs(const char* name) {
        dialogs.files = {inFolder(name)};
        ASSERT_TRUE(frame->files().saveAs());
    }

    using IDs = std::vector<std::int32_t>;
};

TEST_F(EditingCommandsTest, AddingPutsADeviceIntoTheMiddleAndSaves) {
    saveAs("floor.mv");
    run("toolsAddSwitch");
    ASSERT_EQ(document().deviceCount(), 1U);
    const CHardware& added = *document().findDevice(1);
    EXPECT_EQ(added.Type, DeviceType::Switch);
    EXPECT_EQ(added.Position, (MapPoint{floor->viewport()->width() / 2, floor->viewport()->height() / 2}));
    EXPECT_EQ(selected(), IDs{1});
    EXPECT_TRUE(logged("Added Switch"));
    EXPECT_FALSE(document().modified()) << "it is saved";

    run("viewHideSwitch");
    EXPECT_EQ(selected(), IDs());
    run("toolsAddSwitch");
    EXPECT_EQ(dialogs.failures,
              std::vector<std::string>{"The device is hidden. Un-hide device and repeat the Add."});
    EXPECT_EQ(document().deviceCount(), 1U);
    run("viewHideNone");
    run("toolsAddUnknown");
    EXPECT_TRUE(logged("Added Generic device"));
    EXPECT_EQ(selected(), IDs{2});
}

TEST_F(EditingCommandsTest, DeletingAsksAndCuttingDoesNot) {
    add(DeviceType::Computer, {}, "a");
    const CHardware& b = add(DeviceType::Computer, {}, "b");
    EXPECT_FALSE(enabled("editDelete"));
    selection().add(b);
    dialogs.answers = {false};
    run("editDelete");
    EXPECT_EQ(document().deviceCount(), 2U);
    dialogs.answers = {true};
    run("editDelete");
    EXPECT_EQ(dialogs.questions.back(), "Do you want to delete the 1 selected item(s)?");
    EXPECT_EQ(document().deviceCount(), 1U);
    EXPECT_TRUE(logged("Deleting item(s)..., waiting for Live Stat to finish with the item."));
    EXPECT_TRUE(logged("Deleted item(s)."));

    run("selectAll");
    run("editCut");
    EXPECT_EQ(document().deviceCount(), 0U);
    EXPECT_EQ(dialogs.questions.size(), 2U);
    run("editPaste");
    ASSERT_EQ(document().deviceCount(), 1U);
    EXPECT_EQ(document().findDevice(1)->Name, "a");
    EXPECT_TRUE(dialogs.failures.empty());
}

TEST_F(EditingCommandsTest, CopyAndPasteCarryDevicesToAnotherFloor) {
    saveAs("here.mv");
    for (int i = 0; i < 4; ++i)
        document().edit(add(DeviceType::Printer, {i, i}, "p" + std::to_string(i)), [](CHardware& device) {
            device.State = DeviceState::Off;
            device.Comment = "first\r\nsecond";
            device.SlashDraw = 1;
            device.ReminderOn = 1;
            device.ReminderDate = {DateTime::valid, 46000.25};
            device.Modified = 1'700'000'000;
        });
    run("selectAll");
    run("editCopy");
    ASSERT_TRUE(frame->files().newFile());
    run("editPaste");
    ASSERT_EQ(document().deviceCount(), 4U);
    EXPECT_EQ(lastStep(), "Paste 4 devices");
    EXPECT_EQ(selection().count(), 4U);
    const CHardware& pasted = *document().findDevice(3);
    EXPECT_EQ(pasted.Name, "p2");
    EXPECT_EQ(pasted.Comment, "first second");
    EXPECT_EQ((std::vector{pasted.State, pasted.SlashDraw, pasted.ReminderOn, pasted.Modified}),
              (std::vector{2, 1, 1, 1'700'000'000}));
    EXPECT_EQ(pasted.ReminderDate.value, 46000.25);
    std::set<std::pair<int, int>> places;
    for (int id = 1; id <= 4; ++id)
        places.insert({document().findDevice(id)->Position.x, document().findDevice(id)->Position.y});
    EXPECT_EQ(places.size(), 4U) << "none hides another";

    QGuiApplication::clipboard()->setText(QStringLiteral("\t\t\t\tPhone\tp9\nnonsense\n\t\t\t\tToaster\n"));
    run("editPaste");
    EXPECT_EQ(document().deviceCount(), 5U);
    ASSERT_EQ(dialogs.failures.size(), 1U);
    EXPECT_TRUE(
        dialogs.failures.front().starts_with("1 device was pasted. 2 lines were dropped.\n\nLine 2: "))
        << dialogs.failures.front();
}

TEST_F(EditingCommandsTest, MovedDevicesWaitInDiscoveredMisc) {
    saveAs("floor.mv");
    selection().add(add(DeviceType::Camera));
    dialogs.answers = {true};
    run("editMoveTo");
    EXPECT_EQ(dialogs.questions.back(), "Do you want to move 1 device(s) to the Discovered/Misc window?");
    EXPECT_EQ(document().findDevice(1)->Type, DeviceType::Camera + DeviceType::discoveredOffset);
    EXPECT_TRUE(logged("Moved 1 device(s) to the Discovered/Misc window"));
    EXPECT_FALSE(document().modified());
    EXPECT_FALSE(enabled("editMoveTo"));
    document().edit(*document().findDevice(1), [](CHardware& held) { held.State = DeviceState::On; });
    run("toolsResetLiveStatus");
    EXPECT_EQ(document().findDevice(1)->State, DeviceState::Def) << "it is selected there";
}

TEST_F(EditingCommandsTest, SelectionCommandsLogAndMayCheckAtOnce) {
    add(DeviceType::Jack);
    add(DeviceType::LocationMarker);
    run("selectJack");
    EXPECT_EQ(selected(), IDs{1});
    EXPECT_TRUE(logged("Selected 1 visible Jack(s)"));
    EXPECT_TRUE(logged("Processing Live Stat Now on 1 selected object(s)..."));
    run("selectLocationMarkers");
    EXPECT_EQ(selected(), IDs{2});
    EXPECT_FALSE(logged("[additive select]"));
    run("viewHideAll");
    frame->refresh();
    EXPECT_TRUE(frame->actions().action("viewHideJack")->isChecked());
    EXPECT_EQ(frame->findChild<QLabel*>(QStringLiteral("paneHidden"))->text(), QStringLiteral("HIDE"));
}

TEST_F(EditingCommandsTest, SelectedDevicesAreAlignedAndDuplicated) {
    add(DeviceType::Computer, {50, 60}, "pc-9");
    add(DeviceType::Computer, {80, 200}, "pc-10");
    run("selectAll");
    run("editAlignLeft");
    EXPECT_EQ(document().findDevice(2)->Position, (MapPoint{50, 200}));
    EXPECT_EQ(lastStep(), "Align 1 device");
    run("editDuplicate");
    EXPECT_EQ(document().findDevice(3)->Name, "pc-11");
    EXPECT_EQ(document().findDevice(4)->Name, "pc-12");
    EXPECT_EQ(selected(), (IDs{3, 4}));
}

TEST_F(EditingCommandsTest, UndoAndRedoNameTheirStep) {
    EXPECT_FALSE(enabled("editUndo"));
    run("toolsAddPhone");
    run("toolsAddUps");
    dialogs.answers = {true};
    run("editDelete");
    const QAction* undo = frame->actions().action("editUndo");
    EXPECT_EQ(undo->text(), QStringLiteral("&Undo Delete 1 device"));
    EXPECT_FALSE(enabled("editRedo"));
    run("editUndo");
    EXPECT_EQ(document().deviceCount(), 2U);
    EXPECT_EQ(undo->text(), QStringLiteral("&Undo Add UPS"));
    EXPECT_EQ(frame->actions().action("editRedo")->text(), QStringLiteral("&Redo Delete 1 device"));
    run("editUndo");
    run("editUndo");
    EXPECT_EQ(document().deviceCount(), 0U);
    EXPECT_EQ(undo->text(), QStringLiteral("&Undo"));
    EXPECT_FALSE(enabled("editUndo"));
    for (int i = 0; i < 3; ++i)
        run("editRedo");
    EXPECT_EQ(document().deviceCount(), 1U);
    EXPECT_EQ(document().findDevice(1)->Type, DeviceType::Phone);
}

TEST_F(EditingCommandsTest, AFloorMapIsReadBeforeItIsStored) {
    saveAs("plan.mv");
    QImage(20, 10, QImage::Format_RGB32).save(QString::fromStdString(inFolder("map.bmp")));
    dialogs.files = {inFolder("map.bmp"), inFolder("plan.mv")};
    run("toolsFloorMap");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !floorMapOf(document()).mapPath.empty(); }));
    EXPECT_EQ(floorMapOf(document()).mapPath, inFolder("map.bmp"));
    EXPECT_EQ(dialogs.choices.back().filters.front(), "Floor maps (*.bmp *.png *.jpg *.svg)");
    EXPECT_FALSE(document().modified());
    run("toolsFloorMap"); // a datafile is not a picture
    ASSERT_TRUE(QTest::qWaitFor([this] { return !dialogs.failures.empty(); }));
    EXPECT_EQ(floorMapOf(document()).mapPath, inFolder("map.bmp"));

    run("viewHideFloorMap");
    EXPECT_TRUE(frame->actions().action("viewHideFloorMap")->isChecked());
    EXPECT_EQ(floorMapOf(document()).mapPath, inFolder("map.bmp")) << "it stays in the datafile";
    run("viewHideNone");
    frame->refresh();
    EXPECT_FALSE(frame->actions().action("viewHideFloorMap")->isChecked());
}

TEST_F(EditingCommandsTest, AMissingFloorMapCanBeChosenAnew) {
    dialogs.answers = {false};
    setFloorMap(document(), {"/nowhere/map.bmp", {}});
    ASSERT_TRUE(QTest::qWaitFor([this] { return !dialogs.questions.empty(); }));
    saveAs("mapless.mv");
    QImage(20, 10, QImage::Format_RGB32).save(QString::fromStdString(inFolder("found.bmp")));
    ASSERT_TRUE(frame->files().newFile());
    dialogs.questions.clear();
    dialogs.answers = {true};
    dialogs.files = {inFolder("found.bmp")};
    ASSERT_TRUE(frame->files().openPath(inFolder("mapless.mv")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return floorMapOf(document()).mapPath == inFolder("found.bmp"); }));
    ASSERT_EQ(dialogs.questions.size(), 1U);
    EXPECT_EQ(dialogs.questions.front(),
              "Floor map file /nowhere/map.bmp does not exist!\n\nIt was looked for in /nowhere and in " +
                  folder.path().toStdString() + ".\n\nDo you want to choose the floor map now?");
}

TEST_F(EditingCommandsTest, TheRightButtonsMenuNamesItsTargets) {
    add(DeviceType::Computer, {20, 20}, "pc-1");
    add(DeviceType::Computer, {120, 20}, "R&D");
    run("selectAll");
    Q_EMIT floor->customContextMenuRequested({30, 30});
    auto* menu = frame->findChild<QMenu*>(QStringLiteral("menuFloor"));
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(menu->actions().first()->text(), QStringLiteral("2 devices: pc-1, R&&D"));
    EXPECT_FALSE(menu->actions().first()->isEnabled());
    menu->close();
}

TEST_F(EditingCommandsTest, TheRightButtonPutsADueReminderOffAndNoOther) {
    add(DeviceType::Computer, {20, 20}, "pc-1");
    const CHardware& device = *document().findDevice(1);
    const auto offered = [this] {
        frame->refresh();
        Q_EMIT floor->customContextMenuRequested({30, 30});
        frame->findChild<QMenu*>(QStringLiteral("menuFloor"))->close();
        return frame->actions().action("reminderHour")->isVisible();
    };
    run("selectAll");
    EXPECT_FALSE(offered());
    document().edit(device, [this](CHardware& changed) {
        changed.ReminderOn = 1;
        changed.ReminderDate = localDateTime(document().now() - 60);
    });
    timers.advance(std::chrono::seconds(10));
    EXPECT_TRUE(offered());
    run("reminderHour");
    EXPECT_EQ(device.ReminderDue, 0);
    EXPECT_FALSE(offered());
}

} // namespace
} // namespace mirovane
