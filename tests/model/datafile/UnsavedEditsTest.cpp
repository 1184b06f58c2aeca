#include "model/datafile/UnsavedEdits.h"

#include "tests/model/DocumentFixture.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>

namespace mirovane {
namespace {

namespace fs = std::filesystem;

/// One user's document that cannot be saved, and what a later program of his makes of it.
class UnsavedEditsTest : public test::DocumentFixture {
protected:
    static constexpr std::int32_t devices = 20;

    /// A program that starts with what `state` holds, while the one before may still be running elsewhere.
    struct Program {
        Program(UnsavedEditsTest& test, const std::string& state)
            : log(test.clock),
              doc(test.clock, log, {"host", "user"}),
              link(doc, files, log),
              unsaved(doc, log, calls, state) {
            EXPECT_FALSE(link.open(test.path));
            unsaved.takeDatafile(test.path);
        }

        CFileCalls calls;
        CPosixFiles files;
        CMessageLog log;
        CMirovaneDoc doc;
        CDatafileLink link;
        CUnsavedEdits unsaved;
    };

    /// As after a kill: the file without its program's lock.
    std::string copyOfState(const std::string& from) {
        const std::string copy = folder.file("copy-" + std::to_string(++copies_));
        fs::copy(from, copy);
        fs::permissions(copy, fs::perms(0700));
        return copy;
    }

    static std::map<std::int32_t, std::string> devicesOf(const CMirovaneDoc& document) {
        std::map<std::int32_t, std::string> all;
        for (const auto& record : document.records())
            if (record->isDevice()) {
                std::string text;
                for (const RecordField& field : recordFields())
                    text += fieldValue(*record, field) + "|";
                EXPECT_TRUE(all.emplace(record->RecID, text).second) << "twice: " << record->RecID;
            }
        return all;
    }

    std::size_t linesWith(const CMessageLog& lines, std::string_view part) const {
        return static_cast<std::size_t>(std::ranges::count_if(
            lines.lines(),
            [part](const LogLine& line) { return line.text.find(part) != std::string::npos; }));
    }

