#include "probes/registry/RegistryRemote.h"

#include "probes/SystemRegistryProbes.h"
#include "tests/support/SmbServer.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mirovane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using test::SmbServer;
using testing::HasSubstr;

constexpr const char* anna = "S-1-5-21-1004336348-1177238915-682003330-1001";
constexpr const char* ben = "S-1-5-21-1004336348-1177238915-682003330-1002";

std::string credentialsIn(const test::TestFolder& folder) {
    std::string file = folder.file("credentials");
    test::writeBytes(file, "username = root\npassword = Secret-1\n");
    chmod(file.c_str(), 0600);
    return file;
}

/// Look-ups as the station makes them, of a server on a port of 127.0.0.1.
struct Asking {
    explicit Asking(std::uint16_t port, const std::string& credentials = {}) {
        options.credentialsFile = credentials;
        options.smbPort = port;
        options.deadline = seconds(60);
    }

    CSystemRegistryProbes& probes() {
        if (!probes_)
            probes_ = std::make_unique<CSystemRegistryProbes>(options, StationIdentity{"here", "carla"});
        return *probes_;
    }
    std::optional<std::string> read(const std::string& path, std::stop_token stop = {}) {
        std::string value;
        answer = probes().ReadRegistryValue("\\\\127.0.0.1\\" + path, "here", value, std::move(stop));
        return answer.isYes() ? std::optional(value) : std::nullopt;
    }
    LoggedOnUser user() {
        LoggedOnUser user;
        answer = probes().LookUpLoggedOnUser(R"(\\127.0.0.1)", user, {});
        return user;
    }

    RegistryRemoteOptions options;
    ProbeAnswer answer; ///< to the last question

private:
    std::unique_ptr<CSystemRegistryProbes> probes_;
};

/// Samba's configuration comes from the environment, as a user's would.
class RegistryServerTest : public testing::Test {
protected:
    void SetUp() override {
        if (!server_.whyNot().empty())
            GTEST_SKIP() << server_.whyNot();
        setenv("SMB_CONF_PATH", server_.configurationFile().c_str(), 1);
    }

    Asking asking() const { return Asking(server_.port(), server_.credentialsFile()); }

    SmbServer server_;
};

