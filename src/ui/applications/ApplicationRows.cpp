#include "ui/applications/ApplicationRows.h"

#include "ui/widgets/DialogText.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace mirovane {

namespace {

constexpr int nameColumn = 1;
constexpr int commandColumn = 2;
constexpr int barColumn = 4;

QLineEdit* makeBox(const QString& name, const QString& spoken, int width) {
    auto* box = new QLineEdit;
    box->setObjectName(name);
    box->setAccessibleName(spoken);
    box->setMinimumWidth(width);
    return box;
}

} // namespace

// ---- one row

std::array<QWidget*, 4> CApplicationRows::Row::controls() const {
    return {onMenu, name, command, remove};
}

void CApplicationRows::Row::setVisible(bool visible) {
    for (QWidget* control : controls())
        control->setVisible(visible);
}

bool CApplicationRows::Row::edited() const {
    return onMenu->isChecked() != shown.onMenu || name->text() != shownName ||
           command->text() != shownCommand;
}

/// A box that nobody changed gives the bytes back that were shown in it.
ApplicationValues CApplicationRows::Row::values() const {
    return {onMenu->isChecked(), name->text() == shownName ? shown.name : storedText(name->text()),
            command->text() == shownCommand ? shown.command : storedText(command->text())};
}

// ---- set-up

CApplicationRows::CApplicationRows(CStation& station, std::function<bool(const std::string& name)> mayDelete,
                                   QWidget* parent)
    : QWidget(parent),
      station_(station),
      mayDelete_(std::move(mayDelete)),
      bar_(new QScrollBar(Qt::Vertical)) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    makeHeader(*grid);
    for (int row = 0; row < rowCount; ++row)
        makeRow(*grid, row);
    grid->setColumnStretch(nameColumn, 2);
    grid->setColumnStretch(commandColumn, 5);
    grid->addWidget(bar_, 1, barColumn, rowCount, 1);
    bar_->setObjectName(QStringLiteral("applicationScroll"));
    bar_->setPageStep(rowCount);
    connect(bar_, &QScrollBar::valueChanged, this, &CApplicationRows::scrollTo);
    refreshSoon_.setSingleShot(true);
    refreshSoon_.setInterval(0);
    connect(&refreshSoon_, &QTimer::timeout, this, &CApplicationRows::refresh);
    station_.document().addObserver(*this);
    refresh();
}

CApplicationRows::~CApplicationRows() {
    station_.document().removeObserver(*this);
}

void CApplicationRows::makeHeader(QGridLayout& grid) {
    grid.addWidget(new QLabel(tr("On Menu")), 0, 0);
    grid.addWidget(new QLabel(tr("Name (shows up on the menu)")), 0, nameColumn);
    grid.addWidget(new QLabel(tr("Program/Command to execute")), 0, commandColumn);
}

void CApplicationRows::makeRow(QGridLayout& grid, int number) {
    constexpr int nameWidth = 110;
    constexpr int commandWidth = 180;
    Row& row = rows_[static_cast<std::size_t>(number)];
    row.onMenu = new QCheckBox;
    row.onMenu->setObjectName(QStringLiteral("applicationOnMenu%1").arg(number));
    row.onMenu->setAccessibleName(tr("On Menu"));
    row.name = makeBox(QStringLiteral("applicationName%1").arg(number), tr("Name"), nameWidth);
    row.command = makeBox(QStringLiteral("applicationCommand%1").arg(number),
                          tr("Program/Command to execute"), commandWidth);
    row.remove = new QPushButton(tr("Delete"));
    row.remove->setObjectName(QStringLiteral("applicationDelete%1").arg(number));
    row.remove->setAutoDefault(false);
    int column = 0;
    for (QWidget* control : row.controls()) {
        QSizePolicy policy = control->sizePolicy();
        policy.setRetainSizeWhenHidden(true); // or the window would jump with the number of entries
        control->setSizePolicy(policy);
        control->installEventFilter(this);
        grid.addWidget(control, number + 1, column, column == 0 ? Qt::AlignCenter : Qt::Alignment());
        ++column;
    }
    connect(row.onMenu, &QCheckBox::clicked, this, &CApplicationRows::store);
    connect(row.name, &QLineEdit::editingFinished, this, &CApplicationRows::store);
    connect(row.command, &QLineEdit::editingFinished, this, &CApplicationRows::store);
    connect(row.command, &QLineEdit::textEdited, this, &CApplicationRows::commandShown);
    connect(row.remove, &QPushButton::clicked, this, [this, number] { removeEntry(number); });
}

// ---- what the user does

