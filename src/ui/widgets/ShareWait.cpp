#include "ui/widgets/ShareWait.h"

#include "model/records/Text.h"
#include "platform/files/FilePaths.h"

#include <QCoreApplication>

namespace mirovane {

namespace {

constexpr int untilBoxMs = 300;
constexpr int overAfterMs = 150; ///< much longer than the pauses between two calls

} // namespace

CShareWait::CShareWait() {
    over_.setSingleShot(true);
    connect(&over_, &QTimer::timeout, this, &CShareWait::end);
}

bool CShareWait::keepWaiting(const std::string& path, QWidget* parent) {
    if (!begun_.isValid())
        begun_.start();
    over_.start(overAfterMs);
    if (!box_ && begun_.elapsed() > untilBoxMs)
        showBox(path, parent);
    // Before there is a box nothing is in front of the window: what is typed there comes when the wait is
    // over.
    QCoreApplication::processEvents(box_ ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    return !box_ || !box_->wasCanceled();
}

void CShareWait::showBox(const std::string& path, QWidget* parent) {
    const QString folder = QString::fromStdString(displayText(folderOf(path)));
    box_ = new QProgressDialog(tr("Waiting for %1, which does not answer yet.").arg(folder), tr("&Cancel"), 0,
                               0, parent);
    box_->setObjectName(QStringLiteral("shareWait"));
    box_->setWindowTitle(tr("Mirovane"));
    box_->setWindowModality(Qt::ApplicationModal);
    box_->setMinimumDuration(0);
    box_->show();
}

void CShareWait::end() {
    begun_.invalidate();
    delete box_;
}

} // namespace mirovane
