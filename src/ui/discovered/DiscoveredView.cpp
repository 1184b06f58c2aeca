#include "ui/discovered/DiscoveredView.h"

#include "ui/discovered/DiscoveredDrag.h"
#include "ui/widgets/DialogText.h"

#include <QApplication>
#include <QDrag>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <utility>

namespace mirovane {

namespace {

using Scope = CSelection::Scope;

constexpr int iconMargin = 5;
constexpr int lineHeight = 12;
constexpr int lineStep = 10; ///< a line, and a notch of the wheel
constexpr qsizetype labelLength = 15;

QFont labelFont() {
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(lineHeight);
    return font;
}

/// The fields in the order of their lines. Of a Location Marker, ToJack holds an area.
std::array<const std::string*, 6> labels(const CHardware& device) {
    static const std::string none;
    const bool marker = floorCode(device.Type) == DeviceType::LocationMarker;
    return {&device.Name,
            &device.IPAddress,
            &device.Username,
            &device.MACAddress,
            marker ? &none : &device.ToJack,
            &device.Comment};
}

QString deviceTip(const CHardware& device) {
    QStringList lines{qText(typeName(device.Type))};
    for (const std::string* label : labels(device))
        if (!label->empty())
            lines << shownText(*label);
    return lines.join(u'\n');
}

/// The end of a label tells two devices apart as often as its beginning, so a wide one is made narrower
/// instead of shorter.
void paintLabel(QPainter& painter, const QString& text, QPoint corner) {
    constexpr int room = DiscoveredGrid::CellWidth - iconMargin - 2;
    const int width = painter.fontMetrics().horizontalAdvance(text);
    const QRect line(0, 0, std::max(width, room), lineHeight);
    painter.save();
    painter.translate(corner);
    if (width > room)
        painter.scale(static_cast<qreal>(room) / width, 1);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    painter.restore();
}

std::optional<DiscoveredGrid::Step> stepOf(int key) {
    switch (key) {
    case Qt::Key_Left:
        return DiscoveredGrid::Step::Left;
    case Qt::Key_Right:
        return DiscoveredGrid::Step::Right;
    case Qt::Key_Up:
        return DiscoveredGrid::Step::Up;
    case Qt::Key_Down:
        return DiscoveredGrid::Step::Down;
    case Qt::Key_PageUp:
        return DiscoveredGrid::Step::PageUp;
    case Qt::Key_PageDown:
        return DiscoveredGrid::Step::PageDown;
    case Qt::Key_Home:
        return DiscoveredGrid::Step::Home;
    case Qt::Key_End:
        return DiscoveredGrid::Step::End;
    default:
        return std::nullopt;
    }
}

} // namespace

CDiscoveredView::CDiscoveredView(CStation& station, CIconSet& icons, QWidget* parent)
    : QAbstractScrollArea(parent), station_(station), icons_(icons) {
    setObjectName(QStringLiteral("discoveredView"));
    setAccessibleName(tr("Devices that are not on the floor"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the columns must not depend on the devices
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    verticalScrollBar()->setSingleStep(lineStep);
    station_.document().addObserver(*this);
}

CDiscoveredView::~CDiscoveredView() {
    station_.document().removeObserver(*this);
}

// ---- which devices there are

void CDiscoveredView::setSorting(DiscoveredSorting sorting) {
    sorting_ = sorting;
    outdate();
    ScrollToSelection_ = !station_.selection().empty(Scope::DiscoveredMisc);
}

const std::vector<const CHardware*>& CDiscoveredView::devices() const {
    if (stale_)
        devices_ = discoveredDevices(station_.document(), sorting_);
    stale_ = false;
    return devices_;
}

void CDiscoveredView::outdate() {
    stale_ = true;
    devices_.clear();
    repaintSoon();
}

/// Thousands of devices may change at once.
void CDiscoveredView::repaintSoon() {
    viewport()->update();
    if (std::exchange(repaintPending_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            repaintPending_ = false;
            updateScrollRange();
            Q_EMIT changed();
        },
        Qt::QueuedConnection);
}

void CDiscoveredView::recordAdded(const CHardware& record) {
    if (record.inDiscovered())
        outdate();
}

void CDiscoveredView::recordChanged(const CHardware& before, const CHardware& after) {
    const bool moved = before.inDiscovered() != after.inDiscovered();
    const bool sorts = sorting_ == DiscoveredSorting::ByAddress && before.IPAddress != after.IPAddress;
    if (moved || (after.inDiscovered() && sorts))
        outdate();
    else if (after.inDiscovered())
        repaintSoon();
}

void CDiscoveredView::flagsChanged(const CHardware& record) {
    if (record.inDiscovered())
        repaintSoon();
}

void CDiscoveredView::recordRemoved(const CHardware& record) {
    if (record.inDiscovered())
        outdate();
}

std::optional<int> CDiscoveredView::placeOf(const CHardware& device) const {
    const auto found = std::ranges::find(devices(), &device);
    if (found == devices().end())
        return std::nullopt;
    return static_cast<int>(found - devices().begin());
}

// ---- scrolling

DiscoveredGrid CDiscoveredView::grid() const {
    return {viewport()->width(), viewport()->height(), static_cast<int>(devices().size())};
}

void CDiscoveredView::updateScrollRange() {
    const DiscoveredGrid now = grid();
    verticalScrollBar()->setPageStep(now.ClientHeight);
    verticalScrollBar()->setRange(0, now.ScrollMax());
    current_ = std::clamp(current_, 0, std::max(0, now.devices - 1));
    anchor_ = std::clamp(anchor_, 0, std::max(0, now.devices - 1));
}

void CDiscoveredView::revealSelected() {
    ScrollToSelection_ = true;
    viewport()->update();
}

QRect CDiscoveredView::reveal(const CHardware& device) {
    updateScrollRange();
    const auto place = placeOf(device);
    if (!place)
        return {};
    current_ = anchor_ = *place;
    verticalScrollBar()->setValue(grid().scrolledTo(*place, verticalScrollBar()->value()));
    const GridPoint cell = grid().cell(*place);
    const QSize icon = icons_.sizes().of(floorCode(device.Type));
    return QRect(QPoint(cell.x + iconMargin, cell.y + iconMargin - verticalScrollBar()->value()), icon);
}

void CDiscoveredView::scrollToSelected() {
    ScrollToSelection_ = false;
    const auto last = std::find_if(devices().rbegin(), devices().rend(),
                                   [](const CHardware* device) { return device->Selected != 0; });
    if (last != devices().rend())
        reveal(**last);
}

void CDiscoveredView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
}

void CDiscoveredView::scrollContentsBy(int, int) {
    viewport()->update();
}

void CDiscoveredView::wheelEvent(QWheelEvent* event) {
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(bar->value() - event->angleDelta().y() * lineStep / 120);
    event->accept();
}

QPoint CDiscoveredView::contentPoint(QPoint windowPoint) const {
    return windowPoint + QPoint(0, verticalScrollBar()->value());
}

// ---- painting

void CDiscoveredView::paintEvent(QPaintEvent* event) {
    if (ScrollToSelection_)
        scrollToSelected();
    QPainter painter(viewport());
    if (devices().empty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Hosts that Live Discover and Discover Now find wait here, and devices that you "
                            "move off the floor."));
        return;
    }
    const int ScrollY = verticalScrollBar()->value();
    painter.translate(0, -ScrollY);
    painter.setFont(labelFont());
    const auto shown = grid().inRows(event->rect().top() + ScrollY, event->rect().bottom() + ScrollY);
    for (int place = shown ? shown->first : 0; shown && place <= shown->last; ++place)
        paintCell(painter, place);
    if (gesture_ == Gesture::Band) {
        QStyleOptionRubberBand option;
        option.initFrom(this);
        option.rect = band_;
        option.shape = QRubberBand::Rectangle;
        style()->drawControl(QStyle::CE_RubberBand, &option, &painter, this);
    }
}

