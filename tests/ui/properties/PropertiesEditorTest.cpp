#include "ui/properties/PropertiesEditor.h"

#include "model/records/Dates.h"
#include "tests/support/Paths.h"
#include "tests/ui/frame/FrameFixture.h"
#include "ui/list/ListViewWindow.h"
#include "ui/livestat/DevicePickList.h"
#include "ui/properties/PictureViewer.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QImageReader>
#include <QLineEdit>
#include <QListWidget>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QTimeEdit>
#include <QWheelEvent>

#include <algorithm>
#include <deque>

namespace mirovane::test {
namespace {

class ScriptedPrompts final : public PropertiesPrompts {
public:
    std::deque<DuplicateAnswer> answers;
    QStringList pictures;
    QStringList asked;

    DuplicateAnswer askDuplicate(QWidget&, const QString& question, const QString& other) override {
        asked << question + u'|' + other;
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected question: " << question.toStdString();
            return DuplicateAnswer::Cancel;
        }
        const DuplicateAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    QStringList choosePictures(QWidget&, const QString&) override { return pictures; }
    void fail(QWidget&, const QString& text) override { ADD_FAILURE() << text.toStdString(); }
};

/// Works the dialogs by keys alone, like somebody who never touches the mouse.
class PropertiesEditorTest : public FrameFixture {
protected:
    QWidget window;
    ScriptedPrompts prompts;
    std::unique_ptr<CPropertiesEditor> editor;
    std::vector<std::int32_t> shown;
    std::vector<std::int32_t> marked;

    void SetUp() override {
        FrameFixture::SetUp();
        station->newDatafile();
        for (const char* name : {"pc-1", "pc-2", "pc-3"})
            document().addDevice(
                DeviceType::Computer, [name](CHardware& device) { device.Name = name; });
        document().addDevice(DeviceType::Jack, [](CHardware& device) { device.ToJack = "A1"; });
        document().addDevice(DeviceType::LocationMarker, [this](CHardware& device) {
            device.Comment = "Hall";
            device.VertText = inFolder("a.png") + "\r\n" + inFolder("gone.png");
        });
        ASSERT_TRUE(station->saveDatafileAs(inFolder("floor.mv")).saved());
        editor = std::make_unique<CPropertiesEditor>(CPropertiesEditor::Parts{*station, clock, prompts,
                                                                              [] {
                                                                                  return QSize(640, 480);
                                                                              }},
                                                     nullptr);
        QObject::connect(
            editor.get(), &CPropertiesEditor::showDevice, &window,
            [this](std::int32_t recID) { shown.push_back(recID); });
        QObject::connect(editor.get(), &CPropertiesEditor::markArea, &window,
                         [this](std::int32_t recID) { marked.push_back(recID); });
        window.show();
    }

    const CHardware& device(std::int32_t recID) const { return *station->document().findDevice(recID); }

    void open(std::initializer_list<std::int32_t> recIDs) {
        station->selection().none();
        for (const std::int32_t recID : recIDs)
            station->selection().add(device(recID));
        editor->openForFloor(window);
        activate();
    }

    /// The dialog that is open; the ones that were closed are gone after this.
    QDialog* dialog() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (auto* each : window.findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
            if (each->isVisible())
                return each;
        return nullptr;
    }

    std::string labelText(const char* name) {
        return dialog()->findChild<QLabel*>(QLatin1String(name))->text().toStdString();
    }

    QString title() { return dialog() ? dialog()->windowTitle() : QString(); }

    void activate() {
        if (QDialog* open = dialog()) {
            open->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(open));
        }
    }

    static QWidget* focus() { return QApplication::focusWidget(); }
    void key(Qt::Key pressed, Qt::KeyboardModifiers held = Qt::NoModifier) {
        QTest::keyClick(focus(), pressed, held);
        QCoreApplication::processEvents();
        if (held == Qt::AltModifier)
            waitForButtons();
    }
    /// A button that is pressed by its letter is down for a moment before it clicks.
    void waitForButtons() const {
        EXPECT_TRUE(QTest::qWaitFor([this] {
            return std::ranges::none_of(window.findChildren<QAbstractButton*>(), &QAbstractButton::isDown);
        }));
    }
    void type(const char* text) {
        QTest::keyClicks(focus(), QLatin1String(text));
        QCoreApplication::processEvents();
    }
    /// Over a widget, wherever the keyboard is.
    static void turnWheel(QWidget& widget) {
        const QPointF middle = widget.rect().center();
        QWheelEvent event(middle, widget.mapToGlobal(middle), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&widget, &event);
    }
    /// Tab until the field has the keyboard.
    void tabTo(const char* name) {
        for (int i = 0; i < 60 && focus()->objectName() != QLatin1String(name); ++i)
            key(Qt::Key_Tab);
        ASSERT_EQ(focus()->objectName().toStdString(), name);
    }

