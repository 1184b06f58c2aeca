#include "model/Document.h"

#include "model/Criteria.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

namespace mirovane {

CMirovaneDoc::CMirovaneDoc(Files& files, const Clock& clock, CMessageLog& log, CSettings& settings,
                           StationIdentity station)
    : files_(files), clock_(clock), log_(log), settings_(settings), station_(std::move(station)) {
    display_.readAll(settings_);
    index_.rebuild(records_);
}

CMirovaneDoc::~CMirovaneDoc() = default;

TimeStamp CMirovaneDoc::now() const {
    return static_cast<TimeStamp>(std::chrono::system_clock::to_time_t(clock_.wall()));
}

// ---- look-ups

std::size_t CMirovaneDoc::deviceCount() const {
    return index_.deviceCount();
}

const CHardware* CMirovaneDoc::findDevice(std::int32_t recID) const {
    const auto place = index_.device(recID);
    return place ? records_[*place].get() : nullptr;
}

std::optional<std::size_t> CMirovaneDoc::indexOfDevice(std::int32_t recID) const {
    return index_.device(recID);
}

const CHardware* CMirovaneDoc::findSpecial(std::int32_t type) const {
    const auto place = index_.special(type);
    return place ? records_[*place].get() : nullptr;
}

/// A damaged file may hold any number as a device's type, and for a large one the arithmetic ends at the rows
/// of some other type.
const CHardware* CMirovaneDoc::criteria(std::int32_t type, int row) const {
    const std::int32_t floor = floorCode(type);
    if (floor < DeviceType::first || floor > DeviceType::last)
        return nullptr;
    return findSpecial(criteriaRecordType(type, row));
}

std::int32_t CMirovaneDoc::nextRecordID() const {
    return index_.nextRecordID();
}

/// The index knows the place of all but the repeated ones, which a look through the list finds.
std::size_t CMirovaneDoc::placeOf(const CHardware& record) const {
    const auto known = record.isDevice() ? index_.device(record.RecID) : index_.special(record.Type);
    if (known && records_[*known].get() == &record)
        return *known;
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&record](const auto& held) { return held.get() == &record; });
    if (found == records_.end())
        throw std::logic_error("a record that is not in the document was to be changed");
    return static_cast<std::size_t>(found - records_.begin());
}

CHardware& CMirovaneDoc::slot(const CHardware& record) {
    return *records_[placeOf(record)];
}

// ---- run-time flags

void CMirovaneDoc::setFlag(const CHardware& record, std::int32_t CHardware::*flag, bool on) {
    const std::int32_t value = on ? 1 : 0;
    if (record.*flag == value)
        return;
    slot(record).*flag = value;
    for (DocumentObserver* observer : observers_)
        observer->flagsChanged(record);
}

void CMirovaneDoc::setSelected(const CHardware& record, bool on) {
    setFlag(record, &CHardware::Selected, on);
}

void CMirovaneDoc::setShowAll(const CHardware& record, bool on) {
    setFlag(record, &CHardware::ShowAll, on);
}

void CMirovaneDoc::setLSNowMark(const CHardware& record, bool on) {
    setFlag(record, &CHardware::LSNowMark, on);
}

void CMirovaneDoc::setReminderDue(const CHardware& record, bool on) {
    setFlag(record, &CHardware::ReminderDue, on);
}

// ---- observers

void CMirovaneDoc::addObserver(DocumentObserver& observer) {
    observers_.push_back(&observer);
}

void CMirovaneDoc::removeObserver(DocumentObserver& observer) {
    std::erase(observers_, &observer);
}

} // namespace mirovane
