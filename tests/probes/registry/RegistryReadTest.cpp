#include "probes/registry/RegistryRead.h"

#include "probes/SystemRegistryProbes.h"
#include "probes/registry/LocalRegistry.h"
#include "probes/registry/LoggedOnUser.h"
#include "probes/registry/RegistryPath.h"
#include "probes/registry/ThisStation.h"
#include "tests/support/RegistryInMemory.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

using enum RegistryRoot;

constexpr const char* annaHive = "S-1-5-21-1004336348-1177238915-682003330-1001";
constexpr const char* benHive = "S-1-5-21-1004336348-1177238915-682003330-1002";

std::string below(const std::string& hive, const std::string& key) {
    return hive + "\\" + key;
}

class RegistryReadTest : public testing::Test {
protected:
    ~RegistryReadTest() override { EXPECT_EQ(registry_.openKeys(), 0U) << "every key is closed again"; }

    void setVersion(const std::string& machine, const std::string& version) {
        registry_.setValue(machine, LocalMachine, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                           "CurrentVersion", version);
    }

    /// Hives as a computer has them that two users are logged on to.
    void logOnTwo(const std::string& machine) {
        for (const char* system : {".DEFAULT", "S-1-5-18", "S-1-5-19", "S-1-5-20_Classes"})
            registry_.setKey(machine, Users, below(system, "Volatile Environment"));
        for (const auto& [hive, name] : {std::pair(annaHive, "anna"), std::pair(benHive, "ben")}) {
            registry_.setValue(machine, Users, below(hive, "Volatile Environment"), "USERNAME", name);
            registry_.setKey(machine, Users, std::string(hive) + "_Classes");
        }
    }

    std::optional<std::string> read(const std::string& path) {
        return ReadRegistryValue(registry_, path, "HERE");
    }

    test::RegistryInMemory registry_;
};

TEST(RegistryPathTest, IsSplitAtItsBackslashes) {
    struct Case {
        const char* path;
        const char* host;
        const char* hive;
        const char* keyPath;
        const char* valueName;
    };
    for (const Case& one : {
             Case{R"(\\PC12\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)", R"(\\PC12)", "HKEY_LOCAL_MACHINE",
                  R"(SOFTWARE\Vendor\)", "Version"},
             Case{R"(hkey_users\a b\\\c\)", R"(\\HERE)", "HKEY_USERS", R"(a b\c\)", ""},
             Case{R"(\HKEY_USERS\x)", R"(\\HERE)", "HKEY_USERS", "", "x"},
             Case{R"(\\\\PC12\\HKEY_USERS\\x)", R"(\\PC12)", "HKEY_USERS", "", "x"},
             Case{R"(\\PC12\HKEY_USERS)", R"(\\PC12)", "", "", "HKEY_USERS"},
             Case{R"(\\PC12)", R"(\\HERE)", "", "", "PC12"},
             Case{"", R"(\\HERE)", "", "", ""},
         }) {
        SCOPED_TRACE(one.path);
        const RegistryPath parts = splitRegistryPath(one.path, "HERE");
        EXPECT_EQ(parts.host, one.host);
        EXPECT_EQ(parts.hive, one.hive);
        EXPECT_EQ(parts.keyPath, one.keyPath);
        EXPECT_EQ(parts.valueName, one.valueName);
    }
}

TEST_F(RegistryReadTest, AValueByItsPath) {
    using namespace std::string_literals;
    registry_.setValue("PC12", LocalMachine, "SOFTWARE\\Vendor", "Version", "1.2\0rest"s);
    registry_.setValue("PC12", LocalMachine, "", "AtRoot", "root");
    registry_.setValue("HERE", LocalMachine, "SOFTWARE\\Vendor", "", "default");
    registry_.setValue("HERE", CurrentUser, "printers", "DeviceOLD", "HP,winspool");
    registry_.setValue("HERE", LocalMachine, "Long", "fits", std::string(255, 'x') + '\0');
    registry_.setValue("HERE", LocalMachine, "Long", "toolong", std::string(256, 'x') + '\0');
    EXPECT_EQ(read(R"(\\PC12\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)"), "1.2");
    EXPECT_EQ(read(R"(\\pc12\HKEY_local_MACHINE\software\VENDOR\version)"), "1.2");
    EXPECT_EQ(read(R"(\\PC12\HKEY_LOCAL_MACHINE\AtRoot)"), "root");
    EXPECT_EQ(read(R"(HKEY_LOCAL_MACHINE\SOFTWARE\\Vendor\)"), "default");
    EXPECT_EQ(read(R"(HKEY_CURRENT_USER\printers\DeviceOLD)"), "HP,winspool");
    EXPECT_EQ(read(R"(HKEY_LOCAL_MACHINE\Long\fits)"), std::string(255, 'x'));
    for (const char* missing :
         {R"(HKEY_LOCAL_MACHINE\Long\toolong)", R"(\\PC12\HKLM\SOFTWARE\Vendor\Version)",
          R"(\\PC12\HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\None)",
          R"(\\PC12\HKEY_LOCAL_MACHINE\SOFTWARE\None\Version)", R"(\\OFF\HKEY_LOCAL_MACHINE\SOFTWARE\x)",
          R"(\\PC12)", ""})
        EXPECT_EQ(read(missing), std::nullopt) << missing;
}

