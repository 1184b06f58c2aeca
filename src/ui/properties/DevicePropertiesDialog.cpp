#include "ui/properties/DevicePropertiesDialog.h"

#include "ui/properties/ChoiceInput.h"
#include "ui/widgets/DialogText.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

const QString dateForm = QStringLiteral("yyyy-MM-dd HH:mm:ss"); ///< as a record's field is set

/// Every kind that this dialog edits, sorted.
QStringList typeNames() {
    QStringList names;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        if (propertiesGroupOf(type) == PropertiesGroup::Devices)
            names << qText(typeName(type));
    names.sort();
    return names;
}

QDateTime dateFrom(const std::string& text) {
    const QDateTime whole = QDateTime::fromString(qText(text), dateForm);
    return whole.isValid() ? whole : QDateTime::fromString(qText(text), QStringLiteral("yyyy-MM-dd HH:mm"));
}

/// A check box beside a text field.
struct Flag {
    std::string_view field;
    std::string_view text; ///< the field beside it
    const char* on;
    const char* off;
};
constexpr std::array flags{
    Flag{"SlashDraw", "SlashText", QT_TRANSLATE_NOOP("mirovane::Properties", "line drawn"),
         QT_TRANSLATE_NOOP("mirovane::Properties", "no line")},
    Flag{"BackslashDraw", "BackslashText", QT_TRANSLATE_NOOP("mirovane::Properties", "line drawn"),
         QT_TRANSLATE_NOOP("mirovane::Properties", "no line")},
    Flag{"HorzDraw", "HorzText", QT_TRANSLATE_NOOP("mirovane::Properties", "line drawn"),
         QT_TRANSLATE_NOOP("mirovane::Properties", "no line")},
    Flag{"VertDraw", "VertText", QT_TRANSLATE_NOOP("mirovane::Properties", "line drawn"),
         QT_TRANSLATE_NOOP("mirovane::Properties", "no line")},
    Flag{"ReminderOn", "ToDo", QT_TRANSLATE_NOOP("mirovane::Properties", "reminder on"),
         QT_TRANSLATE_NOOP("mirovane::Properties", "no reminder")},
};

/// What all of several devices have, which the undetermined box does not tell, or what somebody else made of
/// it meanwhile.
FieldNote flagNote(const CPropertiesForm& form, const Flag& flag) {
    const auto words = [](const char* text) {
        return QCoreApplication::translate("mirovane::Properties", text);
    };
    const auto shared = form.shared(flag.field);
    const QString now = !shared ? QString() : words(*shared == "1" ? flag.on : flag.off);
    const bool entered = form.entered(flag.field);
    const bool date = flag.field == "ReminderOn" && form.changedElsewhere("ReminderDate");
    FieldNote note;
    if (date || form.changedElsewhere(flag.field))
        note.news =
            entered && shared ? words("Changed meanwhile, now: %1").arg(now) : words("Changed meanwhile");
    else if (form.several() && !entered && shared)
        note.text = words("all: %1").arg(now);
    return note;
}

QFormLayout* makeRows() {
    auto* rows = new QFormLayout;
    rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    rows->setVerticalSpacing(4);
    return rows;
}

} // namespace

CDevicePropertiesDialog::CDevicePropertiesDialog(CStation& station, PropertiesSet set, const QDateTime& now,
                                                 QWidget* parent)
    : CPropertiesDialog(station, std::move(set), tr("Properties"), parent), now_(now) {
    setObjectName(QStringLiteral("propertiesDialog"));
    auto* columns = new QHBoxLayout;
    columns->addLayout(makeIdentity(), 1);
    columns->addSpacing(12);
    columns->addLayout(makeTexts(), 1);
    auto* body = new QVBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->addLayout(columns);
    body->addLayout(makeReminder());
    auto* note = new QLabel(
        QStringLiteral("Note: add \">>\" at the end-of-line for each property to skip Live Stat"), this);
    note->setWordWrap(true);
    body->addWidget(note);
    body->addStretch(1);
    finish(body);
    if (auto* name = findChild<QWidget*>(QStringLiteral("propertiesName")))
        name->setFocus();
}

// ---- the parts

QLayout* CDevicePropertiesDialog::makeIdentity() {
    QFormLayout* rows = makeRows();
    addFacts(*rows, true);
    addPriority(*rows);
    type_ = new CChoiceInput(ownForm(), "Type", typeNames(), qText(leaveText), this);
    connect(type_, &CChoiceInput::edited, this, [this] { showForm(); });
    rows->addRow(tr("&Device:"), type_);
    addTextRow(*rows, "Name", tr("&Name:"));
    addTextRow(*rows, "IPAddress", tr("&IP Address:"));
    addTextRow(*rows, "MACAddress", tr("&MAC/Port\nAddr:"));
    addTextRow(*rows, "Username", tr("&User Name:"));
    addTextRow(*rows, "ToJack", tr("to &Jack:"));
    return rows;
}

QLayout* CDevicePropertiesDialog::makeTexts() {
    QFormLayout* rows = makeRows();
    addTextRow(*rows, "Comment", tr("&Comment:"), CPropertyInput::Kind::Lines);
    const auto add = [&](const char* flag, const char* field, const QString& label) {
        QCheckBox* box = addBox(flag, label);
        box->setToolTip(tr("Draw the line"));
        rows->addRow(box,
                     addText(field, QString(label).remove(u'&').remove(u':'), CPropertyInput::Kind::Line));
    };
    add("SlashDraw", "SlashText", QStringLiteral("&/ Text:"));
    add("BackslashDraw", "BackslashText", QStringLiteral("&\\ Text:"));
    add("HorzDraw", "HorzText", QStringLiteral("&-- Text:"));
    add("VertDraw", "VertText", QStringLiteral("&|  Text:"));
    return rows;
}

