#pragma once

#include "platform/Result.h"

#include <QString>
#include <QStringList>

namespace mirovane {

/// What the program was told to do.
struct CommandLine {
    QString datafile;     ///< empty: start with a new document
    QString configFolder; ///< empty: the user's own
    QString find;         ///< a device to show at once; empty: none
};

/// `arguments` without the program's name and without those that the window system took. The error is a
/// sentence.
Result<CommandLine, QString> parseCommandLine(const QStringList& arguments);

QString usageText();

} // namespace mirovane
