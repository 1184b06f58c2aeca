#include "ui/applications/InsertTextDialog.h"

#include "ui/widgets/DialogText.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirovane {

namespace {

constexpr int textWidth = 520;

/// Read-only, so that a long command can be scrolled and copied; not a stop of the Tab key.
QLineEdit* makeCommand(const std::string& command) {
    auto* box = new QLineEdit(shownText(command));
    box->setObjectName(QStringLiteral("insertTextCommand"));
    box->setReadOnly(true);
    box->setFrame(false);
    box->setFocusPolicy(Qt::ClickFocus);
    box->setCursorPosition(0);
    QPalette palette = box->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    box->setPalette(palette);
    return box;
}

} // namespace

CInsertTextDialog::CInsertTextDialog(const std::string& command, QWidget* parent)
    : QDialog(parent), text_(new QLineEdit) {
    setObjectName(QStringLiteral("insertTextDialog"));
    setWindowTitle(QObject::tr("Insert text to Command"));
    text_->setObjectName(QStringLiteral("insertText"));
    text_->setMinimumWidth(textWidth);

    auto* form = new QFormLayout;
    form->addRow(QObject::tr("Command:"), makeCommand(command));
    form->addRow(QObject::tr("&Insert Text:"), text_);
    auto* note = new QLabel(QObject::tr("Note: Text typed in the field will be inserted into the command"));

    auto* buttons = new QDialogButtonBox;
    auto* execute = buttons->addButton(QObject::tr("E&xecute"), QDialogButtonBox::AcceptRole);
    execute->setDefault(true);
    buttons->addButton(QObject::tr("&Cancel"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    text_->setFocus();
}

std::string CInsertTextDialog::text() const {
    return storedText(text_->text());
}

} // namespace mirovane
