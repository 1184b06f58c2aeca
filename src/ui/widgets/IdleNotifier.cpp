#include "ui/widgets/IdleNotifier.h"

#include <QAbstractEventDispatcher>

#include <chrono>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds shortestPause{33};

} // namespace

CIdleNotifier::CIdleNotifier(QObject* parent) : QObject(parent) {
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &CIdleNotifier::announce);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &CIdleNotifier::loopIdle);
}

void CIdleNotifier::loopIdle() {
    if (ownWakeUp_)
        ownWakeUp_ = false; // the loop only woke for our timer: nothing happened
    else if (!pause_.isActive())
        pause_.start(shortestPause);
}

void CIdleNotifier::announce() {
    ownWakeUp_ = true;
    Q_EMIT idle();
}

} // namespace mirovane