TEST_F(RegistryServerTest, ValuesOfEveryType) {
    ASSERT_TRUE(server_.import(R"([HKEY_LOCAL_MACHINE\SOFTWARE\Vendor Ltd\Sub key]
"Version"="1.2 beta"
"Quotes"="a \"b\" \\\\ c"
"Number"=dword:00004241
"Zero"=dword:00000000
"Texts"=hex(7):6f,00,6e,00,65,00,00,00,74,00,77,00,6f,00,00,00,00,00
"Expand"=hex(2):25,00,78,00,25,00,5c,00,79,00,00,00
"Binary"=hex:41,42,00,ff
"Long number"=hex(b):41,42,43,44,45,46,47,48
"-dash"="dashed"
"--server=127.0.0.2"="no option"
"back\\slash"="bs"
@="the default"

[HKEY_LOCAL_MACHINE\SOFTWARE\Vendor Ltd\Sub key\Deeper]
"Binary"=hex:43

)"));
    const std::string key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Vendor Ltd\Sub key)";
    ASSERT_TRUE(server_.setText(key, "Umlauts",
                                "Gr\xc3\xb6\xc3\x9f"
                                "e\nnext line"));
    ASSERT_TRUE(server_.setText(key, "Fits", std::string(255, 'x')));
    ASSERT_TRUE(server_.setText(key, "Too long", std::string(256, 'x')));
    Asking asking = this->asking();
    const std::string path = R"(hkey_local_machine\\software\Vendor Ltd\\\Sub key\)";
    for (const auto& [name, text] : std::vector<std::pair<std::string, std::string>>{
             {"Version", "1.2 beta"},
             {"version", "1.2 beta"},
             {"Quotes", R"(a "b" \\ c)"},
             {"Number", "AB"},
             {"Zero", ""},
             {"Texts", "one"},
             {"Expand", R"(%x%\y)"},
             {"Binary", "AB"},
             {"Long number", "ABCDEFGH"},
             {"-dash", "dashed"},
             {"--server=127.0.0.2", "no option"},
             {"Umlauts", "Gr\xc3\xb6\xc3\x9f"
                         "e\nnext line"},
             {"Fits", std::string(255, 'x')},
             {"", "the default"},
         })
        EXPECT_EQ(asking.read(path + name), text) << name << ": " << asking.answer.why;
    ASSERT_TRUE(server_.setText("HKEY_USERS", "Of the root", "yes"));
    EXPECT_EQ(asking.read("HKEY_USERS\\Of the root"), "yes") << "no key between the root and the value";
    ASSERT_TRUE(server_.import("[HKEY_CLASSES_ROOT\\.txt]\n\"PerceivedType\"=\"text\"\n\n"));
    EXPECT_EQ(asking.read(R"(hkey_classes_root\.txt\PerceivedType)"), "text");
    EXPECT_EQ(asking.read(path + "Too long"), std::nullopt);
    EXPECT_EQ(asking.read(path + "None"), std::nullopt);
    EXPECT_EQ(asking.read(path + "None\\Version"), std::nullopt);
    EXPECT_EQ(asking.read(path + std::string("Version\0x", 9)), std::nullopt) << "is not cut short";
    EXPECT_EQ(asking.read(path + "back\\slash"), std::nullopt) << "names a key";
    EXPECT_EQ(asking.read("HKLM\\SOFTWARE\\Vendor Ltd\\Sub key\\Version"), std::nullopt);
    EXPECT_EQ(asking.answer.kind, ProbeAnswer::Kind::No);
}

TEST_F(RegistryServerTest, SubKeysToTheLast) {
    std::string entries;
    for (int number = 0; number < 259; ++number)
        entries += "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Many keys\\Key " + std::to_string(number) + "]\n\n";
    ASSERT_TRUE(server_.import(entries + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Many keys]\n\"A\"=\"value\"\n\n"));
    CRegistryRemote registry(asking().options, {});
    CRegistryKey root(registry);
    CRegistryKey key(registry);
    ASSERT_TRUE(root.connect(R"(\\127.0.0.1)", RegistryRoot::LocalMachine));
    ASSERT_TRUE(key.open(root, "SOFTWARE\\Many keys\\"));
    std::set<std::string> names;
    std::string name;
    std::uint32_t index = 0;
    while (key.subKeyName(index, name)) {
        names.insert(name);
        ++index;
    }
    EXPECT_EQ(index, 259U);
    EXPECT_EQ(names.size(), 259U);
    EXPECT_TRUE(names.contains("Key 0") && names.contains("Key 258"));
}

TEST_F(RegistryServerTest, NobodyThenTwoUsersLoggedOn) {
    Asking asking = this->asking();
    EXPECT_EQ(asking.user(), (LoggedOnUser{"", 0, true})) << asking.answer.why;
    std::string entries;
    for (const auto& [hive, name] : {std::pair(anna, "anna"), std::pair(ben, "ben")}) {
        entries += "[HKEY_USERS\\" + std::string(hive) + "\\Volatile Environment]\n\"USERNAME\"=\"" + name +
                   "\"\n\n[HKEY_USERS\\" + hive + "_Classes]\n\n";
        entries += "[HKEY_USERS\\" + std::string(hive) + "\\printers]\n\"DeviceOLD\"=\"of " + name + "\"\n\n";
    }
    ASSERT_TRUE(server_.import(entries + "[HKEY_USERS\\.DEFAULT\\Volatile Environment]\n\n"));
    const LoggedOnUser both = asking.user();
    EXPECT_EQ(both.count, 2U) << asking.answer.why;
    EXPECT_TRUE(both.name == "anna(2)" || both.name == "ben(2)") << both.name;
    const auto printer = asking.read(R"(hkey_current_user\printers\DeviceOLD)");
    EXPECT_TRUE(printer == "of anna" || printer == "of ben");
}

