#pragma once

#include "station/Station.h"
#include "ui/discover/RangeRows.h"

#include <QCheckBox>
#include <QDialog>
#include <QGridLayout>
#include <QSpinBox>

namespace mirovane {

/// "Live Stat/Discover options": pace and habits of Live Stat, which are the user's own, and the address
/// ranges of Live Discover, which belong to the datafile. However it is closed, what it shows is stored; it
/// stays open while an address range is wrong. Main thread; station and dialogs outlive it.
class CLiveStatOptionsWindow : public QDialog {
    Q_OBJECT

public:
    /// All of it outlives the window.
    struct Services {
        CStation& station;
        CSettings& settings;
        const Clock& clock;
        StationDialogs& dialogs;
    };

    explicit CLiveStatOptionsWindow(const Services& services, QWidget* parent = nullptr);

    void done(int result) override;

private:
    QLayout* makeSettings();
    QSpinBox* addNumber(QGridLayout& grid, int line, const QString& text, const char* name, int largest);
    QCheckBox* makeFlag(const QString& text, const char* name);
    QLayout* makeButtons();

    void showStored();
    LiveStatSettings shownSettings() const;
    bool storeRanges();
    void openCriteria();

    Services services_;
    CStation& station_;
    QSpinBox* runSec_ = nullptr;
    QSpinBox* confirmOff_ = nullptr;
    QSpinBox* numPerRun_ = nullptr;
    QCheckBox* autoStart_ = nullptr;
    QCheckBox* autoPerform_ = nullptr;
    QCheckBox* includeMisc_ = nullptr;
    CRangeRows* ranges_ = nullptr;
};

} // namespace mirovane
