#pragma once

#include "station/Station.h"
#include "ui/dialogs/DevicePickList.h"
#include "ui/dialogs/TrialRun.h"

#include <QComboBox>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>

#include <cstdint>

namespace mirovane {

/// Tries one criteria row on one device and shows what Live Stat would do. Writes nothing. Main thread; the
/// station outlives it.
class CRowTrialWindow : public QDialog {
    Q_OBJECT

public:
    CRowTrialWindow(CStation& station, std::int32_t type, int row, QWidget* parent = nullptr);

private:
    void fillRows(std::int32_t type, int row);
    QWidget* makeButtons();
    void start();
    void showResult(const RowTrial& trial);
    void enableButtons();

    CStation& station_;
    QComboBox* row_;
    DevicePickList* devices_;
    QPlainTextEdit* result_;
    QPushButton* test_ = nullptr;
    QPushButton* stop_ = nullptr;
    TrialRun run_;
};

} // namespace mirovane