    /// What the watch finds out is on the screen.
    void watchTicks() {
        timers.advance(std::chrono::seconds(7));
        QCoreApplication::processEvents();
        QTest::qWait(0);
    }
};

TEST_F(PropertiesEditorTest, EditsOneDeviceAsOneStepThatIsSaved) {
    document().edit(device(1), [](CHardware& record) { record.Username.assign(40000, 'u'); });
    open({1});
    EXPECT_EQ(title(), QStringLiteral("Properties"));
    EXPECT_EQ(focus()->objectName(), QStringLiteral("propertiesName"));
    key(Qt::Key_End);
    type("x");
    key(Qt::Key_K, Qt::ControlModifier);
    tabTo("propertiesUsername");
    key(Qt::Key_End);
    type("v");
    tabTo("propertiesComment");
    type("two");
    key(Qt::Key_Return);
    type("lines");
    tabTo("propertiesReminderOn");
    key(Qt::Key_Space);
    tabTo("propertiesToDo");
    type("call");
    turnWheel(*dialog()->findChild<QDateEdit*>());
    turnWheel(*dialog()->findChild<QTimeEdit*>(QStringLiteral("propertiesReminderTime")));
    key(Qt::Key_Return);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(device(1).Name, "pc-1x >>");
    EXPECT_EQ(device(1).Comment, "two\r\nlines");
    EXPECT_EQ(device(1).Username, std::string(40000, 'u') + 'v');
    EXPECT_EQ(device(1).ReminderOn, 1);
    EXPECT_EQ(device(1).ReminderDate, localDateTime(document().now()));
    EXPECT_EQ(station->edits().history().steps().size(), 1U);
    EXPECT_FALSE(station->document().modified());

    open({1});
    type("never");
    key(Qt::Key_Escape);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(device(1).Name, "pc-1x >>");
    EXPECT_EQ(station->edits().history().steps().size(), 1U);
}

TEST_F(PropertiesEditorTest, AMixedSelectionHasOneDialogAfterTheOther) {
    document().edit(device(3), [](CHardware& record) {
        record.Comment = "<Edit>";
        record.HorzDraw = 1;
    });
    open({1, 2, 3, 4, 5});
    EXPECT_EQ(labelText("noteSlashText"), "all: no line");
    EXPECT_EQ(labelText("noteHorzText"), "");
    EXPECT_EQ(title(), QStringLiteral("Properties - 3 devices"));
    EXPECT_EQ(qobject_cast<QLineEdit*>(focus())->text(), QStringLiteral("<Edit>"));
    auto* priority = dialog()->findChild<QComboBox*>(QStringLiteral("propertiesPriority"));
    const int shared = priority->findText(QString::number(device(1).Priority));
    Q_EMIT priority->activated(shared);
    EXPECT_EQ(priority->currentIndex(), shared);
    tabTo("propertiesToJack"); // empty everywhere: a hint, which typing replaces
    type("J9");
    tabTo("propertiesSlashDraw");
    key(Qt::Key_Space);
    key(Qt::Key_Return);
    EXPECT_EQ(title(), QStringLiteral("Label Jack"));
    activate();
    EXPECT_EQ(dialog()->findChild<QPushButton*>(QStringLiteral("propertiesNext")), nullptr);
    type("A2");
    key(Qt::Key_Escape);
    EXPECT_EQ(title(), QStringLiteral("Location Marker"));
    activate();
    type("Foyer");
    tabTo("propertiesOk");
    key(Qt::Key_Space);
    EXPECT_EQ(device(5).Comment, "Foyer");
    EXPECT_EQ(device(5).VertText, inFolder("a.png") + "\r\n" + inFolder("gone.png"));
    EXPECT_EQ(dialog(), nullptr);
    for (const std::int32_t recID : {1, 2, 3}) {
        EXPECT_EQ(device(recID).Name, "pc-" + std::to_string(recID));
        EXPECT_EQ(device(recID).ToJack, "J9");
        EXPECT_EQ(device(recID).SlashDraw, 1);
        EXPECT_EQ(device(recID).BackslashDraw, 0);
    }
    EXPECT_EQ(device(3).Comment, "<Edit>");
    EXPECT_EQ(device(4).ToJack, "A1");
}

TEST_F(PropertiesEditorTest, AsksAboutAnotherDeviceWithTheSameName) {
    prompts.answers = {DuplicateAnswer::ShowOther, DuplicateAnswer::Cancel, DuplicateAnswer::Apply};
    document().edit(device(2), [](CHardware& record) { record.Name = "pc-2%3"; });
    open({1});
    type("PC-2%3");
    key(Qt::Key_Return);
    EXPECT_EQ(shown, std::vector<std::int32_t>{2});
    EXPECT_EQ(title(), QStringLiteral("Properties"));
    const TimeStamp saved = device(1).Modified;
    key(Qt::Key_Return);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(device(1).Name, "pc-1");
    EXPECT_EQ(device(1).Modified, saved);
    EXPECT_TRUE(station->edits().history().steps().empty());
    EXPECT_EQ(prompts.asked.front(),
              QStringLiteral("Another device has the same \"Name\" value(s), do you want to continue?|"
                             "It is Computer \"pc-2%3\", Rec ID 2, on the floor."));
    open({1});
    type("PC-2%3");
    key(Qt::Key_Return);
    EXPECT_EQ(device(1).Name, "PC-2%3");
}

TEST_F(PropertiesEditorTest, NextAndPreviousApplyAndMoveOn) {
    open({1});
    type("first");
    key(Qt::Key_X, Qt::AltModifier);
    activate();
    EXPECT_EQ(device(1).Name, "first");
    EXPECT_EQ(station->selection().members(), CSelection::Devices{&device(2)});
    key(Qt::Key_X, Qt::AltModifier);
    activate();
    key(Qt::Key_X, Qt::AltModifier);
    activate();
    EXPECT_EQ(title(), QStringLiteral("Label Jack"));
    key(Qt::Key_V, Qt::AltModifier);
    activate();
    EXPECT_EQ(qobject_cast<QLineEdit*>(focus())->text(), QStringLiteral("pc-3"));
    key(Qt::Key_Escape);
    EXPECT_EQ(station->edits().history().steps().size(), 1U) << "looking is not editing";
}

TEST_F(PropertiesEditorTest, AColleagueWhoSavesMeanwhileLosesNothing) {
    const auto colleague = [this](QStringList words) {
        QProcess program;
        words.insert(1, QString::fromStdString(inFolder("floor.mv")));
        program.start(QString::fromStdString(builtProgram("mirovanectl")), words);
        ASSERT_TRUE(program.waitForFinished());
        ASSERT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
    };
    open({1});
    type("mine");
    colleague({QStringLiteral("set"), QStringLiteral("1"), QStringLiteral("Name=theirs"),
               QStringLiteral("Username=ann"), QStringLiteral("Comment=seen")});
    watchTicks();
    EXPECT_EQ(qobject_cast<QLineEdit*>(focus())->text(), QStringLiteral("mine"));
    EXPECT_EQ(dialog()->findChild<QLineEdit*>(QStringLiteral("propertiesUsername"))->text(),
              QStringLiteral("ann"));
    EXPECT_EQ(labelText("newsName"), "Changed meanwhile, now: \"theirs\"");
    EXPECT_EQ(labelText("newsComment"), "Changed meanwhile");
    key(Qt::Key_Return);
    EXPECT_EQ(device(1).Name, "mine");
    EXPECT_EQ(device(1).Username, "ann");
    EXPECT_EQ(device(1).Comment, "seen");

    open({2});
    type("ghost");
    colleague({QStringLiteral("delete"), QStringLiteral("2")});
    watchTicks();
    EXPECT_EQ(labelText("propertiesBanner"),
              "This device was deleted meanwhile. There is nothing left to change.");
    colleague({QStringLiteral("add"), QStringLiteral("--type"), QStringLiteral("Computer"),
               QStringLiteral("Name=other")});
    watchTicks();
    EXPECT_EQ(device(2).Name, "other");
    EXPECT_NE(labelText("propertiesBanner"), "");
    EXPECT_FALSE(dialog()->findChild<QWidget*>(QStringLiteral("propertiesOk"))->isEnabled());
    key(Qt::Key_Return);
    EXPECT_NE(dialog(), nullptr);
    key(Qt::Key_Escape);
    EXPECT_EQ(device(2).Name, "other");
}

TEST_F(PropertiesEditorTest, AMarkerHasPicturesAndAnArea) {
    QImage(40, 20, QImage::Format_RGB32).save(QString::fromStdString(inFolder("a.png")));
    open({5});
    tabTo("propertiesMarkArea");
    key(Qt::Key_Space);
    tabTo("propertiesPictures");
    key(Qt::Key_W, Qt::AltModifier);
    auto* viewer = dialog()->findChild<CPictureViewer*>();
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->image().size(), QSize(40, 20));
    QTest::keyClick(viewer, Qt::Key_Plus);
    EXPECT_EQ(viewer->scale(), 125);
    viewer->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(viewer));
    tabTo("pictureArea");
    key(Qt::Key_PageDown);
    EXPECT_TRUE(viewer->image().isNull());
    EXPECT_TRUE(viewer->findChild<QLabel*>(QStringLiteral("picture"))
                    ->text()
                    .startsWith(QStringLiteral("There is no such file:\n\n") +
                                QString::fromStdString(inFolder("gone.png"))));
    QTest::keyClick(viewer, Qt::Key_Escape);
    activate();
    prompts.pictures = {QStringLiteral("/srv/b.png")};
    tabTo("propertiesPictures");
    key(Qt::Key_Delete);
    key(Qt::Key_A, Qt::AltModifier);
    key(Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(dialog(), nullptr) << "marking comes first, not the device before";
    EXPECT_EQ(device(5).VertText, inFolder("gone.png") + "\r\n/srv/b.png");
    EXPECT_EQ(device(5).Comment, "Hall");
    EXPECT_EQ(marked, std::vector<std::int32_t>{5});

    document().edit(device(5), [](CHardware& record) { record.Type += DeviceType::discoveredOffset; });
    editor->open({&device(5)}, window);
    EXPECT_FALSE(dialog()->findChild<QWidget*>(QStringLiteral("propertiesMarkArea"))->isEnabled());
}

