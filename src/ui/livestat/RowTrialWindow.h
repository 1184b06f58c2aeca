#pragma once

#include "station/Station.h"
#include "ui/livestat/DevicePickList.h"
#include "ui/livestat/TrialRun.h"

#include <QComboBox>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>

#include <cstdint>

namespace mirovane {

/// Tries one criteria row on one device and shows what Live Stat would do. Writes nothing. What it offers is
/// what the document holds at the moment. Main thread; the
/// station outlives it.
class CRowTrialWindow : public QDialog, private DocumentObserver {
    Q_OBJECT

public:
    CRowTrialWindow(const CStation& station, const Clock& clock, std::int32_t type, int row,
                    QWidget* parent = nullptr);
    ~CRowTrialWindow() override;

    /// This device instead of the first selected one.
    void pick(std::int32_t recID) { devices_->pick(recID); }

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

    bool isOffered(const CHardware& record) const;
    void scheduleOffer();
    void fillRows(int row);
    QWidget* makeButtons();
    void start();
    void showResult(const RowTrial& trial);
    void enableButtons();

    const CStation& station_;
    QComboBox* row_;
    CDevicePickList* devices_;
    QPlainTextEdit* result_;
    QPushButton* test_ = nullptr;
    QPushButton* stop_ = nullptr;
    CTrialRun run_;
    std::int32_t type_;
    bool offerPending_ = false;
};

} // namespace mirovane
