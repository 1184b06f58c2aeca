#pragma once

#include <QStringList>
#include <QWidget>

namespace mirovane::test {

/// What somebody without a mouse, with a small screen, with a screen reader or with a dark desktop would miss
/// in this window, a line each: two controls with one letter, a control without letter or name, a text that
/// is cut or hardly differs from its ground, no control that has the keyboard, a window larger than 800 x
/// 600.
QStringList windowFaults(QWidget& window);

/// Light text on dark ground, as desktops set it.
QPalette darkPalette();

} // namespace mirovane::test
