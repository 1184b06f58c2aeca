#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace mirovane {

/// The hour-glass for as long as this object lives.
class CWaitCursor {
public:
    CWaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CWaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
};

} // namespace mirovane