void CDiscoveredView::paintCell(QPainter& painter, int place) const {
    const CHardware& device = *devices()[static_cast<std::size_t>(place)];
    const GridPoint cell = grid().cell(place);
    const QPoint corner(cell.x + iconMargin, cell.y + iconMargin);
    int baseline = corner.y() + paintIcon(painter, device, corner);
    painter.setPen(palette().color(QPalette::Text));
    for (const std::string* label : labels(device)) {
        if (label->empty())
            continue;
        const QString text = shownText(*label).simplified().left(labelLength);
        paintLabel(painter, text, {corner.x(), baseline});
        baseline += lineHeight;
    }
    if (place != current_ || !hasFocus())
        return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect =
        QRect(cell.x, cell.y, DiscoveredGrid::CellWidth, DiscoveredGrid::CellHeight).adjusted(1, 1, -1, -1);
    focus.backgroundColor = palette().color(QPalette::Base);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

/// Its height.
int CDiscoveredView::paintIcon(QPainter& painter, const CHardware& device, QPoint corner) const {
    const std::int32_t type = floorCode(device.Type);
    const QSize size = icons_.sizes().of(type);
    if (const auto state = shownState(device))
        painter.drawImage(corner, device.Selected ? icons_.highlighted(type, *state, size)
                                                  : icons_.stretched(type, *state, size));
    return size.height();
}

// ---- the mouse

/// At the cell's place and as large as the icon, both edges included.
std::optional<int> CDiscoveredView::hit(QPoint point) const {
    const auto near = grid().inRows(point.y() - DiscoveredGrid::CellHeight, point.y());
    for (int place = near ? near->last : -1; near && place >= near->first; --place) {
        const GridPoint cell = grid().cell(place);
        const QSize icon = icons_.sizes().of(floorCode(devices()[static_cast<std::size_t>(place)]->Type));
        if (point.x() >= cell.x && point.x() <= cell.x + icon.width() && point.y() >= cell.y &&
            point.y() <= cell.y + icon.height())
            return place;
    }
    return std::nullopt;
}

void CDiscoveredView::selectOnly(std::optional<int> place) {
    if (!place) {
        station_.selection().none(Scope::DiscoveredMisc);
        return;
    }
    current_ = anchor_ = *place;
    station_.selection().only(*devices()[static_cast<std::size_t>(*place)]);
}

/// A press on a device that is selected already leaves the others selected until the button goes up, so that
/// all of them can be dragged.
void CDiscoveredView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const bool ctrl = event->modifiers().testFlag(Qt::ControlModifier);
    pressedAt_ = contentPoint(event->position().toPoint());
    const auto place = hit(pressedAt_);
    if (!place) {
        if (!ctrl)
            selectOnly({});
        beforeBand_.clear();
        for (const CHardware* device : station_.selection().members(Scope::DiscoveredMisc))
            beforeBand_.push_back(station_.document().keyOf(*device));
        gesture_ = Gesture::Band;
        band_ = QRect(pressedAt_, QSize(1, 1));
        return;
    }
    const CHardware& device = *devices()[static_cast<std::size_t>(*place)];
    gesture_ = ctrl && device.Selected ? Gesture::CtrlClickOnSelected : Gesture::Pressed;
    current_ = anchor_ = *place;
    if (ctrl)
        station_.selection().add(device);
    else if (!device.Selected)
        selectOnly(place);
    viewport()->update();
}

