#pragma once

#include <QColor>

/// Light greys and pale tints: on the map the devices and their labels must be what the eye finds first.
namespace colours {

inline const QColor paper(0xF6, 0xF6, 0xF4);
inline const QColor wallInk(0x59, 0x61, 0x6B);
inline const QColor line(0xC3, 0xC8, 0xCC);
inline const QColor faint(0xDD, 0xE0, 0xE2);
inline const QColor text(0x8B, 0x93, 0x9B);
inline const QColor wood(0xF2, 0xEC, 0xE1);
inline const QColor fabric(0xE6, 0xEA, 0xEE);
inline const QColor metal(0xE9, 0xEB, 0xEC);
inline const QColor leaf(0xDC, 0xE8, 0xDA);
inline const QColor glass(0xD8, 0xE6, 0xEE);

} // namespace colours
