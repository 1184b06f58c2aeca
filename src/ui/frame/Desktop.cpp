#include "ui/frame/Desktop.h"

#include "platform/files/StateFolder.h"
#include "platform/qt/ConfigFolder.h"
#include "probes/registry/ThisStation.h"
#include "ui/floor/MirovaneView.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace mirovane {

namespace {

/// Where a floor without a file goes when the session ends.
std::string rescuePath(const QDateTime& now) {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                      QStringLiteral("/mirovane"));
    folder.mkpath(QStringLiteral("."));
    const QString name =
        QStringLiteral("Untitled-%1.mv").arg(now.toString(QStringLiteral("yyyyMMdd-HHmmss")));
    return QFile::encodeName(folder.filePath(name)).toStdString();
}

RegistryRemoteOptions registryOptions(const std::string& configFolder) {
    RegistryRemoteOptions options;
    options.credentialsFile = usualCredentialsFile(configFolder);
    return options;
}

} // namespace

CDesktop::CDesktop(const Options& options)
    : store_(options.configFolder),
      recent_(store_),
      settings_(store_),
      log_(clock_),
      dialogs_(options.version, [this](bool open) { pauseStation(open); }),
      probes_(registryOptions(options.configFolder), thisStation()) {
    settings_.initialise();
    station_ = std::make_unique<CStation>(StationServices{
        files_, clock_, timers_, settings_, log_, dialogs_, probes_.all(), thisStation(), true, nullptr,
        nullptr, &sweepProbes_, stateFolderFor(options.configFolder), &programs_, &datafileThread_});
    frame_ = std::make_unique<CMainFrame>(
        CMainFrame::Services{*station_, dialogs_, recent_, launcher_, settings_, log_, clock_},
        new CMirovaneView(*station_, log_));
    dialogs_.setParent(frame_.get());
}

CDesktop::~CDesktop() = default;

/// The thread that asks what the datafile is like may wait for the answer.
CAbandonableFiles::Patience CDesktop::offMainThread() {
    CAbandonableFiles::Patience patience;
    patience.status = patience.signOfLife;
    return patience;
}

void CDesktop::start(const std::string& datafile) {
    frame_->show();
    if (datafile.empty() || !frame_->files().openPath(datafile))
        frame_->files().newFile();
}

HandoverAnswer CDesktop::comeUp(const HandoverRequest& request) {
    const QString datafile = QFile::decodeName(station_->datafile().path().c_str());
    if (!request.datafile.isEmpty() && QFileInfo(datafile).canonicalFilePath() != request.datafile)
        return HandoverAnswer::Elsewhere;
    frame_->setWindowState(frame_->windowState() & ~Qt::WindowMinimized);
    frame_->raise();
    frame_->activateWindow();
    const bool shown = request.find.isEmpty() || frame_->finding().showBest(request.find.toStdString());
    return shown ? HandoverAnswer::Shown : HandoverAnswer::NotFound;
}

void CDesktop::saveForSession() {
    frame_->saveForSession(rescuePath(QDateTime::currentDateTime()));
}

int CDesktop::endSession() {
    dialogs_.silence();
    saveForSession();
    const auto error = frame_->endSession();
    if (error)
        dialogs_.fail(error->sentence);
    return error ? 3 : 0;
}

void CDesktop::pauseStation(bool pause) {
    if (pause && station_)
        pause_.emplace(station_->pauses());
    else
        pause_.reset();
}

} // namespace mirovane
