#include "ui/floor/paint/LabelCache.h"

#include <algorithm>

namespace mirovane {

namespace {

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
        if (!font_ || font_->height != linePixels) {
            atlas_.reset();
            font_ = std::make_unique<LabelFont>(linePixels);
            atlas_ = std::make_unique<CGlyphAtlas>(*font_);
        }
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
    Block& block = blocks_[&device];
    const std::uint64_t state = stateBits(device, display_, state_);
    if (!block.fresh || block.state != state) {
        block.fresh = true;
        block.state = state;
        layOut(block, device);
    }
    block.lastFrame = frame_;
    return block;
}

void CLabelCache::touch(const CHardware& device) {
    if (Block* block = find(device))
        block->fresh = block->placed = false;
}

void CLabelCache::forgetPlaces() {
    for (auto& [device, block] : blocks_)
        block.placed = false;
}

void CLabelCache::layOut(Block& block, const CHardware& device) {
    block.lines.clear();
    std::vector<LabelLine> lines = labelLines(device, display_, state_);
    if (lines.size() > mostLines)
        lines.resize(mostLines);
    for (const LabelLine& line : lines)
        block.lines.push_back(laidOut(line));
}

/// Underlined text is rare: it is always drawn as text.
LaidLine CLabelCache::laidOut(const LabelLine& line) {
    LaidLine laid{shownText(line.text), 0, line.background, line.underline, line.row, false};
    laid.glyphs = !line.underline && CGlyphAtlas::covers(laid.text);
    laid.width = laid.glyphs ? atlas_->width(laid.text) : font_->metrics.horizontalAdvance(laid.text);
    return laid;
}

QRect CLabelCache::placeOf(const LaidLine& line, QPoint topCorner, QPoint bottomCorner) const {
    const QPoint corner = line.row < 0 ? topCorner - QPoint(0, font_->height)
                                       : bottomCorner + QPoint(0, line.row * font_->height);
    return {corner, QSize(line.width, font_->height)};
}

void CLabelCache::drawLine(const FloorCanvas& canvas, QPoint corner, const LaidLine& line, QRect clip) {
    if (canvas.image && line.glyphs)
        atlas_->draw(*canvas.image, clip, corner, line.text, line.background);
    else
        drawLabel(canvas.painter, corner, line, *font_, clip);
}

void CLabelCache::draw(const FloorCanvas& canvas, const Block& block, QPoint topCorner, QPoint bottomCorner,
                       QRect clip) {
    for (const LaidLine& line : block.lines) {
        const QRect place = placeOf(line, topCorner, bottomCorner);
        if (line.width > 0 && clip.intersects(place.adjusted(-font_->overhang, 0, font_->overhang, 0)))
            drawLine(canvas, place.topLeft(), line, clip);
    }
}

QRect CLabelCache::covered(const Block& block, QPoint topCorner, QPoint bottomCorner) const {
    QRect all;
    for (const LaidLine& line : block.lines)
        all |= placeOf(line, topCorner, bottomCorner);
    return all.isEmpty() ? all : all.adjusted(-font_->overhang, 0, font_->overhang, 0);
}

} // namespace mirovane
