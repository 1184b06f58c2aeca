#include "ui/livestat/LiveStatOptionsWindow.h"

#include "discover/AddressRanges.h"
#include "ui/livestat/CriteriaWindow.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/SaveFailure.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirovane {

namespace {

/// The number that the next start puts in the place of a stored 0.
std::int32_t startValue(std::string_view name) {
    for (const SettingDefinition& definition : startupSettings())
        if (definition.name == name)
            return definition.initial;
    return 0;
}

std::vector<RangeText> storedRanges(const CMirovaneDoc& document) {
    std::vector<RangeText> ranges;
    for (const CHardware* record : discoverRanges(document))
        ranges.push_back(rangeFromRecord(*record));
    return ranges;
}

} // namespace

CLiveStatOptionsWindow::CLiveStatOptionsWindow(const Services& services, QWidget* parent)
    : QDialog(parent), services_(services), station_(services.station), ranges_(new CRangeRows(this)) {
    setObjectName(QStringLiteral("liveStatOptions"));
    setWindowTitle(tr("Live Stat/Discover options"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(makeSettings());
    layout->addWidget(ranges_, 1);
    layout->addLayout(makeButtons());
    showStored();
    runSec_->setFocus();
}

QLayout* CLiveStatOptionsWindow::makeSettings() {
    auto* grid = new QGridLayout;
    runSec_ = addNumber(*grid, 0, tr("R&uns every (second)"), "LSRunSec", LiveStatSettings::mostRunSec);
    numPerRun_ = addNumber(*grid, 1, tr("# of de&vices to check per run"), "LSNumPerRun",
                           LiveStatSettings::mostNumPerRun);
    confirmOff_ = addNumber(*grid, 2, tr("Repeat a failed &test before a device turns Off (times)"),
                            "LSConfirmOff", LiveStatSettings::mostConfirmOff);
    confirmOff_->setSpecialValueText(tr("0 (Off at once)"));
    autoStart_ = makeFlag(tr("Auto &start Live Stat"), "LSAutoStart");
    autoPerform_ =
        makeFlag(tr("&Perform Live Stat Now on selection of device(s) (include Find, exclude Select->All)"),
                 "LSAutoPerform");
    includeMisc_ = makeFlag(tr("&Include device(s) in Discover/Misc window"), "LSIncludeMisc");
    int line = 3;
    for (QCheckBox* flag : {autoStart_, autoPerform_, includeMisc_})
        grid->addWidget(flag, line++, 0, 1, 3);
    auto* criteria = new QPushButton(tr("Live Stat C&riteria settings.."), this);
    criteria->setObjectName(QStringLiteral("criteria"));
    criteria->setAutoDefault(false);
    connect(criteria, &QPushButton::clicked, this, &CLiveStatOptionsWindow::openCriteria);
    grid->addWidget(criteria, line, 0, 1, 3, Qt::AlignLeft);
    grid->setColumnStretch(2, 1);
    return grid;
}

QSpinBox* CLiveStatOptionsWindow::addNumber(QGridLayout& grid, int line, const QString& text,
                                            const char* name, int largest) {
    auto* label = new QLabel(text, this);
    auto* box = new QSpinBox(this);
    box->setObjectName(QLatin1String(name));
    box->setRange(0, largest);
    box->setSpecialValueText(tr("0 (%1 from the next start on)").arg(startValue(name)));
    label->setBuddy(box);
    grid.addWidget(label, line, 0);
    grid.addWidget(box, line, 1);
    return box;
}

QCheckBox* CLiveStatOptionsWindow::makeFlag(const QString& text, const char* name) {
    auto* box = new QCheckBox(text, this);
    box->setObjectName(QLatin1String(name));
    return box;
}

QLayout* CLiveStatOptionsWindow::makeButtons() {
    auto* close = new QPushButton(tr("&Close"), this);
    close->setObjectName(QStringLiteral("close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    line->addWidget(close);
    return line;
}

void CLiveStatOptionsWindow::showStored() {
    const LiveStatSettings& settings = station_.features().liveStat().settings();
    runSec_->setValue(settings.LSRunSec);
    numPerRun_->setValue(settings.LSNumPerRun);
    confirmOff_->setValue(settings.LSConfirmOff);
    autoStart_->setChecked(settings.LSAutoStart);
    autoPerform_->setChecked(settings.LSAutoPerform);
    includeMisc_->setChecked(settings.LSIncludeMisc);
    ranges_->setRanges(storedRanges(station_.document()));
}

LiveStatSettings CLiveStatOptionsWindow::shownSettings() const {
    LiveStatSettings settings = station_.features().liveStat().settings();
    settings.LSRunSec = runSec_->value();
    settings.LSNumPerRun = numPerRun_->value();
    settings.LSConfirmOff = confirmOff_->value();
    settings.LSAutoStart = autoStart_->isChecked();
    settings.LSAutoPerform = autoPerform_->isChecked();
    settings.LSIncludeMisc = includeMisc_->isChecked();
    return settings;
}

void CLiveStatOptionsWindow::openCriteria() {
    auto* window = new CCriteriaWindow(station_, services_.clock, services_.dialogs, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->open();
}

/// False when a range is wrong, one of this window or one that came from another station meanwhile.
bool CLiveStatOptionsWindow::storeRanges() {
    if (!ranges_->validate())
        return false;
    station_.edit({EditRequest::Kind::Settings, "Change address ranges", {}, EditRequest::Saving::Later},
                  [this](CMirovaneDoc& document) { applyRangeEdits(document, ranges_->edits()); });
    ranges_->setRanges(storedRanges(station_.document()));
    return ranges_->validate();
}

void CLiveStatOptionsWindow::done(int result) {
    const LiveStatSettings settings = shownSettings();
    settings.writeAll(services_.settings);
    if (!storeRanges())
        return;
    station_.features().liveStat().setSettings(settings);
    const SaveReport report = station_.saveDatafile();
    QDialog::done(result);
    if (report.failed())
        services_.dialogs.fail(saveFailureText(*report.error));
}

} // namespace mirovane
