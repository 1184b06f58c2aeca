#include "model/CriteriaEdit.h"

#include <algorithm>
#include <span>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t firstRowOfTexts = 7;

} // namespace

void setCriteria(CMirovaneDoc& document, std::int32_t type, int row, CriteriaColumn column,
                 const std::string& text) {
    const CHardware* record = document.criteria(type, row);
    if (!record) {
        CHardware missing;
        missing.Type = criteriaRecordType(type, row);
        applyCriteriaDefaults(missing);
        record = document.append(std::move(missing));
    }
    if (!record)
        return;
    document.edit(*record, [column, &text](CHardware& held) { setCriteriaValue(held, column, text); });
    forgetTextFileStamps(document, floorCode(type), column != CriteriaColumn::IfMatch);
}

void chooseAction(CMirovaneDoc& document, std::int32_t type, int row, const std::string& action) {
    setCriteria(document, type, row, CriteriaColumn::Command, action);
    if (row == 0) {
        setCriteria(document, type, row, CriteriaColumn::Delimiter, "");
        setCriteria(document, type, row, CriteriaColumn::FieldPos, "0");
    }
    if (action == Action::WhosLogon)
        setCriteria(document, type, row, CriteriaColumn::Argument, std::string(nameAndAddressArgument));
}

void resetCriteria(CMirovaneDoc& document) {
    for (const auto& record : document.records())
        if (isCriteriaRecordType(record->Type))
            document.edit(*record, applyCriteriaDefaults);
}

void forgetTextFileStamps(CMirovaneDoc& document, std::int32_t type, bool allRows) {
    const std::size_t firstRow = allRows ? 0 : firstRowOfTexts;
    const auto isSet = [](TimeStamp stamp) {
        return stamp != 0;
    };
    const auto forget = [firstRow](CHardware& held) {
        std::ranges::fill(std::span(held.RuleStamps).subspan(firstRow), 0);
    };
    for (const auto& record : document.records()) {
        const std::span<const TimeStamp> stamps(record->RuleStamps);
        if (record->Type == type && std::ranges::any_of(stamps.subspan(firstRow), isSet))
            document.editInBackground(*record, forget);
    }
}

} // namespace mirovane
