#include "ui/dialogs/CustomZoomDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>

namespace mirovane {

namespace {

QSpinBox* makeNumber(const char* name, int smallest, int largest, int value) {
    auto* number = new QSpinBox;
    number->setObjectName(QLatin1String(name));
    number->setRange(smallest, largest);
    number->setSingleStep(smallest > 0 ? 5 : 1);
    number->setValue(value);
    return number;
}

} // namespace

CCustomZoomDialog::CCustomZoomDialog(const CustomZoom& start, const CustomZoomLimits& limits, QWidget* parent)
    : QDialog(parent),
      floormap_(makeNumber("zoomFloormap", limits.smallestZoom, limits.largestZoom, start.ZoomPercent)),
      devices_(makeNumber("zoomDevices", limits.smallestZoom, limits.largestZoom, start.ZoomDevicesPercent)),
      fontScale_(
          makeNumber("fontScale", -limits.largestFontScale, limits.largestFontScale, start.ZoomFontScale)) {
    setObjectName(QStringLiteral("customZoom"));
    setWindowTitle(tr("Custom Zoom"));
    fontScale_->setToolTip(tr("Pixels that are added to the height of all labels"));
    auto* form = new QFormLayout(this);
    form->addRow(tr("Zoom &Floormap %"), floormap_);
    form->addRow(tr("Zoom &Devices %"), devices_);
    form->addRow(tr("Font &Scale:"), fontScale_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    floormap_->selectAll();
    floormap_->setFocus();
}

CustomZoom CCustomZoomDialog::zoom() const {
    return {floormap_->value(), devices_->value(), fontScale_->value()};
}

} // namespace mirovane
