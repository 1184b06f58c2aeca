#include "pattern/PatternTranslator.h"

#include "pattern/PatternReader.h"
#include "pattern/PatternSet.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace mirovane {

namespace {

constexpr std::size_t maxNesting = 200;
constexpr unsigned maxCount = 65535;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

enum class GroupKind { Plain, LookAhead, LookBehind, Conditional };

struct Group {
    GroupKind kind = GroupKind::Plain;
    std::size_t start = 0;
    int branches = 1;
};

/// What a quantifier would meet if it came next.
enum class Last { Nothing, Item, Fixed, LookAhead, Recursion, Quantified };

class CTranslator {
public:
    explicit CTranslator(std::string_view pattern) : reader_(pattern) { out_.reserve(pattern.size() * 2); }

    TranslatedPattern translate() {
        while (!reader_.atEnd())
            if (quoting_)
                quotedByte();
            else
                item();
        if (!groups_.empty())
            CPatternReader::fail(PatternFault::Parenthesis, groups_.back().start);
        out_.insert(0, beginning());
        return {std::move(out_), !atomic_};
    }

private:
    // The engine (10.42) guesses wrongly how every match must begin where a pattern begins with a look-ahead
    // ("(?=b).*?b" finds no b) or with an item that is repeated no times and has alternatives ("(?:x|^){0}b"
    // is taken for anchored). An empty group in front ends its guessing.
    std::string_view beginning() const {
        return unused_ || (lookAhead_ && !out_.starts_with('^')) ? "(?:)" : "";
    }

    void item() {
        const std::size_t where = reader_.position();
        const char c = reader_.take();
        switch (c) {
        case '\\':
            return escape(where);
        case '[':
            return put(patternSetText(readPatternSet(reader_, where)), Last::Item);
        case '(':
            return open(where);
        case ')':
            return close(where);
        case '|':
            return alternate(where);
        case '*':
        case '+':
        case '?':
            return quantify({&c, 1}, where);
        case '{':
            return brace(where);
        case '.':
            return put(".", Last::Item);
        case '^':
        case '$':
            return put({&c, 1}, Last::Fixed);
        default:
            return literal(c);
        }
    }

    void put(std::string_view text, Last last) {
        out_ += text;
        last_ = last;
    }

    void literal(char c) {
        constexpr std::string_view harmless = ":-,;=@%";
        if (harmless.find(c) != std::string_view::npos)
            out_ += c;
        else
            appendLiteral(out_, static_cast<unsigned char>(c));
        last_ = Last::Item;
    }

    void quotedByte() {
        if (reader_.accept("\\E"))
            quoting_ = false;
        else
            literal(reader_.take());
    }

    void escape(std::size_t where) {
        if (reader_.atEnd())
            CPatternReader::fail(PatternFault::IllFormed, where);
        const char c = reader_.take();
        if (std::string_view("dDsSwW").find(c) != std::string_view::npos)
            put({'\\', c}, Last::Item);
        else if (c == 'b' || c == 'B')
            put({'\\', c}, Last::Fixed);
        else if (c == 'Q')
            quoting_ = true;
        else if (c == 'E')
            CPatternReader::fail(PatternFault::QuoteEnd, where);
        else if (c == 'c')
            literal(reader_.takeControl(where));
        else if (c >= '1' && c <= '9')
            reference(c, where);
        else if (isLetter(c) || c == '0')
            CPatternReader::fail(PatternFault::IllFormed, where);
        else
            literal(c);
    }

    void put(std::initializer_list<char> text, Last last) {
        put(std::string_view(text.begin(), text.size()), last);
    }

    // References have one digit. With more digits others read them as a longer reference or as a character
    // code; the pattern is refused rather than matched in a way that its author did not mean.
    void reference(char digit, std::size_t where) {
        const unsigned number = static_cast<unsigned>(digit - '0');
        if (number > captures_)
            CPatternReader::fail(PatternFault::Group, where);
        if (!reader_.atEnd() && isDigit(reader_.rest().front()))
            CPatternReader::fail(PatternFault::IllFormed, where);
        put(std::string("\\g{") + digit + '}', Last::Item);
    }

    void open(std::size_t where) {
        if (!reader_.accept("?")) {
            ++captures_;
            push("(", GroupKind::Plain, where);
        } else if (reader_.accept("#")) {
            comment(where);
        } else if (reader_.accept("R")) {
            recursion(where);
        } else if (reader_.accept("(")) {
            condition(where);
        } else {
            extension(where);
        }
    }

    void extension(std::size_t where) {
        struct Known {
            std::string_view mark;
            std::string_view opening;
            GroupKind kind;
        };
        static constexpr Known all[]{
            {":", "(?:", GroupKind::Plain},        {">", "(?>", GroupKind::Plain},
            {"=", "(?=", GroupKind::LookAhead},    {"!", "(?!", GroupKind::LookAhead},
            {"<=", "(?<=", GroupKind::LookBehind}, {"<!", "(?<!", GroupKind::LookBehind},
        };
        const auto* known =
            std::ranges::find_if(all, [this](const Known& k) { return reader_.accept(k.mark); });
        if (known == std::end(all))
            CPatternReader::fail(PatternFault::Extension, where);
        lookAhead_ = lookAhead_ || known->mark == "=";
        atomic_ = atomic_ || known->mark == ">";
        push(known->opening, known->kind, where);
    }

