#include "cli/base/Arguments.h"

#include "model/records/Criteria.h"
#include "model/records/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace mirovane {

namespace {

constexpr std::int32_t mostRecordID = std::numeric_limits<std::int32_t>::max();

bool isRecordID(const std::string& word) {
    return numberArgument(word, 1, mostRecordID).has_value();
}

class CParser {
public:
    CParser(std::span<const std::string> words, std::span<const OptionDefinition> definitions)
        : words_(words), definitions_(definitions) {}

    std::optional<UsageError> run() {
        bool optionsEnded = false;
        while (next_ < words_.size()) {
            const std::string& word = words_[next_++];
            if (!optionsEnded && word == "--")
                optionsEnded = true;
            else if (optionsEnded || word.size() < 2 || word[0] != '-')
                parsed.positionals.push_back(word);
            else if (auto error = takeOption(word))
                return error;
        }
        return std::nullopt;
    }

    Arguments parsed;

private:
    std::optional<UsageError> takeOption(const std::string& word) {
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const auto definition =
            std::find_if(definitions_.begin(), definitions_.end(),
                         [&](const OptionDefinition& option) { return option.name == name; });
        if (definition == definitions_.end())
            return UsageError{"unknown option " + name + ": run it with --help for those there are"};
        std::vector<std::string>& values = parsed.options[name];
        if (equals != std::string::npos) {
            if (definition->values == 0)
                return UsageError{"option " + name + ": it takes no value"};
            values.push_back(word.substr(equals + 1));
        }
        return takeValues(*definition, values, equals != std::string::npos ? 1 : 0);
    }

    std::optional<UsageError> takeValues(const OptionDefinition& option, std::vector<std::string>& values,
                                         int taken) {
        if (option.values == OptionDefinition::recordIDs) {
            for (; next_ < words_.size() && isRecordID(words_[next_]); ++taken)
                values.push_back(words_[next_++]);
            return taken > 0 ? std::nullopt : needs(option, "at least one record ID");
        }
        for (; taken < option.values; ++taken) {
            if (next_ == words_.size())
                return needs(option, std::string(option.valueNames));
            values.push_back(words_[next_++]);
        }
        return std::nullopt;
    }

    static std::optional<UsageError> needs(const OptionDefinition& option, const std::string& what) {
        return UsageError{"option " + std::string(option.name) + ": it needs " + what};
    }

    std::span<const std::string> words_;
    std::span<const OptionDefinition> definitions_;
    std::size_t next_ = 0;
};

} // namespace

std::vector<std::string> Arguments::values(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::vector<std::string>() : found->second;
}

std::optional<std::string> Arguments::value(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() || found->second.empty() ? std::nullopt
                                                           : std::optional(found->second.back());
}

Result<Arguments, UsageError> parseArguments(std::span<const std::string> words,
                                             std::span<const OptionDefinition> definitions) {
    CParser parser(words, definitions);
    if (const auto error = parser.run())
        return *error;
    return std::move(parser.parsed);
}

std::optional<std::int32_t> numberArgument(std::string_view text, std::int32_t least, std::int32_t most) {
    std::int32_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end || number < least || number > most)
        return std::nullopt;
    return number;
}

Result<std::int32_t, UsageError> typeArgument(std::string_view name) {
    if (const std::int32_t type = typeFromName(name); type != 0)
        return type;
    std::string names;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        names.append(names.empty() ? "" : ", ").append(typeName(type));
    return UsageError{"unknown type \"" + std::string(name) + "\": the types are " + names};
}

std::optional<int> criteriaRowArgument(std::string_view text) {
    if (const auto number = numberArgument(text, 0, criteriaRowCount - 1))
        return *number;
    for (int row = 0; row < criteriaRowCount; ++row)
        if (equalIgnoringCase(text, criteriaRowLabel(row)))
            return row;
    return std::nullopt;
}

Result<std::vector<std::int32_t>, UsageError> recordIDArguments(std::span<const std::string> texts) {
    std::vector<std::int32_t> recIDs;
    for (const std::string& text : texts) {
        const auto recID = numberArgument(text, 1, mostRecordID);
        if (!recID)
            return UsageError{"invalid RECID \"" + text + "\": give a number from 1 on, as `list` shows it"};
        if (std::find(recIDs.begin(), recIDs.end(), *recID) == recIDs.end())
            recIDs.push_back(*recID);
    }
    return recIDs;
}

} // namespace mirovane
