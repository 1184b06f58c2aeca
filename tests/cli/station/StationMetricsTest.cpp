#include "cli/station/StationMetrics.h"

#include "platform/process/ProcessRun.h"
#include "tests/station/StationFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class StationMetricsTest : public StationFixture {
protected:
    /// What is in the file when the writing thread has come to its end.
    std::string written(const std::function<void()>& meanwhile = {}, const std::string& target = "m.prom") {
        CStationMetrics metrics(*a.station, a.log, clock, timers);
        metrics.writeTo(folder.file(target));
        if (meanwhile)
            meanwhile();
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        do {
            failed_ = metrics.error();
            std::this_thread::yield();
        } while (failed_ && failed_->sentence.ends_with("does not answer") &&
                 std::chrono::steady_clock::now() < end);
        return readBytes(folder.file(target));
    }

    std::string sample(const std::string& name, const std::string& device) const {
        return name + "{datafile=\"" + path + "\"," + device + "} ";
    }

    std::optional<FileError> failed_;
};

TEST_F(StationMetricsTest, FollowTheDevicesAndSurviveWhatTheyAreCalled) {
    open(a);
    a.doc().addDevice(
        DeviceType::LocationMarker, [](CHardware& marker) { marker.Comment = "Hall 1\r\nold"; });
    a.doc().editInBackground(a.device(1), [](CHardware& device) { device.State = DeviceState::Off; });
    const std::string text = written([this] {
        a.doc().editByUser(a.device(2), [](CHardware& device) {
            device.State = DeviceState::On;
            device.Name = "a\"b\\c\n\xE9";
        });
        a.log.LogTrouble("something");
        pass(60'000);
    });
    EXPECT_THAT(text, HasSubstr(sample("mirovane_device_up", "recid=\"1\",type=\"Printer\",name=\"\",address="
                                                             "\"127.0.0.1\",place=\"Hall 1\"") +
                                "0\n"));
    EXPECT_THAT(text, HasSubstr(sample("mirovane_device_up",
                                       "recid=\"2\",type=\"Printer\",name=\"a\\\"b\\\\c \xC3\xA9\",address="
                                       "\"127.0.0.2\",place=\"Hall 1\"") +
                                "1\n"));
    EXPECT_THAT(text, Not(HasSubstr("_up{datafile=\"" + path + "\",recid=\"3\"")))
        << "never checked: neither up nor down";
    EXPECT_THAT(text, AllOf(HasSubstr("mirovane_log_errors{datafile=\"" + path + "\"} 1\n"),
                            Not(HasSubstr("Location Marker")), EndsWith("\n# EOF\n")));
    const std::string minuteLater = "mirovane_written_timestamp_seconds{datafile=\"" + path + "\"} " +
                                    std::to_string(std::chrono::system_clock::to_time_t(clock.wall())) + "\n";
    EXPECT_THAT(text, HasSubstr(minuteLater)) << "a file that grows old tells of a station that is gone";

    const ProcessResult checked =
        runProcess({{"sh", "-c", "promtool check metrics < " + folder.file("m.prom")},
                    std::chrono::steady_clock::now() + std::chrono::seconds(30),
                    {},
                    {},
                    {},
                    100'000});
    if (checked.exitStatus == 127)
        GTEST_SKIP() << "promtool is not installed";
    EXPECT_EQ(checked.exitStatus, 0) << checked.output << checked.diagnostics;
}

TEST_F(StationMetricsTest, AFileThatCannotBeWrittenIsTold) {
    open(a);
    written({}, "none/m.prom");
    ASSERT_TRUE(failed_);
    EXPECT_THAT(failed_->sentence, AllOf(HasSubstr("none/m.prom"), HasSubstr("No such file")));
    const std::string before = readBytes(path);
    written({}, "floor.mv");
    EXPECT_TRUE(failed_) << "the datafile itself";
    EXPECT_EQ(readBytes(path), before);
}

} // namespace
} // namespace mirovane::test
