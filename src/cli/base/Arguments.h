#pragma once

#include "platform/Result.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// One option of a command.
struct OptionDefinition {
    /// How many of the following arguments belong to the option: a fixed number, or as many as are record
    /// IDs.
    static constexpr int recordIDs = -1;

    std::string_view name; ///< with its dashes
    int values = 0;
    std::string_view valueNames; ///< for the help: "NAME"
    std::string_view help;
};

/// A command's own options and those that it shares with other commands, as one list.
template <std::size_t A, std::size_t B>
constexpr std::array<OptionDefinition, A + B> joined(const std::array<OptionDefinition, A>& own,
                                                     const std::array<OptionDefinition, B>& shared) {
    std::array<OptionDefinition, A + B> all;
    std::copy(shared.begin(), shared.end(), std::copy(own.begin(), own.end(), all.begin()));
    return all;
}

/// A command's arguments, taken apart.
struct Arguments {
    std::vector<std::string> positionals;

    /// Every value of an option that was given, in order; an option without values holds an empty list.
    std::map<std::string, std::vector<std::string>, std::less<>> options;

    bool has(std::string_view option) const { return options.contains(option); }
    std::vector<std::string> values(std::string_view option) const;
    std::optional<std::string> value(std::string_view option) const; ///< the last one given
};

/// What is wrong with the command line, as "what: why".
struct UsageError {
    std::string sentence;
};

/// Options may be anywhere among the positionals; "--" ends them; "--name=value" is "--name value".
/// `definitions` are all options that the command knows.
Result<Arguments, UsageError> parseArguments(std::span<const std::string> words,
                                             std::span<const OptionDefinition> definitions);

/// A decimal number within the limits, nothing before or behind it.
std::optional<std::int32_t> numberArgument(std::string_view text, std::int32_t least, std::int32_t most);

/// Floor code of a type's name; the error lists the names.
Result<std::int32_t, UsageError> typeArgument(std::string_view name);

/// A criteria row by its number or its label, upper and lower case alike.
std::optional<int> criteriaRowArgument(std::string_view text);

/// Record IDs from 1 on; an error names the first text that is not one.
Result<std::vector<std::int32_t>, UsageError> recordIDArguments(std::span<const std::string> texts);

} // namespace mirovane