    const std::string state = folder.file("state");

private:
    int copies_ = 0;
};

TEST_F(UnsavedEditsTest, EveryEditIsThereAfterADeathAtAnyMoment) {
    makeFloor(devices);
    Program program(*this, state);
    CMirovaneDoc& held = program.doc;
    std::mt19937 random(20261123);
    const auto upTo = [&random](int most) {
        return std::uniform_int_distribution<int>(0, most)(random);
    };
    const auto anyDevice = [&]() -> const CHardware& {
        for (;;) {
            const CHardware& record =
                held.at(static_cast<std::size_t>(upTo(static_cast<int>(held.size()) - 1)));
            if (record.isDevice())
                return record;
        }
    };
    for (int step = 1; step <= 400; ++step) {
        clock.advance(std::chrono::seconds(1));
        const int dice = upTo(9);
        const std::string text(static_cast<std::size_t>(upTo(600)), static_cast<char>('a' + step % 26));
        if (dice < 2)
            held.addDevice(DeviceType::Phone, [&](CHardware& device) { device.Comment = text; });
        else if (dice < 4 && held.deviceCount() > 5)
            held.remove(anyDevice());
        else
            held.editByUser(anyDevice(), [&](CHardware& device) {
                (dice < 7 ? device.Name : device.ToDo) = text + std::to_string(step);
            });
        program.unsaved.keep(path);
        ASSERT_TRUE(program.unsaved.allKept());
        if (step % 7 != 0)
            continue;
        Program later(*this, copyOfState(state));
        ASSERT_EQ(devicesOf(later.doc), devicesOf(held)) << "after step " << step;
        EXPECT_TRUE(later.doc.unsavedEdits());
    }
    EXPECT_LT(fs::file_size(fs::directory_iterator(state)->path()), 500'000U) << "it must not grow for ever";
    ASSERT_FALSE(program.link.save().failed());
    program.unsaved.keep(path);
    EXPECT_TRUE(fs::is_empty(state));
    const Program later(*this, state);
    EXPECT_EQ(devicesOf(later.doc), devicesOf(held));
    EXPECT_FALSE(later.doc.unsavedEdits());
}

TEST_F(UnsavedEditsTest, WhatAColleagueSavedMeanwhileIsMerged) {
    makeFloor(3);
    const auto name = [](CMirovaneDoc& document, std::int32_t recID, const std::string& value) {
        document.editByUser(*document.findDevice(recID), [&](CHardware& device) { device.Name = value; });
    };
    {
        Program program(*this, state);
        name(program.doc, 1, "mine");
        name(program.doc, 2, "mine too");
        const CHardware* owner = program.doc.findSpecial(SpecialType::LiveStatOwnerRecord);
        program.doc.edit(*owner, [](CHardware& record) { record.State = 1, record.Name = "host"; });
        program.unsaved.keep(path);
        Program second(*this, state); // of the same user at the same time
        EXPECT_EQ(second.doc.findDevice(1)->Name, "pc-1") << "those edits are their program's";
        name(second.doc, 3, "second's");
        second.unsaved.keep(path);
    }
    name(doc, 2, "colleague's");
    ASSERT_FALSE(link.save().failed());

    Program later(*this, state);
    EXPECT_EQ(later.doc.findDevice(1)->Name, "mine");
    EXPECT_EQ(later.doc.findDevice(2)->Name, "mine too");
    EXPECT_EQ(later.doc.findDevice(3)->Name, "second's");
    EXPECT_EQ(later.doc.findSpecial(SpecialType::LiveStatOwnerRecord)->State, 0) << "that program is over";
    EXPECT_EQ(linesWith(later.log, "Edits of 3 record(s)"), 1U);
    EXPECT_EQ(linesWith(later.log, "colleague's"), 1U);
    fs::remove(path);
    EXPECT_TRUE(later.link.save().failed());
    later.unsaved.keep(path);
    EXPECT_EQ(std::distance(fs::directory_iterator(state), fs::directory_iterator()), 1);
    ASSERT_FALSE(later.link.saveAs(path).failed());
    later.unsaved.keep(path);
    EXPECT_TRUE(fs::is_empty(state));
}

TEST_F(UnsavedEditsTest, ADamagedFileGivesWhatItCanAndIsKeptAside) {
    makeFloor(3);
    {
        Program program(*this, state);
        for (std::int32_t recID = 1; recID <= 3; ++recID) {
            program.doc.editByUser(*program.doc.findDevice(recID),
                                   [](CHardware& device) { device.Comment = "typed"; });
            program.unsaved.keep(path);
        }
    }
    const std::string file = fs::directory_iterator(state)->path();
    const std::string whole = test::readBytes(file);
    for (std::size_t at = 0; at < whole.size(); at += 13) {
        for (const bool cut : {false, true}) {
            fs::remove_all(state);
            fs::create_directory(state);
            fs::permissions(state, fs::perms(0700));
            std::string bytes = cut ? whole.substr(0, at) : whole;
            if (!cut)
                bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
            test::writeBytes(file, bytes);
            Program later(*this, state);
            std::size_t typed = 0;
            for (std::int32_t recID = 1; recID <= 3; ++recID)
                typed += later.doc.findDevice(recID)->Comment == "typed" ? 1U : 0U;
            EXPECT_LT(typed, 3U) << at;
            EXPECT_TRUE(typed > 0 || at < whole.size() / 2) << at << ": the first edits are whole";
            const bool told = linesWith(later.log, "is damaged") == 1;
            EXPECT_EQ(told, fs::exists(file + "-damaged")) << at;
            EXPECT_TRUE(told || cut) << at;
            ASSERT_FALSE(later.link.save().failed());
            later.unsaved.keep(path);
            EXPECT_FALSE(fs::exists(file)) << at;
            ASSERT_FALSE(link.reload());
            for (std::int32_t recID = 1; recID <= 3; ++recID)
                doc.editByUser(*doc.findDevice(recID), [](CHardware& device) { device.Comment.clear(); });
            ASSERT_FALSE(link.save().failed());
        }
    }
}

} // namespace
} // namespace mirovane