TEST_F(RegistryServerTest, CredentialsThatDoNotServe) {
    const std::string file = server_.file("wrong");
    test::writeBytes(file, "username = root\npassword = Wrong-1\n");
    chmod(file.c_str(), 0600);
    Asking wrong(server_.port(), file);
    EXPECT_EQ(wrong.read(R"(HKEY_LOCAL_MACHINE\SOFTWARE\x)"), std::nullopt);
    EXPECT_EQ(wrong.answer.why, "the user name or password was refused");
    EXPECT_FALSE(wrong.user().reached);
    EXPECT_TRUE(wrong.answer.couldNotBeAsked());

    setenv("KRB5CCNAME", ("FILE:" + server_.file("no-ticket")).c_str(), 1);
    Asking none(server_.port(), server_.file("no-such-file"));
    EXPECT_FALSE(none.user().reached);
    EXPECT_TRUE(none.answer.couldNotBeAsked());
    EXPECT_THAT(none.answer.why, HasSubstr("nor a Kerberos ticket"));
}

TEST(RegistryRemoteTest, AComputerThatIsOff) {
    const test::TestFolder folder;
    Asking asking(test::freeLoopbackPort(), credentialsIn(folder));
    if (system("command -v net >/dev/null") != 0)
        GTEST_SKIP() << "Samba's net is not installed";
    EXPECT_FALSE(asking.user().reached);
    EXPECT_THAT(asking.answer.why, HasSubstr("REFUSED"));
    EXPECT_EQ(asking.answer.kind, ProbeAnswer::Kind::No) << "the computer's trouble, not ours";
}

TEST(RegistryRemoteTest, AServerThatNeverAnswersIsLeftAtTheDeadlineOrWhenTold) {
    if (system("command -v net >/dev/null") != 0)
        GTEST_SKIP() << "Samba's net is not installed";
    const test::SilentServer silent;
    const test::TestFolder folder;
    Asking brief(silent.port(), credentialsIn(folder));
    brief.options.deadline = milliseconds(300);
    const auto begin = steady_clock::now();
    EXPECT_FALSE(brief.user().reached);
    EXPECT_LT(steady_clock::now() - begin, seconds(10)) << "one deadline for both connections";
    EXPECT_EQ(brief.answer.why, "no answer in time");

    Asking patient(silent.port(), credentialsIn(folder));
    patient.options.deadline = seconds(600);
    std::stop_source stop;
    std::jthread stopper([&stop] { stop.request_stop(); });
    EXPECT_EQ(patient.read(R"(HKEY_LOCAL_MACHINE\x)", stop.get_token()), std::nullopt);
    EXPECT_EQ(patient.answer.why, "stopped");
}

TEST(RegistryRemoteTest, WhatIsMissingHereSaysNothingAboutTheComputer) {
    const test::TestFolder folder;
    Asking asking(1, credentialsIn(folder));
    asking.options.program = "/nonexistent/net";
    EXPECT_EQ(asking.read(R"(HKEY_LOCAL_MACHINE\x)"), std::nullopt);
    EXPECT_TRUE(asking.answer.couldNotBeAsked());
    EXPECT_THAT(asking.answer.why, HasSubstr("install samba-common-bin"));
    EXPECT_FALSE(asking.user().reached);
    EXPECT_TRUE(asking.answer.couldNotBeAsked());
}

