#pragma once

#include "station/Station.h"
#include "ui/livestat/CriteriaExamples.h"
#include "ui/livestat/CriteriaRowInputs.h"

#include <QComboBox>
#include <QDialog>

#include <array>
#include <cstdint>

namespace mirovane {

/// "Live Stat Information Retrieval Criteria": what Live Stat does with the devices of each type. There is no
/// OK: every change is in the document the moment it is made, and in the datafile when the window shows
/// another type or closes, so that no station runs half a rule; Live Stat leaves the devices of the type that
/// is shown alone meanwhile. Other stations' changes appear while the window is open; text
/// that is being typed stays. Main thread; station and dialogs outlive it.
class CCriteriaWindow : public QDialog, private DocumentObserver {
    Q_OBJECT

public:
    CCriteriaWindow(CStation& station, const Clock& clock, StationDialogs& dialogs,
                    QWidget* parent = nullptr);
    ~CCriteriaWindow() override;

    std::int32_t deviceType() const { return type_; }

    /// Whatever is being typed counts now.
    void storeTyping();

    /// Whatever is still being typed is stored, and the datafile is saved when anything changed.
    void done(int result) override;

private:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void documentReplaced() override;

    QWidget* makeTable();
    void makeHeaders(QGridLayout& grid);
    void makeRows(QGridLayout& grid);
    QLayout* makeDeviceLine();
    QLayout* makeButtons();

    void typePicked();
    void showRows();
    void showRow(int row);
    void scheduleShow();
    void showNotice();
    void enterRow(int row);
    void showAction(const ActionEntry& action);

    void chooseAction(int row, const QString& action);
    void store(int row, CriteriaColumn column, const QString& value);
    void edit(const std::function<void(CMirovaneDoc&)>& change);
    void reset();
    void openTrial();

    CStation& station_;
    const Clock& clock_;
    StationDialogs& dialogs_;
    QComboBox* device_;
    QLabel* syntax_ = nullptr;
    QLabel* notice_ = nullptr;
    std::array<CCriteriaRowInputs*, criteriaRowCount> rows_ = {};
    CCriteriaExamples* examples_ = nullptr;
    std::int32_t type_; ///< shown
    int currentRow_ = 0;
    bool entered_ = false; ///< a row: its action is explained
    std::string datafile_; ///< whose criteria are shown
    bool edited_ = false;  ///< since the window opened
    bool showPending_ = false;
};

} // namespace mirovane
