#include "model/FloorMap.h"
#include "tests/ui/frame/FrameFixture.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/frame/bars/FrameMenus.h"
#include "ui/frame/bars/MarkerSelector.h"
#include "ui/list/ListViewWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTranslator>
#include <QWindow>

namespace mirovane {
namespace {

class MainFrameTest : public test::ShownFrame {
protected:
    QAction* action(const char* name) { return frame->actions().action(name); }
    QString pane(const char* name) { return frame->findChild<QLabel*>(QLatin1String(name))->text(); }
    QImage picture() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return floor->settled(); }));
        return floor->viewport()->grab().toImage();
    }
    QMenu* menu(const char* name) { return frame->findChild<QMenu*>(QLatin1String(name)); }
};

TEST_F(MainFrameTest, EveryCommandHasAHandlerAndStandsInItsMenu) {
    for (const CommandDefinition& command : commandTable()) {
        if (command.id == CommandId::FileRecent)
            continue;
        EXPECT_TRUE(frame->actions().hasHandler(command.id)) << command.name;
        const MenuDefinition* place = findMenu(command.menu);
        if (!place)
            continue;
        const QMenu* home = menu(std::string(place->name).c_str());
        ASSERT_NE(home, nullptr) << place->name;
        EXPECT_TRUE(home->actions().contains(frame->actions().action(command.name))) << command.name;
    }
    QStringList titles;
    for (const QAction* top : frame->menuBar()->actions())
        titles << top->text().remove(u'&');
    EXPECT_EQ(titles, (QStringList{QStringLiteral("File"), QStringLiteral("Edit"), QStringLiteral("View"),
                                   QStringLiteral("Tools"), QStringLiteral("Help")}));
}

TEST_F(MainFrameTest, ListViewOpensByItsCommandLeadsToTheFloorAndClosesWithTheFrame) {
    document().addDevice(
        DeviceType::Computer,
        [](CHardware& device) {
            device.Position = {20, 20};
        });
    const CHardware& far = *document().addDevice(DeviceType::Printer, [](CHardware& device) {
        device.Position = {5000, 4000};
    });
    EXPECT_EQ(frame->listView(), nullptr);
    action("viewListView")->trigger();
    ASSERT_NE(frame->listView(), nullptr);
    EXPECT_TRUE(frame->listView()->isVisible());
    EXPECT_EQ(frame->listView()->rows().rowCount(), 2);

    Q_EMIT frame->listView()->table().rowActivated(far.RecID);
    EXPECT_GT(floor->scaledPoint({0, 0}).x(), 3000);
    EXPECT_EQ(far.ShowAll, 1);

    CListViewWindow* const list = frame->listView();
    list->close();
    action("viewListView")->trigger();
    EXPECT_EQ(frame->listView(), list);
    frame->endSession();
    EXPECT_FALSE(list->isVisible());
}

TEST_F(MainFrameTest, DisplayTogglesAreStoredAtOnceAndChangeThePicture) {
    const CHardware* device = document().addDevice(DeviceType::Computer, [](CHardware& computer) {
        computer.Name = computer.IPAddress = computer.Username = computer.MACAddress = "text";
        computer.ToJack = computer.Comment = computer.ToDo = "text";
        computer.SlashText = computer.BackslashText = computer.HorzText = computer.VertText = "text";
        computer.SlashDraw = computer.BackslashDraw = computer.HorzDraw = computer.VertDraw = 1;
        computer.ReminderOn = 1;
        computer.Position = {200, 200};
    });
    document().setReminderDue(*device, true);
    frame->refresh();
    for (const CommandDefinition& command : commandTable()) {
        if (command.id != CommandId::ViewDisplayToggle)
            continue;
        QAction* toggle = frame->actions().action(command.name);
        const auto field = displayToggle(command.setting);
        const QImage pictureBefore = picture();
        const bool before = station->display().*field;
        EXPECT_EQ(toggle->isChecked(), before) << command.name;
        toggle->trigger();
        EXPECT_EQ(station->display().*field, !before) << command.name;
        EXPECT_EQ(settings.read(command.setting, -1), before ? 0 : 1) << command.name;
        EXPECT_EQ(toggle->isChecked(), !before) << command.name;
        if (command.menu == MenuId::Properties) // the others wait for Live Stat and for the reminder check
            EXPECT_NE(picture(), pictureBefore) << command.name;
        toggle->trigger();
        EXPECT_EQ(settings.read(command.setting, -1), before ? 1 : 0) << command.name;
        EXPECT_EQ(picture(), pictureBefore) << command.name;
    }
}

