#include "model/floor/SelectionCommands.h"

#include "model/floor/MarkedArea.h"
#include "model/floor/Scale.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <vector>

namespace mirovane {

namespace {

using What = SelectionCommand::What;

/// By type: what the messages call the devices that were selected. Log readers know these words, so they
/// stay as they are.
struct Nouns {
    std::string_view ofType;
    std::string_view active;
    std::string_view inactive;
};

constexpr std::array<Nouns, DeviceType::last + 1> nouns{{
    {},
    {"Jack(s)", "", ""},
    {"", "Active Computer(s)", "In-active Computer(s)"},
    {"", "Active Printer(s)", "In-active Printer(s)"},
    {"", "Active Laptop(s)", "In-active Laptops(s)"},
    {"", "Active Switch(es)", "In-active Switch(es)"},
    {"", "Active Router(s)", "In-active Router(s)"},
    {"", "Active Phone(s)", "In-active Phone(s)"},
    {"", "Active Camera(s)", "In-active Camera(s)"},
    {"", "Active Unknown", "In-active Unknown"},
    {"", "Active UPS", "In-active UPS"},
    {"", "Active Card Module(s)", "In-active Card Module(s)"},
    {"", "Active Wireless", "In-active Wireless"},
    {"Location Marker(s)", "", ""},
}};

std::string_view noun(SelectionCommand command) {
    if (command.what == What::Boxed)
        return "boxed item(s)";
    if (command.type < DeviceType::first || command.type > DeviceType::last)
        return {};
    const Nouns& words = nouns[static_cast<std::size_t>(command.type)];
    if (command.what == What::OfType)
        return words.ofType;
    return command.what == What::Active ? words.active : words.inactive;
}

/// "hardware" counts behind a colon, everything else before its noun.
std::string message(SelectionCommand command, std::size_t count) {
    if (command.what == What::All)
        return "Selected all visible hardware: " + std::to_string(count);
    return "Selected " + std::to_string(count) + " visible " + std::string(noun(command));
}

std::size_t addMatching(SelectionCommand command, CSelection& selection, const SelectionScene& scene) {
    switch (command.what) {
    case What::All:
        return selection.addAll(scene.display);
    case What::Boxed:
        return scene.box ? selection.addInBox(*scene.box, scene.display) : 0;
    case What::OfType:
        return selection.addOfType(command.type, {}, scene.display);
    case What::Active:
        return selection.addOfType(command.type, {DeviceState::On}, scene.display);
    case What::Inactive:
        return selection.addOfType(command.type, {DeviceState::Def, DeviceState::Off}, scene.display);
    case What::MarkedArea:
        break;
    }
    return 0;
}

/// The markers whose areas count: those selected, and the one whose area holds the pointer.
CSelection::Devices usedMarkers(const CSelection& selection, const SelectionScene& scene) {
    CSelection::Devices markers = selection.members(CSelection::Scope::Floor);
    std::erase_if(markers,
                  [](const CHardware* device) { return device->Type != DeviceType::LocationMarker; });
    const CHardware* pointed =
        scene.PointerInMarkedArea ? scene.document.findDevice(scene.SelectedMarker) : nullptr;
    if (pointed && pointed->Type == DeviceType::LocationMarker && pointed->Selected == 0)
        markers.push_back(pointed);
    return markers;
}

/// Other devices shall not keep the labels that hovering gave them, where the answer is about an area.
void hideHoverLabels(CSelection& selection, const CMirovaneDoc& document) {
    for (std::size_t i = 0; i < document.size(); ++i)
        if (document.at(i).ShowAll != 0)
            selection.setShowAll(document.at(i), false);
}

SelectionOutcome selectMarkedArea(bool additive, CSelection& selection, const SelectionScene& scene) {
    hideHoverLabels(selection, scene.document);
    std::vector<std::vector<MapPoint>> areas;
    std::string names;
    const CSelection::Devices markers = usedMarkers(selection, scene);
    for (const CHardware* marker : markers) {
        areas.push_back(parseMarkedArea(marker->ToJack));
        names += (names.empty() ? "" : ", ") + marker->Comment;
        selection.remove(*marker);
    }
    if (!additive)
        selection.none();
    const std::int32_t zoom = std::clamp(scene.display.ZoomPercent, smallestZoom, largestZoom);
    const auto onAnArea = [&](const CHardware& device) {
        if (device.Type == DeviceType::LocationMarker || !scene.display.typeVisible(device.Type))
            return false;
        const MapPoint at = scaled(device.Position, zoom);
        return std::ranges::any_of(
            areas, [&](const auto& area) { return markedAreaScore(area, at, zoom).has_value(); });
    };
    const std::size_t count = selection.addMatching(CSelection::Scope::Floor, onAnArea);
    return {count,
            "Selected " + std::to_string(count) + " visible devices on " + names +
                " (Location marker's marked area).",
            true};
}

} // namespace

SelectionOutcome select(SelectionCommand command, bool additive, CSelection& selection,
                        const SelectionScene& scene) {
    const bool onlyAdds = command.what == What::All;
    SelectionOutcome outcome;
    if (command.what == What::MarkedArea) {
        outcome = selectMarkedArea(additive, selection, scene);
    } else {
        if (!additive && !onlyAdds)
            selection.none();
        outcome.count = addMatching(command, selection, scene);
        outcome.message = message(command, outcome.count);
        const bool markers = command.type == DeviceType::LocationMarker;
        outcome.forLiveStatNow = !onlyAdds && !markers;
    }
    if (additive && !onlyAdds)
        outcome.message += "  [additive select]";
    return outcome;
}

std::string targetsText(const CSelection::Devices& devices) {
    constexpr std::size_t mostNames = 5;
    if (devices.empty())
        return {};
    std::string text = std::to_string(devices.size()) + (devices.size() == 1 ? " device: " : " devices: ");
    for (std::size_t i = 0; i < devices.size() && i < mostNames; ++i) {
        const CHardware& device = *devices[i];
        text += i == 0 ? "" : ", ";
        if (!device.Name.empty())
            text += displayText(device.Name);
        else if (!device.IPAddress.empty())
            text += displayText(device.IPAddress);
        else
            text += typeName(device.Type);
    }
    return devices.size() > mostNames ? text + ", ..." : text;
}

} // namespace mirovane
