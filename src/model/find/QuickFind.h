#pragma once

#include "model/Document.h"
#include "model/find/QuickFindText.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// What a quick find found.
struct QuickFindResult {
    std::vector<const CHardware*> devices; ///< the best first, those that fit alike in list order
    std::size_t total = 0;                 ///< also those that were not asked for
};

/// Finds devices by anything that is known of them, while the user types. Keeps the texts of all devices in
/// one block, as long as the texts themselves and half as much again at the most, and searches that from one
/// end to the other: 65,000 devices take some milliseconds a key. Follows the document: a device that
/// changes costs its own text and nothing else. Main thread; the document outlives it.
class CQuickFind final : private DocumentObserver {
public:
    explicit CQuickFind(const CMirovaneDoc& document);
    ~CQuickFind() override;
    CQuickFind(const CQuickFind&) = delete;
    CQuickFind& operator=(const CQuickFind&) = delete;

    /// Reads all devices now, unless it has: before the first key, so that no key waits for it.
    void prepare();

    /// Devices that every word of `typed` (UTF-8) fits in some field. The result's pointers live as long as
    /// the records.
    QuickFindResult find(std::string_view typed, std::size_t most = static_cast<std::size_t>(-1));

    /// The Location Marker on the floor that is nearest to a floor device; null when there is none, and for a
    /// marker itself.
    const CHardware* nearestMarker(const CHardware& device);

    std::string_view block() const { return block_; } ///< what find() reads: for measuring

private:
    struct Slot {
        std::size_t start = 0;
        std::uint32_t size = 0;
        std::uint32_t nameEnd = 0;
        std::uint32_t knownEnd = 0;
        const CHardware* device = nullptr; ///< null: what was here moved or went
    };
    using Ranks = std::vector<QuickFindRank>;

    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override { forget(); }

    void forget();
    void append(const CHardware& device);
    void drop(const CHardware& device);
    void rankBy(std::string_view word, Ranks& ranks) const;
    void rankByTerm(const QuickFindTerm& term, Ranks& ranks) const;
    bool holdsAll(const Slot& slot, const std::vector<QuickFindTerm>& terms) const;
    Ranks ranksOf(std::string_view typed) const;

    const CMirovaneDoc& document_;
    bool ready_ = false;
    std::string block_;
    std::vector<Slot> slots_; ///< in the order of their texts
    std::unordered_map<const CHardware*, std::size_t> slotOf_;
    std::size_t dropped_ = 0; ///< bytes of the block that belong to nobody
    std::vector<const CHardware*> markers_;
    bool markersKnown_ = false;
};

/// "Hall 1": the first line of the nearest Location Marker's comment; "Discovered/Misc" for a device that is
/// not on the floor, empty when there is nothing to name the place by. In the record's own bytes.
std::string quickFindPlace(CQuickFind& finder, const CHardware& device);

} // namespace mirovane
