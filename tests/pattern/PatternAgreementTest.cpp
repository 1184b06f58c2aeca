#include "pattern/Pattern.h"
#include "tests/support/Paths.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace mirovane;

namespace {

struct Pair {
    std::string pattern;
    std::string text;
};

/// Choices that are the same on every machine and with every library.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : engine_(seed) {}

    unsigned below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
    bool chance(unsigned percent) { return below(100) < percent; }
    char of(std::string_view letters) { return letters[below(static_cast<unsigned>(letters.size()))]; }
    std::string_view of(std::initializer_list<std::string_view> words) {
        return words.begin()[below(static_cast<unsigned>(words.size()))];
    }
    std::string text(std::string_view letters, unsigned longest) {
        std::string text(below(longest + 1), ' ');
        for (char& c : text)
            c = of(letters);
        return text;
    }

private:
    std::mt19937 engine_;
};

constexpr std::string_view literals = "aab1 _-";
constexpr std::string_view textLetters = "aaabbb11 _-.\n\xe4(";

/// Writes patterns that use every construct of the language, over few letters so that many of them match.
class PatternWriter {
public:
    explicit PatternWriter(Dice& dice) : dice_(dice) {}

    std::string write() {
        captures_ = 0;
        known_.clear();
        depth_ = 0;
        return alternation();
    }

private:
    std::string alternation() {
        std::string pattern = sequence();
        while (dice_.chance(25))
            pattern += '|' + sequence();
        return pattern;
    }

    std::string sequence() {
        std::string pattern;
        for (unsigned n = dice_.below(4) + (depth_ == 0 ? 1 : 0); n > 0; --n) {
            const bool repeatable = dice_.chance(75);
            pattern += repeatable ? item() : fixed();
            pattern += repeatable && dice_.chance(40) ? quantifier() : "";
        }
        return pattern;
    }

    std::string quantifier() {
        std::string text(
            dice_.of({"*", "+", "?", "{0}", "{2}", "{1,}", "{0,2}", "{1,3}", "(?#again)*", "\\Q\\E?"}));
        return text + (dice_.chance(30) ? "?" : "");
    }

    /// What cannot be repeated.
    std::string fixed() {
        switch (dice_.below(depth_ < 4 ? 9 : 5)) {
        case 0:
            return "^";
        case 1:
            return "$";
        case 2:
            return std::string(dice_.of({"\\b", "\\B"}));
        case 3:
            return "(?#" + dice_.text("a+*([\\", 3) + ")";
        case 4:
            return lookBehind();
        case 5:
            return "a(?:(?R)|b)";
        default:
            return nested(dice_.of({"(?=", "(?!"}));
        }
    }

    std::string lookBehind() {
        std::string text(dice_.of({"(?<=", "(?<!"}));
        text += steady();
        text += dice_.chance(30) ? '|' + steady() : "";
        return text + ')';
    }

    /// A part of fixed length.
    std::string steady() {
        std::string text;
        for (unsigned n = dice_.below(3); n > 0; --n)
            text += dice_.chance(50) ? std::string(1, dice_.of(literals)) : dice_.chance(50) ? set() : kind();
        return text;
    }

    std::string item() {
        switch (dice_.below(depth_ < 4 ? 14 : 7)) {
        case 0:
            return ".";
        case 1:
            return kind();
        case 2:
            return set();
        case 3:
            return dice_.chance(70)
                       ? quoted()
                       : std::string(dice_.of({"\\.", "\\(", "\\cj", "{", "a{x}", "]", "\\\xe4"}));
        case 4:
            return known_.empty() ? "b" : "\\" + knownGroup() + "(?:)";
        case 7:
            return nested("(?:");
        case 8:
            return nested("(?>");
        case 9:
            return condition();
        case 10:
        case 11:
        case 12:
            return captures_ < 9 ? capture() : nested("(?:");
        default:
            return std::string(1, dice_.of(literals));
        }
    }

    std::string quoted() {
        const std::string text = dice_.text("ab.*(", 3);
        return "\\Q" + text + "\\E" + dice_.of(literals);
    }

