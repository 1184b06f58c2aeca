#pragma once

#include "model/records/Hardware.h"
#include "ui/floor/geometry/FloorGeometry.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// Which bitmap a device shows: selecting it exchanges On and Off. Nothing for a state or type that has no
/// bitmap.
std::optional<std::int32_t> shownState(const CHardware& device);

/// The 37 icon bitmaps and their scaled copies. Owned by the application, used by views on the main thread. A
/// file that cannot be loaded leaves its slot as it was and is not reported: a missing picture must never
/// stop the work.
class CIconSet {
public:
    /// Reads all 37 files from `folder`, and for each the larger drawings of the same picture beside it
    /// ("PCOn@2x.bmp", "PCOn@3x.bmp"), if there are any; returns how many of the 37 could be loaded.
    int LoadIcons(const QString& folder);

    /// What the program starts with: the project's own set, and over it the files of `bitmapFolder` (the
    /// current directory), so that a site can bring its own pictures. Returns how many came from
    /// `bitmapFolder`.
    int loadWithFallback(const QString& bitmapFolder);

    /// Where the project's own set may be: installed beside the program, else in the source tree.
    static QStringList ownFolders();

    const CIconSizes& sizes() const { return sizes_; }

    /// The loaded bitmap; null when there is none for this type and state.
    QImage bitmap(std::int32_t type, std::int32_t state) const;

    /// What is stretched to this size: the smallest drawing that is not smaller, else the largest.
    const QImage& source(std::int32_t type, std::int32_t state, QSize size) const;

    /// The picture at `size` pixels. Kept until the next load; small copies only, the rest is made
    /// anew.
    QImage stretched(std::int32_t type, std::int32_t state, QSize size);

    /// The same as a selected device shows it: on blue, dark pixels white.
    QImage highlighted(std::int32_t type, std::int32_t state, QSize size);

    static QImage stretch(const QImage& bitmap, QSize size);
    static QImage highlight(QImage bitmap);

private:
    static constexpr std::size_t slotCount = 3 * (DeviceType::last - 1) + 1;

    struct Key {
        std::size_t slot;
        int width;
        int height;
        bool highlighted;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };

    static std::optional<std::size_t> slotOf(std::int32_t type, std::int32_t state);
    static QString fileName(std::size_t slot);
    QImage kept(const Key& key);

    const QImage& sourceOf(std::size_t slot, QSize size) const;

    std::array<QImage, slotCount> bitmaps_;
    std::array<std::vector<QImage>, slotCount> larger_; ///< rising
    CIconSizes sizes_;
    std::unordered_map<Key, QImage, KeyHash> copies_;
    qsizetype copiedBytes_ = 0;
};

} // namespace mirovane
