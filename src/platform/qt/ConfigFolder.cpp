#include "platform/qt/ConfigFolder.h"

#include <QFile>
#include <QStandardPaths>

namespace mirovane {

std::string configFolder(const std::string& chosen) {
    if (!chosen.empty())
        return chosen;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QFile::encodeName(folder).toStdString() + "/mirovane";
}

std::string usualCredentialsFile(const std::string& chosenFolder) {
    return configFolder(chosenFolder) + "/samba-credentials";
}

} // namespace mirovane
