#include "ui/livestat/RowTrialWindow.h"

#include "tests/station/StationFixture.h"

#include <QListView>
#include <QTest>

namespace mirovane {
namespace {

/// Three printers: 127.0.0.1 to 127.0.0.3.
class RowTrialWindowTest : public test::StationFixture {
protected:
    std::unique_ptr<CRowTrialWindow> window;

    void SetUp() override {
        open(a);
        rename(a, 2, "drum");
        a.station->saveDatafile();
        a.logged();
    }
    void show(int row) {
        window = std::make_unique<CRowTrialWindow>(*a.station, clock, DeviceType::Printer, row);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    template <typename T>
    T* find(const char* name) {
        return window->findChild<T*>(QLatin1String(name));
    }
    QString result() { return find<QPlainTextEdit>("trialResult")->toPlainText(); }
    bool wait() {
        return QTest::qWaitFor([this] { return find<QPushButton>("trialTest")->isEnabled(); }, 20'000);
    }
};

TEST_F(RowTrialWindowTest, TriesTheRowOnTheDeviceThatIsFoundAndWritesNothing) {
    a.probes.answer("127.0.0.2");
    a.doc().setSelected(a.device(3), true);
    show(0);
    EXPECT_TRUE(find<QListView>("deviceList")->currentIndex().data().toString().startsWith(u'3'));
    QTest::keyClicks(find<QLineEdit>("deviceSearch"), QStringLiteral("DRU"));
    EXPECT_EQ(find<QListView>("deviceList")->model()->rowCount(), 1);
    QTest::keyClick(find<QLineEdit>("deviceSearch"), Qt::Key_Return);
    ASSERT_TRUE(wait());
    EXPECT_TRUE(result().contains(QStringLiteral("Argument: \"127.0.0.2\""))) << result().toStdString();
    EXPECT_TRUE(result().contains(QStringLiteral("Outcome: match")));
    EXPECT_TRUE(result().contains(QStringLiteral("State: \"1\", which was \"0\"")) ||
                result().contains(QStringLiteral("State: \"On\"")))
        << result().toStdString();
    EXPECT_EQ(a.device(2).State, DeviceState::Def);
    EXPECT_EQ(a.logged(), test::Lines{});
}

TEST_F(RowTrialWindowTest, ATrialThatHangsCanBeCancelledOrLeft) {
    a.probes.hang("127.0.0.1");
    show(0);
    QTest::mouseClick(find<QPushButton>("trialTest"), Qt::LeftButton);
    ASSERT_TRUE(a.probes.waitUntilHanging(1));
    EXPECT_FALSE(find<QPushButton>("trialTest")->isEnabled());
    QTest::mouseClick(find<QPushButton>("trialCancel"), Qt::LeftButton);
    ASSERT_TRUE(wait());
    EXPECT_TRUE(result().contains(QStringLiteral("Outcome: stopped"))) << result().toStdString();
    QTest::mouseClick(find<QPushButton>("trialTest"), Qt::LeftButton);
    ASSERT_TRUE(a.probes.waitUntilHanging(1));
    window.reset();
    EXPECT_TRUE(a.probes.waitUntilHanging(0));
}

TEST_F(RowTrialWindowTest, ADeviceThatWentIsNotTried) {
    show(0);
    const std::int32_t first = 1;
    a.doc().removeDevices(std::array{DeviceKey{first}});
    QTest::mouseClick(find<QPushButton>("trialTest"), Qt::LeftButton);
    EXPECT_EQ(result(), QStringLiteral("The device was deleted meanwhile."));
    QTest::keyClicks(find<QLineEdit>("deviceSearch"), QStringLiteral("nobody"));
    QTest::mouseClick(find<QPushButton>("trialTest"), Qt::LeftButton);
    EXPECT_EQ(result(), QStringLiteral("No such device. Type something else above."));
}

} // namespace
} // namespace mirovane