TEST(PictureViewerTest, AnAnimationIsOnePage) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("blink.gif"));
    const QByteArray picture("\x2C\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0", 15);
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("GIF89a\x01\0\x01\0\x80\0\0\0\0\0\xFF\xFF\xFF", 19) + picture + picture + ';');
    }
    ASSERT_EQ(QImageReader(path).imageCount(), 2);
    CPictureViewer viewer({{path, path}, {path, path}}, 0, nullptr);
    QTest::keyClick(&viewer, Qt::Key_PageDown);
    EXPECT_EQ(viewer.image().size(), QSize(1, 1));
    EXPECT_EQ(viewer.findChild<QLabel*>(QStringLiteral("picturePlace"))->text(), QStringLiteral("2 of 2"));
}

TEST(PictureViewerTest, ShowsEachPageOfAFileOnPaper) {
    if (!QImageReader::supportedImageFormats().contains("pdf"))
        GTEST_SKIP() << "needs the package qt6-image-formats-plugin-pdf";
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("plan.pdf"));
    {
        QPdfWriter writer(path);
        writer.setPageSize(QPageSize(QPageSize::A4));
        QPainter painter(&writer);
        writer.newPage();
        painter.fillRect(QRect(0, 0, writer.width(), writer.height() / 2), Qt::red);
    }
    CPictureViewer viewer({{path, path}, {path, path}}, 0, nullptr);
    const auto at = [&viewer](int percent) {
        return viewer.image().pixelColor(viewer.image().width() / 2, viewer.image().height() * percent / 100);
    };
    EXPECT_EQ(at(25), QColor(Qt::white));
    EXPECT_GT(viewer.image().height(), 2000) << "fine enough to print";
    QTest::keyClick(&viewer, Qt::Key_PageDown);
    EXPECT_EQ(at(25), QColor(Qt::red));
    EXPECT_EQ(at(75), QColor(Qt::white));
    EXPECT_EQ(viewer.findChild<QLabel*>(QStringLiteral("picturePlace"))->text(),
              QStringLiteral("1 of 2, page 2 of 2"));
    QTest::keyClick(&viewer, Qt::Key_PageDown);
    EXPECT_EQ(viewer.findChild<QLabel*>(QStringLiteral("picturePlace"))->text(),
              QStringLiteral("2 of 2, page 1 of 2"));
}

