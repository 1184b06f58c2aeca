#include "cli/station/StationOptionTable.h"
#include "cli/station/StationSettings.h"
#include "platform/process/ServiceManager.h"
#include "tests/cli/CliRunner.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;

class StationOptionsTest : public testing::Test {
protected:
    Result<CStationConfiguration::Read, SettingsTrouble> read(const std::string& settings,
                                                              Words words = {}) const {
        writeBytes(conf_, settings);
        words.insert(words.end(), {"--settings", conf_});
        return CStationConfiguration(parseArguments(words, stationOptions).value()).read();
    }

    const CliFolder folder_;
    const std::string conf_ = folder_.path("site.conf");
};

TEST_F(StationOptionsTest, TheFileSaysHowToRunAndTheCommandLineCounts) {
    const auto both = read("\xEF\xBB\xBF# a site\r\n"
                           "datafile = /srv/a=b.mv\r\n"
                           "\n"
                           "live-stat=yes\ndiscover=no\nrun-sec=7\nper-run=9\n"
                           "export=list.txt\ndelimiter=\" | \"\nheader=on\nlog=notice",
                           {"/srv/other.mv", "--run-sec", "5", "--discover"});
    ASSERT_TRUE(both) << both.error().sentence;
    const StationOptions& options = both.value().options;
    EXPECT_EQ(options.request.path, "/srv/other.mv");
    EXPECT_TRUE(options.request.liveStat);
    EXPECT_TRUE(options.request.discover);
    EXPECT_EQ(options.runSec, 5);
    EXPECT_EQ(options.perRun, 9);
    EXPECT_EQ(options.log, LogWeight::Notice);
    EXPECT_EQ(read("datafile = /srv/a=b.mv").value().options.request.path, "/srv/a=b.mv");

    // What is said for this run stays out of the user's own settings, and goes when it is said no more.
    CStationSettings settings(folder_.config());
    settings.take(options);
    ExportSettings seen;
    seen.read(settings.settings(), "/srv/other.mv");
    EXPECT_EQ(seen, *options.textExport);
    EXPECT_EQ(seen.format().delimiter, " | ");
    EXPECT_EQ(settings.liveStat().LSRunSec, 5);
    settings.take(read("datafile=/srv/other.mv").value().options);
    EXPECT_FALSE(readExportAuto(settings.settings(), "/srv/other.mv"));
    EXPECT_EQ(settings.liveStat().LSRunSec, 3);
}

TEST_F(StationOptionsTest, AMistakeIsNamedByFileLineAndKey) {
    const struct {
        std::string settings;
        std::string why;
    } cases[] = {
        {"datafile=/a\nrun-secs=3", "site.conf line 2: there is no key \"run-secs\": the keys are datafile,"},
        {"datafile=/a\n\nrun-sec = soon",
         "site.conf line 3, key run-sec: \"soon\" is not a number from 1 to 86400"},
        {"datafile=/a\nper-run=0", "line 2, key per-run: \"0\" is not a number from 1"},
        {"datafile=/a\nsmb-port=99999", "line 2, key smb-port: \"99999\" is not a number from 1 to 65535"},
        {"datafile=/a\nlive-stat=maybe", "line 2, key live-stat: \"maybe\" is neither yes nor no"},
        {"datafile=/a\nlive-stat=no\nlive-stat=yes", "line 3, key live-stat: it is set already, see "},
        {"datafile=/a\nexport=", "line 2, key export: it needs OUT"},
        {"datafile=/a\nheader=yes", "line 2, key header: there is no export without --export"},
        {"datafile=/a\nlog=loud", "line 2, key log: \"loud\" is none of debug, info, notice, err"},
        {"datafile=floor.mv", "line 1, key datafile: \"floor.mv\" does not begin at the root"},
        {"datafile=/a\nmetrics=m.prom", "line 2, key metrics: \"m.prom\" does not begin at the root"},
        {"datafile=/a\nnow=3", "there is no key \"now\""},
        {"live-stat", "site.conf line 1: there is no = in it"},
        {"live-stat=yes", "site.conf: no datafile is named: write datafile="},
    };
    for (const auto& wrong : cases) {
        const auto result = read(wrong.settings);
        ASSERT_FALSE(result) << wrong.settings;
        EXPECT_THAT(result.error().sentence, HasSubstr(wrong.why));
        EXPECT_EQ(result.error().status, ExitStatus::Usage);
    }
}

TEST_F(StationOptionsTest, SettingsThatCannotBeReadEndTheCommand) {
    const CliResult missing = cli({"station", "--settings", folder_.path("none.conf")});
    EXPECT_EQ(missing.status, 3);
    EXPECT_THAT(missing.err, HasSubstr("cannot read the settings"));
    const CliResult folder = cli({"station", "--settings", folder_.config()});
    EXPECT_EQ(folder.status, 3);
    EXPECT_THAT(folder.err, HasSubstr("Is a directory"));
}

TEST(ServiceManagerTest, IsTakenFromTheEnvironmentOnce) {
    setenv("NOTIFY_SOCKET", "@mirovane-nobody", 1);
    setenv("WATCHDOG_USEC", "2000000", 1);
    setenv("WATCHDOG_PID", std::to_string(getpid() + 1).c_str(), 1);
    const CServiceManager manager = CServiceManager::fromEnvironment();
    EXPECT_TRUE(manager.listens());
    EXPECT_FALSE(manager.watchdog()) << "meant for another process";
    EXPECT_TRUE(manager.tell("READY=1")) << "nobody is there, and trying again would not help";
    EXPECT_FALSE(CServiceManager::fromEnvironment().listens()) << "a child must not speak for the service";
    setenv("NOTIFY_SOCKET", "relative", 1);
    EXPECT_FALSE(CServiceManager::fromEnvironment().listens());
}

} // namespace
} // namespace mirovane::test
