#include "ui/properties/FloorPropertiesDialog.h"

#include "model/FloorMap.h"
#include "model/properties/FloorSummary.h"
#include "model/records/Dates.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/WindowPlacement.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace mirovane {

namespace {

constexpr int columns = 2;
constexpr QSize wantedSize(560, 400);

QString ownerText(const OwnerValues& owner) {
    if (!owner.on)
        return QStringLiteral("Disabled");
    return QStringLiteral("Enabled:") + u' ' + shownText(owner.station.computerName) + u'\\' +
           shownText(owner.station.userName) + QStringLiteral("\n") + shownText(stampText(owner.modified));
}

QString countText(const FloorSummary::Count& count) {
    return QStringLiteral("%1 [%2] [%3]").arg(count.total()).arg(count.floor).arg(count.discovered);
}

} // namespace

CFloorPropertiesDialog::CFloorPropertiesDialog(const CStation& station, QSize mapSize, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("floorPropertiesDialog"));
    setWindowTitle(QStringLiteral("Mirovane - Floor Properties"));
    const FloorSummary summary = floorSummary(station.document());
    auto* page = new QWidget(this);
    auto* body = new QVBoxLayout(page);
    body->setContentsMargins(0, 0, 0, 0);
    body->addLayout(makeFiles(station, summary, mapSize));
    body->addWidget(makeCounts(summary));
    body->addStretch(1);
    auto* area = new QScrollArea(this);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(area, 1);
    layout->addWidget(buttons);
    fitToScreen(*this, wantedSize);
    buttons->button(QDialogButtonBox::Ok)->setFocus();
}

void CFloorPropertiesDialog::addFact(QFormLayout& rows, const char* name, const QString& label,
                                     const QString& text) {
    auto* fact = new QLabel(text, this);
    fact->setObjectName(QLatin1String(name));
    fact->setTextFormat(Qt::PlainText);
    fact->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fact->setWordWrap(true);
    rows.addRow(label, fact);
}

QLayout* CFloorPropertiesDialog::makeFiles(const CStation& station, const FloorSummary& summary,
                                           QSize mapSize) {
    auto* rows = new QFormLayout;
    rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const std::string map = floorMapOf(station.document()).mapPath;
    addFact(*rows, "floorMap", tr("Floor map:"), map.empty() ? tr("none") : shownText(map));
    addFact(*rows, "floorMapSize", QString(),
            QStringLiteral("Size (WxH): %1 x %2 pixels").arg(mapSize.width()).arg(mapSize.height()));
    const std::string path = station.datafile().path();
    addFact(*rows, "floorDatafile", tr("Datafile:"),
            path.empty() ? tr("not saved yet") : QFile::decodeName(path.c_str()));
    addFact(*rows, "floorApplications", tr("External Applications:"),
            QStringLiteral("%1 (%2 are on Pop-up menu)")
                .arg(summary.applications)
                .arg(summary.applicationsOnMenu));
    addFact(*rows, "floorLiveStat", tr("Live Stat:"), ownerText(summary.liveStat));
    addFact(*rows, "floorLiveDiscover", tr("Live Discover:"), ownerText(summary.liveDiscover));
    return rows;
}

QWidget* CFloorPropertiesDialog::makeCounts(const FloorSummary& summary) {
    auto* group = new QGroupBox(tr("Devices"), this);
    auto* grid = new QGridLayout;
    constexpr int types = DeviceType::last;
    constexpr int lines = (types + columns - 1) / columns;
    for (int type = DeviceType::first; type <= types; ++type) {
        const int line = (type - 1) % lines;
        const int column = (type - 1) / lines * 2;
        auto* count = new QLabel(countText(summary.types.at(static_cast<std::size_t>(type))), group);
        count->setObjectName(QStringLiteral("floorCount%1").arg(type));
        grid->addWidget(new QLabel(qText(typeName(type)) + u':', group), line, column);
        grid->addWidget(count, line, column + 1);
        grid->setColumnStretch(column + 1, 1);
    }
    auto* layout = new QVBoxLayout(group);
    layout->addLayout(grid);
    layout->addWidget(new QLabel(QStringLiteral("Note: Total [Main Floor] [Discovered/Misc]"), group));
    return group;
}

} // namespace mirovane
