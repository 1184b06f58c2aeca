#pragma once

#include <QSize>
#include <QString>

namespace mirovane {

/// What the header of a bitmap file says, as far as it tells whether the file is whole. Any thread.
struct BitmapHeader {
    QSize size;             ///< invalid for a file that is not a bitmap
    qint64 statedBytes = 0; ///< of the whole file; 0 when the header does not say
};

BitmapHeader readBitmapHeader(const QString& path);

/// True for a bitmap file that ends before its last pixel. The reader of pictures takes such a file and
/// leaves the pixels that it lacks black.
bool isCutShort(const QString& path);

} // namespace mirovane
