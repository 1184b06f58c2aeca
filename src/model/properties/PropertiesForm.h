#pragma once

#include "model/properties/FollowedDevices.h"
#include "model/properties/PropertiesEdit.h"
#include "model/properties/PropertiesGroup.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a text field of several devices shows until somebody edits it: leave each device's own text.
constexpr std::string_view leaveText = "<Edit>";

/// The same in the list of a location marker's pictures.
constexpr std::string_view leavePictures = "<Edit-Remove first>";

/// A Properties dialog without its widgets: what each field shows, what the user made of it, and what is to
/// be changed by that. The records may be read anew meanwhile: what the user entered stays, what he did not
/// touch follows the records. Values are as in RecordField, but texts are UTF-8 with LF between lines, and a
/// type is its name. What the devices have is looked up again only after one of them changed: a whole floor
/// may be selected. Main thread; the document outlives it.
class CPropertiesForm final : private DocumentObserver {
public:
    /// Where a text field's text comes from.
    enum class Source {
        Device,  ///< the one device
        User,    ///< typed
        Shared,  ///< all of several devices have this text: a hint, which typing replaces
        Various, ///< it is only the word for "leave as it is"
    };
    struct Shown {
        std::string text;
        Source source = Source::Device;

        bool operator==(const Shown&) const = default;
    };

    /// `set` has at least one device that is in the document.
    CPropertiesForm(const CMirovaneDoc& document, PropertiesSet set);
    ~CPropertiesForm() override;

    PropertiesGroup group() const { return set_.group; }
    /// Only what the user changes is written, and no text tells of one device alone.
    bool several() const { return set_.together || devices_.size() > 1; }

    /// How many the form was made for.
    std::size_t count() const { return devices_.size(); }

    /// Those that are left.
    std::vector<DeviceKey> devices() const { return devices_.keys(); }
    bool has(const CHardware& device) const { return devices_.placeOf(device).has_value(); }

    /// The one device, or the first of several that is left; null when all were deleted.
    const CHardware* device() const;

    Shown text(std::string_view field) const;

    /// The value that all devices have; nothing where they differ. For fields that are not texts.
    std::optional<std::string> shared(std::string_view field) const;

    /// The user made something of the field.
    bool entered(std::string_view field) const { return at(field).input.has_value(); }

    /// What the user chose, or else shared().
    std::optional<std::string> chosen(std::string_view field) const;

    /// What the field shows now. Entering what is stored, or the word for "leave as it is", changes nothing.
    void enter(std::string_view field, std::string value);

    /// As if the user had never touched the field.
    void leave(std::string_view field);

    /// Whether Live Stat is kept away from the text; nothing: from some devices' only.
    std::optional<bool> kept(std::string_view field) const;

    /// The padlock: writes or removes the mark at the end of the text, each device's own where they differ.
    void setKept(std::string_view field, bool kept);

    /// Somebody else (a colleague, Live Stat) changed this field of one of the devices since the form was
    /// made.
    bool changedElsewhere(std::string_view field) const;

    /// Devices that were deleted since.
    std::size_t gone() const { return devices_.gone(); }

    /// What the user changed, and nothing else. `reminder`: the date and time that the pickers show.
    PropertiesEdit edit(const std::string& reminder) const;

private:
    /// What the devices have in one field.
    struct Seen {
        std::optional<std::string> shared; ///< bytes
        std::optional<bool> kept = false;
        bool changed = false; ///< since the form was made
    };
    struct Field {
        const RecordField* field = nullptr;
        std::vector<std::string> before; ///< of each device when the form was made
        std::optional<std::string> input;
        std::optional<bool> lock;
        mutable std::optional<Seen> seen = {}; ///< nothing: to be looked up
    };

    // DocumentObserver
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

    const Field& at(std::string_view name) const;
    Field& at(std::string_view name);
    const Seen& seen(const Field& field) const;
    void lookAgain();
    std::string leaveWord(const Field& field) const;
    bool leaves(const Field& field, const std::string& input) const;
    std::string stored(const Field& field, const std::string& input) const;
    bool reminderCounts(std::string_view field) const;
    void addReminder(PropertiesEdit& edit, const std::string& reminder) const;

    const CMirovaneDoc& document_;
    PropertiesSet set_;
    CFollowedDevices devices_; ///< told of changes before the form is
    std::vector<Field> fields_;
};

} // namespace mirovane
