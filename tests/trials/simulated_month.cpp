#include "cli/station/StationMetrics.h"
#include "model/rows/TextExport.h"
#include "tests/station/StationFixture.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

// A month of one station on a simulated clock: Live Stat checks devices that go On and Off, another station
// saves every hour, metrics and export are written. What it holds after the first days it must hold at the
// end: memory and handles. usage: simulated_month [DAYS]

namespace mirovane::test {
namespace {

constexpr int deviceCount = 40;
constexpr std::chrono::minutes step{10};
constexpr long writing = 3; ///< handles that the writing thread may have at this moment

long residentKib() {
    std::ifstream file("/proc/self/statm");
    long size = 0;
    long resident = 0;
    file >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

long handles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

class Month : public StationFixture {
public:
    /// False: something grew.
    bool run(int days) {
        prepare();
        CStationMetrics metrics(*a.station, a.log, clock, timers);
        metrics.writeTo(folder.file("m.prom"));
        std::printf("%5s %9s %9s %8s %9s\n", "day", "loops", "checks", "memory", "handles");
        long memoryAfterStart = 0;
        long handlesAfterStart = 0;
        const int settled = std::max(1, days / 6); // the allocator and the log of 400 lines have filled
        for (int day = 1; day <= days; ++day) {
            oneDay(day);
            if (day == settled) {
                memoryAfterStart = residentKib();
                handlesAfterStart = handles();
            }
            steps_ += a.probes.forgetPings();
            if (day <= 2 || day == settled || day % 5 == 0 || day == days)
                std::printf("%5d %9d %9zu %5ld K %9ld\n", day, a.liveStat().loops(), steps_, residentKib(),
                            handles());
            a.logged();
            b.logged();
        }
        const bool ran = a.liveStat().enabled() && a.liveStat().loops() > days;
        const bool grew = residentKib() > memoryAfterStart + memoryAfterStart / 50 + 512 ||
                          handles() > handlesAfterStart + writing;
        std::printf("%s\n", !ran ? "FAULT: Live Stat did not run" : grew ? "FAULT: it grew" : "nothing grew");
        return ran && !grew;
    }

private:
    void TestBody() override {}

    void prepare() {
        Site maker(clock, timers, {"maker", "m"}, false);
        maker.station->openDatafile(path);
        for (int i = 4; i <= deviceCount; ++i)
            maker.doc().addDevice(DeviceType::Switch, [i](CHardware& device) {
                device.IPAddress = "127.0.0." + std::to_string(i);
            });
        maker.station->saveDatafile();
        for (int i = 1; i <= deviceCount; ++i)
            a.probes.answer("127.0.0." + std::to_string(i));
        open(a);
        open(b);
        LiveStatSettings settings = LiveStatSettings::of(a.settings);
        settings.LSRunSec = 60;
        settings.LSConfirmOff = 0;
        a.station->features().liveStat().setSettings(settings);
        ExportSettings exported;
        exported.ExportAuto = true;
        exported.ExportFilename = folder.file("list.txt");
        exported.write(a.settings, path);
        a.station->listExport().takeDatafile();
        a.station->features().liveStat().toggle();
    }

    void oneDay(int day) {
        constexpr int stepsADay = 24 * 6;
        for (int i = 0; i < stepsADay; ++i) {
            const bool out = i % 12 < 2; // every two hours, for twenty minutes
            a.probes.answer("127.0.0.1", !out);
            a.probes.answer("127.0.0.7", !out);
            if (i % 6 == 0) {
                rename(b, 2, "day " + std::to_string(day) + " hour " + std::to_string(i / 6));
                b.station->saveDatafile();
            }
            pass(static_cast<int>(std::chrono::milliseconds(step).count()));
        }
    }

    std::size_t steps_ = 0;
};

} // namespace
} // namespace mirovane::test

int main(int argc, char** argv) {
    const int days = argc > 1 ? std::atoi(argv[1]) : 30;
    return mirovane::test::Month().run(days) ? 0 : 1;
}
