#include "ui/livestat/CriteriaRowInputs.h"

#include "livestat/steps/PatternCheck.h"
#include "model/records/ActionCatalogue.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/FaultColours.h"

#include <QEvent>
#include <QFontMetrics>

namespace mirovane {

namespace {

constexpr int toDoRow = 11;

void fill(CPickList& list, std::span<const std::string_view> entries) {
    if (list.count() == static_cast<int>(entries.size()))
        return;
    list.clear();
    for (const std::string_view entry : entries)
        list.addItem(qText(entry));
}

/// A stored text that the list does not hold is shown as what it is, not as an entry.
void select(CPickList& list, const std::string& stored) {
    const QString text = shownText(stored);
    list.setPlaceholderText(text);
    list.setCurrentIndex(list.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

int textWidth(const QWidget& widget, QChar c, int count) {
    return widget.fontMetrics().horizontalAdvance(c) * count;
}

} // namespace

CCriteriaRowInputs::CCriteriaRowInputs(int row, QGridLayout& grid, int line, QWidget& window)
    : QObject(&window),
      row_(row),
      window_(window),
      label_(new QLabel(qText(criteriaRowLabel(row)), &window)),
      command_(makeList("Command")),
      argument_(makeBox("Argument", CriteriaColumn::Argument)),
      delimiter_(makeBox("Delimiter", CriteriaColumn::Delimiter)),
      fieldPos_(makeBox("FieldPos", CriteriaColumn::FieldPos)),
      searchFor_(makeBox("SearchFor", CriteriaColumn::SearchFor)),
      condition_(nullptr) {
    makeCheckBox();
    condition_ = makeList("Condition");
    label_->setTextFormat(Qt::PlainText);
    label_->setObjectName(QStringLiteral("row%1Label").arg(row));
    // Bold is wider; the columns must not move when the current row does.
    QFont bold = label_->font();
    bold.setBold(true);
    label_->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(label_->text()) + 4);
    makeLists();
    place(grid, line);
}

void CCriteriaRowInputs::prepare(QWidget& input, const char* name) {
    input.setObjectName(QStringLiteral("row%1%2").arg(row_).arg(QLatin1String(name)));
    input.setAccessibleName(label_->text() + QStringLiteral(": ") + QLatin1String(name));
}

CLeaveBox* CCriteriaRowInputs::makeBox(const char* name, CriteriaColumn column) {
    auto* box = new CLeaveBox(&window_);
    prepare(*box, name);
    connect(
        box, &CLeaveBox::entered, this, [this] { Q_EMIT entered(row_); });
    connect(box, &CLeaveBox::leftChanged, this,
            [this, column](const QString& text) { Q_EMIT valueChanged(row_, column, text); });
    return box;
}

CPickList* CCriteriaRowInputs::makeList(const char* name) {
    auto* list = new CPickList(&window_);
    prepare(*list, name);
    connect(list, &CPickList::entered, this, [this] { Q_EMIT entered(row_); });
    return list;
}

void CCriteriaRowInputs::makeLists() {
    fill(*condition_, conditionsForRow(row_));
    connect(
        command_, &QComboBox::textActivated, this,
        [this](const QString& action) { Q_EMIT actionPicked(row_, action); });
    connect(condition_, &QComboBox::textActivated, this, [this](const QString& condition) {
        Q_EMIT valueChanged(row_, CriteriaColumn::Condition, condition);
    });
    connect(searchFor_, &QLineEdit::textChanged, this, &CCriteriaRowInputs::checkPattern);
}

void CCriteriaRowInputs::makeCheckBox() {
    if (!criteriaDrawFlag(row_))
        return;
    ifMatch_ = new QCheckBox(row_ == toDoRow ? tr("set reminder") : tr("draw line"), &window_);
    prepare(*ifMatch_, "IfMatch");
    connect(ifMatch_, &QCheckBox::clicked, this, [this](bool checked) {
        Q_EMIT entered(row_);
        Q_EMIT valueChanged(row_, CriteriaColumn::IfMatch, QLatin1String(checked ? "T" : "F"));
    });
}

void CCriteriaRowInputs::place(QGridLayout& grid, int line) {
    constexpr int longestAction = 18; // on a small screen the table scrolls, and the action is still whole
    command_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    command_->setMinimumContentsLength(longestAction);
    condition_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    delimiter_->setFixedWidth(textWidth(*delimiter_, u'0', 9));
    fieldPos_->setFixedWidth(textWidth(*fieldPos_, u'0', 7));
    argument_->setMinimumWidth(textWidth(*argument_, u'0', 16));
    searchFor_->setMinimumWidth(textWidth(*searchFor_, u'0', 16));
    grid.addWidget(label_, line, CriteriaGrid::Label);
    grid.addWidget(command_, line, CriteriaGrid::Command);
    grid.addWidget(argument_, line, CriteriaGrid::Argument);
    grid.addWidget(delimiter_, line, CriteriaGrid::Delimiter);
    grid.addWidget(fieldPos_, line, CriteriaGrid::FieldPos);
    grid.addWidget(searchFor_, line, CriteriaGrid::SearchFor);
    if (ifMatch_)
        grid.addWidget(ifMatch_, line, CriteriaGrid::IfMatch);
    grid.addWidget(condition_, line, CriteriaGrid::Condition);
}

void CCriteriaRowInputs::show(const CriteriaRow& values, std::int32_t type) {
    showLists(values, type);
    argument_->setStored(shownText(values.Argument));
    delimiter_->setStored(shownText(values.Delimiter));
    fieldPos_->setStored(values.FieldPos > 0 ? QString::number(values.FieldPos) : QString());
    searchFor_->setStored(shownText(values.SearchFor));
    if (ifMatch_)
        ifMatch_->setChecked(values.IfMatch == 1);
    enableInputs(values.Command, type);
    checkPattern();
}

void CCriteriaRowInputs::showLists(const CriteriaRow& values, std::int32_t type) {
    fill(*command_, actionsForRow(type, row_));
    select(*command_, values.Command);
    select(*condition_, values.Condition);
}

void CCriteriaRowInputs::enableInputs(const std::string& action, std::int32_t type) {
    const ActionInputs& inputs = actionEntry(action).inputs;
    command_->setEnabled(actionChoosable(type, row_));
    argument_->setEnabled(inputs.Argument);
    delimiter_->setEnabled(inputs.Extraction);
    fieldPos_->setEnabled(inputs.Extraction);
    searchFor_->setEnabled(inputs.SearchFor);
    condition_->setEnabled(inputs.Condition);
    if (ifMatch_)
        ifMatch_->setEnabled(inputs.IfMatch);
}

std::string CCriteriaRowInputs::action() const {
    return storedText(command_->currentText());
}

void CCriteriaRowInputs::setCurrent(bool current) {
    QFont font = label_->font();
    font.setBold(current);
    label_->setFont(font);
}

void CCriteriaRowInputs::commit() {
    for (CLeaveBox* box : boxes())
        box->commit();
}

void CCriteriaRowInputs::revert() {
    for (CLeaveBox* box : boxes())
        box->revert();
}

QString CCriteriaRowInputs::problem() const {
    if (patternProblem_.isEmpty() || !searchFor_->isEnabled())
        return {};
    return tr("%1, Search for: %2").arg(label_->text(), patternProblem_);
}

void CCriteriaRowInputs::checkPattern() {
    patternProblem_ = shownText(patternProblem(storedText(searchFor_->text())));
    markFaulty(*searchFor_, !patternProblem_.isEmpty() && searchFor_->isEnabled());
    searchFor_->setToolTip(problem());
    Q_EMIT problemChanged();
}

} // namespace mirovane