/// Marks what went through it.
class CMarkingTranslator final : public QTranslator {
public:
    QString translate(const char*, const char* text, const char*, int) const override {
        return u'\u00AB' + QString::fromUtf8(text);
    }
    bool isEmpty() const override { return false; }
};

TEST_F(MainFrameTest, EveryTextOfMenusBarsAndLogCanBeTranslated) {
    CMarkingTranslator marking;
    QCoreApplication::installTranslator(&marking);
    auto* view = new CMirovaneView(*station, log);
    CMainFrame translated({*station, dialogs, recent, launcher, settings, log, clock}, view);
    QCoreApplication::removeTranslator(&marking);
    const auto expectMarked = [](const QString& text, const QString& where) {
        EXPECT_TRUE(text.isEmpty() || text.startsWith(u'\u00AB'))
            << where.toStdString() << ": " << text.toStdString();
    };
    for (const QAction* action : translated.findChildren<QAction*>()) {
        if (action->objectName().startsWith(u'_') ||
            action->objectName().startsWith(u'q')) // the toolkit's own
            continue;
        expectMarked(action->text(), action->objectName());
        expectMarked(action->statusTip(), action->objectName());
        expectMarked(action->toolTip(), action->objectName());
    }
    for (const QLabel* pane : translated.statusBar()->findChildren<QLabel*>())
        expectMarked(pane->toolTip(), pane->objectName());
    for (const QAbstractButton* button : translated.messageLog().findChildren<QAbstractButton*>())
        if (!button->text().isEmpty())
            expectMarked(button->text(), button->objectName());
    expectMarked(translated.messageLog().windowTitle(), QStringLiteral("message log"));
}

