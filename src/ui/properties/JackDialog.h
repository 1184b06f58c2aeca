#pragma once

#include "ui/properties/PropertiesDialog.h"

namespace mirovane {

/// "Label Jack": one or several jacks.
class CJackDialog final : public CPropertiesDialog {
    Q_OBJECT

public:
    CJackDialog(CStation& station, PropertiesSet set, QWidget* parent);
};

} // namespace mirovane
