#pragma once

#include "model/MapBox.h"
#include "platform/Result.h"

#include <QPageSize>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// What `mirovane --render` and `mirovane --print` were asked for.
struct DrawOptions {
    bool help = false;
    QString output;
    QString datafile;

    // ---- both
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
    std::int32_t ZoomFontScale = 0;
    std::vector<std::int32_t> selected; ///< record IDs
    std::vector<std::string> shown;     ///< names of display settings
    std::vector<std::int32_t> hidden;   ///< device types
    bool hideMap = false;

    // ---- a picture
    std::optional<QSize> size; ///< logical pixels; nothing: the whole floor
    QPoint scroll;
    std::optional<std::int32_t> hovered;
    double devicePixelRatio = 1;

    // ---- pages
    std::optional<MapBox> box; ///< nothing: the whole floor
    QPageSize paper{QPageSize::A4};
    bool landscape = false;
};

constexpr int largestRenderSide = 32000;
constexpr qint64 mostRenderPixels = 200'000'000;

/// `arguments` without the program's name. The error is one sentence for the user.
Result<DrawOptions, QString> parseRenderOptions(const QStringList& arguments);
Result<DrawOptions, QString> parsePrintOptions(const QStringList& arguments);

QString renderUsage();
QString printUsage();

} // namespace mirovane