void CDiscoveredView::mouseMoveEvent(QMouseEvent* event) {
    if (gesture_ == Gesture::None)
        return;
    const QPoint at = contentPoint(event->position().toPoint());
    if (gesture_ != Gesture::Band) {
        if ((at - pressedAt_).manhattanLength() >= QApplication::startDragDistance())
            startDrag();
        return;
    }
    const int beyond = event->position().toPoint().y() < 0                      ? -lineStep
                       : event->position().toPoint().y() > viewport()->height() ? lineStep
                                                                                : 0;
    verticalScrollBar()->setValue(verticalScrollBar()->value() + beyond);
    band_ = QRect(pressedAt_, at).normalized();
    selectBand();
    viewport()->update();
}

void CDiscoveredView::selectBand() {
    CSelection& selection = station_.selection();
    selection.none(Scope::DiscoveredMisc);
    for (const DeviceKey& key : beforeBand_)
        if (const CHardware* device = station_.document().findDevice(key))
            selection.add(*device);
    const auto touched = grid().inRows(band_.top(), band_.bottom());
    for (int place = touched ? touched->first : 0; touched && place <= touched->last; ++place) {
        const GridPoint cell = grid().cell(place);
        const CHardware& device = *devices()[static_cast<std::size_t>(place)];
        const QSize icon = icons_.sizes().of(floorCode(device.Type));
        if (band_.intersects(QRect(QPoint(cell.x + iconMargin, cell.y + iconMargin), icon)))
            selection.add(device);
    }
}

