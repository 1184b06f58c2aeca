#pragma once

#include "model/Document.h"

#include <QComboBox>
#include <QTimer>

#include <string>

namespace mirovane {

/// The toolbar's list of the Location Markers on the floor. Follows the document by itself, within one turn
/// of the event loop. Main thread; the document outlives it.
class CMarkerSelector final : public QComboBox, private DocumentObserver {
    Q_OBJECT

public:
    explicit CMarkerSelector(const CMirovaneDoc& document, QWidget* parent = nullptr);
    ~CMarkerSelector() override;

    /// Shows the first item that begins with the comment, as the current one; none when no item does.
    void SelectMarkerItem(const std::string& comment);
    void ClearMarkerSelection() { setCurrentIndex(-1); }

Q_SIGNALS:
    /// The user chose a marker from the list.
    void markerChosen(std::int32_t recID);

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override { changed(record); }
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override { changed(record); }
    void documentReplaced() override { refreshSoon_.start(); }

    void changed(const CHardware& record);
    void AddMarkerItem(const CHardware& marker);
    void RemoveMarkerItem(const CHardware& marker);
    void refresh();

    const CMirovaneDoc& document_;
    QTimer refreshSoon_;
};

/// A marker's label in one line, so many blanks that its number is out of sight, and the number.
QString markerItemText(const CHardware& marker);

/// The number at the end of an item's text.
std::int32_t markerOfItem(const QString& text);

} // namespace mirovane
