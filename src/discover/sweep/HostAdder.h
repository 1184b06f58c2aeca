#pragma once

#include "discover/sweep/SweepResult.h"
#include "model/Document.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// Makes the hosts that a sweep found devices of the Discovered/Misc window, one time and again until a save
/// has kept them. Main thread.
class CHostAdder {
public:
    /// All references outlive it.
    CHostAdder(CMirovaneDoc& document, SweepResult& result) : document_(document), result_(result) {}

    /// Adds those whose address no device has; after a reload those that it lost. Fills the result's `added`,
    /// `alreadyKnown` and `datafileFull`.
    void add(const std::vector<FoundHost>& hosts);

    /// A save that met another station's may have given the new devices other numbers.
    void followNumbers();

private:
    std::unordered_map<std::uint32_t, std::int32_t> stillThere() const;

    CMirovaneDoc& document_;
    SweepResult& result_;
};

} // namespace mirovane
