#pragma once

#include "platform/AbandonableCalls.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>

#include <cstdint>

namespace mirovane {

/// Where the photos of a site are.
struct PhotoFolder {
    QString named;    ///< as the datafile names it: a relative one counts from the datafile
    QString datafile; ///< may be empty

    bool operator==(const PhotoFolder&) const = default;
};

/// File of a user's photo, whatever the case of its letters on disk; empty when there is none, or when none
/// may be asked for. The name is in brackets when the user has left. Names come from the network: one that
/// leads out of the folder is refused. Any thread; asks the disk.
QString photoFile(const PhotoFolder& folder, const QString& username);

/// Users' photos, read when they are first asked for. A missing or unreadable file is a null image and is not
/// reported. Main thread.
class CPhotoStore : public QObject {
    Q_OBJECT

public:
    /// `Now` waits for the file, for pictures that are drawn once. `Later` reads on a worker thread, so that
    /// a slow share does not hold up the pointer, and tells by `arrived`.
    enum class Reading { Now, Later };

    explicit CPhotoStore(Reading reading, QObject* parent = nullptr) : QObject(parent), reading_(reading) {}

    void setFolder(const PhotoFolder& folder);

    QImage photo(const QString& username);

    /// Photos on disk changed.
    void clear();

Q_SIGNALS:
    void arrived();

private:
    void readLater(const QString& username);

    Reading reading_;
    CAbandonableCalls reads_; ///< of a share that hangs, which must not hold the program's end up either
    PhotoFolder folder_;
    std::uint64_t emptied_ = 0;     ///< how often: a photo that was asked for before comes too late
    QHash<QString, QImage> photos_; ///< by user; null while being read, and when there is none
};

} // namespace mirovane
