#include "ui/livestat/CriteriaExamples.h"

#include "ui/livestat/CriteriaRowInputs.h"
#include "ui/widgets/DialogText.h"

namespace mirovane {

namespace {

constexpr std::array columns = {CriteriaGrid::Command,  CriteriaGrid::Argument,  CriteriaGrid::Delimiter,
                                CriteriaGrid::FieldPos, CriteriaGrid::SearchFor, CriteriaGrid::Condition};

constexpr std::array cellNames = {"Command", "Argument", "Delimiter", "FieldPos", "SearchFor", "Condition"};

/// Looks like a cell of the table above but not like something to type into.
QLineEdit* makeCell(const QString& name, QWidget& window) {
    auto* cell = new QLineEdit(&window);
    cell->setObjectName(name);
    cell->setReadOnly(true);
    cell->setFocusPolicy(Qt::ClickFocus);
    cell->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // the table above decides the widths
    QPalette palette = cell->palette();
    palette.setBrush(QPalette::Base, window.palette().brush(QPalette::Window));
    palette.setBrush(QPalette::Text, window.palette().brush(QPalette::WindowText));
    cell->setPalette(palette);
    return cell;
}

} // namespace

CCriteriaExamples::CCriteriaExamples(QGridLayout& grid, int line, QWidget& window)
    : QObject(&window),
      test_(makeRow(grid, line, tr("Example Live Stat test"), QStringLiteral("exampleTest"), window)),
      field_(makeRow(grid, line + 2, tr("Example field rule"), QStringLiteral("exampleField"), window)) {}

CCriteriaExamples::Row CCriteriaExamples::makeRow(QGridLayout& grid, int line, const QString& title,
                                                  const QString& name, QWidget& window) {
    Row row;
    grid.addWidget(new QLabel(title, &window), line, CriteriaGrid::Label);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        row.cells[i] = makeCell(name + QLatin1String(cellNames[i]), window);
        row.cells[i]->setAccessibleName(title + QStringLiteral(": ") + QLatin1String(cellNames[i]));
        grid.addWidget(row.cells[i], line, columns[i]);
    }
    row.description = new QLabel(&window);
    row.description->setObjectName(name + QStringLiteral("Description"));
    row.description->setTextFormat(Qt::PlainText);
    row.description->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row.description->setWordWrap(true);
    grid.addWidget(row.description, line + 1, CriteriaGrid::Command, 1, CriteriaGrid::Count - 1);
    return row;
}

void CCriteriaExamples::show(const ActionEntry& action) {
    fill(test_, action.name, action.testExample);
    fill(field_, action.name, action.fieldExample);
}

void CCriteriaExamples::fill(Row& row, std::string_view action, const ActionExample& example) {
    const std::array<std::string_view, 6> texts = {example.empty() ? std::string_view() : action,
                                                   example.Argument,
                                                   example.Delimiter,
                                                   example.FieldPos,
                                                   example.SearchFor,
                                                   example.Condition};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        row.cells[i]->setText(qText(texts[i]));
        row.cells[i]->setCursorPosition(0);
    }
    row.description->setText(qText(example.description));
}

} // namespace mirovane
