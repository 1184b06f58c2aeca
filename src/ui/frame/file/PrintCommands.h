#pragma once

#include "station/Station.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

#include <memory>

class QPrinter;

namespace mirovane {

/// Print, Print Preview and Print Setup. Printer and paper stay as they were chosen until the program ends.
class CPrintCommands {
public:
    /// All references outlive the object.
    CPrintCommands(CMirovaneView& floor, CStation& station, FrameDialogs& dialogs);
    ~CPrintCommands();

    void connectTo(CCommandActions& actions);

private:
    void print();
    void preview();
    void printPages(QPrinter& printer);
    QPrinter& printer();

    CMirovaneView& floor_;
    CStation& station_;
    FrameDialogs& dialogs_;
    std::unique_ptr<QPrinter> printer_; ///< made when it is first wanted: asking for printers takes time
};

} // namespace mirovane
