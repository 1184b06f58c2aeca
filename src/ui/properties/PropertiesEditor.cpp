#include "ui/properties/PropertiesEditor.h"

#include "model/properties/Duplicates.h"
#include "ui/livestat/RowTrialWindow.h"
#include "ui/properties/DevicePropertiesDialog.h"
#include "ui/properties/FloorPropertiesDialog.h"
#include "ui/properties/JackDialog.h"
#include "ui/properties/MarkerDialog.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"

#include <QDateTime>

namespace mirovane {

namespace {

QDateTime wallClock(const Clock& clock) {
    return QDateTime::fromSecsSinceEpoch(std::chrono::system_clock::to_time_t(clock.wall()));
}

std::string nameOf(const CHardware& device) {
    switch (propertiesGroupOf(device.Type)) {
    case PropertiesGroup::Jacks:
        return device.ToJack;
    case PropertiesGroup::LocationMarkers:
        return device.Comment;
    case PropertiesGroup::Devices:
        break;
    }
    return device.Name.empty() ? device.IPAddress : device.Name;
}

QString otherText(const CHardware& other) {
    const QString text = QObject::tr("It is %1 \"%2\", Rec ID %3")
                             .arg(qText(typeName(other.Type)), shownText(nameOf(other)).simplified(),
                                  QString::number(other.RecID));
    return text + (other.inDiscovered() ? QObject::tr(", in the Discovered/Misc window.")
                                        : QObject::tr(", on the floor."));
}

EditName stepName(std::size_t count) {
    return {count == 1 ? "Change a device" : "Change %1 devices", count};
}

} // namespace

CPropertiesEditor::CPropertiesEditor(Parts parts, QObject* parent)
    : QObject(parent), parts_(std::move(parts)) {
    parts_.station.addObserver(*this);
}

CPropertiesEditor::~CPropertiesEditor() {
    parts_.station.removeObserver(*this);
}

// ---- opening

void CPropertiesEditor::openForFloor(QWidget& window) {
    const auto selected = parts_.station.selection().members(CSelection::Scope::Floor);
    if (!selected.empty())
        return open(selected, window);
    auto* dialog = new CFloorPropertiesDialog(parts_.station, parts_.mapSize(), &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void CPropertiesEditor::open(const std::vector<const CHardware*>& devices, QWidget& window,
                             Neighbours neighbours) {
    if (dialog_) {
        dialog_->raise();
        dialog_->activateWindow();
        return;
    }
    window_ = &window;
    const CMirovaneDoc& document = parts_.station.document();
    waiting_.clear();
    for (const PropertiesSet& set : classified(document, devices))
        waiting_.emplace_back(document, set);
    bringsOwnNeighbours_ = !neighbours.empty();
    neighbours_ = std::make_unique<CFollowedDevices>(document, neighbours);
    openNext();
}

void CPropertiesEditor::openNext() {
    while (!waiting_.empty() && window_) {
        PropertiesSet set = std::move(waiting_.front().set);
        set.devices = waiting_.front().devices.keys();
        waiting_.pop_front();
        if (set.devices.empty())
            continue; // deleted while the dialog before was open
        dialog_ = makeDialog(std::move(set));
        dialog_->show();
        return;
    }
    waiting_.clear();
    finish();
}

CPropertiesDialog* CPropertiesEditor::makeDialog(PropertiesSet set) {
    CStation& station = parts_.station;
    CPropertiesDialog* dialog = nullptr;
    switch (set.group) {
    case PropertiesGroup::Devices:
        dialog = new CDevicePropertiesDialog(station, std::move(set), wallClock(parts_.clock), window_);
        break;
    case PropertiesGroup::Jacks:
        dialog = new CJackDialog(station, std::move(set), window_);
        break;
    case PropertiesGroup::LocationMarkers:
        dialog = new CMarkerDialog(station, std::move(set), parts_.prompts, window_);
        break;
    }
    if (const CHardware* device = dialog->form().several() ? nullptr : dialog->form().device()) {
        if (!bringsOwnNeighbours_)
            neighbours_ = std::make_unique<CFollowedDevices>(station.document(), neighboursOf(*device));
        dialog->offerNeighbours(neighbour(dialog->form(), -1), neighbour(dialog->form(), 1));
    }
    connect(
        dialog, &CPropertiesDialog::decided, this,
        [this, dialog](CPropertiesDialog::Decision decision) { decided(*dialog, decision); });
    connect(dialog, &CPropertiesDialog::testWanted, this,
            [this, dialog](std::int32_t type, int row) { openTest(*dialog, type, row); });
    return dialog;
}

// ---- what the user decided

void CPropertiesEditor::decided(CPropertiesDialog& dialog, CPropertiesDialog::Decision decision) {
    using Decision = CPropertiesDialog::Decision;
    if (decision != Decision::Cancel && !apply(dialog))
        return;
    const auto* marker = qobject_cast<CMarkerDialog*>(&dialog);
    const bool marks = decision != Decision::Cancel && marker && marker->marksArea();
    // An area is marked on the floor, which a dialog of another device would only hide.
    if (!marks && (decision == Decision::Previous || decision == Decision::Next))
        return moveOn(dialog, decision == Decision::Next ? 1 : -1);
    const CHardware* device = dialog.form().device();
    if (marks && device)
        Q_EMIT markArea(device->RecID);
    close(dialog);
    openNext();
}

/// False: the dialog stays open. An edit that was answered with No is cancelled, and the dialog closes.
bool CPropertiesEditor::apply(CPropertiesDialog& dialog) {
    const CPropertiesForm& form = dialog.form();
    if (!form.device())
        return false;
    const PropertiesEdit edit = dialog.edit();
    if (edit.empty())
        return true;
    if (!form.several() && !mayHaveTwin(dialog, edit))
        return false;
    SaveReport report;
    {
        const CWaitCursor wait;
        const EditRequest request{EditRequest::Kind::Change, stepName(form.devices().size()), form.devices()};
        report = parts_.station.edit(
            request, [&](CMirovaneDoc& document) { applyProperties(document, request.devices, edit); });
    }
    if (report.failed())
        parts_.prompts.fail(dialog, shownText(saveFailureText(*report.error)));
    return true;
}

bool CPropertiesEditor::mayHaveTwin(CPropertiesDialog& dialog, const PropertiesEdit& edit) {
    const CMirovaneDoc& document = parts_.station.document();
    const auto edited = changedBy(edit, *dialog.form().device());
    const auto twin =
        edited ? findDuplicate(document, edited.value(), dialog.form().devices()) : std::nullopt;
    if (!twin)
        return true;
    const CHardware* other = document.findDevice(twin->other);
    const CPause pause(parts_.station.pauses()); // the records stay those that the question is about
    const DuplicateAnswer answer =
        parts_.prompts.askDuplicate(dialog, qText(twin->question()), other ? otherText(*other) : QString());
    if (answer == DuplicateAnswer::ShowOther)
        Q_EMIT showDevice(twin->other.recID);
    if (answer == DuplicateAnswer::Cancel) {
        close(dialog);
        openNext();
    }
    return answer == DuplicateAnswer::Apply;
}

void CPropertiesEditor::close(CPropertiesDialog& dialog) {
    dialog.hide();
    dialog.deleteLater();
    dialog_.clear();
}

/// The devices of the other floor have the same record IDs.
void CPropertiesEditor::floorOpened() {
    waiting_.clear();
    neighbours_.reset();
    if (dialog_)
        close(*dialog_);
}

// ---- from device to device

CPropertiesEditor::Neighbours CPropertiesEditor::neighboursOf(const CHardware& device) const {
    Neighbours keys;
    for (const auto& record : parts_.station.document().records())
        if (record->isDevice() && record->inDiscovered() == device.inDiscovered())
            keys.push_back(parts_.station.document().keyOf(*record));
    return keys;
}

const CHardware* CPropertiesEditor::neighbour(const CPropertiesForm& form, int by) const {
    const CHardware* own = form.device();
    const auto here = own && neighbours_ ? neighbours_->placeOf(*own) : std::nullopt;
    if (!here)
        return nullptr;
    const auto count = static_cast<std::ptrdiff_t>(neighbours_->size());
    for (auto place = static_cast<std::ptrdiff_t>(*here) + by; place >= 0 && place < count; place += by)
        if (const CHardware* device = neighbours_->at(static_cast<std::size_t>(place)))
            return device;
    return nullptr;
}

/// The selection goes along, so that the floor and the lists show which device it is.
void CPropertiesEditor::moveOn(CPropertiesDialog& dialog, int by) {
    const CHardware* device = neighbour(dialog.form(), by);
    if (!device) // deleted meanwhile
        return dialog.offerNeighbours(neighbour(dialog.form(), -1), neighbour(dialog.form(), 1));
    const QPoint place = dialog.pos();
    close(dialog);
    parts_.station.selection().none();
    parts_.station.selection().add(*device);
    dialog_ =
        makeDialog({propertiesGroupOf(device->Type), {parts_.station.document().keyOf(*device)}, false});
    dialog_->move(place);
    dialog_->show();
}

// ---- the rest

void CPropertiesEditor::openTest(CPropertiesDialog& dialog, std::int32_t type, int row) {
    auto* test = new CRowTrialWindow(parts_.station, parts_.clock, type, row, &dialog);
    if (const CHardware* device = dialog.form().device())
        test->pick(device->RecID);
    test->setAttribute(Qt::WA_DeleteOnClose);
    test->open();
}

void CPropertiesEditor::finish() {
    if (parts_.station.features().liveStat().settings().LSAutoPerform && !parts_.station.selection().empty())
        parts_.station.features().liveStat().performNow();
}

} // namespace mirovane
