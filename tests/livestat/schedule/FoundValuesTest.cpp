#include "livestat/schedule/FoundValues.h"

#include "model/records/Criteria.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

TEST(FoundValuesTest, OnlyWhatLiveStatDidNotFindItselfIsNamed) {
    CFoundValues found;
    CHardware device;
    device.Type = DeviceType::Computer;
    device.RecID = 7;
    device.Name = "pc-77";
    device.IPAddress = "127.0.0.7";
    const auto step = [&](int row, const std::string& value) {
        CHardware after = device;
        after.*criteriaTargetField(row) = value;
        auto line = found.replace(device, after, row);
        device = after;
        return line.value_or("");
    };
    EXPECT_EQ(step(2, ""), "Computer pc-77: IP Address emptied, was 127.0.0.7");
    EXPECT_EQ(step(3, "ann"), "") << "there was nothing";
    EXPECT_EQ(step(3, "bob"), "") << "found by Live Stat";
    device.Username = "typed";
    EXPECT_EQ(step(3, "ann"), "Computer pc-77: Username is now ann, was typed");
    EXPECT_EQ(step(3, ""), "");
    device.Username = "ann"; // typed again
    EXPECT_NE(step(3, "bob"), "");
    EXPECT_EQ(step(1, "pc-78"), "Computer pc-77: Name is now pc-78, was pc-77");
}

} // namespace
} // namespace mirovane
