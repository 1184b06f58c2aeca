#include "ui/properties/RuleNotes.h"

#include "model/properties/FieldRules.h"
#include "model/records/Dates.h"
#include "ui/widgets/DialogText.h"

#include <QCoreApplication>

namespace mirovane {

namespace {

QString words(const char* text) {
    return QCoreApplication::translate("mirovane::RuleNotes", text);
}

QString whenText(const std::string& condition) {
    if (condition == "On/Off")
        return {};
    return condition == "On" ? words(", when On") : words(", when Off");
}

QString foundText(const LatestFind& find) {
    const QString what =
        find.found ? words("found \"%1\"").arg(shownText(find.text).simplified()) : words("found nothing");
    return what + words(", ") + shownText(stampText(find.at));
}

} // namespace

FieldNote ruleNote(const CStation& station, const CPropertiesForm& form, std::string_view field) {
    const CHardware* device = form.device();
    const bool oneType = form.group() != PropertiesGroup::Devices || form.shared("Type");
    const auto rule = device && oneType ? fieldRule(station.document(), device->Type, field) : std::nullopt;
    if (!rule)
        return {};
    const CriteriaRow& row = rule->criteria;
    FieldNote note;
    note.text = (words("Live Stat: ") + shownText(row.Command) + u' ' + shownText(row.Argument)).trimmed() +
                whenText(row.Condition);
    if (form.several())
        return note;
    if (const LatestFind* find = station.features().liveStat().finds().of(device->RecID, rule->row))
        note.text += u'\n' + foundText(*find);
    return note;
}

} // namespace mirovane
