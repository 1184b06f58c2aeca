#pragma once

#include "model/records/Criteria.h"
#include "ui/widgets/LeaveBox.h"
#include "ui/widgets/PickList.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QObject>

#include <array>

namespace mirovane {

/// Columns of the criteria window's grid.
namespace CriteriaGrid {
enum Column { Label, Command, Argument, Delimiter, FieldPos, SearchFor, IfMatch, Condition, Count };
}

/// The inputs of one criteria row: one line of the criteria window. Shows what it is given and tells what the
/// user did; stores nothing. Main thread; lives as long as the window.
class CCriteriaRowInputs : public QObject {
    Q_OBJECT

public:
    CCriteriaRowInputs(int row, QGridLayout& grid, int line, QWidget& window);

    int row() const { return row_; }

    /// What is stored. Text that is being typed stays. Also enables what means something for the action.
    void show(const CriteriaRow& values, std::int32_t type);

    /// The action that is shown as chosen; empty when the datafile names one that this row does not offer.
    std::string action() const;

    void setCurrent(bool current);

    /// Whatever is being typed counts now, or does not count at all.
    void commit();
    void revert();

    /// The message about the search text, if it is one that matters and cannot be searched for.
    QString problem() const;

Q_SIGNALS:
    void entered(int row);
    void actionPicked(int row, const QString& action);
    void valueChanged(int row, CriteriaColumn column, const QString& value);

    /// problem() may be another one.
    void problemChanged();

private:
    CLeaveBox* makeBox(const char* name, CriteriaColumn column);
    CPickList* makeList(const char* name);
    void prepare(QWidget& input, const char* name);
    void makeLists();
    void makeCheckBox();
    void place(QGridLayout& grid, int line);
    void showLists(const CriteriaRow& values, std::int32_t type);
    void enableInputs(const std::string& action, std::int32_t type);
    void checkPattern();
    std::array<CLeaveBox*, 4> boxes() const { return {argument_, delimiter_, fieldPos_, searchFor_}; }

    const int row_;
    QWidget& window_;
    QLabel* label_;
    CPickList* command_;
    CLeaveBox* argument_;
    CLeaveBox* delimiter_;
    CLeaveBox* fieldPos_;
    CLeaveBox* searchFor_;
    QCheckBox* ifMatch_ = nullptr; ///< rows 7 to 11
    CPickList* condition_;
    QString patternProblem_;
};

} // namespace mirovane
