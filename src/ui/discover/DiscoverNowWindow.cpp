#include "ui/discover/DiscoverNowWindow.h"

#include "discover/sweep/SweepWindow.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/WindowPlacement.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace mirovane {

namespace {

constexpr int barSteps = 1000;
constexpr QSize usualSize(480, 460);

QString number(std::uint64_t value) {
    return qText(groupedNumber(value));
}

QString statusText(const SweepProgress& progress) {
    QString found = progress.found == 1 ? QObject::tr("1 host found")
                                        : number(progress.found) + QObject::tr(" hosts found");
    const QString left = qText(describeDuration(progress.left)) + QObject::tr(" left");
    switch (progress.phase) {
    case SweepPhase::Sending:
        return QObject::tr("%1 of %2 addresses asked (%5 of at most %6 not answered yet), %3, about %4")
            .arg(number(progress.sent), number(progress.total), found, left, number(progress.unanswered),
                 number(CSweepWindow::most));
    case SweepPhase::Waiting:
        return QObject::tr("All asked, %1. Waiting for late replies, %2").arg(found, left);
    case SweepPhase::Naming:
        return QObject::tr("All asked, %1. Looking up their names, %2 done")
            .arg(found, number(progress.lookedUp));
    case SweepPhase::Over:
        break;
    }
    return found;
}

QLabel* wrappedLabel(const char* name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QPushButton* button(const char* name, const QString& text, QWidget* parent) {
    auto* made = new QPushButton(text, parent);
    made->setObjectName(QLatin1String(name));
    made->setAutoDefault(false);
    return made;
}

} // namespace

CDiscoverNowWindow::CDiscoverNowWindow(CStation& station, CSettings& settings, StationDialogs& dialogs,
                                       QWidget* parent)
    : QDialog(parent),
      station_(station),
      settings_(settings),
      discoverNow_(*station.features().discoverNow()),
      dialogs_(dialogs),
      hosts_(new CFoundHostsModel(this)),
      plan_(wrappedLabel("discoverNowPlan", this)),
      pace_(new QSpinBox(this)),
      takes_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      status_(wrappedLabel("discoverNowStatus", this)),
      table_(new QTableView(this)),
      hint_(wrappedLabel("discoverNowHint", this)),
      ranges_(button("discoverNowRanges", QObject::tr("&Ranges..."), this)),
      start_(button("discoverNowStart", QObject::tr("&Discover"), this)),
      stop_(button("discoverNowStop", QObject::tr("&Stop and Add"), this)),
      close_(button("discoverNowClose", QObject::tr("Close"), this)) {
    setObjectName(QStringLiteral("discoverNowWindow"));
    setWindowTitle(QObject::tr("Discover Now"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    makeTable();
    layOut();
    connectAll();
    fitToScreen(*this, usualSize);
    showRunning();
}

CDiscoverNowWindow::~CDiscoverNowWindow() {
    hide(); // the box of the pace tells of its value when it loses the focus
    discoverNow_.removeObserver(*this);
}

void CDiscoverNowWindow::present() {
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}

void CDiscoverNowWindow::makeTable() {
    table_->setObjectName(QStringLiteral("discoverNowTable"));
    table_->setAccessibleName(QObject::tr("Hosts that were found"));
    table_->setModel(hosts_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setShowGrid(false);
    table_->setWordWrap(false);
    table_->setTabKeyNavigation(false);
    table_->setTextElideMode(Qt::ElideMiddle);
    table_->verticalHeader()->hide();
    const int rowHeight = table_->fontMetrics().height() + 4;
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(rowHeight);
    table_->horizontalHeader()->setHighlightSections(false);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table_->horizontalHeader()->setStretchLastSection(true);
    const int widest = table_->fontMetrics().horizontalAdvance(QStringLiteral("255.255.255.255"));
    table_->setColumnWidth(CFoundHostsModel::Address, widest + 24);
}

QLayout* CDiscoverNowWindow::makePaceRow() {
    pace_->setObjectName(QStringLiteral("discoverNowPace"));
    pace_->setRange(leastSweepRate, mostSweepRate);
    pace_->setSingleStep(100);
    pace_->setGroupSeparatorShown(true);
    pace_->setValue(readSweepRate(settings_));
    auto* caption = new QLabel(tr("&Probes a second:"), this);
    caption->setBuddy(pace_);
    takes_->setObjectName(QStringLiteral("discoverNowTakes"));
    auto* row = new QHBoxLayout;
    row->addWidget(caption);
    row->addWidget(pace_);
    row->addSpacing(12);
    row->addWidget(takes_, 1);
    return row;
}

QLayout* CDiscoverNowWindow::makeButtonRow() {
    auto* row = new QHBoxLayout;
    row->addWidget(ranges_);
    row->addStretch(1);
    row->addWidget(start_);
    row->addWidget(stop_);
    row->addWidget(close_);
    return row;
}

void CDiscoverNowWindow::layOut() {
    bar_->setObjectName(QStringLiteral("discoverNowBar"));
    bar_->setRange(0, barSteps);
    bar_->setTextVisible(false);
    auto* column = new QVBoxLayout(this);
    column->addWidget(plan_);
    column->addLayout(makePaceRow());
    column->addWidget(bar_);
    column->addWidget(status_);
    column->addWidget(table_, 1);
    column->addWidget(hint_);
    column->addLayout(makeButtonRow());
}

void CDiscoverNowWindow::connectAll() {
    connect(pace_, &QSpinBox::valueChanged, this, [this] { showSums(); });
    connect(ranges_, &QPushButton::clicked, this, &CDiscoverNowWindow::rangesWanted);
    connect(
        start_, &QPushButton::clicked, this, [this] { start(); });
    connect(
        stop_, &QPushButton::clicked, this, [this] { stop(); });
    connect(close_, &QPushButton::clicked, this, [this] { reject(); });
    discoverNow_.addObserver(*this);
}

/// Ranges and devices may have changed while another window was in front.
void CDiscoverNowWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && !discoverNow_.running())
        showPlan();
}

void CDiscoverNowWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && table_->selectionModel()->hasSelection())
        copyRows();
    else
        QDialog::keyPressEvent(event);
}

