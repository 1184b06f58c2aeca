#pragma once

#include <QPalette>

namespace mirovane {

/// How far two colours are apart for the eye, from 1 to 21; a text that lets its ground through is mixed with
/// it.
double contrast(const QColor& text, const QColor& ground);

/// The colours of texts that would be too pale otherwise: many desktops grey disabled controls so far that
/// what is in them cannot be read, and there it is often the one thing worth knowing. Everything else stays
/// the desktop's.
QPalette readableColours(const QPalette& desktop);

} // namespace mirovane
