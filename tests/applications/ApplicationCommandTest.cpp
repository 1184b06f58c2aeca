#include "applications/ApplicationCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

CHardware device(const std::string& name, const std::string& address = "10.0.0.5") {
    CHardware computer;
    computer.Type = DeviceType::Computer;
    computer.Name = name;
    computer.IPAddress = address;
    computer.MACAddress = "00:11";
    return computer;
}

Words filled(std::string_view line, const CHardware& computer, std::string_view typed = {}) {
    const auto result = CApplicationCommand(line).fill(computer, typed);
    EXPECT_EQ(result.refusal, "") << line;
    return result.words;
}

TEST(ApplicationCommandTest, LinesAreCutAtBlanksOutsideQuotes) {
    const std::pair<const char*, Words> cases[] = {
        {"", {}},
        {" \t ", {}},
        {"  ping   10.0.0.5 ", {"ping", "10.0.0.5"}},
        {R"("C:\Program Files\x.exe" /v)", {R"(C:\Program Files\x.exe)", "/v"}},
        {R"(say "" a"b c"d)", {"say", "", "ab cd"}},
        {R"(say "he said ""yes""" """")", {"say", R"(he said "yes")", "\""}},
        {R"(say 'a b' \"c)", {"say", "'a", "b'", "\\c"}},
        {"say \"never closed", {"say", "never closed"}},
    };
    for (const auto& [line, words] : cases)
        EXPECT_EQ(splitCommandLine(line), words) << line;
}

TEST(ApplicationCommandTest, AFieldStaysOneArgumentWhateverItHolds) {
    for (const std::string name : {"two words", "a\"b c\"", "; reboot", "$(reboot) `reboot`",
                                   "x | y > /etc/z", "line\nbreak\r\n", "$mvI", "*", "~", "", "'"}) {
        EXPECT_EQ(filled("tool -n $mvN --to=$mvN: end", device(name)),
                  (Words{"tool", "-n", name, "--to=" + name + ":", "end"}));
        EXPECT_EQ(filled("tool \"$mvN\"@$mvI", device(name)), (Words{"tool", name + "@10.0.0.5"}));
    }
}

TEST(ApplicationCommandTest, PlaceholdersFollowTheRuleOfCommands) {
    const CHardware computer = device("pc-1");
    EXPECT_EQ(filled("tool $mvN$mvI $MVM $mv", computer), (Words{"tool", "pc-1$mvI", "$MVM", "$mv"}));
    // The quote is the character between them, so both count.
    EXPECT_EQ(filled("tool $mvN\"$mvI\"", computer), (Words{"tool", "pc-110.0.0.5"}));
}

TEST(ApplicationCommandTest, TypedTextIsCutLikeTheCommandButHoldsNoPlaceholders) {
    const CHardware computer = device("pc-1");
    EXPECT_EQ(filled("ssh $mvW $mvN", computer, "-l \"root user\" -p 22"),
              (Words{"ssh", "-l", "root user", "-p", "22", "pc-1"}));
    EXPECT_EQ(filled("tool \"$mvW\" x$mvW.", computer, "a \"b"), (Words{"tool", "a \"b", "xa", "b."}));
    EXPECT_EQ(filled("tool $mvW $mvN", computer, "\"a b"), (Words{"tool", "a b", "pc-1"})) << "open quote";
    EXPECT_EQ(filled("tool $mvW $mvN", computer, ""), (Words{"tool", "pc-1"}));
    EXPECT_EQ(filled("tool $mvW", computer, "$mvN"), (Words{"tool", "$mvN"}));
    EXPECT_EQ(filled("$mvW", computer, "xclock -digital"), (Words{"xclock", "-digital"}));
    EXPECT_FALSE(CApplicationCommand("tool $mvN$mvW").wantsText());
}

