#include "probes/PatternSet.h"

#include <array>
#include <optional>
#include <utility>

namespace mirovane {

namespace {

constexpr unsigned char byteOf(char c) {
    return static_cast<unsigned char>(c);
}

void addRange(PatternSet& set, unsigned char low, unsigned char high) {
    for (unsigned code = low; code <= high; ++code) {
        set.set(code);
    }
}

PatternSet ranges(std::initializer_list<std::pair<unsigned char, unsigned char>> list) {
    PatternSet set;
    for (const auto& [low, high] : list) {
        addRange(set, low, high);
    }
    return set;
}

// The kinds are spelled out instead of asked of <cctype>, whose answers change with the locale of the
// process.
std::optional<PatternSet> namedSet(std::string_view name) {
    static const std::array<std::pair<std::string_view, PatternSet>, 11> named{{
        {"alnum", ranges({{'0', '9'}, {'A', 'Z'}, {'a', 'z'}})},
        {"alpha", ranges({{'A', 'Z'}, {'a', 'z'}})},
        {"cntrl", ranges({{0, 31}, {127, 127}})},
        {"digit", ranges({{'0', '9'}})},
        {"graph", ranges({{'!', '~'}})},
        {"lower", ranges({{'a', 'z'}})},
        {"print", ranges({{' ', '~'}})},
        {"punct", ranges({{'!', '/'}, {':', '@'}, {'[', '`'}, {'{', '~'}})},
        {"space", ranges({{'\t', '\r'}, {' ', ' '}})},
        {"upper", ranges({{'A', 'Z'}})},
        {"xdigit", ranges({{'0', '9'}, {'A', 'F'}, {'a', 'f'}})},
    }};
    for (const auto& [known, set] : named) {
        if (known == name) {
            return set;
        }
    }
    return std::nullopt;
}

std::optional<PatternSet> escapedKind(char letter) {
    switch (letter) {
    case 'd':
        return namedSet("digit");
    case 's':
        return namedSet("space");
    case 'w':
        return *namedSet("alnum") | ranges({{'_', '_'}});
    case 'D':
    case 'S':
    case 'W':
        return ~*escapedKind(static_cast<char>(letter | 0x20));
    default:
        return std::nullopt;
    }
}

/// One member as it is written: a single byte, which may begin or end a range, or a whole kind, which may
/// not.
struct Member {
    bool single = true;
    unsigned char byte = 0;
    PatternSet kind;
};

class SetParser {
public:
    SetParser(PatternReader& reader, std::size_t start) : reader_(reader), start_(start) {}

    PatternSet parse() {
        const bool negated = reader_.accept("^");
        bool first = true;
        // A closing bracket right at the beginning is a member.
        while (!atClosing() || first) {
            addMember();
            first = false;
        }
        reader_.take();
        return negated ? ~set_ : set_;
    }

private:
    // Quote marks count for nothing themselves, wherever they stand.
    void skipQuoteMarks() {
        for (;;) {
            if (!quoting_ && reader_.accept("\\Q")) {
                quoting_ = true;
            } else if (quoting_ && reader_.accept("\\E")) {
                quoting_ = false;
            } else {
                break;
            }
        }
        if (reader_.atEnd()) {
            PatternReader::fail(PatternFault::SetEnd, start_);
        }
    }

    bool atUnquoted(char c) {
        skipQuoteMarks();
        return !quoting_ && reader_.at(c);
    }

    bool atClosing() { return atUnquoted(']'); }

    void addMember() {
        const std::size_t where = reader_.position();
        const Member low = readMember();
        add(low);
        if (!low.single || !atUnquoted('-')) {
            return;
        }
        reader_.take();
        if (atClosing()) {
            set_.set('-');
            return;
        }
        const Member high = readMember();
        if (!high.single) {
            set_.set('-');
            add(high);
        } else if (high.byte < low.byte) {
            PatternReader::fail(PatternFault::Range, where);
        } else {
            addRange(set_, low.byte, high.byte);
        }
    }

    void add(const Member& member) {
        if (member.single) {
            set_.set(member.byte);
        } else {
            set_ |= member.kind;
        }
    }

    Member readMember() {
        const std::size_t where = reader_.position();
        const char c = reader_.take();
        if (!quoting_ && c == '\\') {
            return readEscape(where);
        }
        if (!quoting_ && c == '[') {
            return readNamed(where);
        }
        return {true, byteOf(c), {}};
    }

    Member readEscape(std::size_t where) {
        if (reader_.atEnd()) {
            PatternReader::fail(PatternFault::SetEnd, start_);
        }
        const char c = reader_.take();
        if (const auto kind = escapedKind(c)) {
            return {false, 0, *kind};
        }
        if (c == 'c') {
            return {true, byteOf(reader_.takeControl(where)), {}};
        }
        if (c == 'E') {
            PatternReader::fail(PatternFault::QuoteEnd, where);
        }
        if (namedSet("alnum")->test(byteOf(c))) {
            PatternReader::fail(PatternFault::IllFormed, where);
        }
        return {true, byteOf(c), {}};
    }

    // A bracket that begins neither [:name:] nor one of the two notations of the same shape stands for
    // itself.
    Member readNamed(std::size_t where) {
        const std::string_view rest = reader_.rest();
        const char mark = rest.empty() ? '\0' : rest.front();
        std::size_t end = 1;
        while (end < rest.size() && (namedSet("alpha")->test(byteOf(rest[end])) || rest[end] == '^')) {
            ++end;
        }
        const bool marked = mark == ':' || mark == '.' || mark == '=';
        if (!marked || end + 1 >= rest.size() || rest[end] != mark || rest[end + 1] != ']') {
            return {true, '[', {}};
        }
        const auto kind = mark == ':' ? namedSet(rest.substr(1, end - 1)) : std::nullopt;
        if (!kind) {
            PatternReader::fail(PatternFault::IllFormed, where);
        }
        reader_.skip(end + 2);
        return {false, 0, *kind};
    }

    PatternReader& reader_;
    std::size_t start_;
    bool quoting_ = false;
    PatternSet set_;
};

void appendRanges(std::string& text, const PatternSet& set) {
    for (std::size_t low = 0; low < set.size(); ++low) {
        if (!set.test(low)) {
            continue;
        }
        std::size_t high = low;
        while (high + 1 < set.size() && set.test(high + 1)) {
            ++high;
        }
        appendHexByte(text, static_cast<unsigned char>(low));
        if (high > low) {
            text += '-';
            appendHexByte(text, static_cast<unsigned char>(high));
        }
        low = high;
    }
}

} // namespace

PatternSet readPatternSet(PatternReader& reader, std::size_t start) {
    return SetParser(reader, start).parse();
}

std::string patternSetText(const PatternSet& set) {
    // Neither side of a set may be listed as nothing. The engine has a faster search for "all but this byte".
    const bool negate = set.none() || (set.count() > set.size() / 2 && !set.all());
    std::string text = negate ? "[^" : "[";
    appendRanges(text, negate ? ~set : set);
    return text + ']';
}

void appendHexByte(std::string& text, unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += "\\x";
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

} // namespace mirovane
