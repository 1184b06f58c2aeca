#include "tests/livestat/steps/ActionFixture.h"

#include <thread>

namespace mirovane {

namespace {

class ValueActionsTest : public test::ActionFixture {
protected:
    ValueActionsTest() {
        probes.agent("sw1", "public", "1.3.6.1.2.1.1.1.0",
                     {SNMPAnswer::Kind::Value, "Cisco IOS, Version 12.2", 0});
        probes.agent("sw1", "public", "1.3.6.1.2.1.1.9.0", {SNMPAnswer::Kind::ErrorStatus, "", 2});
        probes.agent("sw1", "two words", "1.3", {SNMPAnswer::Kind::Value, "", 0});
        probes.registryValue(R"(\\pc1\HKEY_CURRENT_USER\printers\Device)", "HP DeskJet 840C");
        probes.registryValue(R"(\\here\HKEY_LOCAL_MACHINE\Software\v)", "local");
    }
    std::string snmp(const std::string& searchFor) {
        return shown(run(Action::SnmpGet, "sw1 public 1.3.6.1.2.1.1.1.0", searchFor));
    }
    std::string logon(const std::string& current) {
        input.device.Comment = current;
        return shown(run(Action::WhosLogon, "other hosts", "ignored"));
    }
};

TEST_F(ValueActionsTest, ARetrievedValueIsTheResultWhenThePatternMatchesIt) {
    input.device.Name = "c2960.v*";
    struct Case {
        const char* searchFor;
        const char* shown;
    };
    const std::string value = "done:Cisco IOS, Version 12.2";
    const Case cases[] = {
        {"", value.c_str()},
        {"cisco", value.c_str()},
        {"CISCO ios", value.c_str()}, // whatever the case of either
        {"version \\d+\\.\\d$", value.c_str()},
        {"\\D\\S+ios", "failed:"}, // \D and \S keep their meaning: the blank stands between
        {"juniper", "failed:"},
        {"$mvU", "failed:"}, // an empty field: nothing, not everything
        {"^$mvU", "failed:"},
        {"^$mvU$", "failed:"},      // only a text without any character would fit
        {"x|$mvU|", value.c_str()}, // an alternative that is nothing matches everything
        {"$mvN", "failed:"},        // literally, so the star does not repeat
        {"(cisco", "failed:"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(snmp(c.searchFor), c.shown) << c.searchFor;
    EXPECT_EQ(run(Action::SnmpGet, "sw1 public 1.3.6.1.2.1.1.1.0", "[z-a]").brokenPattern,
              "invalid range specified in character set");
}

TEST_F(ValueActionsTest, AValueIsTheArgumentItself) {
    input.device.Name = "pc1";
    EXPECT_EQ(shown(run(Action::SetValue, "at $mvN", "ignored")), "done:at pc1");
    EXPECT_EQ(shown(run(Action::SetValue, "")), "done:");
}

TEST_F(ValueActionsTest, AJackShowsTheStateOfWhatIsPluggedIn) {
    for (const std::int32_t state : {DeviceState::Off, DeviceState::On, DeviceState::Def}) {
        input.matchedState = state;
        const StepOutcome plugged = run(Action::MatchToJack, "");
        EXPECT_FALSE(plugged.failed);
        EXPECT_EQ(plugged.stateIfMatch, state);
    }
    input.matchedState.reset();
    const StepOutcome empty = run(Action::MatchToJack, "");
    EXPECT_TRUE(empty.acted && empty.failed);
    EXPECT_EQ(empty.stateIfNoMatch, DeviceState::Def);
}

TEST_F(ValueActionsTest, AnUndecidedPatternIsNoMatch) {
    probes.agent("sw1", "public", "1.1", {SNMPAnswer::Kind::Value, std::string(40, 'a') + "!", 0});
    EXPECT_EQ(shown(run(Action::SnmpGet, "sw1 public 1.1", "(a+)+$")), "failed:");
    EXPECT_NE(answer.find("too many steps"), std::string::npos) << answer;
}

TEST_F(ValueActionsTest, AnEmptyValueCanMatchToo) {
    EXPECT_EQ(shown(run(Action::SnmpGet, "sw1 \"two words\" 1.3")), "done:");
    EXPECT_EQ(shown(run(Action::SnmpGet, "sw1 \"two words\" 1.3", "^$mvU$")), "done:");
}

TEST_F(ValueActionsTest, AgentsThatGiveNoValueFailWithNothing) {
    for (const char* argument : {"sw1 private 1.3.6.1.2.1.1.1.0", "sw1 public 1.3.6.1.2.1.1.9.0",
                                 "sw1 public", "", "\"sw1 public 1.3.6.1.2.1.1.1.0\""})
        EXPECT_EQ(shown(run(Action::SnmpGet, argument)), "failed:") << argument;
    input.device.IPAddress = "sw1"; // more than three words: the first three count
    EXPECT_EQ(shown(run(Action::SnmpGet, "$mvI public 1.3.6.1.2.1.1.1.0 $mvU more")),
              "done:Cisco IOS, Version 12.2");
}

TEST_F(ValueActionsTest, RegistryValuesComeFromTheHostOfThePathOrFromHere) {
    input.device.Name = "pc1";
    EXPECT_EQ(shown(run(Action::Registry, R"(\\$mvN\HKEY_CURRENT_USER\printers\Device)", "deskjet")),
              "done:HP DeskJet 840C");
    EXPECT_EQ(shown(run(Action::Registry, R"(\\$mvN\HKEY_CURRENT_USER\printers\Device)", "laserjet")),
              "failed:");
    EXPECT_EQ(shown(run(Action::Registry, R"(HKEY_LOCAL_MACHINE\Software\v)")), "done:local");
    EXPECT_EQ(shown(run(Action::Registry, R"(\\pc2\HKEY_CURRENT_USER\printers\Device)")), "failed:");
}

TEST_F(ValueActionsTest, AUserWhoLogsOffStaysInBrackets) {
    input.device.Name = "pc1";
    input.device.IPAddress = "127.0.0.5";
    EXPECT_EQ(logon("jsmith"), "nothing"); // not reached
    probes.loggedOn(R"(\\pc1)", {"carla", 1, true});
    probes.loggedOn(R"(\\127.0.0.5)", {"eve(2)", 2, true});
    EXPECT_EQ(logon("jsmith"), "done:carla");
    input.device.Name.clear();
    EXPECT_EQ(logon("[jsmith]"), "done:eve(2)");
    probes.loggedOn(R"(\\127.0.0.5)", {"", 0, true});
    EXPECT_EQ(logon("jsmith"), "done:[jsmith]");
    EXPECT_EQ(logon("[jsmith]"), "nothing");
    EXPECT_EQ(logon(""), "done:[]");
    input.device.IPAddress.clear();
    probes.loggedOn(R"(\\)", {"nobody's", 1, true});
    EXPECT_EQ(logon("jsmith"), "nothing"); // whom to ask?
}

TEST_F(ValueActionsTest, AStoppedProbeChangesNothing) {
    struct Case {
        std::string_view command;
        const char* argument;
        const char* hangs;
    };
    const Case cases[] = {{Action::SnmpGet, "sw1 public 1.3.6.1.2.1.1.1.0", "sw1"},
                          {Action::Registry, R"(\\pc1\HKEY_CURRENT_USER\printers\Device)",
                           R"(\\pc1\HKEY_CURRENT_USER\printers\Device)"},
                          {Action::WhosLogon, "", R"(\\pc1)"}};
    input.device.Name = "pc1";
    for (const Case& c : cases) {
        probes.hang(c.hangs);
        std::stop_source stop;
        input.stop = stop.get_token();
        std::thread user([&] {
            probes.waitUntilHanging(1);
            stop.request_stop();
        });
        EXPECT_EQ(shown(run(c.command, c.argument)), "cancelled") << c.command;
        user.join();
    }
}

} // namespace

} // namespace mirovane
