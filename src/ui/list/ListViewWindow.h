#pragma once

#include "station/Station.h"
#include "ui/list/ListColumnWidths.h"
#include "ui/list/ListTable.h"
#include "ui/list/ListViewModel.h"
#include "ui/widgets/WindowPlacement.h"

#include <QLabel>
#include <QWidget>

#include <cstdint>
#include <string>

namespace mirovane {

/// "List View - Mirovane": the devices of the open datafile as a table. While it is hidden it costs nothing.
/// Which rows it shows, and in which order, is the station's ListViewState, so the automatic export writes
/// is seen here. Main thread; station and settings outlive the window.
class CListViewWindow final : public QWidget, private StationObserver {
    Q_OBJECT

public:
    CListViewWindow(CStation& station, CSettings& settings);
    ~CListViewWindow() override;

    /// Shows the window, restores it when it is minimised and brings it to the top.
    void present();

    CListViewModel& rows() { return rows_; }
    CListTable& table() { return *table_; }

Q_SIGNALS:
    /// The user wants to see this device, which is on the floor, there.
    void showOnFloor(std::int32_t recID);

    /// The selected rows are to be edited.
    void propertiesWanted();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // StationObserver
    void redrawNeeded() override { rows_.flush(); }
    void listSettled() override { rows_.settleOrder(); }

    void layOut();
    void activateRow(std::int32_t recID);
    void noteSearch(const QString& text, bool found);
    void say(const QString& note);
    void showStatus();
    void startOverInAnotherDatafile();
    void followFloor();

    CStation& station_;
    CSettings& settings_;
    CListViewModel rows_;
    CListTable* table_;
    CListColumnWidths* widths_;
    CPlacementKeeper* placement_;
    QLabel* status_;
    QString note_;
    QTimer noteEnds_;
    std::string datafile_;
    std::int32_t followed_ = 0; ///< the device that was selected alone when the list looked last
};

} // namespace mirovane
