#include "tests/ui/frame/FrameFixture.h"
#include "tests/ui/frame/WindowFaults.h"
#include "ui/dialogs/ExportRequest.h"
#include "ui/discovered/DiscoveredWindow.h"
#include "ui/frame/WidgetDialogs.h"
#include "ui/frame/commands/FindCommands.h"
#include "ui/properties/PictureViewer.h"
#include "ui/properties/PropertiesPrompts.h"
#include "ui/widgets/ReadableColours.h"

#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace mirovane::test {
namespace {

/// Opens every window of the program one after the other and looks at each. MIROVANE_SHOTS=FOLDER keeps
/// pictures of them, to be looked at by people; on a screen of its own (QT_QPA_PLATFORM=xcb,
/// QT_SCALE_FACTOR=2) they are as users see them.
class WindowWalkTest : public ShownFrame, public testing::WithParamInterface<const char*> {
protected:
    QPalette before = QApplication::palette();

    void SetUp() override {
        const QPalette desktop = GetParam() == std::string("dark") ? darkPalette() : before;
        QApplication::setPalette(readableColours(desktop));
        ShownFrame::SetUp();
        const std::int32_t types[] = {DeviceType::Computer,
                                      DeviceType::Printer,
                                      DeviceType::Jack,
                                      DeviceType::Jack,
                                      DeviceType::LocationMarker,
                                      DeviceType::LocationMarker,
                                      DeviceType::Unknown + DeviceType::discoveredOffset};
        for (const std::int32_t type : types)
            document().addDevice(type, [](CHardware& device) {
                device.Name = "device-" + std::to_string(device.RecID);
                device.ToJack = "J1";
                device.Comment = "Room 1";
            });
        ASSERT_TRUE(station->saveDatafileAs(inFolder("floor.mv")).saved());
        frame->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    }

    void TearDown() override {
        frame.reset();
        QApplication::setPalette(before);
    }

    /// Looks at a window, and through its buttons at those behind it.
    void look(QWidget& window, const char* name) {
        QCoreApplication::processEvents();
        for (const QString& fault : windowFaults(window))
            ADD_FAILURE() << GetParam() << ' ' << name << ": " << fault.toStdString();
        if (const QString shots = qEnvironmentVariable("MIROVANE_SHOTS"); !shots.isEmpty())
            window.grab().save(
                QStringLiteral("%1/%2-%3.png").arg(shots, QLatin1String(name), QLatin1String(GetParam())));
    }

    /// The window that came up last.
    static QPointer<QWidget> newest(const QWidgetList& known) {
        QPointer<QWidget> found;
        for (QWidget* each : QApplication::topLevelWidgets())
            if (each->isVisible() && !known.contains(each) && each->windowType() != Qt::ToolTip)
                found = each;
        return found;
    }

    /// What `open` brings up, which may wait for it to be closed.
    void walk(const char* name, const std::function<void()>& open,
              const std::function<void(QWidget& window)>& further = {}) {
        const QWidgetList known = visibleWindows();
        bool looked = false;
        const auto lookAround = [&] {
            const QPointer<QWidget> window = newest(known);
            if (!window)
                return;
            looked = true;
            EXPECT_TRUE(QTest::qWaitForWindowExposed(window)) << name;
            look(*window, name);
            if (further)
                further(*window);
            if (window)
                window->close();
        };
        QTimer::singleShot(0, &folderOwner, lookAround);
        open();
        QCoreApplication::processEvents();
        if (!looked)
            lookAround();
        EXPECT_TRUE(looked) << name << " did not open";
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static QWidgetList visibleWindows() {
        QWidgetList windows;
        for (QWidget* each : QApplication::topLevelWidgets())
            if (each->isVisible())
                windows << each;
        return windows;
    }

    std::function<void()> command(const char* name) {
        return [this, name] {
            frame->refresh();
            frame->actions().action(name)->trigger();
        };
    }
    static void press(QWidget& window, const char* button) {
        window.findChild<QAbstractButton*>(QLatin1String(button))->click();
    }
    void select(std::initializer_list<std::int32_t> recIDs) {
        station->selection().none();
        for (const std::int32_t recID : recIDs)
            station->selection().add(*document().findDevice(recID));
    }

    QObject folderOwner;
};

TEST_P(WindowWalkTest, OfCommands) {
    look(*frame, "main-window");
    for (const char* name : {"viewMessageLogs", "viewListView", "viewDiscoverMisc", "toolsApplications"})
        walk(name, command(name));
    walk("toolsLiveStatOptions", command("toolsLiveStatOptions"), [this](QWidget& options) {
        walk(
            "criteria", [&options] { press(options, "criteria"); },
            [this](QWidget& criteria) { walk("row-test", [&criteria] { press(criteria, "test"); }); });
    });
    walk("toolsDiscoverNow", command("toolsDiscoverNow"));
    walk("editQuickFind", command("editQuickFind"));
    walk("editFind", [this] { askFind({}, frame.get()); });
}

TEST_P(WindowWalkTest, OfProperties) {
    const struct {
        const char* name;
        std::initializer_list<std::int32_t> selection;
    } cases[] = {{"properties-floor", {}},      {"properties-device", {1}},   {"properties-devices", {1, 2}},
                 {"properties-jack", {3}},      {"properties-jacks", {3, 4}}, {"properties-marker", {5}},
                 {"properties-markers", {5, 6}}};
    for (const auto& each : cases) {
        select(each.selection);
        walk(each.name, command("editProperties"));
    }
    walk("picture-viewer", [this] {
        auto* viewer =
            new CPictureViewer({{QStringLiteral("a.png"), QStringLiteral("/nowhere/a.png")}}, 0, frame.get());
        viewer->setAttribute(Qt::WA_DeleteOnClose);
        viewer->open();
    });
}

TEST_P(WindowWalkTest, OfQuestions) {
    CWidgetDialogs boxes(QStringLiteral("1"), {});
    boxes.setParent(frame.get());
    CWidgetPropertiesPrompts prompts;
    walk(
        "question",
        [&] {
            boxes.ask(
                {Question::Kind::ReplaceFile, "floor.mv already exists.\n\nDo you want to replace it?"});
        });
    walk(
        "failure", [&] { boxes.fail("The datafile cannot be written.\n\nChoose another folder."); });
    walk(
        "save-as", [&] { boxes.askToSave("Save the changes?", SaveOffer::SaveAs); });
    walk(
        "export", [&] { boxes.askExport({}); });
    walk(
        "insert-text", [&] { boxes.insertText("ping $mvI"); });
    walk(
        "custom-zoom", [&] { boxes.askCustomZoom({}); });
    walk(
        "photo-settings", [&] { boxes.askPhotoSettings({}); });
    walk(
        "about", [&] { boxes.about(); });
    walk("duplicate", [&] {
        prompts.askDuplicate(
            *frame, QStringLiteral("Another device has the same \"Name\" value(s), do you want to continue?"),
            QStringLiteral("It is Computer \"pc-2\", Rec ID 2, on the floor."));
    });
}

INSTANTIATE_TEST_SUITE_P(Desktops, WindowWalkTest, testing::Values("light", "dark"),
                         [](const auto& desktop) { return std::string(desktop.param); });

} // namespace
} // namespace mirovane::test
