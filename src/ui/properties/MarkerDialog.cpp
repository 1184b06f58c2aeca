#include "ui/properties/MarkerDialog.h"

#include "model/properties/MarkerPictures.h"
#include "ui/properties/DialogButtons.h"
#include "ui/properties/PictureViewer.h"
#include "ui/widgets/DialogText.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace mirovane {

CMarkerDialog::CMarkerDialog(CStation& station, PropertiesSet set, PropertiesPrompts& prompts,
                             QWidget* parent)
    : CPropertiesDialog(station, std::move(set), tr("Location Marker"), parent), prompts_(prompts) {
    setObjectName(QStringLiteral("locationMarkerDialog"));
    auto* rows = new QFormLayout;
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addFacts(*rows, false);
    CPropertyInput* name = addTextRow(*rows, "Comment", tr("Location\n&Name:"), CPropertyInput::Kind::Lines);
    if (!form().several())
        rows->addRow(QString(), makeMarkArea());
    auto* label = new QLabel(tr("&Pictures:"), this);
    rows->addRow(label, makePictures());
    label->setBuddy(pictures_);
    finish(rows);
    name->setFocus();
}

QWidget* CMarkerDialog::makeMarkArea() {
    auto* box = new QWidget(this);
    markArea_ = new QPushButton(tr("&Mark Area"), box);
    markArea_->setObjectName(QStringLiteral("propertiesMarkArea"));
    markArea_->setAutoDefault(false);
    markArea_->setCheckable(true);
    auto* hint = new QLabel(QStringLiteral("To mark - <left-click>    To finish - <right-click>"), box);
    hint->setTextFormat(Qt::PlainText);
    auto* line = new QHBoxLayout(box);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(markArea_);
    line->addWidget(hint, 1);
    return box;
}

QWidget* CMarkerDialog::makePictures() {
    auto* box = new QWidget(this);
    pictures_ = new QListWidget(box);
    pictures_->setObjectName(QStringLiteral("propertiesPictures"));
    pictures_->setAccessibleName(tr("Pictures"));
    pictures_->setTextElideMode(Qt::ElideMiddle);
    pictures_->setMinimumHeight(pictures_->fontMetrics().lineSpacing() * 6);
    note_ = new QLabel(box);
    note_->setObjectName(QStringLiteral("notePictures"));
    auto* buttons = new QVBoxLayout;
    const auto add = [&](const char* name, const QString& text, void (CMarkerDialog::*pressed)()) {
        QPushButton* button = addButton(*buttons, name, text);
        connect(button, &QPushButton::clicked, this, pressed);
        return button;
    };
    view_ = add("propertiesView", tr("Vie&w"), &CMarkerDialog::view);
    add("propertiesAdd", tr("&Add"), &CMarkerDialog::add);
    remove_ = add("propertiesRemove", tr("&Remove"), &CMarkerDialog::remove);
    buttons->addStretch(1);
    auto* key = new QAction(pictures_);
    key->setShortcut(QKeySequence::Delete);
    key->setShortcutContext(Qt::WidgetShortcut);
    connect(key, &QAction::triggered, this, &CMarkerDialog::remove);
    pictures_->addAction(key);
    connect(pictures_, &QListWidget::itemDoubleClicked, this, &CMarkerDialog::view);
    connect(pictures_, &QListWidget::currentRowChanged, this, &CMarkerDialog::enableButtons);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(pictures_, 0, 0);
    grid->addLayout(buttons, 0, 1);
    grid->addWidget(note_, 1, 0);
    return box;
}

// ---- what is shown

void CMarkerDialog::showForm() {
    CPropertiesDialog::showForm();
    enableMarkArea();
    const int row = pictures_->currentRow();
    {
        const QSignalBlocker quiet(pictures_);
        pictures_->clear();
        for (const std::string& path : picturesFrom(form().text("VertText").text))
            pictures_->addItem(qText(path));
        if (pictures_->count() > 0)
            pictures_->setCurrentRow(std::clamp(row, 0, pictures_->count() - 1));
    }
    const bool changed = form().changedElsewhere("VertText");
    note_->setText(changed ? tr("Changed meanwhile") : QString());
    note_->setVisible(changed);
    enableButtons();
}

/// The line that leaves each marker its own pictures is removed first, then pictures are
/// added.
void CMarkerDialog::enableButtons() {
    const QListWidgetItem* current = pictures_->currentItem();
    const bool leaves = form().several() && form().text("VertText").text == leavePictures;
    view_->setEnabled(current && !leaves);
    remove_->setEnabled(current);
    if (auto* add = findChild<QPushButton*>(QStringLiteral("propertiesAdd"))) {
        add->setEnabled(!leaves);
        add->setToolTip(leaves ? tr("Remove the line first: then all these markers get the same pictures")
                               : QString());
    }
}

/// The area of a marker that is not on the floor is not drawn.
void CMarkerDialog::enableMarkArea() {
    if (!markArea_)
        return;
    const CHardware* device = form().device();
    const bool onFloor = device && device->onFloor();
    markArea_->setEnabled(onFloor);
    if (!onFloor)
        markArea_->setChecked(false);
    markArea_->setToolTip(
        onFloor || !device
            ? tr("After OK, mark the area of this location on the floor map")
            : tr("This marker is in the Discovered/Misc window. Move it to the floor first: its "
                 "area is not seen before."));
}

// ---- what the user does

void CMarkerDialog::view() {
    if (!view_->isEnabled())
        return;
    std::vector<PictureFile> files;
    for (int row = 0; row < pictures_->count(); ++row) {
        const std::string path = storedText(pictures_->item(row)->text());
        const std::string found = FloorMapValues{path, {}}.findMap(station().datafile().path());
        files.push_back({pictures_->item(row)->text(), QFile::decodeName(found.c_str())});
    }
    auto* viewer = new CPictureViewer(std::move(files), pictures_->currentRow(), this);
    viewer->setAttribute(Qt::WA_DeleteOnClose);
    viewer->open();
}

void CMarkerDialog::add() {
    const QString datafile = QFile::decodeName(station().datafile().path().c_str());
    const QStringList paths = prompts_.choosePictures(*this, QFileInfo(datafile).absolutePath());
    for (const QString& path : paths)
        pictures_->addItem(path);
    if (!paths.isEmpty())
        enterPictures();
}

void CMarkerDialog::remove() {
    delete pictures_->takeItem(pictures_->currentRow());
    enterPictures();
}

void CMarkerDialog::enterPictures() {
    std::vector<std::string> paths;
    for (int row = 0; row < pictures_->count(); ++row)
        paths.push_back(storedText(pictures_->item(row)->text()));
    ownForm().enter("VertText", picturesText(paths));
    showForm();
}

} // namespace mirovane
