#include "ui/widgets/ScrollBody.h"

namespace mirovane {

CScrollBody::CScrollBody(QWidget* body) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // whatever in the body has the focus is scrolled into view
    setWidget(body);
    viewport()->setAutoFillBackground(false);
    body->setAutoFillBackground(false);
}

QSize CScrollBody::sizeHint() const {
    return widget()->sizeHint();
}

QSize CScrollBody::minimumSizeHint() const {
    constexpr QSize least(240, 120);
    return least.boundedTo(widget()->minimumSizeHint());
}

} // namespace mirovane
