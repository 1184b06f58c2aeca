#include "ui/properties/ChoiceInput.h"

#include "ui/widgets/DialogText.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

namespace mirovane {

CChoiceInput::CChoiceInput(CPropertiesForm& form, const char* field, const QStringList& entries,
                           const QString& leave, QWidget* parent)
    : QWidget(parent), form_(form), field_(field), list_(new CPickList(this)), hint_(new QLabel(this)) {
    if (form_.several())
        list_->addItem(leave);
    list_->addItems(entries);
    list_->setObjectName(QStringLiteral("properties") + QLatin1String(field));
    setFocusProxy(list_);
    hint_->setObjectName(QStringLiteral("note") + QLatin1String(field));
    hint_->setTextFormat(Qt::PlainText);
    hint_->setForegroundRole(QPalette::PlaceholderText);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(list_);
    line->addWidget(hint_, 1);
    connect(list_, &QComboBox::activated, this, &CChoiceInput::choose);
}

void CChoiceInput::choose(int index) {
    if (form_.several() && index == 0)
        form_.leave(field_);
    else
        form_.enter(field_, list_->itemText(index).toStdString());
    Q_EMIT edited();
}

/// Of one device a value that the list does not know (a damaged file holds any) is shown as none.
void CChoiceInput::refresh() {
    const QSignalBlocker quiet(list_);
    const auto chosen = form_.chosen(field_);
    const auto shared = form_.shared(field_);
    const bool touched = form_.entered(field_);
    const bool leaves = form_.several() && !touched;
    list_->setCurrentIndex(leaves ? 0 : chosen ? list_->findText(qText(*chosen)) : -1);
    QString hint;
    if (leaves && shared)
        hint = tr("all: %1").arg(qText(*shared));
    if (form_.changedElsewhere(field_))
        hint = touched && shared ? tr("changed meanwhile, now: %1").arg(qText(*shared))
                                 : tr("changed meanwhile");
    hint_->setText(hint);
    list_->setAccessibleDescription(hint);
}

} // namespace mirovane
