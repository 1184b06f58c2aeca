#include "model/FloorMap.h"
#include "model/datafile/DatafileLink.h"
#include "tests/support/NewFloor.h"
#include "tests/support/Paths.h"
#include "tests/ui/floor/FloorFixture.h"

#include <QProcess>

#include <cstdlib>
#include <filesystem>
#include <tuple>

namespace mirovane {

namespace {

const QString program = QString::fromStdString(test::builtProgram("mirovane"));

/// The real program, on a datafile with one device of each condition.
class RenderTest : public testing::Test {
protected:
    RenderTest() {
        link.newDatafile();
        floor.add(DeviceType::Computer, {40, 30}, [](CHardware& d) {
            d.State = DeviceState::On;
            d.Name = "pc";
            d.Username = "ann";
        });
        floor.add(DeviceType::Switch, {120, 80}, [](CHardware& d) {
            d.Name = "switch";
            d.SlashDraw = d.HorzDraw = 1;
        });
        floor.add(DeviceType::discoveredOffset + DeviceType::Printer, {0, 0});
        EXPECT_TRUE(link.saveAs(datafile).saved());
        floor.state.view.client = {300, 200};
    }

    int run(const QStringList& arguments) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QString::fromStdString(folder.file("config")));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60000));
        said = process.readAllStandardError();
        printed = process.readAllStandardOutput();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    int render(const QStringList& options = {}) {
        return run(QStringList{QStringLiteral("--render"), picture, QString::fromStdString(datafile)} +
                   options);
    }

    QImage rendered() { return QImage(picture).convertToFormat(QImage::Format_RGB32); }

    test::TestFolder folder;
    test::Floor floor;
    CDatafileLink link{floor.doc, floor.files, floor.log};
    std::string datafile = folder.file("site.mv");
    QString picture = QString::fromStdString(folder.file("out.png"));
    QByteArray said;
    QByteArray printed;
};

TEST_F(RenderTest, DrawsWhatTheWindowWouldAndTouchesNothing) {
    const std::string before = test::readBytes(datafile);
    const auto stamp = std::filesystem::last_write_time(datafile);
    ASSERT_EQ(render({QStringLiteral("--size"), QStringLiteral("300x200")}), 0) << said.toStdString();
    EXPECT_EQ(test::firstDifference(rendered(), floor.freshFrame()), "");

    ASSERT_EQ(render({QStringLiteral("--size"), QStringLiteral("300x200"), QStringLiteral("--zoom"),
                      QStringLiteral("150"), QStringLiteral("--devices-zoom"), QStringLiteral("200"),
                      QStringLiteral("--scroll"), QStringLiteral("11,7"), QStringLiteral("--select"),
                      QStringLiteral("2"), QStringLiteral("--hover"), QStringLiteral("1"),
                      QStringLiteral("--show"), QStringLiteral("PropertiesComputer,PropertiesHorzDraw")}),
              0)
        << said.toStdString();
    DisplaySettings& display = floor.display;
    floor.state.view.zoom = {150, 200};
    display.PropertiesComputer = true;
    display.PropertiesSlashDraw = display.PropertiesBackslashDraw = display.PropertiesVertDraw = false;
    floor.doc.setSelected(*floor.doc.findDevice(2), true);
    floor.doc.setShowAll(*floor.doc.findDevice(1), true);
    floor.state.view.origin = {11, 7};
    floor.state.view.LabelFontHeight = 13;
    EXPECT_EQ(test::firstDifference(rendered(), floor.freshFrame()), "");

    EXPECT_EQ(test::readBytes(datafile), before);
    EXPECT_EQ(std::filesystem::last_write_time(datafile), stamp);
    EXPECT_FALSE(std::filesystem::exists(folder.file("config"))) << "no settings are left behind";
}

TEST_F(RenderTest, HiddenTypesRatioAndFontScaleAreTaken) {
    ASSERT_EQ(render({QStringLiteral("--size"), QStringLiteral("300x200"), QStringLiteral("--hide"),
                      QStringLiteral("switch,Map"), QStringLiteral("--device-ratio"), QStringLiteral("1.5"),
                      QStringLiteral("--font-scale"), QStringLiteral("6"), QStringLiteral("--show"),
                      QStringLiteral("PropertiesComputer")}),
              0)
        << said.toStdString();
    floor.display.VisibleTypes = ~(1 << (DeviceType::Switch - 1));
    floor.display.PropertiesComputer = true;
    floor.state.view.LabelFontHeight = 18;
    EXPECT_EQ(test::firstDifference(rendered(), floor.freshFrame(1.5)), "");
}