TEST(ApplicationCommandTest, AFieldNeverBecomesAnOptionOrTheProgram) {
    const CHardware hostile = device("-oProxyCommand=reboot");
    EXPECT_THAT(CApplicationCommand("ssh $mvN").fill(hostile, "").refusal, HasSubstr("option"));
    EXPECT_EQ(filled("tool -- $mvN", hostile), (Words{"tool", "--", hostile.Name}));
    EXPECT_EQ(filled("tool /v:$mvN", hostile), (Words{"tool", "/v:-oProxyCommand=reboot"}));
    for (const char* line : {"ssh -- $mvN", "ssh admin@$mvN", "tool \"x $mvN\""})
        EXPECT_THAT(CApplicationCommand(line).fill(hostile, "").refusal,
                    HasSubstr("the field \"Name\" begins with \"-\""))
            << line;
    EXPECT_EQ(filled("tool $mvW", hostile, "-x"), (Words{"tool", "-x"})); // the user may
    CHardware second = hostile;
    second.IPAddress = "--";
    EXPECT_THAT(CApplicationCommand("ssh \"$mvI\" $mvN").fill(second, "").refusal, HasSubstr("option"));
    second.IPAddress.clear();
    EXPECT_THAT(CApplicationCommand("ssh $mvI\"$mvN\"").fill(second, "").refusal, HasSubstr("option"));

    second.Username.clear();
    second.Name = "oProxyCommand=reboot";
    EXPECT_THAT(CApplicationCommand("ssh $mvU-$mvN").fill(second, "").refusal, HasSubstr("option"));

    EXPECT_THAT(CApplicationCommand("$mvN -x").problem(), HasSubstr("program"));
    EXPECT_THAT(CApplicationCommand("/opt/$mvN/run").problem(), HasSubstr("program"));
    // Nothing typed: the next argument would be the program.
    EXPECT_EQ(CApplicationCommand("$mvW $mvN").problem(), "");
    EXPECT_THAT(CApplicationCommand("$mvW $mvN").fill(device("reboot"), "").refusal, HasSubstr("program"));
    EXPECT_THAT(CApplicationCommand("$mvW").fill(device("reboot"), " ").refusal, HasSubstr("no program"));
    EXPECT_THAT(CApplicationCommand("ping $mvN").fill(device(std::string("a\0b", 3)), "").refusal,
                HasSubstr("zero byte"));
}

TEST(ApplicationCommandTest, NoShellIsReachedFromAField) {
    const char* mayReachOne[] = {"sh -c \"ping $mvN\"",
                                 "term: sudo /bin/bash -o pipefail -lc $mvN",
                                 "env X=1 zsh -f -c \"a $mvN\"",
                                 "sh /opt/tool.sh $mvN",
                                 "watch ping -x $mvN",
                                 "ssh -p 22 -- $mvI $mvN",
                                 "ssh -o \"ProxyCommand=nc $mvN 22\" $mvI",
                                 "su -c \"ping $mvN\" nobody",
                                 "xterm -e ping $mvN",
                                 "python3.11 -c \"print('$mvN')\"",
                                 "tool --run=perl $mvN",
                                 "tool \"$mvN at $mvI\"",
                                 "tool \"ping;$mvN\"",
                                 "tool \\\\$mvN\\c"};
    const char* safe[] = {"ping $mvN",        "ping \"$mvN\"",     "xfreerdp /v:$mvN /u:x",
                          "tool sh.txt $mvN", "tool $mvN -c $mvI", "https://wiki/?q=$mvN"};
    for (const char* odd : {"x;reboot", "$(reboot)", "a b", "a\nb", "`x`", "'", "*"}) {
        for (const char* line : mayReachOne)
            EXPECT_THAT(CApplicationCommand(line).fill(device(odd), "").refusal,
                        HasSubstr("the field \"Name\" holds a blank or a character that a shell obeys, and "))
                << line << " with " << odd;
        for (const char* line : safe)
            EXPECT_EQ(CApplicationCommand(line).fill(device(odd), "").refusal, "") << line << " with " << odd;
    }
    for (const char* line : mayReachOne) {
        EXPECT_EQ(CApplicationCommand(line).problem(), "") << "plain fields may be there";
        EXPECT_EQ(CApplicationCommand(line).fill(device("pc-1.b\xC3\xBCro"), "").refusal, "") << line;
    }
    EXPECT_THAT(CApplicationCommand("watch ping $mvN x").fill(device(""), "").refusal,
                HasSubstr("the field \"Name\" is empty, and \"watch\" in the command"));
    EXPECT_THAT(CApplicationCommand("$mvW $mvN").fill(device("a b"), "sh -c").refusal, HasSubstr("\"sh\""));
    EXPECT_EQ(filled("tool $mvN -c $mvI", device("sh")), (Words{"tool", "sh", "-c", "10.0.0.5"}));
}

