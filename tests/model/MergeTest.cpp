#include "model/Criteria.h"
#include "model/Document.h"
#include "tests/model/DocumentFixture.h"

#include <algorithm>
#include <functional>
#include <ostream>

namespace mirovane {

namespace {

using Lines = std::vector<std::string>;
using Edit = std::function<void(CMirovaneDoc&)>;

const CHardware& device(const CMirovaneDoc& doc, std::int32_t recID) {
    return *doc.findDevice(recID);
}

Edit set(std::int32_t recID, std::string CHardware::*field, const std::string& value) {
    return [=](CMirovaneDoc& doc) {
        doc.editByUser(device(doc, recID), [&](CHardware& held) { held.*field = value; });
    };
}

Edit add(const std::string& name) {
    return [name](CMirovaneDoc& doc) {
        doc.addDevice(DeviceType::Printer, [&](CHardware& held) { held.Name = name; });
    };
}

Edit del(std::int32_t recID) {
    return [recID](CMirovaneDoc& doc) {
        doc.removeDevices(std::vector<std::int32_t>{recID});
    };
}

/// What Live Stat found.
Edit found(std::int32_t recID, std::int32_t state, const std::string& user) {
    return [=](CMirovaneDoc& doc) {
        doc.editInBackground(device(doc, recID), [&](CHardware& held) {
            held.State = state;
            held.Username = user;
            held.Modified = doc.now();
        });
    };
}

CHardware special(std::int32_t type, const std::string& name, const std::string& second) {
    CHardware record;
    record.Type = type;
    record.Name = name;
    (type == SpecialType::DiscoverRangeRecord ? record.IPAddress : record.ToJack) = second;
    return record;
}

const CHardware& nth(const CMirovaneDoc& doc, std::int32_t type, int ordinal) {
    for (std::size_t i = 0;; ++i) {
        if (doc.at(i).Type == type && ordinal-- == 0)
            return doc.at(i);
    }
}

Edit setNth(std::int32_t type, int ordinal, std::string CHardware::*field, const std::string& value) {
    return [=](CMirovaneDoc& doc) {
        doc.edit(nth(doc, type, ordinal), [&](CHardware& held) { held.*field = value; });
    };
}

Edit removeNth(std::int32_t type, int ordinal) {
    return [=](CMirovaneDoc& doc) {
        doc.remove(nth(doc, type, ordinal));
    };
}

Edit append(std::int32_t type, const std::string& name, const std::string& second) {
    return [=](CMirovaneDoc& doc) {
        doc.append(special(type, name, second));
    };
}

Edit both(Edit a, Edit b) {
    return [a = std::move(a), b = std::move(b)](CMirovaneDoc& doc) {
        a(doc);
        b(doc);
    };
}

/// Devices as "ID Name/Comment/State User", applications as "Name=command", ranges as "From..To", one line.
std::string summary(const CMirovaneDoc& doc) {
    std::string text;
    for (std::size_t i = 0; i < doc.size(); ++i) {
        const CHardware& record = doc.at(i);
        if (record.isDevice()) {
            text += std::to_string(record.RecID) + " " + record.Name;
            text += record.Comment.empty() ? "" : "/" + record.Comment;
            text += record.State == DeviceState::On ? " On" : "";
            text += record.Username.empty() ? "" : " " + record.Username;
            text += "; ";
        } else if (record.Type == SpecialType::ApplicationRecord) {
            text += record.Name + "=" + record.ToJack + "; ";
        } else if (record.Type == SpecialType::DiscoverRangeRecord) {
            text += record.Name + ".." + record.IPAddress + "; ";
        }
    }
    return text;
}

struct Case {
    const char* name;
    Edit theirs, ours;
    std::string expected;
    Lines lines; ///< of the log, after "Merge: "

    friend void PrintTo(const Case& tested, std::ostream* out) { *out << tested.name; }
};

constexpr std::int32_t app = SpecialType::ApplicationRecord;
constexpr std::int32_t range = SpecialType::DiscoverRangeRecord;
const std::string apps = "web=browse; ssh=term; 10.0.0.1..10.0.0.9; ";

/// `ours` is saved last, without having seen `theirs`.
class MergeTest : public test::DocumentFixture, public testing::WithParamInterface<Case> {
protected:
    MergeTest() {
        log.addListener([this](const std::string& line, bool) {
            constexpr std::string_view mark = " - Merge: ";
            if (const auto at = line.find(mark); at != std::string::npos)
                merged.push_back(line.substr(at + mark.size()));
        });
        doc.newDatafile();
        for (const char* name : {"a", "b", "c"})
            add(name)(doc);
        doc.append(special(app, "web", "browse"));
        doc.append(special(app, "ssh", "term"));
        doc.append(special(range, "10.0.0.1", "10.0.0.9"));
        EXPECT_FALSE(doc.saveAs(path));
        EXPECT_FALSE(other.open(path));
    }

