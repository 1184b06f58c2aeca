#pragma once

#include "model/records/FieldNames.h"
#include "model/records/Hardware.h"

#include <string>
#include <string_view>

namespace mirovane {

/// How lines of the log name records and quote values, so that each can be read alone.
namespace RecordNames {

/// In quotes and on one line, with the line breaks to be seen: the log makes blanks of them.
std::string quoted(std::string_view text);

/// `device 12 "pc-12"`, `external application "Browse"`, `criteria "IP Address" of Computer`.
std::string nameOf(const CHardware& record);

/// As `nameOf`, at the start of a sentence.
std::string capitalName(const CHardware& record);

/// The field as this record uses it: criteria rows keep other things in the fields of a device.
std::string fieldName(const CHardware& record, const RecordField& field);

} // namespace RecordNames

} // namespace mirovane
