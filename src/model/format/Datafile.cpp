#include "model/format/Datafile.h"

#include "model/format/ByteReader.h"
#include "model/format/ByteWriter.h"

#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <string>
#include <utility>

namespace mirovane::Datafile {

namespace {

constexpr std::size_t versionOffset = 17;
constexpr std::size_t countSize = 2;
constexpr std::uint16_t newClassTag = 0xFFFF;
constexpr std::uint16_t knownClassTag = 0x8001;
constexpr std::uint16_t classSchema = 1;
constexpr std::string_view className = "CHardware";
constexpr std::size_t knownTagSize = 2;
constexpr std::size_t descriptorSize = 2 + 2 + 2 + className.size();

/// What an older version's record lacks, and where it puts things.
struct Layout {
    std::int32_t version;
    std::size_t emptyRecordSize; ///< with all eleven texts empty: no record is smaller
    bool typeFirst;
    std::size_t ruleStamps;
    bool hasPriority;
};

constexpr std::array<Layout, 4> layouts = {{
    {2002, 115, true, 11, false},
    {2003, 119, true, 12, false},
    {2004, 119, false, 12, false},
    {currentVersion, 123, false, 12, true},
}};

constexpr std::int32_t priorityOfOlderVersions = 5;

const Layout* layoutOf(std::int32_t version) {
    for (const Layout& layout : layouts)
        if (layout.version == version)
            return &layout;
    return nullptr;
}

Error damaged(const CByteReader& reader, std::size_t record) {
    return {Error::Kind::Damaged, reader.errorOffset(), record,
            "The datafile is damaged at byte " + std::to_string(reader.errorOffset()) + " (record " +
                std::to_string(record) + "): " + reader.reason() + "."};
}

Error unknownVersion(std::string_view bytes, std::int32_t version) {
    const bool longCount = bytes.substr(0, 2) == "\xFF\xFF";
    std::string why =
        longCount ? "it holds 65,535 records or more, and the place of its version is then taken"
                  : "the number there is " + std::to_string(version) + ", not 2002, 2003, 2004 or 2008";
    return {Error::Kind::UnknownVersion, versionOffset, 0,
            "The datafile's version is unknown (byte " + std::to_string(versionOffset) +
                ", record 0): " + why + "."};
}

/// What every datafile has behind its count of records.
std::string firstTag() {
    CByteWriter writer;
    writer.writeUint16(newClassTag);
    writer.writeUint16(classSchema);
    writer.writeUint16(static_cast<std::uint16_t>(className.size()));
    writer.writeBytes(className);
    return writer.take();
}

/// Nothing of it looks like a datafile, not even like the first bytes of one that was cut off.
bool isForeign(std::string_view bytes) {
    const std::string tag = firstTag();
    const std::string_view start = bytes.substr(std::min(countSize, bytes.size()), tag.size());
    return start.empty() || !(std::string_view(tag).starts_with(start) || beginsLikeDatafile(bytes));
}

Error notADatafile(std::string_view bytes) {
    return {Error::Kind::NotADatafile, 0, 0,
            bytes.empty() ? "Not a Mirovane datafile: the file is empty."
                          : "Not a Mirovane datafile: the file does not begin like one."};
}

void readFirstTag(CByteReader& reader) {
    const std::size_t start = reader.offset();
    const bool isNew = reader.readUint16() == newClassTag;
    const bool schemaKnown = reader.readUint16() == classSchema;
    const bool lengthRight = reader.readUint16() == className.size();
    if (isNew && schemaKnown && lengthRight && reader.readBytes(className.size()) == className)
        return;
    reader.fail(start, "the first record does not begin with the class CHardware");
}

void readTag(CByteReader& reader, std::size_t record) {
    if (record == 0) {
        readFirstTag(reader);
        return;
    }
    const std::size_t start = reader.offset();
    if (reader.readUint16() != knownClassTag)
        reader.fail(start, "no record begins here");
}

/// A record as its bytes lie in the file. Only when all of it is known to be there the record is made, in one
/// go: its eleven texts are never empty first.
struct RawRecord {
    std::array<std::int32_t, 4> head = {};
    std::array<CByteReader::Text, 6> texts;
    std::array<std::int32_t, 3> stamps = {};
    std::array<TimeStamp, criteriaRowCount> ruleStamps = {};
    std::array<CByteReader::Text, 4> labels;
    std::array<std::int32_t, 6> flags = {};
    double reminder = 0.0;
    CByteReader::Text toDo;
    std::int32_t priority = priorityOfOlderVersions;
};

void readRecord(CByteReader& reader, const Layout& layout, RawRecord& raw) {
    reader.readInt32s(raw.head);
    for (CByteReader::Text& text : raw.texts)
        text = reader.readText();
    reader.readInt32s(raw.stamps);
    reader.readInt32s(std::span(raw.ruleStamps).first(layout.ruleStamps));
    for (CByteReader::Text& text : raw.labels)
        text = reader.readText();
    reader.readInt32s(raw.flags);
    raw.reminder = reader.readDouble();
    raw.toDo = reader.readText();
    if (layout.hasPriority)
        raw.priority = reader.readInt32();
}

std::unique_ptr<CHardware> makeRecord(const RawRecord& raw, const Layout& layout) {
    return std::unique_ptr<CHardware>(new CHardware{
        .Type = raw.head[layout.typeFirst ? 0 : 1],
        .RecID = raw.stamps[0],
        .State = raw.head[layout.typeFirst ? 1 : 0],
        .Priority = raw.priority,
        .Position = {raw.head[2], raw.head[3]},
        .Modified = raw.stamps[1],
        .StampsModified = raw.stamps[2],
        .RuleStamps = raw.ruleStamps,
        .SlashDraw = raw.flags[0],
        .BackslashDraw = raw.flags[1],
        .VertDraw = raw.flags[2],
        .HorzDraw = raw.flags[3],
        .ReminderOn = raw.flags[4],
        .ReminderDate = {raw.flags[5], raw.reminder},
        .ToJack = raw.texts[0].string(),
        .Name = raw.texts[1].string(),
        .IPAddress = raw.texts[2].string(),
        .MACAddress = raw.texts[3].string(),
        .Username = raw.texts[4].string(),
        .Comment = raw.texts[5].string(),
        .SlashText = raw.labels[0].string(),
        .BackslashText = raw.labels[1].string(),
        .HorzText = raw.labels[2].string(),
        .VertText = raw.labels[3].string(),
        .ToDo = raw.toDo.string(),
    });
}

void writeRecord(CByteWriter& writer, const CHardware& record) {
    writer.writeInt32(record.State);
    writer.writeInt32(record.Type);
    writer.writeInt32(record.Position.x);
    writer.writeInt32(record.Position.y);
    for (const std::string* text : {&record.ToJack, &record.Name, &record.IPAddress, &record.MACAddress,
                                    &record.Username, &record.Comment})
        writer.writeText(*text);
    writer.writeInt32(record.RecID);
    writer.writeInt32(record.Modified);
    writer.writeInt32(record.StampsModified);
    for (const TimeStamp stamp : record.RuleStamps)
        writer.writeInt32(stamp);
    for (const std::string* text :
         {&record.SlashText, &record.BackslashText, &record.HorzText, &record.VertText})
        writer.writeText(*text);
    writer.writeInt32(record.SlashDraw);
    writer.writeInt32(record.BackslashDraw);
    writer.writeInt32(record.VertDraw);
    writer.writeInt32(record.HorzDraw);
    writer.writeInt32(record.ReminderOn);
    writer.writeInt32(record.ReminderDate.status);
    writer.writeDouble(record.ReminderDate.value);
    writer.writeText(record.ToDo);
    writer.writeInt32(record.Priority);
}

/// What the whole file takes, but for the few longer length forms: one allocation for all but odd files.
std::size_t estimatedSize(const RecordList& records) {
    constexpr std::size_t fixedSize = knownTagSize + 123;
    std::size_t size = descriptorSize + 6;
    for (const auto& record : records) {
        size += fixedSize + record->ToJack.size() + record->Name.size() + record->IPAddress.size() +
                record->MACAddress.size() + record->Username.size() + record->Comment.size() +
                record->SlashText.size() + record->BackslashText.size() + record->HorzText.size() +
                record->VertText.size() + record->ToDo.size();
    }
    return size;
}

/// Reads the count and compares it with the bytes that are there, so that a wrong one costs no memory.
std::size_t readPlausibleCount(CByteReader& reader, const Layout& layout) {
    const std::uint64_t count = reader.readCount();
    const std::uint64_t least = count * (knownTagSize + layout.emptyRecordSize);
    // Else all of them would count as bytes after the last record, and go with the next save.
    if (count == 0)
        reader.fail(0, "the file claims to have no records, and every datafile has some");
    else if (least + (descriptorSize - knownTagSize) > reader.remaining())
        reader.fail(0, "the file claims " + std::to_string(count) + " records, which do not fit in its " +
                           std::to_string(reader.remaining()) + " bytes");
    return static_cast<std::size_t>(count);
}

Result<Content, Error> decodeRecords(std::string_view bytes, const Layout& layout) {
    Content content;
    content.fileVersion = layout.version;
    CByteReader reader(bytes);
    const std::size_t count = readPlausibleCount(reader, layout);
    if (reader.failed())
        return damaged(reader, 0);
    content.records.reserve(count);
    RawRecord raw; // one for all: what a layout lacks stays at its default
    for (std::size_t i = 0; i < count; ++i) {
        readTag(reader, i);
        readRecord(reader, layout, raw);
        if (reader.failed())
            return damaged(reader, i);
        content.records.push_back(makeRecord(raw, layout));
    }
    content.strayBytes = reader.remaining();
    return content;
}

} // namespace

Result<Content, Error> decode(std::string_view bytes) {
    CByteReader probe(bytes);
    probe.readBytes(versionOffset);
    const std::int32_t version = probe.readInt32();
    const Layout* layout = probe.failed() ? nullptr : layoutOf(version);
    if (!layout && isForeign(bytes))
        return notADatafile(bytes);
    if (probe.failed()) {
        probe = CByteReader(bytes);
        probe.fail(bytes.size(), "the file ends before the version of its first record");
        return damaged(probe, 0);
    }
    if (!layout)
        return unknownVersion(bytes, version);
    try {
        return decodeRecords(bytes, *layout);
    } catch (const std::bad_alloc&) {
        return Error{Error::Kind::CannotRead, 0, 0, "Out of memory"};
    }
}

bool beginsLikeDatafile(std::string_view beginning) {
    constexpr std::size_t name = 2 + descriptorSize - className.size(); // behind the count
    constexpr std::size_t nameAfterLongCount = name + 4;
    const auto named = [&](std::size_t at) {
        return beginning.size() > at && beginning.substr(at, className.size()) == className;
    };
    return named(name) || named(nameAfterLongCount);
}

namespace {

template <typename Shown>
std::string encodeAs(const RecordList& records, const Shown& shown) {
    CByteWriter writer;
    writer.reserve(estimatedSize(records));
    writer.writeCount(records.size());
    bool first = true;
    for (const auto& record : records) {
        writer.writeUint16(first ? newClassTag : knownClassTag);
        if (first) {
            writer.writeUint16(classSchema);
            writer.writeUint16(static_cast<std::uint16_t>(className.size()));
            writer.writeBytes(className);
            first = false;
        }
        writeRecord(writer, shown(*record));
    }
    return writer.take();
}

} // namespace

std::string encode(const RecordList& records) {
    return encodeAs(
        records, [](const CHardware& record) -> const CHardware& { return record; });
}

std::string encode(const RecordList& records, const RecordView& shown) {
    return encodeAs(records, shown);
}

} // namespace mirovane::Datafile
