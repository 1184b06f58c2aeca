#include "ui/dialogs/PhotoSettingsDialog.h"

#include "ui/widgets/DialogText.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirovane {

namespace {

constexpr int smallestScale = 1;
constexpr int largestScale = 1000;

constexpr const char* question = "Enter the path to the user &photos";
constexpr const char* hint =
    "photos must be in bitmap (bmp) format and width of the photo should be 128 pixels. "
    "use the USERNAME to name the file.";
constexpr const char* scaleText = "Photo &scale ";

/// Where no letter is marked.
QString plain(const char* text) {
    return qText(text).remove(u'&').trimmed();
}

} // namespace

CPhotoSettingsDialog::CPhotoSettingsDialog(const PhotoSettings& settings, QWidget* parent)
    : QDialog(parent),
      given_(settings),
      shownFolder_(shownText(settings.folder)),
      folder_(new QLineEdit(shownFolder_)),
      note_(new QLabel),
      scale_(new QSpinBox) {
    setObjectName(QStringLiteral("photoSettings"));
    setWindowTitle(QStringLiteral("User Photo Settings"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(makeFolder());
    layout->addLayout(makeScale());
    layout->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connect(folder_, &QLineEdit::textChanged, this, &CPhotoSettingsDialog::showWhetherItIsThere);
    showWhetherItIsThere();
    constexpr int wantedWidth = 520;
    resize(sizeHint().expandedTo({wantedWidth, 0}));
}

QLayout* CPhotoSettingsDialog::makeFolder() {
    folder_->setObjectName(QStringLiteral("photoFolder"));
    folder_->setAccessibleName(plain(question));
    auto* label = new QLabel(qText(question));
    label->setBuddy(folder_);
    auto* button = new QPushButton(tr("&Browse..."));
    button->setObjectName(QStringLiteral("photoBrowse"));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &CPhotoSettingsDialog::browse);
    auto* line = new QHBoxLayout;
    line->addWidget(folder_, 1);
    line->addWidget(button);
    auto* explanation = new QLabel(qText(hint));
    explanation->setWordWrap(true);
    for (QLabel* text : {explanation, note_}) {
        text->setTextFormat(Qt::PlainText);
        text->setForegroundRole(QPalette::PlaceholderText);
    }
    note_->setObjectName(QStringLiteral("photoFolderNote"));
    note_->setWordWrap(true);
    auto* layout = new QVBoxLayout;
    layout->addWidget(label);
    layout->addLayout(line);
    layout->addWidget(note_);
    layout->addWidget(explanation);
    return layout;
}

QLayout* CPhotoSettingsDialog::makeScale() {
    scale_->setObjectName(QStringLiteral("photoScale"));
    scale_->setAccessibleName(plain(scaleText));
    scale_->setRange(smallestScale, largestScale);
    scale_->setSuffix(QStringLiteral(" %"));
    scale_->setValue(given_.PhotoScale);
    auto* label = new QLabel(qText(scaleText));
    label->setBuddy(scale_);
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(scale_);
    line->addStretch();
    return line;
}

void CPhotoSettingsDialog::browse() {
    const QString chosen = QFileDialog::getExistingDirectory(this, plain(question), folder_->text());
    if (!chosen.isEmpty())
        folder_->setText(QDir::toNativeSeparators(chosen));
    folder_->setFocus();
}

/// Not refused: the folder may be on a share that is away for the moment.
void CPhotoSettingsDialog::showWhetherItIsThere() {
    const QString folder = folder_->text();
    const bool absolute = QDir::isAbsolutePath(folder);
    note_->setText(absolute && !QDir(folder).exists() ? tr("There is no folder %1").arg(folder) : QString());
    note_->setVisible(!note_->text().isEmpty());
}

PhotoSettings CPhotoSettingsDialog::settings() const {
    PhotoSettings chosen = given_;
    if (folder_->text() != shownFolder_)
        chosen.folder = storedText(folder_->text());
    chosen.PhotoScale = scale_->value();
    return chosen;
}

} // namespace mirovane
