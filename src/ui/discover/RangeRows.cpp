#include "ui/discover/RangeRows.h"

#include "discover/AddressRanges.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/FaultColours.h"

#include <QHBoxLayout>
#include <QScrollBar>

#include <algorithm>

namespace mirovane {

namespace {

constexpr int rowsInSight = 3;
constexpr int rowGap = 4;

/// Blanks around an address come from copying it out of something else.
std::string typed(const QLineEdit& box) {
    return storedText(box.text().trimmed());
}

QLineEdit* addressBox(const QString& text, QWidget* parent) {
    auto* box = new QLineEdit(text, parent);
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance(u'0') * 17);
    return box;
}

QLabel* note(const char* text, QWidget* parent) {
    auto* label = new QLabel(QLatin1String(text), parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

struct CRangeRows::Row {
    std::optional<RangeText> stored;
    std::unique_ptr<QWidget> widget;
    QLineEdit* from = nullptr;
    QLineEdit* to = nullptr;

    RangeText text() const {
        // A row that nobody touched is what it was, byte for byte.
        const RangeText now{typed(*from), typed(*to)};
        const bool same = stored && shownText(stored->From).trimmed() == from->text().trimmed() &&
                          shownText(stored->To).trimmed() == to->text().trimmed();
        const bool wellFormed = stored && makeRange(stored->From, stored->To);
        return same && wellFormed ? *stored : now;
    }
};

CRangeRows::CRangeRows(QWidget* parent)
    : QGroupBox(tr("Discover device"), parent),
      area_(new QScrollArea(this)),
      list_(new QWidget(area_)),
      layout_(new QVBoxLayout(list_)),
      fault_(new QLabel(this)) {
    auto* outer = new QVBoxLayout(this);
    outer->addWidget(note("Enter the IP Address ranges to discover:", this));
    outer->addWidget(note("(Note: IP ranges must be from a low value to a high value.", this));
    outer->addWidget(note("(Do not enter the first and last IP addresses of your subnet.)", this));
    layout_->setContentsMargins(rowGap, rowGap, rowGap, rowGap);
    layout_->setSpacing(rowGap);
    layout_->addStretch(1);
    area_->setWidgetResizable(true);
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area_->setFocusPolicy(Qt::NoFocus);
    area_->setWidget(list_);
    outer->addWidget(area_, 1);
    fault_->setObjectName(QStringLiteral("rangeFault"));
    fault_->setTextFormat(Qt::PlainText);
    fault_->setMargin(4);
    auto* add = new QPushButton(tr("&Add"), this);
    add->setObjectName(QStringLiteral("addRange"));
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] {
        Row& row = addRow(std::nullopt);
        list_->adjustSize();
        area_->ensureWidgetVisible(row.widget.get(), 0, rowGap);
        row.from->setFocus();
    });
    auto* below = new QHBoxLayout;
    below->addWidget(add);
    below->addWidget(fault_, 1);
    outer->addLayout(below);
    fixHeight();
}

CRangeRows::~CRangeRows() = default;

void CRangeRows::fixHeight() {
    Row& sample = addRow(std::nullopt);
    const int height = sample.widget->sizeHint().height();
    area_->setMinimumHeight(rowsInSight * height + (rowsInSight + 1) * rowGap + 2 * area_->frameWidth());
    area_->setMinimumWidth(list_->sizeHint().width() + area_->verticalScrollBar()->sizeHint().width() + 4);
    rows_.clear();
}

void CRangeRows::setRanges(const std::vector<RangeText>& ranges) {
    rows_.clear();
    deleted_.clear();
    for (const RangeText& range : ranges)
        addRow(range);
}

CRangeRows::Row& CRangeRows::addRow(const std::optional<RangeText>& stored) {
    auto row = std::make_unique<Row>();
    row->stored = stored;
    row->widget = std::make_unique<QWidget>(list_);
    QWidget* widget = row->widget.get();
    row->from = addressBox(stored ? shownText(stored->From) : QString(), widget);
    row->to = addressBox(stored ? shownText(stored->To) : QString(), widget);
    row->from->setObjectName(QStringLiteral("rangeFrom"));
    row->to->setObjectName(QStringLiteral("rangeTo"));
    row->from->setAccessibleName(tr("From"));
    row->to->setAccessibleName(tr("To"));
    auto* remove = new QPushButton(tr("Delete"), widget);
    remove->setObjectName(QStringLiteral("deleteRange"));
    remove->setAutoDefault(false);
    auto* line = new QHBoxLayout(widget);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(new QLabel(tr("From"), widget));
    line->addWidget(row->from, 1);
    line->addWidget(new QLabel(tr("To"), widget));
    line->addWidget(row->to, 1);
    line->addWidget(remove);
    layout_->insertWidget(static_cast<int>(rows_.size()), widget);
    widget->show();
    Row* added = row.get();
    for (QLineEdit* box : {row->from, row->to})
        connect(box, &QLineEdit::textEdited, this, &CRangeRows::clearFault);
    // Queued: the button must not go while it is being clicked.
    connect(
        remove, &QPushButton::clicked, this, [this, added] { deleteRow(*added); }, Qt::QueuedConnection);
    rows_.push_back(std::move(row));
    return *added;
}

void CRangeRows::deleteRow(Row& row) {
    const auto found = std::ranges::find(rows_, &row, [](const auto& held) { return held.get(); });
    if (found == rows_.end())
        return;
    if (row.stored)
        deleted_.push_back(*row.stored);
    const auto place = static_cast<std::size_t>(found - rows_.begin());
    rows_.erase(found);
    clearFault();
    if (!rows_.empty())
        rows_[std::min(place, rows_.size() - 1)]->from->setFocus();
}

std::vector<RangeEdit> CRangeRows::edits() const {
    std::vector<RangeEdit> edits;
    for (const auto& row : rows_)
        edits.push_back({row->stored, row->text()});
    for (const RangeText& range : deleted_)
        edits.push_back({range, std::nullopt});
    return edits;
}

bool CRangeRows::validate() {
    for (const auto& row : rows_) {
        const RangeText text = row->text();
        if (!makeRange(text.From, text.To)) {
            showFault(*row);
            return false;
        }
    }
    clearFault();
    return true;
}

void CRangeRows::showFault(Row& row) {
    showFaultText(*fault_, qText(invalidRangeText));
    area_->ensureWidgetVisible(row.widget.get(), 0, rowGap);
    QLineEdit* box = parseRangeAddress(typed(*row.from)) ? row.to : row.from;
    box->setFocus();
    box->selectAll();
    markFaulty(*box, true);
}

void CRangeRows::clearFault() {
    showFaultText(*fault_, {});
    for (const auto& row : rows_) {
        markFaulty(*row->from, false);
        markFaulty(*row->to, false);
    }
}

} // namespace mirovane
