#include "ui/widgets/DialogText.h"

#include "model/records/Text.h"

namespace mirovane {

QString qText(std::string_view words) {
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

QString shownText(std::string_view bytes) {
    return qText(displayText(bytes));
}

std::string storedText(const QString& text) {
    return text.toUtf8().toStdString();
}

} // namespace mirovane
