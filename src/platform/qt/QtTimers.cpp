#include "platform/qt/QtTimers.h"

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <limits>
#include <utility>

namespace mirovane {

namespace {

class CQtTimer final : public Timer {
public:
    explicit CQtTimer(std::function<void()> onTick) : timer_(new QTimer), onTick_(std::move(onTick)) {
        timer_->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer_, &QTimer::timeout, timer_, [this] { tick(); });
    }

    ~CQtTimer() override {
        timer_->stop();
        timer_->disconnect();
        if (destroyed_) {
            // Within the tick: the signal is still on its way through the object.
            *destroyed_ = true;
            timer_->deleteLater();
        } else {
            delete timer_;
        }
    }

    bool start(std::chrono::milliseconds period) override {
        constexpr auto longest = std::chrono::milliseconds(std::numeric_limits<int>::max());
        timer_->start(std::clamp(period, std::chrono::milliseconds(0), longest));
        return timer_->isActive();
    }
    void stop() override { timer_->stop(); }
    bool active() const override { return timer_->isActive(); }

private:
    /// Qt lets no timer tick within its own tick, but another one's tick may destroy this timer there.
    void tick() {
        bool destroyed = false;
        destroyed_ = &destroyed;
        const std::function<void()> onTick = onTick_;
        onTick();
        if (!destroyed)
            destroyed_ = nullptr;
    }

    QTimer* timer_;
    std::function<void()> onTick_;
    bool* destroyed_ = nullptr; ///< set while a tick runs: it must learn that its timer went
};

} // namespace

std::unique_ptr<Timer> CQtTimerFactory::makeTimer(std::function<void()> onTick) {
    return std::make_unique<CQtTimer>(std::move(onTick));
}

} // namespace mirovane
