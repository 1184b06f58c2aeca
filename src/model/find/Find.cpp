#include "model/find/Find.h"

#include "model/find/FindText.h"

#include <algorithm>
#include <utility>

namespace mirovane {

void CFind::setSettings(FindSettings settings) {
    settings_ = std::move(settings);
    if (settings_.FindText == emptyFindText)
        settings_.FindText.clear();
}

const CHardware* CFind::next(FindMode mode, FindState& state, From from) {
    FindSettings settings = settings_;
    settings.FindIncludeMisc = settings.FindIncludeMisc || from == From::DiscoveredMisc;
    const CFindRule rule(settings, mode);
    const auto fits = [&rule](const CHardware& record) {
        return rule.isCandidate(record) && rule.matches(record);
    };
    deselectAll();
    state.FindNothingFound = true;
    state.FindHitCount = static_cast<std::int32_t>(
        std::ranges::count_if(document_.records(), [&](const auto& record) { return fits(*record); }));
    if (std::exchange(textBefore_, settings_.FindText) != settings_.FindText)
        FindNextIndex_ = 0;

    const std::size_t size = document_.size();
    const std::size_t start = FindNextIndex_ < size ? FindNextIndex_ : 0;
    for (std::size_t looked = 0; looked < size && state.FindHitCount > 0; ++looked) {
        const std::size_t place = (start + looked) % size;
        const CHardware& record = document_.at(place);
        if (!fits(record))
            continue;
        selection_.add(record);
        FindNextIndex_ = place + 1 < size ? place + 1 : 0;
        state.FindNothingFound = false;
        state.FindReminderMode = mode != FindMode::Text;
        return &record;
    }
    return nullptr;
}

/// Not only the selection: labels that the pointer brought up must not hide what is found.
void CFind::deselectAll() {
    selection_.none();
    for (const auto& record : document_.records())
        if (record->isDevice() && record->ShowAll != 0)
            selection_.setShowAll(*record, false);
}

} // namespace mirovane
