#include "model/rows/TextExport.h"
#include "tests/station/StationFixture.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>

namespace mirovane::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string exportedLine = "Auto exported to text file";

class StationExportTest : public StationFixture {
protected:
    void wantExport(Site& site) {
        ExportSettings wanted;
        wanted.ExportFilename = target;
        wanted.ExportAuto = true;
        wanted.write(site.settings, path);
    }
    /// The name column, from top to bottom.
    Lines exportedNames() const { return exportedNames(target); }
    static Lines exportedNames(const std::string& file) {
        Lines names;
        std::istringstream in(readBytes(file));
        for (std::string line; std::getline(in, line);) {
            std::istringstream fields(line);
            std::string field;
            for (int i = 0; i < 7; ++i)
                std::getline(fields, field, '\t');
            names.push_back(field);
        }
        return names;
    }

    std::string target = folder.file("devices.txt");
    StationNews news{*a.station};
};

TEST_F(StationExportTest, EveryChangeOfDevicesReachesTheFileOnceTheDatafileWasOpened) {
    open(a);
    wantExport(a);
    updateDevices(*a.station, std::vector{1}, [](CHardware& device) { device.Name = "early"; });
    EXPECT_FALSE(std::filesystem::exists(target)) << "ticked after the datafile was opened";
    a.station->saveDatafileAs(path);
    EXPECT_THAT(a.logged(), Not(Contains(exportedLine))) << "the same datafile";

    a.station->openDatafile(path);
    EXPECT_THAT(a.logged(), Contains(exportedLine));
    EXPECT_EQ(exportedNames(), (Lines{"early", "", ""}));
    news.settled = 0;
    updateDevices(*a.station, std::vector{1}, [](CHardware& device) { device.Name = "later"; });
    EXPECT_EQ(exportedNames(), (Lines{"later", "", ""}));
    deleteDevices(*a.station, std::vector{2, 3});
    EXPECT_EQ(exportedNames(), Lines{"later"});
    rename(a, 1, "by hand");
    a.station->saveDatafile();
    EXPECT_EQ(exportedNames(), Lines{"by hand"});
    EXPECT_EQ(news.settled, 3);
    const Lines lines = a.logged();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), exportedLine), 3);
}

TEST_F(StationExportTest, AReloadAndBackgroundChangesReachTheFile) {
    wantExport(a);
    open(a);
    open(b);
    clock.advance(std::chrono::seconds(2));
    rename(b, 2, "from B");
    b.station->saveDatafile();
    pass(3000);
    EXPECT_THAT(exportedNames(), Contains("from B"));
    EXPECT_THAT(a.logged(),
                ElementsAre("Loading from data file, please wait...", "Loaded from data file", exportedLine));

    a.doc().edit(a.device(3), [](CHardware& device) { device.Name = "Live Stat's"; });
    a.station->changesPending();
    pass(18000);
    EXPECT_THAT(exportedNames(), Contains("Live Stat's"));
    EXPECT_THAT(a.logged(), ElementsAre(exportedLine, "Saved Live Stat changes to data file"));
}

