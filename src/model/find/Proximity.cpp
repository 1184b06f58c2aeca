#include "model/find/Proximity.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
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

    /// In doubles, because they hold every difference of two coordinates exactly and the compiler has vector
    /// instructions for them. Halving is left to nearestIn(), where it decides ties.
    double doubled(std::size_t i, std::size_t j) const {
        return std::abs(x_[i] - x_[j]) + std::abs(y_[i] - y_[j]);
    }
    static double halved(double doubled) { return std::trunc(doubled / 2); }

    void bringNearest(std::size_t i) {
        const std::size_t target = i + 1;
        double best = halved(doubled(i, target));
        for (std::size_t block = target + 1; block < items_.size() && best > 0; block += blockSize) {
            const std::size_t end = std::min(block + blockSize, items_.size());
            if (!anyBelow(i, block, end, 2 * best))
                continue;
            for (std::size_t j = block; j < end; ++j)
                if (const double distance = halved(doubled(i, j)); distance < best) {
                    exchange(target, j);
                    best = distance;
                }
        }
    }

    /// A whole distance is below `best` exactly when twice of it, before halving, is below 2 * best.
    bool anyBelow(std::size_t i, std::size_t from, std::size_t end, double limit) const {
        const double x = x_[i];
        const double y = y_[i];
        double least = std::numeric_limits<double>::max();
        for (std::size_t j = from; j < end; ++j)
            least = std::min(least, std::abs(x - x_[j]) + std::abs(y - y_[j]));
        return least < limit;
    }

    void exchange(std::size_t a, std::size_t b) {
        std::swap(items_[a], items_[b]);
        std::swap(x_[a], x_[b]);
        std::swap(y_[a], y_[b]);
    }

    std::vector<std::size_t>& order_;
    std::vector<std::size_t> places_; ///< in the list; they stay
    std::vector<std::size_t> items_;  ///< the record at each of them
    std::vector<double> x_;
    std::vector<double> y_;
};

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
    CChain(records, order, onFloor).group();
    CChain(records, order, inMisc).group();
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
