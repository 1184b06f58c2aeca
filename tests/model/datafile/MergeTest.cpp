#include "model/CriteriaEdit.h"
#include "model/Document.h"
#include "model/FloorMap.h"
#include "model/records/Criteria.h"
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
        doc.editByUser(
            device(doc, recID), [&](CHardware& held) { held.*field = value; });
    };
}

Edit add(const std::string& name) {
    return [name](CMirovaneDoc& doc) {
        doc.addDevice(
            DeviceType::Printer, [&](CHardware& held) { held.Name = name; });
    };
}

Edit del(std::int32_t recID) {
    return [recID](CMirovaneDoc& doc) {
        doc.removeDevices(std::array{DeviceKey{recID}});
    };
}

/// What Live Stat found.
Edit found(std::int32_t recID, std::int32_t state, const std::string& user) {
    return [=](CMirovaneDoc& doc) {
        doc.editInBackground(
            device(doc, recID),
            [&](CHardware& held) {
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
    for (std::size_t i = 0;; ++i)
        if (doc.at(i).Type == type && ordinal-- == 0)
            return doc.at(i);
}

Edit setNth(std::int32_t type, int ordinal, std::string CHardware::*field, const std::string& value) {
    return [=](CMirovaneDoc& doc) {
        doc.edit(
            nth(doc, type, ordinal), [&](CHardware& held) { held.*field = value; });
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
        link.newDatafile();
        for (const char* name : {"a", "b", "c"})
            add(name)(doc);
        doc.append(special(app, "web", "browse"));
        doc.append(special(app, "ssh", "term"));
        doc.append(special(range, "10.0.0.1", "10.0.0.9"));
        EXPECT_FALSE(link.saveAs(path).failed());
        EXPECT_FALSE(otherLink.open(path));
    }

    void lineLogged(const LogLine& line) override {
        constexpr std::string_view mark = "Merge: ";
        if (line.text.starts_with(mark))
            merged.push_back(line.text.substr(mark.size()));
    }

    Lines merged;
};

TEST_P(MergeTest, KeepsBothSides) {
    GetParam().theirs(other);
    clock.advance(std::chrono::seconds(1));
    ASSERT_FALSE(otherLink.save().failed());
    GetParam().ours(doc);
    ASSERT_FALSE(link.save().failed());
    ASSERT_FALSE(otherLink.reload());
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
             set(1, Comment, "two\r\n\x1B[2Jlines"),
             set(1, Comment, "y"),
             "1 a/y; 2 b; 3 c; " + apps,
             {"Comment of device 1 \"a\": \"two\\r\\n [2Jlines\", saved by another station, gave way to "
              "\"y\""}},
        Case{"the same value", set(1, Name, "x"), set(1, Name, "x"), "1 x; 2 b; 3 c; " + apps, {}},
        Case{"changed and changed back",
             set(1, Name, "x"),
             both(set(1, Name, "y"), set(1, Name, "a")),
             "1 x; 2 b; 3 c; " + apps,
             {}},
        Case{"new devices of both",
             both(add("x"), del(1)),
             both(add("y"), add("z")),
             "2 b; 3 c; " + apps + "4 x; 1 y; 5 z; ",
             {"Device 4 \"y\" has the RecID 1 now: another station gave its own to a device of its own"}},
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
        Case{"deleted there, changed and changed back here",
             del(2),
             both(set(2, Name, "y"), set(2, Name, "b")),
             "1 a; 3 c; " + apps,
             {}},
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
        Case{"an entry in front deleted and the next one changed there",
             both(removeNth(app, 0), setNth(app, 0, ToJack, "x")),
             setNth(app, 1, Name, "s"),
             "1 a; 2 b; 3 c; s=x; 10.0.0.1..10.0.0.9; ",
             {}},
        Case{"another entry took its name there",
             both(setNth(app, 0, Name, "ssh"), setNth(app, 0, ToJack, "x")),
             setNth(app, 1, ToJack, "y"),
             "1 a; 2 b; 3 c; ssh=x; ssh=y; 10.0.0.1..10.0.0.9; ",
             {}},
        Case{"a copy of an entry here, other changes there",
             set(1, Name, "x"),
             append(app, "web", "browse"),
             "1 x; 2 b; 3 c; " + apps + "web=browse; ",
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
        Case{"one entry deleted and the other replaced there",
             both(removeNth(app, 0), both(setNth(app, 0, Name, "new"), setNth(app, 0, ToJack, "x"))),
             setNth(app, 0, ToJack, "y"),
             "1 a; 2 b; 3 c; new=x; 10.0.0.1..10.0.0.9; web=y; ",
             {"External application \"web\" was deleted by another station and changed here: it is kept"}},
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

class MergedDocumentTest : public MergeTest {};

TEST_F(MergedDocumentTest, CriteriaAndFloorMapGoFieldByField) {
    const auto criterion = [](CMirovaneDoc& at, int row, CriteriaColumn column, const char* text) {
        setCriteria(at, DeviceType::Printer, row, column, text);
    };
    other.addDevice(DeviceType::Camera);
    criterion(other, 1, CriteriaColumn::Argument, "theirs");
    criterion(other, 2, CriteriaColumn::Delimiter, ";");
    for (const std::int32_t recID : {1, 4}) // by the criteria that doc is about to change
        other.edit(device(other, recID),
                   [](CHardware& held) { held.RuleStamps[6] = held.RuleStamps[8] = 5; });
    setFloorMap(other, {"theirs.bmp", ""});
    ASSERT_FALSE(otherLink.save().failed());
    criterion(doc, 1, CriteriaColumn::Command, "Set Value");
    criterion(doc, 1, CriteriaColumn::Argument, "ours");
    setFloorMap(doc, {"ours.bmp", "photos"}); // neither had such a record
    ASSERT_FALSE(link.save().failed());
    const CriteriaRow row = criteriaFromRecord(*doc.criteria(DeviceType::Printer, 1));
    EXPECT_EQ(row.Command + " " + row.Argument, "Set Value ours");
    EXPECT_EQ(criteriaFromRecord(*doc.criteria(DeviceType::Printer, 2)).Delimiter, ";");
    EXPECT_EQ(floorMapOf(doc), (FloorMapValues{"ours.bmp", "photos"}));
    EXPECT_EQ(device(doc, 1).RuleStamps[6], 0) << "a printer searches its text files again";
    EXPECT_EQ(device(doc, 1).RuleStamps[8], 0);
    EXPECT_EQ(device(doc, 4).RuleStamps[6], 5) << "nobody changed the rules of cameras";
    EXPECT_EQ(
        merged,
        (Lines{"Name of floor map: \"theirs.bmp\", saved by another station, gave way to \"ours.bmp\"",
               "Argument of criteria \"Name\" of Printer: \"theirs\", saved by another station, gave way "
               "to \"ours\""}));
}

TEST_F(MergedDocumentTest, TheLaterOfTwoChangesStampsTheDevice) {
    const auto changeAndSearch = [](CMirovaneDoc& at) {
        at.editByUser(device(at, 1), [&at](CHardware& held) {
            held.Name += "x";
            held.StampsModified = at.now();
        });
    };
    set(1, Comment, "y")(doc);
    clock.advance(std::chrono::seconds(10));
    const TimeStamp later = doc.now();
    changeAndSearch(other);
    ASSERT_FALSE(otherLink.save().failed());
    clock.advance(std::chrono::seconds(10));
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(device(doc, 1).Modified, later) << "when it was edited last, wherever that was";
    EXPECT_NE(device(doc, 1).StampsModified, later) << "text files are searched again: the comment is new";

    ASSERT_FALSE(otherLink.reload());
    changeAndSearch(other);
    ASSERT_FALSE(otherLink.save().failed());
    clock.advance(std::chrono::seconds(10));
    set(1, Comment, "z")(doc);
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(device(doc, 1).Modified, later + 20);
}

TEST_F(MergedDocumentTest, WhoRunsAFeatureIsNeverOverwritten) {
    const auto claim = [](CMirovaneDoc& at) {
        at.edit(*at.findSpecial(SpecialType::LiveStatOwnerRecord), [&at](CHardware& held) {
            held.State = 1;
            held.Name = at.station().computerName;
            held.Username = at.station().userName;
        });
    };
    claim(other);
    ASSERT_FALSE(otherLink.save().failed());
    claim(doc);
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(doc.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "other");
    EXPECT_EQ(merged, Lines{}); // the station asks its user instead

    set(1, Name, "x")(other); // doc's claim holds where nobody else claimed meanwhile
    ASSERT_FALSE(otherLink.reload());
    ASSERT_FALSE(otherLink.save().failed());
    claim(doc);
    ASSERT_FALSE(link.save().failed());
    EXPECT_EQ(doc.findSpecial(SpecialType::LiveStatOwnerRecord)->Name, "host");
    EXPECT_EQ(device(doc, 1).Name, "x");
}

TEST_F(MergedDocumentTest, ASaveThatFailsAfterTheMergeLosesNothing) {
    set(1, Name, "x")(other);
    ASSERT_FALSE(otherLink.save().failed());
    set(1, Comment, "y")(doc);
    add("z")(doc);
    ASSERT_FALSE(link.reload()); // the merge; what it made is not saved yet
    set(1, Name, "w")(other);
    add("v")(other);
    ASSERT_FALSE(otherLink.save().failed());
    ASSERT_FALSE(link.save().failed());
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

TEST_F(MergedDocumentTest, WhatIsSelectedFollowsItsDeviceToItsNewNumber) {
    add("x")(other);
    ASSERT_FALSE(otherLink.save().failed());
    add("y")(doc);
    doc.setSelected(device(doc, 4), true);
    doc.setLSNowMark(device(doc, 2), true);
    Watcher watcher;
    doc.addObserver(watcher);
    ASSERT_FALSE(link.save().failed());
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

    CPosixFiles real_;
};

TEST_F(MergedDocumentTest, ASaveThatReachedTheFileAllTheSameIsNotDoneTwice) {
    BreakingShare share;
    CMirovaneDoc doubtful(clock, log, {"doubtful", "user"});
    CDatafileLink doubtfulLink(doubtful, share, log);
    ASSERT_FALSE(doubtfulLink.open(path));
    share.breaks = true;
    both(add("x"), both(set(1, Name, "y"), del(2)))(doubtful);
    doubtful.append(special(app, "new", "command"));
    ASSERT_TRUE(doubtfulLink.save().failed());
    share.breaks = false;
    clock.advance(std::chrono::seconds(3));
    ASSERT_TRUE(doubtfulLink.save().saved());
    EXPECT_EQ(summary(doubtful), "1 y; 3 c; " + apps + "4 x; new=command; ");
    EXPECT_EQ(merged, Lines{});
}

} // namespace

} // namespace mirovane