/// The save that releases the datafile takes the last runs' changes along: no periodic save comes after it.
TEST_F(StationExportTest, WhatLiveStatFoundBeforeItWentOffReachesTheFile) {
    wantExport(a);
    open(a);
    a.station->features().liveStat().toggle();
    pass(4000);
    ASSERT_EQ(a.device(3).State, DeviceState::Off);
    EXPECT_THAT(readBytes(target), Not(HasSubstr("Inactive"))) << "nothing was saved yet";
    a.station->features().liveStat().toggle();
    pass(60'000);
    ASSERT_FALSE(a.liveStat().disabling());
    EXPECT_THAT(readBytes(target), HasSubstr("Inactive"));
}

TEST_F(StationExportTest, TheRowsAreThoseOfTheListView) {
    wantExport(a);
    a.station->listExport().listView().column = ListColumn::ID;
    a.station->listExport().listView().greatestFirst = true;
    open(a);
    updateDevices(*a.station, std::vector{1, 2, 3}, [](CHardware& device) {
        device.Name = "d" + std::to_string(device.RecID);
        if (device.RecID == 2)
            device.Type += DeviceType::discoveredOffset;
    });
    EXPECT_EQ(exportedNames(), (Lines{"d3", "d2", "d1"}));
    a.station->listExport().listView().filter.discovered = false;
    a.station->saveDatafile();
    EXPECT_EQ(exportedNames(), (Lines{"d3", "d1"}));
}

TEST_F(StationExportTest, AFailureIsNotInTheLogButCanBeAskedFor) {
    ExportSettings wanted;
    wanted.ExportAuto = true;
    wanted.ExportFilename = "no/such/folder.txt";
    wanted.write(a.settings, path);
    open(a);
    a.station->saveDatafile();
    EXPECT_THAT(a.logged(), ElementsAre("Saved changes to data file", exportedLine));
    EXPECT_TRUE(a.dialogs.failures.empty());
    ASSERT_TRUE(a.station->listExport().error());
    EXPECT_THAT(a.station->listExport().error()->sentence, HasSubstr(folder.file("no/such/folder.txt")));

    const std::string before = readBytes(path);
    wanted.ExportFilename = "floor.mv";
    wanted.write(a.settings, path);
    a.station->settleList();
    EXPECT_EQ(readBytes(path), before) << "never over the datafile";
    EXPECT_THAT(a.station->listExport().error()->sentence, HasSubstr("datafile itself"));

    wanted.ExportFilename = "beside.txt";
    wanted.write(a.settings, path);
    a.station->settleList();
    EXPECT_FALSE(a.station->listExport().error());
    EXPECT_EQ(exportedNames(folder.file("beside.txt")).size(), 3U) << "relative to the datafile";
}

TEST_F(StationExportTest, ADatafileSavedElsewhereHasAnExportOfItsOwn) {
    wantExport(a);
    open(a);
    a.station->saveDatafileAs(folder.file("copy.mv"));
    a.logged();
    rename(a, 1, "in the copy");
    a.station->saveDatafile();
    EXPECT_THAT(a.logged(), ElementsAre("Saved changes to data file"));
    EXPECT_THAT(exportedNames(), Not(Contains("in the copy")));
}

/// A share that takes every call for its files and gives no answer until it is released.
class HangingFiles final : public Files {
public:
    explicit HangingFiles(std::string share) : share_(std::move(share)) {}

    Result<FileIdentity, FileError> status(const std::string& path) override { return real_.status(path); }
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override {
        if (path.starts_with(share_)) {
            ++calls;
            back_.wait();
        }
        return real_.lock(path, access, patience);
    }
    void answer() { released_.set_value(); }

    std::atomic<int> calls = 0;

private:
    const std::string share_;
    CPosixFiles real_;
    std::promise<void> released_;
    std::shared_future<void> back_ = released_.get_future().share();
};

/// The automatic export goes to a share that is dead.
class DeadShareExportTest : public StationExportTest {
protected:
    DeadShareExportTest() {
        wantExport(a);
        station->openDatafile(path);
    }

    std::unique_ptr<CStation> withDeadShare() {
        StationServices services = servicesOfA(a.files);
        services.makeExportFiles = [this] {
            return share;
        };
        return std::make_unique<CStation>(std::move(services));
    }

    std::shared_ptr<HangingFiles> share = std::make_shared<HangingFiles>(target);
    std::unique_ptr<CStation> station = withDeadShare();
};

TEST_F(DeadShareExportTest, HoldsTheStationOnce) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 50; ++i) {
        updateDevices(
            *station, std::vector{1}, [i](CHardware& device) { device.Name = "save " + std::to_string(i); });
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10))
        << "50 saves that each wait take 15 s";
    EXPECT_EQ(share->calls, 1);
    ASSERT_TRUE(station->listExport().error());
    EXPECT_THAT(station->listExport().error()->sentence, HasSubstr("does not answer"));
    share->answer();
    station.reset(); // waits for the last of them
    EXPECT_THAT(exportedNames(), Contains("save 49"));
    EXPECT_EQ(share->calls, 2) << "of those that waited only the latest";
}

TEST_F(DeadShareExportTest, KeepsNobodyFromExportingElsewhere) {
    ExportSettings wanted;
    wanted.ExportFilename = "elsewhere.txt";
    const StationNews seen(*station);
    EXPECT_FALSE(station->exportNow(wanted));
    EXPECT_EQ(exportedNames(folder.file("elsewhere.txt")).size(), 3U);
    EXPECT_EQ(seen.settled, 1) << "the table shows another order than the file";
    EXPECT_EQ(share->calls, 1);
    share->answer();
}

} // namespace
} // namespace mirovane::test
