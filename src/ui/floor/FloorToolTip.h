#pragma once

#include "model/records/Hardware.h"

#include <QBasicTimer>
#include <QObject>
#include <QPoint>
#include <QString>

namespace mirovane {

class CMirovaneView;

/// The fields of a device, a line each with its name; those without a value are left out. Plain text.
QString toolTipText(const CHardware& device);

/// Shows the fields of the device that the pointer rests on, in the system's font: labels are as small as the
/// zoom makes them, and may lie under others. Main thread; belongs to the view.
class CFloorToolTip : public QObject {
    Q_OBJECT

public:
    explicit CFloorToolTip(CMirovaneView& view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void show();

    CMirovaneView& view_;
    QBasicTimer rest_;
    QPoint pointer_; ///< window coordinates
};

} // namespace mirovane
