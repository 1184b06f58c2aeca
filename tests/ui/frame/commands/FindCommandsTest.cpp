#include "tests/ui/frame/FrameFixture.h"
#include "ui/find/FindDialog.h"
#include "ui/find/FlashRing.h"
#include "ui/find/QuickFindPopup.h"
#include "ui/floor/MirovaneView.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace mirovane {
namespace {

class FindCommandsTest : public test::ShownFrame {
protected:
    std::int32_t add(const std::string& name, MapPoint at, std::int32_t type = DeviceType::Computer) {
        return document()
            .addDevice(
                type,
                [&](CHardware& device) {
                    device.Name = name;
                    device.Position = at;
                })
            ->RecID;
    }
    const CHardware& device(std::int32_t recID) { return *document().findDevice(recID); }
    void trigger(const char* name) {
        frame->refresh(); // commands become enabled when the program is idle
        frame->actions().action(name)->trigger();
    }

    /// The user fills the dialog that the command opens.
    void find(const std::function<void(CFindDialog&)>& fill) {
        QTimer::singleShot(0, frame.get(), [&] {
            auto* dialog = qobject_cast<CFindDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            fill(*dialog);
        });
        trigger("editFind");
    }
    void findText(const QString& text) {
        find([&text](CFindDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("findText")), text);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
    }
};

TEST_F(FindCommandsTest, FindSelectsAndShowsAndF3GoesOn) {
    const std::int32_t near = add("pc-1", {20, 20});
    const std::int32_t far = add("pc-2", {5000, 4000});
    findText(QStringLiteral("PC"));
    EXPECT_EQ(device(near).Selected, 1);
    EXPECT_EQ(device(near).ShowAll, 1);
    EXPECT_EQ(floor->state().find.FindHitCount, 2);
    trigger("editFindNext");
    EXPECT_EQ(device(near).Selected, 0);
    EXPECT_EQ(device(far).Selected, 1);
    EXPECT_TRUE(floor->viewport()->rect().intersects(floor->iconRect(device(far))));
    findText(QStringLiteral("nowhere")); // the old text was selected, so typing replaced it
    EXPECT_EQ(dialogs.failures.back(), "Cannot find the text. Check criteria/condition again.");
    EXPECT_TRUE(station->selection().empty());
    find([](CFindDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(dialogs.failures.size(), 1U) << "cancelled";
}

TEST_F(FindCommandsTest, TheDialogKeepsWhatWasChosen) {
    const auto box = [](CFindDialog& dialog, const char* name) {
        return dialog.findChild<QCheckBox*>(QLatin1String(name));
    };
    add("pc-1", {});
    find([&](CFindDialog& dialog) {
        EXPECT_TRUE(box(dialog, "includeName")->isChecked());
        box(dialog, "includeToJack")->click();
        box(dialog, "findMatchCase")->click();
        box(dialog, "findReminder")->click();
        EXPECT_FALSE(dialog.findChild<QLineEdit*>(QStringLiteral("findText"))->isEnabled());
        dialog.accept();
    });
    EXPECT_EQ(dialogs.failures.size(), 1U) << "no device has a reminder";
    find([&](CFindDialog& dialog) {
        for (const char* name : {"includeToJack", "findMatchCase", "findReminder", "includeIPAddress"})
            EXPECT_TRUE(box(dialog, name)->isChecked()) << name;
        EXPECT_FALSE(box(dialog, "findReminderDue")->isChecked());
        dialog.reject();
    });
}

TEST_F(FindCommandsTest, AMarkerFromTheToolbarIsShown) {
    add("pc-1", {});
    const std::int32_t hall = add("", {4000, 3000}, DeviceType::LocationMarker);
    frame->finding().findMarker(hall);
    EXPECT_EQ(floor->SelectedMarker(), hall);
    EXPECT_EQ(device(hall).Selected, 1);
    findText(QStringLiteral("pc")); // the dialog looks for what the user had there, in his fields
    EXPECT_EQ(device(1).Selected, 1);
}

TEST_F(FindCommandsTest, QuickFindShowsTheDeviceThatWasChosen) {
    add("printer-1", {20, 20});
    const std::int32_t far = add("printer-2", {5000, 4000});
    add("pc", {9000, 8000}); // the floor goes on behind it
    trigger("editQuickFind");
    auto* popup = frame->findChild<CQuickFindPopup*>();
    ASSERT_NE(popup, nullptr);
    QTest::keyClicks(&popup->line(), QStringLiteral("prin"));
    QTest::keyClick(&popup->line(), Qt::Key_Down);
    QTest::keyClick(&popup->line(), Qt::Key_Return);
    EXPECT_FALSE(popup->isVisible());
    EXPECT_EQ(device(far).Selected, 1);
    const QPoint offset = floor->iconRect(device(far)).center() - floor->viewport()->rect().center();
    EXPECT_LE(offset.manhattanLength(), 4) << "in the middle";
    EXPECT_NE(floor->viewport()->findChild<CFlashRing*>(), nullptr);

    trigger("editQuickFind");
    QTest::keyClicks(&popup->line(), QStringLiteral("x"));
    QTest::keyClick(&popup->line(), Qt::Key_Return);
    EXPECT_TRUE(popup->isVisible()) << "there is nothing to choose";
    QTest::keyClick(&popup->line(), Qt::Key_Escape);
    EXPECT_FALSE(popup->isVisible());
}

TEST_F(FindCommandsTest, TheToolbarsFieldOpensTheQuickFindWithWhatIsTyped) {
    auto* field = frame->findChild<CQuickFindField*>();
    EXPECT_FALSE(field->isEnabled()) << "no device yet";
    add("printer-1", {20, 20});
    frame->refresh();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_P);
    auto* popup = frame->findChild<CQuickFindPopup*>();
    ASSERT_TRUE(popup && popup->isVisible());
    EXPECT_EQ(popup->line().text(), QStringLiteral("p"));
    QTest::keyClick(&popup->line(), Qt::Key_Return);
    EXPECT_EQ(station->selection().count(), 1U);
}

TEST_F(FindCommandsTest, GroupingSaysWhatItDid) {
    for (const MapPoint place : {MapPoint{0, 0}, MapPoint{900, 0}, MapPoint{5, 0}, MapPoint{901, 0}})
        add("pc", place);
    trigger("toolsGroupByProximity");
    EXPECT_TRUE(logged("Grouped by proximity: "));
    EXPECT_EQ(*document().indexOfDevice(3), *document().indexOfDevice(1) + 1);
}

} // namespace
} // namespace mirovane
