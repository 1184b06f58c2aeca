#include "model/datafile/KeptEdits.h"

#include "model/format/ByteReader.h"
#include "model/format/ByteWriter.h"
#include "model/records/SpecialRecords.h"
#include "platform/files/FilePaths.h"

#include <memory>
#include <utility>

namespace mirovane::KeptEditsFormat {

namespace {

constexpr std::string_view firstLine = "Mirovane edits 1\n";
constexpr std::uint8_t withdrawn = 0;

constexpr std::size_t checksumSize = 16;

std::string framed(const std::string& payload) {
    CByteWriter frame;
    frame.writeUint32(static_cast<std::uint32_t>(payload.size()));
    frame.writeBytes(fingerprintOf(payload));
    frame.writeBytes(payload);
    return frame.take();
}

/// Records in the layout of a datafile, which begins with its version.
std::string encoded(const KeptEdit& edit) {
    Datafile::RecordList records;
    const auto add = [&records](const CHardware& record) {
        records.push_back(std::make_unique<CHardware>());
        copyStored(record, *records.back());
    };
    CHardware version;
    version.Type = SpecialType::VersionRecord;
    version.State = Datafile::currentVersion;
    add(version);
    if (edit.kind != KeptEdit::Kind::Added)
        add(edit.base);
    if (edit.kind != KeptEdit::Kind::Removed)
        add(edit.ours);
    return Datafile::encode(records);
}

/// By name: a later program may have other fields.
void writeFields(CByteWriter& out, const FieldSet& set) {
    const auto fields = recordFields();
    std::size_t count = 0;
    for (std::size_t i = 0; i < fields.size(); ++i)
        count += set[i] ? 1U : 0U;
    out.writeCount(count);
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (set[i])
            out.writeText(fields[i].name);
}

std::optional<FieldSet> readFields(CByteReader& in) {
    FieldSet set;
    const auto fields = recordFields();
    const std::size_t count = in.readCount();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = in.readText().string();
        const RecordField* field = in.failed() ? nullptr : findRecordField(name);
        if (!field)
            return std::nullopt;
        set[static_cast<std::size_t>(field - fields.data())] = true;
    }
    return set;
}

std::optional<KeptEdit> readEdit(CByteReader& in, std::uint8_t kind) {
    KeptEdit edit;
    if (kind < static_cast<std::uint8_t>(KeptEdit::Kind::Changed) ||
        kind > static_cast<std::uint8_t>(KeptEdit::Kind::Removed))
        return std::nullopt;
    edit.kind = static_cast<KeptEdit::Kind>(kind);
    const auto byUser = readFields(in);
    if (!byUser)
        return std::nullopt;
    edit.byUser = *byUser;
    edit.follower = in.readInt32();
    const auto content = Datafile::decode(in.readBytes(in.remaining()));
    const std::size_t wanted = edit.kind == KeptEdit::Kind::Changed ? 3 : 2;
    if (!content || content.value().records.size() != wanted)
        return std::nullopt;
    const auto& records = content.value().records;
    edit.base = *records[1];
    edit.ours = *records[wanted - 1];
    return edit;
}

/// False where it makes no sense.
bool takeEntry(std::string_view payload, Content& content) {
    CByteReader in(payload);
    const std::uint32_t number = in.readUint32();
    const std::uint8_t kind = in.readUint8();
    if (in.failed())
        return false;
    if (kind == withdrawn) {
        content.edits.erase(number);
        return true;
    }
    auto edit = readEdit(in, kind);
    if (edit)
        content.edits.insert_or_assign(number, std::move(*edit));
    return edit.has_value();
}

} // namespace

std::string head(const std::string& datafile) {
    CByteWriter out;
    out.writeText(datafile);
    return std::string(firstLine) + framed(out.take());
}

std::string entry(std::uint32_t number, const KeptEdit& edit) {
    CByteWriter out;
    out.writeUint32(number);
    out.writeUint8(static_cast<std::uint8_t>(edit.kind));
    writeFields(out, edit.byUser);
    out.writeInt32(edit.follower);
    out.writeBytes(encoded(edit));
    return framed(out.take());
}

std::string withdrawal(std::uint32_t number) {
    CByteWriter out;
    out.writeUint32(number);
    out.writeUint8(withdrawn);
    return framed(out.take());
}

Content read(std::string_view bytes) {
    Content content;
    CByteReader in(bytes);
    content.damaged = in.readBytes(firstLine.size()) != firstLine;
    bool first = true;
    while (!content.damaged && in.remaining() > 0) {
        const std::uint32_t length = in.readUint32();
        const std::string_view sum = in.readBytes(checksumSize);
        const std::string_view payload = in.readBytes(length);
        if (in.failed() || fingerprintOf(payload) != sum)
            content.damaged = true;
        else if (std::exchange(first, false))
            content.datafile = CByteReader(payload).readText().string();
        else
            content.damaged = !takeEntry(payload, content);
    }
    return content;
}

} // namespace mirovane::KeptEditsFormat