    Lines merged;
};

TEST_P(MergeTest, KeepsBothSides) {
    GetParam().theirs(other);
    clock.advance(std::chrono::seconds(1));
    ASSERT_FALSE(other.save());
    GetParam().ours(doc);
    ASSERT_FALSE(doc.save());
    ASSERT_FALSE(other.reload());
    EXPECT_EQ(summary(other), GetParam().expected);
    EXPECT_EQ(summary(doc), GetParam().expected);
    EXPECT_EQ(merged, GetParam().lines);
    EXPECT_FALSE(doc.unsavedEdits());
}

const auto Name = &CHardware::Name;
const auto Comment = &CHardware::Comment;
const auto ToJack = &CHardware::ToJack;
const auto IPAddress = &CHardware::IPAddress;

INSTANTIATE_TEST_SUITE_P(
    Devices, MergeTest,
    testing::Values(
        Case{"other devices", set(1, Name, "x"), set(2, Name, "y"), "1 x; 2 y; 3 c; " + apps, {}},
        Case{"other fields of one device",
             set(1, Name, "x"),
             set(1, Comment, "y"),
             "1 x/y; 2 b; 3 c; " + apps,
             {}},
        Case{"the same field",
             set(1, Comment, "two\r\nlines"),
             set(1, Comment, "y"),
             "1 a/y; 2 b; 3 c; " + apps,
             {"Comment of device 1 \"a\": \"two\\r\\nlines\", saved by another station, gave way to \"y\""}},
        Case{"the same value", set(1, Name, "x"), set(1, Name, "x"), "1 x; 2 b; 3 c; " + apps, {}},
        Case{"changed and changed back",
             set(1, Name, "x"),
             both(set(1, Name, "y"), set(1, Name, "a")),
             "1 x; 2 b; 3 c; " + apps,
             {}},
        Case{"new devices of both",
             add("x"),
             both(add("y"), add("z")),
             "1 a; 2 b; 3 c; " + apps + "4 x; 6 y; 5 z; ",
             {"Device 4 \"y\" has the RecID 6 now: another station gave its own to a device of its own"}},
        Case{"new devices that look alike",
             add("x"),
             add("x"),
             "1 a; 2 b; 3 c; " + apps + "4 x; 5 x; ",
             {"Device 4 \"x\" has the RecID 5 now: another station gave its own to a device of its own"}},
        Case{"both delete", del(2), del(2), "1 a; 3 c; " + apps, {}},
        Case{"deleted there, changed here",
             del(2),
             set(2, Comment, "y"),
             "1 a; 3 c; " + apps + "2 b/y; ",
             {"Device 2 \"b\" was deleted by another station and changed here: it is kept"}},
        Case{"deleted there and its number given away, changed here",
             both(del(2), add("x")),
             set(2, Comment, "y"),
             "1 a; 3 c; " + apps + "2 x; 4 b/y; ",
             {"Device 2 \"b\" was deleted by another station and changed here: it is kept",
              "Device 2 \"b\" has the RecID 4 now: another station gave its own to a device of its own"}},
        Case{"renamed there, changed here",
             set(1, Name, "x"),
             set(1, Comment, "y"),
             "1 x/y; 2 b; 3 c; " + apps,
             {}},
        Case{"changed there, deleted here",
             set(2, Name, "x"),
             del(2),
             "1 a; 2 x; 3 c; " + apps,
             {"Device 2 \"x\" was deleted here and changed by another station: it is kept"}},
        Case{"went On there, deleted here", found(2, DeviceState::On, ""), del(2), "1 a; 3 c; " + apps, {}},
        Case{"deleted here after Live Stat found something here",
             set(1, Name, "x"),
             both(found(2, DeviceState::On, "eva"), del(2)),
             "1 x; 3 c; " + apps,
             {}},
        Case{"deleted and replaced here, other changes there",
             set(1, Name, "x"),
             both(del(3), add("z")),
             "1 x; 2 b; " + apps + "3 z; ",
             {}},
        Case{"Live Stat here, an edit there",
             set(1, &CHardware::Username, "ann"),
             both(found(1, DeviceState::On, "eva"), set(1, Comment, "y")),
             "1 a/y On ann; 2 b; 3 c; " + apps,
             {}},
        Case{"an edit here, Live Stat there",
             found(1, DeviceState::On, "eva"),
             set(1, &CHardware::Username, "ann"),
             "1 a On ann; 2 b; 3 c; " + apps,
             {"Username of device 1 \"a\": \"eva\", saved by another station, gave way to \"ann\""}}));

INSTANTIATE_TEST_SUITE_P(
    Special, MergeTest,
    testing::Values(
        Case{"other entries",
             setNth(app, 0, ToJack, "x"),
             setNth(app, 1, ToJack, "y"),
             "1 a; 2 b; 3 c; web=x; ssh=y; 10.0.0.1..10.0.0.9; ",
             {}},
        Case{"an entry in front deleted there",
             removeNth(app, 0),
             setNth(app, 1, ToJack, "y"),
             "1 a; 2 b; 3 c; ssh=y; 10.0.0.1..10.0.0.9; ",
             {}},
        Case{"command and name of one entry",
             setNth(app, 0, Name, "www"),
             setNth(app, 0, ToJack, "y"),
             "1 a; 2 b; 3 c; www=y; ssh=term; 10.0.0.1..10.0.0.9; ",
             {}},
        Case{"all of one entry against its command",
             both(setNth(app, 0, Name, "www"), setNth(app, 0, ToJack, "x")),
             setNth(app, 0, ToJack, "y"),
             "1 a; 2 b; 3 c; www=y; ssh=term; 10.0.0.1..10.0.0.9; ",
             {"ToJack of external application \"web\": \"x\", saved by another station, gave way to \"y\""}},
        Case{"both add",
             append(app, "x", "1"),
             append(app, "y", "2"),
             "1 a; 2 b; 3 c; " + apps + "x=1; y=2; ",
             {}},
        Case{"both add the same",
             append(range, "10.1.0.1", "10.1.0.2"),
             append(range, "10.1.0.1", "10.1.0.2"),
             "1 a; 2 b; 3 c; " + apps + "10.1.0.1..10.1.0.2; ",
             {}},
        Case{"deleted there, changed here",
             removeNth(range, 0),
             setNth(range, 0, IPAddress, "10.0.0.8"),
             "1 a; 2 b; 3 c; web=browse; ssh=term; 10.0.0.1..10.0.0.8; ",
             {"Discover range \"10.0.0.1 - 10.0.0.8\" was deleted by another station and changed here: it is "
              "kept"}},
        Case{"changed there, deleted here",
             setNth(app, 1, ToJack, "x"),
             removeNth(app, 1),
             "1 a; 2 b; 3 c; web=browse; ssh=x; 10.0.0.1..10.0.0.9; ",
             {"External application \"ssh\" was deleted here and changed by another station: it is kept"}}));

class MergedDocument : public MergeTest {};

TEST_F(MergedDocument, CriteriaAndFloorMapGoFieldByField) {
    const auto criterion = [](CMirovaneDoc& at, int row, CriteriaColumn column, const char* text) {
        at.setCriteria(DeviceType::Printer, row, static_cast<int>(column), text);
    };
    other.edit(device(other, 1), [](CHardware& held) { held.RuleStamps[6] = held.RuleStamps[8] = 5; });
    criterion(other, 1, CriteriaColumn::Argument, "theirs");
    criterion(other, 2, CriteriaColumn::Delimiter, ";");
    other.setFloorMapPath("theirs.bmp");
    ASSERT_FALSE(other.save());
    criterion(doc, 1, CriteriaColumn::Command, "Set Value");
    criterion(doc, 1, CriteriaColumn::Argument, "ours");
    doc.setFloorMapPath("ours.bmp"); // neither had such a record
    doc.setPhotoFolder("photos");
    ASSERT_FALSE(doc.save());
    const CriteriaRow row = criteriaFromRecord(*doc.criteria(DeviceType::Printer, 1));
    EXPECT_EQ(row.Command + " " + row.Argument, "Set Value ours");
    EXPECT_EQ(criteriaFromRecord(*doc.criteria(DeviceType::Printer, 2)).Delimiter, ";");
    EXPECT_EQ(doc.floorMapPath() + " " + doc.photoFolder(), "ours.bmp photos");
    EXPECT_EQ(device(doc, 1).RuleStamps[6] + device(doc, 1).RuleStamps[8], 0); // judged by new criteria
    EXPECT_EQ(
        merged,
        (Lines{"Name of floor map: \"theirs.bmp\", saved by another station, gave way to \"ours.bmp\"",
               "Argument of criteria \"Name\" of Printer: \"theirs\", saved by another station, gave way "
               "to \"ours\""}));
}

TEST_F(MergedDocument, TextFilesAreSearchedAgainAfterBothSidesChangedADevice) {
    other.editByUser(device(other, 1), [this](CHardware& held) {
        held.Name = "x";
        held.RuleStamps[3] = 77;
        held.StampsModified = doc.now();
    });
    ASSERT_FALSE(other.save());
    set(1, Comment, "y")(doc);
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(device(doc, 1).Modified, doc.now());
    EXPECT_NE(device(doc, 1).StampsModified, device(doc, 1).Modified);
}

TEST_F(MergedDocument, WhoRunsAFeatureIsNeverOverwritten) {
    const auto claim = [](CMirovaneDoc& at) {
        at.edit(*at.findSpecial(SpecialType::LiveStatOwnerRecord), [&at](CHardware& held) {
            held.State = 1;
            held.Name = at.station().computerName;
            held.Username = at.station().userName;
        });
    };
    claim(other);
    ASSERT_FALSE(other.save());
    claim(doc);
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(doc.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "other");
    EXPECT_EQ(merged, Lines{}); // the station asks its user instead

    set(1, Name, "x")(other); // doc's claim stands where nobody else claimed meanwhile
    ASSERT_FALSE(other.reload());
    ASSERT_FALSE(other.save());
    claim(doc);
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(doc.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "host");
    EXPECT_EQ(device(doc, 1).Name, "x");
}

TEST_F(MergedDocument, ASaveThatFailsAfterTheMergeLosesNothing) {
    set(1, Name, "x")(other);
    ASSERT_FALSE(other.save());
    set(1, Comment, "y")(doc);
    add("z")(doc);
    ASSERT_FALSE(doc.reload()); // the merge; what it made is not saved yet
    set(1, Name, "w")(other);
    add("v")(other);
    ASSERT_FALSE(other.save());
    ASSERT_FALSE(doc.save());
    EXPECT_EQ(summary(doc), "1 w/y; 2 b; 3 c; " + apps + "4 v; 5 z; ");
    EXPECT_EQ(merged.size(), 1U);
}

/// Writes down what it is told.
class Watcher final : public DocumentObserver {
public:
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override {
        told += std::to_string(oldRecID) + ">" + std::to_string(newRecID) + " ";
    }
    void documentReplaced() override { told += "replaced "; }

