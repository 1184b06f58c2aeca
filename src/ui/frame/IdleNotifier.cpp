#include "ui/frame/IdleNotifier.h"

#include <QAbstractEventDispatcher>

#include <chrono>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds shortestPause{33};

} // namespace

IdleNotifier::IdleNotifier(QObject* parent) : QObject(parent) {
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &IdleNotifier::announce);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &IdleNotifier::loopIdle);
}

void IdleNotifier::loopIdle() {
    if (ownWakeUp_)
        ownWakeUp_ = false; // the loop only woke for our timer: nothing happened
    else if (!pause_.isActive())
        pause_.start(shortestPause);
}

void IdleNotifier::announce() {
    ownWakeUp_ = true;
    Q_EMIT idle();
}

} // namespace mirovane
