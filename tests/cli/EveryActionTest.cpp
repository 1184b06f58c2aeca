#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/SmbServer.h"
#include "tests/support/SnmpDaemon.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <sys/stat.h>

namespace mirovane::test {
namespace {

using testing::Contains;
using testing::Pair;

constexpr const char* usersKey =
    "HKEY_USERS\\S-1-5-21-1004336348-1177238915-682003330-1001\\Volatile Environment";

/// One floor with a device of every type whose rules use every action, polled by the real program against a
/// real agent, a real registry, real files and real echoes, all in a network of the test's own.
class EveryAction : public testing::Test {
protected:
    void SetUp() override {
        if (network.refused())
            GTEST_SKIP() << *network.refused();
        agent = std::make_unique<SnmpDaemon>("", 161);
        if (agent->refused())
            GTEST_SKIP() << *agent->refused();
        registry = std::make_unique<SmbServer>(445);
        if (!registry->whyNot().empty())
            GTEST_SKIP() << registry->whyNot();
        if (cli({"ping", "127.0.0.1"}).status != 0)
            GTEST_SKIP() << "this process may not send echoes";
        ASSERT_TRUE(registry->import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Version\"=\"1.2 beta\"\n\n"));
        ASSERT_TRUE(registry->import("[" + std::string(usersKey) + "]\n\"USERNAME\"=\"anna\"\n\n"));
        mkdir(folder.config().c_str(), 0700);
        writeBytes(folder.config() + "/samba-credentials", readBytes(registry->credentialsFile()));
        chmod((folder.config() + "/samba-credentials").c_str(), 0600);
        mkdir(folder.path("drop").c_str(), 0700);
        writeBytes(folder.path("drop/Report of p.lund.txt"), "");
        writeOnline("lap-1,Room 12,docked\r\nlap-2,Room 14,away\r\n");
        addRules();
    }

    void writeOnline(const std::string& text) const { writeBytes(folder.path("online.txt"), text); }

    void rule(const std::string& type, const std::string& row,
              const std::vector<std::pair<std::string, std::string>>& values) const {
        Words words{"criteria", file, "--type", type};
        for (const auto& [column, value] : values)
            words.insert(words.end(), {"--set", row, column, value});
        const CliResult set = cli(words);
        ASSERT_EQ(set.status, 0) << set.err;
    }

    /// An agent's text comes in double quotes.
    void addRules() const {
        const std::string sysName = "127.0.0.1 public 1.3.6.1.2.1.1.5.0";
        const std::string version = R"(\\$mvI\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)";
        const std::string online = folder.path("online.txt");
        rule("Printer", "1", {{"Command", "SNMPGet"}, {"Argument", sysName}});
        rule("Laptop", "0",
             {{"Command", "Search in Text File"}, {"Argument", online}, {"SearchFor", "^$mvN,.*docked"}});
        rule("Laptop", "2", {{"Command", "Do Nothing"}});
        rule("Laptop", "3", {{"Command", "Do Nothing"}});
        rule("Laptop", "6",
             {{"Command", "Search in Text File"},
              {"Argument", online},
              {"SearchFor", "$mvN"},
              {"Delimiter", ","},
              {"FieldPos", "2"}});
        rule("Switch", "0", {{"Command", "SNMPGet"}, {"Argument", sysName}, {"SearchFor", "^.MIROVANE-"}});
        rule("Router", "0", {{"Command", "Registry"}, {"Argument", version}, {"SearchFor", "beta$"}});
        rule("Router", "4", {{"Command", "Registry"}, {"Argument", version}});
        rule(
            "Phone", "0",
            {{"Command", "Search for File"}, {"Argument", folder.path("drop/*.txt")}, {"SearchFor", "$mvU"}});
        rule("Phone", "6",
             {{"Command", "Search for File"},
              {"Argument", folder.path("drop/*")},
              {"SearchFor", "$mvU"},
              {"Condition", "On"}});
        rule("Camera", "7", {{"Command", "Set Value"}, {"Argument", "$mvN at $mvI"}});
        rule("Unknown", "1", {{"Command", "NS Lookup(reverse)"}, {"Argument", "$mvI"}});
        rule("UPS", "11", {{"Command", "Set Value"}, {"Argument", "Look after $mvN"}, {"Condition", "Off"}});
        rule("Card Module", "0", {{"Condition", "Off"}});
        rule("Wireless", "6", {{"Command", "Set Value"}, {"Argument", "no answer"}, {"Condition", "Off"}});
    }

    /// The devices by record ID.
    std::map<int, QJsonObject> devices() const {
        std::map<int, QJsonObject> byID;
        for (const QJsonValue& record : jsonArray(cli({"records", file, "--json"}).out)) {
            if (numberOf(record, "Type") > 0)
                byID[numberOf(record, "RecID")] = record.toObject();
        }
        return byID;
    }