    std::string told;
};

TEST_F(MergedDocument, WhatIsSelectedFollowsItsDeviceToItsNewNumber) {
    add("x")(other);
    ASSERT_FALSE(other.save());
    add("y")(doc);
    doc.setSelected(device(doc, 4), true);
    doc.setLSNowMark(device(doc, 2), true);
    Watcher watcher;
    doc.addObserver(watcher);
    ASSERT_FALSE(doc.save());
    doc.removeObserver(watcher);
    EXPECT_EQ(watcher.told, "4>5 replaced ");
    EXPECT_EQ(device(doc, 5).Selected + device(doc, 5).ShowAll + device(doc, 2).LSNowMark, 3);
    EXPECT_EQ(device(doc, 4).Selected, 0);
}

/// A share whose connection breaks after the file was replaced: the save counts as failed.
class BreakingShare final : public Files {
public:
    Result<FileIdentity, FileError> status(const std::string& path) override { return real_.status(path); }
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override {
        auto taken = real_.lock(path, access, patience);
        if (!taken)
            return taken.error();
        return std::unique_ptr<LockedFile>(std::make_unique<File>(std::move(taken.value()), breaks));
    }

    bool breaks = false;

private:
    struct File final : LockedFile {
        File(std::unique_ptr<LockedFile> real, bool breaks) : real_(std::move(real)), breaks_(breaks) {}
        bool exists() const override { return real_->exists(); }
        FileIdentity identity() const override { return real_->identity(); }
        Result<std::string, FileError> read() override { return real_->read(); }
        Result<FileIdentity, FileError> replace(std::string_view content) override {
            auto replaced = real_->replace(content);
            return breaks_ ? FileError{FileError::Kind::Other, EIO, "cannot write"} : replaced;
        }

        std::unique_ptr<LockedFile> real_;
        bool breaks_;
    };

    PosixFiles real_;
};

TEST_F(MergedDocument, ASaveThatReachedTheFileAllTheSameIsNotDoneTwice) {
    BreakingShare share;
    CMirovaneDoc doubtful(share, clock, log, settings, {"doubtful", "user"});
    ASSERT_FALSE(doubtful.open(path));
    share.breaks = true;
    both(add("x"), both(set(1, Name, "y"), del(2)))(doubtful);
    doubtful.append(special(app, "new", "command"));
    ASSERT_TRUE(doubtful.save());
    share.breaks = false;
    clock.advance(std::chrono::seconds(3));
    ASSERT_FALSE(doubtful.save());
    EXPECT_EQ(summary(doubtful), "1 y; 3 c; " + apps + "4 x; new=command; ");
    EXPECT_EQ(merged, Lines{});
}

} // namespace

} // namespace mirovane
