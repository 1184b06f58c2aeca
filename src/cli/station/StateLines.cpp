#include "cli/station/StateLines.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

std::string stateLine(const CHardware& device) {
    std::string line(typeName(device.Type));
    const bool isJack = floorCode(device.Type) == DeviceType::Jack;
    const std::string& name = isJack ? device.ToJack : device.Name;
    if (!name.empty())
        line += " " + name;
    if (!device.IPAddress.empty())
        line += " (" + device.IPAddress + ")";
    if (name.empty() && device.IPAddress.empty())
        line += " with the RecID " + std::to_string(device.RecID);
    return line + (device.State == DeviceState::On ? " is On" : " is Off");
}

} // namespace

CStateLines::CStateLines(const CMirovaneDoc& document, CMessageLog& log) : doc_(document), log_(log) {
    doc_.addObserver(*this);
}

CStateLines::~CStateLines() {
    doc_.removeObserver(*this);
}

void CStateLines::begin() {
    states_.clear();
    for (std::size_t index = 0; index < doc_.size(); ++index)
        if (doc_.at(index).isDevice())
            states_[doc_.at(index).RecID] = doc_.at(index).State;
    off_.reset();
    begun_ = true;
}

std::size_t CStateLines::off() const {
    if (!off_)
        off_ = static_cast<std::size_t>(std::ranges::count_if(
            states_, [](const auto& known) { return known.second == DeviceState::Off; }));
    return *off_;
}

bool CStateLines::takeReplaced() {
    return std::exchange(replaced_, false);
}

void CStateLines::recordAdded(const CHardware& record) {
    if (record.isDevice())
        states_[record.RecID] = record.State;
    off_.reset();
}

void CStateLines::recordRemoved(const CHardware& record) {
    if (record.isDevice())
        states_.erase(record.RecID);
    off_.reset();
}

void CStateLines::recordChanged(const CHardware& before, const CHardware& after) {
    if (after.isDevice() && before.State != after.State)
        write(after);
}

void CStateLines::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    if (auto state = states_.extract(oldRecID)) {
        state.key() = newRecID;
        states_.insert(std::move(state));
    }
}

void CStateLines::documentReplaced() {
    replaced_ = true;
    if (!begun_)
        return;
    const auto known = std::exchange(states_, {});
    for (std::size_t index = 0; index < doc_.size(); ++index) {
        const CHardware& device = doc_.at(index);
        const auto before = known.find(device.RecID);
        if (device.isDevice() && before != known.end() && before->second != device.State)
            write(device);
    }
    begin();
}

void CStateLines::write(const CHardware& device) {
    states_[device.RecID] = device.State;
    off_.reset();
    if (begun_ && device.State != DeviceState::Def)
        log_.LogState(stateLine(device));
}

} // namespace mirovane
