#pragma once

#include "station/Station.h"

#include <QDialog>
#include <QFormLayout>
#include <QSize>

namespace mirovane {

struct FloorSummary;

/// "Mirovane - Floor Properties": what the datafile holds, and who runs Live Stat and Live Discover. Shows
/// the moment in which it was opened. Main thread.
class CFloorPropertiesDialog final : public QDialog {
    Q_OBJECT

public:
    /// `mapSize` in pixels; empty when no map is shown.
    CFloorPropertiesDialog(const CStation& station, QSize mapSize, QWidget* parent);

private:
    QLayout* makeFiles(const CStation& station, const FloorSummary& summary, QSize mapSize);
    QWidget* makeCounts(const FloorSummary& summary);
    void addFact(QFormLayout& rows, const char* name, const QString& label, const QString& text);
};

} // namespace mirovane