TEST_F(RenderTest, PrintsTheFloorAsPages) {
    const QString pages = QString::fromStdString(folder.file("out.pdf"));
    const auto print = [&](const QStringList& options) {
        return run(QStringList{QStringLiteral("--print"), pages, QString::fromStdString(datafile)} + options);
    };
    const auto pageCount = [&] {
        const std::string bytes = test::readBytes(pages.toStdString());
        EXPECT_TRUE(bytes.starts_with("%PDF-"));
        const std::size_t at = bytes.find("/Count ");
        return at == std::string::npos ? 0 : std::atoi(bytes.c_str() + at + 7);
    };
    ASSERT_EQ(print({}), 0) << said.toStdString();
    EXPECT_EQ(pageCount(), 1);
    ASSERT_EQ(print({QStringLiteral("--zoom"), QStringLiteral("1500"), QStringLiteral("--paper"),
                     QStringLiteral("a5"), QStringLiteral("--landscape")}),
              0)
        << said.toStdString();
    EXPECT_GT(pageCount(), 1);
    ASSERT_EQ(print({QStringLiteral("--box"), QStringLiteral("10,10,90,90")}), 0);
    EXPECT_EQ(pageCount(), 1);
    for (const auto& [option, value, text] : {std::tuple("--box", "1,2,3", "four whole numbers"),
                                              std::tuple("--box", "5,5,5,9", "enclose something"),
                                              std::tuple("--paper", "A99", "the name of a paper size"),
                                              std::tuple("--hide", "Ghost", "device types")}) {
        EXPECT_EQ(print({QLatin1String(option), QLatin1String(value)}), 2);
        EXPECT_TRUE(said.contains(text)) << said.toStdString();
    }
    EXPECT_EQ(run({QStringLiteral("--print"), QStringLiteral("/nowhere/out.pdf"),
                   QString::fromStdString(datafile)}),
              3);
}

TEST_F(RenderTest, WithoutASizeTheWholeFloorIsDrawn) {
    ASSERT_EQ(render(), 0);
    const QSize icon = floor.icons.sizes().of(DeviceType::Switch);
    EXPECT_EQ(rendered().size(), QSize(120, 80) + icon);
}

TEST_F(RenderTest, UsageErrorsAreNamedAndWriteNothing) {
    const QString file = QString::fromStdString(datafile);
    const QString render = QStringLiteral("--render");
    const std::pair<QStringList, const char*> cases[] = {
        {{render, picture}, "no datafile was named"},
        {{render, picture, file, QStringLiteral("more")}, "unexpected argument \"more\""},
        {{render, picture, file, QStringLiteral("--size"), QStringLiteral("300")}, "--size 300: expected"},
        {{render, picture, file, QStringLiteral("--size"), QStringLiteral("32000x32000")},
         "and 200 million pixels together"},
        {{render, picture, file, QStringLiteral("--zoom"), QStringLiteral("0")}, "--zoom 0: expected"},
        {{render, picture, file, QStringLiteral("--scroll"), QStringLiteral("-1,0")},
         "--scroll -1,0: expected"},
        {{render, picture, file, QStringLiteral("--select"), QStringLiteral("1,x")},
         "--select 1,x: expected"},
        {{render, picture, file, QStringLiteral("--select"), QStringLiteral("3")}, "the record ID 3"},
        {{render, picture, file, QStringLiteral("--hover"), QStringLiteral("99")}, "the record ID 99"},
        {{render, picture, file, QStringLiteral("--hover"), QStringLiteral("1,2")},
         "--hover 1,2: expected one"},
        {{render, picture, file, QStringLiteral("--show"), QStringLiteral("Name")}, "--show Name: expected"},
        {{render, picture, file, QStringLiteral("--shine")}, "Unknown option 'shine'"},
        {{render, file, file}, "is the datafile itself"},
    };
    const auto written = std::filesystem::last_write_time(datafile);
    for (const auto& [arguments, text] : cases) {
        EXPECT_EQ(run(arguments), 2) << text;
        EXPECT_TRUE(said.contains(text)) << said.toStdString();
        EXPECT_TRUE(said.startsWith("mirovane: "));
    }
    EXPECT_FALSE(std::filesystem::exists(picture.toStdString()));
    EXPECT_EQ(std::filesystem::last_write_time(datafile), written);
    EXPECT_EQ(run({render, QStringLiteral("--help")}), 0);
    EXPECT_TRUE(printed.contains("PropertiesBackslashDraw"));
}

TEST_F(RenderTest, FilesThatCannotBeReadOrWrittenAreExitThree) {
    const QString render = QStringLiteral("--render");
    EXPECT_EQ(run({render, picture, QString::fromStdString(folder.file("none.mv"))}), 3);
    EXPECT_TRUE(said.contains("none.mv")) << said.toStdString();
    test::writeBytes(folder.file("bad.mv"), std::string(500, 'x'));
    EXPECT_EQ(run({render, picture, QString::fromStdString(folder.file("bad.mv"))}), 3);
    EXPECT_FALSE(said.isEmpty());
    EXPECT_EQ(run({render, QStringLiteral("/nowhere/out.png"), QString::fromStdString(datafile)}), 3);
    EXPECT_TRUE(said.contains("cannot write /nowhere/out.png")) << said.toStdString();
}

TEST_F(RenderTest, AMissingMapIsToldAndTheDevicesAreDrawnAllTheSame) {
    setFloorMap(floor.doc, {"/nowhere/map.bmp", {}});
    ASSERT_TRUE(link.save().saved());
    EXPECT_EQ(render({QStringLiteral("--size"), QStringLiteral("300x200")}), 0);
    EXPECT_TRUE(said.contains("Floor map file /nowhere/map.bmp does not exist!"));
    EXPECT_EQ(test::firstDifference(rendered(), floor.freshFrame()), "");
}

} // namespace

} // namespace mirovane
