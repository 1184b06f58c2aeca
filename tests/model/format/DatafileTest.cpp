#include "model/format/Datafile.h"

#include "model/format/ByteWriter.h"
#include "tests/support/Paths.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <vector>

namespace mirovane {

namespace {

using Kind = Datafile::Error::Kind;

std::string golden(const std::string& name) {
    return test::readBytes(test::sourceFile("tests/golden/" + name));
}

/// Where the first record's text fields begin: count, class descriptor, State, Type, Position.
constexpr std::size_t firstText = 2 + 15 + 16;

CHardware deviceOfGolden() {
    CHardware device;
    device.Type = DeviceType::Computer;
    device.State = DeviceState::On;
    device.Position = {640, -480};
    device.ToJack = "A-17";
    device.Name = "accounts-01";
    device.IPAddress = "127.0.3.17";
    device.MACAddress = "02:00:5E:10:00:01";
    device.Username = "M\xFCller";
    device.Comment = "second floor\r\nwindow";
    device.RecID = 7;
    device.Modified = 1200000001;
    device.StampsModified = 1200000002;
    for (std::size_t row = 0; row < device.RuleStamps.size(); ++row)
        device.RuleStamps[row] = 1100000000 + static_cast<TimeStamp>(row);
    device.SlashText = "slash";
    device.BackslashText = "backslash";
    device.HorzText = "horizontal";
    device.VertText = "vertical";
    device.SlashDraw = 1;
    device.BackslashDraw = 2;
    device.VertDraw = 3;
    device.HorzDraw = 4;
    device.ReminderOn = 1;
    device.ReminderDate = {DateTime::valid, 39500.75};
    device.ToDo = "replace the fan";
    device.Priority = 4;
    return device;
}

class GoldenFileTest : public testing::TestWithParam<std::int32_t> {};

TEST_P(GoldenFileTest, IsReadFieldByFieldAndWrittenByteByByte) {
    const std::int32_t version = GetParam();
    const std::string name = "floor-" + std::to_string(version);
    const auto content = Datafile::decode(golden(name + ".mv"));
    ASSERT_TRUE(content) << content.error().sentence;
    EXPECT_EQ(content.value().fileVersion, version);
    ASSERT_EQ(content.value().records.size(), 10U);

    CHardware device = deviceOfGolden();
    if (version < 2008)
        device.Priority = 5;
    if (version == 2002)
        device.RuleStamps[11] = 0;
    EXPECT_EQ(*content.value().records[1], device);
    EXPECT_EQ(content.value().records[9]->Name, "gr\xC3\xBC\xC3\x9F"
                                                "e \xF0\x9F\x96\xA7");
    EXPECT_EQ(Datafile::encode(content.value().records), golden(name + "-again.mv"));
}

INSTANTIATE_TEST_SUITE_P(Versions, GoldenFileTest, testing::Values(2002, 2003, 2004, 2008));

Datafile::RecordList listOf(const CHardware& first, std::size_t copies = 0) {
    Datafile::RecordList records;
    for (std::size_t i = 0; i <= copies; ++i)
        records.push_back(std::make_unique<CHardware>(first));
    return records;
}

CHardware versionRecord() {
    CHardware record;
    record.Type = SpecialType::VersionRecord;
    record.State = Datafile::currentVersion;
    return record;
}

TEST(DatafileTest, LengthFormsChangeAtTheirBounds) {
    struct Form {
        std::size_t length;
        std::string prefix;
    };
    const std::vector<Form> forms = {
        {0, std::string("\0", 1)},
        {254, "\xFE"},
        {255, std::string("\xFF\xFF\0", 3)},
        {10'000, "\xFF\x10\x27"},
        {65'533, "\xFF\xFD\xFF"},
        {65'534, std::string("\xFF\xFF\xFF\xFE\xFF\0\0", 7)},
        {70'000, std::string("\xFF\xFF\xFF\x70\x11\x01\0", 7)},
    };
    for (const Form& form : forms) {
        CHardware record = versionRecord();
        record.ToJack = std::string(form.length, 'j');
        const std::string bytes = Datafile::encode(listOf(record));
        EXPECT_EQ(bytes.size(), 2 + 15 + 123 - 1 + form.prefix.size() + form.length);
        EXPECT_EQ(bytes.substr(firstText, form.prefix.size()), form.prefix) << form.length;
        const auto content = Datafile::decode(bytes);
        ASSERT_TRUE(content) << content.error().sentence;
        EXPECT_EQ(content.value().records[0]->ToJack.size(), form.length);
    }
}

TEST(DatafileTest, LongWideTextsAreRead) {
    const std::string rest = Datafile::encode(listOf(versionRecord())).substr(firstText + 1);
    const std::string head = Datafile::encode(listOf(versionRecord())).substr(0, firstText);
    for (const std::size_t units : {300U, 70'000U}) {
        CByteWriter writer;
        writer.writeBytes("\xFF\xFE\xFF\xFF");
        if (units < 0xFFFE) {
            writer.writeUint16(static_cast<std::uint16_t>(units));
        } else {
            writer.writeUint16(0xFFFF);
            writer.writeUint32(static_cast<std::uint32_t>(units));
        }
        for (std::size_t i = 0; i < units; ++i)
            writer.writeUint16(u'\u00e4');
        const auto content = Datafile::decode(head + writer.take() + rest);
        ASSERT_TRUE(content) << content.error().sentence;
        EXPECT_EQ(content.value().records[0]->ToJack.size(), 2 * units);
    }
}

/// Every error names where it is; nothing of the file is handed out.
void expectError(const std::string& bytes, Kind kind, std::size_t offset, std::size_t record,
                 const std::string& part) {
    const auto content = Datafile::decode(bytes);
    ASSERT_FALSE(content) << part;
    const Datafile::Error& error = content.error();
    EXPECT_EQ(error.kind, kind) << error.sentence;
    EXPECT_EQ(error.offset, offset) << error.sentence;
    EXPECT_EQ(error.record, record) << error.sentence;
    EXPECT_NE(error.sentence.find(part), std::string::npos) << error.sentence;
    EXPECT_NE(error.sentence.find("byte " + std::to_string(offset)), std::string::npos) << error.sentence;
}

TEST(DatafileTest, DamageIsFoundWhereItIs) {
    const std::string good = golden("floor-2008.mv");
    const auto with = [&good](std::size_t at, const std::string& bytes) {
        return std::string(good).replace(at, bytes.size(), bytes);
    };
    const std::size_t secondTag = 2 + 15 + 123;
    expectError(with(2, "\x01\x80"), Kind::Damaged, 2, 0, "CHardware");
    expectError(with(4, "\x02"), Kind::Damaged, 2, 0, "CHardware");
    expectError(with(8, "X"), Kind::Damaged, 2, 0, "CHardware");
    expectError(with(secondTag, "\x02\x80"), Kind::Damaged, secondTag, 1, "no record begins here");
    expectError(with(secondTag, "\xFF\xFF"), Kind::Damaged, secondTag, 1, "no record begins here");
    expectError(with(0, "\xFE\xFF"), Kind::Damaged, 0, 0, "65534 records");
    expectError(with(0, std::string(2, '\0')), Kind::Damaged, 0, 0, "no records");
    expectError(with(0, std::string("\x0B\0", 2)), Kind::Damaged, good.size(), 10, "ends too early");
    expectError(with(firstText, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), Kind::Damaged, firstText, 0,
                "4294967295 bytes");
    expectError(with(firstText, "\xFF\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), Kind::Damaged, firstText + 3, 0,
                "8589934590 bytes");
    expectError(with(firstText, "\xFF\xFE\xFF\xFF\xFE\xFF"), Kind::Damaged, firstText + 3, 0, "wide twice");
    for (const std::size_t length : {std::size_t{3}, std::size_t{10}, std::size_t{20}})
        expectError(good.substr(0, length), Kind::Damaged, length, 0, "ends before");
}

TEST(DatafileTest, AForeignFileIsNotCalledDamaged) {
    for (const std::string& bytes : {std::string(), std::string(1, '\x01'), std::string(20, '\0'),
                                     std::string("a text of some length")}) {
        const auto content = Datafile::decode(bytes);
        ASSERT_FALSE(content) << bytes;
        EXPECT_EQ(content.error().kind, Kind::NotADatafile) << bytes;
        EXPECT_TRUE(content.error().sentence.starts_with("Not a Mirovane datafile: ")) << bytes;
    }
}

TEST(DatafileTest, UnknownVersionsAreNamed) {
    std::string bytes = golden("floor-2008.mv");
    bytes.replace(17, 4, std::string("\xD9\x07\0\0", 4));
    expectError(bytes, Kind::UnknownVersion, 17, 0, "2009");

    const std::string tooLong = Datafile::encode(listOf(versionRecord(), 65'534));
    EXPECT_EQ(tooLong.substr(0, 8), std::string("\xFF\xFF\xFF\xFF\0\0\xFF\xFF", 8));
    expectError(tooLong, Kind::UnknownVersion, 17, 0, "65,535 records or more");
    EXPECT_TRUE(Datafile::decode(Datafile::encode(listOf(versionRecord(), Datafile::maxRecords - 1))));
}

TEST(DatafileTest, TruncationAnywhereIsAnError) {
    for (const std::int32_t version : {2002, 2003, 2004, 2008}) {
        const std::string good = golden("floor-" + std::to_string(version) + ".mv");
        for (std::size_t length = 0; length < good.size(); ++length) {
            const auto content = Datafile::decode(std::string_view(good).substr(0, length));
            ASSERT_FALSE(content) << version << " cut at " << length;
            EXPECT_LE(content.error().offset, length);
        }
    }
}

/// A flipped bit is an error, or other content that is itself sound.
TEST(DatafileTest, FlippedBitsNeverMakeUnsoundContent) {
    const std::string good = golden("floor-2008.mv");
    std::size_t errors = 0;
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        std::string bytes = good;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
        const auto content = Datafile::decode(bytes);
        if (!content) {
            ++errors;
            continue;
        }
        const std::string written = Datafile::encode(content.value().records);
        ASSERT_EQ(content.value().fileVersion, Datafile::currentVersion);
        const auto again = Datafile::decode(written);
        ASSERT_TRUE(again) << bit;
        ASSERT_EQ(Datafile::encode(again.value().records), written) << bit;
    }
    EXPECT_GT(errors, 2U * 8 + 15 * 8 + 4 * 8 - 8);
}

} // namespace

} // namespace mirovane
