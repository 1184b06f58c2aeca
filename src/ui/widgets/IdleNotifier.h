#pragma once

#include <QObject>
#include <QTimer>

namespace mirovane {

/// Says when the user interface came to rest after something happened. At most about thirty times a second,
/// because Live Stat wakes the event loop a thousand times a second; never while nothing happens, so that an
/// idle program sleeps.
class CIdleNotifier : public QObject {
    Q_OBJECT

public:
    explicit CIdleNotifier(QObject* parent);

Q_SIGNALS:
    void idle();

private:
    void loopIdle();
    void announce();

    QTimer pause_;
    bool ownWakeUp_ = false;
};

} // namespace mirovane
