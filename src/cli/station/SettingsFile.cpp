#include "cli/station/SettingsFile.h"

#include "platform/files/FileErrors.h"
#include "platform/files/OpenFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace mirovane {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view unquoted(std::string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return quoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<bool> yesOrNo(std::string_view value) {
    constexpr std::array<std::string_view, 4> yes{"yes", "true", "on", "1"};
    constexpr std::array<std::string_view, 4> no{"no", "false", "off", "0"};
    if (std::ranges::find(yes, value) != yes.end())
        return true;
    if (std::ranges::find(no, value) != no.end())
        return false;
    return std::nullopt;
}

std::string_view keyName(const OptionDefinition& option) {
    return option.name.substr(2);
}

class CSettingsParser {
public:
    CSettingsParser(const std::string& path, std::span<const OptionDefinition> keys)
        : path_(path), keys_(keys) {}

    std::optional<SettingsTrouble> take(std::string_view line, int number) {
        line = trimmed(line);
        if (line.empty() || line.front() == '#')
            return std::nullopt;
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            return SettingsTrouble{lineName(number) +
                                   ": there is no = in it: write NAME=VALUE, or # before a "
                                   "comment"};
        const std::string_view name = trimmed(line.substr(0, equals));
        const auto key = std::ranges::find(keys_, name, keyName);
        if (key == keys_.end())
            return SettingsTrouble{lineName(number) + ": there is no key \"" + std::string(name) +
                                   "\": the keys are " + allKeys()};
        const auto [place, fresh] =
            lines.places.emplace(key->name, lineName(number) + ", key " + std::string(name));
        if (!fresh)
            return SettingsTrouble{lineName(number) + ", key " + std::string(name) +
                                   ": it is set already, see " + place->second + ": remove one of them"};
        return takeValue(*key, unquoted(trimmed(line.substr(equals + 1))), place->second);
    }

    SettingsLines lines;

private:
    std::optional<SettingsTrouble> takeValue(const OptionDefinition& key, std::string_view value,
                                             const std::string& place) {
        const std::string name(key.name);
        if (key.values == 0) {
            const auto yes = yesOrNo(value);
            if (!yes)
                return SettingsTrouble{place + ": \"" + std::string(value) + "\" is neither yes nor no"};
            if (*yes)
                lines.arguments.options[name];
            return std::nullopt;
        }
        if (value.empty())
            return SettingsTrouble{place + ": it needs " + std::string(key.valueNames) +
                                   ": give one or remove the line"};
        lines.arguments.options[name] = {std::string(value)};
        return std::nullopt;
    }

    std::string lineName(int number) const { return path_ + " line " + std::to_string(number); }

    std::string allKeys() const {
        std::string all;
        for (const OptionDefinition& key : keys_)
            all.append(all.empty() ? "" : ", ").append(keyName(key));
        return all;
    }

    const std::string& path_;
    std::span<const OptionDefinition> keys_;
};

} // namespace

Result<SettingsLines, SettingsTrouble> parseSettings(std::string_view text, const std::string& path,
                                                     std::span<const OptionDefinition> keys) {
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    CSettingsParser parser(path, keys);
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (const auto trouble = parser.take(text.substr(0, end), number))
            return *trouble;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::move(parser.lines);
}

Result<SettingsLines, SettingsTrouble> readSettings(const std::string& path,
                                                    std::span<const OptionDefinition> keys) {
    const auto unreadable = [&path](int code) {
        return SettingsTrouble{fileError("cannot read the settings", path, code).sentence,
                               ExitStatus::FileFailed};
    };
    CFileCalls calls;
    const COpenFile file(calls, open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.fd(), &status) != 0)
        return unreadable(errno);
    if (!S_ISREG(status.st_mode))
        return unreadable(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    const auto text = readWhole(calls, file.fd());
    if (!text)
        return unreadable(errno);
    return parseSettings(*text, path, keys);
}

} // namespace mirovane
