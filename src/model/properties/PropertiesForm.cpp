#include "model/properties/PropertiesForm.h"

#include "model/records/Text.h"

#include <algorithm>
#include <cassert>

namespace mirovane {

namespace {

/// A type is called by its name: a code would move the device between floor and Discovered/Misc window.
std::string valueOf(const CHardware& device, const RecordField& field) {
    return field.kind == FieldKind::Type ? std::string(typeName(device.Type)) : fieldValue(device, field);
}

std::string withLineFeeds(std::string_view text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        lines += text[i] == '\r' ? '\n' : text[i];
    }
    return lines;
}

/// The floor draws a new line at a carriage return.
std::string withCarriageReturns(std::string_view text) {
    std::string lines;
    for (const char character : text) {
        if (character == '\n')
            lines += '\r';
        lines += character;
    }
    return lines;
}

std::string shownValue(const RecordField& field, std::string_view bytes) {
    return field.kind == FieldKind::Text ? withLineFeeds(displayText(bytes)) : std::string(bytes);
}

} // namespace

CPropertiesForm::CPropertiesForm(const CMirovaneDoc& document, PropertiesSet set)
    : document_(document), set_(std::move(set)), devices_(document, set_.devices) {
    for (const std::string_view name : propertiesFields(set_.group)) {
        Field field{findRecordField(name), {}, {}, {}};
        for (std::size_t i = 0; i < devices_.size(); ++i) {
            const CHardware* device = devices_.at(i);
            field.before.push_back(device ? valueOf(*device, *field.field) : std::string());
        }
        fields_.push_back(std::move(field));
    }
    document_.addObserver(*this);
}

CPropertiesForm::~CPropertiesForm() {
    document_.removeObserver(*this);
}

const CPropertiesForm::Field& CPropertiesForm::at(std::string_view name) const {
    const auto found = std::ranges::find(fields_, name, [](const Field& field) { return field.field->name; });
    assert(found != fields_.end());
    return *found;
}

CPropertiesForm::Field& CPropertiesForm::at(std::string_view name) {
    return const_cast<Field&>(std::as_const(*this).at(name));
}

const CHardware* CPropertiesForm::device() const {
    for (std::size_t i = 0; i < devices_.size(); ++i)
        if (const CHardware* device = devices_.at(i))
            return device;
    return nullptr;
}

// ---- what is shown

const CPropertiesForm::Seen& CPropertiesForm::seen(const Field& field) const {
    if (field.seen)
        return *field.seen;
    Seen found;
    bool first = true;
    for (std::size_t i = 0; i < devices_.size(); ++i) {
        const CHardware* device = devices_.at(i);
        if (!device)
            continue;
        std::string own = valueOf(*device, *field.field);
        const bool kept = own.ends_with(keptByUser);
        found.changed = found.changed || own != field.before[i];
        if (first)
            found.kept = kept;
        else if (found.kept != kept)
            found.kept.reset();
        if (first)
            found.shared = std::move(own);
        else if (found.shared != own)
            found.shared.reset();
        first = false;
    }
    return field.seen.emplace(std::move(found));
}

std::optional<std::string> CPropertiesForm::shared(std::string_view name) const {
    const Field& field = at(name);
    const auto& bytes = seen(field).shared;
    return bytes ? std::optional(shownValue(*field.field, *bytes)) : std::nullopt;
}

std::optional<std::string> CPropertiesForm::chosen(std::string_view name) const {
    const Field& field = at(name);
    return field.input ? field.input : shared(name);
}

std::string CPropertiesForm::leaveWord(const Field& field) const {
    const bool pictures = group() == PropertiesGroup::LocationMarkers && field.field->name == "VertText";
    return std::string(pictures ? leavePictures : leaveText);
}

