#include "ui/frame/FrameWindows.h"

#include "ui/discover/DiscoverNowWindow.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/list/ListViewWindow.h"

namespace mirovane {

CFrameWindows::CFrameWindows(const FrameServices& services, QWidget& frame)
    : services_(services),
      frame_(frame),
      messageLog_(std::make_unique<CMessageLogWindow>(services.log, services.settings)) {
    messageLog_->setWindowIcon(frame.windowIcon());
}

CFrameWindows::~CFrameWindows() = default;

void CFrameWindows::showMessageLog() {
    messageLog_->present();
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
