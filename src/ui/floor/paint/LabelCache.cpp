#include "ui/floor/paint/LabelCache.h"

#include <algorithm>

namespace mirovane {

namespace {

/// Labels beyond this are rare and cost more to keep than to draw.
constexpr int widestImage = 1024;
constexpr std::size_t mostLinesInImage = 24;

/// More lines than any window shows.
constexpr std::size_t mostLines = 2000;

bool sameLabels(const DisplaySettings& a, const DisplaySettings& b) {
    return a.PropertiesComputer == b.PropertiesComputer && a.PropertiesIPAddress == b.PropertiesIPAddress &&
           a.PropertiesUsername == b.PropertiesUsername && a.PropertiesMACAddress == b.PropertiesMACAddress &&
           a.PropertiesJack == b.PropertiesJack && a.PropertiesComment == b.PropertiesComment &&
           a.PropertiesSlash == b.PropertiesSlash && a.PropertiesBackslash == b.PropertiesBackslash &&
           a.PropertiesHorz == b.PropertiesHorz && a.PropertiesVert == b.PropertiesVert;
}

/// The part of the view's state that a device's labels depend on: none for most, so that a click, a search or
/// a reminder's blinking does not throw away what stays the same.
std::uint64_t stateBits(const CHardware& device, const DisplaySettings& display, const LabelState& state) {
    std::uint64_t bits = 0;
    if (device.Selected)
        bits = 1U | (state.LabelsShown ? 2U : 0U) | static_cast<std::uint64_t>(state.find.FindHitCount) << 8;
    if (device.ReminderDue)
        bits |= 4U | (state.ReminderPhase && display.ReminderDeviceShow ? 8U : 0U) |
                (state.find.FindReminderMode ? 16U : 0U);
    return bits;
}

} // namespace

void CLabelCache::begin(const DisplaySettings& display, const LabelState& state, int linePixels) {
    if (!font_ || font_->height != linePixels || !sameLabels(display, display_)) {
        blocks_.clear();
        waiting_.clear();
        if (!font_ || font_->height != linePixels)
            font_ = std::make_unique<LabelFont>(linePixels);
    }
    display_ = display;
    state_ = state;
    ++frame_;
}

void CLabelCache::evictUnseen() {
    std::erase_if(
        blocks_, [this](const auto& entry) { return entry.second.lastFrame != frame_; });
}

CLabelCache::Block* CLabelCache::find(const CHardware& device) {
    const auto found = blocks_.find(&device);
    return found == blocks_.end() ? nullptr : &found->second;
}

CLabelCache::Block& CLabelCache::block(const CHardware& device) {
    const std::uint64_t signature =
        labelSignature(device) ^ (stateBits(device, display_, state_) * 0x9E3779B97F4A7C15ULL);
    const auto [entry, added] = blocks_.try_emplace(&device);
    Block& block = entry->second;
    if (added || block.signature != signature) {
        block.signature = signature;
        layOut(block, device);
        if (!block.waiting && fitsImage(block)) {
            block.waiting = true;
            waiting_.push_back(&device);
        }
    }
    block.lastFrame = frame_;
    return block;
}

void CLabelCache::layOut(Block& block, const CHardware& device) const {
    block.image = QImage();
    block.lines.clear();
    std::vector<LabelLine> lines = labelLines(device, display_, state_);
    if (lines.size() > mostLines)
        lines.resize(mostLines);
    for (const LabelLine& line : lines)
        block.lines.push_back(laidOut(line, *font_));
}

bool CLabelCache::fitsImage(const Block& block) {
    const auto fits = [](const LaidLine& line) {
        return line.width <= widestImage;
    };
    return !block.lines.empty() && block.lines.size() <= mostLinesInImage &&
           std::ranges::all_of(block.lines, fits);
}

QPoint CLabelCache::cornerOf(const LaidLine& line, QPoint topCorner, QPoint bottomCorner) const {
    return line.row < 0 ? topCorner - QPoint(0, font_->height)
                        : bottomCorner + QPoint(0, line.row * font_->height);
}

void CLabelCache::draw(QPainter& painter, Block& block, QPoint topCorner, QPoint bottomCorner,
                       QRect clip) const {
    int place = 0;
    for (const LaidLine& line : block.lines) {
        const QPoint corner = cornerOf(line, topCorner, bottomCorner);
        const int imageTop = place++ * font_->height;
        if (line.width == 0 || !clip.intersects(QRect(corner, QSize(line.width, font_->height))))
            continue;
        if (block.image.isNull())
            drawLabel(painter, corner, line, *font_, clip);
        else
            painter.drawImage(corner, block.image, QRect(0, imageTop, line.width, font_->height));
    }
}

QRect CLabelCache::covered(const Block& block, QPoint topCorner, QPoint bottomCorner) const {
    QRect all;
    for (const LaidLine& line : block.lines)
        all |= QRect(cornerOf(line, topCorner, bottomCorner), QSize(line.width, font_->height));
    return all;
}

bool CLabelCache::prepare(std::chrono::microseconds budget) {
    QElapsedTimer timer;
    timer.start();
    while (!waiting_.empty()) {
        if (timer.nsecsElapsed() / 1000 >= budget.count())
            return true;
        Block* block = find(*waiting_.back());
        waiting_.pop_back();
        if (!block)
            continue;
        block->waiting = false;
        if (block->image.isNull() && fitsImage(*block))
            makeImage(*block);
    }
    return false;
}

void CLabelCache::makeImage(Block& block) const {
    int width = 1;
    for (const LaidLine& line : block.lines)
        width = std::max(width, line.width);
    QImage image(width, static_cast<int>(block.lines.size()) * font_->height, QImage::Format_RGB32);
    QPainter painter(&image);
    int top = 0;
    for (LaidLine& line : block.lines) {
        drawLabel(painter, {0, top}, line, *font_, image.rect());
        top += font_->height;
    }
    painter.end();
    for (LaidLine& line : block.lines)
        line.text = QString();
    block.image = std::move(image);
}

} // namespace mirovane
