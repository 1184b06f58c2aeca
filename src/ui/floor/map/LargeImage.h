#pragma once

#include <QImage>
#include <QString>

namespace mirovane {

/// Images beyond this are kept in a file instead of in memory.
constexpr qsizetype largestImageInMemory = qsizetype{64} << 20;

qsizetype imageBytes(QSize size, QImage::Format format);

/// An image for writing, with any content. The pixels of a large one are in a file of the user's cache that
/// has no name any more: the system keeps in memory what is being looked at, and the disk space is free again
/// when the image goes. Null when there is no room; `problem` then says how much is missing. Any thread.
QImage makeLargeImage(QSize size, QImage::Format format, QString* problem = nullptr);

} // namespace mirovane
