#pragma once

#include <QTimer>
#include <QWidget>

namespace mirovane {

/// A ring that blinks around a place for a moment, to lead the eye there. It lets the mouse through, and goes
/// by itself, or at once when what it is around scrolls away.
class CFlashRing : public QWidget {
    Q_OBJECT

public:
    /// `over` is what is shown, `place` in its coordinates. A ring that is there already makes room.
    static void flash(QWidget& over, const QRect& place);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CFlashRing(QWidget& over, const QRect& place);
    void blink();

    QTimer timer_;
    int blinksLeft_;
};

} // namespace mirovane