TEST_F(PropertiesEditorTest, TellsWhichRuleWritesAFieldAndTestsIt) {
    open({1});
    EXPECT_EQ(dialog()->findChild<QLabel*>(QStringLiteral("noteIPAddress"))->text(),
              QStringLiteral("Live Stat: NS Lookup $mvN"));
    EXPECT_TRUE(dialog()->findChild<QLabel*>(QStringLiteral("noteName"))->text().isEmpty());
    tabTo("propertiesIPAddress");
    key(Qt::Key_L, Qt::AltModifier);
    auto* test = dialog()->findChild<QDialog*>(QStringLiteral("rowTrialWindow"));
    ASSERT_NE(test, nullptr);
    EXPECT_EQ(test->findChild<QComboBox*>(QStringLiteral("trialRow"))->currentIndex(), 2);
    EXPECT_EQ(test->findChild<CDevicePickList*>()->pickedRecID(), 1);
}

TEST_F(PropertiesEditorTest, TellsWhatARuleFoundLast) {
    probes.name("pc-1", 0x0100007F);
    open({1});
    station->features().liveStat().toggle();
    ASSERT_TRUE(QTest::qWaitFor([this] {
        timers.advance(std::chrono::seconds(1));
        return device(1).IPAddress == "127.0.0.1";
    }));
    QTest::qWait(0);
    const QString note =
        dialog()->findChild<QLineEdit*>(QStringLiteral("propertiesIPAddress"))->accessibleDescription();
    EXPECT_TRUE(note.startsWith(
        QStringLiteral("Changed meanwhile\nLive Stat: NS Lookup $mvN\nfound \"127.0.0.1\", ")))
        << note.toStdString();
}

