#include "model/records/SpecialRecords.h"

#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

/// Written out, because other programs read the same datafiles: a value that changes its field is lost.
TEST(SpecialRecordsTest, EachValueIsInTheFieldWhereOtherStationsLookForIt) {
    CHardware map, application, range, owner, version;
    toRecord(FloorMapValues{"floor.bmp", "photos"}, map);
    EXPECT_EQ(map.Name + " " + map.Username, "floor.bmp photos");
    toRecord(ApplicationValues{true, "web", "browse"}, application);
    EXPECT_EQ(application.Name + " " + application.ToJack, "web browse");
    EXPECT_EQ(application.State, 1);
    toRecord(RangeText{"10.0.0.1", "10.0.0.9"}, range);
    EXPECT_EQ(range.Name + " " + range.IPAddress, "10.0.0.1 10.0.0.9");
    toRecord(OwnerValues{true, {"host", "user"}, 7, {"from", "to", "next"}}, owner);
    EXPECT_EQ(owner.Name + " " + owner.Username, "host user");
    EXPECT_EQ(owner.MACAddress + " " + owner.Comment + " " + owner.IPAddress, "from to next");
    EXPECT_EQ(owner.State + owner.Modified, 8);
    toRecord(VersionValues{2008, 7}, version);
    EXPECT_EQ(version.State + version.Modified, 2015);

    EXPECT_EQ(floorMapFromRecord(map), (FloorMapValues{"floor.bmp", "photos"}));
    EXPECT_EQ(applicationFromRecord(application), (ApplicationValues{true, "web", "browse"}));
    EXPECT_EQ(rangeFromRecord(range), (RangeText{"10.0.0.1", "10.0.0.9"}));
    EXPECT_EQ(versionFromRecord(version), (VersionValues{2008, 7}));
    const OwnerValues read = ownerFromRecord(owner);
    EXPECT_EQ(read.station, (StationIdentity{"host", "user"}));
    EXPECT_EQ(read.walk, (DiscoverWalk{"from", "to", "next"}));
    EXPECT_EQ(read.modified, 7);
    EXPECT_TRUE(read.on);
}

TEST(SpecialRecordsTest, OddStatesAreOffTheMenuAndAnyAboveZeroIsOn) {
    CHardware record;
    for (const auto& [state, onMenu, on] :
         {std::tuple{-1, false, false}, {0, false, false}, {2, false, true}}) {
        record.State = state;
        EXPECT_EQ(applicationFromRecord(record).onMenu, onMenu) << state;
        EXPECT_EQ(ownerFromRecord(record).on, on) << state;
    }
}

class FloorMapPathTest : public testing::Test {
protected:
    FloorMapPathTest() {
        std::filesystem::create_directories(folder.file("plans/floor.bmp.old"));
        std::filesystem::create_directory(folder.file("photos"));
        test::writeBytes(folder.file("plans/floor.bmp"), "BM");
        test::writeBytes(folder.file("second.bmp"), "BM");
    }

    test::TestFolder folder;
    const std::string datafile = folder.file("site.mv");
};

TEST_F(FloorMapPathTest, IsFoundFromTheDatafilesFolder) {
    const auto found = [this](const std::string& named) {
        return FloorMapValues{named, named}.findMap(datafile);
    };
    EXPECT_EQ(found("plans/floor.bmp"), folder.file("plans/floor.bmp"));
    EXPECT_EQ(found("plans/../second.bmp"), folder.file("second.bmp"));
    EXPECT_EQ(found(folder.file("plans/floor.bmp")), folder.file("plans/floor.bmp"));
    for (const char* foreign : {"C:\\plans\\second.bmp", "\\\\server\\share\\second.bmp",
                                "d:/plans/second.bmp", "/elsewhere/second.bmp", "gone/second.bmp"})
        EXPECT_EQ(found(foreign), folder.file("second.bmp")) << foreign;
    for (const char* missing :
         {"", "none.bmp", "C:\\plans\\none.bmp", "/elsewhere/none.bmp", "gone/", "photos"})
        EXPECT_EQ(found(missing), missing) << "a message names what the user knows";
    EXPECT_EQ((FloorMapValues{"second.bmp", {}}.findMap("")), "second.bmp")
        << "a new document is nowhere yet";
}

TEST_F(FloorMapPathTest, TheCurrentFolderCountsBeforeAFileOfTheSameName) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const std::string elsewhere = folder.file("plans/site.mv");
    test::writeBytes(folder.file("plans/second.bmp"), "BM");
    const std::string found = FloorMapValues{"./second.bmp", {}}.findMap(elsewhere);
    test::writeBytes(folder.file("photos/second.bmp"), "BM");
    const std::string fromHere = FloorMapValues{"photos/second.bmp", {}}.findMap(elsewhere);
    std::filesystem::current_path(before);
    EXPECT_EQ(found, folder.file("plans/second.bmp"));
    EXPECT_EQ(fromHere, "photos/second.bmp");
}

TEST_F(FloorMapPathTest, ThePhotosAreAFolder) {
    EXPECT_EQ((FloorMapValues{{}, "C:\\photos"}.findPhotos(datafile)), folder.file("photos"));
    EXPECT_EQ((FloorMapValues{{}, "second.bmp"}.findPhotos(datafile)), "second.bmp");
}

} // namespace
} // namespace mirovane
