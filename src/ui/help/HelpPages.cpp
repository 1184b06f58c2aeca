#include "ui/help/HelpPages.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>

#include <array>

namespace mirovane {

namespace {

struct Topic {
    std::string_view beginning; ///< of an object name
    std::string_view page;
};

constexpr std::string_view firstPage = "index.html";

/// The first that fits counts: the special before the general.
constexpr std::array topics = {
    Topic{"toolsDiscoverNow", "live-discover.html"},
    Topic{"discoverNow", "live-discover.html"},
    Topic{"toolsLiveDiscover", "live-discover.html"},
    Topic{"paneLiveDiscover", "live-discover.html"},
    Topic{"viewDiscover", "finding.html"},
    Topic{"discovered", "finding.html"},
    Topic{"criteria", "rules.html"},
    Topic{"liveStat", "live-stat.html"},
    Topic{"rowTrial", "rules.html"},
    Topic{"toolsLiveStat", "live-stat.html"},
    Topic{"toolsTrackLiveStat", "live-stat.html"},
    Topic{"toolsReset", "live-stat.html"},
    Topic{"paneLiveStat", "live-stat.html"},
    Topic{"LSStatus", "live-stat.html"},
    Topic{"application", "applications.html"},
    Topic{"menuApplications", "applications.html"},
    Topic{"toolsApplications", "applications.html"},
    Topic{"export", "export.html"},
    Topic{"fileExport", "export.html"},
    Topic{"list", "list-view.html"},
    Topic{"viewListView", "list-view.html"},
    Topic{"messageLog", "messages.html"},
    Topic{"viewMessageLogs", "messages.html"},
    Topic{"messageBox", "messages.html"},
    Topic{"paneMessage", "messages.html"},
    Topic{"quickFind", "finding.html"},
    Topic{"find", "finding.html"},
    Topic{"editFind", "finding.html"},
    Topic{"editQuickFind", "finding.html"},
    Topic{"markerSelector", "finding.html"},
    Topic{"paneReminders", "finding.html"},
    Topic{"Reminder", "finding.html"},
    Topic{"reminder", "finding.html"},
    Topic{"editProperties", "properties.html"},
    Topic{"floorProperties", "properties.html"},
    Topic{"properties", "properties.html"},
    Topic{"Properties", "floor.html"},
    Topic{"Zoom", "floor.html"},
    Topic{"hide", "floor.html"},
    Topic{"select", "finding.html"},
    Topic{"filePrint", "printing.html"},
    Topic{"file", "sharing.html"},
    Topic{"recentFile", "sharing.html"},
    Topic{"photoSettings", "floor.html"},
    Topic{"edit", "floor.html"},
    Topic{"view", "floor.html"},
    Topic{"tools", "floor.html"},
    Topic{"floor", "floor.html"},
};

std::optional<QString> topicOf(const QString& name) {
    for (const Topic& topic : topics)
        if (name.startsWith(
                QLatin1String(topic.beginning.data(), static_cast<qsizetype>(topic.beginning.size()))))
            return QString::fromUtf8(topic.page.data(), static_cast<qsizetype>(topic.page.size()));
    return std::nullopt;
}

QString firstPageName() {
    return QString::fromUtf8(firstPage.data(), static_cast<qsizetype>(firstPage.size()));
}

} // namespace

QString helpPageOf(const QObject* thing) {
    for (; thing; thing = thing->parent())
        if (const auto page = topicOf(thing->objectName()))
            return *page;
    return firstPageName();
}

QString helpPageOfCommand(std::string_view command) {
    return topicOf(QString::fromUtf8(command.data(), static_cast<qsizetype>(command.size())))
        .value_or(firstPageName());
}

QStringList helpPages() {
    QStringList pages{firstPageName()};
    for (const Topic& topic : topics)
        pages << QString::fromUtf8(topic.page.data(), static_cast<qsizetype>(topic.page.size()));
    pages.removeDuplicates();
    return pages;
}

std::optional<QString> findManualPage(const QString& page, const QStringList& folders) {
    for (const QString& folder : folders)
        if (const QFileInfo file(QDir(folder).filePath(page)); file.isFile())
            return file.absoluteFilePath();
    return std::nullopt;
}

QStringList manualFolders() {
    QStringList folders{QStringLiteral(MIROVANE_INSTALLED_MANUAL), QStringLiteral(MIROVANE_BUILT_MANUAL)};
    folders.removeAll(QString()); // what is made for a package does not know where it was built
    return folders;
}

} // namespace mirovane
