#include "ui/find/FindDialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirovane {

namespace {

struct FieldBox {
    FindField field;
    const char* name;
    const char* text;
};

/// In the order in which the dialog shows them, column by column.
constexpr std::array<FieldBox, findFieldCount> fieldBoxes{{
    {FindField::RecID, "includeRecID", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "Rec &ID")},
    {FindField::ToDo, "includeToDo", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&Todo")},
    {FindField::Name, "includeName", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&Name")},
    {FindField::Username, "includeUsername", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&Username")},
    {FindField::IPAddress, "includeIPAddress", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "I&P Address")},
    {FindField::MACAddress, "includeMACAddress", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&MAC Address")},
    {FindField::Comment, "includeComment", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "C&omment")},
    {FindField::ToJack, "includeToJack", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&Jack#")},
    {FindField::SlashText, "includeSlashText", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&/ Text")},
    {FindField::HorzText, "includeHorzText", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&- Text")},
    {FindField::BackslashText, "includeBackslashText",
     QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&\\ Text")},
    {FindField::VertText, "includeVertText", QT_TRANSLATE_NOOP("mirovane::CFindDialog", "&| Text")},
}};

constexpr int fieldRows = 4;

QCheckBox* makeBox(const QString& text, const char* name, bool on) {
    auto* box = new QCheckBox(text);
    box->setObjectName(QLatin1String(name));
    box->setChecked(on);
    return box;
}

} // namespace

CFindDialog::CFindDialog(const FindSettings& settings, QWidget* parent)
    : QDialog(parent), text_(new QLineEdit(QString::fromStdString(settings.FindText))) {
    setObjectName(QStringLiteral("findDialog"));
    setWindowTitle(tr("Find"));
    text_->setObjectName(QStringLiteral("findText"));
    text_->selectAll();
    auto* label = new QLabel(tr("Te&xt:"));
    label->setBuddy(text_);
    auto* textRow = new QHBoxLayout;
    textRow->addWidget(label);
    textRow->addWidget(text_);
    // A button knows that it is the default only when it is in the dialog by then; else Enter means Cancel.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    auto* find = buttons->addButton(tr("&Find"), QDialogButtonBox::AcceptRole);
    find->setObjectName(QStringLiteral("findButton"));
    find->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(textRow);
    layout->addWidget(makeOptions(settings));
    layout->addWidget(makeFields(settings));
    layout->addWidget(buttons);
    for (QCheckBox* box : {reminder_, reminderDue_})
        connect(box, &QCheckBox::toggled, this, &CFindDialog::enableText);
    enableText();
    text_->setFocus();
}

QGroupBox* CFindDialog::makeOptions(const FindSettings& settings) {
    reminder_ = makeBox(tr("&Reminder"), "findReminder", settings.FindReminder);
    reminderDue_ = makeBox(tr("Reminder &Due (F4)"), "findReminderDue", settings.FindReminderDue);
    wholeWord_ = makeBox(tr("Match whole &word/phase"), "findWholeWord", settings.FindWholeWord);
    matchCase_ = makeBox(tr("Match &case"), "findMatchCase", settings.FindMatchCase);
    includeMisc_ = makeBox(tr("Include Disco&ver/Misc"), "findIncludeMisc", settings.FindIncludeMisc);
    auto* group = new QGroupBox(tr("Options"));
    auto* grid = new QGridLayout(group);
    grid->addWidget(wholeWord_, 0, 0);
    grid->addWidget(matchCase_, 1, 0);
    grid->addWidget(reminder_, 0, 1);
    grid->addWidget(reminderDue_, 1, 1);
    grid->addWidget(includeMisc_, 2, 0, 1, 2);
    return group;
}

QGroupBox* CFindDialog::makeFields(const FindSettings& settings) {
    include_ = new QGroupBox(tr("Include"));
    auto* grid = new QGridLayout(include_);
    for (std::size_t place = 0; place < fieldBoxes.size(); ++place) {
        const FieldBox& field = fieldBoxes[place];
        QCheckBox* box = makeBox(tr(field.text), field.name, settings.includes(field.field));
        fields_[static_cast<std::size_t>(field.field)] = box;
        grid->addWidget(box, static_cast<int>(place) % fieldRows, static_cast<int>(place) / fieldRows);
    }
    return include_;
}

/// A search for reminders reads no text.
void CFindDialog::enableText() {
    const bool text = !reminder_->isChecked() && !reminderDue_->isChecked();
    for (QWidget* widget : {static_cast<QWidget*>(text_), static_cast<QWidget*>(wholeWord_),
                            static_cast<QWidget*>(matchCase_), static_cast<QWidget*>(include_)})
        widget->setEnabled(text);
}

FindSettings CFindDialog::settings() const {
    FindSettings settings;
    settings.FindText = text_->text().toStdString();
    settings.FindReminder = reminder_->isChecked();
    settings.FindReminderDue = reminderDue_->isChecked();
    settings.FindWholeWord = wholeWord_->isChecked();
    settings.FindMatchCase = matchCase_->isChecked();
    settings.FindIncludeMisc = includeMisc_->isChecked();
    for (std::size_t field = 0; field < findFieldCount; ++field)
        settings.included[field] = fields_[field]->isChecked();
    return settings;
}

} // namespace mirovane
