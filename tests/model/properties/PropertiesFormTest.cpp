#include "model/properties/PropertiesForm.h"

#include "model/properties/Duplicates.h"
#include "tests/model/DocumentFixture.h"

#include <algorithm>
#include <map>
#include <set>

namespace mirovane::test {

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view pickers = "2026-12-24 08:15";

/// 1 and 2: computers that differ in everything but their comment. 3: a printer in the Discovered/Misc window
/// whose own texts look like the word for "leave as it is". 4 and 5: jacks. 6: a marker. 7: of no known type.
class PropertiesFormTest : public DocumentFixture {
protected:
    void SetUp() override {
        link.newDatafile();
        add(DeviceType::Computer, {{"Name", "pc-1"},
                                   {"IPAddress", "10.0.0.1"},
                                   {"Comment", "a\r\nb"},
                                   {"SlashText", "kept>>"},
                                   {"SlashDraw", "1"},
                                   {"Username", "Jos\xE9"},
                                   {"ReminderOn", "1"},
                                   {"ReminderDate", "2026-11-01 10:00"},
                                   {"ToDo", "call"}});
        add(DeviceType::Computer, {{"Name", "pc-2"}, {"ToJack", "J2"}, {"Comment", "a\r\nb"}});
        add(DeviceType::Printer + DeviceType::discoveredOffset, {{"Name", "<Edit>"}, {"Comment", "<Edit>"}});
        add(DeviceType::Jack, {{"ToJack", "J1"}, {"Name", "left over"}, {"VertText", "old"}});
        add(DeviceType::Jack, {{"ToJack", "J2"}, {"Name", "left over"}});
        add(DeviceType::LocationMarker,
            {{"Comment", "Hall"}, {"Name", "left over"}, {"ToJack", "1,2,"}, {"VertText", "a.png\r\nb.pdf"}});
        add(99, {{"Name", "odd"}});
    }

    void add(std::int32_t type, const Pairs& values) {
        doc.addDevice(
            type,
            [&](CHardware& device) {
                for (const auto& [field, value] : values)
                    ASSERT_FALSE(setFieldValue(device, *findRecordField(field), value)) << field;
            });
    }

    PropertiesSet setOf(const std::vector<std::int32_t>& recIDs) const {
        std::vector<const CHardware*> devices;
        for (const std::int32_t recID : recIDs)
            devices.push_back(doc.findDevice(recID));
        auto sets = classified(doc, devices);
        EXPECT_EQ(sets.size(), 1U);
        return sets.front();
    }

