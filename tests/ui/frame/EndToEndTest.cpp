#include "model/FloorMap.h"
#include "model/format/Datafile.h"
#include "probes/SystemHostProbes.h"
#include "tests/support/Paths.h"
#include "tests/ui/frame/FrameFixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>

#include <fstream>
#include <set>
#include <sstream>

// The real program on a real X server with a window manager, as a user meets it.

namespace mirovane {
namespace {

constexpr int startDeadlineMs = 20'000;
constexpr int toolDeadlineMs = 2'000;

std::string missingTool() {
    for (const char* tool : {"Xvfb", "openbox", "xdotool", "import"})
        if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty())
            return std::string(tool) + " is not installed";
    return {};
}

/// Polls an outside condition: another process answers when it is ready, not when we are.
template <typename Condition>
bool comesTrue(Condition condition, int deadlineMs = startDeadlineMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > deadlineMs)
            return false;
        QThread::msleep(50);
    }
    return true;
}

class EndToEndTest : public test::FrameFixture {
protected:
    QProcess server;
    QProcess manager;
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

    void SetUp() override {
        if (const std::string reason = missingTool(); !reason.empty())
            GTEST_SKIP() << reason;
        FrameFixture::SetUp();
        startServer();
    }

    void TearDown() override {
        for (QProcess* process : {&program, &manager, &server}) {
            process->terminate();
            if (!process->waitForFinished(5000))
                process->kill();
            process->waitForFinished(5000);
        }
    }

    void startServer() {
        server.start(QStringLiteral("Xvfb"),
                     {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                      QStringLiteral("0"), QStringLiteral("1280x900x24")});
        ASSERT_TRUE(server.waitForReadyRead(startDeadlineMs)) << server.readAllStandardError().toStdString();
        environment.insert(QStringLiteral("DISPLAY"),
                           u':' + QString::fromLatin1(server.readLine().trimmed()));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        manager.setProcessEnvironment(environment);
        // A window that opens while the manager takes over the screen may never be shown: the manager drops
        // the requests that it finds before it has looked at all windows. It runs this command afterwards.
        const QString ready = folder.filePath(QStringLiteral("manager-is-ready"));
        manager.start(QStringLiteral("openbox"),
                      {QStringLiteral("--startup"), QStringLiteral("touch ") + ready});
        ASSERT_TRUE(manager.waitForStarted());
        ASSERT_TRUE(comesTrue([&ready] { return QFile::exists(ready); }));
    }

    QByteArray tool(const QString& name, const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(name, arguments);
        if (!process.waitForFinished(toolDeadlineMs)) {
            process.kill(); // a search among windows that come and go may hang; it is asked again
            process.waitForFinished();
        }
        return process.readAllStandardOutput().trimmed();
    }

    void startProgram(const QStringList& arguments) {
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QString::fromStdString(test::builtProgram("mirovane")),
                      QStringList{QStringLiteral("--config"), folder.filePath(QStringLiteral("config"))} +
                          arguments);
        ASSERT_TRUE(program.waitForStarted());
    }

    QByteArray windowNamed(const QString& title) {
        return tool(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                                QStringLiteral("--name"), u'^' + title + u'$'});
    }

    QImage screenshot() {
        const QString file = folder.filePath(QStringLiteral("screen.png"));
        tool(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"), file});
        return QImage(file);
    }

    /// A floor with a map and two computers: one that answers, one whose address can never be reached.
    std::string makeFloor() {
        QImage map(900, 600, QImage::Format_RGB32);
        map.fill(QColor(250, 240, 200));
        map.save(QString::fromStdString(inFolder("map.bmp")));
        station->newDatafile();
        setFloorMap(document(), {inFolder("map.bmp"), {}});
        document().addDevice(DeviceType::Computer, [](CHardware& device) {
            device.IPAddress = "127.0.0.1";
            device.Position = {100, 100};
        });
        document().addDevice(DeviceType::Computer, [](CHardware& device) {
            device.IPAddress = "127.255.255.255";
            device.Position = {300, 100};
        });
        EXPECT_FALSE(station->saveDatafileAs(inFolder("floor.mv")).failed());
        return inFolder("floor.mv");
    }

    static std::map<std::int32_t, std::int32_t> statesIn(const std::string& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        const auto content = Datafile::decode(bytes.str());
        std::map<std::int32_t, std::int32_t> states;
        if (!content)
            return states;
        for (const auto& record : content.value().records)
            states[record->isDevice() ? record->RecID : record->Type] = record->State;
        return states;
    }
};

