#include "model/find/Proximity.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t placesWithoutTurn = 2;

bool onFloor(const ProximityRecord& record) {
    return record.Type > 0 && record.Type < DeviceType::discoveredOffset;
}

bool inMisc(const ProximityRecord& record) {
    return record.Type >= DeviceType::discoveredOffset;
}

/// Each place with a device of Discovered/Misc takes the next floor device from behind it. What lies between
/// the two is of Discovered/Misc, too, so neither place ever moves back.
void bringFloorForward(std::span<const ProximityRecord> records, std::vector<std::size_t>& order) {
    std::size_t next = 0;
    for (std::size_t place = 0; place + placesWithoutTurn < order.size(); ++place) {
        if (!inMisc(records[order[place]]))
            continue;
        next = std::max(next, place + 1);
        while (next < order.size() && !onFloor(records[order[next]]))
            ++next;
        if (next == order.size())
            return;
        std::swap(order[place], order[next]);
    }
}

/// Devices of one kind in list order, the coordinates next to each other: the search reads nothing else.
/// `Number` holds twice the longest distance.
template <typename Number>
class CChain {
public:
    CChain(std::span<const ProximityRecord> records, std::vector<std::size_t>& order,
           bool (*belongs)(const ProximityRecord&))
        : order_(order) {
        for (std::size_t place = 0; place < order.size(); ++place)
            if (const ProximityRecord& record = records[order[place]]; belongs(record)) {
                places_.push_back(place);
                items_.push_back(order[place]);
                x_.push_back(record.Position.x);
                y_.push_back(record.Position.y);
            }
    }

    void group() {
        for (std::size_t i = 0; i + 1 < places_.size(); ++i)
            if (places_[i] + placesWithoutTurn < order_.size())
                bringNearest(i);
        for (std::size_t i = 0; i < places_.size(); ++i)
            order_[places_[i]] = items_[i];
    }

private:
    static constexpr std::size_t blockSize = 64;

    Number doubled(std::size_t i, std::size_t j) const {
        return std::abs(x_[i] - x_[j]) + std::abs(y_[i] - y_[j]);
    }

    void bringNearest(std::size_t i) {
        const std::size_t target = i + 1;
        Number best = doubled(i, target) / 2;
        for (std::size_t block = target + 1; block < items_.size() && best > 0; block += blockSize) {
            const std::size_t end = std::min(block + blockSize, items_.size());
            if (!anyBelow(i, block, end, 2 * best))
                continue;
            for (std::size_t j = block; j < end; ++j)
                if (const Number distance = doubled(i, j) / 2; distance < best) {
                    exchange(target, j);
                    best = distance;
                }
        }
    }

    /// A whole distance is below `best` exactly when twice of it, before halving, is below 2 * best. All of
    /// the block is looked at, because the compiler makes vector instructions of a loop without a way out.
    bool anyBelow(std::size_t i, std::size_t from, std::size_t end, Number limit) const {
        const Number x = x_[i];
        const Number y = y_[i];
        Number below = 0;
        for (std::size_t j = from; j < end; ++j)
            below |= std::abs(x - x_[j]) + std::abs(y - y_[j]) < limit ? 1 : 0;
        return below != 0;
    }

    void exchange(std::size_t a, std::size_t b) {
        std::swap(items_[a], items_[b]);
        std::swap(x_[a], x_[b]);
        std::swap(y_[a], y_[b]);
    }

    std::vector<std::size_t>& order_;
    std::vector<std::size_t> places_; ///< in the list; they stay
    std::vector<std::size_t> items_;  ///< the record at each of them
    std::vector<Number> x_;
    std::vector<Number> y_;
};

/// A damaged file has other places, too, whose distances need more bits.
bool isOrdinary(const ProximityRecord& record) {
    constexpr std::int32_t farthest = 1 << 28;
    const auto near = [](std::int32_t coordinate) {
        return coordinate > -farthest && coordinate < farthest;
    };
    return near(record.Position.x) && near(record.Position.y);
}

template <typename Number>
void chainAll(std::span<const ProximityRecord> records, std::vector<std::size_t>& order) {
    CChain<Number>(records, order, onFloor).group();
    CChain<Number>(records, order, inMisc).group();
}

/// Every exchange brings one record to its place for good.
std::size_t putInOrder(CMirovaneDoc& document, const std::vector<std::size_t>& order) {
    std::vector<std::size_t> placeOf(order.size()); // of the record that was at n
    std::vector<std::size_t> heldAt(order.size());  // which record is at n now
    std::iota(placeOf.begin(), placeOf.end(), std::size_t{0});
    std::iota(heldAt.begin(), heldAt.end(), std::size_t{0});
    for (std::size_t place = 0; place < order.size(); ++place) {
        const std::size_t from = placeOf[order[place]];
        if (from == place)
            continue;
        document.exchange(place, from);
        std::swap(heldAt[place], heldAt[from]);
        placeOf[heldAt[place]] = place;
        placeOf[heldAt[from]] = from;
    }
    std::size_t moved = 0;
    for (std::size_t place = 0; place < order.size(); ++place)
        moved += order[place] == place ? 0 : 1;
    return moved;
}

} // namespace

std::vector<std::size_t> proximityOrder(std::span<const ProximityRecord> records) {
    std::vector<std::size_t> order(records.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    bringFloorForward(records, order);
    if (std::ranges::all_of(records, isOrdinary))
        chainAll<std::int32_t>(records, order);
    else
        chainAll<std::int64_t>(records, order);
    return order;
}

std::size_t groupByProximity(CMirovaneDoc& document) {
    std::vector<ProximityRecord> records;
    records.reserve(document.size());
    for (const auto& record : document.records())
        records.push_back({record->Type, record->Position});
    return putInOrder(document, proximityOrder(records));
}

} // namespace mirovane
