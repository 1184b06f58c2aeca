#pragma once

#include <QComboBox>

namespace mirovane {

/// A drop-down list whose choice takes effect at once and may overwrite something. So nothing is chosen on
/// the way: keys open the list, and the wheel scrolls the window around the list.
class CPickList : public QComboBox {
    Q_OBJECT

public:
    explicit CPickList(QWidget* parent = nullptr);

Q_SIGNALS:
    void entered();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace mirovane
