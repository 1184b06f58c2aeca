#include "livestat/steps/RowTrial.h"

#include "model/CriteriaEdit.h"
#include "tests/livestat/schedule/SchedulerFixture.h"
#include "tests/support/TestFolder.h"

namespace mirovane {

namespace {

using Changes = std::vector<RowTrial::Change>;

class RowTrialTest : public test::SchedulerFixture {
protected:
    RowTrialTest() {
        recID = doc.addDevice(
                       DeviceType::Printer,
                       [](CHardware& printer) {
                           printer.Name = "lp1";
                           printer.IPAddress = "127.0.0.1";
                           printer.State = DeviceState::On;
                       })
                    ->RecID;
    }
    RowTrial trial(int row, std::string_view command, const std::string& argument,
                   const std::string& searchFor = {}, const std::string& condition = "On") {
        rule(DeviceType::Printer, row, command, argument, condition);
        setCriteria(doc, DeviceType::Printer, row, CriteriaColumn::SearchFor, searchFor);
        const CHardware before = device(recID);
        const RowTrial result = tryRow(trialInput(doc, device(recID), row, {}), probes, clock);
        EXPECT_EQ(device(recID), before); // a dry run writes nothing
        return result;
    }

    std::int32_t recID = 0;
};

TEST_F(RowTrialTest, ShowsWhatWasAskedWhatCameBackAndWhatWouldBeWritten) {
    probes.agent("127.0.0.1", "public", "1.3", {SNMPAnswer::Kind::Value, "LaserJet 4250", 0});
    const RowTrial value = trial(7, Action::SnmpGet, "$mvI public 1.3", "jet.*$mvU", "On/Off");
    EXPECT_EQ(value.expandedArgument, "127.0.0.1 public 1.3");
    EXPECT_EQ(value.expandedPattern, "jet.*");
    EXPECT_EQ(value.answer, "value: LaserJet 4250");
    EXPECT_TRUE(value.conditionAllows && value.acted && !value.failed);
    EXPECT_EQ(value.changes, (Changes{{"SlashText", "", "LaserJet 4250"}, {"SlashDraw", "0", "1"}}));

    const RowTrial silent = trial(0, Action::Ping, "$mvN $mvI");
    EXPECT_EQ(silent.answer, "lp1: no reply within 5000 ms\n127.0.0.1: no reply within 5000 ms");
    EXPECT_EQ(silent.changes, (Changes{{"State", "On", "Off"}}));

    const RowTrial wrong = trial(7, Action::SnmpGet, "$mvI public 1.4", "[");
    EXPECT_EQ(wrong.answer, "127.0.0.1: no answer within 1000 ms");
    EXPECT_TRUE(wrong.failed && wrong.changes.empty());
}

class GreedySnmp final : public SNMPProbe {
public:
    SNMPAnswer SnmpGet(const SNMPQuery&, std::stop_token) override { throw std::bad_alloc(); }
};

TEST_F(RowTrialTest, WantOfMemoryEndsTheTrialAlone) {
    rule(DeviceType::Printer, 1, Action::SnmpGet, "$mvI public 1.3", "On");
    GreedySnmp greedy;
    const RowTrial ended = tryRow(trialInput(doc, device(recID), 1, {}), {probes, greedy, probes}, clock);
    EXPECT_TRUE(ended.cancelled && ended.changes.empty());
    EXPECT_EQ(ended.answer, "there is not enough memory for it");
}

TEST_F(RowTrialTest, SaysWhyARowIsNotRun) {
    const RowTrial off = trial(6, Action::SetValue, "x", "", "Off");
    EXPECT_FALSE(off.conditionAllows || off.acted);
    EXPECT_EQ(off.answer, "not run: the row is for devices that are Off, and this one is On");

    EXPECT_EQ(trial(6, Action::DoNothing, "").answer, "the row does nothing");
    EXPECT_EQ(trial(6, "Reboot", "").answer, "\"Reboot\" is not an action: the row does nothing");
    doc.edit(device(recID), [](CHardware& printer) { printer.Comment = "mine>>"; });
    const RowTrial kept = trial(6, Action::SetValue, "x");
    EXPECT_TRUE(kept.passedOver);
    EXPECT_TRUE(kept.changes.empty());
}

TEST_F(RowTrialTest, SearchesAFileThatLiveStatNeedNotSearchAgain) {
    const test::TestFolder folder;
    test::writeBytes(folder.file("hosts"), "other;1\nlp1;Room 8\n");
    setCriteria(doc, DeviceType::Printer, 6, CriteriaColumn::Delimiter, ";");
    setCriteria(doc, DeviceType::Printer, 6, CriteriaColumn::FieldPos, "2");
    for (int i = 0; i < 2; ++i) {
        const RowTrial found = trial(6, Action::SearchInTextFile, folder.file("hosts"), "$mvN");
        EXPECT_EQ(found.answer, folder.file("hosts") + ", line 2: lp1;Room 8\nfield 2: Room 8");
        EXPECT_EQ(found.changes, (Changes{{"Comment", "", "Room 8"}}));
        doc.edit(device(recID), [](CHardware& printer) {
            printer.StampsModified = printer.Modified;
            printer.RuleStamps.fill(2'000'000'000);
        });
    }
}

TEST_F(RowTrialTest, AJackShowsWhatIsPluggedIntoIt) {
    const std::int32_t jack = add(DeviceType::Jack);
    doc.edit(
        device(jack), [](CHardware& held) { held.ToJack = "A-17"; });
    doc.edit(device(recID), [](CHardware& held) { held.ToJack = "A-17"; });
    const RowTrial matched = tryRow(trialInput(doc, device(jack), 0, {}), probes, clock);
    EXPECT_EQ(matched.changes, (Changes{{"State", "Def", "On"}}));
}

} // namespace

} // namespace mirovane
