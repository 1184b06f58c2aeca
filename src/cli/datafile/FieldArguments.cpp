#include "cli/datafile/FieldArguments.h"

#include "model/records/Text.h"

namespace mirovane {

namespace {

constexpr std::size_t shownLength = 60;

Result<const RecordField*, UsageError> fieldNamed(const std::string& name, const std::string& known) {
    const RecordField* field = findRecordField(name);
    if (!field)
        return UsageError{"unknown field \"" + name.substr(0, shownLength) + "\": the fields are " + known};
    return field;
}

std::string storedFieldNames() {
    std::string names;
    for (const RecordField& field : recordFields())
        names += (names.empty() ? "" : ", ") + std::string(field.name);
    return names;
}

/// As a pattern meets it: a type by its name, a text as people read it.
std::string searchedText(const CHardware& device, const RecordField& field) {
    if (field.kind == FieldKind::Type)
        return std::string(typeName(device.Type));
    return displayText(fieldValue(device, field));
}

/// The value in the field's own form ("On" and "1" are the same state). A field that nobody may set is
/// compared as text.
bool hasValue(const CHardware& device, const RecordField& field, const std::string& value) {
    CHardware wanted = device;
    if (!field.keeper.empty() || setFieldValue(wanted, field, value))
        return fieldValue(device, field) == value;
    if (field.kind == FieldKind::Text)
        return equalIgnoringCase(fieldValue(device, field), value) ||
               equalIgnoringCase(searchedText(device, field), value);
    return sameField(device, wanted, field);
}

} // namespace

Result<PropertiesEdit, UsageError> assignmentArguments(std::span<const std::string> words) {
    PropertiesEdit edit;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos)
            return UsageError{"\"" + word.substr(0, shownLength) +
                              "\" is not a FIELD=VALUE pair: write it as Name=pc-12"};
        const auto field = fieldNamed(word.substr(0, equals), settableFieldNames());
        if (!field)
            return field.error();
        edit.assign(*field.value(), word.substr(equals + 1));
    }
    return edit;
}

Result<CDeviceConditions, UsageError> CDeviceConditions::of(std::span<const std::string> words) {
    CDeviceConditions all;
    for (const std::string& word : words) {
        auto one = condition(word);
        if (!one)
            return one.error();
        all.conditions_.push_back(std::move(one.value()));
    }
    return all;
}

Result<CDeviceConditions::Condition, UsageError> CDeviceConditions::condition(const std::string& word) {
    const std::size_t sign = word.find_first_of("=~");
    if (sign == std::string::npos)
        return UsageError{"\"" + word.substr(0, shownLength) +
                          "\" is not a condition: write it as Type=Printer or Name~^prn-"};
    const auto field = fieldNamed(word.substr(0, sign), storedFieldNames());
    if (!field)
        return field.error();
    Condition condition{field.value(), word.substr(sign + 1), std::nullopt};
    if (word[sign] == '~') {
        try {
            condition.pattern = CompilePattern(lowerCasedPattern(condition.value));
        } catch (const bad_regexpr& error) {
            return UsageError{"bad pattern \"" + condition.value.substr(0, shownLength) +
                              "\": " + error.what()};
        }
    } else if (condition.field->keeper.empty()) {
        CHardware trial;
        trial.Type = DeviceType::first;
        if (auto refusal = setFieldValue(trial, *condition.field, condition.value))
            return UsageError{*std::move(refusal)};
    }
    return condition;
}

bool CDeviceConditions::fits(const CHardware& device) const {
    for (const Condition& condition : conditions_)
        if (!fits(device, condition))
            return false;
    return true;
}

bool CDeviceConditions::fits(const CHardware& device, const Condition& condition) {
    if (!condition.pattern)
        return hasValue(device, *condition.field, condition.value);
    const std::string text = lowerCased(searchedText(device, *condition.field));
    return SearchPattern(*condition.pattern, text) == PatternOutcome::Match;
}

} // namespace mirovane