void CApplicationRows::addEntry() {
    store();
    bool added = false;
    edit("Add an application", [&](CMirovaneDoc& document) { added = addApplication(document) != nullptr; });
    if (!added)
        return;
    refresh();
    const int last = static_cast<int>(entries_.size()) - 1;
    bar_->setValue(bar_->maximum());
    focus(last - first_, nameColumn);
    Q_EMIT stored();
}

void CApplicationRows::store() {
    if (refreshSoon_.isActive())
        refresh();
    const auto records = applicationRecords(station_.document());
    bool any = false;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        Row& row = rows_[i];
        const std::size_t place = static_cast<std::size_t>(first_) + i;
        if (place >= records.size() || !row.edited())
            continue;
        const ApplicationValues values = row.values();
        edit("Change an application",
             [&](CMirovaneDoc& document) { changeApplication(document, *records[place], values); });
        entries_[place] = values;
        fillRow(static_cast<int>(i));
        any = true;
    }
    if (any)
        Q_EMIT stored();
}

void CApplicationRows::removeEntry(int number) {
    const Row& row = rows_[static_cast<std::size_t>(number)];
    if (refreshSoon_.isActive()) { // another station may have changed the rows under the pointer
        const ApplicationValues meant = row.shown;
        refresh();
        if (row.shown != meant)
            return;
    }
    store();
    const std::size_t place = placeOf(number);
    if (place >= entries_.size())
        return;
    const ApplicationValues meant = entries_[place];
    if (!mayDelete_(meant.name.empty() ? meant.command : meant.name))
        return focus(number, nameColumn);
    const auto records = applicationRecords(station_.document()); // as they are after the question
    if (place >= records.size() || applicationFromRecord(*records[place]) != meant)
        return;
    edit("Delete an application", [&](CMirovaneDoc& document) { document.remove(*records[place]); });
    refresh();
    if (entries_.empty())
        Q_EMIT emptied();
    focus(std::min(number, static_cast<int>(entries_.size()) - first_ - 1), nameColumn);
    Q_EMIT stored();
}

void CApplicationRows::moveEntry(int step) {
    for (int number = 0; number < rowCount; ++number) {
        const auto controls = rows_[static_cast<std::size_t>(number)].controls();
        const auto* const focused = std::ranges::find_if(controls, &QWidget::hasFocus);
        if (focused == controls.end())
            continue;
        store();
        const int from = first_ + number;
        const int to = from + step;
        if (to < 0 || to >= static_cast<int>(entries_.size()))
            return;
        const int column = static_cast<int>(focused - controls.begin());
        edit("Move an application", [from, to](CMirovaneDoc& document) {
            moveApplication(document, static_cast<std::size_t>(from), static_cast<std::size_t>(to));
        });
        refresh();
        if (to < first_ || to >= first_ + rowCount)
            bar_->setValue(first_ + step);
        focus(to - first_, column);
        Q_EMIT stored();
        return;
    }
}

void CApplicationRows::scrollTo(int first) {
    if (first == first_)
        return;
    store();
    const QSignalBlocker quiet(bar_); // storing may have found fewer entries
    bar_->setValue(first);
    first_ = bar_->value();
    fillRows();
    for (const Row& row : rows_)
        if (row.command->hasFocus())
            Q_EMIT commandShown(row.command->text());
}

bool CApplicationRows::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool alt = static_cast<QKeyEvent*>(event)->modifiers().testFlag(Qt::AltModifier);
        if (alt && (key == Qt::Key_Up || key == Qt::Key_Down)) {
            moveEntry(key == Qt::Key_Up ? -1 : 1);
            return true;
        }
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            moveFocus(qobject_cast<QWidget*>(watched), key == Qt::Key_Up ? -1 : 1);
            return true;
        }
    }
    if (event->type() == QEvent::FocusIn) {
        for (const Row& row : rows_) {
            const auto controls = row.controls();
            if (std::ranges::find(controls, watched) != controls.end())
                Q_EMIT commandShown(row.command->text());
        }
    }
    return QWidget::eventFilter(watched, event);
}

void CApplicationRows::wheelEvent(QWheelEvent* event) {
    QCoreApplication::sendEvent(bar_, event);
}

void CApplicationRows::moveFocus(const QWidget* from, int step) {
    for (int row = 0; row < rowCount; ++row) {
        const auto controls = rows_[static_cast<std::size_t>(row)].controls();
        const auto* const found = std::ranges::find(controls, from);
        if (found == controls.end())
            continue;
        const int target = row + step;
        if (target < 0 || target >= rowCount)
            bar_->setValue(first_ + step);
        focus(std::clamp(target, 0, rowCount - 1), static_cast<int>(found - controls.begin()));
        return;
    }
}

