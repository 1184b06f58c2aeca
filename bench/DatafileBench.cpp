// Loading, saving and growing a datafile of 65,000 devices, each against the plain way to do the same.
// usage: DatafileBench [ROUNDS]

#include "bench/support/BigFloor.h"
#include "bench/support/PairedRounds.h"
#include "bench/support/PlainDatafile.h"
#include "model/datafile/DatafileLink.h"
#include "platform/files/PosixFiles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <sys/wait.h>

namespace mirovane::bench {

namespace {

constexpr std::int32_t deviceCount = 65'000;

/// A document with all that it needs around it.
struct Floor {
    CPosixFiles files;
    CSystemClock clock;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"bench", "bench"}};
    CDatafileLink link{doc, files, log};
};

void require(bool ok, const char* what) {
    if (!ok)
        throw std::runtime_error(what);
}

double kilobytes(const char* field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(field, 0) == 0)
            return std::strtod(line.c_str() + std::char_traits<char>::length(field) + 1, nullptr);
    throw std::runtime_error("no memory figures in /proc");
}

/// Runs `work` in a process of its own and returns what it returns.
double inChild(const std::function<double()>& work) {
    int ends[2] = {};
    require(pipe(ends) == 0, "pipe");
    const pid_t child = fork();
    require(child >= 0, "fork");
    if (child == 0) {
        const double value = work();
        _exit(write(ends[1], &value, sizeof value) == sizeof value ? 0 : 1);
    }
    close(ends[1]);
    double value = 0;
    const ssize_t got = read(ends[0], &value, sizeof value);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    require(got == sizeof value && status == 0, "a measuring process failed");
    return value;
}

/// Megabytes that the resident memory grew by at its peak while `load` ran.
double peakOf(const std::function<void()>& load) {
    return inChild([&load] {
        std::ofstream("/proc/self/clear_refs") << "5";
        const double before = kilobytes("VmHWM");
        load();
        return (kilobytes("VmHWM") - before) / 1024;
    });
}

/// Megabytes that stay once the document is loaded.
double documentSize(const std::string& path) {
    return inChild([&path] {
        const auto floor = std::make_unique<Floor>();
        const auto inUse = [] {
            const struct mallinfo2 info = mallinfo2();
            return static_cast<double>(info.uordblks + info.hblkhd) / 1024 / 1024;
        };
        const double before = inUse();
        require(!floor->link.open(path), "open");
        return inUse() - before;
    });
}

void memoryRows(const std::string& path, std::size_t rounds) {
    const double fileSize = static_cast<double>(std::filesystem::file_size(path)) / 1024 / 1024;
    const auto ours = [&path] {
        return peakOf([&path] {
            Floor* floor = new Floor; // kept to the end of the process
            require(!floor->link.open(path), "open");
        });
    };
    const auto other = [&path] {
        return peakOf([&path] {
            auto* records = new std::vector<PlainRecord>(decodePlain(readPlainFile(path)));
            require(records->size() > 1, "decode");
        });
    };
    printRow("F3", "peak memory of load", measurePaired(ours, other, rounds), 1.3, "MB");
    printRow("-", "loaded document : its file",
             measurePaired([&path] { return documentSize(path); }, [fileSize] { return fileSize; }, rounds),
             2.6, "MB");
}

void loadRows(const std::string& path, std::size_t rounds) {
    const auto ours = [&path] {
        auto floor = std::make_unique<Floor>();
        return millisecondsOf([&] { require(!floor->link.open(path), "open"); });
    };
    const auto other = [&path] {
        std::vector<PlainRecord> records;
        return millisecondsOf([&] { records = decodePlain(readPlainFile(path)); });
    };
    // A process of its own for each, as at program start: most of that time the kernel hands out memory.
    printRow("F1", "load at program start",
             measurePaired([&] { return inChild(ours); }, [&] { return inChild(other); }, rounds), 1.25);
    printRow("F1", "load into memory that was used before", measurePaired(ours, other, rounds), 1.25);
}

void saveRow(Floor& floor, const std::string& plainPath, std::size_t rounds) {
    const std::vector<PlainRecord> records = decodePlain(readPlainFile(floor.link.path()));
    require(encodePlain(records) ==
                Datafile::encode(Datafile::decode(readPlainFile(floor.link.path())).value().records),
            "both sides must write the same bytes");
    const auto ours = [&floor] {
        require(floor.link.save().saved(), "save");
    };
    const auto other = [&] {
        savePlain(plainPath, records);
    };
    printRow("F2", "crash-safe save", measurePaired(ours, other, rounds), 1.3);
}

void addRow(Floor& floor, std::size_t rounds) {
    std::int64_t sum = 0;
    const auto ours = [&floor] {
        require(floor.doc.addDevice(DeviceType::Computer) != nullptr, "add");
    };
    const auto other = [&floor, &sum] {
        for (std::size_t i = 0; i < floor.doc.size(); ++i)
            sum += floor.doc.at(i).RecID;
    };
    printRow("T4", "add one device : one pass over the list", measurePaired(ours, other, rounds), 2);
    require(sum > 0, "the pass was left out");
}

int run(std::size_t rounds) {
    std::string folder = (std::filesystem::temp_directory_path() / "mirovane-bench-XXXXXX").string();
    require(mkdtemp(folder.data()) != nullptr, "mkdtemp");
    const std::string path = folder + "/floor.mv";
    inChild([&path] {
        Floor floor;
        fillBigFloor(floor.doc, deviceCount);
        require(floor.link.saveAs(path).saved(), "save");
        return 1.0;
    });
    std::printf("%d devices, %.1f bytes each, %zu rounds\n", deviceCount,
                static_cast<double>(std::filesystem::file_size(path)) / deviceCount, rounds);
    printHeader();
    memoryRows(path, rounds);
    loadRows(path, rounds);
    {
        Floor floor;
        require(!floor.link.open(path), "open");
        saveRow(floor, folder + "/plain.mv", rounds);
        addRow(floor, rounds);
    }
    std::filesystem::remove_all(folder);
    return 0;
}

} // namespace

} // namespace mirovane::bench

int main(int argc, char** argv) {
    try {
        return mirovane::bench::run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 15);
    } catch (const std::exception& failure) {
        std::cerr << "DatafileBench: " << failure.what() << '\n';
        return 1;
    }
}