void CDiscoveredView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || gesture_ == Gesture::None)
        return;
    const Gesture gesture = std::exchange(gesture_, Gesture::None);
    const auto place = hit(contentPoint(event->position().toPoint()));
    const bool ctrl = event->modifiers().testFlag(Qt::ControlModifier);
    if (place && gesture == Gesture::CtrlClickOnSelected && ctrl)
        station_.selection().remove(*devices()[static_cast<std::size_t>(*place)]);
    else if (place && gesture == Gesture::Pressed && !ctrl)
        selectOnly(place);
    viewport()->update();
}

/// Its first half was a press and a release.
void CDiscoveredView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && hit(contentPoint(event->position().toPoint())))
        Q_EMIT propertiesWanted();
}

/// Runs an event loop of its own until the devices are dropped.
void CDiscoveredView::startDrag() {
    gesture_ = Gesture::None;
    std::vector<DeviceKey> keys;
    for (const CHardware* device : station_.selection().members(Scope::DiscoveredMisc))
        keys.push_back(station_.document().keyOf(*device));
    if (keys.empty())
        return;
    auto* drag = new QDrag(this);
    drag->setMimeData(draggedDevices(keys).release());
    const CHardware& first = *devices()[static_cast<std::size_t>(current_)];
    const QImage icon = icons_.bitmap(floorCode(first.Type), first.State);
    if (!icon.isNull())
        drag->setPixmap(QPixmap::fromImage(icon));
    drag->setHotSpot({0, 0});
    drag->exec(Qt::MoveAction);
}

bool CDiscoveredView::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    if (const auto place = hit(contentPoint(help->pos())))
        QToolTip::showText(help->globalPos(), deviceTip(*devices()[static_cast<std::size_t>(*place)]), this);
    else
        QToolTip::hideText();
    return true;
}

// ---- the keyboard

void CDiscoveredView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void CDiscoveredView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void CDiscoveredView::selectAll() {
    for (const CHardware* device : devices())
        station_.selection().add(*device);
}

void CDiscoveredView::selectRange(int from, int to) {
    station_.selection().none(Scope::DiscoveredMisc);
    for (int place = std::min(from, to); place <= std::max(from, to); ++place)
        station_.selection().add(*devices()[static_cast<std::size_t>(place)]);
}

/// Alone the arrows take the selection along, with Shift they widen it, with Ctrl they leave it as it is.
void CDiscoveredView::go(DiscoveredGrid::Step step, Qt::KeyboardModifiers keys) {
    current_ = grid().stepped(current_, step);
    if (keys.testFlag(Qt::ShiftModifier))
        selectRange(anchor_, current_);
    else if (!keys.testFlag(Qt::ControlModifier))
        selectOnly(current_);
    verticalScrollBar()->setValue(grid().scrolledTo(current_, verticalScrollBar()->value()));
    viewport()->update();
}

void CDiscoveredView::keyPressEvent(QKeyEvent* event) {
    const auto step = stepOf(event->key());
    if (step && !devices().empty()) {
        go(*step, event->modifiers());
    } else if (event->key() == Qt::Key_Space && !devices().empty()) {
        const CHardware& device = *devices()[static_cast<std::size_t>(current_)];
        if (event->modifiers().testFlag(Qt::ControlModifier))
            station_.selection().toggle(device);
        else
            selectOnly(current_);
        anchor_ = current_;
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

} // namespace mirovane
