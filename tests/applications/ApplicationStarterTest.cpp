#include "applications/ApplicationStarter.h"

#include "tests/support/FakeLauncher.h"
#include "tests/support/FakeTime.h"
#include "tests/support/LogLines.h"
#include "tests/support/TestFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mirovane {
namespace {

using Words = std::vector<std::string>;

class ApplicationStarterTest : public testing::Test {
protected:
    test::FakeClock clock;
    CMessageLog log{clock};
    CMemorySettingsStore store;
    CSettings settings{store};
    test::FakeLauncher launcher;
    CApplicationStarter starter{{launcher, settings, log, "/usr/bin/mirovane"}};

    static ApplicationRun run(ProgramPlace place, std::vector<Words> starts) {
        ApplicationRun made;
        made.place = place;
        made.starts = std::move(starts);
        return made;
    }

    std::string lastLine() const { return log.lines().back().text; }
};

TEST_F(ApplicationStarterTest, EveryPlaceGetsItsCommandLine) {
    starter.start("RDP", run(ProgramPlace::OwnWindow, {{"xfreerdp", "/v:a b"}, {"xfreerdp", "/v:c"}}));
    EXPECT_EQ(launcher.started, (std::vector<Words>{{"xfreerdp", "/v:a b"}, {"xfreerdp", "/v:c"}}));
    EXPECT_EQ(lastLine(), "Started \"RDP\" for 2 devices");

    starter.start("Web", run(ProgramPlace::Browser, {{"http://127.0.0.1"}}));
    EXPECT_EQ(launcher.started.back(), (Words{"xdg-open", "http://127.0.0.1"}));

    store.writeText(terminalSetting, "\"my terminal\" --hold -x");
    starter.start("Ping", run(ProgramPlace::Terminal, {{"ping", "a;b", ""}}));
    EXPECT_EQ(launcher.started.back(), (Words{"my terminal", "--hold", "-x", "/usr/bin/mirovane",
                                              "--in-terminal", "ping", "a%3Bb", "%"}));
}

TEST_F(ApplicationStarterTest, WhatDoesNotStartIsNamedOncePerReason) {
    ApplicationRun mixed = run(ProgramPlace::OwnWindow, {{"no-such", "1"}, {"no-such", "2"}});
    mixed.refusals = {{"too hot", "pc-7", 3}, {"too cold", "pc-8", 1}};
    launcher.answer = std::make_error_code(std::errc::no_such_file_or_directory);
    starter.start("Tool", mixed);
    ASSERT_EQ(log.lines().size(), 3U);
    EXPECT_NE(log.lines()[0].text.find("Did not start \"Tool\" for pc-7 and 2 more: too hot"),
              std::string::npos);
    EXPECT_NE(log.lines()[1].text.find("for pc-8: too cold"), std::string::npos);
    EXPECT_EQ(lastLine(), "Could not start \"Tool\" for 2 devices: no program \"no-such\" is installed here");
}

TEST_F(ApplicationStarterTest, ATerminalIsFoundInPathOrItsLackIsSaid) {
    const test::TestFolder folder;
    const std::string before = std::getenv("PATH");
    setenv("PATH", folder.path().c_str(), 1);
    starter.start("Ping", run(ProgramPlace::Terminal, {{"ping", "a"}}));
    EXPECT_TRUE(launcher.started.empty());
    EXPECT_NE(lastLine().find("no terminal program was found"), std::string::npos);

    for (const char* name : {"kitty", "gnome-terminal"}) {
        test::writeBytes(folder.file(name), "");
        chmod(folder.file(name).c_str(), 0700);
    }
    starter.start("Ping", run(ProgramPlace::Terminal, {{"ping", "a"}}));
    setenv("PATH", before.c_str(), 1);
    ASSERT_EQ(launcher.started.size(), 1U);
    EXPECT_EQ(launcher.started[0],
              (Words{"gnome-terminal", "--", "/usr/bin/mirovane", "--in-terminal", "ping", "a"}));
}

} // namespace
} // namespace mirovane
