#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QProgressDialog>
#include <QTimer>
#include <QWidget>

#include <string>

namespace mirovane {

/// What the user sees while a command of his waits for a share: at first the window as it is, which goes on
/// repainting, and after a moment a box that names the share and lets him give up. The box goes when nobody
/// has waited for a moment. Main thread.
class CShareWait : public QObject {
    Q_OBJECT

public:
    CShareWait();

    /// To be called every few milliseconds. False: the user gave up.
    bool keepWaiting(const std::string& path, QWidget* parent);

private:
    void showBox(const std::string& path, QWidget* parent);
    void end();

    QElapsedTimer begun_; ///< invalid while nobody waits
    QTimer over_;
    QPointer<QProgressDialog> box_;
};

} // namespace mirovane
