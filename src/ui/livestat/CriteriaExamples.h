#pragma once

#include "model/records/ActionCatalogue.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QObject>

#include <array>

namespace mirovane {

/// What the criteria window tells about the action of the current row: the syntax of its argument, and how a
/// row with it may look, as Live Stat test and as field rule. To be read and copied; nothing of it is stored.
class CCriteriaExamples : public QObject {
    Q_OBJECT

public:
    /// Lines of the grid that it takes below `line`.
    static constexpr int lineCount = 4;

    CCriteriaExamples(QGridLayout& grid, int line, QWidget& window);

    void show(const ActionEntry& action);

private:
    /// Action, Argument, Delimiter, Field Pos, Search for, Condition.
    struct Row {
        std::array<QLineEdit*, 6> cells = {};
        QLabel* description = nullptr;
    };

    Row makeRow(QGridLayout& grid, int line, const QString& title, const QString& name, QWidget& window);
    static void fill(Row& row, std::string_view action, const ActionExample& example);

    Row test_;
    Row field_;
};

} // namespace mirovane
