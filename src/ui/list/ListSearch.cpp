#include "ui/list/ListSearch.h"

#include "ui/widgets/DialogText.h"

#include <algorithm>
#include <functional>
#include <string>

namespace mirovane {

namespace {

char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equalLetters(char a, char b) {
    return lowerCase(a) == lowerCase(b);
}

bool isAscii(const QString& text) {
    return std::all_of(
        text.begin(), text.end(), [](QChar c) { return c < QChar(u'\x80'); });
}

/// ASCII bytes mean the same in every 8-bit text that a record may hold, so there is nothing to convert.
std::function<bool(const std::string&)> bytesMatcher(const QString& text, bool within) {
    return [wanted = text.toStdString(), within](const std::string& cell) {
        if (!within)
            return cell.size() >= wanted.size() &&
                   std::equal(wanted.begin(), wanted.end(), cell.begin(), equalLetters);
        return std::search(cell.begin(), cell.end(), wanted.begin(), wanted.end(), equalLetters) !=
               cell.end();
    };
}

std::function<bool(const std::string&)> textMatcher(const QString& text, bool within) {
    return [text, within](const std::string& cell) {
        const QString shown = shownText(cell);
        return within ? shown.contains(text, Qt::CaseInsensitive)
                      : shown.startsWith(text, Qt::CaseInsensitive);
    };
}

} // namespace

std::optional<int> findListRow(const CListViewModel& rows, const QString& text, int start,
                               SearchDirection direction) {
    const int count = rows.rowCount();
    if (count == 0 || text.isEmpty())
        return std::nullopt;
    const int step = direction == SearchDirection::Down ? 1 : count - 1;
    for (const bool within : {false, true}) {
        const auto matches = isAscii(text) ? bytesMatcher(text, within) : textMatcher(text, within);
        int row = std::clamp(start, 0, count - 1);
        for (int looked = 0; looked < count; ++looked, row = (row + step) % count) {
            const CHardware* device = rows.recordAt(row);
            if (device && matches(listCellText(*device, rows.state().column)))
                return row;
        }
    }
    return std::nullopt;
}

} // namespace mirovane
