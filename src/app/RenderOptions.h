#pragma once

#include "platform/Result.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// What `mirovane --render` was asked for.
struct RenderOptions {
    bool help = false;
    QString output;
    QString datafile;
    std::optional<QSize> size; ///< logical pixels; nothing: the whole floor
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
    QPoint scroll;
    std::vector<std::int32_t> selected; ///< record IDs
    std::optional<std::int32_t> hovered;
    std::vector<std::string> shown; ///< names of display settings
};

constexpr int largestRenderSide = 32000;
constexpr qint64 mostRenderPixels = 200'000'000;

/// `arguments` without the program's name. The error is one sentence for the user.
Result<RenderOptions, QString> parseRenderOptions(const QStringList& arguments);

QString renderUsage();

} // namespace mirovane
