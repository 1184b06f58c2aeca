#pragma once

#include "ui/floor/MapTiles.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <cstdint>
#include <memory>

namespace mirovane {

/// A picture read from a file, or why it could not be.
struct LoadedMap {
    std::shared_ptr<const MapPicture> picture;
    bool missing = false;
    QString problem; ///< a complete sentence for the user; empty when the picture is there
};

/// Any thread. Never takes more memory than `largestMapBytes` for the bitmap: a larger one is refused with
/// its size.
LoadedMap readMapFile(const QString& path);

constexpr qsizetype largestMapBytes = qsizetype{512} << 20;

/// Where the map named in a datafile is found. A relative path counts from the datafile's folder. A path that
/// does not exist here (the datafile came from another computer) is looked for by its file name beside the
/// datafile. When nothing is found the path comes back as it was named.
QString locateMap(const QString& named, const QString& datafile);

/// The floor map of one view: reads the bitmap on a worker thread and swaps it in when it is there, so that a
/// large map on a slow share never holds the window up. Main thread.
class FloorMap : public QObject {
    Q_OBJECT

public:
    explicit FloorMap(QObject* parent = nullptr) : QObject(parent) {}

    /// Shows the map at `path`; an empty path shows none. The map shown before stays until the new one is
    /// there; when it cannot be read and `path` is another than before, none is shown. Naming the file that
    /// is already shown, unchanged on disk, does nothing.
    void load(const QString& path);

    /// The same, at once: for pictures that are drawn once.
    void loadNow(const QString& path);

    const QString& path() const { return path_; }
    QSize size() const { return tiles_.picture() ? tiles_.picture()->size() : QSize(0, 0); }
    bool loading() const { return loading_; }
    MapTiles& tiles() { return tiles_; }

Q_SIGNALS:
    /// Another map, or none, is shown from now on.
    void changed();

    /// The map of the datafile cannot be shown. `missing` when no file stands at the path.
    void failed(const QString& sentence, bool missing);

private:
    bool begin(const QString& path);
    void finish(std::uint64_t request, const LoadedMap& map);

    MapTiles tiles_;
    QString path_;
    QString stamp_;
    bool pathChanged_ = false;
    bool loading_ = false;
    std::uint64_t request_ = 0;
};

} // namespace mirovane
