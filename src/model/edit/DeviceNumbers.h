#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mirovane {

/// Which device a step means, while numbers change hands: a merge gives a device of this station another
/// number, perhaps that of one that was deleted and may come back. Each device that a step touches has a
/// ticket that stays; here is the number that each has now, or had last.
class CDeviceNumbers {
public:
    using Ticket = std::size_t;

    /// Of the device that is in the list under this number.
    Ticket ticketOf(std::int32_t recID) {
        const auto [known, fresh] = live_.try_emplace(recID, numbers_.size());
        if (fresh)
            numbers_.push_back(recID);
        return known->second;
    }

    std::int32_t numberOf(Ticket ticket) const { return numbers_[ticket]; }

    void left(std::int32_t recID) { live_.erase(recID); }
    void cameBack(Ticket ticket, std::int32_t recID) {
        live_[recID] = ticket;
        numbers_[ticket] = recID;
    }

    /// From old to new, all at once.
    void renumber(const std::vector<std::pair<std::int32_t, std::int32_t>>& changes) {
        std::vector<std::pair<Ticket, std::int32_t>> moved;
        for (const auto& [from, to] : changes)
            if (const auto known = live_.find(from); known != live_.end()) {
                moved.emplace_back(known->second, to);
                live_.erase(known);
            }
        for (const auto& [ticket, number] : moved)
            cameBack(ticket, number);
    }

    void clear() {
        live_.clear();
        numbers_.clear();
    }

private:
    std::unordered_map<std::int32_t, Ticket> live_; ///< by the number in the list
    std::vector<std::int32_t> numbers_;             ///< by ticket
};

} // namespace mirovane
