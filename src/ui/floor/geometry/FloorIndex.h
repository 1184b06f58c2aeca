#pragma once

#include "model/Document.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace mirovane {

/// Which floor devices lie where, and which are hovered or Location Markers, kept right while the document
/// changes, so that neither a frame nor a pointer move walks a list of 65,000. Main thread; the
/// document must outlive it. Answers come in no particular order; `inListOrder` gives them the order of the
/// list.
class CFloorIndex final : public DocumentObserver {
public:
    using Devices = std::vector<const CHardware*>;

    /// Map coordinates, edges included.
    struct Area {
        std::int64_t left;
        std::int64_t top;
        std::int64_t right;
        std::int64_t bottom;
    };

    explicit CFloorIndex(const CMirovaneDoc& document);
    ~CFloorIndex() override;
    CFloorIndex(const CFloorIndex&) = delete;
    CFloorIndex& operator=(const CFloorIndex&) = delete;

    /// Floor devices whose Position lies in the area.
    Devices devicesIn(const Area& area) const;

    const std::unordered_set<const CHardware*>& hovered() const { return hovered_; }
    const std::unordered_set<const CHardware*>& markers() const { return markers_; }

    void inListOrder(Devices& devices) const;
    bool laterInList(const CHardware& a, const CHardware& b) const { return rank(a) > rank(b); }

    std::size_t size() const { return serials_.size(); }

    /// Grows whenever a floor device came, went or moved.
    std::uint64_t revision() const { return revision_; }

    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

private:
    struct Entry {
        const CHardware* device;
        MapPoint position;
    };

    /// Where a record ID occurs twice in a damaged file, the list position is that of the first; the order in
    /// which the devices were met decides between them.
    using Rank = std::pair<std::size_t, std::uint64_t>;
    Rank rank(const CHardware& device) const;

    void insert(const CHardware& device);
    void erase(const CHardware& device, MapPoint position);
    static void setMember(std::unordered_set<const CHardware*>& set, const CHardware& device, bool member);

    const CMirovaneDoc& document_;
    std::unordered_map<std::uint64_t, std::vector<Entry>> cells_;
    std::unordered_map<const CHardware*, std::uint64_t> serials_;
    std::unordered_set<const CHardware*> hovered_;
    std::unordered_set<const CHardware*> markers_;
    std::uint64_t nextSerial_ = 0;
    std::uint64_t revision_ = 0;
};

} // namespace mirovane
