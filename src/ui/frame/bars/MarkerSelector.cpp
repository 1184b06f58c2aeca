#include "ui/frame/bars/MarkerSelector.h"

#include "ui/widgets/DialogText.h"

#include <QAbstractItemView>
#include <QSignalBlocker>

#include <algorithm>
#include <vector>

namespace mirovane {

namespace {

constexpr int selectorWidth = 230;
constexpr int listHeight = 200;
constexpr int blanksBeforeNumber = 75;

/// With this many characters the greatest record ID ends an item's text.
constexpr int longestNumber = 10;

bool isMarkerOnFloor(const CHardware& record) {
    return record.Type == DeviceType::LocationMarker;
}

QString labelOf(const CHardware& marker) {
    return shownText(marker.Comment).simplified(); // a label of several lines is one line here
}

} // namespace

QString markerItemText(const CHardware& marker) {
    return labelOf(marker) + QString(blanksBeforeNumber, u' ') + QString::number(marker.RecID);
}

std::int32_t markerOfItem(const QString& text) {
    return text.right(longestNumber).trimmed().toInt();
}

CMarkerSelector::CMarkerSelector(const CMirovaneDoc& document, QWidget* parent)
    : QComboBox(parent), document_(document) {
    setObjectName(QStringLiteral("markerSelector"));
    setAccessibleName(tr("Location markers"));
    setToolTip(tr("Go to a location marker"));
    setStatusTip(tr("Select a location marker and bring it into view"));
    setFixedWidth(selectorWidth);
    setPlaceholderText(tr("Location marker"));
    view()->setTextElideMode(Qt::ElideNone); // or dots would point at the hidden number
    view()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view()->window()->setMaximumWidth(selectorWidth); // or the list would grow until the number shows
    setMaxVisibleItems(std::max(5, listHeight / (fontMetrics().height() + 4)));
    refreshSoon_.setSingleShot(true);
    refreshSoon_.setInterval(0);
    connect(&refreshSoon_, &QTimer::timeout, this, &CMarkerSelector::refresh);
    connect(this, &QComboBox::activated, this,
            [this](int item) { Q_EMIT markerChosen(markerOfItem(itemText(item))); });
    document_.addObserver(*this);
    refresh();
}

CMarkerSelector::~CMarkerSelector() {
    document_.removeObserver(*this);
}

void CMarkerSelector::SelectMarkerItem(const std::string& comment) {
    setCurrentIndex(findText(shownText(comment).simplified(), Qt::MatchStartsWith | Qt::MatchCaseSensitive));
}

void CMarkerSelector::AddMarkerItem(const CHardware& marker) {
    const QString text = markerItemText(marker);
    int place = 0;
    while (place < count() && itemText(place).compare(text, Qt::CaseInsensitive) < 0)
        ++place;
    insertItem(place, text);
}

void CMarkerSelector::RemoveMarkerItem(const CHardware& marker) {
    if (const int item = findText(markerItemText(marker), Qt::MatchFixedString | Qt::MatchCaseSensitive);
        item >= 0)
        removeItem(item);
}

void CMarkerSelector::recordChanged(const CHardware& before, const CHardware& after) {
    const bool was = isMarkerOnFloor(before);
    const bool is = isMarkerOnFloor(after);
    if (!was && !is)
        return;
    const bool current = was && currentIndex() >= 0 && markerOfItem(currentText()) == before.RecID;
    const QSignalBlocker quiet(this);
    if (was)
        RemoveMarkerItem(before);
    if (is)
        AddMarkerItem(after);
    if (current)
        setCurrentIndex(is ? findText(markerItemText(after)) : -1);
}

/// Many may come or go at once.
void CMarkerSelector::changed(const CHardware& record) {
    if (isMarkerOnFloor(record))
        refreshSoon_.start();
}

void CMarkerSelector::refresh() {
    refreshSoon_.stop();
    const std::int32_t current = currentIndex() < 0 ? 0 : markerOfItem(currentText());
    std::vector<QString> texts;
    for (const auto& record : document_.records())
        if (isMarkerOnFloor(*record))
            texts.push_back(markerItemText(*record));
    std::ranges::stable_sort(
        texts, [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    const QSignalBlocker quiet(this);
    clear();
    int place = -1;
    for (const QString& text : texts) {
        if (current != 0 && markerOfItem(text) == current)
            place = count();
        addItem(text);
    }
    setCurrentIndex(place);
}

} // namespace mirovane
