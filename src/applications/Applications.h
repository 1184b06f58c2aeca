#pragma once

#include "model/Document.h"
#include "model/Selection.h"
#include "model/records/SpecialRecords.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirovane {

/// All entries in list order.
std::vector<const CHardware*> applicationRecords(const CMirovaneDoc& document);

/// What the Applications menu offers, in its order.
std::vector<ApplicationValues> applicationsOnMenu(const CMirovaneDoc& document);

/// Appends an empty entry that is not on the menu. Null when the datafile is full.
const CHardware* addApplication(CMirovaneDoc& document);

void changeApplication(CMirovaneDoc& document, const CHardware& record, const ApplicationValues& values);

/// Gives the entry at one place (from 0) another one; those between move up or down.
void moveApplication(CMirovaneDoc& document, std::size_t from, std::size_t to);

/// The devices that an application runs for: the selected ones on the floor map, in list order.
std::vector<const CHardware*> applicationTargets(const CSelection& selection);

/// Copies of them, for a run that asks before it starts: the records may change meanwhile.
std::vector<CHardware> applicationDevices(const CSelection& selection);

/// Command of the k-th item (from 0) of the Applications menu.
constexpr int firstApplicationCommand = 48000;

} // namespace mirovane
