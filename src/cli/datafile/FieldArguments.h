#pragma once

#include "cli/base/Arguments.h"
#include "model/properties/PropertiesEdit.h"
#include "pattern/Pattern.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// Help for commands that take FIELD=VALUE: which fields there are and how values are written.
inline constexpr std::string_view fieldDetails =
    "Fields: Type, State, Position, Name, IPAddress, MACAddress, Username, ToJack, Comment, SlashText,\n"
    "BackslashText, HorzText, VertText, SlashDraw, BackslashDraw, HorzDraw, VertDraw, ReminderOn,\n"
    "ReminderDate, ToDo, Priority.\n"
    "Values: Position=100,200  State=On  SlashDraw=1  ReminderDate=\"2026-11-22 14:30\" (empty: none)\n";

/// FIELD=VALUE words, values as yet untried.
Result<PropertiesEdit, UsageError> assignmentArguments(std::span<const std::string> words);

/// Which devices a command is for: those that fit every condition. Letters of texts may be upper or lower
/// case.
class CDeviceConditions {
public:
    /// FIELD=VALUE, or FIELD~PATTERN with a pattern of the criteria's language.
    static Result<CDeviceConditions, UsageError> of(std::span<const std::string> words);

    bool fits(const CHardware& device) const;

private:
    struct Condition {
        const RecordField* field = nullptr;
        std::string value;
        std::optional<CompiledPattern> pattern;
    };

    static Result<Condition, UsageError> condition(const std::string& word);
    static bool fits(const CHardware& device, const Condition& condition);

    std::vector<Condition> conditions_;
};

} // namespace mirovane
