#include "applications/ApplicationCommand.h"

#include "applications/ShellArguments.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mirovane {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Programs that print to a terminal or talk through it.
constexpr std::array<std::string_view, 30> terminalPrograms = {
    "arp",    "arping", "curl",      "dig",        "fping",       "ftp",   "host",     "htop",
    "ip",     "iperf3", "mosh",      "mtr",        "nc",          "nmap",  "nslookup", "ping",
    "ping6",  "rlogin", "sftp",      "smbclient",  "snmpget",     "ssh",   "snmpwalk", "sudo",
    "telnet", "top",    "tracepath", "traceroute", "traceroute6", "whois",
};

struct Prefix {
    std::string_view text;
    ProgramPlace place;
};
constexpr std::array<Prefix, 2> prefixes = {{
    {"term:", ProgramPlace::Terminal},
    {"noterm:", ProgramPlace::OwnWindow},
}};

bool startsWith(std::string_view text, std::string_view beginning) {
    return equalIgnoringCase(text.substr(0, beginning.size()), beginning);
}

/// Cuts what it is given into arguments, as it comes.
class CSplitter {
public:
    void text(std::string_view text) {
        for (const char c : text)
            character(c);
    }

    /// Cut like the text around it, but a quote that is left open ends with it.
    void inserted(std::string_view text) {
        if (quoted_) {
            append(text);
            return;
        }
        this->text(text);
        quoted_ = quoteClosed_ = false;
    }

    void field(char selector, std::string_view value) {
        CommandArgument& argument = current();
        argument.beginsWithField = argument.beginsWithField || argument.text.empty();
        argument.fields.push_back({selector, std::string(value)});
        argument.text += value;
        quoteClosed_ = false;
    }

    std::vector<CommandArgument> finish() && { return std::move(arguments_); }

private:
    CommandArgument& current() {
        if (!inArgument_)
            arguments_.emplace_back();
        inArgument_ = true;
        return arguments_.back();
    }

    void append(std::string_view text) {
        current().text += text;
        current().written += text;
    }

    void character(char c) {
        const bool second = std::exchange(quoteClosed_, false);
        if (c == '"') {
            current();
            quoteClosed_ = quoted_;
            quoted_ = !quoted_;
            if (second)
                append("\"");
        } else if (!quoted_ && blanks.find(c) != std::string_view::npos) {
            inArgument_ = false;
        } else {
            append({&c, 1});
        }
    }

    std::vector<CommandArgument> arguments_;
    bool inArgument_ = false;
    bool quoted_ = false;
    bool quoteClosed_ = false; ///< by the character before: one more quote is meant as a character
};

bool isWebAddress(std::string_view word) {
    return startsWith(word, "http://") || startsWith(word, "https://");
}

/// "C:\..." or "\\server\...": this platform cannot start it.
bool isForeignProgram(std::string_view word) {
    const auto letter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    };
    return word.starts_with("\\\\") ||
           (word.size() > 2 && letter(word[0]) && word[1] == ':' && (word[2] == '\\' || word[2] == '/'));
}

bool isTerminalProgram(std::string_view word) {
    return std::ranges::find(terminalPrograms, programName(word)) != terminalPrograms.end();
}

bool holdsField(std::string_view word) {
    return std::ranges::any_of(
        templatePieces(word, ExpandMode::Command),
        [](const TemplatePiece& piece) {
            return piece.selector != 0 && piece.selector != insertedTextSelector;
        });
}

/// A field inside a web address: what an address cannot hold goes in as %XX, and so do the characters that
/// scripts on the way to the browser might take for theirs.
std::string addressPart(std::string_view value) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain = "-._~%:/?#[]@&+,=";
    std::string result;
    for (const char c : value) {
        const bool safe = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                          plain.find(c) != std::string_view::npos;
        const auto byte = static_cast<unsigned char>(c);
        if (safe)
            result += c;
        else
            result += {'%', digits[byte >> 4U], digits[byte & 15U]};
    }
    return result;
}

constexpr std::string_view programFromField =
    "the program itself must be written in the command; it cannot come from a device's field";

constexpr std::string_view addressOfWords = "a web address must be one word; write %20 for a blank";

std::string refusalOf(const std::vector<CommandArgument>& arguments, ProgramPlace place) {
    if (arguments.empty() || arguments.front().text.empty())
        return "no program is left when the text is put in";
    if (place == ProgramPlace::Browser)
        return std::string(arguments.size() > 1 ? addressOfWords : std::string_view());
    if (arguments.front().holdsField())
        return std::string(programFromField);
    bool optionsEnded = false;
    for (const CommandArgument& argument : arguments) {
        if (argument.text.find('\0') != std::string::npos)
            return "a field holds a zero byte";
        if (argument.beginsWithField && argument.text.starts_with('-') && !optionsEnded)
            return "what a field begins starts with \"-\" and would be taken for an option (an argument "
                   "\"--\" before the placeholder allows it, where the program knows that)";
        optionsEnded = optionsEnded || (argument.text == "--" && !argument.holdsField());
    }
    return fieldRefusal(arguments);
}

