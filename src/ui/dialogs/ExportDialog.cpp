#include "ui/dialogs/ExportDialog.h"

#include "model/records/Text.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/ScrollBody.h"
#include "ui/widgets/WindowPlacement.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>
#include <QValidator>

namespace mirovane {

namespace {

/// Keeps a text within what its setting holds, in bytes.
class CByteLimit final : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& text, int&) const override {
        return text.toUtf8().size() <= static_cast<qsizetype>(ExportSettings::longestText) ? Acceptable
                                                                                           : Invalid;
    }
};

QLineEdit* makeEdit(const char* name) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    edit->setValidator(new CByteLimit(edit));
    return edit;
}

QCheckBox* makeCheck(const char* name, const QString& text) {
    auto* check = new QCheckBox(text);
    check->setObjectName(QLatin1String(name));
    return check;
}

/// Explains, and steps back behind what it explains.
QLabel* makeNote(const QString& text) {
    auto* note = new QLabel(text);
    note->setTextFormat(Qt::PlainText);
    note->setForegroundRole(QPalette::PlaceholderText);
    note->setWordWrap(true);
    return note;
}

QString fileText(const std::string& path) {
    return QFile::decodeName(path.c_str());
}

/// One line as it is in the file, its TABs to be seen.
QString previewLine(const std::string& line) {
    return QString::fromStdString(displayText(line)).replace(u'\t', QObject::tr(" \u2192 ")).remove(u'\r');
}

} // namespace

CExportDialog::CExportDialog(ExportRequest request, Browse browse, QWidget* parent)
    : QDialog(parent), request_(std::move(request)), browse_(std::move(browse)) {
    setObjectName(QStringLiteral("exportDialog"));
    setWindowTitle(QObject::tr("Export"));
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeFileRow());
    layout->addWidget(makeDelimiterGroup());
    layout->addWidget(makeOptions());
    layout->addWidget(makePreview(), 1);
    layout->addWidget(makeFailure());
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(new CScrollBody(body), 1);
    whole->addWidget(makeButtons());
    fill();
    connectControls();
    showTarget();
    showPreview();
    fitToScreen(*this, {});
}

QWidget* CExportDialog::makeFileRow() {
    auto* row = new QWidget;
    auto* label = new QLabel(QStringLiteral(
        "Enter the path/&filename (C:\\text.txt or \\\\computername\\share\\folder\\text.txt)"));
    filename_ = makeEdit("exportFilename");
    label->setBuddy(filename_);
    auto* button = new QPushButton(tr("&Browse..."));
    button->setObjectName(QStringLiteral("exportBrowse"));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &CExportDialog::browse);
    target_ = makeNote({});
    target_->setObjectName(QStringLiteral("exportTarget"));
    auto* line = new QHBoxLayout;
    line->addWidget(filename_, 1);
    line->addWidget(button);
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addLayout(line);
    layout->addWidget(target_);
    return row;
}

QWidget* CExportDialog::makeDelimiterGroup() {
    auto* group = new QGroupBox(tr("Delimiter"));
    tab_ = new QRadioButton(tr("&Tab"));
    tab_->setObjectName(QStringLiteral("exportTab"));
    custom_ = new QRadioButton(tr("&Custom"));
    custom_->setObjectName(QStringLiteral("exportCustom"));
    customText_ = makeEdit("exportCustomText");
    customText_->setAccessibleName(tr("Custom delimiter"));
    auto* layout = new QHBoxLayout(group);
    layout->addWidget(tab_);
    layout->addSpacing(layout->spacing());
    layout->addWidget(custom_);
    layout->addWidget(customText_, 1);
    return group;
}

QWidget* CExportDialog::makeOptions() {
    auto* options = new QWidget;
    quoteAll_ = makeCheck("exportQuoteAll", QStringLiteral("Place double quote on &all fields (\"field\")"));
    quoteComment_ =
        makeCheck("exportQuoteComment", QStringLiteral("Place double quote on \"Co&mment\" field"));
    includeHeader_ = makeCheck("exportIncludeHeader", tr("Include &header names"));
    auto_ = makeCheck("exportAuto", tr("A&uto export on changes"));
    auto* layout = new QVBoxLayout(options);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QCheckBox* check : {quoteAll_, quoteComment_, includeHeader_, auto_})
        layout->addWidget(check);
    auto* note = makeNote(tr("After every save and reload, once this datafile has been opened again."));
    const int indent = style()->pixelMetric(QStyle::PM_IndicatorWidth) +
                       style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    note->setContentsMargins(indent, 0, 0, 0);
    layout->addWidget(note);
    return options;
}

