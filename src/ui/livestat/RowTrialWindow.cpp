#include "ui/livestat/RowTrialWindow.h"

#include "ui/widgets/DialogText.h"
#include "ui/widgets/WindowPlacement.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace mirovane {

CRowTrialWindow::CRowTrialWindow(const CStation& station, const Clock& clock, std::int32_t type, int row,
                                 QWidget* parent)
    : QDialog(parent),
      station_(station),
      row_(new QComboBox(this)),
      devices_(new CDevicePickList(this)),
      result_(new QPlainTextEdit(this)),
      run_(station.probes(), clock),
      type_(type) {
    setObjectName(QStringLiteral("rowTrialWindow"));
    setWindowTitle(tr("Test Criteria of %1").arg(qText(typeName(type))));
    row_->setObjectName(QStringLiteral("trialRow"));
    result_->setObjectName(QStringLiteral("trialResult"));
    result_->setAccessibleName(tr("Result"));
    result_->setReadOnly(true);
    result_->setTabChangesFocus(true);
    result_->setPlaceholderText(tr("Nothing is written to the device, whatever the test finds."));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("&Row:"), row_);
    form->addRow(tr("&Device:"), devices_);
    if (auto* label = qobject_cast<QLabel*>(form->labelForField(devices_)))
        label->setBuddy(&devices_->searchBox());
    layout->addLayout(form, 2);
    layout->addWidget(result_, 3);
    layout->addWidget(makeButtons());
    connect(&run_, &CTrialRun::finished, this, &CRowTrialWindow::showResult);
    fillRows(row);
    devices_->offer(station.document(), type);
    devices_->searchBox().setFocus();
    enableButtons();
    fitToScreen(*this, QSize(640, 560));
    station_.document().addObserver(*this);
}

CRowTrialWindow::~CRowTrialWindow() {
    station_.document().removeObserver(*this);
}

void CRowTrialWindow::fillRows(int row) {
    row_->clear();
    for (int i = 0; i < criteriaRowCount; ++i) {
        const CHardware* record = station_.document().criteria(type_, i);
        const QString action = record ? shownText(criteriaFromRecord(*record).Command) : QString();
        row_->addItem(qText(criteriaRowLabel(i)) + QStringLiteral(":  ") + action);
    }
    row_->setMaxVisibleItems(criteriaRowCount);
    row_->setCurrentIndex(row);
}

bool CRowTrialWindow::isOffered(const CHardware& record) const {
    return record.isDevice() ? floorCode(record.Type) == type_ : isCriteriaRecordType(record.Type);
}

void CRowTrialWindow::recordAdded(const CHardware& record) {
    if (isOffered(record))
        scheduleOffer();
}

void CRowTrialWindow::recordChanged(const CHardware& before, const CHardware& after) {
    const bool sameEntry = before.Type == after.Type && before.RecID == after.RecID &&
                           before.Name == after.Name && before.IPAddress == after.IPAddress &&
                           before.Username == after.Username && before.Comment == after.Comment;
    if ((isOffered(before) || isOffered(after)) && !(after.isDevice() && sameEntry))
        scheduleOffer();
}

void CRowTrialWindow::recordRemoved(const CHardware& record) {
    if (isOffered(record))
        scheduleOffer();
}

void CRowTrialWindow::documentReplaced() {
    scheduleOffer();
}

/// Once for many changes, and after them.
void CRowTrialWindow::scheduleOffer() {
    if (std::exchange(offerPending_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            offerPending_ = false;
            fillRows(row_->currentIndex());
            devices_->offer(station_.document(), type_);
        },
        Qt::QueuedConnection);
}

QWidget* CRowTrialWindow::makeButtons() {
    auto* buttons = new QWidget(this);
    test_ = new QPushButton(tr("&Test"), buttons);
    stop_ = new QPushButton(tr("Cance&l"), buttons);
    auto* close = new QPushButton(tr("&Close"), buttons);
    test_->setObjectName(QStringLiteral("trialTest"));
    stop_->setObjectName(QStringLiteral("trialCancel"));
    close->setObjectName(QStringLiteral("trialClose"));
    test_->setDefault(true);
    stop_->setToolTip(tr("Stop waiting for an answer"));
    stop_->setAutoDefault(false);
    close->setAutoDefault(false);
    connect(test_, &QPushButton::clicked, this, &CRowTrialWindow::start);
    connect(stop_, &QPushButton::clicked, &run_, [this] { run_.stop(); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(test_);
    line->addWidget(stop_);
    line->addStretch(1);
    line->addWidget(close);
    return buttons;
}

void CRowTrialWindow::start() {
    const std::int32_t recID = devices_->pickedRecID();
    const CHardware* device = station_.document().findDevice(recID);
    if (!device) {
        result_->setPlainText(recID == 0 ? tr("No such device. Type something else above.")
                                         : tr("The device was deleted meanwhile."));
        return;
    }
    result_->setPlainText(tr("Waiting for an answer..."));
    run_.start(station_.document(), *device, row_->currentIndex());
    enableButtons();
}

void CRowTrialWindow::showResult(const RowTrial& trial) {
    result_->setPlainText(trialText(trial));
    enableButtons();
}

void CRowTrialWindow::enableButtons() {
    const bool waited = stop_->hasFocus();
    test_->setEnabled(!run_.running());
    stop_->setEnabled(run_.running());
    if (waited && test_->isEnabled())
        test_->setFocus();
}

} // namespace mirovane
