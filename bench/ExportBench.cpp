// Exporting the List View of 65,000 devices, against the plain way to put the same bytes into a file.
// usage: ExportBench [ROUNDS]

#include "bench/support/BigFloor.h"
#include "bench/support/PairedRounds.h"
#include "model/rows/ListRows.h"
#include "model/rows/TextExport.h"
#include "platform/files/UnflushedFiles.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace mirovane::bench {

namespace {

constexpr std::int32_t deviceCount = 65'000;

void require(bool ok, const char* what) {
    if (!ok)
        throw std::runtime_error(what);
}

struct Floor {
    CSystemClock clock;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"bench", "bench"}};
    CUnflushedFiles exportFiles;
    ListViewState view;
};

/// The other side: field after field into one string, whose room is known, and one write. No reminder is set
/// here and no comment has a line break, so it knows of neither.
std::string plainText(const CMirovaneDoc& doc) {
    std::string out;
    out.reserve(std::size_t{deviceCount} * 250);
    for (std::size_t i = 0; i < doc.size(); ++i) {
        const CHardware& device = doc.at(i);
        if (!device.isDevice())
            continue;
        const std::time_t time = device.Modified;
        std::tm local{};
        localtime_r(&time, &local);
        std::array<char, 64> date{};
        out.append(date.data(), std::strftime(date.data(), date.size(), "%c", &local)).append("\t");
        if (device.State != 0)
            out.append(device.State == 1 ? "Active" : "Inactive");
        out.append("\t").append(std::to_string(device.Priority)).append("\t\t");
        out.append(device.ToDo).append("\t").append(typeName(device.Type)).append("\t");
        for (const std::string* text :
             {&device.Name, &device.IPAddress, &device.Username, &device.MACAddress, &device.ToJack,
              &device.Comment, &device.SlashText, &device.BackslashText, &device.HorzText})
            out.append(*text).append("\t");
        out.append(device.VertText).append("\r\n");
    }
    return out;
}

void plainExport(const CMirovaneDoc& doc, const std::string& path) {
    const std::string text = plainText(doc);
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    require(fd >= 0 && write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                close(fd) == 0,
            "the plain write");
}

void ourExport(Floor& floor, const std::string& path) {
    const std::string text = exportText(listViewRows(floor.doc, floor.view), {});
    require(!writeExport(floor.exportFiles, path, std::string(), text, lockPatience), "export");
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

void row(Floor& floor, const std::string& folder, const std::string& what, std::size_t rounds) {
    const std::string ours = folder + "/ours.txt";
    const std::string plain = folder + "/plain.txt";
    ourExport(floor, ours);
    plainExport(floor.doc, plain);
    require(contentOf(ours) == contentOf(plain), "both sides must write the same bytes");
    printRow("T3", what,
             measurePaired([&] { ourExport(floor, ours); }, [&] { plainExport(floor.doc, plain); }, rounds),
             1.5);
}

void giveEachItsOwnDate(CMirovaneDoc& doc) {
    for (std::size_t i = 0; i < doc.size(); ++i) {
        const auto stamp = static_cast<TimeStamp>(1'700'000'000 + 61 * i);
        doc.edit(doc.at(i), [stamp](CHardware& record) { record.Modified = stamp; });
    }
}

int run(std::size_t rounds) {
    std::string folder = (std::filesystem::temp_directory_path() / "mirovane-bench-XXXXXX").string();
    require(mkdtemp(folder.data()) != nullptr, "mkdtemp");
    Floor floor;
    fillBigFloor(floor.doc, deviceCount);
    std::printf("%d devices, %zu rounds\n", deviceCount, rounds);
    printHeader();
    row(floor, folder, "export, devices changed at one time", rounds);
    giveEachItsOwnDate(floor.doc);
    row(floor, folder, "export, each device with its own date", rounds);
    std::filesystem::remove_all(folder);
    return 0;
}

} // namespace

} // namespace mirovane::bench

int main(int argc, char** argv) {
    try {
        return mirovane::bench::run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 15);
    } catch (const std::exception& failure) {
        std::cerr << "ExportBench: " << failure.what() << '\n';
        return 1;
    }
}
