#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/SNMPDaemon.h"
#include "tests/support/SmbServer.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>

namespace mirovane::test {
namespace {

constexpr const char* usersKey =
    "HKEY_USERS\\S-1-5-21-1004336348-1177238915-682003330-1001\\Volatile Environment";

/// A device for every action, checked by the real program against a real agent, a real registry, real files
/// and real echoes, all in a network of the test's own. What an answer does to a record is tested elsewhere.
class EveryActionTest : public testing::Test {
protected:
    void SetUp() override {
        if (network.refused())
            GTEST_SKIP() << *network.refused();
        agent = std::make_unique<SNMPDaemon>("", 161);
        if (agent->refused())
            GTEST_SKIP() << *agent->refused();
        registry = std::make_unique<SmbServer>(445);
        if (!registry->whyNot().empty())
            GTEST_SKIP() << registry->whyNot();
        if (cli({"ping", "127.0.0.1"}).status != 0)
            GTEST_SKIP() << "this process may not send echoes";
        ASSERT_TRUE(registry->import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Version\"=\"1.2 beta\"\n\n"));
        ASSERT_TRUE(registry->import("[" + std::string(usersKey) + "]\n\"USERNAME\"=\"anna\"\n\n"));
        writeBytes(folder.config() + "/samba-credentials", readBytes(registry->credentialsFile()));
        chmod((folder.config() + "/samba-credentials").c_str(), 0600);
        mkdir(folder.path("drop").c_str(), 0700);
        writeBytes(folder.path("drop/Report of p.lund.txt"), "");
        writeBytes(folder.path("online.txt"), "lap-1,Room 12,docked\r\n");
        addRules();
    }

    void rule(const std::string& type, const std::string& row,
              const std::vector<std::pair<std::string, std::string>>& values) const {
        Words words{"criteria", file, "--type", type};
        for (const auto& [column, value] : values)
            words.insert(words.end(), {"--set", row, column, value});
        const CliResult set = cli(words);
        ASSERT_EQ(set.status, 0) << set.err;
    }

    void addRules() const {
        rule("Printer", "1", {{"Command", "SNMPGet"}, {"Argument", "127.0.0.1 public 1.3.6.1.2.1.1.5.0"}});
        rule("Laptop", "0",
             {{"Command", "Search in Text File"},
              {"Argument", folder.path("online.txt")},
              {"SearchFor", "^$mvN,.*docked"}});
        rule("Router", "4",
             {{"Command", "Registry"}, {"Argument", R"(\\$mvI\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)"}});
        rule("Phone", "6",
             {{"Command", "Search for File"}, {"Argument", folder.path("drop/*")}, {"SearchFor", "$mvU"}});
        rule("Camera", "7", {{"Command", "Set Value"}, {"Argument", "$mvN at $mvI"}});
        rule("Unknown", "1", {{"Command", "NS Lookup(reverse)"}, {"Argument", "$mvI"}});
    }

    /// The expected fields that the datafile does not hold, by record ID.
    std::string differences(const std::map<int, std::pair<std::string, std::string>>& expected) const {
        std::string text;
        for (const QJsonValue& record : jsonArray(cli({"records", file, "--json"}).out)) {
            const auto field = expected.find(numberOf(record, "RecID"));
            if (numberOf(record, "Type") <= 0 || field == expected.end())
                continue;
            const auto& [name, value] = field->second;
            if (textOf(record, name.c_str()) != value || numberOf(record, "State") != 1)
                text += name + " of " + textOf(record, "Name") + ": \"" + textOf(record, name.c_str()) +
                        "\", State " + std::to_string(numberOf(record, "State")) + "\n";
        }
        return text;
    }

    OwnNetwork network;
    std::unique_ptr<SNMPDaemon> agent;
    std::unique_ptr<SmbServer> registry;
    const CliFolder folder;
    const std::string file = folder.datafile({
        {"Computer", "Name=localhost", "IPAddress=127.0.0.9"}, // 1: ping, look-up, who is logged on
        {"Printer", "Name=new", "IPAddress=127.0.0.1"},        // 2
        {"Laptop", "Name=lap-1"},                              // 3
        {"Router", "Name=rt-1", "IPAddress=127.0.0.1"},        // 4
        {"Phone", "Name=ph-1", "IPAddress=127.0.0.1", "Username=p.lund"}, // 5
        {"Camera", "Name=cam-1", "IPAddress=127.0.0.1"},                  // 6
        {"Unknown", "Name=who", "IPAddress=127.0.0.1"},                   // 7
    });
};

TEST_F(EveryActionTest, AsksTheRealThing) {
    CliProcess station({"--config", folder.config(), "station", file, "--live-stat", "--run-sec", "1"},
                       [this] { setenv("SMB_CONF_PATH", registry->configurationFile().c_str(), 1); });
    std::string wrong = "nothing was saved";
    for (int saves = 1; !wrong.empty(); ++saves) {
        if (!station.waitForOutput("Saved Live Stat changes to data file", saves))
            break;
        wrong = differences({{1, {"Username", "anna"}},
                             {2, {"Name", "\"mirovane-test\""}},
                             {3, {"Name", "lap-1"}},
                             {4, {"MACAddress", "1.2 beta"}},
                             {5, {"Comment", "Report of p.lund.txt"}},
                             {6, {"SlashText", "cam-1 at 127.0.0.1"}},
                             {7, {"Name", "localhost"}}});
    }
    EXPECT_EQ(wrong, "");
    EXPECT_EQ(differences({{1, {"IPAddress", "127.0.0.1"}}}), "");
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
}

} // namespace
} // namespace mirovane::test
