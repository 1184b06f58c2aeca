#include "ui/floor/map/LargeImage.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryFile>

#include <fcntl.h>
#include <memory>

namespace mirovane {

namespace {

QString cacheFolder() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return !cache.isEmpty() && QDir().mkpath(cache) ? cache : QDir::tempPath();
}

void dropFile(void* file) {
    delete static_cast<QTemporaryFile*>(file);
}

} // namespace

qsizetype imageBytes(QSize size, QImage::Format format) {
    const int depth = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    return (qsizetype{size.width()} * depth + 31) / 32 * 4 * size.height();
}

/// The space is taken before anything is written: a disk that fills up under a mapped file ends the program.
QImage makeLargeImage(QSize size, QImage::Format format, QString* problem) {
    const qsizetype bytes = imageBytes(size, format);
    if (bytes <= largestImageInMemory)
        return QImage(size, format);
    const QString folder = cacheFolder();
    auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/mirovane-map-XXXXXX"));
    uchar* pixels = nullptr;
    if (file->open() && ::posix_fallocate(file->handle(), 0, bytes) == 0)
        pixels = file->map(0, bytes);
    if (pixels)
        return QImage(pixels, size.width(), size.height(), bytes / size.height(), format, &dropFile,
                      file.release());
    if (problem)
        *problem = QCoreApplication::translate("CFloorMap", "it needs %1 MB in %2, where %3 MB are free")
                       .arg(QString::number(bytes >> 20), folder,
                            QString::number(QStorageInfo(folder).bytesAvailable() >> 20));
    return {};
}

} // namespace mirovane
