#include "ui/livestat/CriteriaWindow.h"

#include "livestat/steps/DefaultRules.h"
#include "model/CriteriaEdit.h"
#include "model/records/ActionCatalogue.h"
#include "ui/livestat/DeviceTypeList.h"
#include "ui/livestat/RowTrialWindow.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/FaultColours.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WindowPlacement.h"

#include <QAbstractItemView>
#include <QFrame>
#include <QHideEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

namespace mirovane {

namespace {

/// Lines of the grid.
enum Line {
    SyntaxLine,
    HeaderLine,
    TestLine,
    RuleHeaderLine,
    RuleLine,
    ExampleRule = RuleLine + 11,
    ExampleLine
};

constexpr QSize wantedSize(1180, 700);

QLabel* header(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    return label;
}

QFrame* separator(QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QLabel* helpLine(const char* text, QWidget* parent) {
    auto* label = new QLabel(QLatin1String(text), parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

CCriteriaWindow::CCriteriaWindow(CStation& station, const Clock& clock, StationDialogs& dialogs,
                                 QWidget* parent)
    : QDialog(parent),
      station_(station),
      clock_(clock),
      dialogs_(dialogs),
      device_(new QComboBox(this)),
      type_(DeviceType::Computer),
      datafile_(station.datafile().path()) {
    setObjectName(QStringLiteral("criteriaWindow"));
    setWindowTitle(tr("Live Stat Information Retrieval Criteria"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(makeDeviceLine());
    layout->addWidget(makeTable(), 1);
    layout->addWidget(helpLine("To substitute environment field variables, use the following (note: not case "
                               "sensitive):",
                               this));
    layout->addWidget(
        helpLine("$mvN = Name; $mvI = IP Address; $mvU = Username; $mvM = MAC Addr; $mvJ = Jack; "
                 "$mvC = Comment; $mv/ = / Text; $mv\\ = \\ Text; $mv- = - Text; $mv| = | Text; "
                 "$mvT = Todo",
                 this));
    layout->addLayout(makeButtons());
    showRows();
    fitToScreen(*this, wantedSize);
    station_.document().addObserver(*this);
}

/// Whoever still types while the program ends leaves the box here, not when there is nobody left to store.
CCriteriaWindow::~CCriteriaWindow() {
    hide();
    station_.document().removeObserver(*this);
}

QLayout* CCriteriaWindow::makeDeviceLine() {
    auto* line = new QHBoxLayout;
    auto* label = new QLabel(tr("&Device:"), this);
    label->setBuddy(device_);
    device_->setObjectName(QStringLiteral("device"));
    device_->setAccessibleName(tr("Device"));
    for (const std::string& entry : deviceTypeEntries())
        device_->addItem(qText(entry));
    device_->setCurrentIndex(type_ - DeviceType::first);
    device_->setMaxVisibleItems(device_->count());
    device_->view()->setTextElideMode(Qt::ElideNone);
    device_->setFixedWidth(device_->fontMetrics().horizontalAdvance(u'M') * 16);
    connect(device_, &QComboBox::currentIndexChanged, this, &CCriteriaWindow::typePicked);
    line->addWidget(label);
    line->addWidget(device_);
    line->addStretch(1);
    return line;
}

/// In a scroll area: a small screen must not hide the last rows.
QWidget* CCriteriaWindow::makeTable() {
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // it would be a stop of the Tab key where nothing can be done
    area->setWidgetResizable(true);
    auto* table = new QWidget(area);
    auto* grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(CriteriaGrid::Argument, 5);
    grid->setColumnStretch(CriteriaGrid::SearchFor, 4);
    makeHeaders(*grid);
    makeRows(*grid);
    grid->addWidget(separator(table), ExampleRule, 0, 1, CriteriaGrid::Count);
    examples_ = new CCriteriaExamples(*grid, ExampleLine, *table);
    grid->setRowStretch(ExampleLine + CCriteriaExamples::lineCount, 1);
    area->setWidget(table);
    return area;
}

void CCriteriaWindow::makeHeaders(QGridLayout& grid) {
    QWidget* table = grid.parentWidget();
    syntax_ = header(QString(), table);
    syntax_->setObjectName(QStringLiteral("argumentSyntax"));
    syntax_->setWordWrap(false);
    syntax_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    syntax_->setMinimumHeight(syntax_->fontMetrics().height());
    grid.addWidget(syntax_, SyntaxLine, CriteriaGrid::Argument, 1, 3);
    const std::pair<CriteriaGrid::Column, QString> headers[] = {
        {CriteriaGrid::Command, tr("Command")},
        {CriteriaGrid::Argument, tr("Argument")},
        {CriteriaGrid::Delimiter, tr("Delimiter")},
        {CriteriaGrid::FieldPos, tr("Field Pos")},
        {CriteriaGrid::SearchFor, tr("Search for (not case sensitive - use Perl 5 reglr expr syntax)")},
        {CriteriaGrid::Condition, tr("Returns Match =")}};
    for (const auto& [column, text] : headers)
        grid.addWidget(header(text, table), HeaderLine, column);
    auto* condition = header(tr("execute command if"), table);
    condition->setWordWrap(false);
    grid.addWidget(condition, RuleHeaderLine, CriteriaGrid::Condition);
}

void CCriteriaWindow::makeRows(QGridLayout& grid) {
    for (int row = 0; row < criteriaRowCount; ++row) {
        const int line = row == 0 ? static_cast<int>(TestLine) : RuleLine + row - 1;
        auto* inputs = new CCriteriaRowInputs(row, grid, line, *grid.parentWidget());
        rows_[static_cast<std::size_t>(row)] = inputs;
        connect(inputs, &CCriteriaRowInputs::entered, this, &CCriteriaWindow::enterRow);
        connect(inputs, &CCriteriaRowInputs::actionPicked, this, &CCriteriaWindow::chooseAction);
        connect(inputs, &CCriteriaRowInputs::valueChanged, this, &CCriteriaWindow::store);
        connect(inputs, &CCriteriaRowInputs::problemChanged, this, &CCriteriaWindow::showNotice);
    }
}

QLayout* CCriteriaWindow::makeButtons() {
    auto* line = new QHBoxLayout;
    auto* test = new QPushButton(tr("&Test..."), this);
    auto* resetButton = new QPushButton(tr("&Reset"), this);
    auto* close = new QPushButton(tr("&Close"), this);
    test->setObjectName(QStringLiteral("test"));
    test->setToolTip(tr("Try the current row on a device, without writing anything"));
    resetButton->setObjectName(QStringLiteral("reset"));
    resetButton->setToolTip(tr("Give every device type its default criteria"));
    close->setObjectName(QStringLiteral("close"));
    for (QPushButton* button : {test, resetButton, close})
        button->setAutoDefault(false); // Return belongs to the text boxes
    notice_ = new QLabel(this);
    notice_->setObjectName(QStringLiteral("notice"));
    notice_->setTextFormat(Qt::PlainText);
    notice_->setMinimumWidth(1);
    notice_->setMargin(4);
    connect(test, &QPushButton::clicked, this, &CCriteriaWindow::openTrial);
    connect(resetButton, &QPushButton::clicked, this, &CCriteriaWindow::reset);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    line->addWidget(notice_, 1);
    line->addWidget(test);
    line->addWidget(resetButton);
    line->addWidget(close);
    return line;
}

// ---- showing

/// The examples stay: who goes from type to type mostly gives each of them the same rule.
void CCriteriaWindow::typePicked() {
    storeTyping(); // what is being typed belongs to the type that was shown
    type_ = typeOfEntry(storedText(device_->currentText()));
    if (isVisible())
        station_.showCriteriaOf(type_);
    showRows();
}

void CCriteriaWindow::showEvent(QShowEvent* event) {
    station_.showCriteriaOf(type_);
    QDialog::showEvent(event);
}

/// The rules count from here on; not while the window is only minimized.
void CCriteriaWindow::hideEvent(QHideEvent* event) {
    if (!event->spontaneous())
        station_.showCriteriaOf(std::nullopt);
    QDialog::hideEvent(event);
}

void CCriteriaWindow::showRows() {
    for (int row = 0; row < criteriaRowCount; ++row)
        showRow(row);
    showNotice();
}

void CCriteriaWindow::showRow(int row) {
    const CHardware* record = station_.document().criteria(type_, row);
    CHardware missing; // an old or damaged file; the first edit makes the record
    missing.Type = criteriaRecordType(type_, row);
    applyCriteriaDefaults(missing);
    rows_[static_cast<std::size_t>(row)]->show(criteriaFromRecord(record ? *record : missing), type_);
}

void CCriteriaWindow::showNotice() {
    QString problem;
    for (const CCriteriaRowInputs* row : rows_)
        if (row && problem.isEmpty())
            problem = row->problem();
    showFaultText(*notice_, problem);
}

void CCriteriaWindow::enterRow(int row) {
    rows_[static_cast<std::size_t>(currentRow_)]->setCurrent(false);
    currentRow_ = row;
    entered_ = true;
    CCriteriaRowInputs& inputs = *rows_[static_cast<std::size_t>(row)];
    inputs.setCurrent(true);
    showAction(actionEntry(inputs.action()));
}

void CCriteriaWindow::showAction(const ActionEntry& action) {
    syntax_->setText(qText(action.argumentSyntax));
    examples_->show(action);
}

void CCriteriaWindow::recordAdded(const CHardware& record) {
    if (isCriteriaRecordType(record.Type))
        scheduleShow();
}

void CCriteriaWindow::recordChanged(const CHardware&, const CHardware& after) {
    if (isCriteriaRecordType(after.Type))
        scheduleShow();
}

/// Read again after another station's save, or another datafile. What is being typed was not meant for that.
void CCriteriaWindow::documentReplaced() {
    if (station_.datafile().path() != datafile_) {
        for (CCriteriaRowInputs* row : rows_)
            row->revert();
        datafile_ = station_.datafile().path();
    }
    scheduleShow();
}

/// Not at once: an input that is switched off loses the focus and stores its text, which must not happen
/// while the document still tells others what changed.
void CCriteriaWindow::scheduleShow() {
    if (showPending_)
        return;
    showPending_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            showPending_ = false;
            showRows();
            if (entered_) // another station may have chosen another action for the row
                enterRow(currentRow_);
        },
        Qt::QueuedConnection);
}

// ---- storing

void CCriteriaWindow::chooseAction(int row, const QString& action) {
    edit([&](CMirovaneDoc& document) { mirovane::chooseAction(document, type_, row, storedText(action)); });
    showRow(row);
    enterRow(row);
}

void CCriteriaWindow::store(int row, CriteriaColumn column, const QString& value) {
    edit([&](CMirovaneDoc& document) { setCriteria(document, type_, row, column, storedText(value)); });
    showRow(row);
}

/// An hour of rules must not wait in memory for the window to close.
void CCriteriaWindow::edit(const std::function<void(CMirovaneDoc&)>& change) {
    edited_ = true;
    const std::string name = "Change criteria of " + std::string(typeName(type_));
    station_.edit({EditRequest::Kind::Settings, name, {}, EditRequest::Saving::Later}, change);
}

void CCriteriaWindow::reset() {
    storeTyping(); // Alt+R does not leave the text box, which would write its rule over the defaults later
    const std::size_t count = devicesWrittenByDefaults(station_.document());
    if (!dialogs_.ask(
            {Question::Kind::ResetCriteria,
             "Are you sure you want to reset all the Devices' Criteria settings?\n\nWith the default "
             "criteria Live Stat may write the IP Address or Username of " +
                 std::to_string(count) + (count == 1 ? " device." : " devices.")}))
        return;
    edit(resetCriteria);
    showRows();
    enterRow(currentRow_);
}

void CCriteriaWindow::openTrial() {
    storeTyping(); // Alt+T does not leave the text box
    auto* trial = new CRowTrialWindow(station_, clock_, type_, currentRow_, this);
    trial->setAttribute(Qt::WA_DeleteOnClose);
    trial->open();
}

void CCriteriaWindow::storeTyping() {
    for (CCriteriaRowInputs* row : rows_)
        row->commit();
}

void CCriteriaWindow::done(int result) {
    storeTyping();
    SaveReport report = station_.showCriteriaOf(std::nullopt);
    if (std::exchange(edited_, false) && report.outcome == SaveReport::Outcome::Deferred)
        report = station_.saveDatafile();
    if (report.failed())
        dialogs_.fail(saveFailureText(*report.error));
    QDialog::done(result);
}

} // namespace mirovane
