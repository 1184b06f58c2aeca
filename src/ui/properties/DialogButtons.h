#pragma once

#include <QBoxLayout>
#include <QPushButton>

namespace mirovane {

/// A button at the end of the line. Enter presses the dialog's default button, never the one that has the
/// keyboard by chance.
inline QPushButton* addButton(QBoxLayout& line, const char* name, const QString& text) {
    auto* button = new QPushButton(text, line.parentWidget());
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    line.addWidget(button);
    return button;
}

} // namespace mirovane
