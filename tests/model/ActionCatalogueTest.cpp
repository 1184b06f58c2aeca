#include "model/ActionCatalogue.h"

#include "model/Document.h"
#include "tests/model/DocumentFixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace mirovane {
namespace {

/// "ADSIC", a letter for each input that is offered.
std::string offered(std::string_view action) {
    const ActionInputs inputs = actionEntry(action).inputs;
    std::string letters;
    for (const auto& [on, letter] : {std::pair{inputs.Argument, 'A'},
                                     {inputs.Extraction, 'D'},
                                     {inputs.SearchFor, 'S'},
                                     {inputs.IfMatch, 'I'},
                                     {inputs.Condition, 'C'}})
        letters += on ? letter : '-';
    return letters;
}

TEST(ActionCatalogue, OffersWhatTheActionUses) {
    const std::pair<std::string_view, std::string> expected[] = {
        {Action::DoNothing, "-----"},     {Action::Ping, "A---C"},        {Action::SearchInTextFile, "ADSIC"},
        {Action::SearchForFile, "ADSIC"}, {Action::Registry, "A-SIC"},    {Action::WhosLogon, "---IC"},
        {Action::SnmpGet, "ADSIC"},       {Action::NsLookup, "A--IC"},    {Action::NsLookupReverse, "A--IC"},
        {Action::SetValue, "A--IC"},      {Action::MatchToJack, "----C"}, {"an action of tomorrow", "-----"}};
    for (const auto& [action, letters] : expected)
        EXPECT_EQ(offered(action), letters) << action;
}

/// Every action that a row offers is explained for that kind of row, and none is explained that it does not
/// offer.
TEST(ActionCatalogue, ExplainsExactlyWhatTheRowsOffer) {
    for (const ActionEntry& entry : actionCatalogue()) {
        const auto offeredIn = [&entry](int row) {
            const auto actions = actionsForRow(DeviceType::Jack, row);
            return std::ranges::find(actions, entry.name) != actions.end();
        };
        const bool explained = entry.name != Action::DoNothing;
        EXPECT_EQ(!entry.testExample.empty(), offeredIn(0) && explained) << entry.name;
        EXPECT_EQ(!entry.fieldExample.empty(), offeredIn(1) && explained) << entry.name;
        EXPECT_EQ(!entry.argumentSyntax.empty(), entry.inputs.Argument) << entry.name;
    }
    EXPECT_EQ(actionEntry(Action::Registry).argumentSyntax, R"(\\<Hostname>\<Key>\..\<Valuename>)");
    EXPECT_EQ(actionEntry(Action::SearchForFile).argumentSyntax, R"(<Folder Path>\<*|*.txt|..>)");
    const ActionExample& text = actionEntry(Action::SearchInTextFile).fieldExample;
    EXPECT_EQ(std::string(text.Delimiter) + text.FieldPos.data(), ",2");
}

TEST(ActionCatalogue, AJackChoosesActionsForThreeRowsOnly) {
    std::string jack, computer;
    for (int row = 0; row < criteriaRowCount; ++row) {
        jack += actionChoosable(1001, row) ? 'x' : '-';
        computer += actionChoosable(DeviceType::Computer, row) ? 'x' : '-';
    }
    EXPECT_EQ(jack, "x----xx-----");
    EXPECT_EQ(computer, "xxxxxxxxxxxx");
}

class ChooseAction : public test::DocumentFixture {};

TEST_F(ChooseAction, BringsWhatBelongsToTheAction) {
    auto& document = doc;
    document.newDatafile();
    const auto row = [&document](int number) {
        return criteriaFromRecord(*document.criteria(DeviceType::Camera, number));
    };
    for (const int number : {0, 4}) {
        document.setCriteria(DeviceType::Camera, number, 2, ",");
        document.setCriteria(DeviceType::Camera, number, 3, "3");
        chooseAction(document, DeviceType::Camera, number, std::string(Action::SnmpGet));
    }
    EXPECT_EQ(row(0).Delimiter, "");
    EXPECT_EQ(row(0).FieldPos, 0);
    EXPECT_EQ(row(4).Delimiter, ",");
    EXPECT_EQ(row(4).FieldPos, 3);
    chooseAction(document, DeviceType::Camera, 11, std::string(Action::WhosLogon));
    EXPECT_EQ(row(11).Argument, "$mvN $mvI");
}

} // namespace
} // namespace mirovane
