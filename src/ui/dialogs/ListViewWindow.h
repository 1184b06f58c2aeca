#pragma once

#include "station/Station.h"
#include "ui/dialogs/ListColumnWidths.h"
#include "ui/dialogs/ListTable.h"
#include "ui/dialogs/ListViewModel.h"
#include "ui/dialogs/WindowPlacement.h"

#include <QLabel>
#include <QWidget>

#include <cstdint>
#include <string>

namespace mirovane {

/// "List View - Mirovane": the devices of the open datafile as a table. While it is hidden it costs nothing.
/// Which rows it shows, and in which order, is the station's ListViewState, so the automatic export writes
/// what stands here. Main thread; the station outlives the window.
class CListViewWindow final : public QWidget {
    Q_OBJECT

public:
    explicit CListViewWindow(CStation& station);
    ~CListViewWindow() override;

    /// Shows the window, restores it when it is minimised and brings it to the top.
    void present();

    ListViewModel& rows() { return rows_; }
    ListTable& table() { return *table_; }

Q_SIGNALS:
    /// The user wants to see this device, which is on the floor, there.
    void showOnFloor(std::int32_t recID);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layOut();
    void watchStation();
    void activateRow(std::int32_t recID);
    void noteSearch(const QString& text, bool found);
    void say(const QString& note);
    void showStatus();
    void startOverInAnotherDatafile();

    CStation& station_;
    ListViewModel rows_;
    ListTable* table_;
    ListColumnWidths* widths_;
    PlacementKeeper* placement_;
    QLabel* status_;
    QString note_;
    QTimer noteEnds_;
    std::string datafile_;
};

} // namespace mirovane