TEST_F(MainFrameTest, LabelKeysWorkFromTheFloor) {
    frame->activateWindow();
    floor->setFocus();
    QTest::keyClick(floor, Qt::Key_2);
    EXPECT_EQ(settings.read("PropertiesIPAddress", -1), 1);
    QTest::keyClick(floor, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(settings.read("PropertiesVertDraw", -1), 0);
}

TEST_F(MainFrameTest, ZoomKeysAndTheCustomDialogAreStoredAtOnce) {
    const auto stored = [this] {
        return CustomZoom{settings.read("ZoomPercent", 0), settings.read("ZoomDevicesPercent", 0),
                          settings.read("ZoomFontScale", 0)};
    };
    QTest::keyClick(floor, Qt::Key_Plus);
    QTest::keyClick(floor, Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_EQ(stored(), (CustomZoom{110, 110, 0}));
    action("ZoomDevices")->trigger();
    EXPECT_FALSE(action("ZoomDevices")->isChecked());
    QTest::keyClick(floor, Qt::Key_Minus);
    EXPECT_EQ(stored(), (CustomZoom{105, 110, 0}));
    QTest::keyClick(floor, Qt::Key_Asterisk);
    EXPECT_EQ(stored(), (CustomZoom{100, 110, 0}));

    dialogs.zoomAnswers.assign({CustomZoom{800, 60, 3}, std::nullopt});
    QTest::keyClick(floor, Qt::Key_Slash);
    EXPECT_EQ(stored(), (CustomZoom{800, 60, 3}));
    EXPECT_EQ(floor->state().view.LabelFontHeight, 35);
    settings.write("ZoomFontScale", 5);
    QTest::keyClick(floor, Qt::Key_Slash);
    EXPECT_EQ(dialogs.zoomStarts.back(), (CustomZoom{800, 60, 5}));
    EXPECT_EQ(floor->state().view.LabelFontHeight, 37)
        << "the labels follow what is stored, cancelled or not";
    EXPECT_EQ(station->display().ZoomPercent, 800);
}

TEST_F(MainFrameTest, PrintsOnThePaperThatWasChosenAndNothingWhenCancelled) {
    addComputer();
    const QString pages = QString::fromStdString(inFolder("pages.pdf"));
    dialogs.setsUpPage = [](QPrinter& printer) {
        printer.setPageSize(QPageSize(QPageSize::A5));
    };
    action("filePrintSetup")->trigger();
    action("filePrint")->trigger();
    EXPECT_FALSE(QFile::exists(pages));
    dialogs.choosesPrinter = [&](QPrinter& printer) {
        EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::A5);
        printer.setOutputFileName(pages);
    };
    action("filePrint")->trigger();
    EXPECT_GT(QFileInfo(pages).size(), 0);
    document().addDevice(DeviceType::Computer, [](CHardware& d) { d.Position = {9000000, 9000000}; });
    action("filePrintPreview")->trigger();
    ASSERT_EQ(dialogs.failures.size(), 1U);
    EXPECT_NE(dialogs.failures[0].find("Draw a box"), std::string::npos) << dialogs.failures[0];
}

TEST_F(MainFrameTest, BarsCanBeHiddenAndShown) {
    for (const auto& [name, bar] :
         {std::pair<const char*, QWidget*>{"viewToolbar", frame->findChild<QToolBar*>()},
          {"viewStatusBar", frame->statusBar()}}) {
        EXPECT_TRUE(action(name)->isChecked());
        action(name)->trigger();
        EXPECT_FALSE(bar->isVisible());
        EXPECT_FALSE(action(name)->isChecked());
        auto* view = new CMirovaneView(*station, log);
        CMainFrame again({*station, dialogs, recent, launcher, settings, log, clock}, view);
        EXPECT_FALSE(again.actions().action(name)->isChecked()) << "the next start forgot it";
        action(name)->trigger();
        EXPECT_TRUE(bar->isVisible());
    }
}

TEST_F(MainFrameTest, TheStatusBarTakesOnlyLinesMeantForIt) {
    auto* message = frame->findChild<CMessagePane*>();
    log.LogMessage("seen", true);
    EXPECT_TRUE(message->message().endsWith(QStringLiteral(" - seen")));
    log.LogMessage("unseen", false);
    EXPECT_TRUE(message->message().endsWith(QStringLiteral(" - seen")));
}

TEST_F(MainFrameTest, PanesFollowTheStateOfThingsWhenTheLoopIsIdle) {
    EXPECT_TRUE(pane("paneHidden").isEmpty());
    station->display().VisibleTypes = ~4;
    QEventLoop loop; // a test's own waiting never lets the loop rest
    QTimer look;
    QObject::connect(
        &look, &QTimer::timeout, &loop,
        [&] {
            if (!pane("paneHidden").isEmpty())
                loop.exit(1);
        });
    QTimer::singleShot(5000, &loop, [&loop] { loop.exit(2); });
    look.start(10);
    EXPECT_EQ(loop.exec(), 1) << "still dark after five seconds";
    EXPECT_EQ(pane("paneHidden"), QStringLiteral("HIDE"));
}

TEST_F(MainFrameTest, LiveStatNeedsDevicesAndItsCheckMarkTellsTheTruth) {
    frame->refresh();
    EXPECT_FALSE(action("toolsLiveStat")->isEnabled());
    addComputer();
    frame->refresh();
    ASSERT_TRUE(action("toolsLiveStat")->isEnabled());
    action("toolsLiveStat")->trigger();
    EXPECT_TRUE(station->features().liveStat().enabled());
    EXPECT_TRUE(action("toolsLiveStat")->isChecked());
    action("toolsLiveStat")->trigger();
    EXPECT_FALSE(action("toolsLiveStat")->isChecked());
}

TEST_F(MainFrameTest, ARefusedTakeOverLeavesNoCheckMark) {
    addComputer();
    document().edit(*document().findSpecial(SpecialType::LiveStatOwnerRecord), [](CHardware& owner) {
        owner.State = 1;
        owner.Name = "elsewhere";
        owner.Username = "somebody";
    });
    frame->refresh();
    dialogs.answers = {false};
    action("toolsLiveStat")->trigger();
    EXPECT_EQ(dialogs.questions.size(), 1u);
    EXPECT_FALSE(station->features().liveStat().enabled());
    EXPECT_FALSE(action("toolsLiveStat")->isChecked());
}

TEST_F(MainFrameTest, LiveDiscoverNeedsARangeAndItsPaneCountsWhatItFound) {
    frame->refresh();
    EXPECT_FALSE(action("toolsLiveDiscover")->isEnabled());
    EXPECT_EQ(action("toolsLiveDiscover")->statusTip(),
              QStringLiteral("Live Discover needs an address range: Tools, Live Stat/Discover Option..."));
    CHardware range;
    range.Type = SpecialType::DiscoverRangeRecord;
    range.Name = range.IPAddress = "127.0.0.1";
    document().append(range);
    frame->refresh();
    ASSERT_TRUE(action("toolsLiveDiscover")->isEnabled());
    action("toolsLiveDiscover")->trigger();
    EXPECT_TRUE(action("toolsLiveDiscover")->isChecked());
    frame->refresh();
    EXPECT_EQ(pane("paneLiveDiscover"), QStringLiteral("LD!"));
    probes.answer("127.0.0.1");
    ASSERT_TRUE(QTest::qWaitFor([this] {
        timers.advance(std::chrono::seconds(1));
        return station->discovered() == 1;
    }));
    frame->refresh();
    EXPECT_TRUE(frame->findChild<QLabel*>(QStringLiteral("paneLiveDiscover"))
                    ->toolTip()
                    .contains(QStringLiteral("opened: 1")));
    action("toolsLiveDiscover")->trigger();
    EXPECT_FALSE(action("toolsLiveDiscover")->isChecked());
    frame->refresh();
    EXPECT_EQ(pane("paneLiveDiscover"), QString());
}

TEST_F(MainFrameTest, ThePanesSayWhichOtherStationRunsLiveStat) {
    addComputer();
    document().edit(*document().findSpecial(SpecialType::LiveStatOwnerRecord), [](CHardware& owner) {
        owner.State = 1;
        owner.Name = "office-pc";
        owner.Username = "anna";
    });
    frame->refresh();
    const QString tip = frame->findChild<QLabel*>(QStringLiteral("paneLiveStat"))->toolTip();
    EXPECT_TRUE(tip.contains(QStringLiteral("office-pc\\anna"))) << tip.toStdString();
}

TEST_F(MainFrameTest, TheMarkerSelectorFollowsTheFloorAndLeadsToAMarker) {
    auto* markers = frame->findChild<CMarkerSelector*>();
    const auto addMarker = [this](const char* comment, int x) {
        return document().addDevice(DeviceType::LocationMarker, [=](CHardware& marker) {
            marker.Comment = comment;
            marker.Position = {x, x};
        });
    };
    const CHardware* server = addMarker("Server room", 4000);
    addMarker("attic", 50);
    addComputer();
    QApplication::processEvents();
    ASSERT_EQ(markers->count(), 2);
    EXPECT_EQ(markers->itemText(1), QStringLiteral("Server room") + QString(75, u' ') + u'1');
    EXPECT_EQ(markerOfItem(markers->itemText(0)), 2);

    frame->activateWindow();
    floor->setFocus();
    QTest::keyClick(floor, Qt::Key_F6);
    ASSERT_TRUE(markers->hasFocus());
    QTest::keyClick(markers, Qt::Key_S);
    EXPECT_EQ(server->Selected, 1);
    EXPECT_GT(floor->scaledPoint({0, 0}).x(), 3000);
    document().edit(*server, [](CHardware& marker) { marker.Comment = "A server room"; });
    EXPECT_EQ(markers->currentText(), markerItemText(*server)) << "still the current one";
    EXPECT_EQ(markers->currentIndex(), 0);
    markers->SelectMarkerItem("att");
    EXPECT_EQ(markers->currentIndex(), 1);
    markers->SelectMarkerItem("gone");
    EXPECT_EQ(markers->currentIndex(), -1);
    document().remove(*server);
    QApplication::processEvents();
    EXPECT_EQ(markers->count(), 1);
}

TEST_F(MainFrameTest, TrackingNeedsLiveStatFollowsItAndEndsWithAClick) {
    document().addDevice(DeviceType::Computer, [](CHardware& device) { device.Position = {4000, 3000}; });
    QAction* track = action("toolsTrackLiveStat");
    track->trigger();
    EXPECT_EQ(dialogs.failures, std::vector<std::string>{"Live stat must be enabled first."});
    EXPECT_FALSE(track->isChecked());
    station->features().liveStat().toggle();
    track->trigger();
    EXPECT_TRUE(track->isChecked());
    EXPECT_TRUE(logged("Track Live stat Enabled"));
    timers.advance(std::chrono::seconds(10));
    EXPECT_GT(floor->horizontalScrollBar()->value(), 0);
    EXPECT_GT(floor->verticalScrollBar()->value(), 0);
    QTest::mouseClick(floor->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
    frame->refresh();
    EXPECT_FALSE(track->isChecked());
    EXPECT_TRUE(logged("Track Live stat Disabled"));
    track->trigger();
    station->features().liveStat().toggle();
    frame->refresh();
    EXPECT_FALSE(track->isChecked()) << "nothing is left to follow";
}

TEST_F(MainFrameTest, TheOptionsOpenInFrontAndTypedRulesSurviveTheSession) {
    action("toolsLiveStatOptions")->trigger();
    auto* options = frame->findChild<QDialog*>(QStringLiteral("liveStatOptions"));
    ASSERT_NE(options, nullptr);
    EXPECT_TRUE(options->isVisible() && options->isModal());
    options->findChild<QPushButton*>(QStringLiteral("criteria"))->click();
    auto* argument = options->findChild<QLineEdit*>(QStringLiteral("row0Argument"));
    ASSERT_NE(argument, nullptr);
    argument->setText(QStringLiteral("typed"));
    frame->saveForSession(inFolder("rescued.mv"));
    EXPECT_EQ(document().criteria(DeviceType::Computer, 0)->IPAddress, "typed");
}

TEST_F(MainFrameTest, LiveStatNowIsOfferedWhileSomethingIsSelected) {
    addComputer();
    Q_EMIT menu("menuTools")->aboutToShow();
    EXPECT_FALSE(action("toolsLiveStatNow")->isEnabled());
    document().setSelected(*document().findDevice(1), true);
    Q_EMIT menu("menuTools")->aboutToShow();
    EXPECT_TRUE(action("toolsLiveStatNow")->isEnabled());
    action("toolsLiveStatNow")->trigger();
    EXPECT_TRUE(logged("Processing Live Stat Now on 1 selected object(s)..."));
}

TEST_F(MainFrameTest, ThePhotoFolderGoesIntoTheDatafileAndTheScaleToTheUser) {
    ASSERT_TRUE(setFloorMap(document(), {"/maps/office.bmp", "/photos"}));
    dialogs.photoAnswers = {std::nullopt, PhotoSettings{"/srv/photos", 150}};
    action("toolsPhotoPath")->trigger();
    action("toolsPhotoPath")->trigger();
    EXPECT_EQ(dialogs.photoRequests[1], (PhotoSettings{"/photos", 100}));
    EXPECT_EQ(floorMapOf(document()).photoFolder, "/srv/photos");
    EXPECT_EQ(floorMapOf(document()).mapPath, "/maps/office.bmp");
    EXPECT_EQ(settings.read("PhotoScale", -1), 150);
    EXPECT_EQ(station->display().PhotoScale, 150);
}

TEST_F(MainFrameTest, SendAttachesTheDatafileAsItIsOnDisk) {
    addComputer();
    dialogs.files = {std::nullopt, inFolder("plan.mv")};
    action("fileSend")->trigger(); // who does not save does not send
    EXPECT_TRUE(launcher.started.empty());
    action("fileSend")->trigger();
    EXPECT_EQ(launcher.started, (std::vector<std::vector<std::string>>{
                                    {"xdg-email", "--subject", "plan.mv", "--attach", inFolder("plan.mv")}}));
    EXPECT_FALSE(document().modified());
    launcher.answer = std::make_error_code(std::errc::no_such_file_or_directory);
    action("fileSend")->trigger();
    ASSERT_EQ(dialogs.failures.size(), 1u);
    EXPECT_NE(dialogs.failures[0].find("xdg-utils"), std::string::npos);
}

TEST_F(MainFrameTest, HelpOpensTheManualOrSaysWhereItIsMissing) {
    action("helpTopics")->trigger();
    QTest::keyClick(frame->statusBar(), Qt::Key_F1);
    if (dialogs.pages.empty()) { // built without the manual
        ASSERT_EQ(dialogs.failures.size(), 2u);
        EXPECT_NE(dialogs.failures[0].find("There is no index.html in /"), std::string::npos);
    } else {
        ASSERT_EQ(dialogs.pages.size(), 2);
        EXPECT_TRUE(dialogs.pages[0].endsWith("/index.html"));
    }
}

TEST_F(MainFrameTest, TheLogFileIsShownOnceAValueGaveWay) {
    auto* open = frame->messageLog().findChild<QAction*>(QStringLiteral("messageLogOpenFile"));
    open->trigger();
    EXPECT_EQ(dialogs.failures.size(), 1U) << "there is no file yet";
    log.LogLasting("The comment of device 1 gave way");
    open->trigger();
    ASSERT_EQ(dialogs.pages.size(), 1);
    EXPECT_TRUE(QFile::exists(dialogs.pages.front()));
}

TEST_F(MainFrameTest, TitleAndRecentFilesFollowTheDocument) {
    EXPECT_EQ(frame->windowHandle()->title(), QStringLiteral("Untitled - Mirovane"));
    addComputer();
    frame->refresh();
    EXPECT_EQ(frame->windowHandle()->title(), QStringLiteral("Untitled* - Mirovane"));
    dialogs.files = {inFolder("R&D plan.mv")};
    ASSERT_TRUE(frame->files().saveAs());
    EXPECT_EQ(frame->windowTitle(), QStringLiteral("R&D plan.mv - Mirovane"));
    Q_EMIT menu("menuFile")->aboutToShow();
    const auto* entry = frame->findChild<QAction*>(QStringLiteral("recentFile1"));
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->text().startsWith(QStringLiteral("&1 R&&D plan.mv ["))) << entry->text().toStdString();
    ASSERT_TRUE(frame->files().newFile());
    EXPECT_EQ(frame->windowHandle()->title(), QStringLiteral("Untitled - Mirovane"));
    dialogs.files = {inFolder("plan[*].mv")};
    ASSERT_TRUE(frame->files().saveAs());
    frame->show();
    EXPECT_EQ(frame->windowHandle()->title(), QStringLiteral("plan[*].mv - Mirovane"));
    QFile::setPermissions(folder.filePath(QStringLiteral("plan[*].mv")), QFile::ReadOwner);
    ASSERT_TRUE(frame->files().openPath(inFolder("plan[*].mv")));
    EXPECT_EQ(frame->windowHandle()->title(), QStringLiteral("plan[*].mv [read-only] - Mirovane"));
}

TEST_F(MainFrameTest, ADatafileThatIsDroppedIsOpenedAndNothingElseIsTaken) {
    dialogs.files = {inFolder("dropped.mv")};
    ASSERT_TRUE(frame->files().saveAs());
    ASSERT_TRUE(frame->files().newFile());
    const auto drop = [this](const QString& name) {
        QMimeData dragged;
        dragged.setUrls({QUrl::fromLocalFile(folder.filePath(name))});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(frame.get(), &enter);
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        event.ignore();
        if (enter.isAccepted())
            QApplication::sendEvent(frame.get(), &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(drop(QStringLiteral("dropped.txt")));
    EXPECT_TRUE(drop(QStringLiteral("dropped.mv")));
    EXPECT_TRUE(QTest::qWaitFor([this] { return station->datafile().path() == inFolder("dropped.mv"); }));
}

TEST_F(MainFrameTest, RangesAskedForByDiscoverNowTakeTheKeyboardFromIt) {
    action("toolsDiscoverNow")->trigger();
    auto* discover = frame->findChild<QDialog*>(QStringLiteral("discoverNowWindow"));
    ASSERT_NE(discover, nullptr);
    discover->findChild<QPushButton*>(QStringLiteral("discoverNowRanges"))->click();
    auto* options = frame->findChild<QDialog*>(QStringLiteral("liveStatOptions"));
    ASSERT_NE(options, nullptr);
    // By this a window manager hands the keyboard over and back.
    EXPECT_EQ(options->parentWidget(), discover);
    EXPECT_TRUE(QTest::qWaitForWindowActive(options));
}

TEST_F(MainFrameTest, ClosingAnUnsavedFloorCanBeCalledOff) {
    addComputer();
    dialogs.saveAnswers = {SaveAnswer::Cancel};
    action("fileExit")->trigger();
    EXPECT_TRUE(frame->isVisible());
    frame->messageLog().present();
    dialogs.saveAnswers = {SaveAnswer::Discard};
    action("fileExit")->trigger();
    EXPECT_FALSE(frame->isVisible());
    EXPECT_FALSE(frame->messageLog().isVisible());
}

TEST_F(MainFrameTest, TheEndOfTheSessionRescuesAFloorWithoutAFile) {
    addComputer();
    frame->saveForSession(inFolder("rescued.mv"));
    EXPECT_FALSE(frame->endSession());
    EXPECT_FALSE(frame->isVisible());
    EXPECT_EQ(recent.paths(), std::vector<std::string>{inFolder("rescued.mv")});
    ASSERT_TRUE(frame->files().openPath(inFolder("rescued.mv")));
    EXPECT_EQ(document().deviceCount(), 1u);
}

} // namespace
} // namespace mirovane
