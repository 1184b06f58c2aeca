#pragma once

#include "model/Document.h"

#include <string>

namespace mirovane {

/// The record that tells all stations on a datafile which one of them runs Live Stat. Its `Modified` is the
/// owner's sign of life.
namespace LiveStatOwner {

/// Live Stat is on at a station that is not this one.
bool isElsewhere(const CMirovaneDoc& document);

/// Live Stat is on and the record names this station.
bool isHere(const CMirovaneDoc& document);

/// What the user is asked before this station takes Live Stat over.
std::string takeOverQuestion(const CMirovaneDoc& document);

/// Names this station. A datafile that lost its owner record gets one.
void claim(CMirovaneDoc& document);

/// Nobody runs Live Stat any more.
void release(CMirovaneDoc& document);

/// Modified = now.
void signOfLife(CMirovaneDoc& document);

/// Whole hours since the last sign of life; 0 without an owner record.
std::int64_t silentHours(const CMirovaneDoc& document);

} // namespace LiveStatOwner

} // namespace mirovane
