#include "ui/floor/map/MapTiles.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace mirovane {

namespace {

/// The source pixels that one shown pixel is made of, along one axis. Weights add up to 256.
struct Taps {
    int first = 0;
    int firstWeight = 0; ///< index into the weights
    int count = 0;
};

struct Axis {
    std::vector<Taps> taps;
    std::vector<std::uint32_t> weights;
    int begin = 0; ///< source pixels that are used at all
    int end = 0;
};

/// Rounds the parts to 256ths without losing any: what rounding leaves goes to the heaviest.
void addTaps(Axis& axis, int first, const std::vector<double>& parts) {
    double total = 0;
    for (const double part : parts)
        total += part;
    const std::size_t start = axis.weights.size();
    int left = 256;
    for (const double part : parts) {
        const int weight = static_cast<int>(std::lround(part / total * 256));
        axis.weights.push_back(static_cast<std::uint32_t>(weight));
        left -= weight;
    }
    const auto heaviest =
        std::max_element(axis.weights.begin() + static_cast<std::ptrdiff_t>(start), axis.weights.end());
    *heaviest = static_cast<std::uint32_t>(static_cast<int>(*heaviest) + left);
    axis.taps.push_back({first, static_cast<int>(start), static_cast<int>(parts.size())});
    axis.begin = axis.taps.size() == 1 ? first : std::min(axis.begin, first);
    axis.end = std::max(axis.end, first + static_cast<int>(parts.size()));
}

/// `step` is source pixels per shown pixel.
Axis averagingAxis(int from, int count, double step, int length) {
    Axis axis;
    std::vector<double> parts;
    for (int i = 0; i < count; ++i) {
        const double start = std::clamp((from + i) * step, 0.0, length - 1e-6);
        const double end = std::clamp((from + i + 1) * step, start + 1e-6, static_cast<double>(length));
        const int first = static_cast<int>(start);
        parts.clear();
        for (int s = first; s < length && s < end; ++s)
            parts.push_back(std::min<double>(s + 1, end) - std::max<double>(s, start));
        addTaps(axis, first, parts);
    }
    return axis;
}

Axis interpolatingAxis(int from, int count, double step, int length) {
    Axis axis;
    for (int i = 0; i < count; ++i) {
        const double centre = std::clamp((from + i + 0.5) * step - 0.5, 0.0, length - 1.0);
        const int first = static_cast<int>(centre);
        const double part = centre - first;
        if (first + 1 < length)
            addTaps(axis, first, {1 - part, part});
        else
            addTaps(axis, first, {1.0});
    }
    return axis;
}

Axis makeAxis(int from, int count, double step, int length) {
    return step >= 1 ? averagingAxis(from, count, step, length)
                     : interpolatingAxis(from, count, step, length);
}

/// Two colour channels in one multiplication.
struct Sum {
    std::uint32_t redBlue = 0x00800080;
    std::uint32_t green = 0x00000080;

    void add(QRgb pixel, std::uint32_t weight) {
        redBlue += (pixel & 0x00FF00FFU) * weight;
        green += ((pixel >> 8) & 0xFFU) * weight;
    }
    QRgb pixel() const { return 0xFF000000U | ((redBlue >> 8) & 0x00FF00FFU) | (green & 0x0000FF00U); }
};

const QRgb* pixels(const QImage& image, int row) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(row));
}

QImage acrossRows(const QImage& source, const Axis& across) {
    QImage result(static_cast<int>(across.taps.size()), source.height(), QImage::Format_RGB32);
    for (int y = 0; y < source.height(); ++y) {
        const QRgb* in = pixels(source, y);
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (const Taps& taps : across.taps) {
            const QRgb* from = in + (taps.first - across.begin);
            const std::uint32_t* weight = across.weights.data() + taps.firstWeight;
            Sum sum;
            sum.add(from[0], weight[0]);
            if (taps.count > 1)
                sum.add(from[1], weight[1]);
            for (int i = 2; i < taps.count; ++i)
                sum.add(from[i], weight[i]);
            *out++ = sum.pixel();
        }
    }
    return result;
}

/// Byte by byte in 16 bits, which the compiler turns into wide instructions: 255 * 256 + 128 just fits.
QImage downColumns(const QImage& source, const Axis& down, QImage spare) {
    const QSize size(source.width(), static_cast<int>(down.taps.size()));
    QImage result = spare.size() == size ? std::move(spare) : QImage(size, QImage::Format_RGB32);
    const std::size_t bytes = static_cast<std::size_t>(source.width()) * 4;
    std::vector<std::uint16_t> sums(bytes);
    int row = 0;
    for (const Taps& taps : down.taps) {
        std::fill(sums.begin(), sums.end(), std::uint16_t{128});
        for (int i = 0; i < taps.count; ++i) {
            const uchar* in = source.constScanLine(taps.first - down.begin + i);
            const auto weight =
                static_cast<std::uint16_t>(down.weights[static_cast<std::size_t>(taps.firstWeight + i)]);
            for (std::size_t k = 0; k < bytes; ++k)
                sums[k] = static_cast<std::uint16_t>(sums[k] + in[k] * weight);
        }
        uchar* out = result.scanLine(row++);
        for (std::size_t k = 0; k < bytes; ++k)
            out[k] = static_cast<uchar>(sums[k] >> 8);
    }
    return result;
}

} // namespace

QImage resampled(const CMapPicture& picture, QRect area, double factor, QImage spare) {
    int reduction = 1;
    const QImage& level = picture.levelFor(factor, reduction);
    const double step = 1 / (factor * reduction);
    const Axis across = makeAxis(area.left(), area.width(), step, level.width());
    const Axis down = makeAxis(area.top(), area.height(), step, level.height());
    const QRect used(QPoint(across.begin, down.begin), QPoint(across.end - 1, down.end - 1));
    const QImage source = level.copy(used).convertToFormat(QImage::Format_RGB32);
    return downColumns(acrossRows(source, across), down, std::move(spare));
}

} // namespace mirovane
