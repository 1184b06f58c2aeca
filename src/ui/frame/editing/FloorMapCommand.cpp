#include "ui/frame/editing/FloorMapCommand.h"

#include "model/FloorMap.h"
#include "model/records/Text.h"
#include "ui/floor/map/FloorMap.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <chrono>
#include <utility>

namespace mirovane {

namespace {

QString fileName(const std::string& path) {
    return QFile::decodeName(path.c_str());
}

std::string shownMapPath(const CStation& station) {
    const std::string stored = floorMapOf(station.document()).mapPath;
    if (stored.empty())
        return {};
    const QString named = QString::fromStdString(displayText(stored));
    return QFile::encodeName(locateMap(named, fileName(station.datafile().path()))).toStdString();
}

/// Where a map that is named with a path is looked for: there, and beside the datafile.
std::string searchedFolders(const CStation& station) {
    const std::string stored = floorMapOf(station.document()).mapPath;
    const std::string named = fileName(stored).contains(u'/')
                                  ? QFile::encodeName(QFileInfo(fileName(stored)).path()).toStdString()
                                  : std::string();
    const std::string& datafile = station.datafile().path();
    const std::string beside = datafile.empty()
                                   ? std::string()
                                   : QFile::encodeName(QFileInfo(fileName(datafile)).path()).toStdString();
    if (named.empty() || beside.empty() || named == beside)
        return named.empty() ? beside : named;
    return named + " and in " + beside;
}

FloorEdit setMap(const std::string& path) {
    return {{EditRequest::Kind::Settings, "Choose floor map", {}},
            [path](CMirovaneDoc& document) {
                FloorMapValues map = floorMapOf(document);
                map.mapPath = path;
                setFloorMap(document, map);
            }};
}

} // namespace

CFloorMapCommand::CFloorMapCommand(const EditingParts& parts)
    : parts_(parts), runner_(parts.station, parts.dialogs) {}

void CFloorMapCommand::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ToolsFloorMap, {[this](const CommandDefinition&, bool) { choose(); }, {}});
}

void CFloorMapCommand::choose() {
    const auto path = parts_.dialogs.chooseFileToOpen(
        {"Floor Map",
         shownMapPath(parts_.station),
         {"Floor maps (*.bmp *.png *.jpg *.svg)", "Bitmap Files (*.bmp)", "PNG pictures (*.png)",
          "JPEG pictures (*.jpg *.jpeg)", "SVG drawings (*.svg)", "All Files (*)"}});
    if (path && !reading_)
        read(*path);
}

void CFloorMapCommand::offerAnother(const std::string& sentence) {
    std::string text = sentence;
    if (const std::string folders = searchedFolders(parts_.station); !folders.empty())
        text += "\n\nIt was looked for in " + displayText(folders) + ".";
    if (parts_.dialogs.askStop(text + "\n\nDo you want to choose the floor map now?"))
        choose();
}

/// A share may be slow, and a large picture takes a while: the window goes on meanwhile.
void CFloorMapCommand::read(const std::string& path) {
    reading_ = true;
    const std::string datafile = parts_.station.datafile().path();
    const auto look = [self = QPointer(this), path, datafile] {
        const std::string problem = readMap({fileName(path), {}, {}}).problem.toStdString();
        const auto tell = [self, path, datafile, problem] {
            if (self)
                self->take(path, datafile, problem);
        };
        if (QCoreApplication* application = QCoreApplication::instance())
            QMetaObject::invokeMethod(application, tell, Qt::QueuedConnection);
    };
    if (reads_.run(path, look, std::chrono::milliseconds(0)) == CAbandonableCalls::End::Refused)
        take(path, datafile, tr("The picture could not be read: its share does not answer.").toStdString());
}

void CFloorMapCommand::take(const std::string& path, const std::string& datafile,
                            const std::string& problem) {
    reading_ = false;
    if (parts_.station.datafile().path() != datafile)
        return; // the user has gone on to another floor
    if (!problem.empty()) {
        const bool hasMap = !floorMapOf(parts_.station.document()).mapPath.empty();
        parts_.dialogs.fail(problem + (hasMap ? "\n\nThe floor keeps the map that it has." : ""));
        return;
    }
    if (runner_.run(setMap(path)))
        parts_.floor.reloadFloorMap();
}

} // namespace mirovane
