#pragma once

#include <QStringList>

namespace mirovane {

/// `mirovane --print`: writes the floor as pages of a PDF file and returns the exit status. Makes its own
/// application object; needs no display.
int runPrint(const QStringList& arguments);

} // namespace mirovane
