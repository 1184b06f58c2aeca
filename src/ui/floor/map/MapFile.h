#pragma once

#include "ui/floor/map/MapTiles.h"

#include <QString>

#include <memory>

namespace mirovane {

/// A picture read from a file, or why it could not be.
struct LoadedMap {
    std::shared_ptr<const CMapPicture> picture;
    QString stamp;          ///< tells the file from others and from its other versions
    bool unchanged = false; ///< the file is the one known: nothing was read
    bool missing = false;
    QString problem; ///< a complete sentence for the user; empty when the picture is there
};

/// Reads a picture of any kind that a floor map may have. Any thread; may wait for a slow share. Takes no
/// more memory than `largestImageInMemory` for it, whatever its size.
LoadedMap readMapFile(const QString& path);

} // namespace mirovane
