// Makes the demo's datafile: `make_demo devices.csv office.mv`. The same table always gives the same bytes.

#include "DeviceTable.h"
#include "model/CriteriaEdit.h"
#include "model/FloorMap.h"
#include "model/datafile/DatafileLink.h"
#include "platform/files/PosixFiles.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

using namespace mirovane;

/// Stands still, so that every run stamps the records alike.
class FixedClock final : public Clock {
public:
    std::chrono::system_clock::time_point wall() const override {
        return std::chrono::sys_days(std::chrono::year(2026) / 1 / 5) + std::chrono::hours(8);
    }
    std::chrono::steady_clock::time_point monotonic() const override { return {}; }
};

/// By default computers and laptops are pinged by their names, and their address and user are looked up by
/// name. The names of this office are made up: no name server shall be asked for them.
void askNoNameServer(CMirovaneDoc& document) {
    for (const std::int32_t type : {DeviceType::Computer, DeviceType::Laptop}) {
        setCriteria(document, type, 0, CriteriaColumn::Argument, "$mvI");
        for (const int row : {2, 3}) {
            setCriteria(document, type, row, CriteriaColumn::Command, std::string(Action::DoNothing));
            setCriteria(document, type, row, CriteriaColumn::Argument, "");
        }
    }
}

/// The bitmap is named without a folder: it lies beside the datafile wherever that is copied.
void addFloorMap(CMirovaneDoc& document) {
    setFloorMap(document, {"office.bmp", {}});
}

void fill(CMirovaneDoc& document, const std::vector<CHardware>& devices) {
    askNoNameServer(document);
    addFloorMap(document);
    for (CHardware device : devices) {
        device.RecID = document.nextRecordID();
        device.Modified = document.now();
        document.append(std::move(device));
    }
}

Result<std::vector<CHardware>, std::string> readTable(const char* path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::string("cannot read it");
    return demo::readDeviceTable(std::string(std::istreambuf_iterator<char>(file), {}));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 || argv[1][0] == '-') {
        std::fprintf(stderr, "usage: make_demo TABLE.csv DATAFILE.mv\n");
        return 2;
    }
    const auto devices = readTable(argv[1]);
    if (!devices) {
        std::fprintf(stderr, "make_demo: %s: %s\n", argv[1], devices.error().c_str());
        return 1;
    }
    CPosixFiles files;
    const FixedClock clock;
    CMessageLog log(clock);
    CMirovaneDoc document(clock, log, StationIdentity{});
    CDatafileLink link(document, files, log);
    link.newDatafile();
    fill(document, devices.value());
    if (const SaveReport report = link.saveAs(argv[2]); report.failed()) {
        std::fprintf(stderr, "make_demo: %s\n", report.error->sentence.c_str());
        return 1;
    }
    return 0;
}
