#include "model/edit/Reversal.h"

#include "model/CriteriaEdit.h"
#include "model/EditJournal.h"
#include "model/records/RecordNames.h"
#include "model/records/SpecialRecords.h"

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>

namespace mirovane {

namespace {

using RecordNames::capitalName;
using RecordNames::fieldName;
using RecordNames::nameOf;
using RecordNames::quoted;

/// The log holds 400 lines.
constexpr std::size_t mostLines = 50;

bool sameContent(const CHardware& a, const CHardware& b) {
    return changedFields(a, b).none();
}

/// A device that got the number of a deleted one has nothing of it.
bool shareSomething(const CHardware& a, const CHardware& b) {
    if (a.Position == b.Position && a.Position != MapPoint{})
        return true;
    const auto isShared = [&](const RecordField& field) {
        const auto* text = std::get_if<std::string CHardware::*>(&field.member);
        return text && !(a.**text).empty() && a.**text == b.**text;
    };
    return std::ranges::any_of(recordFields(), isShared) || sameContent(a, b);
}

class CReversal {
public:
    CReversal(CMirovaneDoc& document, std::string_view verb) : document_(document), verb_(verb) {}

    /// Who goes makes room, and frees its number, for who comes back.
    ReversalResult run(const EditStep& step) {
        for (const RecordEdit& edit : step.records)
            if (!edit.before)
                takeOut(*edit.after);
        removeCollected();
        for (const RecordEdit& edit : step.records)
            if (edit.before && edit.after)
                putBack(*edit.before, *edit.after);
        // Who finds its number free keeps it; only then do the others get what is left.
        std::vector<const RecordEdit*> displaced;
        for (const RecordEdit& edit : step.records)
            if (!edit.after && edit.before->isDevice() && document_.findDevice(edit.before->RecID))
                displaced.push_back(&edit);
            else if (!edit.after)
                bringBack(edit);
        for (const RecordEdit* edit : displaced)
            bringBack(*edit);
        for (const std::int32_t type : criteriaOf_)
            forgetTextFileStamps(document_, type, true);
        return std::move(result_);
    }

private:
    /// Each record is found once: a step may hold two that say the same.
    const CHardware* find(const CHardware& wanted) {
        const CHardware* found = wanted.isDevice()              ? findDevice(wanted)
                                 : isListedSpecial(wanted.Type) ? findListed(wanted)
                                                                : document_.findSpecial(wanted.Type);
        if (found)
            met_.insert(found);
        return found;
    }

    /// A damaged file may hold the number twice.
    const CHardware* findDevice(const CHardware& wanted) const {
        const CHardware* alike = nullptr;
        for (std::size_t twin = 0; const auto* device = document_.findDevice({wanted.RecID, twin}); ++twin) {
            if (met_.contains(device))
                continue;
            if (sameContent(wanted, *device))
                return device;
            if (!alike && shareSomething(wanted, *device))
                alike = device;
        }
        return alike;
    }

    const CHardware* findListed(const CHardware& wanted) const {
        const CHardware* alike = nullptr;
        for (const auto& record : document_.records()) {
            if (record->Type != wanted.Type || met_.contains(record.get()))
                continue;
            if (sameContent(wanted, *record))
                return record.get();
            if (!alike && shareSomething(wanted, *record))
                alike = record.get();
        }
        return alike;
    }

    void say(const CHardware& record, const std::string& what) {
        if (result_.lines.size() < mostLines)
            result_.lines.push_back(std::string(verb_) + ": " + capitalName(record) + what);
        else if (result_.lines.size() == mostLines)
            result_.lines.push_back(std::string(verb_) + ": ... and more like these");
    }

    /// Of two applications that share a command, the other one must not go.
    void takeOut(const CHardware& added) {
        const CHardware* live = find(added);
        if (!live || (isListedSpecial(added.Type) && !sameContent(added, *live))) {
            say(added, " was added by this, and is changed or gone: nothing is removed");
            return;
        }
        const auto fields = recordFields();
        const FieldSet since = changedFields(added, *live);
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (since[i] && fields[i].kind != FieldKind::State)
                say(*live, " goes with " + fieldName(*live, fields[i]) + " " +
                               quoted(fieldValue(*live, fields[i])) + ", which was written since");
        if (live->isDevice())
            going_.push_back(document_.keyOf(*live));
        else
            goingSpecials_.push_back(live);
    }

    void removeCollected() {
        document_.removeDevices(going_);
        for (const CHardware* special : goingSpecials_) {
            noteCriteria(*special);
            document_.remove(*special);
        }
        met_.clear(); // an address may serve another record
    }

    void putBack(const CHardware& before, const CHardware& after) {
        const CHardware* live = find(after);
        if (!live) {
            say(after, " is not there any more");
            return;
        }
        const FieldSet fields = untouchedFields(before, after, *live);
        if (fields.none())
            return;
        const auto restore = [&](CHardware& held) {
            for (std::size_t i = 0; i < recordFields().size(); ++i)
                if (fields[i])
                    copyField(before, held, recordFields()[i]);
        };
        noteCriteria(*live);
        if (before.Modified != after.Modified || live->isDevice())
            document_.editByUser(*live, restore);
        else
            document_.edit(*live, restore);
    }

    /// Fields of the step that still hold what it wrote.
    FieldSet untouchedFields(const CHardware& before, const CHardware& after, const CHardware& live) {
        FieldSet fields = changedFields(before, after);
        for (std::size_t i = 0; i < recordFields().size(); ++i) {
            const RecordField& field = recordFields()[i];
            if (!fields[i] || sameField(live, after, field))
                continue;
            fields[i] = false;
            if (!sameField(live, before, field))
                say(live, ": " + fieldName(live, field) + " stays " + quoted(fieldValue(live, field)) +
                              ", which was written since");
        }
        return fields;
    }

    void bringBack(const RecordEdit& edit) {
        const CHardware& gone = *edit.before;
        if (!isListedSpecial(gone.Type) && find(gone)) {
            say(gone, " is there already");
            return;
        }
        if (!result_.left.empty()) { // the list is full
            result_.left.push_back(edit);
            return;
        }
        CHardware copy;
        copyStored(gone, copy);
        copy.ReminderDue = 0; // the next check finds out
        if (gone.isDevice() && document_.findDevice(gone.RecID))
            copy.RecID = document_.nextRecordID();
        const CHardware* back = document_.bringBack(std::move(copy));
        if (!back) {
            result_.left.push_back(edit);
            return;
        }
        met_.insert(back);
        noteCriteria(*back);
        if (gone.isDevice())
            result_.back.emplace_back(edit.ticket, back->RecID);
        if (back->RecID != gone.RecID)
            say(gone, " has the RecID " + std::to_string(back->RecID) +
                          " now: its own was given to another device");
    }

    /// Devices of the type search their text files again.
    void noteCriteria(const CHardware& record) {
        if (isCriteriaRecordType(record.Type))
            criteriaOf_.insert(criteriaTypeOf(record.Type));
    }

    CMirovaneDoc& document_;
    std::string_view verb_;
    std::unordered_set<const CHardware*> met_;
    std::vector<DeviceKey> going_;
    std::vector<const CHardware*> goingSpecials_;
    std::set<std::int32_t> criteriaOf_;
    ReversalResult result_;
};

} // namespace

ReversalResult reverseStep(CMirovaneDoc& document, const EditStep& step, std::string_view verb) {
    return CReversal(document, verb).run(step);
}

} // namespace mirovane
