// F4: from starting the process to the end of the first painted frame, with 65,000 records, against a process
// that does the least that any such program must: an empty Qt window, a plain decoder, a plain painter. Whole
// processes in turn, without a display (the offscreen platform), so that linking, the toolkit's own start and
// the pages of a fresh process are counted on both sides.

#include "bench/support/PairedRounds.h"
#include "bench/support/PlainFloor.h"
#include "model/format/Datafile.h"
#include "model/records/Hardware.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/Desktop.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QImage>
#include <QMainWindow>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <unistd.h>

namespace {

using namespace mirovane;

constexpr int deviceCount = 64'800; // with the shared records just below 65,000
constexpr QSize mapSize(1680, 1050);

/// Devices all over a site of many rooms; about a thousand of them lie in the part that the window shows
/// first.
CHardware deviceAt(int number) {
    CHardware device;
    device.Type = number % 12 + 1;
    device.State = number % 3;
    device.RecID = number + 1;
    device.Position = {number % 300 * 40, number / 300 * 40};
    const std::string digits = std::to_string(number);
    device.Name = "workstation-" + digits + ".example.test";
    device.IPAddress = "127." + std::to_string(number / 65536) + '.' + std::to_string(number / 256 % 256) +
                       '.' + std::to_string(number % 256);
    device.Username = "user" + digits;
    device.MACAddress = "00-16-3E-12-34-56";
    device.ToJack = "J-" + digits;
    device.Comment = "Room " + digits + ", second desk at the window";
    return device;
}

std::string makeSite(const QDir& folder) {
    QImage map(mapSize, QImage::Format_RGB32);
    map.fill(Qt::white);
    map.save(folder.filePath(QStringLiteral("map.bmp")));
    Datafile::RecordList records;
    const auto add = [&records](CHardware record) {
        records.push_back(std::make_unique<CHardware>(std::move(record)));
    };
    CHardware version;
    version.Type = SpecialType::VersionRecord;
    version.State = Datafile::currentVersion;
    add(version);
    CHardware floorMap;
    floorMap.Type = SpecialType::FloorMapRecord;
    floorMap.Name = "map.bmp";
    add(floorMap);
    for (int i = 0; i < deviceCount; ++i)
        add(deviceAt(i));
    const std::string path = folder.filePath(QStringLiteral("site.mv")).toStdString();
    std::ofstream(path, std::ios::binary) << Datafile::encode(records);
    return path;
}

/// Ends the process, without tidying up, as soon as a frame of `floor` was painted after which `complete`
/// holds: our window reads its map on a thread of its own, and a frame without the map could not be compared
/// with the other side's.
class FirstFrame : public QObject {
public:
    FirstFrame(QWidget* floor, std::function<bool()> complete)
        : floor_(floor), complete_(std::move(complete)) {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == floor_ && event->type() == QEvent::Paint && !painted_) {
            painted_ = true;
            look();
        }
        return false;
    }

private:
    void look() {
        QTimer::singleShot(
            0, this,
            [this] {
                if (complete_())
                    ::_exit(0);
                look();
            });
    }

    QWidget* floor_;
    std::function<bool()> complete_;
    bool painted_ = false;
};

int startOurs(const std::string& site, const std::string& config) {
    CDesktop desktop({config, QStringLiteral("bench")});
    const auto* floor = qobject_cast<CMirovaneView*>(desktop.frame().centralWidget());
    const FirstFrame watch(floor->viewport(), [floor] { return floor->settled(); });
    desktop.start(site);
    return QApplication::exec();
}

int startPlain(const std::string& site) {
    const std::vector<bench::PlainRecord> records = bench::readPlainly(site);
    QMainWindow window;
    auto* floor = new bench::PlainFloor(
        records, QFileInfo(QString::fromStdString(site)).dir().filePath(QStringLiteral("map.bmp")));
    window.setCentralWidget(floor);
    window.resize(1280, 860);
    const FirstFrame watch(floor, [] { return true; });
    window.show();
    return QApplication::exec();
}

void runSelf(const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (!process.waitForFinished(60'000) || process.exitCode() != 0) {
        std::fprintf(stderr, "StartBench: a measured process failed\n");
        std::exit(1);
    }
}

int measure() {
    const QTemporaryDir folder;
    const QString site = QString::fromStdString(makeSite(QDir(folder.path())));
    const QString config = folder.filePath(QStringLiteral("config"));
    QSettings(config + QStringLiteral("/mirovane.ini"), QSettings::IniFormat)
        .setValue(QStringLiteral("Settings/LSAutoStart"),
                  0); // what is measured is the start, not the network
    const auto ours = [&] {
        runSelf({QStringLiteral("--ours"), site, config});
    };
    const auto plain = [&] {
        runSelf({QStringLiteral("--plain"), site});
    };
    bench::printHeader();
    bench::printRow("F4", "start with 65,000 records to the first frame",
                    bench::measurePaired(ours, plain, 11), 1.5);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--ours"))
        return startOurs(arguments.value(2).toStdString(), arguments.value(3).toStdString());
    if (arguments.value(1) == QStringLiteral("--plain"))
        return startPlain(arguments.value(2).toStdString());
    return measure();
}
