#include "ui/properties/PropertiesDialog.h"

#include "model/properties/FieldRules.h"
#include "model/records/Dates.h"
#include "ui/properties/ChoiceInput.h"
#include "ui/properties/DialogButtons.h"
#include "ui/properties/RuleNotes.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/FaultColours.h"
#include "ui/widgets/WindowPlacement.h"

#include <QAction>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace mirovane {

namespace {

QLabel* makeFact(const char* name, QWidget* parent) {
    auto* fact = new QLabel(parent);
    fact->setObjectName(QLatin1String(name));
    fact->setTextFormat(Qt::PlainText);
    fact->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return fact;
}

QString stateText(std::int32_t state) {
    return state == DeviceState::On    ? QStringLiteral("Active (On)")
           : state == DeviceState::Off ? QStringLiteral("Inactive (Off)")
                                       : QString();
}

} // namespace

CPropertiesDialog::CPropertiesDialog(CStation& station, PropertiesSet set, const QString& title,
                                     QWidget* parent)
    : QDialog(parent),
      station_(station),
      form_(station.document(), std::move(set)),
      banner_(new QLabel(this)) {
    const std::size_t count = form_.count();
    setWindowTitle(count > 1 ? tr("%1 - %2 devices").arg(title).arg(count) : title);
    setWindowModality(Qt::WindowModal);
    banner_->setObjectName(QStringLiteral("propertiesBanner"));
    banner_->setTextFormat(Qt::PlainText);
    banner_->setWordWrap(true);
    banner_->setMargin(6);
    banner_->hide();
    showSoon_.setSingleShot(true);
    showSoon_.setInterval(0);
    connect(&showSoon_, &QTimer::timeout, this, [this] { showForm(); });
    station_.document().addObserver(*this);
}

CPropertiesDialog::~CPropertiesDialog() {
    station_.document().removeObserver(*this);
}

// ---- the parts

void CPropertiesDialog::addFacts(QFormLayout& rows, bool liveStat) {
    recID_ = makeFact("propertiesRecID", this);
    modified_ = makeFact("propertiesModified", this);
    rows.addRow(tr("Rec ID:"), recID_);
    rows.addRow(tr("Modified:"), modified_);
    if (!liveStat)
        return;
    liveStat_ = makeFact("propertiesState", this);
    rows.addRow(tr("Live Stat:"), liveStat_);
}

CPropertyInput* CPropertiesDialog::addText(const char* field, const QString& label,
                                           CPropertyInput::Kind kind) {
    auto* input = new CPropertyInput(form_, field, label, kind, this);
    connect(
        input, &CPropertyInput::edited, this, [this] { showForm(); });
    connect(input, &CPropertyInput::entered, this, [this, input] { lastField_ = input->field(); });
    texts_.push_back(input);
    return input;
}

CPropertyInput* CPropertiesDialog::addTextRow(QFormLayout& rows, const char* field, const QString& label,
                                              CPropertyInput::Kind kind) {
    auto* input = addText(field, QString(label).remove(u'&').remove(u':').simplified(), kind);
    auto* title = new QLabel(label, this);
    title->setBuddy(&input->input());
    rows.addRow(title, input);
    return input;
}

void CPropertiesDialog::addPriority(QFormLayout& rows) {
    const QStringList levels{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                             QStringLiteral("4"), QStringLiteral("5")};
    priority_ = new CChoiceInput(form_, "Priority", levels, QString(), this);
    connect(priority_, &CChoiceInput::edited, this, [this] { showForm(); });
    rows.addRow(tr("&Priority:"), priority_);
}