void CDiscoverNowWindow::start() {
    const auto plan = planSweep(station_.document());
    if (!plan) {
        showPlan();
        return;
    }
    const int rate = pace_->value();
    if (const auto warning = sweepWarning(plan.value(), rate);
        warning && !dialogs_.ask({Question::Kind::LongSweep, *warning + "\n\nDo you want to begin?"})) {
        activateWindow();
        return;
    }
    settings_.write(sweepRateSetting, rate);
    hosts_->clear();
    if (const auto refusal = discoverNow_.start(rate);
        refusal && refusal->kind != StartRefusal::Kind::OwnerElsewhere)
        dialogs_.fail("Discover Now cannot begin.\n\n" + refusal->text);
    activateWindow(); // boxes belong to the main window and hand the focus to that
    showRunning();
}

void CDiscoverNowWindow::stop() {
    discoverNow_.end(CDiscoverNow::Found::Keep);
}

void CDiscoverNowWindow::reject() {
    if (!discoverNow_.running()) {
        QDialog::reject();
        return;
    }
    const std::size_t found = discoverNow_.found().size();
    const std::string question = "Cancel Discover Now and forget the " +
                                 (found == 1 ? std::string("host") : groupedNumber(found) + " hosts") +
                                 " found so far?";
    if (found == 0 || dialogs_.ask({Question::Kind::ForgetFoundHosts, question}))
        discoverNow_.end(CDiscoverNow::Found::Discard);
    activateWindow();
}

void CDiscoverNowWindow::showPlan() {
    const auto plan = planSweep(station_.document());
    toProbe_ = plan ? plan.value().toProbe() : 0;
    if (plan) {
        const std::size_t known = plan.value().known().size();
        QString text =
            plan.value().addresses() == 1
                ? tr("The Live Discover ranges hold 1 address.")
                : tr("The Live Discover ranges hold %1 addresses.").arg(number(plan.value().addresses()));
        if (known > 0)
            text += tr(" Devices have %1 of them already; the others are asked.").arg(number(known));
        plan_->setText(text);
    } else {
        plan_->setText(shownText(plan.error().text) +
                       (plan.error().kind == StartRefusal::Kind::NoRanges
                            ? QStringLiteral("\nEnter them under Tools, Live Stat/Discover Option...")
                            : QString()));
    }
    showSums();
}

void CDiscoverNowWindow::showSums() {
    start_->setEnabled(toProbe_ > 0);
    takes_->setText(
        toProbe_ == 0
            ? QString()
            : tr("takes about %1").arg(qText(describeDuration(sweepDuration(toProbe_, pace_->value())))));
}

/// Follows the end of the list, except while somebody has scrolled up to read.
void CDiscoverNowWindow::showProgress(const std::vector<std::size_t>& changed) {
    const QScrollBar* scroll = table_->verticalScrollBar();
    constexpr int slack = 3; // rows by which the table shrinks when a line above it wraps
    const bool follows = scroll->value() >= scroll->maximum() - slack;
    hosts_->update(discoverNow_.found(), changed);
    if (follows)
        table_->scrollToBottom();
    const SweepProgress& progress = discoverNow_.progress();
    status_->setText(statusText(progress));
    const bool naming = progress.phase == SweepPhase::Naming;
    bar_->setRange(0, naming ? 0 : barSteps); // 0 to 0: busy, nobody knows how long
    if (!naming)
        bar_->setValue(static_cast<int>(barSteps - barSteps * std::min(progress.left, whole_) / whole_));
}

void CDiscoverNowWindow::showRunning() {
    const bool running = discoverNow_.running();
    pace_->setEnabled(!running);
    ranges_->setVisible(!running);
    start_->setVisible(!running);
    stop_->setVisible(running);
    close_->setText(running ? tr("Cancel") : tr("Close"));
    start_->setDefault(!running);
    stop_->setDefault(running);
    hint_->setText(running ? tr("Stop and Add keeps the hosts found so far; Cancel adds none of them.")
                           : tr("Who answers becomes a device in the Discovered/Misc window."));
    if (running) {
        whole_ = std::max(discoverNow_.progress().left, std::chrono::milliseconds(1));
        showProgress({});
        return;
    }
    bar_->setRange(0, barSteps);
    const auto& result = discoverNow_.result();
    bar_->setValue(result && result->complete ? barSteps : 0);
    status_->setText(result ? shownText(describeResult(*result)) : QString());
    showPlan();
}

/// "10.0.0.5<TAB>name", a line each.
void CDiscoverNowWindow::copyRows() {
    QModelIndexList rows = table_->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const QModelIndex& row : rows)
        text += row.data().toString() + QLatin1Char('\t') +
                row.siblingAtColumn(CFoundHostsModel::Name).data().toString() + QLatin1Char('\n');
    QApplication::clipboard()->setText(text);
}

} // namespace mirovane