CPropertiesForm::Shown CPropertiesForm::text(std::string_view name) const {
    const Field& field = at(name);
    if (field.input)
        return {*field.input, Source::User};
    const auto all = shared(name);
    if (!several())
        return {all.value_or(std::string()), Source::Device};
    // Nobody types over a list of pictures: the word is there also where all markers have the same.
    // And an empty field would look as if its texts were to be emptied.
    const bool hint = all && !all->empty() && leaveWord(field) == leaveText;
    return hint ? Shown{*all, Source::Shared} : Shown{leaveWord(field), Source::Various};
}

// ---- what the user does

void CPropertiesForm::enter(std::string_view name, std::string value) {
    Field& field = at(name);
    field.input = std::move(value);
    field.lock.reset();
}

void CPropertiesForm::leave(std::string_view name) {
    Field& field = at(name);
    field.input.reset();
    field.lock.reset();
}

std::optional<bool> CPropertiesForm::kept(std::string_view name) const {
    const Field& field = at(name);
    const Shown shown = text(name);
    if (shown.source != Source::Various && !(shown.source == Source::User && leaves(field, shown.text)))
        return shown.text.ends_with(keptByUser);
    if (field.lock)
        return field.lock;
    return seen(field).kept;
}

void CPropertiesForm::setKept(std::string_view name, bool kept) {
    Field& field = at(name);
    const Shown shown = text(name);
    if (shown.source == Source::Various || (shown.source == Source::User && leaves(field, shown.text))) {
        field.input.reset();
        field.lock = kept;
    } else {
        enter(name, withKept(shown.text, kept));
    }
}

// ---- what others do meanwhile

bool CPropertiesForm::changedElsewhere(std::string_view name) const {
    return seen(at(name)).changed;
}

void CPropertiesForm::recordChanged(const CHardware& before, const CHardware& after) {
    if (!has(after))
        return;
    for (Field& field : fields_)
        if (field.seen && !sameField(before, after, *field.field))
            field.seen.reset();
}

void CPropertiesForm::recordRemoved(const CHardware&) {
    lookAgain();
}

void CPropertiesForm::documentReplaced() {
    lookAgain();
}

void CPropertiesForm::lookAgain() {
    for (Field& field : fields_)
        field.seen.reset();
}

// ---- what is to be changed

/// Of several devices; one device has no such word.
bool CPropertiesForm::leaves(const Field& field, const std::string& input) const {
    return several() && field.field->kind == FieldKind::Text && input == leaveWord(field);
}

std::string CPropertiesForm::stored(const Field& field, const std::string& input) const {
    return field.field->kind == FieldKind::Text ? withCarriageReturns(input) : input;
}

/// The reminder of several devices is one thing: without its box set, date and to do are left alone.
bool CPropertiesForm::reminderCounts(std::string_view field) const {
    if (!several() || (field != "ReminderDate" && field != "ToDo"))
        return true;
    return at("ReminderOn").input == "1";
}

PropertiesEdit CPropertiesForm::edit(const std::string& reminder) const {
    PropertiesEdit edit;
    edit.alone = !several();
    for (const Field& field : fields_) {
        if (!reminderCounts(field.field->name))
            continue;
        if (field.lock)
            edit.locks.push_back({field.field, *field.lock});
        if (!field.input || leaves(field, *field.input))
            continue;
        const auto& bytes = seen(field).shared;
        const bool same = bytes && shownValue(*field.field, *bytes) == *field.input;
        // Of several devices, what was chosen or checked is written, also where all of them have it already:
        // a reminder that is on everywhere still gets the date that is shown.
        if (!same || (several() && field.field->kind != FieldKind::Text))
            edit.assign(*field.field, stored(field, *field.input));
    }
    if (group() == PropertiesGroup::Devices)
        addReminder(edit, reminder);
    return edit;
}

/// A reminder that goes on needs the date that is shown, also where nobody touched it.
void CPropertiesForm::addReminder(PropertiesEdit& edit, const std::string& reminder) const {
    const std::string* on = edit.valueOf("ReminderOn");
    if (on && *on == "1" && !edit.valueOf("ReminderDate"))
        edit.assign(*findRecordField("ReminderDate"), reminder);
}

} // namespace mirovane
