#pragma once

#include <QIcon>

namespace mirovane {

enum class ToolPicture { New, Open, Save, Cut, Copy, Paste, Print, About, Help };

/// Drawn for every size and screen scale that is asked for, so they are sharp on all of them.
QIcon toolIcon(ToolPicture picture);

/// The program's own icon: a location marker on a floor plan.
QIcon programIcon();

} // namespace mirovane