TEST_F(RegistryReadTest, TheCurrentUserOfAnotherComputerIsTheFirstWithTheValue) {
    const std::string path = R"(\\PC12\hkey_current_user\printers\DeviceOLD)";
    logOnTwo("PC12");
    EXPECT_EQ(read(path), std::nullopt);
    for (const std::string hive :
         {".DEFAULT", "S-1-5-18", "S-1-5-21-1-2-34", "S-1-5-21-1004336348-1177238915-682003330-1001_Classes"})
        registry_.setValue("PC12", Users, below(hive, "printers"), "DeviceOLD", "wrong");
    EXPECT_EQ(read(path), std::nullopt) << "hives of no user";
    registry_.setValue("PC12", Users, below(benHive, "printers"), "DeviceOLD", "ben's");
    EXPECT_EQ(read(path), "ben's");
    registry_.setValue("PC12", Users, below(annaHive, "printers"), "DeviceOLD", "anna's");
    EXPECT_EQ(read(path), "anna's");
    registry_.setValue("HERE", CurrentUser, "printers", "DeviceOLD", "mine");
    registry_.setValue("HERE", Users, below(annaHive, "printers"), "DeviceOLD", "hers");
    EXPECT_EQ(read(R"(\\HERE\HKEY_CURRENT_USER\printers\DeviceOLD)"), "mine");
    EXPECT_EQ(read(R"(\\here\HKEY_CURRENT_USER\printers\DeviceOLD)"), "hers")
        << "the name's case tells this computer from others";
    registry_.refuse("PC12", Users);
    EXPECT_EQ(read(path), std::nullopt);
}

TEST_F(RegistryReadTest, TwoUsersOfWindows7) {
    setVersion("PC12", "6.1");
    logOnTwo("PC12");
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\PC12)"), (LoggedOnUser{"anna(2)", 2, true}));
    registry_.setValue("PC12", Users, below(annaHive, "Volatile Environment"), "USERNAME", "");
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\PC12)"), (LoggedOnUser{"ben(2)", 2, true}))
        << "a hive without a name counts";
}

TEST_F(RegistryReadTest, TheOlderScheme) {
    const std::string explorer = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
    for (const char* version : {"5.1", ""}) {
        const std::string machine = std::string("XP") + version;
        if (*version)
            setVersion(machine, version);
        logOnTwo(machine);
        EXPECT_EQ(LookUpLoggedOnUser(registry_, "\\\\" + machine), (LoggedOnUser{"", 0, true}));
        registry_.setValue(machine, Users, below(benHive, explorer), "Logon User Name", "ben");
        EXPECT_EQ(LookUpLoggedOnUser(registry_, "\\\\" + machine), (LoggedOnUser{"ben", 1, true}));
    }
    setVersion("W10", "10.0");
    logOnTwo("W10");
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\W10)").count, 2U);
}

TEST_F(RegistryReadTest, NobodyIsNotUnreachable) {
    setVersion("PC12", "6.1");
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\PC12)"), (LoggedOnUser{"", 0, true}));
    registry_.refuse("PC12", Users);
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\PC12)"), LoggedOnUser());
    EXPECT_EQ(LookUpLoggedOnUser(registry_, R"(\\OFF)"), LoggedOnUser());
}

TEST_F(RegistryReadTest, TheDefaultUserName) {
    registry_.setValue("PC12", LocalMachine, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon",
                       "DefaultUserName", "anna");
    EXPECT_EQ(GetDefaultUserName(registry_, "PC12"), "anna");
    EXPECT_EQ(GetDefaultUserName(registry_, "PC13"), "");
}

TEST(LocalRegistryTest, AnswersWhatTheSystemItselfReads) {
    RegistryRemoteOptions nobody;
    nobody.program = "/nonexistent/net";
    CSystemRegistryProbes probes(nobody, {"here", "carla"});
    LoggedOnUser user;
    EXPECT_TRUE(probes.LookUpLoggedOnUser(R"(\\here)", user, {}).isYes());
    EXPECT_EQ(user, (LoggedOnUser{"carla", 1, true}));
    const auto read = [&probes](const char* path) {
        std::string value;
        const ProbeAnswer answer = probes.ReadRegistryValue(path, "here", value, {});
        return answer.isYes() ? std::optional(value) : std::nullopt;
    };
    EXPECT_EQ(read(R"(HKEY_CURRENT_USER\Volatile Environment\USERNAME)"), "carla");
    EXPECT_EQ(read(R"(\\HERE\HKEY_CURRENT_USER\Volatile Environment\username)"), "carla");
    EXPECT_EQ(read(R"(HKEY_LOCAL_MACHINE\SOFTWARE\Vendor\Version)"), std::nullopt);
    EXPECT_TRUE(probes.LookUpLoggedOnUser(R"(\\127.0.0.1)", user, {}).couldNotBeAsked());

    CLocalRegistry nameless("here", "");
    EXPECT_EQ(GetDefaultUserName(nameless, "here"), "");
    EXPECT_EQ(LookUpLoggedOnUser(nameless, R"(\\here)"), (LoggedOnUser{"", 0, true}))
        << "nobody, but reached";
    EXPECT_EQ(LookUpLoggedOnUser(nameless, R"(\\elsewhere)"), LoggedOnUser());
}

TEST(ThisStationTest, IsTheDefaultUserOnThisComputer) {
    EXPECT_EQ(thisStation(), (StationIdentity{computerName(), loginName()}));
    EXPECT_FALSE(thisStation().userName.empty());
}

} // namespace
} // namespace mirovane