void CApplicationRows::focus(int row, int column) {
    if (row < 0 || row >= rowCount)
        return;
    QWidget* control = rows_[static_cast<std::size_t>(row)].controls()[static_cast<std::size_t>(column)];
    if (control->isVisibleTo(this))
        control->setFocus(Qt::OtherFocusReason);
}

/// The window saves a little later, once for all that is typed in one go.
void CApplicationRows::edit(const char* name, const std::function<void(CMirovaneDoc&)>& change) {
    station_.edit({EditRequest::Kind::Settings, name, {}, EditRequest::Saving::Later}, change);
}

// ---- what the document does

void CApplicationRows::changed(const CHardware& record) {
    if (record.Type == SpecialType::ApplicationRecord)
        refreshSoon_.start();
}

void CApplicationRows::refresh() {
    refreshSoon_.stop();
    const auto edit = openEdit();
    const std::size_t before = entries_.size();
    entries_.clear();
    for (const CHardware* record : applicationRecords(station_.document()))
        entries_.push_back(applicationFromRecord(*record));
    int place = -1;
    if (edit)
        place = placeFor(*edit);
    if (edit && place < 0 && before == entries_.size())
        place = first_ + edit->row; // changed by another station: what is typed here comes later and wins
    {
        const QSignalBlocker quiet(bar_);
        bar_->setRange(0, std::max(static_cast<int>(entries_.size()) - rowCount, 0));
        const bool hidden = place >= 0 && (place < first_ || place >= first_ + rowCount);
        bar_->setValue(hidden ? place - edit->row : first_);
        first_ = bar_->value();
    }
    bar_->setEnabled(bar_->maximum() > 0);
    fillRows();
    if (edit)
        resume(*edit, place);
}

std::optional<CApplicationRows::Edit> CApplicationRows::openEdit() const {
    for (int number = 0; number < rowCount; ++number) {
        const Row& row = rows_[static_cast<std::size_t>(number)];
        const bool used = placeOf(number) < entries_.size();
        if (!used || !row.edited())
            continue;
        const auto controls = row.controls();
        const auto* const focused = std::ranges::find_if(controls, &QWidget::hasFocus);
        const int column =
            focused == controls.end() ? commandColumn : static_cast<int>(focused - controls.begin());
        return Edit{number, column, row.shown, row.values()};
    }
    return std::nullopt;
}

/// Where the entry is now; -1 when it has gone or changed.
int CApplicationRows::placeFor(const Edit& edit) const {
    const std::size_t old = placeOf(edit.row);
    if (old < entries_.size() && entries_[old] == edit.shown)
        return first_ + edit.row;
    const auto found = std::ranges::find(entries_, edit.shown);
    return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

/// Puts what was typed back into the boxes of its entry, or into a new entry.
void CApplicationRows::resume(const Edit& edit, int place) {
    if (place < 0) {
        addEntry();
        place = static_cast<int>(entries_.size()) - 1;
    }
    const int number = place - first_;
    if (number < 0 || number >= rowCount)
        return;
    Row& row = rows_[static_cast<std::size_t>(number)];
    const auto restore = [](QLineEdit& box, const std::string& before, const std::string& typed) {
        if (before != typed && box.text() != shownText(typed))
            box.setText(shownText(typed));
    };
    restore(*row.name, edit.shown.name, edit.values.name);
    restore(*row.command, edit.shown.command, edit.values.command);
    if (edit.shown.onMenu != edit.values.onMenu)
        row.onMenu->setChecked(edit.values.onMenu);
    if (number != edit.row)
        focus(number, edit.column);
}

void CApplicationRows::fillRows() {
    for (int number = 0; number < rowCount; ++number)
        fillRow(number);
}

void CApplicationRows::fillRow(int number) {
    Row& row = rows_[static_cast<std::size_t>(number)];
    const std::size_t place = placeOf(number);
    row.setVisible(place < entries_.size());
    const ApplicationValues values = place < entries_.size() ? entries_[place] : ApplicationValues{};
    if (row.shown == values && row.edited())
        return; // being typed
    const auto show = [](QLineEdit& box, const std::string& bytes) {
        if (box.text() != shownText(bytes))
            box.setText(shownText(bytes));
        return box.text();
    };
    row.shown = values;
    row.onMenu->setChecked(values.onMenu);
    row.shownName = show(*row.name, values.name);
    row.shownCommand = show(*row.command, values.command);
    if (!row.command->hasFocus())
        row.command->setCursorPosition(0); // the program is what one wants to see of a long command
}

} // namespace mirovane
