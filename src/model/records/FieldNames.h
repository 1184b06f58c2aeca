#pragma once

#include "model/records/Hardware.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace mirovane {

/// What a field's value looks like as text.
enum class FieldKind {
    Text,
    Number,
    Flag,       ///< 0 or 1
    Priority,   ///< 1 to 5
    State,      ///< Def, On, Off or their numbers
    Type,       ///< display name, which keeps the placement, or code
    Position,   ///< "x,y"
    Stamp,      ///< seconds since 1970
    RuleStamps, ///< twelve stamps with blanks between them
    DateTime,   ///< "2026-11-22 14:30"; empty: no date
};

/// A stored field of CHardware under the name that it has in the code: what scripts, JSON and messages about
/// a record call it by. The table is constant; pointers into it live for ever.
struct RecordField {
    using Member = std::variant<std::monostate, std::string CHardware::*, std::int32_t CHardware::*>;

    std::string_view name;
    FieldKind kind = FieldKind::Text;
    Member member;                ///< for texts and for every kind that is one number
    std::string_view keeper = {}; ///< who alone writes it; empty when a user may set it
};

/// All stored fields, in the order of the datafile.
std::span<const RecordField> recordFields();

/// By name, upper and lower case alike; null when there is none.
const RecordField* findRecordField(std::string_view name);

/// Names of the fields that a user may set, with commas: for messages.
std::string settableFieldNames();

/// The value as `setFieldValue` would take it back. Texts are the record's bytes.
std::string fieldValue(const CHardware& record, const RecordField& field);

/// Equal as the datafile stores it.
bool sameField(const CHardware& a, const CHardware& b, const RecordField& field);

/// Copies the one field.
void copyField(const CHardware& from, CHardware& to, const RecordField& field);

/// Sets a device's field from text; texts are stored as they are. Returns nothing when it was done, else one
/// sentence that says what is wrong with which field and what to give instead, and the record is as it was.
std::optional<std::string> setFieldValue(CHardware& device, const RecordField& field, std::string_view text);

} // namespace mirovane
