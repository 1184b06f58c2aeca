#pragma once

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>

namespace mirovane {

/// File of a user's photo; empty when no file may be asked for. The name is in brackets when the user has
/// left. Names come from the network: one that leads out of the folder is refused.
QString photoPath(const QString& folder, const QString& username);

/// Users' photos, read when they are first asked for. A missing or unreadable file is a null image and is not
/// reported. Main thread.
class CPhotoStore : public QObject {
    Q_OBJECT

public:
    /// `Now` waits for the file, for pictures that are drawn once. `Later` reads on a worker thread, so that
    /// a slow share does not hold up the pointer, and tells by `arrived`.
    enum class Reading { Now, Later };

    explicit CPhotoStore(Reading reading, QObject* parent = nullptr) : QObject(parent), reading_(reading) {}

    QImage photo(const QString& path);

    /// Photos on disk or the folder changed.
    void clear() { photos_.clear(); }

Q_SIGNALS:
    void arrived();

private:
    void readLater(const QString& path);

    Reading reading_;
    QHash<QString, QImage> photos_; ///< null while being read, and when there is none
};

} // namespace mirovane
