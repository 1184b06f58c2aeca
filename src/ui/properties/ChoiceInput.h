#pragma once

#include "model/properties/PropertiesForm.h"
#include "ui/widgets/PickList.h"

#include <QLabel>
#include <QWidget>

#include <string>

namespace mirovane {

/// One field of a Properties dialog that is chosen from a list. Several devices have one entry more, which
/// leaves each device its own; what all of them have is said beside it, in grey. Main thread; the form
/// outlives it.
class CChoiceInput : public QWidget {
    Q_OBJECT

public:
    /// `leave`: the entry that leaves each device its own.
    CChoiceInput(CPropertiesForm& form, const char* field, const QStringList& entries, const QString& leave,
                 QWidget* parent);

    /// Brings everything up to date with the form.
    void refresh();

Q_SIGNALS:
    void edited();

private:
    void choose(int index);

    CPropertiesForm& form_;
    std::string field_;
    CPickList* list_;
    QLabel* hint_;
};

} // namespace mirovane
