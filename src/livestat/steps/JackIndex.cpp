#include "livestat/steps/JackIndex.h"

#include "model/records/KeptText.h"

#include <functional>

namespace mirovane {

namespace {

std::size_t keyOf(std::string_view jackNumber) {
    return std::hash<std::string_view>{}(withoutKeptMark(jackNumber));
}

} // namespace

bool sameJack(std::string_view one, std::string_view other) {
    return withoutKeptMark(one) == withoutKeptMark(other);
}

bool isPlugged(const CHardware& record) {
    const std::int32_t code = floorCode(record.Type);
    return record.isDevice() && code != DeviceType::Jack && code != DeviceType::LocationMarker &&
           !withoutKeptMark(record.ToJack).empty();
}

CJackIndex::CJackIndex(CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
}

CJackIndex::~CJackIndex() {
    document_.removeObserver(*this);
}

std::optional<std::int32_t> CJackIndex::stateAtJack(const std::string& jackNumber) {
    if (withoutKeptMark(jackNumber).empty())
        return std::nullopt;
    if (!built_)
        build();
    const CHardware* first = nullptr;
    std::size_t firstPlace = 0;
    const auto [begin, end] = recIDs_.equal_range(keyOf(jackNumber));
    for (auto it = begin; it != end; ++it) {
        const auto place = document_.indexOfDevice(it->second);
        if (!place || (first && *place >= firstPlace))
            continue;
        const CHardware& device = document_.at(*place);
        if (!isPlugged(device) || !sameJack(device.ToJack, jackNumber))
            continue;
        first = &device;
        firstPlace = *place;
    }
    return first ? std::optional(first->State) : std::nullopt;
}

void CJackIndex::recordAdded(const CHardware& record) {
    if (built_)
        insert(record);
}

void CJackIndex::recordChanged(const CHardware& before, const CHardware& after) {
    if (!built_ || (before.ToJack == after.ToJack && isPlugged(before) == isPlugged(after) &&
                    before.RecID == after.RecID))
        return;
    erase(before);
    insert(after);
}

void CJackIndex::recordRemoved(const CHardware& record) {
    if (built_)
        erase(record);
}

void CJackIndex::documentReplaced() {
    recIDs_.clear();
    built_ = false;
}

void CJackIndex::build() {
    built_ = true;
    for (std::size_t i = 0; i < document_.size(); ++i)
        insert(document_.at(i));
}

void CJackIndex::insert(const CHardware& record) {
    if (isPlugged(record))
        recIDs_.emplace(keyOf(record.ToJack), record.RecID);
}

void CJackIndex::erase(const CHardware& record) {
    const auto [begin, end] = recIDs_.equal_range(keyOf(record.ToJack));
    for (auto it = begin; it != end; ++it) {
        if (it->second == record.RecID) {
            recIDs_.erase(it);
            return;
        }
    }
}

} // namespace mirovane