TEST_F(EndToEndTest, AFloorComesAliveAndIsLeftInOrder) {
    const std::string path = makeFloor();
    QSettings(folder.filePath(QStringLiteral("config/mirovane.ini")), QSettings::IniFormat)
        .setValue(QStringLiteral("Settings/LSRunSec"), 1);
    startProgram({QString::fromStdString(path)});
    const QString title = QStringLiteral("floor.mv - Mirovane");
    ASSERT_TRUE(comesTrue([&] { return !windowNamed(title).isEmpty(); }))
        << "windows: " << windowNamed(QStringLiteral(".*")).toStdString() << ", program: " << program.state()
        << ' ' << program.readAll().toStdString();

    const QRgb map = qRgb(250, 240, 200);
    EXPECT_TRUE(comesTrue([&] {
        const QImage screen = screenshot();
        int mapPixels = 0;
        for (int x = 0; x < screen.width(); x += 10)
            for (int y = 0; y < screen.height(); y += 10)
                mapPixels += screen.pixel(x, y) == map ? 1 : 0;
        return mapPixels > 1000;
    })) << "the floor map is not on the screen";

    if (!CSystemHostProbes().echoUnusable())
        EXPECT_TRUE(comesTrue([&] { return statesIn(path)[1] == DeviceState::On; }, 60'000));

    // A key that is sent while the focus still moves reaches nobody, so it is pressed again.
    ASSERT_TRUE(comesTrue([&] {
        tool(QStringLiteral("xdotool"),
             {QStringLiteral("search"), QStringLiteral("--name"), u'^' + title + u'$',
              QStringLiteral("windowactivate"), QStringLiteral("--sync"), QStringLiteral("key"),
              QStringLiteral("alt+F4")});
        return program.state() == QProcess::NotRunning || program.waitForFinished(1000);
    }));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << program.readAll().toStdString();

    const auto states = statesIn(path);
    EXPECT_EQ(states.at(SpecialType::LiveStatOwnerRecord), 0);
    EXPECT_NE(states.at(2), DeviceState::On);
    const QSettings stored(folder.filePath(QStringLiteral("config/mirovane.ini")), QSettings::IniFormat);
    EXPECT_GT(stored.value(QStringLiteral("Settings/WindowBotX")).toInt(), 100);
    EXPECT_EQ(stored.value(QStringLiteral("Settings/LSNumPerRun")).toInt(), 30);
}

TEST_F(EndToEndTest, ASignalSavesAndReleasesTheDatafile) {
    const std::string path = makeFloor();
    startProgram({QString::fromStdString(path)});
    ASSERT_TRUE(comesTrue([&] { return statesIn(path)[SpecialType::LiveStatOwnerRecord] == 1; }))
        << program.readAll().toStdString();
    program.terminate();
    ASSERT_TRUE(program.waitForFinished(startDeadlineMs));
    EXPECT_EQ(program.exitCode(), 0) << program.readAll().toStdString();
    EXPECT_EQ(statesIn(path)[SpecialType::LiveStatOwnerRecord], 0);
}

TEST(CommandLineProgramTest, WithoutADisplayItSaysWhatToDo) {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    program.setProcessEnvironment(environment);
    program.start(QString::fromStdString(test::builtProgram("mirovane")), {});
    ASSERT_TRUE(program.waitForFinished(startDeadlineMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 2);
    EXPECT_TRUE(program.readAllStandardError().contains("mirovanectl station"));
}

} // namespace
} // namespace mirovane
