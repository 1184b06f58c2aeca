#pragma once

#include "platform/AbandonableCalls.h"
#include "ui/floor/map/MapFile.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace mirovane {

/// Which map is to be read.
struct MapRequest {
    QString named;    ///< as the datafile names it
    QString datafile; ///< the datafile that names it; may be empty
    QString known;    ///< stamp of the file that was read last
};

/// Any thread; may wait for a slow share. For a map that is about to be chosen, `problem` says why it cannot
/// be.
LoadedMap readMap(const MapRequest& request);

/// Where the map named in a datafile is found from here; as it was named when it is not found.
QString locateMap(const QString& named, const QString& datafile);

/// The floor map of one view: reads the bitmap on a worker thread and swaps it in when it is there, so that a
/// large map on a slow share never holds the window up. Main thread.
class CFloorMap : public QObject {
    Q_OBJECT

public:
    explicit CFloorMap(QObject* parent = nullptr) : QObject(parent) {}

    /// Shows the map that a datafile names; an empty name shows none. The map shown before stays until the
    /// new one is there; when that cannot be read and is named otherwise than before, none is shown. A file
    /// that is the one read last does nothing, unless `again` asks for its problem to be told once more.
    void load(const QString& named, const QString& datafile, bool again = false);

    /// The same, at once: for pictures that are drawn once.
    void loadNow(const QString& named, const QString& datafile = {});

    QSize size() const { return tiles_.picture() ? tiles_.picture()->size() : QSize(0, 0); }
    bool loading() const { return loading_; }
    CMapTiles& tiles() { return tiles_; }

Q_SIGNALS:
    /// On a worker thread, from now on or not any more.
    void reading(bool reading);

    /// Another map, or none, is shown from now on.
    void changed();

    /// The map of the datafile cannot be shown. `missing` when there is no file at the path.
    void failed(const QString& sentence, bool missing);

private:
    std::optional<MapRequest> begin(const QString& named, const QString& datafile, bool again);
    void finish(std::uint64_t number, const LoadedMap& map);

    CMapTiles tiles_;
    QString wanted_;
    QString stamp_;
    QString shown_;    ///< the name whose picture is shown
    QString datafile_; ///< of the map that was asked for last
    QString shownFor_; ///< the datafile of the map that was loaded last
    bool loading_ = false;
    std::uint64_t number_ = 0;
    CAbandonableCalls reads_; ///< of a share that hangs, which must not hold the program's end up either
};

} // namespace mirovane
