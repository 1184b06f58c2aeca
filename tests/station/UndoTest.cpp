#include "model/CriteriaEdit.h"
#include "model/FloorMap.h"
#include "tests/station/StationFixture.h"

#include <array>
#include <gmock/gmock.h>
#include <map>
#include <random>

namespace mirovane::test {
namespace {

using Way = CEditHistory::Way;

class UndoTest : public StationFixture {
protected:
    UndoTest() { open(a); }

    SaveReport edit(const std::string& name, const std::function<void(CMirovaneDoc&)>& change) {
        return a.station->edit({EditRequest::Kind::Change, name, {}}, change);
    }
    SaveReport setName(std::int32_t recID, const std::string& name) {
        return updateDevices(
            *a.station, std::array{recID}, [&](CHardware& held) { held.Name = name; });
    }
    std::string next(Way way) const {
        const EditStep* step = a.station->edits().history().next(way);
        return step ? step->name.words() : "";
    }
    bool logged(const std::string& line) {
        const Lines lines = a.logged();
        return std::ranges::find(lines, line) != lines.end();
    }
    /// What B reads in the datafile.
    CMirovaneDoc& saved() { return open(b).doc(); }
};

TEST_F(UndoTest, FieldsThatOthersWroteStay) {
    updateDevices(
        *a.station, std::array{1, 2}, [](CHardware& held) { held.Name = held.Comment = "new"; });
    a.doc().editInBackground(a.device(1), [](CHardware& held) { held.Name = "found"; });
    ASSERT_TRUE(a.station->saveDatafile().saved());
    open(b);
    b.doc().editByUser(b.device(2), [](CHardware& held) { held.Comment = "theirs", held.ToDo = "call"; });
    ASSERT_TRUE(b.station->saveDatafile().saved()); // A has not read it when the user undoes
    ASSERT_TRUE(a.station->undo().saved());
    EXPECT_EQ(a.device(1).Name, "found");
    EXPECT_EQ(a.device(1).Comment, "");
    EXPECT_EQ(a.device(2).Name, "");
    EXPECT_EQ(a.device(2).Comment, "theirs");
    EXPECT_EQ(a.device(2).ToDo, "call");
    const Lines lines = a.logged();
    EXPECT_THAT(lines,
                testing::Contains("Undo: Device 1 \"found\": Name stays \"found\", which was written since"));
    EXPECT_THAT(lines, testing::Contains(
                           "Undo: Device 2 \"new\": Comment stays \"theirs\", which was written since"));

    ASSERT_TRUE(a.station->redo().saved());
    EXPECT_EQ(saved().findDevice(2)->Name, "new");
    EXPECT_EQ(b.device(2).Comment, "theirs");
}

TEST_F(UndoTest, DeletedDevicesComeBackAsTheyWere) {
    setName(2, "printer");
    const CHardware before = a.device(2);
    deleteDevices(*a.station, std::array{2, 3});
    ASSERT_TRUE(a.station->undo().saved());
    EXPECT_TRUE(sameStored(a.device(2), before));
    EXPECT_TRUE(saved().findDevice(3));

    // Its number is taken meanwhile: earlier and later steps follow it.
    deleteDevices(*a.station, std::array{2});
    open(b);
    b.doc().addDevice(DeviceType::Camera, [](CHardware& held) { held.Name = "theirs"; });
    ASSERT_TRUE(b.station->saveDatafile().saved());
    ASSERT_EQ(b.device(2).Name, "theirs");
    ASSERT_TRUE(a.station->undo().saved());
    ASSERT_TRUE(a.doc().findDevice(4));
    EXPECT_EQ(a.device(4).Name, "printer");
    ASSERT_TRUE(a.station->undo().saved());
    EXPECT_EQ(a.device(4).Name, "");
    EXPECT_EQ(a.device(2).Name, "theirs");
    a.station->redo();
    a.station->redo();
    EXPECT_FALSE(a.doc().findDevice(4));
    EXPECT_EQ(a.device(2).Name, "theirs");
}

TEST_F(UndoTest, AddedDevicesGoAlsoUnderAnotherNumber) {
    const EditRequest request{EditRequest::Kind::Add, "Add", {}, EditRequest::Saving::Later};
    a.station->edit(request, [](CMirovaneDoc& document) {
        document.addDevice(DeviceType::Jack, [](CHardware& held) { held.ToJack = "ours"; });
    });
    open(b);
    b.doc().addDevice(DeviceType::Jack, [](CHardware& held) { held.ToJack = "theirs"; });
    ASSERT_TRUE(b.station->saveDatafile().saved());
    ASSERT_TRUE(a.station->saveDatafile().saved());
    ASSERT_EQ(a.device(5).ToJack, "ours");
    a.station->undo();
    EXPECT_FALSE(a.doc().findDevice(5));
    EXPECT_EQ(a.device(4).ToJack, "theirs");

    // Another station deleted it, and its number is another device's.
    a.station->redo();
    ASSERT_EQ(open(b).device(5).ToJack, "ours");
    b.doc().removeDevices(std::array{DeviceKey{5, 0}});
    b.doc().addDevice(DeviceType::Switch, [](CHardware& held) { held.Name = "core"; });
    ASSERT_TRUE(b.station->saveDatafile().saved());
    a.logged();
    a.station->undo();
    EXPECT_EQ(a.device(5).Name, "core");
    EXPECT_TRUE(
        logged("Undo: Device 5 \"ours\" was added by this, and is changed or gone: nothing is removed"));
}

/// A deletion that is in no datafile yet and its undo are nothing to a merge.
TEST_F(UndoTest, AnUnsavedDeletionIsTakenBack) {
    const auto remove = [](CMirovaneDoc& document) {
        document.removeDevices(std::array{DeviceKey{1, 0}, DeviceKey{2, 0}});
    };
    a.station->edit({EditRequest::Kind::Delete, "Delete", {}, EditRequest::Saving::Later}, remove);
    open(b);
    rename(b, 2, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    a.station->undo();
    EXPECT_EQ(a.doc().deviceCount(), 3U);
    EXPECT_EQ(a.device(2).Name, "by b");
    EXPECT_EQ(saved().deviceCount(), 3U);
}

TEST_F(UndoTest, SpecialRecordsToo) {
    const auto applications = [this] {
        Lines names;
        for (const auto& record : a.doc().records())
            if (record->Type == SpecialType::ApplicationRecord)
                names.push_back(applicationFromRecord(*record).name);
        return names;
    };
    const auto addApplication = [](const std::string& name) {
        return [name](CMirovaneDoc& document) {
            CHardware record;
            record.Type = SpecialType::ApplicationRecord;
            toRecord(ApplicationValues{true, name, "browse $mvIP"}, record);
            document.append(record);
        };
    };
    edit("First", addApplication("first"));
    edit("Second", addApplication("second"));
    edit("Delete first", [](CMirovaneDoc& document) {
        document.remove(*document.findSpecial(SpecialType::ApplicationRecord));
    });
    a.station->undo();
    EXPECT_EQ(applications(), (Lines{"second", "first"}));
    a.station->undo();
    EXPECT_EQ(applications(), Lines{"first"});
    a.station->undo();

    edit(
        "Map",
        [](CMirovaneDoc& document) {
            setFloorMap(document, {"plan.png", "photos"});
        });
    edit("Photos", [](CMirovaneDoc& document) { setFloorMap(document, {"plan.png", "faces"}); });
    a.station->undo();
    EXPECT_EQ(floorMapOf(a.doc()), (FloorMapValues{"plan.png", "photos"}));
    a.station->undo();
    EXPECT_FALSE(a.doc().findSpecial(SpecialType::FloorMapRecord));

    edit(
        "Criteria",
        [](CMirovaneDoc& document) {
            setCriteria(document, DeviceType::Printer, 2, CriteriaColumn::Argument, "changed");
        });
    a.doc().editInBackground(a.device(1), [](CHardware& held) { held.RuleStamps.fill(7); });
    a.station->undo();
    EXPECT_NE(criteriaFromRecord(*a.doc().criteria(DeviceType::Printer, 2)).Argument, "changed");
    EXPECT_EQ(a.device(1).RuleStamps[2], 0) << "text files are searched again by the rule of before";
}

TEST_F(UndoTest, AFullDatafileKeepsWhatCannotComeBack) {
    deleteDevices(*a.station, std::array{1, 2, 3});
    while (a.doc().size() < Datafile::maxRecords - 1)
        a.doc().addDevice(DeviceType::Jack);
    a.station->undo();
    EXPECT_EQ(a.doc().size(), Datafile::maxRecords);
    EXPECT_EQ(next(Way::Undo), "Delete devices");
    a.doc().removeDevices(std::array{DeviceKey{10, 0}, DeviceKey{11, 0}});
    a.station->undo();
    const auto isPrinter = [](const auto& record) {
        return record->Type == DeviceType::Printer;
    };
    EXPECT_EQ(std::ranges::count_if(a.doc().records(), isPrinter), 3);
}

TEST_F(UndoTest, StepsAreNamedAndTold) {
    struct : StationObserver {
        void historyChanged() override { ++told; }
        int told = 0;
    } news;
    a.station->addObserver(news);
    EXPECT_EQ(a.station->undo().outcome, SaveReport::Outcome::Deferred);
    setName(1, "first");
    setName(1, "second");
    a.station->undo();
    EXPECT_EQ(next(Way::Redo), "Change devices");
    EXPECT_EQ(news.told, 3);
    setName(1, "third"); // what was undone cannot be redone on top of it
    EXPECT_EQ(next(Way::Redo), "");
    a.station->undo();
    EXPECT_EQ(a.device(1).Name, "first");
    a.station->newDatafile();
    EXPECT_EQ(next(Way::Undo) + next(Way::Redo), "");
    EXPECT_EQ(news.told, 6);
    a.station->removeObserver(news);
}

TEST_F(UndoTest, LargeStepsPushTheOldestOut) {
    const std::size_t large = CEditHistory::mostBytes / 5;
    for (char c = 'a'; c <= 'd'; ++c)
        setName(1, std::string(large, c)); // each keeps the text before and the one after
    EXPECT_EQ(a.station->edits().history().steps().size(), 2U);
    setName(1, std::string(2 * CEditHistory::mostBytes, 'e'));
    EXPECT_EQ(a.station->edits().history().steps().size(), 1U) << "the newest stays, however large";
    a.station->undo();
    EXPECT_EQ(a.device(1).Name, std::string(large, 'd'));
}

// ---- random commands

/// Devices are known by their Username; what A's user sees of them, and the Comment, which only B edits.
struct Floor {
    struct Device {
        std::string name;
        std::int32_t x = 0;
        bool operator==(const Device&) const = default;
    };
    std::map<std::string, Device> devices;
    std::vector<std::string> applications; ///< sorted
    std::string argument;

    bool operator==(const Floor&) const = default;

    friend void PrintTo(const Floor& floor, std::ostream* out) {
        for (const auto& [tag, device] : floor.devices)
            *out << tag << "=" << device.name << "@" << device.x << " ";
        for (const std::string& name : floor.applications)
            *out << "/" << name;
        *out << " " << floor.argument;
    }
};

class RandomUndoTest : public UndoTest, public testing::WithParamInterface<unsigned> {
protected:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }

    static bool isOfB(const CHardware& device) { return device.Username.front() == 'b'; }

    Floor seen() {
        Floor floor;
        for (const auto& record : a.doc().records())
            if (record->isDevice() && !isOfB(*record))
                floor.devices[record->Username] = {record->Name, record->Position.x};
            else if (record->Type == SpecialType::ApplicationRecord)
                floor.applications.push_back(applicationFromRecord(*record).name);
        std::ranges::sort(floor.applications);
        floor.argument = criteriaFromRecord(*a.doc().criteria(DeviceType::Printer, 3)).Argument;
        return floor;
    }

    void expectCommentsOfB() {
        for (const auto& record : a.doc().records())
            if (record->isDevice())
                EXPECT_EQ(record->Comment, comments[record->Username]) << record->Username;
    }

    std::vector<DeviceKey> someDevices() {
        std::vector<DeviceKey> keys;
        for (const auto& record : a.doc().records())
            if (record->isDevice() && !isOfB(*record) && below(3) == 0)
                keys.push_back(a.doc().keyOf(*record));
        return keys;
    }

    void commandOfA() {
        using Kind = EditRequest::Kind;
        const std::string tag = "a" + std::to_string(++count);
        EditRequest request{Kind::Settings, tag, {}};
        std::function<void(CMirovaneDoc&)> change;
        switch (below(5)) {
        case 0:
            request.kind = Kind::Add;
            change = [&](CMirovaneDoc& document) {
                for (int i = below(3); i >= 0; --i)
                    document.addDevice(DeviceType::Jack,
                                       [&](CHardware& held) { held.Username = tag + char('a' + i); });
            };
            break;
        case 1:
            request = {Kind::Delete, tag, someDevices()};
            change = [&](CMirovaneDoc& document) {
                document.removeDevices(request.devices);
            };
            break;
        case 2:
            change = [&](CMirovaneDoc& document) {
                setCriteria(document, DeviceType::Printer, 3, CriteriaColumn::Argument, tag);
            };
            break;
        case 3:
            change = [&](CMirovaneDoc& document) {
                const CHardware* old = document.findSpecial(SpecialType::ApplicationRecord);
                if (old && below(2) == 0)
                    return document.remove(*old);
                CHardware record;
                record.Type = SpecialType::ApplicationRecord;
                toRecord(ApplicationValues{true, tag, "run"}, record);
                document.append(record);
            };
            break;
        default:
            request = {Kind::Change, tag, someDevices()};
            change = [&, byName = below(2) == 0](CMirovaneDoc& document) {
                for (const DeviceKey& key : request.devices)
                    document.editByUser(*document.findDevice(key), [&](CHardware& held) {
                        byName ? void(held.Name = tag) : void(held.Position.x += 10);
                    });
            };
        }
        request.saving = below(2) == 0 ? EditRequest::Saving::Later : EditRequest::Saving::Now;
        const Floor before = seen();
        a.station->edit(request, change);
        if (const Floor after = seen(); after != before) {
            undone.clear();
            done.push_back({before, after});
        }
    }

    /// Adds a device, perhaps under a number that A has given, too; or comments on what A has saved, and A
    /// reads that before it goes on: else A's deletions would give way to it.
    void commandOfB() {
        const std::string tag = "b" + std::to_string(++count);
        const bool comment = !a.doc().unsavedEdits() && below(2) == 0;
        open(b);
        if (!comment)
            b.doc().addDevice(DeviceType::Camera, [&](CHardware& held) { held.Username = tag; });
        for (const auto& record : b.doc().records())
            if (comment && record->isDevice() && below(3) == 0)
                b.doc().editByUser(*record,
                                   [&](CHardware& held) { held.Comment = comments[held.Username] = tag; });
        ASSERT_TRUE(b.station->saveDatafile().saved());
        if (comment || below(2) == 0)
            pass(3100);
    }

    using Steps = std::vector<std::pair<Floor, Floor>>;
    std::mt19937 random{GetParam()};
    int count = 0;
    Steps done, undone;
    std::map<std::string, std::string> comments;
};

TEST_P(RandomUndoTest, AgreesWithAPlainModel) {
    a.doc().removeDevices(std::array{DeviceKey{1, 0}, DeviceKey{2, 0}, DeviceKey{3, 0}});
    ASSERT_TRUE(a.station->saveDatafile().saved());
    for (int i = 0; i < 150 && !HasFailure(); ++i) {
        const int what = below(10);
        if (what < 4) {
            commandOfA();
        } else if (what < 6) {
            if (done.empty() == a.station->undo().saved())
                FAIL() << "undo with " << done.size() << " steps";
            if (done.empty())
                continue;
            EXPECT_EQ(seen(), done.back().first) << i;
            undone.push_back(done.back());
            done.pop_back();
        } else if (what < 8) {
            a.station->redo();
            if (undone.empty())
                continue;
            EXPECT_EQ(seen(), undone.back().second) << i;
            done.push_back(undone.back());
            undone.pop_back();
        } else {
            commandOfB();
        }
        EXPECT_EQ(a.station->edits().history().steps().size(), done.size());
    }
    ASSERT_TRUE(a.station->saveDatafile().saved());
    expectCommentsOfB();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomUndoTest, testing::Range(1U, 9U));

} // namespace
} // namespace mirovane::test
