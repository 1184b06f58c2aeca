#pragma once

#include "model/Document.h"
#include "model/records/SpecialRecords.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// Where Live Discover's walk through the ranges has come to: in Live Discover's owner record, so that it
/// goes on where it stopped, also on another computer. Moving on changes that record in the background and
/// saves nothing. Main thread.
class CDiscoverWalk {
public:
    using Place = DiscoverWalk;

    explicit CDiscoverWalk(CMirovaneDoc& document) : document_(document) {}

    Place place() const;
    void goTo(const Place& place);

    /// Sees to it that the next address is in a range of the datafile. False when there is no valid range.
    bool findAddress();

    /// The next address; nothing unless findAddress() has found one.
    std::optional<std::uint32_t> address() const;

    /// On to the address behind it.
    void moveOn();

    /// The records were read again, and the place that the file brought is as old as its last save.
    void restore();

    /// Goes on from where the file says.
    void forget() { left_.reset(); }

    /// Another document.
    void reset();

private:
    void beginRange(const std::vector<const CHardware*>& ranges, std::size_t index);
    std::optional<std::size_t> indexOf(const Place& place, const std::vector<const CHardware*>& ranges) const;

    CMirovaneDoc& document_;
    std::optional<Place> left_; ///< as this station left the owner record
    std::size_t index_ = 0;     ///< of the range being walked, among the valid ones
};

} // namespace mirovane