std::vector<CommandArgument> cut(std::string_view line, ProgramPlace place, const CHardware& device,
                                 std::string_view insertedText) {
    CSplitter splitter;
    for (const TemplatePiece& piece : templatePieces(line, ExpandMode::Command)) {
        if (piece.selector == 0) {
            splitter.text(piece.text);
        } else if (piece.selector == insertedTextSelector) {
            splitter.inserted(insertedText);
        } else {
            const std::string value = placeholderValue(piece.selector, device, ExpandMode::Command);
            splitter.field(piece.selector, place == ProgramPlace::Browser ? addressPart(value) : value);
        }
    }
    return std::move(splitter).finish();
}

std::string nameForPeople(const CHardware& device) {
    if (!device.Name.empty())
        return device.Name;
    return device.IPAddress.empty() ? "device " + std::to_string(device.RecID) : device.IPAddress;
}

void addRefusal(ApplicationRun& run, const std::string& reason, const CHardware& device) {
    const auto known = std::ranges::find(run.refusals, reason, &ApplicationRun::Refusal::reason);
    if (known != run.refusals.end())
        ++known->devices;
    else
        run.refusals.push_back({reason, nameForPeople(device), 1});
}

} // namespace

std::vector<std::string> splitCommandLine(std::string_view line) {
    CSplitter splitter;
    splitter.text(line);
    std::vector<std::string> words;
    for (CommandArgument& argument : std::move(splitter).finish())
        words.push_back(std::move(argument.text));
    return words;
}

CApplicationCommand::CApplicationCommand(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const auto* prefix = std::ranges::find_if(
        prefixes, [line](const Prefix& candidate) { return startsWith(line, candidate.text); });
    if (prefix != prefixes.end()) {
        line.remove_prefix(prefix->text.size());
        prefixPlace_ = prefix->place;
    }
    line_ = line;
}

ProgramPlace CApplicationCommand::place(std::string_view insertedText) const {
    if (prefixPlace_)
        return *prefixPlace_;
    const auto arguments = cut(line_, ProgramPlace::OwnWindow, CHardware(), insertedText);
    if (arguments.empty())
        return ProgramPlace::OwnWindow;
    if (isWebAddress(arguments.front().text))
        return ProgramPlace::Browser;
    return isTerminalProgram(arguments.front().text) ? ProgramPlace::Terminal : ProgramPlace::OwnWindow;
}

bool CApplicationCommand::wantsText() const {
    return std::ranges::any_of(
        templatePieces(line_, ExpandMode::Command),
        [](const TemplatePiece& piece) { return piece.selector == insertedTextSelector; });
}

std::string CApplicationCommand::problem() const {
    const std::vector<std::string> words = splitCommandLine(line_);
    if (words.empty())
        return "its command is empty";
    if (isForeignProgram(words.front()))
        return "\"" + words.front() + "\" is a program of another system and cannot be started on this one";
    if (place() == ProgramPlace::Browser)
        return words.size() > 1 ? std::string(addressOfWords) : std::string();
    return holdsField(words.front()) ? std::string(programFromField) : std::string();
}

CApplicationCommand::Filled CApplicationCommand::fill(const CHardware& device,
                                                      std::string_view insertedText) const {
    const ProgramPlace where = place(insertedText);
    std::vector<CommandArgument> arguments = cut(line_, where, device, insertedText);
    Filled filled;
    filled.refusal = refusalOf(arguments, where);
    for (CommandArgument& argument : arguments)
        filled.words.push_back(std::move(argument.text));
    return filled;
}

ApplicationRun planApplicationRun(std::string_view command, std::span<const CHardware> devices,
                                  const std::function<std::optional<std::string>()>& askForText) {
    const CApplicationCommand application(command);
    ApplicationRun run;
    if (devices.empty())
        return run;
    if (const std::string problem = application.problem(); !problem.empty()) {
        run.refusals.push_back({problem, nameForPeople(devices.front()), devices.size()});
        return run;
    }
    std::optional<std::string> insertedText = application.wantsText() ? askForText() : std::string();
    run.cancelled = !insertedText;
    if (run.cancelled)
        return run;
    run.place = application.place(*insertedText);
    for (const CHardware& device : devices) {
        CApplicationCommand::Filled filled = application.fill(device, *insertedText);
        if (filled.refusal.empty())
            run.starts.push_back(std::move(filled.words));
        else
            addRefusal(run, filled.refusal, device);
    }
    return run;
}

} // namespace mirovane
