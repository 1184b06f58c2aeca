#include "ui/frame/FrameWindows.h"

#include "ui/discover/DiscoverNowWindow.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/list/ListViewWindow.h"

#include <QFile>
#include <QFileInfo>

namespace mirovane {

CFrameWindows::CFrameWindows(const FrameServices& services, QWidget& frame)
    : services_(services),
      frame_(frame),
      messageLog_(std::make_unique<CMessageLogWindow>(services.log, services.settings)) {
    messageLog_->setWindowIcon(frame.windowIcon());
    connect(messageLog_.get(), &CMessageLogWindow::logFileWanted, this, &CFrameWindows::openLogFile);
}

CFrameWindows::~CFrameWindows() = default;

void CFrameWindows::showMessageLog() {
    messageLog_->present();
}

/// It comes to be with its first line: a value that gave way to another one.
void CFrameWindows::openLogFile() {
    const QString path = QFile::decodeName(services_.station.logFilePath().c_str());
    QString problem;
    if (path.isEmpty())
        problem = tr("There is no log file.\n\nThe program found no folder of yours to keep it in.");
    else if (!QFileInfo::exists(path))
        problem =
            tr("There is no log file yet.\n\nIt keeps each value that gave way to another one, such as a "
               "field that a colleague changed as well, and so far none did. It will be %1.")
                .arg(path);
    else if (!services_.dialogs.openPage(path))
        problem =
            tr("The log file could not be shown.\n\nNo program is set up for text files. The file is %1.")
                .arg(path);
    if (!problem.isEmpty())
        services_.dialogs.fail(problem.toStdString());
}

void CFrameWindows::showListView() {
    if (!listView_) {
        listView_ = std::make_unique<CListViewWindow>(services_.station, services_.settings);
        listView_->setWindowIcon(frame_.windowIcon());
        connect(listView_.get(), &CListViewWindow::showOnFloor, this, &CFrameWindows::deviceWanted);
        connect(listView_.get(), &CListViewWindow::propertiesWanted, this,
                &CFrameWindows::rowPropertiesWanted);
    }
    listView_->present();
}

void CFrameWindows::showDiscoverNow() {
    if (!discoverNow_) {
        discoverNow_ =
            new CDiscoverNowWindow(services_.station, services_.settings, services_.dialogs, &frame_);
        connect(discoverNow_, &CDiscoverNowWindow::rangesWanted, this,
                [this] { Q_EMIT rangesWanted(discoverNow_); });
    }
    discoverNow_->present();
}

void CFrameWindows::close() {
    messageLog_->close();
    if (listView_)
        listView_->close();
}

} // namespace mirovane
