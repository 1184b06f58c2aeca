#include "app/Print.h"

#include "app/OfflineFloor.h"
#include "ui/floor/FloorPrint.h"

#include <QPageLayout>
#include <QPdfWriter>
#include <QSaveFile>

namespace mirovane {

namespace {

constexpr int pdfResolution = 600; ///< dots per inch
constexpr double marginMillimetres = 10;

void setUpPaper(const DrawOptions& options, QPdfWriter& paper) {
    paper.setResolution(pdfResolution);
    paper.setCreator(QStringLiteral("Mirovane"));
    paper.setPageLayout(
        {options.paper, options.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
         QMarginsF(marginMillimetres, marginMillimetres, marginMillimetres, marginMillimetres),
         QPageLayout::Millimeter});
}

/// The old file stays when the new one cannot be written.
int writePages(const DrawOptions& options, COfflineFloor& floor) {
    QSaveFile file(options.output);
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        QPdfWriter paper(&file);
        setUpPaper(options, paper);
        floor.state().gesture.box = options.box;
        const CFloorPrint print(floor.sources(), floor.state(), floor.zoom());
        const PrintPlan plan = print.plan(paper);
        if (plan.pages() > mostPrintPages) {
            complain(
                QStringLiteral("the floor would take %1 pages: choose a part with --box").arg(plan.pages()));
            return UsageError;
        }
        written = print.print(paper, plan, {0, static_cast<int>(plan.pages()) - 1});
    }
    if (written && file.commit())
        return Written;
    complain(QStringLiteral("cannot write %1: %2").arg(options.output, file.errorString()));
    return FileProblem;
}

} // namespace

int runPrint(const QStringList& arguments) {
    return runOffline(QStringLiteral("--print"), parsePrintOptions(arguments), printUsage(), writePages);
}

} // namespace mirovane
