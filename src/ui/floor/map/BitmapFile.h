#pragma once

#include <QImage>
#include <QSize>
#include <QString>

namespace mirovane {

/// What the header of a bitmap file says, as far as it tells whether the file is whole. Any thread.
struct BitmapHeader {
    QSize size;             ///< invalid for a file that is not a bitmap
    qint64 statedBytes = 0; ///< of the whole file; 0 when the header does not say
};

BitmapHeader readBitmapHeader(const QString& path);

/// Reads a bitmap of any size, which Qt's reader refuses beyond 268 million pixels: plain ones of 1, 8, 24 or
/// 32 bits a pixel. Null otherwise; `problem` then says why, as the end of a sentence.
QImage readLargeBitmap(const QString& path, QString& problem);

/// True for a bitmap file that ends before its last pixel. The reader of pictures takes such a file and
/// leaves the pixels that it lacks black.
bool isCutShort(const QString& path);

} // namespace mirovane
