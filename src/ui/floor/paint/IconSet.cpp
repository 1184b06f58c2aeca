#include "ui/floor/paint/IconSet.h"

#include "ui/floor/map/BitmapFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QLatin1StringView>

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::array<const char*, DeviceType::last> stems = {
    "RJ45",   "PC",      "Printer", "Laptop", "Switch",   "Router",        "Phone",
    "Camera", "Unknown", "UPS",     "Card",   "Wireless", "LocationMarker"};
constexpr std::array<const char*, 3> stateNames = {"Def", "On", "Off"};

/// No icon is larger; a file that claims to be is not worth its memory.
constexpr int largestIcon = 1024;

/// What all kept copies may take together before they are thrown away and made again on demand.
constexpr qsizetype keptBytes = 48 << 20;

constexpr QRgb highlightBlue = 0xFF0000FF;

QImage readIcon(const QString& path) {
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.width() > largestIcon || size.height() > largestIcon || isCutShort(path))
        return {};
    QImage image = reader.read();
    if (image.isNull())
        return {};
    image.setDevicePixelRatio(1);
    return image.convertToFormat(QImage::Format_RGB32);
}

/// Those that are there: none for a site's own picture, which would otherwise turn into ours on a sharp
/// screen.
std::vector<QImage> readLarger(const QString& name, QSize size) {
    std::vector<QImage> larger;
    for (const int times : {2, 3}) {
        QString path = name;
        path.insert(path.size() - 4, QStringLiteral("@%1x").arg(times));
        QImage image = QFileInfo::exists(path) ? readIcon(path) : QImage();
        if (image.size() == size * times)
            larger.push_back(std::move(image));
    }
    return larger;
}

} // namespace

std::optional<std::int32_t> shownState(const CHardware& device) {
    const std::int32_t type = floorCode(device.Type);
    if (type < DeviceType::first || type > DeviceType::last)
        return std::nullopt;
    if (type == DeviceType::LocationMarker)
        return DeviceState::Def;
    switch (device.State) {
    case DeviceState::Def:
        return DeviceState::Def;
    case DeviceState::On:
        return device.Selected ? DeviceState::Off : DeviceState::On;
    case DeviceState::Off:
        return device.Selected ? DeviceState::On : DeviceState::Off;
    default:
        return std::nullopt;
    }
}

std::size_t CIconSet::KeyHash::operator()(const Key& key) const {
    const std::uint64_t size =
        static_cast<std::uint64_t>(key.width) << 32 | static_cast<std::uint32_t>(key.height);
    return static_cast<std::size_t>((size * 64 + key.slot) * 2 + (key.highlighted ? 1 : 0));
}

std::optional<std::size_t> CIconSet::slotOf(std::int32_t type, std::int32_t state) {
    if (type == DeviceType::LocationMarker)
        return slotCount - 1;
    if (type < DeviceType::first || type > DeviceType::last || state < DeviceState::Def ||
        state > DeviceState::Off)
        return std::nullopt;
    return static_cast<std::size_t>((type - 1) * 3 + state);
}

QString CIconSet::fileName(std::size_t slot) {
    const QString stem = QString::fromLatin1(stems[slot / 3]);
    const QString state = slot == slotCount - 1 ? QString() : QString::fromLatin1(stateNames[slot % 3]);
    return stem + state + QStringLiteral(".bmp");
}

int CIconSet::LoadIcons(const QString& folder) {
    int loaded = 0;
    for (std::size_t slot = 0; slot < slotCount; ++slot) {
        const QString name = QDir(folder).filePath(fileName(slot));
        QImage image = readIcon(name);
        if (image.isNull())
            continue;
        ++loaded;
        larger_[slot] = readLarger(name, image.size());
        bitmaps_[slot] = std::move(image);
        if (slot % 3 == 0)
            sizes_.set(static_cast<std::int32_t>(slot / 3) + 1, bitmaps_[slot].size());
    }
    if (loaded > 0) {
        copies_.clear();
        copiedBytes_ = 0;
    }
    return loaded;
}

int CIconSet::loadWithFallback(const QString& bitmapFolder) {
    for (const QString& folder : ownFolders())
        if (LoadIcons(folder) > 0)
            break;
    return LoadIcons(bitmapFolder);
}

QStringList CIconSet::ownFolders() {
    QStringList folders;
    if (QCoreApplication::instance())
        folders << QDir(QCoreApplication::applicationDirPath())
                       .filePath(QStringLiteral("../share/mirovane/icons"));
    folders << QStringLiteral(MIROVANE_INSTALLED_ICONS) << QStringLiteral(MIROVANE_SOURCE_ICONS);
    folders.removeAll(QString()); // what is made for a package does not know where its sources were
    return folders;
}

QImage CIconSet::bitmap(std::int32_t type, std::int32_t state) const {
    const auto slot = slotOf(type, state);
    return slot ? bitmaps_[*slot] : QImage();
}

const QImage& CIconSet::sourceOf(std::size_t slot, QSize size) const {
    const auto enough = [size](const QImage& image) {
        return image.width() >= size.width() && image.height() >= size.height();
    };
    if (enough(bitmaps_[slot]) || larger_[slot].empty())
        return bitmaps_[slot];
    const auto found = std::ranges::find_if(larger_[slot], enough);
    return found == larger_[slot].end() ? larger_[slot].back() : *found;
}

const QImage& CIconSet::source(std::int32_t type, std::int32_t state, QSize size) const {
    static const QImage none;
    const auto slot = slotOf(type, state);
    return slot ? sourceOf(*slot, size) : none;
}

QImage CIconSet::stretched(std::int32_t type, std::int32_t state, QSize size) {
    const auto slot = slotOf(type, state);
    return slot ? kept({*slot, size.width(), size.height(), false}) : QImage();
}

QImage CIconSet::highlighted(std::int32_t type, std::int32_t state, QSize size) {
    const auto slot = slotOf(type, state);
    return slot ? kept({*slot, size.width(), size.height(), true}) : QImage();
}

QImage CIconSet::kept(const Key& key) {
    if (const auto found = copies_.find(key); found != copies_.end())
        return found->second;
    const QSize size(key.width, key.height);
    QImage copy = stretch(sourceOf(key.slot, size), size);
    if (key.highlighted)
        copy = highlight(std::move(copy));
    if (copiedBytes_ + copy.sizeInBytes() > keptBytes) {
        copies_.clear();
        copiedBytes_ = 0;
    }
    copiedBytes_ += copy.sizeInBytes();
    return copies_.emplace(key, std::move(copy)).first->second;
}

QImage CIconSet::stretch(const QImage& bitmap, QSize size) {
    if (bitmap.isNull() || size.isEmpty())
        return {};
    if (bitmap.size() == size)
        return bitmap;
    return bitmap.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

QImage CIconSet::highlight(QImage bitmap) {
    for (int y = 0; y < bitmap.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(bitmap.scanLine(y));
        for (int x = 0; x < bitmap.width(); ++x)
            line[x] = highlightBlue | ~line[x];
    }
    return bitmap;
}

} // namespace mirovane
