#include "model/find/Find.h"

#include "model/find/FindText.h"
#include "tests/model/DocumentFixture.h"

#include <algorithm>

namespace mirovane {

namespace {

using Fields = std::vector<FindField>;

CHardware device(std::int32_t type = DeviceType::Computer) {
    CHardware made;
    made.Type = type;
    made.RecID = 12;
    return made;
}

FindSettings looking(const std::string& text, const Fields& fields) {
    FindSettings settings;
    settings.included.fill(false);
    settings.FindText = text;
    for (const FindField field : fields)
        settings.include(field, true);
    return settings;
}

bool fits(const FindSettings& settings, const CHardware& device) {
    return CFindRule(settings, FindMode::Text).matches(device);
}

TEST(FindRuleTest, WholeWordsAndCase) {
    struct Row {
        const char* text;
        const char* name;
        bool wholeWord, matchCase, fits;
    };
    const Row rows[] = {
        {"pc1", "PC12", false, false, true},         {"PC1", "PC12", true, false, false},
        {"PC1", "PC1", true, false, true},           {"PC1", "old PC1\r\nnew", true, false, true},
        {"PC1", "xPC1 PC1", true, false, true}, // the first place is inside a word, the second is one
        {"pc1", "PC1", false, true, false},          {"müller", "MÜLLER", false, false, true},
        {"müller", "M\xDCLLER", false, false, true}, // in the old stations' code page
        {"müller", "MÜLLER", false, true, false},    {"PC12", "PC1", false, false, false},
    };
    for (const Row& row : rows) {
        FindSettings settings = looking(row.text, {FindField::Name, FindField::Comment});
        settings.FindWholeWord = row.wholeWord;
        settings.FindMatchCase = row.matchCase;
        CHardware named = device();
        named.Name = row.name;
        EXPECT_EQ(fits(settings, named), row.fits) << row.text << " in " << row.name;
    }
}

TEST(FindRuleTest, OnlyIncludedFieldsAreRead) {
    CHardware marker = device(DeviceType::LocationMarker);
    marker.ToJack = "10,20,30,40,";
    CHardware jack = device(DeviceType::Jack);
    jack.ToJack = "20";
    jack.VertText = "upright";
    EXPECT_FALSE(fits(looking("20", {FindField::ToJack, FindField::Name}), marker));
    EXPECT_TRUE(fits(looking("20", {FindField::ToJack}), jack));
    EXPECT_TRUE(fits(looking("12", {FindField::RecID}), jack));
    EXPECT_FALSE(fits(looking("upright", {FindField::HorzText}), jack));
    EXPECT_TRUE(fits(looking("upright", {FindField::VertText}), jack));
    EXPECT_FALSE(fits(looking("", {}), jack)); // nothing to look through
    EXPECT_FALSE(fits(looking("", {FindField::VertText}), jack));
    jack.Comment = emptyFindText;
    EXPECT_TRUE(fits(looking("", {FindField::Comment}), jack));
}

class FindTest : public test::DocumentFixture {
protected:
    FindTest() { makeFloor(4); }

    void edit(std::int32_t recID, const std::function<void(CHardware&)>& change) {
        doc.edit(*doc.findDevice(recID), change);
    }
    void look(const std::string& text, const Fields& fields = {FindField::Name}) {
        FindSettings settings = looking(text, fields);
        settings.FindIncludeMisc = false;
        find.setSettings(settings);
    }
    std::int32_t next() {
        const CHardware* found = find.next(state);
        return found ? found->RecID : 0;
    }
    std::int32_t due(CFind::From from = CFind::From::Floor) {
        const CHardware* found = find.next(FindMode::ReminderDue, state, from);
        return found ? found->RecID : 0;
    }

    CSelection selection{doc};
    CFind find{doc, selection};
    FindState state;
};

TEST_F(FindTest, GoesOnFromTheLastOneRoundTheEndOfTheList) {
    look("pc-");
    for (const std::int32_t recID : {1, 2, 3, 4, 1}) {
        EXPECT_EQ(next(), recID);
        EXPECT_EQ(selection.count(), 1U);
        EXPECT_NE(doc.findDevice(recID)->Selected, 0);
        EXPECT_EQ(state.FindHitCount, 4);
    }
    look("pc-1"); // another text starts again
    EXPECT_EQ(next(), 1);
    EXPECT_EQ(next(), 1);
    EXPECT_EQ(state.FindHitCount, 1);
}

TEST_F(FindTest, NothingFoundDeselectsAndKeepsThePlace) {
    look("pc-");
    EXPECT_EQ(next(), 1);
    doc.setShowAll(*doc.findDevice(3), true);
    look("printer");
    EXPECT_EQ(next(), 0);
    EXPECT_TRUE(selection.empty());
    EXPECT_EQ(doc.findDevice(3)->ShowAll, 0);
    EXPECT_TRUE(state.FindNothingFound);
    EXPECT_EQ(state.FindHitCount, 0);
    look("");
    EXPECT_EQ(next(), 0);
    find.setSettings(looking(std::string(emptyFindText), {FindField::Name}));
    EXPECT_EQ(find.settings().FindText, "");
}

TEST_F(FindTest, RemindersAreFoundByTheirOwnRules) {
    for (const std::int32_t recID : {2, 3, 4})
        edit(recID, [](CHardware& each) { each.ReminderOn = 1; });
    doc.setReminderDue(*doc.findDevice(2), true);
    doc.setReminderDue(*doc.findDevice(4), true);
    for (const std::int32_t recID : {2, 4, 2})
        EXPECT_EQ(due(), recID);
    EXPECT_TRUE(state.FindReminderMode);
    EXPECT_EQ(state.FindHitCount, 2);

    FindSettings settings;
    settings.FindReminder = true;
    find.setSettings(settings);
    EXPECT_EQ(next(), 3);
    look("pc-4");
    EXPECT_EQ(next(), 4);
    EXPECT_FALSE(state.FindReminderMode);
}

TEST_F(FindTest, DiscoveredDevicesCountWhereTheyAreWanted) {
    edit(2, [](CHardware& each) {
        each.Type += DeviceType::discoveredOffset;
        each.ReminderOn = 1;
    });
    doc.setReminderDue(*doc.findDevice(2), true);
    look("pc-2");
    EXPECT_EQ(next(), 0);
    EXPECT_EQ(due(), 0);
    EXPECT_EQ(due(CFind::From::DiscoveredMisc), 2);
    find.setSettings(looking("pc-2", {FindField::Name})); // includes them
    EXPECT_EQ(next(), 2);
}

TEST_F(FindTest, AMarkerIsFoundByItsIDAlone) {
    edit(
        4,
        [](CHardware& each) {
            each.Type = DeviceType::LocationMarker;
            each.Comment = "Hall 1";
        });
    edit(1, [](CHardware& each) { each.Name = "4"; });
    look("pc", {FindField::Name, FindField::SlashText});
    const FindSettings before = find.settings();
    find.setSettings(before.forMarker(4));
    EXPECT_EQ(next(), 4);
    EXPECT_TRUE(find.settings().includes(FindField::SlashText));
    find.setSettings(before);
    EXPECT_EQ(next(), 2); // another text than the last: from the beginning
}

TEST_F(FindTest, ADocumentThatShrankIsSearchedFromItsBeginning) {
    look("pc-");
    next();
    next();
    next();
    const std::vector<DeviceKey> gone{{2, 0}, {3, 0}, {4, 0}};
    doc.removeDevices(gone);
    EXPECT_EQ(next(), 1);
}

} // namespace

} // namespace mirovane
