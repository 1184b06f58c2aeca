#include "ui/list/ListColumnWidths.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds settleTime{200};
constexpr std::int32_t notSet = 0;
constexpr std::int32_t widest = 5000;
constexpr int widestAtFirst = 260;

std::string settingName(int column) {
    return "ListViewWidth" + std::to_string(column);
}

int firstWidth(int column) {
    return listColumns()[static_cast<std::size_t>(column)].width;
}

} // namespace

CListColumnWidths::CListColumnWidths(QHeaderView& titles, CSettings& settings)
    : QObject(&titles), titles_(titles), settings_(settings) {
    delay_.setSingleShot(true);
    connect(&delay_, &QTimer::timeout, this, &CListColumnWidths::write);
    for (int column = 0; column < listColumnCount; ++column) {
        began_[static_cast<std::size_t>(column)] = firstWidth(column);
        const std::int32_t kept = settings_.read(settingName(column), notSet);
        titles_.resizeSection(column, kept > 0 ? std::min(kept, widest) : firstWidth(column));
    }
    connect(&titles_, &QHeaderView::sectionResized, this, [this] { delay_.start(settleTime); });
}

void CListColumnWidths::fit(QTableView& table) {
    for (int column = 0; column < listColumnCount; ++column) {
        int& began = began_[static_cast<std::size_t>(column)];
        if (titles_.sectionSize(column) != began)
            continue;
        table.resizeColumnToContents(column);
        began = std::clamp(titles_.sectionSize(column), firstWidth(column),
                           std::max(firstWidth(column), widestAtFirst));
        titles_.resizeSection(column, began);
    }
}

void CListColumnWidths::makeRoomFor(int column, const QString& text) {
    constexpr int margins = 10;
    const int wanted = titles_.fontMetrics().horizontalAdvance(text) + margins;
    if (titles_.sectionSize(column) >= firstWidth(column) && wanted > titles_.sectionSize(column))
        titles_.resizeSection(column, wanted);
}

void CListColumnWidths::reset(QTableView& table) {
    for (int column = 0; column < listColumnCount; ++column)
        titles_.resizeSection(column, began_[static_cast<std::size_t>(column)]);
    fit(table);
}

void CListColumnWidths::flush() {
    if (delay_.isActive()) {
        delay_.stop();
        write();
    }
}

/// A column that has the width it began with is not remembered, so that a better beginning reaches it.
void CListColumnWidths::write() {
    for (int column = 0; column < listColumnCount; ++column) {
        const int width = titles_.sectionSize(column);
        const std::int32_t value = width == began_[static_cast<std::size_t>(column)] ? notSet : width;
        if (settings_.read(settingName(column), notSet) != value)
            settings_.write(settingName(column), value);
    }
}

} // namespace mirovane