    std::string kind() { return std::string(dice_.of({"\\d", "\\D", "\\s", "\\S", "\\w", "\\W"})); }

    std::string nested(std::string_view opening) {
        ++depth_;
        const auto before = known_;
        std::string text = std::string(opening) + alternation() + ')';
        --depth_;
        if (opening == "(?!")
            known_ = before;
        return text;
    }

    std::string capture() {
        const unsigned number = ++captures_;
        const std::string text = nested("(");
        known_.push_back(number);
        return text;
    }

    // Groups that are closed and not within a negative look-ahead: Perl keeps what those found on the way to
    // failing.
    std::string knownGroup() {
        return std::to_string(known_[dice_.below(static_cast<unsigned>(known_.size()))]);
    }

    std::string condition() {
        if (known_.empty())
            return "1";
        ++depth_;
        std::string text = "(?(" + knownGroup() + ')';
        text += sequence();
        text += dice_.chance(60) ? '|' + sequence() : "";
        --depth_;
        return text + ')';
    }

    std::string set() {
        std::string text = dice_.chance(30) ? "[^" : "[";
        text += dice_.chance(10) ? "]" : "";
        do {
            text += dice_.of({"a",   "b",    "1",         "a-b",       "0-9",       " -.",       "\\d",
                              "\\S", "\\W",  "[:alpha:]", "[:punct:]", "[:space:]", "[:cntrl:]", "[:xdigit:]",
                              "\\-", "\\cj", "\\Q]\\E",   "\xe0-\xff", "[",         "\\]"});
        } while (dice_.chance(40));
        return text + (dice_.chance(10) ? "-]" : "]");
    }

    Dice& dice_;
    unsigned captures_ = 0;
    std::vector<unsigned> known_;
    unsigned depth_ = 0;
};

std::string hex(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[static_cast<unsigned char>(c) & 15];
    }
    return text;
}

/// Perl's answers, a character per pair; nothing when there is no Perl.
std::optional<std::string> perlAnswers(const std::vector<Pair>& pairs) {
    if (std::system("perl -e 1 >/dev/null 2>&1") != 0)
        return std::nullopt;
    const auto folder = std::filesystem::temp_directory_path();
    const std::string stem = (folder / ("mirovane-patterns-" + std::to_string(getpid()))).string();
    std::ofstream questions(stem + ".in");
    for (const Pair& pair : pairs)
        questions << hex(pair.pattern) << ' ' << hex(pair.text) << '\n';
    questions.close();
    const std::string command = "perl '" + test::sourceFile("tests/pattern/PatternOracle.pl") + "' <'" +
                                stem + ".in' >'" + stem + ".out'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::ifstream file(stem + ".out");
    std::string answers;
    for (std::string line; std::getline(file, line);)
        answers += line.empty() ? '?' : line[0];
    std::filesystem::remove(stem + ".in");
    std::filesystem::remove(stem + ".out");
    return answers;
}

char ourAnswer(const CompiledPattern& pattern, const std::string& text) {
    switch (SearchPattern(pattern, text)) {
    case PatternOutcome::Match:
        return '1';
    case PatternOutcome::NoMatch:
        return '0';
    default:
        return 'L';
    }
}

std::string shown(const std::string& bytes) {
    return testing::PrintToString(bytes);
}

/// Asks both engines about every pair whose pattern we accept, and counts what was asked.
struct Comparison {
    std::map<std::string, int> counts;
    std::vector<std::string> disagreements;
    int asked = 0;
    int undecided = 0; ///< beyond our step limit, or Perl broke down
    bool perlMissing = false;

    void ask(const std::vector<Pair>& pairs) {
        const auto perl = perlAnswers(pairs);
        perlMissing = !perl.has_value();
        if (perlMissing)
            return;
        ASSERT_EQ(perl->size(), pairs.size());
        for (std::size_t i = 0; i < pairs.size(); ++i)
            compare(pairs[i], (*perl)[i]);
    }