TEST_F(PropertiesEditorTest, AnotherFloorHasOtherDevicesOfTheSameNumber) {
    open({1, 4});
    type("not for you");
    station->newDatafile();
    EXPECT_EQ(dialog(), nullptr);
    document().addDevice(DeviceType::Computer);
    open({1});
    EXPECT_EQ(qobject_cast<QLineEdit*>(focus())->text(), QString());
}

TEST_F(PropertiesEditorTest, WithNothingSelectedItSumsUpTheFloor) {
    document().addDevice(DeviceType::Printer + DeviceType::discoveredOffset);
    station->selection().none();
    editor->openForFloor(window);
    EXPECT_EQ(title(), QStringLiteral("Mirovane - Floor Properties"));
    EXPECT_EQ(labelText("floorMapSize"), "Size (WxH): 640 x 480 pixels");
    EXPECT_EQ(labelText("floorCount2"), "3 [3] [0]");
    EXPECT_EQ(labelText("floorCount3"), "1 [0] [1]");
    EXPECT_EQ(labelText("floorApplications"), "0 (0 are on Pop-up menu)");
    EXPECT_EQ(labelText("floorLiveStat"), "Disabled");
}

class PropertiesCommandTest : public ShownFrame {};

TEST_F(PropertiesCommandTest, OpensFromTheListViewInItsOrder) {
    for (const char* name : {"b", "a"})
        document().addDevice(DeviceType::Computer, [name](CHardware& device) { device.Name = name; });
    frame->actions().action("viewListView")->trigger();
    CListViewWindow& list = *frame->listView();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    list.table().sortBy(ListColumn::Name);
    list.table().sortBy(ListColumn::Name); // smallest first
    station->selection().only(*document().findDevice(2));
    QCoreApplication::processEvents();
    QTest::keyClick(&list.table(), Qt::Key_Return, Qt::AltModifier);
    const auto opened = list.findChildren<QDialog*>(QStringLiteral("propertiesDialog"));
    ASSERT_EQ(opened.size(), 1);
    EXPECT_FALSE(opened.front()->findChild<QWidget*>(QStringLiteral("propertiesPrevious"))->isEnabled());
    EXPECT_TRUE(opened.front()->findChild<QWidget*>(QStringLiteral("propertiesNext"))->isEnabled());
}

} // namespace
} // namespace mirovane::test
