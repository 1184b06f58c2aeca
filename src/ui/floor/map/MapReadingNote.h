#pragma once

#include <QLabel>
#include <QTimer>

namespace mirovane {

/// Says in a corner of the floor that its map is still being read: a large one on a slow share takes a while,
/// and an empty floor would look like a lost one. Quick maps come without a word.
class CMapReadingNote : public QLabel {
    Q_OBJECT

public:
    explicit CMapReadingNote(QWidget* floor);

    void setReading(bool reading);

private:
    QTimer patience_;
};

} // namespace mirovane