TEST(ApplicationCommandTest, ThePlaceFollowsFromPrefixAndProgram) {
    using enum ProgramPlace;
    const std::pair<const char*, ProgramPlace> cases[] = {
        {"ping $mvI", Terminal},
        {"/usr/bin/ssh $mvI", Terminal},
        {"\"ping\" x", Terminal},
        {"xfreerdp /v:$mvI", OwnWindow},
        {"pinger $mvI", OwnWindow},
        {"TERM: tool $mvI", Terminal},
        {" noterm:ping $mvI", OwnWindow},
        {"https://$mvI/status", Browser},
        {"HTTP://$mvN", Browser},
        {"xdg-open http://$mvI", OwnWindow},
        {"", OwnWindow},
    };
    for (const auto& [line, place] : cases)
        EXPECT_EQ(CApplicationCommand(line).place(), place) << line;
    const std::vector<CHardware> one{device("x")};
    const auto typed = [&one](const char* line, const char* text) {
        return planApplicationRun(line, one, [text] { return std::optional<std::string>(text); });
    };
    EXPECT_EQ(typed("$mvW $mvI", "ping -n").place, Terminal) << "an endless ping that nobody sees";
    EXPECT_EQ(typed("$mvW", "https://x/").place, Browser);
    EXPECT_EQ(typed("$mvW $mvI", "xfreerdp").place, OwnWindow);
    EXPECT_EQ(typed("noterm: $mvW $mvI", "ping").place, OwnWindow);
    EXPECT_EQ(filled("term: tool $mvI", device("x")), (Words{"tool", "10.0.0.5"}));
    EXPECT_EQ(filled("noterm:ping", device("x")), (Words{"ping"}));
}

TEST(ApplicationCommandTest, CommandsOfAnotherSystemAndBadAddressesSaySo) {
    for (const char* line :
         {R"("C:\Windows\System32\mstsc.exe" /v:$mvN)", R"(\\server\tools\vnc.exe $mvI)", "d:/tools/x.exe"})
        EXPECT_THAT(CApplicationCommand(line).problem(), HasSubstr("another system")) << line;
    EXPECT_THAT(CApplicationCommand("http://$mvI two").problem(), HasSubstr("one word"));
    EXPECT_THAT(CApplicationCommand("http://$mvI/$mvW").fill(device("x"), "a b").refusal,
                HasSubstr("one word"));
    EXPECT_THAT(CApplicationCommand(" ").problem(), HasSubstr("empty"));
    EXPECT_EQ(filled("http://$mvI/?q=$mvN&x", device("a b';$(x)\"\xC3\xA4/1")),
              (Words{"http://10.0.0.5/?q=a%20b%27%3B%24%28x%29%22%C3%A4/1&x"}));
}

TEST(ApplicationRunTest, StartsOncePerDeviceInOrderAndAsksOnce) {
    const std::vector<CHardware> devices{device("a"), device("-b"), device("c"), device("-d")};
    int asked = 0;
    const auto run = planApplicationRun("tool $mvN $mvW $mvw", devices, [&asked] {
        ++asked;
        return std::optional<std::string>("one two");
    });
    EXPECT_EQ(asked, 1);
    EXPECT_THAT(run.starts, ElementsAre(Words{"tool", "a", "one", "two", "one", "two"},
                                        Words{"tool", "c", "one", "two", "one", "two"}));
    ASSERT_EQ(run.refusals.size(), 1U);
    EXPECT_EQ(run.refusals[0].device, "-b");
    EXPECT_EQ(run.refusals[0].devices, 2U);
}

TEST(ApplicationRunTest, CancelStartsNothingAndNothingIsAskedInVain) {
    const std::vector<CHardware> devices{device("a"), device("b")};
    const auto cancelled =
        planApplicationRun("tool $mvW", devices, [] { return std::optional<std::string>(); });
    EXPECT_TRUE(cancelled.cancelled);
    EXPECT_THAT(cancelled.starts, IsEmpty());

    const auto never = []() -> std::optional<std::string> {
        ADD_FAILURE() << "asked";
        return std::nullopt;
    };
    EXPECT_EQ(planApplicationRun("tool x", devices, never).starts.size(), 2U);
    EXPECT_THAT(planApplicationRun("tool $mvW", {}, never).starts, IsEmpty());
    const auto foreign = planApplicationRun("c:\\tool.exe $mvW", devices, never);
    EXPECT_THAT(foreign.starts, IsEmpty());
    EXPECT_EQ(foreign.refusals.at(0).devices, 2U);
}

} // namespace
} // namespace mirovane
