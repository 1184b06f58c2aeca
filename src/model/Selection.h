#pragma once

#include "model/Document.h"
#include "model/MapBox.h"
#include "model/Settings.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <unordered_set>
#include <vector>

namespace mirovane {

/// Which devices are selected, on the floor and in the Discovered/Misc window. There is one for a document,
/// owned by the station; every window selects through it and asks it, and none walks the list to learn what
/// is selected. The flag itself stays in the record, because it travels with the record through a reload and
/// a merge; here are its members, kept right by observing the document, whoever set the flag. Main thread;
/// the document must outlive it.
class CSelection final : private DocumentObserver {
public:
    enum class Scope : std::uint8_t { Floor, DiscoveredMisc, Everywhere };
    using Devices = std::vector<const CHardware*>;
    using Rule = std::function<bool(const CHardware&)>;

    explicit CSelection(CMirovaneDoc& document);
    ~CSelection() override;
    CSelection(const CSelection&) = delete;
    CSelection& operator=(const CSelection&) = delete;

    // ---- questions

    bool empty(Scope scope = Scope::Everywhere) const { return count(scope) == 0; }
    std::size_t count(Scope scope = Scope::Everywhere) const;

    /// In list order. Takes as long as there are members.
    Devices members(Scope scope = Scope::Everywhere) const;

    /// The selected floor device that comes last in the list, and so is drawn on top; null when no device is
    /// selected. Remembered until the selection or the order changes.
    const CHardware* lastOnFloor() const;

    /// The pointer is on the device, or has left it: it shows all its labels. Not a selection, but as
    /// fleeting.
    void setShowAll(const CHardware& device, bool on) { document_.setShowAll(device, on); }

    // ---- changes

    void set(const CHardware& device, bool selected) { document_.setSelected(device, selected); }
    void add(const CHardware& device) { set(device, true); }
    void remove(const CHardware& device) { set(device, false); }
    void toggle(const CHardware& device) { set(device, device.Selected == 0); }

    /// The device alone. A click on the floor leaves the selection in Discovered/Misc as it is, and the other
    /// way round.
    void only(const CHardware& device);
    void none(Scope scope = Scope::Everywhere);

    /// Each adds the devices that match to what is selected already, and returns how many match. For a
    /// command that starts afresh call `none` first.
    std::size_t addMatching(Scope scope, const Rule& rule);

    /// Floor devices of a visible type.
    std::size_t addAll(const DisplaySettings& display);
    std::size_t addInBox(const MapBox& box, const DisplaySettings& display);

    /// Floor devices of this type, if it is visible, in one of these states; no states: in any.
    std::size_t addOfType(std::int32_t type, std::initializer_list<std::int32_t> states,
                          const DisplaySettings& display);

private:
    using Members = std::unordered_set<const CHardware*>;

    // DocumentObserver
    void recordAdded(const CHardware& record) override { note(record); }
    void recordChanged(const CHardware&, const CHardware& after) override { note(after); }
    void flagsChanged(const CHardware& record) override { note(record); }
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override { lastOnFloor_.reset(); }
    void documentReplaced() override;

    void note(const CHardware& record);
    void setMember(Members& members, const CHardware& record, bool member);
    Devices unordered(Scope scope) const;
    Devices walked(Scope scope) const;

    CMirovaneDoc& document_;
    Members floor_;
    Members misc_;
    mutable std::optional<const CHardware*> lastOnFloor_;
};

} // namespace mirovane
