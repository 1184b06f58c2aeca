#include "model/Document.h"
#include "tests/model/DocumentFixture.h"

#include <algorithm>
#include <random>
#include <set>

namespace mirovane {

namespace {

constexpr int deviceCount = 12;
constexpr int stepCount = 600;
constexpr int seedCount = 12;

/// Every value that a user ever enters is another one, so that it can be followed: it must be in the file at
/// the end, or in a log, or somebody who saw it replaced or deleted it.
class Values {
public:
    std::string make() { return "v" + std::to_string(++last_) + "."; }
    void replaced(const std::string& seen) { replaced_.insert(seen); }
    int count() const { return last_; }

    std::vector<std::string> lost(const std::string& fileAndLogs) const {
        std::vector<std::string> list;
        for (int i = 1; i <= last_; ++i) {
            const std::string value = "v" + std::to_string(i) + ".";
            if (!replaced_.contains(value) && fileAndLogs.find(value) == std::string::npos)
                list.push_back(value);
        }
        return list;
    }

private:
    int last_ = 0;
    std::set<std::string> replaced_;
};

struct Station {
    Station(test::FakeClock& clock, const std::string& name)
        : log(clock), doc(files, clock, log, settings, {name, name}) {
        log.addListener([this](const std::string& line, bool) { logged += line + "\n"; });
    }

    PosixFiles files;
    CMessageLog log;
    MemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc;
    std::string logged;
};

constexpr std::array<std::string CHardware::*, 4> fields{&CHardware::Name, &CHardware::Comment,
                                                         &CHardware::IPAddress, &CHardware::ToJack};

class MergeRandomTest : public testing::TestWithParam<unsigned> {
protected:
    MergeRandomTest() : random(GetParam()) {
        Station maker(clock, "maker");
        maker.doc.newDatafile();
        for (int i = 0; i < deviceCount; ++i)
            maker.doc.addDevice(DeviceType::Printer, [&](CHardware& held) { held.Name = values.make(); });
        EXPECT_FALSE(maker.doc.saveAs(path));
        for (const char* name : {"A", "B", "C"}) {
            stations.push_back(std::make_unique<Station>(clock, name));
            EXPECT_FALSE(stations.back()->doc.open(path));
        }
    }

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }

    const CHardware* someDevice(CMirovaneDoc& doc) {
        std::vector<const CHardware*> devices;
        for (std::size_t i = 0; i < doc.size(); ++i) {
            if (doc.at(i).isDevice())
                devices.push_back(&doc.at(i));
        }
        return devices.empty() ? nullptr
                               : devices[static_cast<std::size_t>(below(static_cast<int>(devices.size())))];
    }

    void step() {
        CMirovaneDoc& doc = stations[static_cast<std::size_t>(below(3))]->doc;
        const CHardware* device = someDevice(doc);
        const int what = below(20);
        if (what < 8 && device)
            enter(doc, *device, fields[static_cast<std::size_t>(below(int{fields.size()}))]);
        else if (what < 10)
            doc.addDevice(DeviceType::Printer, [&](CHardware& held) { held.Name = values.make(); });
        else if (what == 10 && device)
            drop(doc, *device);
        else if (what < 13 && device)
            doc.editInBackground(*device, [&](CHardware& held) { held.State = below(3); });
        else if (what < 15)
            reload(doc);
        else if (what < 18)
            save(doc);
        clock.advance(std::chrono::seconds(below(2)));
    }

    void reload(CMirovaneDoc& doc) { EXPECT_FALSE(doc.reload()); }
    void save(CMirovaneDoc& doc) { EXPECT_FALSE(doc.save()); }

    void enter(CMirovaneDoc& doc, const CHardware& device, std::string CHardware::*field) {
        values.replaced(device.*field);
        doc.editByUser(device, [&](CHardware& held) { held.*field = values.make(); });
    }

    void drop(CMirovaneDoc& doc, const CHardware& device) {
        for (const auto field : fields)
            values.replaced(device.*field);
        deleted.insert(device.RecID);
        doc.removeDevices(std::vector<std::int32_t>{device.RecID});
    }

    std::mt19937 random;
    test::TestFolder folder;
    const std::string path = folder.file("floor.mv");
    test::FakeClock clock;
    Values values;
    std::set<std::int32_t> deleted;
    std::vector<std::unique_ptr<Station>> stations;
};

TEST_P(MergeRandomTest, NothingIsLostWithoutALineInALog) {
    for (int i = 0; i < stepCount; ++i)
        step();
    std::string everything;
    for (const auto& station : stations) {
        ASSERT_FALSE(station->doc.save());
        everything += station->logged;
    }
    Station reader(clock, "reader");
    ASSERT_FALSE(reader.doc.open(path));
    std::set<std::int32_t> recIDs;
    std::vector<std::int32_t> original;
    for (std::size_t i = 0; i < reader.doc.size(); ++i) {
        const CHardware& record = reader.doc.at(i);
        if (!record.isDevice())
            continue;
        EXPECT_TRUE(recIDs.insert(record.RecID).second) << record.RecID;
        if (record.RecID <= deviceCount && !deleted.contains(record.RecID))
            original.push_back(record.RecID);
        for (const auto field : fields)
            everything += record.*field + "\n";
    }
    EXPECT_EQ(values.lost(everything), std::vector<std::string>{});
    EXPECT_TRUE(std::is_sorted(original.begin(), original.end()));
    EXPECT_GT(values.count(), stepCount / 4);
}

INSTANTIATE_TEST_SUITE_P(Seeds, MergeRandomTest, testing::Range(1U, 1U + seedCount));

} // namespace

} // namespace mirovane