    void push(std::string_view text, GroupKind kind, std::size_t where) {
        if (groups_.size() >= maxNesting)
            CPatternReader::fail(PatternFault::IllFormed, where);
        groups_.push_back({kind, where});
        put(text, Last::Nothing);
    }

    // A comment counts for nothing: what stood before it is still what a quantifier behind it repeats.
    void comment(std::size_t where) {
        const std::size_t end = reader_.rest().find(')');
        if (end == std::string_view::npos)
            CPatternReader::fail(PatternFault::CommentEnd, where);
        reader_.skip(end + 1);
    }

    void recursion(std::size_t where) {
        if (reader_.atEnd())
            CPatternReader::fail(PatternFault::Parenthesis, where);
        if (!reader_.accept(")"))
            CPatternReader::fail(PatternFault::Extension, where);
        put("(?R)", Last::Recursion);
    }

    void condition(std::size_t where) {
        const auto number = readNumber();
        if (reader_.atEnd())
            CPatternReader::fail(PatternFault::Parenthesis, where);
        if (!number || !reader_.accept(")"))
            CPatternReader::fail(PatternFault::Extension, where);
        if (*number == 0 || *number > captures_)
            CPatternReader::fail(PatternFault::Group, where);
        push("(?(" + std::to_string(*number) + ')', GroupKind::Conditional, where);
    }

    void close(std::size_t where) {
        if (groups_.empty())
            CPatternReader::fail(PatternFault::Parenthesis, where);
        const GroupKind kind = groups_.back().kind;
        groups_.pop_back();
        put(")", kind == GroupKind::LookAhead    ? Last::LookAhead
                 : kind == GroupKind::LookBehind ? Last::Fixed
                                                 : Last::Item);
    }

    void alternate(std::size_t where) {
        if (!groups_.empty()) {
            Group& group = groups_.back();
            if (++group.branches > 2 && group.kind == GroupKind::Conditional)
                CPatternReader::fail(PatternFault::Alternates, where);
        }
        put("|", Last::Nothing);
    }

    void quantify(std::string_view text, std::size_t where) {
        switch (last_) {
        case Last::Item:
            return put(text, Last::Quantified);
        case Last::Quantified:
            // The one thing that may follow a quantifier is the mark of its non-greedy form, once.
            if (text == "?")
                return put(text, Last::Nothing);
            [[fallthrough]];
        case Last::Nothing:
            CPatternReader::fail(PatternFault::Quantifier, where);
        case Last::Fixed:
            CPatternReader::fail(PatternFault::Unrepeatable, where);
        case Last::LookAhead:
            CPatternReader::fail(PatternFault::LookAhead, where);
        case Last::Recursion:
            CPatternReader::fail(PatternFault::Recursion, where);
        }
    }

    void brace(std::size_t where) {
        if (countFollows())
            count(where);
        else
            literal('{');
    }

    // Something that is meant as a count, whether or not it is a right one.
    bool countFollows() const {
        bool digits = false;
        for (const char c : reader_.rest()) {
            if (c == '}')
                return digits;
            if (!isDigit(c) && c != ',' && c != ' ' && c != '\t')
                return false;
            digits = digits || isDigit(c);
        }
        return false;
    }

    void count(std::size_t where) {
        const auto least = readNumber();
        const bool range = reader_.accept(",");
        const auto most = range ? readNumber() : least;
        if (!least || !reader_.accept("}"))
            CPatternReader::fail(PatternFault::IllFormed, where);
        // Only digits and a comma are between the braces: the engine reads it the same way.
        quantify(reader_.since(where), where);
        if (most && *least > *most)
            CPatternReader::fail(PatternFault::CountOrder, where);
        if (std::max(*least, most.value_or(0)) > maxCount)
            CPatternReader::fail(PatternFault::IllFormed, where);
        unused_ = unused_ || most == 0U;
    }

    // Stops growing far above every number that is allowed.
    std::optional<unsigned> readNumber() {
        std::optional<unsigned> number;
        while (!reader_.atEnd() && isDigit(reader_.rest().front())) {
            const unsigned digit = static_cast<unsigned>(reader_.take() - '0');
            number = std::min(number.value_or(0) * 10 + digit, 10'000'000U);
        }
        return number;
    }

    CPatternReader reader_;
    std::string out_;
    std::vector<Group> groups_;
    unsigned captures_ = 0;
    Last last_ = Last::Nothing;
    bool quoting_ = false;
    bool lookAhead_ = false;
    bool atomic_ = false;
    bool unused_ = false; ///< some item is repeated no times at all
};

} // namespace

char CPatternReader::takeControl(std::size_t start) {
    if (atEnd())
        fail(PatternFault::Control, start);
    const char letter = take();
    if (!isLetter(letter))
        fail(PatternFault::IllFormed, start);
    return static_cast<char>(letter & 0x1f);
}

TranslatedPattern translatePattern(std::string_view pattern) {
    return CTranslator(pattern).translate();
}

} // namespace mirovane
