#include "model/find/QuickFind.h"

#include "model/find/TextCase.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace mirovane {

namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::int64_t distance(MapPoint a, MapPoint b) {
    return std::abs(std::int64_t{a.x} - b.x) + std::abs(std::int64_t{a.y} - b.y);
}

bool isMarkerOnFloor(const CHardware& record) {
    return record.Type == DeviceType::LocationMarker;
}

} // namespace

CQuickFind::CQuickFind(const CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
}

CQuickFind::~CQuickFind() {
    document_.removeObserver(*this);
}

// ---- the block of texts

void CQuickFind::forget() {
    ready_ = false;
    markersKnown_ = false;
    block_.clear();
    slots_.clear();
    slotOf_.clear();
    dropped_ = 0;
}

void CQuickFind::prepare() {
    if (ready_ && dropped_ <= block_.size() / 3)
        return;
    forget();
    slots_.reserve(document_.deviceCount());
    slotOf_.reserve(document_.deviceCount());
    for (const auto& record : document_.records())
        if (record->isDevice())
            append(*record);
    ready_ = true;
}

void CQuickFind::append(const CHardware& device) {
    const QuickFindText text = quickFindText(device);
    slotOf_[&device] = slots_.size();
    slots_.push_back(
        {block_.size(), static_cast<std::uint32_t>(text.text.size()), text.nameEnd, text.knownEnd, &device});
    block_ += text.text;
}

/// Zeroes are in no text that anybody can type.
void CQuickFind::drop(const CHardware& device) {
    const auto found = slotOf_.find(&device);
    if (found == slotOf_.end())
        return;
    Slot& slot = slots_[found->second];
    std::fill_n(block_.begin() + static_cast<std::ptrdiff_t>(slot.start), slot.size, '\0');
    slot.device = nullptr;
    dropped_ += slot.size;
    slotOf_.erase(found);
}

void CQuickFind::recordAdded(const CHardware& record) {
    markersKnown_ = markersKnown_ && !isMarkerOnFloor(record);
    if (ready_ && record.isDevice())
        append(record);
}

void CQuickFind::recordChanged(const CHardware& before, const CHardware& after) {
    markersKnown_ = markersKnown_ && !isMarkerOnFloor(before) && !isMarkerOnFloor(after);
    if (!ready_ || (!before.isDevice() && !after.isDevice()))
        return;
    QuickFindText text = quickFindText(after);
    const auto found = slotOf_.find(&after);
    if (found != slotOf_.end()) {
        const Slot& slot = slots_[found->second];
        if (std::string_view(block_).substr(slot.start, slot.size) == text.text)
            return; // its state or its place: most of what Live Stat and the mouse change
    }
    drop(after);
    if (after.isDevice())
        append(after);
}

void CQuickFind::recordRemoved(const CHardware& record) {
    markersKnown_ = markersKnown_ && !isMarkerOnFloor(record);
    if (ready_)
        drop(record);
}

// ---- the search

/// From hit to hit, and from a device that was hit to the next one.
void CQuickFind::rankBy(std::string_view word, Ranks& ranks) const {
    const std::string_view block = block_;
    std::size_t place = 0;
    for (std::size_t at = findBytes(block, word); at != std::string_view::npos;) {
        while (slots_[place].start + slots_[place].size <= at)
            ++place;
        const Slot& slot = slots_[place];
        if (slot.device) {
            const QuickFindRank rank = quickFindRank(block.substr(slot.start, slot.size), at - slot.start,
                                                     word, slot.nameEnd, slot.knownEnd);
            ranks[place] = std::min(ranks[place], rank);
        }
        at = findBytes(block, word, slot.start + slot.size);
    }
}

void CQuickFind::rankByTerm(const QuickFindTerm& term, Ranks& ranks) const {
    rankBy(term.text, ranks);
    if (!term.macDigits.empty())
        rankBy(term.macDigits, ranks);
}

bool CQuickFind::holdsAll(const Slot& slot, const std::vector<QuickFindTerm>& terms) const {
    const std::string_view text = std::string_view(block_).substr(slot.start, slot.size);
    return std::ranges::all_of(terms, [text](const QuickFindTerm& term) {
        return findBytes(text, term.text) != std::string_view::npos ||
               (!term.macDigits.empty() && findBytes(text, term.macDigits) != std::string_view::npos);
    });
}

CQuickFind::Ranks CQuickFind::ranksOf(std::string_view typed) const {
    Ranks ranks(slots_.size(), QuickFindRank::None);
    const auto terms = quickFindTerms(typed);
    if (terms.empty())
        return ranks;
    rankByTerm(terms.front(), ranks);
    if (terms.size() == 1)
        return ranks;
    for (std::size_t place = 0; place < ranks.size(); ++place)
        if (ranks[place] != QuickFindRank::None)
            ranks[place] = holdsAll(slots_[place], terms) ? QuickFindRank::WordsApart : QuickFindRank::None;
    if (typed.find_first_of("\t\r\n") == std::string_view::npos)
        rankBy(upperCaseText(typed), ranks); // the words next to each other, as they were typed
    return ranks;
}

QuickFindResult CQuickFind::find(std::string_view typed, std::size_t most) {
    prepare();
    const Ranks ranks = ranksOf(trimmed(typed));
    constexpr auto none = static_cast<std::size_t>(QuickFindRank::None);
    std::array<std::size_t, none + 1> counts{};
    for (const QuickFindRank rank : ranks)
        ++counts[static_cast<std::size_t>(rank)];
    QuickFindResult result;
    result.total = ranks.size() - counts[none];
    result.devices.reserve(std::min(result.total, most));
    for (std::size_t rank = 0; rank < none && result.devices.size() < most; ++rank)
        for (std::size_t place = 0; counts[rank] > 0 && result.devices.size() < most; ++place)
            if (static_cast<std::size_t>(ranks[place]) == rank) {
                result.devices.push_back(slots_[place].device);
                --counts[rank];
            }
    return result;
}

// ---- places

const CHardware* CQuickFind::nearestMarker(const CHardware& device) {
    if (!device.onFloor() || isMarkerOnFloor(device))
        return nullptr;
    if (!std::exchange(markersKnown_, true)) {
        markers_.clear();
        for (const auto& record : document_.records())
            if (isMarkerOnFloor(*record))
                markers_.push_back(record.get());
    }
    const auto nearest = std::ranges::min_element(markers_, {}, [&device](const CHardware* marker) {
        return distance(marker->Position, device.Position);
    });
    return nearest == markers_.end() ? nullptr : *nearest;
}

std::string quickFindPlace(CQuickFind& finder, const CHardware& device) {
    if (device.inDiscovered())
        return "Discovered/Misc";
    const CHardware* marker = finder.nearestMarker(device);
    return marker ? marker->Comment.substr(0, marker->Comment.find_first_of("\r\n")) : std::string();
}

} // namespace mirovane
