#include "pattern/PatternSet.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

namespace mirovane {

namespace {

constexpr unsigned char byteOf(char c) {
    return static_cast<unsigned char>(c);
}

// The kinds are spelled out instead of asked of <cctype>, whose answers change with the locale of the
// process.
constexpr CPatternSet digits = CPatternSet().add('0', '9');
constexpr CPatternSet lowers = CPatternSet().add('a', 'z');
constexpr CPatternSet uppers = CPatternSet().add('A', 'Z');
constexpr CPatternSet letters = CPatternSet(lowers).add(uppers);
constexpr CPatternSet alphanumerics = CPatternSet(letters).add(digits);
constexpr CPatternSet words = CPatternSet(alphanumerics).add('_');
constexpr CPatternSet spaces = CPatternSet().add('\t', '\r').add(' ');

struct NamedSet {
    std::string_view name;
    CPatternSet set;
};

constexpr std::array namedSets{
    NamedSet{"alnum", alphanumerics},
    NamedSet{"alpha", letters},
    NamedSet{"cntrl", CPatternSet().add(0, 31).add(127)},
    NamedSet{"digit", digits},
    NamedSet{"graph", CPatternSet().add('!', '~')},
    NamedSet{"lower", lowers},
    NamedSet{"print", CPatternSet().add(' ', '~')},
    NamedSet{"punct", CPatternSet().add('!', '/').add(':', '@').add('[', '`').add('{', '~')},
    NamedSet{"space", spaces},
    NamedSet{"upper", uppers},
    NamedSet{"xdigit", CPatternSet(digits).add('A', 'F').add('a', 'f')},
};

std::optional<CPatternSet> namedSet(std::string_view name) {
    const auto* found = std::ranges::find(namedSets, name, &NamedSet::name);
    return found == namedSets.end() ? std::nullopt : std::optional(found->set);
}

std::optional<CPatternSet> escapedKind(char letter) {
    switch (letter) {
    case 'd':
        return digits;
    case 's':
        return spaces;
    case 'w':
        return words;
    case 'D':
        return digits.complement();
    case 'S':
        return spaces.complement();
    case 'W':
        return words.complement();
    default:
        return std::nullopt;
    }
}

/// One member as it is written: a single byte, which may begin or end a range, or a whole kind, which may
/// not.
struct Member {
    bool single = true;
    unsigned char byte = 0;
    CPatternSet kind;
};

class CSetParser {
public:
    CSetParser(CPatternReader& reader, std::size_t start) : reader_(reader), start_(start) {}

    CPatternSet parse() {
        const bool negated = reader_.accept("^");
        bool first = true;
        // A closing bracket right at the beginning is a member.
        while (!atClosing() || first) {
            addMember();
            first = false;
        }
        reader_.take();
        return negated ? set_.complement() : set_;
    }

private:
    // Quote marks count for nothing themselves, wherever they are.
    void skipQuoteMarks() {
        while (reader_.at('\\') && reader_.accept(quoting_ ? "\\E" : "\\Q"))
            quoting_ = !quoting_;
        if (reader_.atEnd())
            CPatternReader::fail(PatternFault::SetEnd, start_);
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
        if (!low.single || !atUnquoted('-'))
            return;
        reader_.take();
        if (atClosing()) {
            set_.add('-');
            return;
        }
        const Member high = readMember();
        if (!high.single) {
            set_.add('-');
            add(high);
        } else if (high.byte < low.byte) {
            CPatternReader::fail(PatternFault::Range, where);
        } else {
            set_.add(low.byte, high.byte);
        }
    }

    void add(const Member& member) {
        if (member.single)
            set_.add(member.byte);
        else
            set_.add(member.kind);
    }

    Member readMember() {
        const std::size_t where = reader_.position();
        const char c = reader_.take();
        if (!quoting_ && c == '\\')
            return readEscape(where);
        if (!quoting_ && c == '[')
            return readNamed(where);
        return {true, byteOf(c), {}};
    }

    Member readEscape(std::size_t where) {
        if (reader_.atEnd())
            CPatternReader::fail(PatternFault::SetEnd, start_);
        const char c = reader_.take();
        if (const auto kind = escapedKind(c))
            return {false, 0, *kind};
        if (c == 'c')
            return {true, byteOf(reader_.takeControl(where)), {}};
        if (c == 'E')
            CPatternReader::fail(PatternFault::QuoteEnd, where);
        if (alphanumerics.contains(byteOf(c)))
            CPatternReader::fail(PatternFault::IllFormed, where);
        return {true, byteOf(c), {}};
    }

    // A bracket that begins neither [:name:] nor one of the two notations of the same shape stands for
    // itself.
    Member readNamed(std::size_t where) {
        const std::string_view rest = reader_.rest();
        const char mark = rest.empty() ? '\0' : rest.front();
        std::size_t end = 1;
        while (end < rest.size() && (letters.contains(byteOf(rest[end])) || rest[end] == '^'))
            ++end;
        const bool marked = mark == ':' || mark == '.' || mark == '=';
        if (!marked || end + 1 >= rest.size() || rest[end] != mark || rest[end + 1] != ']')
            return {true, '[', {}};
        const auto kind = mark == ':' ? namedSet(rest.substr(1, end - 1)) : std::nullopt;
        if (!kind)
            CPatternReader::fail(PatternFault::IllFormed, where);
        reader_.skip(end + 2);
        return {false, 0, *kind};
    }

    CPatternReader& reader_;
    std::size_t start_;
    bool quoting_ = false;
    CPatternSet set_;
};

void appendRanges(std::string& text, const CPatternSet& set) {
    for (unsigned low = set.next(0, true); low < CPatternSet::size;) {
        const unsigned end = set.next(low, false);
        appendLiteral(text, static_cast<unsigned char>(low));
        if (end > low + 1) {
            text += '-';
            appendLiteral(text, static_cast<unsigned char>(end - 1));
        }
        low = set.next(end, true);
    }
}

} // namespace

unsigned CPatternSet::count() const {
    int members = 0;
    for (const std::uint64_t word : words_)
        members += std::popcount(word);
    return static_cast<unsigned>(members);
}

unsigned CPatternSet::next(unsigned from, bool member) const {
    for (unsigned i = from; i < size; i = (i / 64 + 1) * 64) {
        const std::uint64_t word = (member ? words_[i / 64] : ~words_[i / 64]) >> i % 64;
        if (word != 0)
            return i + static_cast<unsigned>(std::countr_zero(word));
    }
    return size;
}

CPatternSet readPatternSet(CPatternReader& reader, std::size_t start) {
    return CSetParser(reader, start).parse();
}

std::string patternSetText(const CPatternSet& set) {
    // Neither side of a set may be listed as nothing. The engine has a faster search for "all but this byte".
    const unsigned members = set.count();
    const bool negate = members == 0 || (members > CPatternSet::size / 2 && members < CPatternSet::size);
    std::string text = negate ? "[^" : "[";
    appendRanges(text, negate ? set.complement() : set);
    return text + ']';
}

void appendLiteral(std::string& text, unsigned char byte) {
    const auto within = [byte](char first, char last) {
        return byte >= byteOf(first) && byte <= byteOf(last);
    };
    if (within('a', 'z') || within('0', '9') || within('A', 'Z') || byte == ' ' || byte == '_' ||
        byte == '/') {
        text += static_cast<char>(byte);
        return;
    }
    constexpr std::string_view figures = "0123456789abcdef";
    const char code[] = {'\\', 'x', figures[byte >> 4], figures[byte & 15]};
    text.append(code, sizeof code);
}

} // namespace mirovane
