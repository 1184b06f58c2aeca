// Patterns: a full scan against grep, one short value against the bare engine, patterns that never end.

#define PCRE2_CODE_UNIT_WIDTH 8

#include "bench/support/PairedRounds.h"
#include "livestat/search/TextFileSearch.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <pcre2.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace mirovane;

namespace {

constexpr std::size_t textSize = 100'000'000;

/// Lines as a switch or a DHCP server writes them to its log.
std::size_t writeLog(const std::string& path) {
    static constexpr std::array events{"link up, 1000 Mb/s full duplex",
                                       "DHCPACK on 192.168.7.23 to 00:1b:44:11:3a:b7 (RECEPTION-PC) via eth0",
                                       "Interface GigabitEthernet0/12 changed state to down",
                                       "user JSmith logged on from console",
                                       "HP LaserJet 4250 toner low, 7% remaining",
                                       "authentication failure for community Public from 10.0.3.9",
                                       "Temperature of module 2 is 41 C, fan speed 3200 rpm"};
    std::string text;
    std::size_t line = 0;
    for (; text.size() < textSize; ++line) {
        text += "2026-11-22 14:" + std::to_string(10 + line % 50) + ":" + std::to_string(10 + line % 47) +
                " Host-" + std::to_string(line % 977) + " [" + std::to_string(line) + "] " +
                events[line * 7 % events.size()] + "\n";
    }
    std::ofstream(path, std::ios::binary) << text;
    return line;
}

/// Searches the file as a worker does; ends the program when it does not see every line without a hit.
void scanFile(const std::string& path, const std::string& pattern, std::size_t lines) {
    const SearchResult found = searchTextFile(path, CompilePattern(pattern), {});
    if (found.end != SearchResult::End::NoHit || found.number != lines) {
        std::fprintf(stderr, "wrong answer for %s\n", pattern.c_str());
        std::exit(1);
    }
}

void grepFile(const std::string& path, const std::string& pattern) {
    const std::string command = "test \"$(LC_ALL=C grep -ciP '" + pattern + "' '" + path + "')\" = 0";
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "grep finds something else for %s\n", pattern.c_str());
        std::exit(1);
    }
}

void fullScans(const std::string& path, std::size_t lines) {
    const std::vector<std::pair<const char*, const char*>> kinds{
        {"words", "deskjet 840c"},
        {"character kinds", "\\b\\d{3}-\\d{4}-[a-z]{3}\\b"},
        {"alternatives", "(?:critical|emergency|panic): .*disk"},
        {"back-reference", "(\\w+) is not \\1"},
    };
    double product = 1;
    for (const auto& [kind, pattern] : kinds) {
        const auto result = bench::measurePaired([&] { scanFile(path, pattern, lines); },
                                                 [&] { grepFile(path, pattern); }, 9);
        bench::printRow("P1", std::string("100 MB, ") + kind + " / grep -ciP", result, 1.25);
        product *= result.ratio;
    }
    const double mean = std::pow(product, 1.0 / static_cast<double>(kinds.size()));
    bench::printRow("P1", "geometric mean of the ratios", {0, 0, mean}, 1.0);
}

bool bareMatch(const std::string& text, const std::string& pattern) {
    int error = 0;
    std::size_t offset = 0;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), 0, &error,
                                     &offset, nullptr);
    pcre2_match_data* data = pcre2_match_data_create_from_pattern(code, nullptr);
    const int result =
        pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, 0, data, nullptr);
    pcre2_match_data_free(data);
    pcre2_code_free(code);
    return result > 0;
}

void oneValue() {
    const std::vector<std::pair<std::string, std::string>> values{
        {"hp deskjet 840c", "deskjet"},
        {"cisco ios software, c2960 software, version 12.2(55)se", "version (\\d+)\\.(\\d+)"},
        {"windows 7 professional service pack 1", "^windows (?:xp|vista|7|8|10)\\b"},
        {"00:1b:44:11:3a:b7", "^[0-9a-f]{2}(?::[0-9a-f]{2}){5}$"},
    };
    constexpr int repeats = 20'000;
    for (const auto& [text, pattern] : values) {
        int found = 0;
        const auto result = bench::measurePaired(
            [&] {
                for (int i = 0; i < repeats; ++i)
                    found += MatchPattern(text, pattern) == PatternOutcome::Match ? 1 : 0;
            },
            [&] {
                for (int i = 0; i < repeats; ++i)
                    found -= bareMatch(text, pattern) ? 1 : 0;
            });
        if (found != 0) {
            std::fprintf(stderr, "wrong answer for %s\n", pattern.c_str());
            std::exit(1);
        }
        bench::printRow("P3", "20,000 times " + pattern.substr(0, 18) + " / bare engine", result, 1.5);
    }
}

/// Longest of some searches of one line; the other side of the row is the 10 ms that a line may take.
void hungryPatterns() {
    const std::string letters(40, 'a');
    const std::string runs = [] {
        std::string text;
        for (int i = 0; i < 12; ++i)
            text += "aaaaaaaaaaaaaaaa!";
        return text;
    }();
    const std::vector<std::pair<const char*, std::string>> cases{
        {"(a+)+$", letters + "!"},    {"(a+)+$", runs},
        {"(a|aa)+$", letters + "!"},  {"(.*)*x\\b$", runs},
        {"(?:a*)*b()\\1?$", runs},    {"^(\\w+\\s?)*$", letters + "!"},
        {"(?>(a+)+$)", runs},         {"(a?){30}a{30}b", letters},
        {".*.*.*.*.*[x-z]\\d", runs},
    };
    for (const auto& [pattern, line] : cases) {
        const CompiledPattern compiled = CompilePattern(pattern);
        std::vector<double> times;
        for (int i = 0; i < 9; ++i)
            times.push_back(bench::millisecondsOf([&] { SearchPattern(compiled, line); }));
        const double median = bench::medianOf(times);
        bench::printRow("P4", std::string(pattern) + " on " + std::to_string(line.size()) + " bytes / 10 ms",
                        {median, 10, median / 10}, 1.0);
    }
}

/// How long a search runs on after Live Stat was switched off.
void stopping(const std::string& path) {
    std::string lines;
    while (lines.size() < 20'000'000)
        lines += std::string(60, 'a') + "!\n";
    const std::string oneLine(20'000'000, 'a');
    const std::array<std::pair<const char*, const std::string*>, 2> texts{
        {{"lines", &lines}, {"one line of 20 MB", &oneLine}}};
    for (const auto& [what, text] : texts) {
        std::ofstream(path, std::ios::binary) << *text;
        for (const char* pattern : {"(a+)+$", "[a-y]+z", "(?:a(?!.*z))*b"}) {
            std::vector<double> times;
            for (int i = 0; i < 9; ++i) {
                const CompiledPattern compiled = CompilePattern(pattern);
                std::stop_source source;
                std::thread worker([&] { searchTextFile(path, compiled, source.get_token()); });
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                times.push_back(bench::millisecondsOf([&] {
                    source.request_stop();
                    worker.join();
                }));
            }
            const double slowest = *std::max_element(times.begin(), times.end());
            bench::printRow("P4", std::string(pattern) + " in " + what + ": slowest stop / 100 ms",
                            {slowest, 100, slowest / 100}, 1.0);
        }
    }
}

} // namespace

int main() {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("mirovane-bench-" + std::to_string(getpid()) + ".log"))
            .string();
    const std::size_t lines = writeLog(path);
    bench::printHeader();
    fullScans(path, lines);
    oneValue();
    hungryPatterns();
    stopping(path);
    std::filesystem::remove(path);
}
