#include "ui/frame/FrameTitle.h"

#include "platform/files/FilePaths.h"
#include "ui/widgets/DialogText.h"

#include <QObject>

namespace mirovane {

QString frameTitle(const std::string& datafile, bool readOnly) {
    if (datafile.empty())
        return QObject::tr("Untitled[*] - Mirovane");
    // Doubled, or a file named so would lose it: alone it is the place of the mark.
    const QString name = shownText(nameOf(datafile)).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    return (readOnly ? QObject::tr("%1 [read-only] - Mirovane") : QObject::tr("%1 - Mirovane")).arg(name);
}

} // namespace mirovane
