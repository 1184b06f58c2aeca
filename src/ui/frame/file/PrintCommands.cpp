#include "ui/frame/file/PrintCommands.h"

#include "model/records/Text.h"
#include "ui/floor/FloorPrint.h"

#include <QCoreApplication>
#include <QPrinter>

#include <algorithm>

namespace mirovane {

namespace {

/// What the dialog chose, counted from 0; a range beyond the last page is cut.
PageRange chosenPages(const QPrinter& printer, const PrintPlan& plan) {
    const int last = static_cast<int>(plan.pages()) - 1;
    if (printer.printRange() != QPrinter::PageRange || printer.fromPage() <= 0)
        return {0, last};
    return {std::min(printer.fromPage() - 1, last), std::min(std::max(printer.toPage(), 1) - 1, last)};
}

} // namespace

CPrintCommands::CPrintCommands(CMirovaneView& floor, CStation& station, FrameDialogs& dialogs)
    : floor_(floor), station_(station), dialogs_(dialogs) {}

CPrintCommands::~CPrintCommands() = default;

void CPrintCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::FilePrint, {[this](const CommandDefinition&, bool) { print(); }, {}});
    actions.setHandler(CommandId::FilePrintPreview,
                       {[this](const CommandDefinition&, bool) { preview(); }, {}});
    actions.setHandler(CommandId::FilePrintSetup,
                       {[this](const CommandDefinition&, bool) { dialogs_.setUpPage(printer()); }, {}});
}

QPrinter& CPrintCommands::printer() {
    if (!printer_)
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    const std::string& path = station_.datafile().path();
    const QString name = QString::fromStdString(displayText(path.substr(path.rfind('/') + 1)));
    printer_->setDocName(name.isEmpty() ? QStringLiteral("Mirovane") : name);
    return *printer_;
}

void CPrintCommands::print() {
    if (dialogs_.choosePrinter(printer()))
        printPages(*printer_);
}

void CPrintCommands::preview() {
    dialogs_.previewPages(
        printer(), [this](QPrinter& paper) { printPages(paper); });
}

void CPrintCommands::printPages(QPrinter& printer) {
    const CFloorPrint floor(floor_.drawing().sources(), floor_.state(),
                            zoomStateOf(station_.display(), floor_.state().view.LabelFontHeight));
    const PrintPlan plan = floor.plan(printer);
    if (plan.pages() > mostPrintPages) {
        dialogs_.fail(QCoreApplication::translate(
                          "CPrintCommands", "The floor would take %1 pages. Draw a box around the part that "
                                            "you want to print, or choose a smaller zoom.")
                          .arg(plan.pages())
                          .toStdString());
        return;
    }
    if (!floor.print(printer, plan, chosenPages(printer, plan)))
        dialogs_.fail(
            QCoreApplication::translate("CPrintCommands", "The floor could not be printed.").toStdString());
}

} // namespace mirovane
