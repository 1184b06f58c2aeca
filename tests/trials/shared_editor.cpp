/// A user at a desktop, without the desktop: keeps one datafile open through a station of his own, changes it
/// at random moments and says on standard output what he did:
///
///   TIME try add TOKEN            about to happen; may be on disk when the process dies now
///   TIME ack add TOKEN RECID      the save returned without an error
///   TIME try set NAME FIELD TOKEN / ack set NAME FIELD TOKEN
///   TIME try del TOKEN            / ack del TOKEN
///   TIME log LINE                 a line of the message log
///
/// TIME is the monotonic clock in nanoseconds, which all processes of a computer share. Devices are told
/// apart by their names: record IDs change where two stations took the same one. With a STATE folder, edits
/// that cannot be saved are kept there and acknowledged all the same, and there are a hundred a second.
/// usage: shared_editor FILE PREFIX SEED [STATE]

#include "model/records/FieldNames.h"
#include "platform/WorkerPool.h"
#include "platform/files/AbandonableFiles.h"
#include "platform/files/PosixFiles.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"
#include "station/Station.h"
#include "tests/support/ScriptedProbes.h"
#include "tests/support/StationEdits.h"
#include "tests/support/TestFolder.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <random>

namespace mirovane::test {

namespace {

class NoToAll final : public StationDialogs {
public:
    bool ask(const Question&) override { return false; }
    void fail(const std::string&) override {}
};

void say(const std::string& line) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    std::printf("%lld %s\n",
                static_cast<long long>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()),
                line.c_str());
    std::fflush(stdout);
}

class Teller final : public LogListener {
public:
    void lineLogged(const LogLine& line) override { say("log " + line.shown()); }
};

/// Devices that every process changes and none deletes have names that begin with it.
constexpr std::string_view sharedPrefix = "shared-";

struct Field {
    const char* name;
    std::string CHardware::*member;
};
constexpr Field fields[] = {{"Comment", &CHardware::Comment},
                            {"Username", &CHardware::Username},
                            {"MACAddress", &CHardware::MACAddress},
                            {"SlashText", &CHardware::SlashText}};

class Editor {
public:
    Editor(CStation& station, std::string prefix, unsigned seed, bool keeps)
        : station_(station), prefix_(std::move(prefix)), random_(seed), keeps_(keeps) {
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { editAndGoOn(); });
        timer_.start(1);
    }

private:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    void editAndGoOn() {
        const int dice = upTo(9);
        if (dice < 3)
            add();
        else if (dice < 9 || mine_.empty())
            set();
        else
            deleteOne();
        timer_.start(keeps_ ? upTo(20) : 20 + upTo(150));
    }

    const CHardware* deviceNamed(std::string_view name) const {
        const CMirovaneDoc& document = station_.document();
        for (std::size_t i = 0; i < document.size(); ++i)
            if (document.at(i).isDevice() && document.at(i).Name == name)
                return &document.at(i);
        return nullptr;
    }

    /// Acknowledged is what a user is told: no error, and nothing left to save, or that it is kept.
    bool saved(const SaveReport& report) const {
        return (!report.failed() && !station_.document().modified()) ||
               (keeps_ && station_.unsavedEditsKept());
    }

    void add() {
        const std::string token = prefix_ + "-" + std::to_string(++count_);
        say("try add " + token);
        const auto addOne = [&](CMirovaneDoc& document) {
            document.addDevice(DeviceType::Switch, [&](CHardware& device) { device.Name = token; });
        };
        if (!saved(station_.edit({EditRequest::Kind::Add, "Add a switch", {}}, addOne)))
            return;
        const CHardware* device = deviceNamed(token);
        say("ack add " + token + " " + (device ? std::to_string(device->RecID) : "0"));
        mine_.push_back(token);
    }

    void set() {
        const std::string name = std::string(sharedPrefix) + std::to_string(1 + upTo(19));
        const CHardware* device = deviceNamed(name);
        if (!device)
            return;
        const Field& field = fields[upTo(3)];
        const std::string token = prefix_ + "-" + std::to_string(++count_);
        const std::string what = "set " + name + " " + field.name + " " + token;
        say("try " + what);
        const std::int32_t recID = device->RecID;
        if (saved(updateDevices(station_, std::span(&recID, 1),
                                [&](CHardware& held) { held.*field.member = token; })))
            say("ack " + what);
    }

    void deleteOne() {
        const std::size_t at = static_cast<std::size_t>(upTo(static_cast<int>(mine_.size()) - 1));
        const std::string token = mine_[at];
        mine_.erase(mine_.begin() + static_cast<std::ptrdiff_t>(at));
        const CHardware* device = deviceNamed(token);
        if (!device)
            return;
        say("try del " + token);
        const std::int32_t recID = device->RecID;
        if (saved(deleteDevices(station_, std::span(&recID, 1))))
            say("ack del " + token);
    }

    CStation& station_;
    std::string prefix_;
    std::mt19937 random_;
    QTimer timer_;
    std::vector<std::string> mine_;
    int count_ = 0;
    bool keeps_;
};

int run(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc != 4 && argc != 5) {
        std::fputs("usage: shared_editor FILE PREFIX SEED [STATE]\n", stderr);
        return 2;
    }
    std::signal(SIGTERM, [](int) { QCoreApplication::quit(); });
    const TestFolder config;
    CIniSettingsStore store(config.path());
    CSettings settings(store);
    settings.initialise();
    settings.write("LSAutoStart", 0);
    CSystemClock clock;
    CMessageLog log(clock);
    Teller teller;
    log.addListener(teller);
    CAbandonableFiles files(std::make_shared<CPosixFiles>());
    CQtTimerFactory timers;
    ScriptedProbes probes;
    NoToAll dialogs;
    StationServices services{files, clock, timers, settings, log, dialogs, probes, {"editor", argv[2]}};
    services.stateFolder = argc == 5 ? argv[4] : "";
    CWorkerPool datafileThread(1);
    if (argc == 5) // as a window: whoever edits waits for no share
        services.datafileWorkers = &datafileThread;
    CStation station(std::move(services));
    if (const auto error = station.openDatafile(argv[1])) {
        std::fprintf(stderr, "shared_editor: %s\n", error->sentence.c_str());
        return 3;
    }
    const Editor editor(station, argv[2], static_cast<unsigned>(std::stoul(argv[3])), argc == 5);
    return QCoreApplication::exec();
}

} // namespace

} // namespace mirovane::test

int main(int argc, char** argv) {
    return mirovane::test::run(argc, argv);
}
