#pragma once

#include "discover/RangeEdits.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <memory>
#include <vector>

namespace mirovane {

/// "Discover device": the address ranges of the site, one row each, three of them in sight. Keeps what is
/// typed to itself until it is asked for. Main thread.
class CRangeRows : public QGroupBox {
    Q_OBJECT

public:
    explicit CRangeRows(QWidget* parent = nullptr);
    ~CRangeRows() override;

    /// Replaces the rows.
    void setRanges(const std::vector<RangeText>& ranges);

    /// What became of the rows since setRanges().
    std::vector<RangeEdit> edits() const;

    /// False when a row is not a range from a low address to a high one: the message is shown, the row
    /// brought into sight and the cursor put where the fault is.
    bool validate();

private:
    struct Row;

    Row& addRow(const std::optional<RangeText>& stored);
    void deleteRow(Row& row);
    void showFault(Row& row);
    void clearFault();
    void fixHeight();

    std::vector<std::unique_ptr<Row>> rows_;
    std::vector<RangeText> deleted_;
    QScrollArea* area_;
    QWidget* list_;
    QVBoxLayout* layout_;
    QLabel* fault_;
};

} // namespace mirovane
