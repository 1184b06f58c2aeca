#include "model/properties/PropertiesEdit.h"

#include "model/properties/PropertiesGroup.h"

#include <variant>

namespace mirovane {

namespace {

std::string& textOf(CHardware& device, const RecordField& field) {
    return device.*std::get<std::string CHardware::*>(field.member);
}

void emptyUnused(CHardware& device) {
    for (const std::string_view name : unusedTexts(propertiesGroupOf(device.Type)))
        textOf(device, *findRecordField(name)).clear();
}

} // namespace

const std::string* PropertiesEdit::valueOf(std::string_view field) const {
    const std::string* value = nullptr;
    for (const Assignment& assignment : assignments)
        if (assignment.field->name == field)
            value = &assignment.value;
    return value;
}

std::string withKept(std::string text, bool kept) {
    if (kept && !text.ends_with(keptByUser))
        text.append(text.empty() ? "" : " ").append(keptByUser);
    if (!kept && text.ends_with(keptByUser)) {
        text.resize(text.size() - keptByUser.size());
        if (text.ends_with(' '))
            text.pop_back();
    }
    return text;
}

Result<CHardware, std::string> changedBy(const PropertiesEdit& edit, const CHardware& device) {
    CHardware changed = device;
    for (const PropertiesEdit::Assignment& assignment : edit.assignments)
        if (auto refusal = setFieldValue(changed, *assignment.field, assignment.value))
            return *std::move(refusal);
    for (const PropertiesEdit::Lock& lock : edit.locks) {
        std::string& text = textOf(changed, *lock.field);
        text = withKept(text, lock.kept);
    }
    // A computer that becomes a jack keeps its name: nobody who only picked a type wants its texts gone.
    if (edit.alone && propertiesGroupOf(device.Type) == propertiesGroupOf(changed.Type))
        emptyUnused(changed);
    return changed;
}

std::size_t applyProperties(CMirovaneDoc& document, std::span<const DeviceKey> devices,
                            const PropertiesEdit& edit) {
    std::size_t count = 0;
    for (const DeviceKey& key : devices) {
        const CHardware* device = edit.empty() ? nullptr : document.findDevice(key);
        if (!device)
            continue;
        if (auto changed = changedBy(edit, *device)) {
            document.editByUser(*device, [&](CHardware& record) { record = std::move(changed.value()); });
            ++count;
        }
    }
    return count;
}

} // namespace mirovane
