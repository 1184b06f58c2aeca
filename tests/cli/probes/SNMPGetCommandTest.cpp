#include "cli/probes/SNMPGetCommand.h"

#include "tests/cli/CliRunner.h"
#include "tests/support/SNMPDaemon.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>

namespace mirovane::test {
namespace {

const std::string upTime = "1.3.6.1.2.1.1.3.0";
const std::string name = "1.3.6.1.2.1.1.5.0";

std::string at(const SNMPDaemon& daemon) {
    return "127.0.0.1:" + std::to_string(daemon.port());
}

TEST(SnmpGetCommandTest, PrintsValuesInOrderAndSaysWhatHasNone) {
    const SNMPDaemon daemon("override 1.3.6.1.4.1.99999.1.0 octet_str \"two\nlines\"\n"
                            "override 1.3.6.1.4.1.99999.2.0 integer -5\n");
    if (daemon.refused())
        GTEST_SKIP() << *daemon.refused();
    const CliResult all = cli({"snmpget", at(daemon), "public", "1.3.6.1.4.1.99999.2.0", name, name});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.out, "-5\n\"mirovane-test\"\n\"mirovane-test\"\n");
    EXPECT_EQ(all.err, "");

    const CliResult some = cli({"snmpget", at(daemon), "public", "1.3.6.1.4.1.99999.77.0", name});
    EXPECT_EQ(some.status, 1);
    EXPECT_EQ(some.out, "\"mirovane-test\"\n");
    EXPECT_EQ(some.err, "mirovanectl: cannot get 1.3.6.1.4.1.99999.77.0 from " + at(daemon) +
                            ": error status 2 (no such name)\n");

    const CliResult silent = cli({"snmpget", at(daemon), "wrong", name, upTime});
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.out, "");
    EXPECT_THAT(silent.err,
                testing::HasSubstr(upTime + " from " + at(daemon) + ": no answer within 1000 ms"));
}

TEST(SnmpGetCommandTest, WrongWordsAreUsageErrors) {
    const Words wrong[] = {{"snmpget", "127.0.0.1", "public"},
                           {"snmpget", "127.0.0.1:0", "public", name},
                           {"snmpget", "127.0.0.1:65536", "public", name},
                           {"snmpget", "[::1", "public", name},
                           {"snmpget", ":161", "public", name},
                           {"snmpget", "127.0.0.1", "public", name, "sysName.0"}};
    for (const Words& words : wrong) {
        const CliResult result = cli(words);
        EXPECT_EQ(result.status, 2) << words.back();
        EXPECT_EQ(result.out, "");
    }
}

TEST(SnmpGetCommandTest, HostsWithPorts) {
    EXPECT_EQ(parseHostAndPort("switch-1")->port, 0U);
    EXPECT_EQ(parseHostAndPort("switch-1:1161")->port, 1161U);
    EXPECT_EQ(parseHostAndPort("::1")->host, "::1");
    EXPECT_EQ(parseHostAndPort("[::1]:1161")->host, "::1");
    EXPECT_EQ(parseHostAndPort("[::1]:1161")->port, 1161U);
    EXPECT_EQ(parseHostAndPort("[::1]")->host, "::1");
    EXPECT_FALSE(parseHostAndPort("[::1]1161"));
}

/// The codec's own settings files, wherever they may lie, are never looked at.
TEST(SnmpGetCommandTest, ReadsNoSettingsOfTheLibrary) {
    const SNMPDaemon daemon;
    if (daemon.refused())
        GTEST_SKIP() << *daemon.refused();
    const TestFolder hostile;
    for (const char* file : {"snmp.conf", "snmp.local.conf", "snmpapp.conf", "HOSTILE-MIB.txt"})
        writeBytes(hostile.file(file), "doDebugging 1\ndefVersion 3\nthis is no setting\n");
    const CDescriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    ASSERT_GE(::inotify_add_watch(watch.get(), hostile.path().c_str(), IN_OPEN | IN_ACCESS | IN_CREATE), 0);
    const CliResult result = cli({"snmpget", at(daemon), "public", name}, [&] {
        for (const char* variable :
             {"HOME", "SNMPCONFPATH", "SNMP_PERSISTENT_DIR", "MIBDIRS", "XDG_CONFIG_HOME"})
            ::setenv(variable, hostile.path().c_str(), 1);
        ::setenv("MIBS", "ALL", 1);
        ::setenv("MIBFILES", hostile.file("HOSTILE-MIB.txt").c_str(), 1);
    });
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "\"mirovane-test\"\n");
    EXPECT_EQ(result.err, "");
    std::string events(4096, '\0');
    EXPECT_EQ(::read(watch.get(), events.data(), events.size()), -1) << "something was opened or made";
    EXPECT_EQ(errno, EAGAIN);
}

} // namespace
} // namespace mirovane::test
