#pragma once

#include "ui/frame/commands/CommandActions.h"

class QMainWindow;
class QToolBar;

namespace mirovane {

/// The toolbar of the main window: docked at the top at first, movable to any edge. Owned by the window.
QToolBar* makeToolBar(QMainWindow& window, const CCommandActions& actions);

} // namespace mirovane
