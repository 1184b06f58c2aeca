#include "cli/doctor/Doctor.h"

#include "feature/FeatureOwner.h"
#include "model/datafile/KeptEdits.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/Paths.h"

#include <condition_variable>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <sched.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using State = CheckResult::State;

class ScriptedNames final : public NameService {
public:
    LookedUp<std::uint32_t> addressOf(const std::string& name) override {
        asked = name;
        std::unique_lock lock(mutex);
        ended.wait(lock, [this] { return !hangs; });
        return {answer, 0x0100007F};
    }
    LookedUp<std::string> nameOf(std::uint32_t) override { return {}; }
    void end() {
        const std::lock_guard lock(mutex);
        hangs = false;
        ended.notify_all();
    }

    ProbeAnswer answer = ProbeAnswer::yes();
    std::string asked;
    bool hangs = false;
    std::mutex mutex;
    std::condition_variable ended;
};

class DoctorTest : public testing::Test {
protected:
    DoctorTest() {
        places->datafile = file;
        places->stateFolder = folder.path("state");
        places->runtimeFolder = folder.path("run");
        places->program = "/usr/bin/mirovanectl";
        places->registry.credentialsFile = folder.path("samba-credentials");
        places->desktop = true;
        places->icons = {sourceFile("assets/icons")};
        places->now = std::chrono::system_clock::now();
        places->openEcho = [] {
            return EchoSocketOpening{nullptr, "not permitted"};
        };
        places->names = names;
        places->ask = [this](const std::vector<std::string>& words) {
            return words[0] == "fc-match" ? font : samba;
        };
    }

    std::map<std::string, CheckResult>
    examined(std::chrono::milliseconds patience = std::chrono::seconds(20)) const {
        std::map<std::string, CheckResult> byName;
        for (const Finding& finding : examine(places, patience))
            byName[std::string(finding.check)] = finding.result;
        return byName;
    }

    static void expectFails(const CheckResult& result, const std::string& says, const std::string& mend) {
        EXPECT_EQ(result.state, State::Fails) << says;
        EXPECT_THAT(result.says, HasSubstr(says));
        EXPECT_THAT(result.mend, HasSubstr(mend));
    }

    void writeCredentials(std::filesystem::perms mode) const {
        writeBytes(places->registry.credentialsFile, "username=x\n");
        std::filesystem::permissions(places->registry.credentialsFile, mode);
    }

    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=a b"}, {"Printer", "Name=laser-2"}});
    std::shared_ptr<ScriptedNames> names = std::make_shared<ScriptedNames>();
    std::optional<std::string> samba = "Version 4";
    std::optional<std::string> font = "Liberation Sans";
    std::shared_ptr<DoctorPlaces> places = std::make_shared<DoctorPlaces>();
};