QLayout* CDevicePropertiesDialog::makeReminder() {
    reminder_ = addBox("ReminderOn", tr("&Reminder"));
    date_ = new QDateEdit(this);
    time_ = new QTimeEdit(this);
    date_->setObjectName(QStringLiteral("propertiesReminderDate"));
    time_->setObjectName(QStringLiteral("propertiesReminderTime"));
    date_->setAccessibleName(tr("Date of the reminder"));
    time_->setAccessibleName(tr("Time of the reminder"));
    date_->setCalendarPopup(true);
    for (QAbstractSpinBox* picker :
         {static_cast<QAbstractSpinBox*>(date_), static_cast<QAbstractSpinBox*>(time_)}) {
        picker->setFocusPolicy(Qt::StrongFocus); // Qt's own takes the keyboard with the wheel
        picker->installEventFilter(this);
    }
    const QDateTime start = now_;
    date_->setDate(start.date());
    time_->setTime(start.time());
    connect(date_, &QDateEdit::dateChanged, this, &CDevicePropertiesDialog::enterDate);
    connect(time_, &QTimeEdit::timeChanged, this, &CDevicePropertiesDialog::enterDate);
    toDo_ = addText("ToDo", tr("To Do"), CPropertyInput::Kind::Line);
    auto* label = new QLabel(tr("&To Do:"), this);
    label->setBuddy(&toDo_->input());
    auto* line = new QHBoxLayout;
    for (QWidget* widget :
         {static_cast<QWidget*>(reminder_), static_cast<QWidget*>(date_), static_cast<QWidget*>(time_)})
        line->addWidget(widget, 0, Qt::AlignTop);
    line->addSpacing(8);
    line->addWidget(label, 0, Qt::AlignTop);
    line->addWidget(toDo_, 1);
    label->setMinimumHeight(date_->sizeHint().height());
    reminder_->setMinimumHeight(date_->sizeHint().height());
    return line;
}

/// Who scrolls the dialog with the wheel does not mean the date that happens to come under the pointer.
bool CDevicePropertiesDialog::eventFilter(QObject* watched, QEvent* event) {
    const auto* picker = qobject_cast<QAbstractSpinBox*>(watched);
    if (!picker || picker->hasFocus() || event->type() != QEvent::Wheel)
        return CPropertiesDialog::eventFilter(watched, event);
    event->ignore();
    return true;
}

QCheckBox* CDevicePropertiesDialog::addBox(const char* field, const QString& text) {
    auto* box = new QCheckBox(text, this);
    box->setObjectName(QStringLiteral("properties") + QLatin1String(field));
    box->setProperty("field", QLatin1String(field));
    box->setTristate(form().several());
    connect(box, &QCheckBox::clicked, this, [this, box] {
        const std::string name = box->property("field").toString().toStdString();
        if (box->checkState() == Qt::PartiallyChecked)
            ownForm().leave(name);
        else
            ownForm().enter(name, box->isChecked() ? "1" : "0");
        showForm();
    });
    boxes_.at(boxCount_++) = box;
    return box;
}

// ---- what is shown

void CDevicePropertiesDialog::showForm() {
    CPropertiesDialog::showForm();
    type_->refresh();
    for (QCheckBox* box : boxes_)
        showBox(*box);
    showReminder();
}

FieldNote CDevicePropertiesDialog::noteOf(const std::string& field) const {
    FieldNote rule = CPropertiesDialog::noteOf(field);
    const auto flag = std::ranges::find(flags, field, &Flag::text);
    if (flag == flags.end())
        return rule;
    const FieldNote box = flagNote(form(), *flag);
    const bool both = !box.text.isEmpty() && !rule.text.isEmpty();
    return {box.news, both ? box.text + u'\n' + rule.text : box.text + rule.text};
}

/// Of several devices a box that nobody touched is undetermined, also where all of them have the same.
void CDevicePropertiesDialog::showBox(QCheckBox& box) {
    const std::string field = box.property("field").toString().toStdString();
    const auto chosen = form().chosen(field);
    const bool leaves = form().several() && !form().entered(field);
    box.setCheckState(leaves ? Qt::PartiallyChecked : chosen == "1" ? Qt::Checked : Qt::Unchecked);
    const FieldNote note = flagNote(form(), *std::ranges::find(flags, field, &Flag::field));
    box.setAccessibleDescription(note.news + note.text);
}

void CDevicePropertiesDialog::showReminder() {
    const bool on = reminder_->checkState() == Qt::Checked;
    date_->setEnabled(on);
    time_->setEnabled(on);
    toDo_->setEnabled(!form().several() || on); // without the box none of several devices is touched
    if (form().several() || form().entered("ReminderDate"))
        return;
    const CHardware* device = form().device();
    const QDateTime stored = device && device->ReminderOn != 0
                                 ? dateFrom(form().shared("ReminderDate").value_or(""))
                                 : QDateTime();
    const QDateTime shown = stored.isValid() ? stored : now_;
    const QSignalBlocker quietDate(date_);
    const QSignalBlocker quietTime(time_);
    date_->setDate(shown.date());
    time_->setTime(shown.time());
}

QDateTime CDevicePropertiesDialog::pickedDate() const {
    return {date_->date(), time_->time()};
}

void CDevicePropertiesDialog::enterDate() {
    ownForm().enter("ReminderDate", pickedDate().toString(dateForm).toStdString());
}

PropertiesEdit CDevicePropertiesDialog::edit() const {
    return form().edit(pickedDate().toString(dateForm).toStdString());
}

} // namespace mirovane
