#pragma once

#include <QObject>

#include <string>

class QWidget;

namespace mirovane {

/// Lets a datafile be dropped on a window. Belongs to the window.
class CFileDrop : public QObject {
    Q_OBJECT

public:
    explicit CFileDrop(QWidget& window);

Q_SIGNALS:
    /// Connect it queued: while this is told, the program that the file comes from still waits.
    void dropped(const std::string& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace mirovane
