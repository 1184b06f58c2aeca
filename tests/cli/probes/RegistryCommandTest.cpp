#include "tests/cli/CliRunner.h"
#include "tests/support/SmbServer.h"

#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string privateFile(const std::string& path, const std::string& text) {
    writeBytes(path, text);
    chmod(path.c_str(), 0600);
    return path;
}

TEST(RegistryCommandTest, ReadsAServersRegistryAndItsUsers) {
    const SmbServer server;
    if (!server.whyNot().empty())
        GTEST_SKIP() << server.whyNot();
    const std::string hive = "HKEY_USERS\\S-1-5-21-1004336348-1177238915-682003330-1001";
    ASSERT_TRUE(server.import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Version\"=\"1.2 beta\"\n\n"));
    const CliFolder folder;
    const auto run = [&](Words words) {
        words.insert(words.begin(), {"--config", folder.config()});
        words.insert(words.end(), {"--smb-port", std::to_string(server.port())});
        return cli(words, [&server] { setenv("SMB_CONF_PATH", server.configurationFile().c_str(), 1); });
    };
    const Words read{"registry", R"(\\127.0.0.1\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)"};
    Words named = read;
    named.insert(named.end(), {"--credentials", server.credentialsFile()});
    const CliResult value = run(named);
    EXPECT_EQ(value.status, 0) << value.err;
    EXPECT_EQ(value.out, "1.2 beta\n");

    mkdir(folder.config().c_str(), 0700);
    privateFile(folder.config() + "/samba-credentials", readBytes(server.credentialsFile()));
    EXPECT_EQ(run(read).out, "1.2 beta\n") << "by the user's own credentials";
    EXPECT_THAT(run({"registry", read[1] + "x"}).err, HasSubstr("no such key or value"));
    const CliResult nobody = run({"loggedon", "127.0.0.1"});
    EXPECT_EQ(nobody.status, 1);
    EXPECT_EQ(nobody.err, "mirovanectl: nobody is logged on to 127.0.0.1\n");
    ASSERT_TRUE(server.import("[" + hive + "\\Volatile Environment]\n\"USERNAME\"=\"anna\"\n\n"));
    EXPECT_EQ(run({"loggedon", R"(\\127.0.0.1)"}).out, "anna\n");
    EXPECT_EQ(run({"loggedon", "127.0.0.1"}).out, "anna\n");
}

TEST(RegistryCommandTest, SaysWhyNothingIsRead) {
    const CliResult missing = cli({"registry", R"(HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.out, IsEmpty());
    EXPECT_THAT(missing.err, HasSubstr("there is no such key or value"));
    const CliResult hive = cli({"registry", R"(\\127.0.0.1\HKLM\SOFTWARE\Vendor\Version)"});
    EXPECT_EQ(hive.status, 1);
    EXPECT_THAT(hive.err, HasSubstr("its hive is not HKEY_LOCAL_MACHINE"));
}

TEST(RegistryCommandTest, AParentThatIgnoredItsChildrenDoesNotHideWhatWasRead) {
    const CliFolder folder;
    writeBytes(folder.path("net"), "#!/bin/sh\nprintf 'Type       = REG_SZ\\nValue      = \"1.2\"\\n'\n");
    chmod(folder.path("net").c_str(), 0700);
    const std::string credentials = privateFile(folder.path("credentials"), "username = a\n");
    const CliResult value = cli(
        {"registry", R"(\\127.0.0.1\HKEY_LOCAL_MACHINE\Key\Value)", "--credentials", credentials}, [&folder] {
            setenv("PATH", (folder.path("") + ":" + getenv("PATH")).c_str(), 1);
            std::signal(SIGCHLD, SIG_IGN);
        });
    EXPECT_EQ(value.out, "1.2\n") << value.err;
}

TEST(RegistryCommandTest, OptionsThatDoNotServe) {
    const CliFolder folder;
    writeBytes(folder.path("open"), "username = root\n");
    chmod(folder.path("open").c_str(), 0644);
    const CliResult open = cli({"loggedon", "127.0.0.1", "--credentials", folder.path("open")});
    EXPECT_EQ(open.status, 3);
    EXPECT_THAT(open.err, HasSubstr("can be read by others; chmod 600 it"));
    EXPECT_EQ(cli({"loggedon", "127.0.0.1", "--credentials", folder.path("none")}).status, 3);
    EXPECT_EQ(cli({"loggedon", "127.0.0.1", "--smb-port", "65536"}).status, 2);
    const CliResult none = cli({"--config", folder.config(), "loggedon", "127.0.0.1"}, [&folder] {
        setenv("KRB5CCNAME", ("FILE:" + folder.path("no-ticket")).c_str(), 1);
    });
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.err,
                HasSubstr("neither a credentials file (" + folder.config() + "/samba-credentials)"));
}

TEST(RegistryCommandTest, AnInterruptEndsTheLookUpWithEverything) {
    if (system("command -v net >/dev/null") != 0)
        GTEST_SKIP() << "Samba's net is not installed";
    SilentServer silent;
    const CliFolder folder;
    const std::string credentials = privateFile(folder.path("credentials"), "username = a\npassword = b\n");
    CliProcess process(
        {"loggedon", "127.0.0.1", "--credentials", credentials, "--smb-port", std::to_string(silent.port())});
    ASSERT_TRUE(silent.waitForClient());
    process.signal(SIGINT);
    EXPECT_EQ(process.finish().status, 128 + SIGINT);
    EXPECT_TRUE(silent.waitForLeaving()) << "Samba's process is left behind";
}

} // namespace
} // namespace mirovane::test