    /// Waits for saves of the station until every expected field is there; what differs is reported.
    void expectSoon(CliProcess& station, const std::map<int, std::map<std::string, std::string>>& expected) {
        std::string differences;
        do {
            if (!station.waitForOutput("Saved Live Stat changes to data file", ++saves))
                break;
            differences = differencesTo(expected);
        } while (!differences.empty());
        EXPECT_EQ(differences, "");
        std::cout << cli({"list", file, "--sort", "ID"}).out;
    }

    std::string differencesTo(const std::map<int, std::map<std::string, std::string>>& expected) const {
        std::string differences;
        const std::map<int, QJsonObject> found = devices();
        for (const auto& [recID, fields] : expected) {
            for (const auto& [name, value] : fields) {
                const QJsonValue field = found.at(recID).value(QString::fromStdString(name));
                const std::string text =
                    field.isDouble() ? std::to_string(field.toInt()) : field.toString().toStdString();
                if (text != value)
                    differences +=
                        std::to_string(recID) + " " + name + ": \"" + text + "\", not \"" + value + "\"\n";
            }
        }
        return differences;
    }

    OwnNetwork network;
    std::unique_ptr<SnmpDaemon> agent;
    std::unique_ptr<SmbServer> registry;
    const CliFolder folder;
    const std::string file = folder.datafile({
        {"Computer", "Name=localhost", "IPAddress=127.0.0.9", "ToJack=J1"},   // 1
        {"Printer", "Name=new", "IPAddress=127.0.0.1"},                       // 2
        {"Laptop", "Name=lap-1", "Username=p.lund"},                          // 3
        {"Switch", "Name=sw-1", "IPAddress=127.0.0.1"},                       // 4
        {"Router", "Name=rt-1", "IPAddress=127.0.0.1"},                       // 5
        {"Phone", "Name=ph-1", "Username=[p.lund]"},                          // 6
        {"Camera", "Name=cam-1", "IPAddress=127.0.0.1"},                      // 7
        {"Unknown", "Name=who", "IPAddress=127.0.0.1"},                       // 8
        {"UPS", "Name=ups-1", "IPAddress=127.255.255.255", "Comment=kept>>"}, // 9
        {"Card Module", "Name=card-1", "IPAddress=127.0.0.1"},                // 10
        {"Wireless", "Name=ap-1", "IPAddress=127.255.255.255"},               // 11
        {"Jack", "ToJack=J1"},                                                // 12
        {"Jack", "ToJack=J2"},                                                // 13
        {"Location Marker", "Comment=Hall"},                                  // 14
    });
    int saves = 0;
};

TEST_F(EveryAction, FieldsFollowWhatHappensInTheNetwork) {
    CliProcess station({"--config", folder.config(), "station", file, "--live-stat", "--run-sec", "1"},
                       [this] { setenv("SMB_CONF_PATH", registry->configurationFile().c_str(), 1); });
    expectSoon(station, {{1, {{"State", "1"}, {"IPAddress", "127.0.0.1"}, {"Username", "anna"}}},
                         {2, {{"State", "1"}, {"Name", "\"mirovane-test\""}}},
                         {3, {{"State", "1"}, {"Comment", "Room 12"}}},
                         {4, {{"State", "1"}}},
                         {5, {{"State", "1"}, {"MACAddress", "1.2 beta"}}},
                         {6, {{"State", "1"}, {"Comment", "Report of p.lund.txt"}}},
                         {7, {{"State", "1"}, {"SlashText", "cam-1 at 127.0.0.1"}, {"SlashDraw", "1"}}},
                         {8, {{"State", "1"}, {"Name", "localhost"}}},
                         {9, {{"State", "2"}, {"ToDo", "Look after ups-1"}, {"ReminderOn", "1"}}},
                         {10, {{"State", "2"}}},
                         {11, {{"State", "2"}, {"Comment", "no answer"}}},
                         {12, {{"State", "1"}}},
                         {13, {{"State", "0"}}},
                         {14, {{"State", "0"}, {"Comment", "Hall"}}}});

    agent.reset();
    ASSERT_TRUE(registry->deleteKey(usersKey));
    ASSERT_TRUE(registry->setText("HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor", "Version", "1.3 final"));
    writeOnline("lap-1,Room 15,away\n");
    std::filesystem::remove(folder.path("drop/Report of p.lund.txt"));
    ASSERT_EQ(cli({"set", file, "1", "ToJack=J2"}).status, 0);
    expectSoon(station, {{1, {{"State", "1"}, {"Username", "[anna]"}, {"ToJack", "J2"}}},
                         {2, {{"State", "1"}, {"Name", ""}}},
                         {3, {{"State", "2"}}},
                         {4, {{"State", "2"}}},
                         {5, {{"State", "2"}}},
                         {6, {{"State", "2"}}},
                         {12, {{"State", "0"}}},
                         {13, {{"State", "1"}}}});
    station.signal(SIGTERM);
    const CliResult result = station.finish();
    EXPECT_EQ(result.status, 0);
    if (HasFailure())
        std::cout << result.out << result.err;
}

} // namespace
} // namespace mirovane::test
