#pragma once

#include "station/Station.h"
#include "ui/discover/FoundHostsModel.h"

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>

#include <chrono>
#include <vector>

namespace mirovane {

/// "Discover Now": what a sweep would ask, its pace, how far it is, whom it has found, and the ways to end
/// it. Not modal: the floor stays usable while it runs. Closing the window ends a running sweep, asking first
/// where that loses found hosts. The station has a Discover Now and outlives the window. Main thread.
class CDiscoverNowWindow final : public QDialog, private DiscoverNowObserver {
    Q_OBJECT

public:
    CDiscoverNowWindow(CStation& station, CSettings& settings, StationDialogs& dialogs, QWidget* parent);
    ~CDiscoverNowWindow() override;

    /// Shows the window, restores it when it is minimised and brings it to the top.
    void present();

    /// Escape, Cancel and the window's close button.
    void reject() override;

Q_SIGNALS:
    /// The user wants to enter address ranges.
    void rangesWanted();

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // DiscoverNowObserver
    void sweepProgressed(const std::vector<std::size_t>& changed) override { showProgress(changed); }
    void sweepBegan() override { showRunning(); }
    void sweepEnded() override { showRunning(); }

    void layOut();
    QLayout* makePaceRow();
    QLayout* makeButtonRow();
    void makeTable();
    void connectAll();

    void start();
    void stop();
    void showPlan();
    void showProgress(const std::vector<std::size_t>& changed);
    void showRunning();
    void showSums();
    void copyRows();

    CStation& station_;
    CSettings& settings_;
    CDiscoverNow& discoverNow_;
    StationDialogs& dialogs_;
    CFoundHostsModel* hosts_;
    QLabel* plan_;
    QSpinBox* pace_;
    QLabel* takes_;
    QProgressBar* bar_;
    QLabel* status_;
    QTableView* table_;
    QLabel* hint_;
    QPushButton* ranges_;
    QPushButton* start_;
    QPushButton* stop_;
    QPushButton* close_;
    std::uint64_t toProbe_ = 0; ///< 0: it can't begin
    std::chrono::milliseconds whole_{1};
};

} // namespace mirovane