TEST(RegistryRemoteTest, CredentialsThatOthersCanReadAreNotUsed) {
    const test::TestFolder folder;
    const std::string file = folder.file("credentials");
    test::writeBytes(file, "username = root\n");
    chmod(file.c_str(), 0640);
    EXPECT_THAT(credentialsTrouble(file).value_or(""), HasSubstr("chmod 600"));
    EXPECT_THAT(credentialsTrouble(folder.path()).value_or(""), HasSubstr("is not a file"));
    Asking asking(1, file);
    asking.options.program = "/nonexistent/net";
    EXPECT_FALSE(asking.user().reached);
    EXPECT_THAT(asking.answer.why, HasSubstr("can be read by others")) << "before any process";
    chmod(file.c_str(), 0604);
    EXPECT_THAT(credentialsTrouble(file).value_or(""), HasSubstr("chmod 600"));
    chmod(file.c_str(), 0600);
    EXPECT_EQ(credentialsTrouble(file), std::nullopt);
    EXPECT_THAT(credentialsTrouble(folder.file("none")).value_or(""), HasSubstr("cannot be read"));
    // Root may read what belongs to anybody, and everybody may read what belongs to root here.
    const bool root = geteuid() == 0;
    ASSERT_EQ(root ? chown(file.c_str(), 1234, 1234) : 0, 0);
    EXPECT_THAT(credentialsTrouble(root ? file : "/etc/passwd").value_or(""), HasSubstr("somebody else"));
}

/// Kerberos keeps tickets in files, in the kernel's keyring and elsewhere. Only of a file it is known from
/// here whether it is there.
TEST(RegistryRemoteTest, WithoutACredentialsFileTheTicketIsShown) {
    const test::TestFolder folder;
    const std::string program = folder.file("net");
    test::writeBytes(program, "#!/bin/sh\nprintf '%s' \"$2\" >" + folder.file("shown") + "\nenv >" +
                                  folder.file("environment") + "\nexit 255\n");
    chmod(program.c_str(), 0700);
    test::writeBytes(folder.file("ticket"), "");
    setenv("PASSWD", "Secret-1", 1);
    const auto shownFor = [&](const std::string& cache) {
        setenv("KRB5CCNAME", cache.c_str(), 1);
        test::writeBytes(folder.file("shown"), "");
        CSystemRegistryProbes probes({program, folder.file("no credentials"), 0, seconds(60)},
                                     {"here", "carla"});
        std::string value;
        const ProbeAnswer answer =
            probes.ReadRegistryValue(R"(\\127.0.0.1\HKEY_LOCAL_MACHINE\x\y)", "here", value, {});
        const std::string shown = test::readBytes(folder.file("shown"));
        EXPECT_EQ(answer.couldNotBeAsked(), shown.empty()) << cache << ": asked, or said why not";
        return shown;
    };
    for (const std::string& cache : {std::string("KEYRING:persistent:0"), std::string("DIR:/none"),
                                     "FILE:" + folder.file("ticket"), folder.file("ticket")})
        EXPECT_EQ(shownFor(cache), "--use-krb5-ccache=" + cache);
    for (const std::string& missing : {"FILE:" + folder.file("none"), folder.file("none")})
        EXPECT_EQ(shownFor(missing), "");
    unsetenv("KRB5CCNAME");
    unsetenv("PASSWD");
    const std::string environment = test::readBytes(folder.file("environment"));
    EXPECT_THAT(environment, HasSubstr("LC_ALL=C.UTF-8\n"));
    EXPECT_EQ(environment.find("Secret-1"), std::string::npos)
        << "Samba gets of our environment what it needs";
}

