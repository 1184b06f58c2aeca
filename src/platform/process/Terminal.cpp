#include "platform/process/Terminal.h"

#include "platform/BlockedSignals.h"
#include "platform/process/ChildProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <unistd.h>

namespace mirovane {

namespace {

struct KnownTerminal {
    const char* program;
    const char* option; ///< behind which the command stands; null: at once
};

/// Debian's own choice first, then by how common they are.
constexpr std::array<KnownTerminal, 10> knownTerminals = {{
    {"x-terminal-emulator", "-e"},
    {"xdg-terminal-exec", nullptr},
    {"gnome-terminal", "--"},
    {"konsole", "-e"},
    {"xfce4-terminal", "-x"},
    {"mate-terminal", "-x"},
    {"kitty", nullptr},
    {"alacritty", "-e"},
    {"foot", nullptr},
    {"xterm", "-e"},
}};

bool inPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        const std::string file = std::string(folder) + "/" + program;
        if (!folder.empty() && access(file.c_str(), X_OK) == 0)
            return true;
    }
    return false;
}

constexpr char escape = '%';
constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isPlain(char c) {
    constexpr std::string_view marks = "-._/:@,+=";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           marks.find(c) != std::string_view::npos;
}

/// An empty word would vanish from a line; a lone "%" stands for it.
std::string encodeWord(std::string_view word) {
    if (word.empty())
        return {escape};
    std::string result;
    for (const char c : word) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(c))
            result += c;
        else
            result += {escape, hexDigits[byte >> 4U], hexDigits[byte & 15U]};
    }
    return result;
}

std::optional<std::string> decodeWord(std::string_view word) {
    std::string result;
    for (std::size_t i = 0; i < word.size() && word != "%"; ++i) {
        if (word[i] != escape) {
            if (!isPlain(word[i]))
                return std::nullopt;
            result += word[i];
            continue;
        }
        const std::size_t high = i + 1 < word.size() ? hexDigits.find(word[i + 1]) : std::string_view::npos;
        const std::size_t low = i + 2 < word.size() ? hexDigits.find(word[i + 2]) : std::string_view::npos;
        if (high == std::string_view::npos || low == std::string_view::npos)
            return std::nullopt;
        result += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}

/// Tells six windows with a ping each apart. Encoded words hold nothing that a terminal would obey.
void showTitle(const std::vector<std::string>& encoded) {
    if (isatty(STDOUT_FILENO) == 0)
        return;
    std::string title;
    for (const std::string& word : encoded)
        title += word + ' ';
    std::printf("\033]0;%s- Mirovane\007", title.c_str());
    std::fflush(stdout);
}

/// How the program ended, for people. While it runs, the keys that end it must leave us alone: its result is
/// still to be read.
std::string runToItsEnd(const std::vector<std::string>& words, int& exitStatus) {
    CBlockedSignals keys{SIGINT, SIGQUIT};
    exitStatus = 127;
    auto child = startProcess(
        {words, ProcessStart::Ties::Foreground, {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}, std::nullopt});
    if (!child)
        return "\"" + words[0] + "\" could not be started: " + child.error().message();
    const ChildEnd end = child.value().waitForEnd();
    keys.discardPending();
    if (end.signal != 0) {
        exitStatus = 128 + end.signal;
        return std::string("ended: ") + strsignal(end.signal);
    }
    exitStatus = end.exitStatus;
    return exitStatus == 0 ? "ended" : "ended with status " + std::to_string(exitStatus);
}

} // namespace

std::vector<std::string> installedTerminal() {
    for (const KnownTerminal& terminal : knownTerminals) {
        if (!inPath(terminal.program))
            continue;
        std::vector<std::string> words{terminal.program};
        if (terminal.option)
            words.emplace_back(terminal.option);
        return words;
    }
    return {};
}

std::vector<std::string> commandInTerminal(const std::vector<std::string>& terminal,
                                           const std::string& runner, const std::vector<std::string>& words) {
    std::vector<std::string> command = terminal;
    command.push_back(runner);
    command.emplace_back(terminalRunnerFlag);
    for (const std::string& word : words)
        command.push_back(encodeWord(word));
    return command;
}

int runInTerminal(const std::vector<std::string>& encoded) {
    std::vector<std::string> words;
    for (const std::string& word : encoded) {
        auto decoded = decodeWord(word);
        if (!decoded || decoded->find('\0') != std::string::npos)
            return 2;
        words.push_back(std::move(*decoded));
    }
    if (words.empty())
        return 2;
    showTitle(encoded);
    int exitStatus = 0;
    const std::string end = runToItsEnd(words, exitStatus);
    std::printf("\n[%s - press Enter to close this window]", end.c_str());
    std::fflush(stdout);
    for (int c = std::getchar(); c != '\n' && c != EOF;)
        c = std::getchar();
    return exitStatus;
}

std::string ownProgramPath() {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : path.string();
}

} // namespace mirovane
