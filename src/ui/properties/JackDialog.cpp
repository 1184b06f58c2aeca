#include "ui/properties/JackDialog.h"

namespace mirovane {

CJackDialog::CJackDialog(CStation& station, PropertiesSet set, QWidget* parent)
    : CPropertiesDialog(station, std::move(set), tr("Label Jack"), parent) {
    setObjectName(QStringLiteral("labelJackDialog"));
    auto* rows = new QFormLayout;
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addFacts(*rows, true);
    addPriority(*rows);
    CPropertyInput* number = addTextRow(*rows, "ToJack", tr("&Jack#:"));
    addTextRow(*rows, "Comment", tr("&Comment:"), CPropertyInput::Kind::Lines);
    finish(rows);
    number->setFocus();
}

} // namespace mirovane