QWidget* CExportDialog::makePreview() {
    const QString shown = request_.firstRows.size() < request_.rowCount
                              ? tr("&Preview: first %1 of %2 rows").arg(request_.firstRows.size())
                              : tr("&Preview: %1 of %2 rows").arg(request_.firstRows.size());
    auto* group = new QGroupBox(shown.arg(request_.rowCount));
    preview_ = new QPlainTextEdit;
    preview_->setObjectName(QStringLiteral("exportPreview"));
    preview_->setAccessibleName(tr("Preview"));
    preview_->setReadOnly(true);
    preview_->setTabChangesFocus(true);
    preview_->setLineWrapMode(QPlainTextEdit::NoWrap);
    preview_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    constexpr int lines = 8;
    preview_->setMinimumHeight(preview_->fontMetrics().lineSpacing() * lines +
                               style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    preview_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored); // its own wish is far higher
    preview_->setMinimumWidth(preview_->fontMetrics().averageCharWidth() * 76);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(preview_);
    return group;
}

QWidget* CExportDialog::makeFailure() {
    auto* failure = new QLabel(tr("The last export failed: ") + shownText(request_.lastFailure));
    failure->setObjectName(QStringLiteral("exportFailure"));
    failure->setTextFormat(Qt::PlainText);
    failure->setWordWrap(true);
    failure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    failure->setVisible(!request_.lastFailure.empty());
    return failure;
}

QWidget* CExportDialog::makeButtons() {
    auto* buttons = new QDialogButtonBox;
    auto* accept = buttons->addButton(tr("&Export / OK"), QDialogButtonBox::AcceptRole);
    accept->setObjectName(QStringLiteral("exportOk"));
    accept->setDefault(true);
    buttons->addButton(tr("Ca&ncel"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

void CExportDialog::fill() {
    const ExportSettings& settings = request_.settings;
    shownFilename_ = fileText(settings.ExportFilename);
    shownCustomText_ = shownText(settings.ExportCustomText);
    filename_->setText(shownFilename_);
    filename_->setPlaceholderText(suggestion());
    customText_->setText(shownCustomText_);
    (settings.ExportTab ? tab_ : custom_)->setChecked(true);
    customText_->setEnabled(!settings.ExportTab);
    quoteAll_->setChecked(settings.ExportQuoteAll);
    quoteComment_->setChecked(settings.ExportQuoteComment);
    includeHeader_->setChecked(settings.ExportIncludeHeader);
    auto_->setChecked(settings.ExportAuto);
}

void CExportDialog::connectControls() {
    connect(filename_, &QLineEdit::textChanged, this, &CExportDialog::showTarget);
    connect(customText_, &QLineEdit::textChanged, this, &CExportDialog::showPreview);
    connect(custom_, &QRadioButton::toggled, this, [this](bool on) {
        customText_->setEnabled(on);
        if (on)
            customText_->setFocus();
        showPreview();
    });
    for (QCheckBox* check : {quoteAll_, quoteComment_, includeHeader_})
        connect(check, &QCheckBox::toggled, this, &CExportDialog::showPreview);
}

ExportSettings CExportDialog::settings() const {
    ExportSettings settings = request_.settings;
    if (filename_->text() != shownFilename_)
        settings.ExportFilename = QFile::encodeName(filename_->text()).toStdString();
    if (customText_->text() != shownCustomText_)
        settings.ExportCustomText = storedText(customText_->text());
    settings.ExportTab = tab_->isChecked();
    settings.ExportQuoteAll = quoteAll_->isChecked();
    settings.ExportQuoteComment = quoteComment_->isChecked();
    settings.ExportIncludeHeader = includeHeader_->isChecked();
    settings.ExportAuto = auto_->isChecked();
    return settings;
}

void CExportDialog::browse() {
    const std::string start = exportTarget(settings().ExportFilename, request_.datafile);
    if (const auto chosen = browse_(*this, start.empty() ? suggestion() : fileText(start)))
        filename_->setText(*chosen);
    filename_->setFocus();
}

/// A path that this computer has, for the user who is asked for one for the first time.
QString CExportDialog::suggestion() const {
    if (request_.datafile.empty())
        return QDir::home().filePath(QStringLiteral("mirovane.txt"));
    const QFileInfo datafile(fileText(request_.datafile));
    return datafile.dir().filePath(datafile.completeBaseName() + QStringLiteral(".txt"));
}

/// Where a relative name leads is not to be seen from the name.
void CExportDialog::showTarget() {
    const std::string target = exportTarget(settings().ExportFilename, request_.datafile);
    if (target.empty())
        return target_->setText(
            tr("For example %1. A name alone is a file beside the datafile.").arg(suggestion()));
    const QString path = fileText(target);
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        return target_->setText(tr("There is no folder %1").arg(folder.filePath()));
    target_->setText((QFileInfo::exists(path) ? tr("Replaces %1") : tr("Creates %1")).arg(path));
}

void CExportDialog::showPreview() {
    std::vector<const CHardware*> rows;
    for (const CHardware& row : request_.firstRows)
        rows.push_back(&row);
    QString text = previewLine(exportText(rows, settings().format()));
    if (text.endsWith(u'\n'))
        text.chop(1);
    preview_->setPlainText(text);
}

} // namespace mirovane