    void compare(const Pair& pair, char perl) {
        for (const PatternUse use : {PatternUse::OneText, PatternUse::ManyTexts}) {
            const char ours = ourAnswer(CompilePattern(pair.pattern, use), pair.text);
            ++counts[std::string("ours ") + ours + ", Perl " + perl];
            ++asked;
            undecided += ours == 'L' || perl == 'P' ? 1 : 0;
            if (ours != perl && ours != 'L' && perl != 'P') {
                disagreements.push_back(shown(pair.pattern) + " in " + shown(pair.text) + ": ours " + ours +
                                        ", Perl " + perl +
                                        (use == PatternUse::OneText ? ", interpreted" : ", machine code"));
            }
        }
    }
};

bool accepted(const std::string& pattern) {
    try {
        CompilePattern(pattern, PatternUse::OneText);
        return true;
    } catch (const bad_regexpr&) {
        return false;
    }
}

void report(const Comparison& comparison) {
    for (const auto& [what, count] : comparison.counts)
        std::printf("%s: %d\n", what.c_str(), count);
    for (const std::string& disagreement : comparison.disagreements)
        ADD_FAILURE() << disagreement;
    EXPECT_LT(comparison.undecided, comparison.asked / 1000);
}

TEST(PatternAgreementTest, WrittenPatternsMatchAsInPerl) {
    Dice dice(20261122);
    PatternWriter writer(dice);
    std::vector<Pair> pairs;
    for (int i = 0; i < 8000; ++i) {
        const std::string pattern = writer.write();
        ASSERT_TRUE(accepted(pattern)) << shown(pattern);
        for (int text = 0; text < 6; ++text)
            pairs.push_back({pattern, dice.text(textLetters, 10)});
    }
    Comparison comparison;
    comparison.ask(pairs);
    if (comparison.perlMissing)
        GTEST_SKIP() << "no perl on this computer to compare with";
    report(comparison);
}

// Nothing that we accept may be refused or read differently, however it was typed.
TEST(PatternAgreementTest, ScribbledPatternsThatPassMatchAsInPerl) {
    Dice dice(4711);
    std::vector<Pair> pairs;
    int patterns = 0;
    for (int i = 0; i < 60000; ++i) {
        const std::string pattern = dice.text("aab1(()))[[]]{}?*+|\\\\^$:=!<>#RQEdbwc,-. ", 9);
        if (!accepted(pattern))
            continue;
        ++patterns;
        for (int text = 0; text < 3; ++text)
            pairs.push_back({pattern, dice.text("aab1()[]{}?*+|\\^$:-\n", 8)});
    }
    EXPECT_GT(patterns, 5000);
    Comparison comparison;
    comparison.ask(pairs);
    if (comparison.perlMissing)
        GTEST_SKIP() << "no perl on this computer to compare with";
    report(comparison);
}

struct Disagreement {
    const char* pattern;
    const char* text;
    char ours;
    char perl;
};

// All that is known. Should Perl come to agree, the entry goes, and the writer above may use more.
TEST(PatternAgreementTest, KnownDisagreementsAreStillThose) {
    const std::vector<Disagreement> known{
        // A group within a repeated group: Perl forgets at each turn what it caught at the turn before.
        {"^(a(b)?)+\\2$", "abab", '1', '0'},
        // A group of an attempt that failed: Perl still knows what it caught.
        {"(?!()x)\\1", "", '0', '1'},
        {"(\\S)(|)a(?:(?R)|b)|\\1\\(", "baa(-1", '0', '1'},
        // Perl breaks down at a set without members that is repeated.
        {"[^\\S\\W]+", "a", '0', 'P'},
    };
    std::vector<Pair> pairs;
    for (const Disagreement& one : known)
        pairs.push_back({one.pattern, one.text});
    const auto perl = perlAnswers(pairs);
    if (!perl)
        GTEST_SKIP() << "no perl on this computer to compare with";
    for (std::size_t i = 0; i < known.size(); ++i) {
        EXPECT_EQ(ourAnswer(CompilePattern(known[i].pattern), known[i].text), known[i].ours)
            << known[i].pattern;
        EXPECT_EQ((*perl)[i], known[i].perl) << known[i].pattern;
    }
}

} // namespace