TEST_F(DoctorTest, SaysWhatWorksAndLeavesNothingBehind) {
    writeCredentials(std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const std::string before = readBytes(file);
    auto found = examined();
    EXPECT_EQ(names->asked, "laser-2") << "what a name server can be asked for";
    EXPECT_THAT(found["names"].says, HasSubstr("\"laser-2\" is 127.0.0.1"));
    for (const char* check : {"names", "snmp", "registry", "datafile", "folder", "clock", "unsaved edits",
                              "state folder", "run-time folder", "fonts", "icons"})
        EXPECT_EQ(found[check].state, State::Works) << check << ": " << found[check].says;
    EXPECT_EQ(readBytes(file), before);
    for (const auto& entry : std::filesystem::directory_iterator(folder.path("")))
        EXPECT_THAT(entry.path().string(), Not(HasSubstr("doctor")));

    places->desktop = false;
    places->datafile.clear();
    found = examined();
    for (const char* check : {"datafile", "folder", "fonts", "icons", "terminal"})
        EXPECT_FALSE(found.contains(check)) << check;
}

TEST_F(DoctorTest, NamesWhatFailsAndTheLineThatMendsIt) {
    names->answer = ProbeAnswer::couldNotAsk(AskedThrough::NameService, "time-out");
    font = "DejaVu Sans";
    places->icons = {folder.path("")};
    writeCredentials(std::filesystem::perms::all);
    auto found = examined();
    expectFails(found["echoes"], "does not let this program send pings",
                "setcap cap_net_raw+ep /usr/bin/mirovanectl");
    expectFails(found["names"], "no name server answers (time-out)", "resolv.conf");
    expectFails(found["fonts"], "DejaVu Sans takes the place of Arial", "fonts-liberation");
    expectFails(found["icons"], "there are none", "mirovane");
    EXPECT_EQ(found["registry"].state, State::Note) << "only some need it";
    EXPECT_THAT(found["registry"].mend, HasSubstr("chmod 600"));
    samba.reset();
    EXPECT_THAT(examined()["registry"].mend, HasSubstr("samba-common-bin"));

    writeBytes(file, readBytes(file).substr(0, 60));
    expectFails(examined()["datafile"], "cannot read", "mirovanectl check " + file);
    places->datafile = folder.path("none/floor.mv");
    expectFails(examined()["folder"], "takes no new", "chmod");
}

TEST_F(DoctorTest, FindsAClockThatIsAhead) {
    auto content = std::move(Datafile::decode(readBytes(file)).value());
    for (const auto& record : content.records)
        if (record->Type == SpecialType::LiveStatOwnerRecord) {
            record->State = 1;
            record->Name = "FAST-PC";
            record->Modified = static_cast<TimeStamp>(
                std::chrono::system_clock::to_time_t(places->now + std::chrono::minutes(10)));
        }
    writeBytes(file, Datafile::encode(content.records));
    expectFails(examined()["clock"], "the clock of FAST-PC is ahead", "set-ntp");
    places->now += std::chrono::minutes(15);
    EXPECT_THAT(examined()["clock"].says, HasSubstr("Live Stat runs at FAST-PC"));
    places->now -= std::chrono::hours(24);
    EXPECT_EQ(examined()["clock"].state, State::Fails);
}

TEST_F(DoctorTest, FindsEditsThatWaitForThisDatafile) {
    std::filesystem::create_directory(places->stateFolder);
    KeptEdit edit;
    edit.kind = KeptEdit::Kind::Added;
    edit.ours.Type = DeviceType::Printer;
    writeBytes(places->stateFolder + "/other-1.edits",
               KeptEditsFormat::head("/srv/other.mv") + KeptEditsFormat::entry(1, edit));
    EXPECT_EQ(examined()["unsaved edits"].state, State::Works);
    writeBytes(places->stateFolder + "/floor-1.edits",
               KeptEditsFormat::head(file) + KeptEditsFormat::entry(1, edit));
    expectFails(examined()["unsaved edits"], "1 edits of an earlier program", "mirovanectl station " + file);
}

TEST_F(DoctorTest, WhatHangsIsAFinding) {
    names->hangs = true;
    const auto found = examined(std::chrono::milliseconds(300));
    names->end();
    expectFails(found.at("names"), "no answer within", "resolv.conf");
    EXPECT_EQ(found.at("snmp").state, State::Works) << "the others are not held up";
}

TEST_F(DoctorTest, TheCommandEndsWithNoWhereSomethingFails) {
    const Words words{"doctor", folder.path("none.mv"), "--json", "--config", folder.config()};
    constexpr int noNamespace = 77;
    const CliResult result = cli(words, [] { // without a network: this computer's own name is looked up
        if (unshare(CLONE_NEWNET) != 0)
            _exit(noNamespace);
    });
    if (result.status == noNamespace)
        GTEST_SKIP() << "no network namespace of its own";
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, IsEmpty());
    bool told = false;
    for (const QJsonValue& line : jsonArray(result.out))
        told = told || (textOf(line, "check") == "datafile" && textOf(line, "state") == "fails" &&
                        textOf(line, "mend") == "mirovanectl check " + folder.path("none.mv"));
    EXPECT_TRUE(told) << result.out;
}

} // namespace
} // namespace mirovane::test
