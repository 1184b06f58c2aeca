#pragma once

#include <QStringList>

namespace mirovane {

/// `mirovane --render OUT.png DATAFILE ...`: one frame of the floor into a picture, without a display.
/// `arguments` are all of the program's but its name. To be called before any application object exists.
/// Returns the exit status: 0 written, 2 usage error, 3 a file could not be read or written; what is wrong
/// goes to standard error.
int runRender(const QStringList& arguments);

} // namespace mirovane