    std::map<std::int32_t, Pairs> snapshot() const {
        std::map<std::int32_t, Pairs> all;
        for (const auto& record : doc.records())
            for (const RecordField& field : recordFields())
                if (record->isDevice() && field.name != "Modified")
                    all[record->RecID].emplace_back(field.name, fieldValue(*record, field));
        return all;
    }
};

/// The sets of a mixed selection.
TEST_F(PropertiesFormTest, OneOfAMixedSelectionIsEditedAsSeveralAre) {
    const auto sets = classified(doc, {doc.findDevice(1), doc.findDevice(2), doc.findDevice(4)});
    ASSERT_EQ(sets.size(), 2U);
    CPropertiesForm jack(doc, sets[1]);
    EXPECT_EQ(jack.text("Comment"), (CPropertiesForm::Shown{"<Edit>", CPropertiesForm::Source::Various}));
    EXPECT_EQ(jack.text("ToJack"), (CPropertiesForm::Shown{"J1", CPropertiesForm::Source::Shared}));
    jack.enter("ToJack", "<Edit>");
    jack.enter("Comment", "seen");
    applyProperties(doc, jack.devices(), jack.edit({}));
    EXPECT_EQ(doc.findDevice(4)->ToJack, "J1");
    EXPECT_EQ(doc.findDevice(4)->Comment, "seen");
    EXPECT_EQ(doc.findDevice(4)->Name, "left over") << "emptied only where the jack is edited by itself";
}

struct Case {
    const char* what;
    std::vector<std::int32_t> selection;
    Pairs entered;
    std::vector<std::pair<std::string, bool>> locks;
    std::map<std::int32_t, Pairs> expected; ///< what differs afterwards
    std::set<std::int32_t> stamped;
};

TEST_F(PropertiesFormTest, ChangesExactlyWhatWasMeant) {
    const std::vector<Case> cases{
        {"nothing touched", {1}, {}, {}, {}, {}},
        {"typed what is there, in another encoding and with other line ends",
         {1},
         {{"Username", "Jos\xC3\xA9"}, {"Comment", "a\nb"}},
         {},
         {},
         {}},
        {"one device takes the word literally",
         {2},
         {{"Name", "<Edit>"}},
         {},
         {{2, {{"Name", "<Edit>"}}}},
         {2}},
        {"a type keeps its place", {3}, {{"Type", "Laptop"}}, {}, {{3, {{"Type", "1004"}}}}, {3}},
        {"a type that nobody knows is mended", {7}, {{"Type", "UPS"}}, {}, {{7, {{"Type", "10"}}}}, {7}},
        {"several: the word leaves, also where a device has it as its own text",
         {1, 2, 3},
         {{"Name", "<Edit>"}, {"Comment", "<Edit>"}},
         {},
         {},
         {}},
        {"several: one field, all stamped, also who had the text",
         {1, 2, 3},
         {{"Comment", "a\nb"}},
         {},
         {{3, {{"Comment", "a\r\nb"}}}},
         {1, 2, 3}},
        {"several: emptied",
         {1, 2},
         {{"Comment", ""}},
         {},
         {{1, {{"Comment", ""}}}, {2, {{"Comment", ""}}}},
         {1, 2}},
        {"several: a box", {1, 2}, {{"SlashDraw", "0"}}, {}, {{1, {{"SlashDraw", "0"}}}}, {1, 2}},
        {"several jacks: a number is written, also where all have it",
         {4, 5},
         {{"Priority", "1"}},
         {},
         {},
         {4, 5}},
        {"several: to do without its reminder is left alone", {1, 2}, {{"ToDo", "x"}}, {}, {}, {}},
        {"several: reminder off keeps date and to do",
         {1, 2},
         {{"ReminderOn", "0"}, {"ToDo", "x"}},
         {},
         {{1, {{"ReminderOn", "0"}}}},
         {1, 2}},
        {"several: reminder on dates all of them",
         {1, 2},
         {{"ReminderOn", "1"}},
         {},
         {{1, {{"ReminderDate", std::string(pickers)}}},
          {2, {{"ReminderOn", "1"}, {"ReminderDate", std::string(pickers)}}}},
         {1, 2}},
        {"one: reminder on takes the date shown",
         {2},
         {{"ReminderOn", "1"}, {"ToDo", "x"}},
         {},
         {{2, {{"ReminderOn", "1"}, {"ReminderDate", std::string(pickers)}, {"ToDo", "x"}}}},
         {2}},
        {"one: a padlock",
         {1},
         {},
         {{"Name", true}, {"SlashText", false}},
         {{1, {{"Name", "pc-1 >>"}, {"SlashText", "kept"}}}},
         {1}},
        {"several: a padlock keeps each device's own text",
         {1, 2, 3},
         {},
         {{"Name", true}},
         {{1, {{"Name", "pc-1 >>"}}}, {2, {{"Name", "pc-2 >>"}}}, {3, {{"Name", "<Edit> >>"}}}},
         {1, 2, 3}},
        {"a jack loses texts that it has no use for",
         {4},
         {{"ToJack", "J9"}},
         {},
         {{4, {{"ToJack", "J9"}, {"Name", ""}, {"VertText", ""}}}},
         {4}},
        {"several jacks do not",
         {4, 5},
         {{"Priority", "3"}},
         {},
         {{4, {{"Priority", "3"}}}, {5, {{"Priority", "3"}}}},
         {4, 5}},
        {"a marker keeps its area and pictures",
         {6},
         {{"Comment", "Hall\nNorth"}},
         {},
         {{6, {{"Comment", "Hall\r\nNorth"}, {"Name", ""}}}},
         {6}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        doc.removeDevices(std::vector<DeviceKey>{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}});
        SetUp();
        const PropertiesSet set = setOf(test.selection);
        CPropertiesForm form(doc, set);
        for (const auto& [field, value] : test.entered)
            form.enter(field, value);
        for (const auto& [field, kept] : test.locks) {
            form.setKept(field, kept);
            EXPECT_EQ(form.kept(field), kept);
        }
        auto expected = snapshot();
        for (const auto& [recID, changes] : test.expected)
            for (const auto& [field, value] : changes)
                std::ranges::find(expected[recID], field, &Pairs::value_type::first)->second = value;
        clock.advance(std::chrono::hours(1));
        applyProperties(doc, set.devices, form.edit(std::string(pickers)));
        EXPECT_EQ(snapshot(), expected);
        for (const auto& record : doc.records())
            if (record->isDevice())
                EXPECT_EQ(record->Modified == doc.now(), test.stamped.contains(record->RecID))
                    << record->RecID;
    }
}

TEST_F(PropertiesFormTest, ShowsHintsAndWhatWasChangedElsewhere) {
    using Source = CPropertiesForm::Source;
    CPropertiesForm form(doc, setOf({1, 2}));
    EXPECT_EQ(form.text("Name"), (CPropertiesForm::Shown{"<Edit>", Source::Various}));
    EXPECT_EQ(form.text("Comment"), (CPropertiesForm::Shown{"a\nb", Source::Shared}));
    EXPECT_EQ(form.kept("SlashText"), std::nullopt);
    EXPECT_EQ(CPropertiesForm(doc, setOf({6})).text("VertText").text, "a.png\nb.pdf");

    form.enter("ToJack", "mine");
    doc.edit(*doc.findDevice(2), [](CHardware& device) {
        device.Name = "pc-1";
        device.ToJack = "theirs";
    });
    doc.removeDevices(std::vector<DeviceKey>{{1, 0}});
    EXPECT_EQ(form.text("Name").text, "pc-1"); // the only one that is left
    EXPECT_EQ(form.text("ToJack"), (CPropertiesForm::Shown{"mine", Source::User}));
    EXPECT_TRUE(form.changedElsewhere("Name") && form.changedElsewhere("ToJack"));
    EXPECT_FALSE(form.changedElsewhere("Comment"));
    EXPECT_EQ(form.gone(), 1U);
    EXPECT_EQ(applyProperties(doc, form.devices(), form.edit({})), 1U);
    EXPECT_EQ(doc.findDevice(1), nullptr);
    EXPECT_EQ(doc.findDevice(2)->ToJack, "mine");
    EXPECT_EQ(doc.findDevice(2)->Name, "pc-1");
}

TEST_F(PropertiesFormTest, NeverTakesAnotherDeviceOfTheSameNumberForItsOwn) {
    ASSERT_FALSE(link.saveAs(path).failed());
    ASSERT_FALSE(otherLink.open(path));
    add(DeviceType::Computer, {{"Name", "added here"}});
    CPropertiesForm form(doc, setOf({1, 2, 8}));
    other.edit(*other.findDevice(1), [](CHardware& device) { device.Name = device.IPAddress = "renamed"; });
    other.removeDevices(std::vector<DeviceKey>{{2, 0}});
    for (const std::int32_t recID : {2, 8})
        ASSERT_EQ(other.addDevice(DeviceType::Computer)->RecID, recID);
    ASSERT_FALSE(otherLink.save().failed());
    ASSERT_FALSE(link.reload());
    EXPECT_EQ(form.devices(), (std::vector<DeviceKey>{{1, 0}, {9, 0}}));
    EXPECT_EQ(doc.findDevice(9)->Name, "added here");
    EXPECT_TRUE(form.changedElsewhere("Name"));

    doc.removeDevices(std::vector<DeviceKey>{{1, 0}});
    add(DeviceType::Computer, {});
    ASSERT_NE(doc.findDevice(1), nullptr);
    EXPECT_EQ(form.devices(), (std::vector<DeviceKey>{{9, 0}}));
    EXPECT_EQ(form.gone(), 2U);
    ASSERT_FALSE(link.open(path));
    EXPECT_EQ(form.device(), nullptr) << "another datafile";
}

TEST_F(PropertiesFormTest, AsksAboutValuesThatAnotherDeviceHas) {
    const auto question = [this](std::int32_t recID, const Pairs& values) {
        CHardware edited = *doc.findDevice(recID);
        for (const auto& [field, value] : values)
            EXPECT_FALSE(setFieldValue(edited, *findRecordField(field), value));
        const auto found = findDuplicate(doc, edited, setOf({recID}).devices);
        return found ? std::to_string(found->other.recID) + ": " + found->question() : std::string();
    };
    const std::string end = "value(s), do you want to continue?";
    EXPECT_EQ(question(2, {{"Name", "PC-1"}, {"IPAddress", "10.0.0.1"}}),
              "1: Another device has the same \"Name\" \"IP Address\" " + end);
    EXPECT_EQ(question(2, {{"Name", "<edit>"}}), "3: Another device has the same \"Name\" " + end);
    EXPECT_EQ(question(1, {{"ToJack", "j2"}}), "2: Another device has the same \"to Jack\" " + end);
    EXPECT_EQ(question(4, {{"ToJack", "j2"}}),
              "5: Another Jack has the same \"Jack#\" value, do you want to continue?");
    EXPECT_EQ(question(1, {{"Name", "left over"}}), ""); // jacks and markers do not count
    EXPECT_EQ(question(2, {{"Name", ""}, {"IPAddress", ""}, {"ToJack", ""}}), "");
    EXPECT_EQ(question(6, {{"Comment", "a\r\nb"}}), "");
    doc.edit(*doc.findDevice(3), [](CHardware& device) { device.Name = "b\xC3\xBCro-1"; });
    EXPECT_EQ(question(2, {{"Name", "B\xDCRO-1"}}), "3: Another device has the same \"Name\" " + end);
}

} // namespace

} // namespace mirovane::test
