#pragma once

#include <QLabel>
#include <QPalette>
#include <QWidget>

namespace mirovane {

/// How faults look: dark red on light red, whatever the desktop's colours are.
inline QPalette faultPalette() {
    QPalette palette;
    for (const QPalette::ColorRole role : {QPalette::Base, QPalette::Window})
        palette.setColor(role, QColor(255, 226, 222));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText})
        palette.setColor(role, QColor(96, 0, 0));
    return palette;
}

/// Marks an input whose text is wrong, or takes the mark away.
inline void markFaulty(QWidget& input, bool faulty) {
    input.setPalette(faulty ? faultPalette() : QPalette());
}

/// Says what is wrong; an empty text takes it away.
inline void showFaultText(QLabel& label, const QString& text) {
    label.setText(text);
    label.setPalette(text.isEmpty() ? QPalette() : faultPalette());
    label.setAutoFillBackground(!text.isEmpty());
}

} // namespace mirovane