TEST(RegistryRemoteTest, ALookUpThatBreaksOffDoesNotTellThatNobodyIsThere) {
    const test::TestFolder folder;
    const std::string program = folder.file("net");
    const auto answersReads = [&](const std::string& command) {
        test::writeBytes(program,
                         "#!/bin/sh\ncase \"$*\" in\n*enumerate*) printf 'Keyname   = " + std::string(anna) +
                             "\\nModtime   = now\\n\\n' ;;\n*) " + command + " ;;\nesac\n");
        chmod(program.c_str(), 0700);
        CSystemRegistryProbes probes({program, credentialsIn(folder), 4450, seconds(60)}, {"here", "carla"});
        LoggedOnUser user;
        probes.LookUpLoggedOnUser(R"(\\127.0.0.1)", user, {});
        return user;
    };
    const std::string noKey = "echo 'registry_openkey failed: WERR_FILE_NOT_FOUND' >&2; exit 255";
    EXPECT_EQ(answersReads(noKey), (LoggedOnUser{"", 0, true}));
    const std::string gone = "echo 'Connection failed: NT_STATUS_CONNECTION_RESET' >&2; exit 255";
    EXPECT_EQ(answersReads("case \"$*\" in *Volatile*) " + gone + " ;; *) " + noKey + " ;; esac"),
              (LoggedOnUser{"", 0, true}))
        << "an old computer is not asked for it";
    const std::string version = "printf 'Type       = REG_SZ\\nValue      = \"6.1\"\\n'";
    EXPECT_EQ(answersReads("case \"$*\" in *Volatile*) " + gone + " ;; *) " + version + " ;; esac"),
              (LoggedOnUser{"", 0, false}));
}

TEST(RegistryRemoteTest, TextsOfTheUserAreNeverOptions) {
    const test::TestFolder folder;
    const std::string program = folder.file("net");
    test::writeBytes(program, "#!/bin/sh\nprintf '%s\\n' \"$@\" >>" + folder.file("words") +
                                  "\necho 'registry_openkey failed' >&2\nexit 255\n");
    chmod(program.c_str(), 0700);
    CSystemRegistryProbes probes({program, credentialsIn(folder), 4450, seconds(60)}, {"here", "carla"});
    for (const char* host : {R"(\\a b)", R"(\\a;b)", R"(\\--option=x)", R"(\\a%b)", R"(\\)", ""}) {
        LoggedOnUser user;
        EXPECT_FALSE(probes.LookUpLoggedOnUser(host, user, {}).isYes()) << host;
    }
    EXPECT_EQ(test::readBytes(folder.file("words")), "") << "no names of computers";
    std::string value;
    probes.ReadRegistryValue(R"(\\-f\HKEY_LOCAL_MACHINE\-k $(id)\`x`\--y 'z')", "here", value, {});
    EXPECT_EQ(test::readBytes(folder.file("words")),
              "--server=-f\n--port=4450\n--authentication-file=" + folder.file("credentials") +
                  "\n--\nrpc\nregistry\ngetvalue\nHKEY_LOCAL_MACHINE\\-k $(id)\\`x`\n--y 'z'\n");
}

TEST(RegistryRemoteTest, ManyLookUpsAtOnceKeepTheirAnswersApart) {
    const test::TestFolder folder;
    const std::string program = folder.file("net");
    test::writeBytes(program, "#!/bin/sh\nfor name in \"$@\"; do :; done\n"
                              "printf 'Type       = REG_SZ\\nValue      = \"of %s\"\\n' \"$name\"\n");
    chmod(program.c_str(), 0700);
    CSystemRegistryProbes probes({program, credentialsIn(folder), 0, seconds(60)}, {"here", "carla"});
    constexpr int count = 8;
    std::vector<std::jthread> workers;
    workers.reserve(count);
    for (int worker = 0; worker < count; ++worker) {
        workers.emplace_back([&probes, worker] {
            for (int round = 0; round < 5; ++round) {
                const std::string name = std::to_string(worker * 10 + round);
                std::string value;
                const std::string path = R"(\\127.0.0.1\HKEY_LOCAL_MACHINE\x\)" + name;
                EXPECT_TRUE(probes.ReadRegistryValue(path, "here", value, {}).isYes());
                EXPECT_EQ(value, "of " + name);
            }
        });
    }
}

} // namespace
} // namespace mirovane
