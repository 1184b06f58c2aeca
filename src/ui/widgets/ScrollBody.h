#pragma once

#include <QScrollArea>

namespace mirovane {

/// What a dialog holds besides its buttons. It wants the room that its contents want, and scrolls where the
/// screen has less, so that the buttons stay in sight.
class CScrollBody final : public QScrollArea {
    Q_OBJECT

public:
    /// The body becomes the area's own.
    explicit CScrollBody(QWidget* body);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
};

} // namespace mirovane