void CPropertiesDialog::finish(QLayout* body) {
    auto* area = new QScrollArea(this);
    auto* page = new QWidget(area);
    page->setLayout(body);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(banner_);
    layout->addWidget(area, 1);
    layout->addWidget(makeButtons());
    showForm();
    const QSize bars(area->verticalScrollBar()->sizeHint().width(), 0);
    const QMargins margins = layout->contentsMargins();
    const int buttons = layout->itemAt(2)->sizeHint().height() + layout->spacing();
    fitToScreen(*this,
                page->sizeHint() + bars +
                    QSize(margins.left() + margins.right(), margins.top() + margins.bottom() + buttons));
}

QWidget* CPropertiesDialog::makeButtons() {
    auto* buttons = new QWidget(this);
    auto* line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const QString& text, auto pressed) {
        QPushButton* button = addButton(*line, name, text);
        connect(button, &QPushButton::clicked, this, pressed);
        return button;
    };
    if (!form_.several()) {
        previous_ = add(
            "propertiesPrevious", tr("Pre&vious"), [this] { Q_EMIT decided(Decision::Previous); });
        next_ = add("propertiesNext", tr("Ne&xt"), [this] { Q_EMIT decided(Decision::Next); });
        previous_->setToolTip(tr("Apply and go to the device before this one"));
        next_->setToolTip(tr("Apply and go to the device after this one"));
        if (form_.group() != PropertiesGroup::LocationMarkers) {
            test_ = add("propertiesTest", tr("Test &Live Stat..."), [this] { wantTest(); });
            test_->setToolTip(tr("Try a rule on this device as it is saved; nothing is written"));
        }
    }
    line->addStretch(1);
    ok_ = add("propertiesOk", tr("OK"), [this] { accept(); });
    ok_->setDefault(true);
    add("propertiesCancel", tr("Cancel"), [this] { reject(); });
    return buttons;
}

void CPropertiesDialog::offerNeighbours(bool previous, bool next) {
    neighbours_ = {previous, next};
    showBanner();
}

void CPropertiesDialog::wantTest() {
    if (const CHardware* device = form_.device())
        Q_EMIT testWanted(floorCode(device->Type), ruleRowOf(lastField_).value_or(0));
}

// ---- what is shown

void CPropertiesDialog::showForm() {
    showFacts();
    showBanner();
    if (priority_)
        priority_->refresh();
    for (CPropertyInput* input : texts_)
        input->refresh(noteOf(input->field()));
}

FieldNote CPropertiesDialog::noteOf(const std::string& field) const {
    return ruleNote(station_, form_, field);
}

void CPropertiesDialog::showFacts() {
    const CHardware* device = form_.several() ? nullptr : form_.device();
    if (recID_)
        recID_->setText(device ? QString::number(device->RecID) : QString());
    if (modified_)
        modified_->setText(device ? shownText(stampText(device->Modified)) : QString());
    if (liveStat_)
        liveStat_->setText(device ? stateText(device->State) : QString());
}

/// A device that is gone stays gone: what was typed may still be copied out of the window.
void CPropertiesDialog::showBanner() {
    const std::size_t gone = form_.gone();
    const std::size_t all = form_.count();
    QString text;
    if (gone == all)
        text = all > 1 ? tr("These devices were deleted meanwhile. There is nothing left to change.")
                       : tr("This device was deleted meanwhile. There is nothing left to change.");
    else if (gone > 0)
        text = tr("%1 of these %2 devices were deleted meanwhile. The others will be changed.")
                   .arg(gone)
                   .arg(all);
    showFaultText(*banner_, text);
    banner_->setVisible(!text.isEmpty());
    ok_->setEnabled(gone < all);
    if (previous_) {
        previous_->setEnabled(neighbours_.previous && gone == 0);
        next_->setEnabled(neighbours_.next && gone == 0);
    }
    if (test_)
        test_->setEnabled(gone == 0);
}

// ---- what others do meanwhile

void CPropertiesDialog::recordChanged(const CHardware&, const CHardware& after) {
    const bool rule = !after.isDevice(); // a rule of Live Stat is shown below its field
    if (rule || form_.has(after))
        showSoon();
}

} // namespace mirovane
