#pragma once

#include "ui/frame/base/FrameServices.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <memory>

class QWidget;

namespace mirovane {

class CDiscoverNowWindow;
class CListViewWindow;
class CMessageLogWindow;

/// The windows beside the main one. Each is made when it is first wanted, so that a program that never shows
/// it does not pay for it; but for the message log, which must not miss the first line. Main thread.
class CFrameWindows : public QObject {
    Q_OBJECT

public:
    /// `frame` is the window that they come up beside, and the parent of the dialogs among them.
    CFrameWindows(const FrameServices& services, QWidget& frame);
    ~CFrameWindows() override;

    void showMessageLog();
    void showListView();
    void showDiscoverNow();

    /// The main window closes.
    void close();

    CMessageLogWindow& messageLog() { return *messageLog_; }

    /// Null before it was first shown.
    CListViewWindow* listView() { return listView_.get(); }

Q_SIGNALS:
    /// The user wants to see this device on the floor.
    void deviceWanted(std::int32_t recID);

    /// Properties of the rows that are selected in the List View.
    void rowPropertiesWanted();

    /// `asking` has no address ranges to work with: the options window is where they are set.
    void rangesWanted(QWidget* asking);

private:
    void openLogFile();

    FrameServices services_;
    QWidget& frame_;
    std::unique_ptr<CMessageLogWindow> messageLog_;
    std::unique_ptr<CListViewWindow> listView_;
    QPointer<CDiscoverNowWindow> discoverNow_; ///< a child of the frame
};

} // namespace mirovane
